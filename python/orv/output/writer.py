"""Comparing a run with what is on the disk, and bringing the disk up to date."""

from __future__ import annotations

import os
import re
import zlib
from collections.abc import Callable, Iterable
from contextlib import suppress
from dataclasses import dataclass
from enum import Enum
from typing import TypeAlias

from orv import _native
from orv.errors import OutputError
from orv.output.paths import OutputFolder, output_parts
from orv.files.run import Run

# Bytes, or an object that gives access to its own.
Buffer: TypeAlias = bytes | _native.ComposedFile

_TEMPORARY = re.compile(r"\.orv-([0-9a-f]{8})-([0-9]+)-[0-9a-f]{8}\.tmp")


class State(Enum):
    """How a file of the run compares with the disk."""

    NEW = "new"
    CHANGED = "changed"
    SAME = "same"
    EMPTY = "empty"


@dataclass
class PlannedFile:
    """A file of the run, its bytes and where they go. An empty file has neither: `composed` is None.

    `path` is below the output folder and the same in any locale; `shown`, the path with the folder,
    and `target`, the place on the disk, are as Python's file functions take them.
    """

    index: int
    path: str
    shown: str
    target: str
    state: State
    composed: _native.ComposedFile | None
    old: bytes

    @property
    def differs(self) -> bool:
        """Whether the disk has to change."""
        return self.state in (State.NEW, State.CHANGED)

    @property
    def data(self) -> bytes:
        """The bytes of the file, copied."""
        return b"" if self.composed is None else bytes(self.composed)


def plan(run: Run, out: str) -> list[PlannedFile]:
    """Work out what has to be written, in the order of the repository. Changes nothing.

    Paths that differ only in letter case are warned about. Raises OutputError, with the file and
    where it was declared, when a file cannot go where it belongs.
    """
    folder = OutputFolder(out)
    planned: list[PlannedFile] = []
    owners: dict[str, int] = {}
    folded: dict[str, PlannedFile] = {}
    for index in range(len(run.repository)):
        if run.repository.get_attribute(index, "IsEmpty"):
            label = str(run.repository.get_attribute(index, "Name"))
            planned.append(PlannedFile(index, label, label, "", State.EMPTY, None, b""))
            continue
        try:
            file = _plan_file(run, index, folder)
            _claim(file.target, index, owners, run)
        except OutputError as error:
            place = run.files.place(index)
            raise OutputError(f"{place}the file {run.files.label(index)}: {error}") from error
        planned.append(file)
        _report_clash(file, folded.setdefault(file.path.casefold(), file), run)
    _refuse_files_as_folders(owners, run)
    return planned


def write(files: Iterable[PlannedFile], run: Run, wrote: Callable[[PlannedFile], None]) -> None:
    """Write the files that differ, each whole or not at all; `wrote` hears of each.

    Raises OutputError, which says for every file whether it is old or new, when one cannot be
    written.
    """
    waiting = [file for file in files if file.differs]
    cleaned: set[str] = set()
    position = 0
    try:
        for position, file in enumerate(waiting):
            _write_one(file, cleaned)
            run.repository.set_attribute(file.index, "WrittenToDisk", True)
            wrote(file)
    except OSError as error:
        raise OutputError(
            f"{waiting[position].shown} cannot be written: {error.strerror}\n"
            + _states(waiting, position)
        ) from error
    except KeyboardInterrupt:
        # The interruption may have come just after the file took its place.
        done = position + any(_read(f.target) == f.data for f in waiting[position : position + 1])
        raise OutputError("interrupted while writing\n" + _states(waiting, done)) from None


def _write_one(file: PlannedFile, cleaned: set[str]) -> None:
    folder = os.path.dirname(file.target)
    os.makedirs(folder, exist_ok=True)
    if folder not in cleaned:
        cleaned.add(folder)
        _remove_stale(folder)
    assert file.composed is not None
    replace_file(file.target, file.composed)


