"""How the text of files is laid out."""

from __future__ import annotations

from typing import NamedTuple


class Layout(NamedTuple):
    """What a run wants: blank lines between sections or the text as the templates print it."""

    blank_lines: bool = False
