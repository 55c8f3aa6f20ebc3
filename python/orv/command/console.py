"""What a command says beside its results."""

from __future__ import annotations

import sys

from orv.command.options import MessageOptions


def say(text: str, options: MessageOptions) -> None:
    """Say `text` to those who want to hear everything."""
    if options.verbose:
        print(text, file=sys.stderr)


def warn(text: str, options: MessageOptions) -> None:
    """Warn everyone who has not asked for quiet."""
    if not options.quiet:
        print(f"warning: {text}", file=sys.stderr)


def debug(text: str) -> None:
    """Show what a template shows to its author, whoever has asked for quiet."""
    print(f"debug: {text}", file=sys.stderr)