def replace_file(path: str, data: Buffer) -> None:
    """Give the file `path` new bytes in one step; a failure leaves it as it was.

    Raises OSError. The file keeps its permissions when it is there already.
    """
    name = f".orv-{_process_table():08x}-{os.getpid()}-{os.urandom(4).hex()}.tmp"
    temporary = os.path.join(os.path.dirname(path), name)
    stream = _native.Stream.create(temporary)
    try:
        stream.write(data)
        stream.flush()
        stream.close()
        if os.path.exists(path):
            os.chmod(temporary, os.stat(path).st_mode & 0o7777)
        os.replace(temporary, path)
    except BaseException:
        with suppress(FileNotFoundError):
            os.unlink(temporary)
        raise


def _plan_file(run: Run, index: int, folder: OutputFolder) -> PlannedFile:
    parts = output_parts(_text(run, index, "OutputDirectory"), _disk_name(run, index))
    target = folder.target(parts)
    composed = _compose(run, index)
    try:
        old = _read(target)
    except OSError as error:
        raise OutputError(f"{folder.shown(parts)} cannot be read: {error.strerror}") from error
    state = State.NEW if old is None else State.SAME if composed.equals(old) else State.CHANGED
    return PlannedFile(
        index,
        "/".join(parts),
        folder.shown(parts),
        target,
        state,
        composed,
        old or b"",
    )


def _compose(run: Run, index: int) -> _native.ComposedFile:
    record = run.files.record(index)
    try:
        return run.repository.compose(index, None if record is None else record.order)
    except ValueError as error:
        raise OutputError(str(error)) from error


def _disk_name(run: Run, index: int) -> str:
    """The file's name; for one without a name, its BaseName with the ending of its kind."""
    name = _text(run, index, "Name")
    base = _text(run, index, "BaseName")
    if name:
        return name
    if not base:
        raise OutputError("it has no name to be written under; give it a BaseName")
    return base + (".h" if run.repository.is_header(index) else ".c")


def _claim(target: str, index: int, owners: dict[str, int], run: Run) -> None:
    if target in owners:
        other = owners[target]
        place = run.files.place(other).removesuffix(": ")
        where = f", declared at {place}," if place else ""
        raise OutputError(f"the file {run.files.label(other)}{where} is written to the same path")
    owners[target] = index


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
    for target, index in owners.items():
        parent = os.path.dirname(target)
        while parent != os.path.dirname(parent):
            if parent in owners:
                raise OutputError(
                    f"{run.files.place(index)}the file {run.files.label(index)} is below"
                    f" {run.files.label(owners[parent])}, which is a file and not a folder"
                )
            parent = os.path.dirname(parent)


def _remove_stale(folder: str) -> None:
    """Remove what writers that were killed have left behind."""
    for name in os.listdir(folder):
        stale = _TEMPORARY.fullmatch(name)
        if stale and int(stale[1], 16) == _process_table() and not _is_running(int(stale[2])):
            with suppress(OSError):
                os.unlink(os.path.join(folder, name))


def _process_table() -> int:
    """A number for the machine and the name space that process numbers belong to."""
    try:
        table = os.stat("/proc/self/ns/pid").st_ino
    except OSError:
        table = 0
    return zlib.crc32(f"{os.uname().nodename} {table}".encode("utf-8", "surrogateescape"))


def _is_running(process: int) -> bool:
    if process == os.getpid():
        return False
    try:
        os.kill(process, 0)
    except (ProcessLookupError, OverflowError):
        return False
    except PermissionError:
        return True
    return True


def _states(files: list[PlannedFile], done: int) -> str:
    return "\n".join(
        f"{'new' if position < done else 'old'}  {file.shown}"
        for position, file in enumerate(files)
    )


def _read(path: str) -> bytes | None:
    try:
        with open(path, "rb") as file:
            return file.read()
    except FileNotFoundError:
        return None


def _text(run: Run, index: int, attribute: str) -> str:
    return str(run.repository.get_attribute(index, attribute))
