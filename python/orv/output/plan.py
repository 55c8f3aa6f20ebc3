"""What the disk will hold after a run, and how that compares with what it holds."""

from __future__ import annotations

import os
from collections.abc import Iterator
from dataclasses import dataclass
from enum import Enum
from typing import TYPE_CHECKING

from orv import _native
from orv.errors import OutputError
from orv.files.run import Run
from orv.files.table import FileShape
from orv.output.folder import reason, shown
from orv.output.layout import Layout

if TYPE_CHECKING:
    from orv.output.formatter import Formatter


class State(Enum):
    """How a file of the run compares with the disk."""

    NEW = "new"
    CHANGED = "changed"
    SAME = "same"
    EMPTY = "empty"
    # It differs from both what was generated last and what is generated now.
    EDITED = "edited"
    # Another run made it, or none.
    FOREIGN = "foreign"


@dataclass
class PlannedFile:
    """A file of the run and its bytes. An empty file has none and is not written.

    `path` is below the output folder and the same in any locale; `location` is where links inside
    the folder lead it, and the file's identity. `old_hash` is that of the text on the disk. `owner`
    is the run that made a foreign file; None when no run did. `is_regenerated` says of an edited
    file that it is generated with another text than before. `formatted` is what a formatter made of
    the composed text.
    """

    index: int
    path: str
    composed: _native.ComposedFile | None = None
    state: State = State.EMPTY
    location: str = ""
    old_hash: str = ""
    owner: str | None = None
    is_regenerated: bool = False
    formatted: bytes | None = None

    @property
    def differs(self) -> bool:
        """Whether the disk holds something else than the file."""
        return self.state not in (State.SAME, State.EMPTY)

    @property
    def is_written(self) -> bool:
        """Whether the run writes the file."""
        return self.state in (State.NEW, State.CHANGED)

    @property
    def is_empty(self) -> bool:
        """Whether the file is left out because nothing was put into it."""
        return self.composed is None

    @property
    def buffer(self) -> _native.ComposedFile | bytes:
        """The file's bytes, not copied."""
        if self.formatted is not None:
            return self.formatted
        return b"" if self.composed is None else self.composed

    @property
    def data(self) -> bytes:
        """A copy of the file's bytes."""
        return bytes(self.buffer)


class Plan(list[PlannedFile]):
    """The files of a run in the order of the repository, and the folder that they belong to."""

    def __init__(self, folder: _native.OutputFolder) -> None:
        super().__init__()
        self.folder = folder


def plan(run: Run, folder: _native.OutputFolder, layout: Layout = Layout()) -> Plan:
    """Work out what has to be written, in the order of the repository. Changes nothing.

    Paths that differ only in letter case are warned about. Raises OutputError, with the file and
    where it was declared, when a file cannot go where it belongs.
    """
    planned = Plan(folder)
    folded: dict[str, PlannedFile] = {}
    for index in range(len(run.repository)):
        if run.repository.get_attribute(index, "IsEmpty"):
            planned.append(PlannedFile(index, _text(run, index, "Name")))
            continue
        try:
            file = _composed(run, index, layout)
        except OutputError as error:
            raise _located(run, index, error) from error
        planned.append(file)
        _report_clash(file, folded.setdefault(file.path.casefold(), file), run)
    if layout.formatter is not None:
        _format(planned, run, layout.formatter, layout.formats_all)
    compare(planned, run)
    return planned


def compare(files: Plan, run: Run) -> None:
    """Compare the files with the disk once more: others may have changed it."""
    owners: dict[str, int] = {}
    for file in files:
        if file.is_empty:
            continue
        try:
            _compare_file(file, files.folder)
            _claim(file.location, file.index, owners, run)
        except OutputError as error:
            raise _located(run, file.index, error) from error
    _refuse_files_as_folders(owners, run)


def shown_paths(files: Plan) -> list[str]:
    """The paths of the files that have text, sorted, as messages show them."""
    return sorted(shown(files.folder, file.path) for file in files if not file.is_empty)


def real_path(folder: _native.OutputFolder, location: str) -> str:
    """The full path of a file, as Python's file functions take it."""
    return os.path.join(folder.real, os.fsdecode(location.encode("utf-8", "surrogateescape")))


