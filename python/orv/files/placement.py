"""Custom sections placed by the templates: their text is put in when all of it is known.

A template that places a custom section prints a mark. Text with a mark in it, and whatever follows
in the same section, waits here until rendering is over.
"""

from __future__ import annotations

import re
from typing import NamedTuple

from orv.errors import OrvError
from orv.templates.positions import Position, here

_MARK = re.compile("\0([0-9]{1,9})\0")


class Placement(NamedTuple):
    """The place of the custom section `name` of the file `file`."""

    file: int
    name: str
    position: Position


class WaitingText(NamedTuple):
    """Text for a section of a file, or the body of the function `function` in it."""

    file: int
    section: str
    text: str
    function: str | None
    position: Position


class Placements:
    """The marks that were printed, and the text that waits for them, in the order it came."""

    def __init__(self) -> None:
        self.waiting: list[WaitingText] = []
        self._placements: list[Placement] = []

    def mark(self, file: int, name: str) -> str:
        """A text that stands for the custom section from now on."""
        self._placements.append(Placement(file, name, here()))
        return f"\0{len(self._placements) - 1}\0"

    def wait(self, file: int, section: str, text: str, function: str | None) -> None:
        """Keep the text for later. Raises OrvError for a NUL that is not part of a mark."""
        if any(isinstance(piece, str) and "\0" in piece for piece in self.split(text)):
            raise OrvError("the text holds a NUL character, which no file of text can hold")
        self.waiting.append(WaitingText(file, section, text, function, here()))

    def split(self, text: str) -> list[str | Placement]:
        """The pieces of a text with marks, in order."""
        pieces: list[str | Placement] = []
        end = 0
        for mark in _MARK.finditer(text):
            if int(mark[1]) < len(self._placements):
                pieces += [text[end : mark.start()], self._placements[int(mark[1])]]
                end = mark.end()
        pieces.append(text[end:])
        return pieces

    def readable(self, text: str) -> str:
        """The text as a message shows it: marks by the names they stand for."""
        return "".join(
            piece if isinstance(piece, str) else f'{{% place "{piece.name}" %}}'
            for piece in self.split(text)
        )
