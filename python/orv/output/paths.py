"""Where files go: below the output folder, whatever they are called."""

from __future__ import annotations

import os
import stat
from pathlib import PureWindowsPath

from orv.errors import OutputError

_LONGEST_NAME = 255


class OutputFolder:
    """The folder that everything is written to. It need not exist yet.

    Raises OutputError when there is something else in its place.
    """

    def __init__(self, path: str) -> None:
        self.path = path
        self._real = os.path.realpath(path)
        existing = self._real
        while not os.path.lexists(existing):
            existing = os.path.dirname(existing)
        if not os.path.isdir(existing):
            raise OutputError(f"{existing} is not a folder; nothing can be written below it")

    def shown(self, parts: list[str]) -> str:
        """A path below the folder as messages and listings show it."""
        return os.path.join(self.path, *map(_on_disk, parts))

    def target(self, parts: list[str]) -> str:
        """The place of a file on the disk, links followed.

        Raises OutputError when the way there leaves the folder or meets something in the way.
        """
        current = self._real
        *folders, name = map(_on_disk, parts)
        for part in folders:
            current = self._follow(os.path.join(current, part))
            if os.path.lexists(current) and not os.path.isdir(current):
                raise OutputError(f"{current} is not a folder")
        current = self._follow(os.path.join(current, name))
        if os.path.lexists(current) and not stat.S_ISREG(os.lstat(current).st_mode):
            raise OutputError(f"{current} is there and not a file")
        return current

    def _follow(self, path: str) -> str:
        if not os.path.islink(path):
            return path
        real = os.path.realpath(path)
        if os.path.commonpath([real, self._real]) != self._real:
            raise OutputError(f"the link {path} leads out of the folder {self.path}")
        if os.path.islink(real):
            raise OutputError(f"the link {path} leads to itself")
        return real


def output_parts(directory: str, name: str) -> list[str]:
    """The folders and the name of a file below the output folder.

    Raises OutputError for a path that is absolute, climbs, or that some system could not hold.
    """
    for path in (directory, name):
        if path.startswith("/") or PureWindowsPath(path).drive:
            raise OutputError(
                f'the path "{path}" is absolute; it has to be below the output folder'
            )
    parts = [part for part in f"{directory}/{name}".split("/") if part not in ("", ".")]
    if ".." in parts:
        raise OutputError(f'the path "{"/".join(parts)}" climbs out of its folder')
    if not name or name.endswith("/") or not parts:
        raise OutputError("the file has no name")
    for part in parts:
        if "\\" in part or any(ord(character) < 32 or ord(character) == 127 for character in part):
            raise OutputError(f"the name {part!r} holds a backslash or a control character")
        if len(part.encode("utf-8", "surrogateescape")) > _LONGEST_NAME:
            raise OutputError(f'the name "{part}" is longer than {_LONGEST_NAME} bytes')
    return parts


def _on_disk(part: str) -> str:
    """A name as Python's file functions take it: its bytes are UTF-8 whatever the locale."""
    return os.fsdecode(part.encode("utf-8", "surrogateescape"))
