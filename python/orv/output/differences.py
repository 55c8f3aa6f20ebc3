"""Differences between old and new files, for people."""

from __future__ import annotations

import difflib

from orv import _native
from orv.output.folder import shown
from orv.output.plan import PlannedFile, State


def difference(file: PlannedFile, folder: _native.OutputFolder) -> str:
    """A unified difference; a new file differs from /dev/null.

    The line of an edited file's old side says so, and its new side whether that has changed too.
    """
    name = shown(folder, file.path)
    old_name, new_name = name, name
    if file.state is State.NEW:
        old_name = "/dev/null"
    elif file.state is State.EDITED:
        old_name += "\tedited since it was generated"
        new_name += "\tgenerated, " + ("changed" if file.is_regenerated else "as before")
    elif file.state is State.FOREIGN:
        old_name += f'\tmade by the run "{file.owner}"' if file.owner else "\tmade by no run"
    return _unified(folder.read(file.location) or b"", file.data, old_name, new_name)


def removal(location: str, folder: _native.OutputFolder) -> str:
    """The difference of a file that is removed."""
    return _unified(folder.read(location) or b"", b"", shown(folder, location), "/dev/null")


def _unified(old: bytes, new: bytes, old_name: str, new_name: str) -> str:
    lines = difflib.unified_diff(_lines(old), _lines(new), old_name, new_name)
    return "".join(
        line if line.endswith("\n") else f"{line}\n\\ No newline at end of file\n" for line in lines
    )


def _lines(data: bytes) -> list[str]:
    lines = data.decode("utf-8", "surrogateescape").split("\n")
    return [line + "\n" for line in lines[:-1]] + [line for line in lines[-1:] if line]
