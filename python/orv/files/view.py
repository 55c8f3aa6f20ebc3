"""Files as templates read them."""

from __future__ import annotations

from typing import TYPE_CHECKING

from orv import _native
from orv.errors import OrvError, did_you_mean

if TYPE_CHECKING:
    from orv.files.run import Run


class FileView:
    """One file: its attributes, and the text of its sections, by their names.

    Also `sections`, the names of the sections that it can have, and `functions`, the names of its
    functions.
    """

    __slots__ = ("_run", "_index")

    def __init__(self, run: Run, index: int) -> None:
        self._run = run
        self._index = index

    @property
    def sections(self) -> list[str]:
        """The names of the sections that the file can have."""
        return self._run.repository.section_names(self._index)

    @property
    def functions(self) -> list[str]:
        """The names of the functions in the order they were added."""
        return self._run.function_names(self._index)

    def __getattr__(self, name: str) -> str | bool | list[str]:
        if not name[:1].isupper():
            raise AttributeError(name)
        repository = self._run.repository
        if repository.attribute_kind(name):
            return self._run.attribute(self._index, name)
        if name in _native.SECTION_NAMES:
            return self._run.section_text(self._index, name)
        from orv.files.table import ATTRIBUTES

        raise OrvError(
            f'files have no attribute or section "{name}"'
            + did_you_mean(name, [*ATTRIBUTES, *_native.SECTION_NAMES])
        )

    def __str__(self) -> str:
        return str(self._run.repository.get_attribute(self._index, "Name"))
