"""The command line `orv`."""

from orv.command.main import main

__all__ = ["main"]
