"""Which runs wait for which, so that doing several at once makes what one after the other makes."""

from __future__ import annotations

import os
from collections.abc import Iterable, Sequence
from functools import lru_cache
from typing import NamedTuple


class Touched(NamedTuple):
    """The files and folders that a run is told to read, and those that it is told to write."""

    read: Sequence[str]
    written: Sequence[str]


def waits(runs: Iterable[Touched]) -> list[int]:
    """For each run the number of runs, from the first on, that must end before it begins.

    A run waits for those before it that write what it reads or writes, or read what it writes: the
    same path, or a folder above it.
    """
    order = _Order()
    return [order.add(number, run) for number, run in enumerate(runs, 1)]


class _Order:
    """The last run that writes a path, and that reads or writes something at or below it."""

    def __init__(self) -> None:
        self._written: dict[str, int] = {}
        self._touched_below: dict[str, int] = {}

    def add(self, number: int, run: Touched) -> int:
        """Add a run. Returns the number of the last one that it waits for, or 0."""
        read = [_folders_and(path) for path in run.read]
        written = [_folders_and(path) for path in run.written]
        found = [self._written.get(path, 0) for paths in read + written for path in paths]
        found += [self._touched_below.get(paths[0], 0) for paths in written]
        for paths in read + written:
            self._touched_below.update(dict.fromkeys(paths, number))
        self._written.update({paths[0]: number for paths in written})
        return max(found, default=0)


@lru_cache(maxsize=10_000)
def _folders_and(path: str) -> tuple[str, ...]:
    """The real path and the folders above it, from the innermost."""
    return _real_folders_and(os.path.realpath(path))


@lru_cache(maxsize=10_000)
def _real_folders_and(path: str) -> tuple[str, ...]:
    folder = os.path.dirname(path)
    return (path,) if folder == path else (path, *_real_folders_and(folder))
