"""Differences between old and new files, for people."""

from __future__ import annotations

import difflib

from orv import _native
from orv.output.folder import shown
from orv.output.plan import PlannedFile, State


def difference(file: PlannedFile, folder: _native.OutputFolder) -> str:
    """A unified difference; a new file differs from /dev/null."""
    name = shown(folder, file.path)
    old_name = "/dev/null" if file.state is State.NEW else name
    old = folder.read(file.location) or b""
    lines = difflib.unified_diff(_lines(old), _lines(file.data), old_name, name)
    return "".join(
        line if line.endswith("\n") else f"{line}\n\\ No newline at end of file\n" for line in lines
    )


def _lines(data: bytes) -> list[str]:
    lines = data.decode("utf-8", "surrogateescape").split("\n")
    return [line + "\n" for line in lines[:-1]] + [line for line in lines[-1:] if line]
