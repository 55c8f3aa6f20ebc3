"""Runs that are done for each file of a pattern."""

from __future__ import annotations

import os
from collections.abc import Sequence
from copy import copy

from orv.command.options import GenerateOptions
from orv.command.outputs import Outcome, common_reports
from orv.errors import Misuse
from orv.models.sources import folders_of, paths_of
from orv.output import reports

# What the runs of a pattern write together unless each has its own.
_COMMON = ("depfile", "outputs", "stamp")

_OWN = ("out", "state", "manifest", "report", "trace")


def runs_for_each(options: GenerateOptions) -> list[GenerateOptions]:
    """The runs for each file of the pattern, in the order of their paths; one without a pattern.

    Raises Misuse when all would write the same folder, and ModelError when there is no file.
    """
    source = options.for_each
    if source is None:
        return [options]
    mark = f"{{{source.name}}}"
    if mark not in options.out:
        raise Misuse(f"argument --for-each: expected {mark} in --out, got {options.out!r}")
    whole = copy(options)
    whole.model_file = source
    for name in _COMMON:
        if mark in (getattr(options, name) or ""):
            setattr(whole, name, None)
    whole.manifest = whole.report = whole.trace = None
    return [_run(options, whole, path, mark) for path in paths_of(source.path)]


def write_common_reports(whole: GenerateOptions, outcomes: Sequence[Outcome]) -> None:
    """Write the reports of all runs of a pattern, which have ended well. Raises OutputError."""
    assert whole.for_each is not None
    models, folders = paths_of(whole.for_each.path), folders_of(whole.for_each.path)
    differs = any(outcome.differs for outcome in outcomes)
    paths = sorted({path for outcome in outcomes for path in outcome.paths})
    sources = {path for outcome in outcomes for path in outcome.dependencies}
    wanted = common_reports(whole, lambda: paths, lambda: sources | folders)
    taken = {
        os.path.realpath(path): f'"{path}", which was read' for path in [*whole.inputs, *models]
    }
    reports.prepare(wanted, taken, whole.fsync)
    for report in wanted:
        if report.kind != "stamp" or whole.ends_well(differs):
            reports.write(report)


def _run(options: GenerateOptions, whole: GenerateOptions, path: str, mark: str) -> GenerateOptions:
    assert options.for_each is not None
    run = copy(options)
    run.whole = whole
    run.model_file = options.for_each._replace(path=path)
    run.model = [*options.model, run.model_file]
    stem = os.path.splitext(os.path.basename(path))[0]
    for name in (*_OWN, *_COMMON, "depfile_target"):
        value = getattr(options, name)
        if value is not None:
            setattr(run, name, value.replace(mark, stem))
    for name in _COMMON:
        if getattr(whole, name) is not None:
            setattr(run, name, None)
    run.expect = [path.replace(mark, stem) for path in options.expect]
    return run
