"""The arrays of the host that have no counterpart in Python."""

from __future__ import annotations

from collections.abc import Iterable, Sequence
from typing import TYPE_CHECKING, overload

if TYPE_CHECKING:
    from ._native import Object


class StringArray(tuple[str | bytes, ...]):
    """A host string array: a tuple of texts that the host takes for one value.

    >>> StringArray(["<Root>", "<S1>"])
    StringArray(['<Root>', '<S1>'])
    """

    __module__ = "orbel"
    __slots__ = ()

    def __new__(cls, texts: Iterable[str | bytes] = ()) -> StringArray:
        if isinstance(texts, (str, bytes)):
            raise TypeError(f"StringArray needs several texts, but was given one: {texts!r}")
        elements = tuple(texts)
        for number, element in enumerate(elements, start=1):
            if not isinstance(element, (str, bytes)):
                raise TypeError(
                    f"element {number} of a StringArray must be a str or bytes, "
                    f"but is a {type(element).__name__}"
                )
        return tuple.__new__(cls, elements)

    def __repr__(self) -> str:
        return f"StringArray({list(self)!r})"


class ObjectArray(Sequence["Object"]):
    """A row of host objects, as the host hands them out; it cannot be changed.

    Equal to any sequence of equal objects.
    """

    __module__ = "orbel"
    __slots__ = ("_class_name", "_shape", "_heterogeneous", "_elements")

    def __init__(
        self,
        class_name: str,
        shape: tuple[int, int],
        heterogeneous: bool,
        elements: tuple[Object, ...],
    ) -> None:
        self._class_name = class_name
        self._shape = shape
        self._heterogeneous = heterogeneous
        self._elements = elements

    @property
    def class_name(self) -> str:
        """The declared class of the elements: ``"Package.Class"``."""
        return self._class_name

    @property
    def shape(self) -> tuple[int, int]:
        """The numbers of rows and columns: ``(1, len(array))``."""
        return self._shape

    @property
    def heterogeneous(self) -> bool:
        """Whether elements may be of different subclasses of the declared class."""
        return self._heterogeneous

    def __len__(self) -> int:
        return len(self._elements)

    @overload
    def __getitem__(self, index: int) -> Object:
        ...

    @overload
    def __getitem__(self, index: slice) -> Sequence[Object]:
        ...

    def __getitem__(self, index: int | slice) -> Object | Sequence[Object]:
        return self._elements[index]

    def __eq__(self, other: object) -> bool:
        if isinstance(other, ObjectArray):
            return self._elements == other._elements
        if isinstance(other, Sequence):
            return len(self) == len(other) and self._elements == tuple(other)
        return NotImplemented

    def __hash__(self) -> int:
        return hash(self._elements)

    def __repr__(self) -> str:
        rows, columns = self._shape
        elements = ", ".join(map(repr, self._elements))
        return f"<{rows}x{columns} {self._class_name} [{elements}]>"
