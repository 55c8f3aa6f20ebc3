"""How the text of files is laid out after it was composed."""

from __future__ import annotations

from typing import TYPE_CHECKING, NamedTuple

if TYPE_CHECKING:
    from orv.output.formatter import Formatter


class Layout(NamedTuple):
    """What a run wants: blank lines between sections, a formatter, guards, #line directives.

    The formatter takes the files whose attribute Indent is true, or every file. `guard` is
    "pragma", a macro with {PATH} in it, or empty for none. `line_directives` is what the names of
    templates begin with in directives, empty for names that are relative to the file, and None for
    no directives; only a run that is traced can have any.
    """

    blank_lines: bool = False
    formatter: Formatter | None = None
    formats_all: bool = False
    guard: str = ""
    line_directives: str | None = None
