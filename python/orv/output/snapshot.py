"""A rendered run as data: what another process needs of it to plan and write its files."""

from __future__ import annotations

from collections.abc import Callable, Mapping, Sequence
from dataclasses import dataclass, replace
from typing import Any, NamedTuple

from orv import _native
from orv.errors import Messages
from orv.files.regions import Question, Texts
from orv.files.run import Run
from orv.files.table import FileRecord
from orv.output.manifest import describe
from orv.output.plan import PlannedFile, State
from orv.positions import Position
from orv.templates.printable import refuse_outside, text_of

# What planning and writing ask of a file.
_ATTRIBUTES = ("BaseName", "Type", "Indent", "RequiredIncludes", "UtilityIncludes")


@dataclass
class _FileSnapshot:
    """A file: its name and attributes, what templates said of it, and what was composed."""

    name: str
    attributes: dict[str, Any]
    record: FileRecord | None
    regions: dict[str, Position]
    path: str
    composed: _native.ComposedFile | None
    own_name: str
    markers: str
    description: dict[str, object] | None


@dataclass
class Snapshot:
    """A run whose files are composed, as data."""

    model_name: str
    files: list[_FileSnapshot]
    dependencies: list[str]
    questions: list[Question]
    trace: bytes
    texts: Mapping[str, Texts] | None


def snapshot(
    run: Run, files: Sequence[PlannedFile], described: bool, path_of: Callable[[str], str]
) -> Snapshot:
    """The data of a run and of its composed files, with the manifest's entries if `described`.

    It has no trace; that can be added, see Composed. `path_of` gives what a path of this process is
    called in the one that asked.
    """

    def moved(position: Position) -> Position:
        return position._replace(template=path_of(position.template))

    def taken(file: PlannedFile) -> _FileSnapshot:
        index = file.index
        record = run.files.record(index)
        return _FileSnapshot(
            str(run.repository.get_attribute(index, "Name")),
            {name: run.repository.get_attribute(index, name) for name in _ATTRIBUTES},
            record and replace(record, declared=moved(record.declared)),
            {id: moved(place) for id, place in run.regions.positions(index).items()},
            file.path,
            file.composed,
            file.own_name,
            file.markers.pattern if file.markers is not None else "",
            describe(run, file) if described else None,
        )

    questions = [entry._replace(position=moved(entry.position)) for entry in run.regions.questions]
    dependencies = [path_of(path) for path in run.dependencies]
    model = run.repository.model_name
    return Snapshot(model, [*map(taken, files)], dependencies, questions, b"", None)


class Composed(NamedTuple):
    """The files of a run that another process has rendered and composed.

    `descriptions` are the manifest's entries of the files, if there is to be one, and `trace` the
    bytes of the trace file. That is true if user regions have the texts `texts`, by the labels of
    their files; None without a trace.
    """

    files: list[PlannedFile]
    descriptions: list[dict[str, object]]
    trace: bytes
    texts: Mapping[str, Texts] | None


def restored(data: Snapshot, messages: Messages) -> tuple[Run, Composed]:
    """A run with the files of a snapshot, as far as planning and writing ask for them."""
    run = Run(messages, text_of, refuse_outside)
    run.repository.model_name = data.model_name
    run.dependencies = data.dependencies
    run.regions.questions = data.questions
    for file in data.files:
        index = run.repository.create_generic(file.name)
        for name, value in file.attributes.items():
            for element in value if isinstance(value, list) else [value]:
                run.repository.set_attribute(index, name, element)
        run.files.restore(index, file.record)
        run.regions.restore(index, file.regions)
    files = [_planned(index, file) for index, file in enumerate(data.files)]
    descriptions = [file.description for file in data.files if file.description is not None]
    return run, Composed(files, descriptions, data.trace, data.texts)


def _planned(index: int, file: _FileSnapshot) -> PlannedFile:
    planned = PlannedFile(index, file.path, file.composed, own_name=file.own_name)
    if file.composed is not None:
        planned.state = State.NEW
        planned.markers = _native.Markers(file.markers)
        planned.regions = planned.markers.find(file.composed)
    return planned
