"""Differences between old and new files, for people."""

from __future__ import annotations

import difflib

from orv.output.writer import PlannedFile, State


def difference(file: PlannedFile) -> str:
    """A unified difference; a new file differs from /dev/null."""
    old_name = "/dev/null" if file.state is State.NEW else file.shown
    lines = difflib.unified_diff(_lines(file.old), _lines(file.data), old_name, file.shown)
    return "".join(
        line if line.endswith("\n") else f"{line}\n\\ No newline at end of file\n" for line in lines
    )


def _lines(data: bytes) -> list[str]:
    lines = data.decode("utf-8", "surrogateescape").split("\n")
    return [line + "\n" for line in lines[:-1]] + [line for line in lines[-1:] if line]
