"""What a run finds outside of itself, as far as what it makes depends on it."""

from __future__ import annotations

import sys
from collections.abc import Iterable, Iterator
from contextlib import contextmanager
from contextvars import ContextVar
from typing import NamedTuple, TypeVar

from orv.unchanged import Signature, digest_of, look

Value = TypeVar("Value")


class Ended(NamedTuple):
    """A run that has ended: its output folder, its state file if any, and whether they changed."""

    folder: str
    state: str | None
    is_changed: bool


class Inputs:
    """What the runs of a command have looked at, and what they made.

    Paths are as the run uses them.
    """

    def __init__(self) -> None:
        # The signatures and digests of files that were read.
        self.read: dict[str, tuple[Signature, bytes]] = {}
        # Files that others read for the run: imported modules, what extensions and templates name.
        self.used: set[str] = set()
        # Names that would be read if they were there.
        self.absent: set[str] = set()
        # The files that each pattern finds, sorted.
        self.patterns: dict[str, list[str]] = {}
        # The digests of what the runs made, and the contents of the reports beside it.
        self.made: dict[str, bytes] = {}
        self.reports: dict[str, bytes] = {}
        # The folders that leftovers of killed runs were removed from.
        self.cleaned: set[str] = set()
        # The runs that have ended.
        self.ended: list[Ended] = []
        # What was said on the standard error.
        self.said: list[str] = []
        # The files of modules that were loaded for a run.
        self.loaded: set[str] = set()
        # Whether what the runs make or say may depend on more than this.
        self.is_incomplete = False

    def add(self, other: Inputs) -> None:
        """Add what another run has looked at and made, after those that are here."""
        self.is_incomplete |= other.is_incomplete
        for name, values in vars(other).items():
            own = getattr(self, name)
            if isinstance(values, dict):
                for key, value in values.items():
                    self.note(own, key, value)
            elif isinstance(values, set):
                own |= values
            elif isinstance(values, list):
                own += values

    def note(self, table: dict[str, Value], key: str, value: Value) -> None:
        """Add an entry. What is found in two states is in neither of them at the end."""
        self.is_incomplete |= table.setdefault(key, value) != value

    def note_modules(self, names: Iterable[str]) -> None:
        """Add modules that a process has loaded for a run."""
        files = (getattr(sys.modules[name], "__file__", None) for name in names)
        self.loaded.update(file for file in files if file is not None)


_current: ContextVar[Inputs | None] = ContextVar("inputs", default=None)


@contextmanager
def observed() -> Iterator[Inputs]:
    """What the runs look at and make from now on."""
    inputs = Inputs()
    token = _current.set(inputs)
    try:
        yield inputs
    finally:
        _current.reset(token)


def current() -> Inputs:
    """Where to note what the run looks at; it is dropped when nobody observes the run."""
    return _current.get() or Inputs()


def plain(text: str) -> str:
    """The text of a str or a subclass, such as an escaped text, which no record can hold."""
    return str.__str__(text)


def load(path: str) -> bytes:
    """The bytes of a file that the run reads. Raises OSError."""
    signature, data = look(path)
    inputs = _current.get()
    if inputs is not None:
        inputs.note(inputs.read, path, (signature, digest_of(data)))
    return data
