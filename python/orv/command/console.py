"""What a command says beside its results."""

from __future__ import annotations

import sys

from orv import inputs
from orv.command.options import MessageOptions
from orv.errors import PLACE, OrvError, unexpected


def say(text: str, options: MessageOptions) -> None:
    """Print `text` with --verbose."""
    if options.verbose:
        print(text, file=sys.stderr)


def warn(text: str, options: MessageOptions) -> None:
    """Warn everyone who has not asked for quiet."""
    if not options.quiet:
        _tell(warning(text))


def failure(text: str) -> str:
    """The text of an error: as it is when it begins with a line, so that editors jump there."""
    return text if PLACE.match(text) else f"error: {text}"


def failure_of(error: Exception) -> str:
    """The text of an error that ended a run, also of one that nobody foresaw."""
    if isinstance(error, OrvError):
        return failure(str(error))
    return f"error: {unexpected(error)}; no file was being written"


def warning(text: str) -> str:
    """The text of a warning, which begins with the line that it is about."""
    place = PLACE.match(text)
    return f"{place[0]}warning: {text[place.end():]}" if place else f"warning: {text}"


def debug(text: str) -> None:
    """Show what a template shows to its author, whoever has asked for quiet."""
    _tell(f"debug: {text}")


def _tell(line: str) -> None:
    print(line, file=sys.stderr)
    inputs.current().said.append(line)
