"""The command line `orv`."""

from orv.command.generate import main

__all__ = ["main"]
