"""Records of a command and its runs, by which the next one can tell that nothing has changed."""

from __future__ import annotations

import os
import stat
import sys
from collections import Counter
from collections.abc import Iterator
from typing import Any

from orv import unchanged
from orv.inputs import Inputs
from orv.unchanged import Entry, Signature, digest_of, is_settled, look, signature_of


class Recorder:
    """Makes records of what was found and made, of runs and of their command."""

    def __init__(self) -> None:
        self._places = _Places()
        self._used: dict[str, tuple[Signature, bytes]] = {}

    def record(self, inputs: Inputs) -> dict[str, Any] | None:
        """What must hold for all that is noted to be done again as it was; see unchanged.verified().

        None if that cannot be known.
        """
        if inputs.is_incomplete:
            return None
        try:
            _require_alone(inputs)
            files = dict(self._files(inputs))
        except (OSError, _Unknown):
            return None
        used = [*inputs.cleaned, *(run.folder for run in inputs.ended)]
        used += [os.path.dirname(path) for path in [*files, *inputs.reports]]
        return {
            "since": unchanged.STARTED,
            "files": files,
            "folders": {folder: self._places.real_folder(folder) for folder in used},
            "absent": sorted(inputs.absent),
            "patterns": inputs.patterns,
            "reports": inputs.reports,
            "cleaned": sorted(inputs.cleaned),
            "outputs": sorted({run.folder for run in inputs.ended}),
            "said": "".join(f"{line}\n" for line in inputs.said).encode("utf-8", "surrogateescape"),
        }

    def keep(self, inputs: Inputs, runs: int, printed: str) -> None:
        """Keep a record of a command that went well, unless it may come to something else again.

        `runs` is the number of its runs, `printed` what it prints when nothing has changed.
        """
        record = self.record(inputs) if len(inputs.ended) == runs else None
        programs = programs_of(inputs)
        if record is not None and programs is not None:
            text = printed.encode("utf-8", "surrogateescape")
            unchanged.keep(record | {"programs": programs, "printed": text})

    def _files(self, inputs: Inputs) -> Iterator[tuple[str, Entry]]:
        """What the runs read and made: no file is both, and none is made under two paths."""
        read = dict(inputs.read)
        for path in inputs.used - read.keys():
            read[path] = self._settled(path)
        taken: set[str] = set()
        for path, (signature, digest) in read.items():
            _, real, is_link = self._places.find(path)
            _require(stat.S_ISREG(signature[0]))
            taken.add(real)
            yield path, (signature, digest, real if is_link else "")
        for path, digest in [*inputs.made.items(), *inputs.reports.items()]:
            found, real, is_link = self._places.find(path)
            _require(stat.S_ISREG(found.st_mode) and real not in taken)
            taken.add(real)
            if path not in inputs.reports:
                yield path, (signature_of(found), digest, real if is_link else "")

    def _settled(self, path: str) -> tuple[Signature, bytes]:
        """A file that others have read, which has not changed since the command began."""
        # Reading a device or a pipe may have no end.
        _require(os.path.isfile(path))
        known = self._used.get(path)
        if known is None or signature_of(os.stat(path)) != known[0]:
            signature, data = look(path)
            _require(is_settled(signature, unchanged.STARTED))
            known = self._used[path] = signature, digest_of(data)
        return known


def programs_of(inputs: Inputs) -> dict[str, Signature] | None:
    """The files that this process runs: the interpreter, the modules and the libraries.

    None if one has changed since the command began.
    """
    inputs.note_modules(list(sys.modules))
    with open("/proc/self/maps") as maps:
        mapped = [line.split(maxsplit=5)[5].rstrip("\n") for line in maps if "/" in line]
    paths = [path for path in {*inputs.loaded, *mapped} if os.path.isfile(path)]
    try:
        programs = {path: signature_of(os.stat(path)) for path in paths}
    except OSError:
        return None
    is_known = all(is_settled(found, unchanged.STARTED) for found in programs.values())
    return programs if is_known else None


class _Unknown(Exception):
    """What the command depended on cannot be told from what is there now."""


class _Places:
    """Where files are. Each is looked up once: if it changes later, the record does not hold."""

    def __init__(self) -> None:
        self._folders: dict[str, str] = {}
        self._found: dict[str, tuple[os.stat_result, str, bool]] = {}

    def real_folder(self, folder: str) -> str:
        """The real path of a folder."""
        if folder not in self._folders:
            self._folders[folder] = os.path.realpath(folder)
        return self._folders[folder]

    def find(self, path: str) -> tuple[os.stat_result, str, bool]:
        """The file, its real path, and whether the path is a link to it."""
        if path not in self._found:
            self._found[path] = self._find(path)
        return self._found[path]

    def _find(self, path: str) -> tuple[os.stat_result, str, bool]:
        folder, name = os.path.split(path)
        found, real = os.lstat(path), os.path.join(self.real_folder(folder), name)
        if not stat.S_ISLNK(found.st_mode):
            return found, real, False
        return os.stat(path), os.path.realpath(path), True


def _require_alone(inputs: Inputs) -> None:
    """No run may have changed a folder or a state that another one of the command uses, too."""
    users = Counter(os.path.realpath(path) for run in inputs.ended for path in run[:2] if path)
    for run in inputs.ended:
        if run.is_changed:
            _require(all(users[os.path.realpath(path)] == 1 for path in run[:2] if path))


def _require(is_known: bool) -> None:
    if not is_known:
        raise _Unknown
