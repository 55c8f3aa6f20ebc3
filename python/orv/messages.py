"""Where a run's warnings go."""

from __future__ import annotations

from collections.abc import Callable

from orv.errors import OrvError


def ignore(_: str) -> None:
    """A listener that drops what it hears."""


class Messages:
    """Hands warnings to a listener or, when the run is strict, makes errors of them."""

    def __init__(self, listener: Callable[[str], None] = ignore, strict: bool = False) -> None:
        self._listener = listener
        self.strict = strict

    def warn(self, text: str, place: object | None = None) -> None:
        """Report `text`, about what stands at `place` (None: the place is found by the caller)."""
        if self.strict:
            raise OrvError(text) if place is None else Located(f"{place}: {text}")
        self._listener(text if place is None else f"{place}: {text}")


class Located(OrvError):
    """An error whose text already says where."""
