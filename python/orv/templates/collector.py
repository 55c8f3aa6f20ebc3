"""Lists and dictionaries that a template can grow."""

from __future__ import annotations

from collections.abc import Iterable, Iterator
from typing import Any

from orv.errors import OrvError
from orv.templates.cfilters import described

# The most values that one collector takes.
_MOST_VALUES = 1 << 24

_KEYS = (str, int, float, type(None))


class Collector:
    """A list that grows by `add`, or a dictionary that grows by `put`, in constant time each.

    The first call decides which of both it is. Both give "", so that a template may print them.
    Nothing is taken out again, and growing ends an iteration that is under way with an error.
    """

    __slots__ = ("_values",)

    def __init__(self) -> None:
        self._values: list[object] | dict[Any, object] | None = None

    def add(self, value: object) -> str:
        """Add a value at the end of the list."""
        if self._values is None:
            self._values = []
        if not isinstance(self._values, list):
            raise OrvError("the collector has been filled with put; add is for lists")
        self._require_room()
        self._values.append(value)
        return ""

    def put(self, key: object, value: object) -> str:
        """Set the value of a key, which is a text or a number."""
        if self._values is None:
            self._values = {}
        if not isinstance(self._values, dict):
            raise OrvError("the collector has been filled with add; put is for dictionaries")
        if not isinstance(key, _KEYS):
            raise OrvError(f"put expects a text or a number as key, got {described(key)}")
        self._require_room()
        self._values[key] = value
        return ""

    def get(self, key: object, default: object = None) -> object:
        """The value of a key, or `default`."""
        return self._entries().get(key, default)

    def items(self) -> Iterator[tuple[object, object]]:
        """The keys with their values, in the order they were put."""
        return self._watched(self._entries().items())

    def keys(self) -> Iterator[object]:
        """The keys, in the order they were put."""
        return iter(self)

    def values(self) -> Iterator[object]:
        """The values, in the order they were put."""
        return self._watched(self._entries().values())

    def __iter__(self) -> Iterator[object]:
        return self._watched(self._values or ())

    def __len__(self) -> int:
        return len(self._values or ())

    def __contains__(self, value: object) -> bool:
        return value in (self._values or ())

    def __getitem__(self, key: Any) -> object:
        if self._values is None:
            raise KeyError(key)
        return self._values[key]

    def _entries(self) -> dict[Any, object]:
        if isinstance(self._values, list):
            raise OrvError("the collector has been filled with add; it has values and no keys")
        return self._values or {}

    def _require_room(self) -> None:
        if len(self) >= _MOST_VALUES:
            raise OrvError(f"a collector takes up to {_MOST_VALUES:,} values")

    def _watched(self, values: Iterable[Any]) -> Iterator[Any]:
        count = len(self)
        for value in values:
            yield value
            if len(self) != count:
                raise OrvError("the collector grew while a loop went over it")
