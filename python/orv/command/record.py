"""The record of a command, by which the next one can tell that nothing has changed."""

from __future__ import annotations

import os
import stat
import sys
from collections import Counter
from collections.abc import Iterator

from orv import unchanged
from orv.inputs import Inputs
from orv.unchanged import Entry, Signature, digest_of, is_settled, keep, look, signature_of


def record(inputs: Inputs, runs: int, printed: str) -> None:
    """Keep a record of a command that went well, unless it may come to something else again.

    `runs` is the number of its runs, `printed` what it prints when nothing has changed.
    """
    if inputs.is_incomplete or len(inputs.ended) != runs:
        return
    places = _Places()
    try:
        _require_alone(inputs)
        files = dict(_files(inputs, places))
        programs = dict(_programs(inputs))
    except (OSError, _Unknown):
        return
    for folder in [*inputs.cleaned, *(run.folder for run in inputs.ended)]:
        places.real_folder(folder)
    keep(
        {
            "since": unchanged.STARTED,
            "files": files,
            "programs": programs,
            "folders": places.folders,
            "absent": sorted(inputs.absent),
            "patterns": inputs.patterns,
            "reports": inputs.reports,
            "cleaned": sorted(inputs.cleaned),
            "outputs": sorted({run.folder for run in inputs.ended}),
            "said": "".join(f"{line}\n" for line in inputs.said).encode("utf-8", "surrogateescape"),
            "printed": printed.encode("utf-8", "surrogateescape"),
        }
    )


class _Unknown(Exception):
    """What the command depended on cannot be told from what is there now."""


class _Places:
    """The real paths of files. Those of folders are looked up once."""

    def __init__(self) -> None:
        self.folders: dict[str, str] = {}

    def real_folder(self, folder: str) -> str:
        if folder not in self.folders:
            self.folders[folder] = os.path.realpath(folder)
        return self.folders[folder]

    def find(self, path: str) -> tuple[os.stat_result, str, bool]:
        """The file, its real path, and whether the path is a link to it."""
        folder, name = os.path.split(path)
        found, real = os.lstat(path), os.path.join(self.real_folder(folder or "."), name)
        if not stat.S_ISLNK(found.st_mode):
            return found, real, False
        return os.stat(path), os.path.realpath(path), True


def _require_alone(inputs: Inputs) -> None:
    """No run may have changed a folder or a state that another one of the command uses, too."""
    users = Counter(os.path.realpath(path) for run in inputs.ended for path in run[:2] if path)
    for run in inputs.ended:
        if run.is_changed:
            _require(all(users[os.path.realpath(path)] == 1 for path in run[:2] if path))


def _files(inputs: Inputs, places: _Places) -> Iterator[tuple[str, Entry]]:
    """What the runs read and made: no file is both, and none is made under two paths."""
    read = dict(inputs.read)
    for path in inputs.used - read.keys():
        # Reading a device or a pipe may have no end.
        _require(os.path.isfile(path))
        signature, data = look(path)
        _require(is_settled(signature, unchanged.STARTED))
        read[path] = signature, digest_of(data)
    taken: set[str] = set()
    for path, (signature, digest) in read.items():
        _, real, is_link = places.find(path)
        _require(stat.S_ISREG(signature[0]))
        taken.add(real)
        yield path, (signature, digest, real if is_link else "")
    for path, digest in [*inputs.made.items(), *inputs.reports.items()]:
        found, real, is_link = places.find(path)
        _require(stat.S_ISREG(found.st_mode) and real not in taken)
        taken.add(real)
        if path not in inputs.reports:
            yield path, (signature_of(found), digest, real if is_link else "")


def _programs(inputs: Inputs) -> Iterator[tuple[str, Signature]]:
    """The files that this process runs: the interpreter, the modules and the libraries."""
    inputs.note_modules(list(sys.modules))
    with open("/proc/self/maps") as maps:
        mapped = [line.split(maxsplit=5)[5].rstrip("\n") for line in maps if "/" in line]
    for path in {*inputs.loaded, *mapped}:
        if os.path.isfile(path):
            signature = signature_of(os.stat(path))
            _require(is_settled(signature, unchanged.STARTED))
            yield path, signature


def _require(is_known: bool) -> None:
    if not is_known:
        raise _Unknown
