"""How the text of files is laid out after it was composed."""

from __future__ import annotations

from typing import NamedTuple

from orv.output.formatter import Formatter


class Layout(NamedTuple):
    """What a run wants: blank lines between sections, and a formatter.

    The formatter takes the files whose attribute Indent is true, or every file.
    """

    blank_lines: bool = False
    formatter: Formatter | None = None
    formats_all: bool = False
