"""The state file: what the runs of an output folder made, so that the next run knows its own."""

from __future__ import annotations

import json
import os
from collections.abc import Mapping
from dataclasses import dataclass, field
from types import MappingProxyType
from typing import Any, NamedTuple

from orv import _native, inputs
from orv.errors import OrvError, OutputError
from orv.output.folder import open_folder, reason, shown
from orv.output.plan import folders_of
from orv.unchanged import digest_of

STATE_FILE = ".orv-state.json"
_KIND = "orv output state"
_FORMAT = 1


class Record(NamedTuple):
    """A file as it was generated.

    `hash` is that of its text without the user regions, which are between `markers`. `regions` has
    the hash of the default text of each.
    """

    hash: str
    regions: Mapping[str, str] = MappingProxyType({})
    markers: str = ""


class Change(NamedTuple):
    """What a run is about to do to a file: None is a file that is not there."""

    old: str | None
    new: Record | None


@dataclass
class FolderState:
    """The files of each run by its name, by their location; a run without a name is "".

    `folders` were made by runs. `intent` is what the run `intent_run` is about to write, and empty
    once it has written all. `was_interrupted` says that the file on the disk has an intent.
    """

    runs: dict[str, dict[str, Record]] = field(default_factory=dict)
    folders: set[str] = field(default_factory=set)
    intent: dict[str, Change] = field(default_factory=dict)
    intent_run: str = ""
    was_interrupted: bool = field(default=False, compare=False)

    def owners(self, location: str) -> list[str]:
        """The names of the runs that made a file, sorted."""
        return sorted(name for name, files in self.runs.items() if location in files)

    def records(self, location: str) -> list[Record]:
        """What the runs that made a file know of it."""
        return [files[location] for files in self.runs.values() if location in files]

    def markers(self) -> dict[str, str]:
        """The markers of the files that have user regions, by location."""
        known = (item for files in self.runs.values() for item in files.items())
        return {location: record.markers for location, record in known if record.markers}

    def disown(self, location: str, keep: str) -> None:
        """Take a file from all runs but `keep`."""
        for name, files in self.runs.items():
            if name != keep:
                files.pop(location, None)

    def keep_folders_of_files(self) -> None:
        """Forget the folders that no file of a run is in."""
        if self.folders:
            paths = {path for files in self.runs.values() for path in files}
            self.folders &= {folder for path in paths for folder in folders_of(path)}

    def copy(self) -> FolderState:
        """An independent copy."""
        runs = {name: dict(files) for name, files in self.runs.items()}
        return FolderState(runs, set(self.folders), dict(self.intent), self.intent_run)


class StateFile:
    """Where the state of an output folder is kept: in the folder itself, or at `path`."""

    def __init__(self, folder: _native.OutputFolder, path: str | None, durable: bool) -> None:
        self._folder, self._location = folder, STATE_FILE
        if path is not None:
            directory, name = os.path.split(os.path.realpath(path))
            self._folder = open_folder(directory, durable)
            self._location = os.fsencode(name).decode("utf-8", "surrogateescape")
        self.shown = path or shown(folder, STATE_FILE)
        self._path = path or self.real_path

    @property
    def real_path(self) -> str:
        """The full path of the file."""
        name = os.fsdecode(self._location.encode("utf-8", "surrogateescape"))
        return os.path.join(self._folder.real, name)

    def load(self, folder: _native.OutputFolder) -> FolderState:
        """The state of `folder`, which a run that was killed may have left behind.

        Raises OutputError for a file that cannot be used, with a way out.
        """
        try:
            data = self._folder.read(self._location)
        except OSError as error:
            raise OutputError(f"{self.shown} cannot be read: {reason(error)}") from error
        self._note(data)
        state = FolderState() if data is None else self._parsed(data)
        _recover(state, folder)
        return state

    def save(self, state: FolderState) -> None:
        """Write the state in one step. Raises OutputError."""
        data = _rendered(state)
        try:
            self._folder.create()
            self._folder.remove_abandoned("")
            self._folder.replace(self._location, data, None)
            self._folder.sync()
        except OSError as error:
            raise OutputError(f"{self.shown} cannot be written: {reason(error)}") from error
        self._note(data)

    def _note(self, data: bytes | None) -> None:
        """Note what the disk has now. The state is no input of the run that keeps it."""
        if data is None:
            inputs.current().absent.add(self._path)
        else:
            inputs.current().absent.discard(self._path)
            inputs.current().made[self._path] = digest_of(data)

    def _parsed(self, data: bytes) -> FolderState:
        again = "or remove it and run with --adopt to write over the files that are there"
        try:
            value = json.loads(data)
        except (ValueError, RecursionError) as error:
            raise OutputError(f"{self.shown} is damaged: {error}; restore it, {again}") from error
        if not isinstance(value, dict) or value.get("kind") != _KIND:
            raise OutputError(
                f"{self.shown} is not a state file of orv; --state=FILE keeps the state elsewhere,"
                " --no-state does without"
            )
        if value.get("format") != _FORMAT:
            raise OutputError(
                f"{self.shown} has the format {value.get('format')!r}, which this version does not"
                f" know; use the version that wrote it, {again}"
            )
        try:
            return _state(value)
        except (AttributeError, KeyError, TypeError) as error:
            raise OutputError(
                f"{self.shown} is damaged: it lacks what a state holds; restore it, {again}"
            ) from error
        except (ValueError, OutputError) as error:
            raise OutputError(f"{self.shown} is damaged: {error}; restore it, {again}") from error


