"""Reports: what a run writes beside its files, at places that the user names."""

from __future__ import annotations

import os
import stat
import sys
from collections.abc import Iterable, Mapping
from dataclasses import dataclass

from orv import _native, inputs
from orv.errors import OutputError
from orv.output.folder import open_folder, reason
from orv.unchanged import contents_of


@dataclass
class Report:
    """A text for the place `path`; `kind` is what messages call it.

    `folder`, the folder of a report that is a file, is opened when the report is prepared.
    """

    kind: str
    path: str
    data: bytes
    folder: _native.OutputFolder | None = None
    location: str = ""

    @property
    def label(self) -> str:
        """The report as messages show it."""
        return f'the {self.kind} "{self.path}"'


def prepare(reports: Iterable[Report], taken: Mapping[str, str], durable: bool) -> None:
    """Make and open the folders of the reports.

    `taken` has what else the run reads and writes, by its real path. Raises OutputError when a
    report would take the place of one of these or of another report, or cannot be a file.
    """
    taken = dict(taken)
    for report in reports:
        try:
            if _is_special(report.path):
                continue
            real = os.path.realpath(report.path)
            _refuse_overlap(report, real, taken)
            taken[real] = report.label
            folder, name = os.path.split(real)
            report.location = os.fsencode(name).decode("utf-8", "surrogateescape")
            report.folder = open_folder(folder, durable)
            report.folder.create()
        except OSError as error:
            raise OutputError(f"{report.label} cannot be written: {reason(error)}") from error


def write(report: Report) -> None:
    """Write the report: a file is replaced in one step, a device or a pipe is written into."""
    try:
        if report.folder is None:
            inputs.current().is_incomplete = True
            _write_into(report)
            return
        report.folder.remove_abandoned("")
        inputs.current().cleaned.add(report.folder.real)
        report.folder.replace(report.location, report.data, None)
        report.folder.sync()
        inputs.current().reports[report.path] = contents_of(report.data)
    except OSError as error:
        raise OutputError(f"{report.label} cannot be written: {reason(error)}") from error


def _refuse_overlap(report: Report, real: str, taken: Mapping[str, str]) -> None:
    for other, label in taken.items():
        if real == other:
            raise OutputError(f"{report.label} would take the place of {label}")
        if real.startswith(other + "/") or other.startswith(real + "/"):
            raise OutputError(f"{report.label} and {label} cannot be below each other")


def _is_special(path: str) -> bool:
    """Whether the place takes what is written without being a file of its own."""
    try:
        status = os.stat(path)
    except FileNotFoundError:
        return False
    if stat.S_ISDIR(status.st_mode):
        raise OutputError(f"{path} is a folder; a report is a file")
    return not stat.S_ISREG(status.st_mode) or _is_stream(sys.stdout.fileno(), status)


def _write_into(report: Report) -> None:
    if _is_stream(sys.stdout.fileno(), os.stat(report.path)):
        sys.stdout.flush()
        sys.stdout.buffer.write(report.data)
        return
    with open(report.path, "wb") as file:
        file.write(report.data)


def _is_stream(descriptor: int, status: os.stat_result) -> bool:
    return os.path.samestat(os.fstat(descriptor), status)
