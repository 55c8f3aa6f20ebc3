"""What the disk will hold after a run, and how that compares with what it holds."""

from __future__ import annotations

import os
from collections.abc import Iterator, Mapping, Sequence
from dataclasses import dataclass, field
from enum import Enum
from types import MappingProxyType
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

    `regions` are the user regions of the file as it is composed and formatted, between `markers`,
    and `kept` those on the disk, between `old_markers`. `merged` is the text with what is kept of
    them. `texts` are those that are kept, by identifier, in a file that is not the same; `returns`
    says that the line ends of the file are CR LF.
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
    markers: _native.Markers | None = None
    old_markers: _native.Markers | None = None
    regions: _native.Regions = _native.Regions()
    kept: Sequence[_native.KeptRegion] = ()
    texts: dict[str, bytes] = field(default_factory=dict)
    returns: bool = False
    merged: bytes | None = None
    # What #line directives call the file; empty without directives.
    own_name: str = ""

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
        return self.base if self.merged is None else self.merged

    @property
    def base(self) -> _native.ComposedFile | bytes:
        """The file's bytes with the default texts of its regions."""
        if self.formatted is not None:
            return self.formatted
        return b"" if self.composed is None else self.composed

    @property
    def hash(self) -> str:
        """The hash of the file's text without that of its regions."""
        if self.own_name and self.merged is not None and self.markers is not None:
            return _native.frame_hash(self.merged, self.markers.find(self.merged))
        return _native.frame_hash(self.base, self.regions)

    def keeps(self, id: str) -> bool:
        """Whether the text of a region is the one on the disk."""
        return self.state is State.SAME or id in self.texts

    def region_texts(self) -> dict[str, bytes]:
        """The texts that the regions of the file will have."""
        if self.markers is None or not self.regions:
            return {}
        return _native.region_texts(self.buffer, self.markers.find(self.buffer))

    def take(self, texts: Mapping[str, bytes]) -> None:
        """Put texts into regions of the file, beside those that it keeps."""
        self.texts.update(texts)
        self.merged = _native.with_regions(self.base, self.regions, self.texts, self.returns)
        self.renumber()

    def renumber(self) -> None:
        """Count the lines of user regions anew, once their texts are known."""
        if self.own_name and self.merged is not None and self.markers is not None:
            regions = self.markers.find(self.merged)
            self.merged = _native.renumbered(self.merged, regions, self.own_name)

    @property
    def data(self) -> bytes:
        """A copy of the file's bytes."""
        return bytes(self.buffer)


class Plan(list[PlannedFile]):
    """The files of a run in the order of the repository, and the folder that they belong to.

    `old_markers` has the markers of files on the disk, where they are known.
    """

    def __init__(self, folder: _native.OutputFolder, old_markers: Mapping[str, str]) -> None:
        super().__init__()
        self.folder = folder
        self.old_markers = old_markers


# Nothing includes a file with such a name, whatever its Type.
_SOURCES = (".c", ".cc", ".cpp", ".cxx")


def can_be_included(path: str) -> bool:
    """Whether a file of this path needs a guard if it is a header by its Type."""
    return not path.lower().endswith(_SOURCES)


def plan(
    run: Run,
    folder: _native.OutputFolder,
    layout: Layout = Layout(),
    old_markers: Mapping[str, str] = MappingProxyType({}),
    composed: Sequence[PlannedFile] | None = None,
) -> Plan:
    """Work out what has to be written, in the order of the repository. Changes nothing.

    `composed` is what compose() gives, if that is known already.

    `old_markers` has the markers of files on the disk that may have others, by location. Paths that
    differ only in letter case are warned about. Raises OutputError, with the file and where it was
    declared, when a file cannot go where it belongs.
    """
    planned = Plan(folder, old_markers)
    planned += compose(run, folder, layout) if composed is None else composed
    if layout.formatter is not None:
        _format(planned, run, layout.formatter, layout.formats_all)
    compare(planned, run)
    return planned


def compose(run: Run, folder: _native.OutputFolder, layout: Layout) -> list[PlannedFile]:
    """Compose the files, in the order of the repository. Reads nothing of the folder."""
    planned: list[PlannedFile] = []
    folded: dict[str, PlannedFile] = {}
    for index in range(len(run.repository)):
        if run.repository.get_attribute(index, "IsEmpty"):
            planned.append(PlannedFile(index, _text(run, index, "Name")))
            continue
        try:
            file = _composed(run, index, layout, folder)
        except OutputError as error:
            raise _located(run, index, error) from error
        planned.append(file)
        _report_clash(file, folded.setdefault(file.path.casefold(), file), run)
    run.regions.verify({file.index: file.regions for file in planned if not file.is_empty})
    return planned