def compare_with_record(
    folder: _native.OutputFolder, location: str, record: Record | None
) -> _native.Comparison:
    """Read a file on the disk, with the user regions that it should have by the record.

    Raises OSError, and OrvError when it cannot be read or its regions are damaged.
    """
    markers = _native.Markers(record.markers) if record is not None and record.markers else None
    return folder.compare(location, b"", _native.Regions(), markers)


def _recover(state: FolderState, folder: _native.OutputFolder) -> None:
    """Find out how far a run came that was killed while it wrote."""
    files = state.runs.setdefault(state.intent_run, {}) if state.intent else {}
    for location, (old, new) in state.intent.items():
        try:
            found = compare_with_record(folder, location, new)
        except (OSError, OrvError):
            continue
        if new is None and not found.exists:
            files.pop(location, None)
        elif new is not None and found.exists and found.hash == new.hash:
            files[location] = new
            if old is not None:
                state.disown(location, state.intent_run)
    state.was_interrupted = bool(state.intent)
    state.intent.clear()
    state.intent_run = ""


def _state(value: dict[str, Any]) -> FolderState:
    state = FolderState()
    state.folders = set(map(_checked, value["folders"]))
    for name, run in value["runs"].items():
        files = run["files"].items()
        state.runs[name] = {_checked(path): _record(record) for path, record in files}
    intent = value.get("intent", {"files": {}, "run": ""})
    state.intent_run = _text(intent["run"])
    for path, change in intent["files"].items():
        old, new = change["old"], change["new"]
        state.intent[_checked(path)] = Change(
            None if old is None else _text(old), None if new is None else _record(new)
        )
    return state


def _record(value: dict[str, Any]) -> Record:
    hash = _text(value["hash"])
    if len(value) == 1:
        return Record(hash)
    regions = {id: _text(hash) for id, hash in value.get("regions", {}).items()}
    markers = _text(value.get("markers", ""))
    if markers:
        _native.Markers(markers)
    return Record(hash, regions, markers)


def _checked(path: object) -> str:
    text = _text(path)
    if _native.output_path("", text) != text:
        raise ValueError(f"the path {text!r} is not one that a run writes")
    return text


def _text(value: object) -> str:
    if not isinstance(value, str):
        raise ValueError(f"expected a text, got {value!r}")
    return value


def _rendered(state: FolderState) -> bytes:
    """JSON with one line for each file, sorted: made for people and version control systems."""
    runs = {name: _table({"files": _table(_lines(files), 3)}, 2)
            for name, files in state.runs.items() if files}  # fmt: skip
    rows = {
        "folders": _list(sorted(state.folders)),
        "format": str(_FORMAT),
        "kind": json.dumps(_KIND),
        "runs": _table(runs, 1),
    }
    if state.intent:
        changes = {
            path: json.dumps({"new": change.new and _plain(change.new), "old": change.old})
            for path, change in state.intent.items()
        }
        intent = {"files": _table(changes, 2), "run": json.dumps(state.intent_run)}
        rows["intent"] = _table(intent, 1)
    return (_table(rows, 0) + "\n").encode()


def _lines(files: Mapping[str, Record]) -> dict[str, str]:
    return {path: json.dumps(_plain(record), sort_keys=True) for path, record in files.items()}


def _plain(record: Record) -> dict[str, object]:
    plain: dict[str, object] = {"hash": record.hash}
    if record.markers:
        plain["markers"] = record.markers
    if record.regions:
        plain["regions"] = dict(record.regions)
    return plain


def _table(rows: Mapping[str, str], depth: int) -> str:
    indent = "  " * depth
    lines = [f"{indent}  {json.dumps(name)}: {value}" for name, value in sorted(rows.items())]
    return "{\n" + ",\n".join(lines) + f"\n{indent}}}" if lines else "{}"


def _list(values: list[str]) -> str:
    lines = [f"    {json.dumps(value)}" for value in values]
    return "[\n" + ",\n".join(lines) + "\n  ]" if lines else "[]"