def folders_of(location: str) -> Iterator[str]:
    """The folders below the output folder that a file is in, the innermost first."""
    folder = os.path.dirname(location)
    while folder:
        yield folder
        folder = os.path.dirname(folder)


def _composed(run: Run, index: int, layout: Layout) -> PlannedFile:
    path = _native.output_path(_text(run, index, "OutputDirectory"), _disk_name(run, index))
    return PlannedFile(index, path, _compose(run, index, path, layout), State.NEW)


def _compose(run: Run, index: int, path: str, layout: Layout) -> _native.ComposedFile:
    record = run.files.record(index)
    shape = FileShape() if record is None else record.shape
    try:
        return run.repository.compose(
            index, shape.order, layout.blank_lines, shape.guard, layout.guard, path, shape.extern_c
        )
    except ValueError as error:
        raise OutputError(str(error)) from error


def _format(files: Plan, run: Run, formatter: Formatter, formats_all: bool) -> None:
    """Format the files that ask for it; style files become dependencies of the run."""
    chosen = [
        file
        for file in files
        if not file.is_empty and (formats_all or run.repository.get_attribute(file.index, "Indent"))
    ]
    paths = [real_path(files.folder, file.path) for file in chosen]
    results = formatter.format(
        [(path, bytes(file.buffer)) for path, file in zip(paths, chosen, strict=True)]
    )
    run.dependencies += formatter.style_files(paths)
    failed = [
        str(_located(run, file.index, result))
        for file, result in zip(chosen, results, strict=True)
        if isinstance(result, OutputError)
    ]
    if failed:
        raise OutputError("\n".join(failed))
    for file, result in zip(chosen, results, strict=True):
        if isinstance(result, bytes):
            file.formatted = result


def _compare_file(file: PlannedFile, folder: _native.OutputFolder) -> None:
    try:
        file.location = folder.locate(file.path)
        old = folder.compare(file.location, file.buffer)
    except OSError as error:
        raise OutputError(f"{shown(folder, file.path)} cannot be read: {reason(error)}") from error
    file.state = State.NEW if not old.exists else State.SAME if old.same else State.CHANGED
    file.old_hash = old.hash


def _located(run: Run, index: int, error: OutputError) -> OutputError:
    return OutputError(f"{run.files.place(index)}the file {run.files.label(index)}: {error}")


def _disk_name(run: Run, index: int) -> str:
    """The file's name; for one without a name, its BaseName with the ending of its kind."""
    name = _text(run, index, "Name")
    base = _text(run, index, "BaseName")
    if name:
        return name
    if not base:
        raise OutputError("it has no name to be written under; give it a BaseName")
    return base + (".h" if run.repository.is_header(index) else ".c")


def _claim(location: str, index: int, owners: dict[str, int], run: Run) -> None:
    if location in owners:
        other = owners[location]
        place = run.files.place(other).removesuffix(": ")
        where = f", declared at {place}," if place else ""
        raise OutputError(f"the file {run.files.label(other)}{where} is written to the same path")
    owners[location] = index


def _report_clash(file: PlannedFile, other: PlannedFile, run: Run) -> None:
    if file.path == other.path or _names_clash(file, other, run):
        return
    declared = run.files.place(other.index).removesuffix(": ")
    where = f", declared at {declared}" if declared else ""
    run.messages.warn(
        f'the path "{file.path}" differs only in letter case from "{other.path}"{where};'
        " some file systems cannot hold both",
        run.files.place(file.index).removesuffix(": ") or None,
    )


def _names_clash(file: PlannedFile, other: PlannedFile, run: Run) -> bool:
    """Whether the names alone differ in the case of ASCII letters, which is reported earlier."""
    names = [_text(run, planned.index, "Name") for planned in (file, other)]
    folded = {name.encode("utf-8", "surrogateescape").lower() for name in names}
    return names[0] != names[1] and len(folded) == 1


def _refuse_files_as_folders(owners: dict[str, int], run: Run) -> None:
    for location, index in owners.items():
        for parent in folders_of(location):
            if parent in owners:
                raise OutputError(
                    f"{run.files.place(index)}the file {run.files.label(index)} is below"
                    f" {run.files.label(owners[parent])}, which is a file and not a folder"
                )


def _text(run: Run, index: int, attribute: str) -> str:
    return str(run.repository.get_attribute(index, attribute))