def compare(files: Plan, run: Run) -> None:
    """Compare the files with the disk once more: others may have changed it."""
    owners: dict[str, int] = {}
    for file in files:
        if file.is_empty:
            continue
        try:
            _compare_file(file, files, run)
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


def _composed(run: Run, index: int, layout: Layout, folder: _native.OutputFolder) -> PlannedFile:
    path = run.files.path(index)
    file = PlannedFile(index, path, _compose(run, index, path, layout), State.NEW)
    if layout.line_directives is not None and run.repository.section_names(index) != ["Text"]:
        _put_line_directives(file, run, folder, layout.line_directives)
    file.markers = run.regions.markers(index)
    try:
        file.regions = file.markers.find(file.base)
    except ValueError as error:
        raise OutputError(f"its text, {error}; a marker is alone on its line") from error
    return file


def _put_line_directives(
    file: PlannedFile, run: Run, folder: _native.OutputFolder, prefix: str
) -> None:
    """Name the templates of each line, by paths relative to the file unless there is a prefix."""
    assert run.trace is not None and file.composed is not None
    place = os.path.dirname(real_path(folder, file.path))

    def name(template: str) -> str:
        if prefix:
            return prefix + template
        return os.path.relpath(os.path.realpath(template), place)

    file.own_name = os.path.basename(file.path)
    file.composed = file.composed.with_line_directives(run.trace, name, file.own_name)


def _compose(run: Run, index: int, path: str, layout: Layout) -> _native.ComposedFile:
    record = run.files.record(index)
    shape = FileShape() if record is None else record.shape
    guard = layout.guard if can_be_included(path) else ""
    try:
        return run.repository.compose(
            index, shape.order, layout.blank_lines, shape.guard, guard, path, shape.extern_c
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
    run.dependencies += formatter.style_files(paths)
    results = formatter.format(
        [(path, bytes(file.buffer)) for path, file in zip(paths, chosen, strict=True)]
    )
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
            try:
                _find_formatted_regions(file)
            except OutputError as error:
                raise _located(run, file.index, error) from error


def _find_formatted_regions(file: PlannedFile) -> None:
    assert file.markers is not None
    before = file.regions.ids
    try:
        file.regions = file.markers.find(file.base)
    except ValueError as error:
        raise OutputError(f"the formatter damaged the markers of user regions: {error}") from error
    if file.regions.ids != before:
        raise OutputError("the formatter damaged or moved the markers of user regions")


def _compare_file(file: PlannedFile, files: Plan, run: Run) -> None:
    assert file.markers is not None
    folder = files.folder
    file.texts, file.merged = {}, None
    try:
        file.location = folder.locate(file.path)
        pattern = files.old_markers.get(file.location)
        file.old_markers = file.markers if pattern is None else run.regions.made_of(pattern)
        old = folder.compare(file.location, file.base, file.regions, file.old_markers)
    except OSError as error:
        raise OutputError(f"{shown(folder, file.path)} cannot be read: {reason(error)}") from error
    file.state = State.NEW if not old.exists else State.SAME if old.same else State.CHANGED
    file.old_hash = old.hash
    file.merged, file.returns = old.merged, old.ends_lines_with_return
    file.kept = () if old.same else old.regions
    file.texts = {region.id: region.text for region in file.kept if region.is_taken}
    if file.own_name and file.merged is not None:
        file.renumber()
        if old.exists:
            same = folder.read(file.location) == file.merged
            file.state = State.SAME if same else State.CHANGED


def _located(run: Run, index: int, error: OutputError) -> OutputError:
    return OutputError(f"{run.files.place(index)}the file {run.files.label(index)}: {error}")


def _claim(location: str, index: int, owners: dict[str, int], run: Run) -> None:
    if location in owners:
        other = owners[location]
        place = run.files.position(other)
        where = f", declared at {place}," if place else ""
        raise OutputError(f"the file {run.files.label(other)}{where} is written to the same path")
    owners[location] = index


def _report_clash(file: PlannedFile, other: PlannedFile, run: Run) -> None:
    if file.path == other.path or _names_clash(file, other, run):
        return
    declared = run.files.position(other.index)
    where = f", declared at {declared}" if declared else ""
    run.messages.warn(
        f'the path "{file.path}" differs only in letter case from "{other.path}"{where};'
        " some file systems cannot hold both",
        run.files.position(file.index) or None,
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
