"""Dependency files for make and ninja."""

from __future__ import annotations

import os
from collections.abc import Iterable

from orv.errors import OutputError


def depfile(target: str, sources: Iterable[str]) -> bytes:
    """One rule without commands: the target depends on the sources, which are sorted.

    The paths of the sources are absolute if the target is, for a build system that has another
    working directory. Raises OutputError for a path with a control character, which the
    rule cannot hold.
    """
    if os.path.isabs(target):
        sources = map(os.path.abspath, sources)
    right = "".join(f" \\\n  {_escaped(path)}" for path in sorted(set(sources)))
    return f"{_escaped(target)}:{right}\n".encode("utf-8", "surrogateescape")


def _escaped(path: str) -> str:
    """The path as both programs read it: backslashes count only before a blank or a "#"."""
    if any(ord(character) < 32 or ord(character) == 127 for character in path):
        raise OutputError(f"the path {path!r} holds a control character; no depfile can name it")
    escaped = ""
    backslashes = 0
    for character in path:
        if character in " #":
            escaped += "\\" * (backslashes + 1)
        elif character == "$":
            escaped += "$"
        elif character == ":":
            escaped += "\\"
        escaped += character
        backslashes = backslashes + 1 if character == "\\" else 0
    return escaped
