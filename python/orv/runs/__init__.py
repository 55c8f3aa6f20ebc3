"""Doing many runs: in which order, and in which processes."""
