"""Whether every header of a run can be included twice, and beside every other."""

from __future__ import annotations

from orv.errors import OutputError
from orv.files.run import Run
from orv.output.plan import Plan, PlannedFile, can_be_included


def check_guards(files: Plan, run: Run) -> None:
    """Warn about headers with the same guard; refuse headers without one when the run is strict."""
    unguarded: list[str] = []
    owners: dict[str, PlannedFile] = {}
    for file in files:
        if file.composed is None:
            continue
        guard = file.composed.guard
        if guard is None and run.messages.strict and _wants_guard(run, file):
            unguarded.append(
                f"{run.files.place(file.index)}the header {run.files.label(file.index)} has no"
                " guard; give it a DefinedMacro, all headers one by --guard, or say guard=false"
            )
        elif guard and owners.setdefault(guard, file) is not file:
            _report_same(guard, file, owners[guard], run)
    if unguarded:
        raise OutputError("\n".join(unguarded))


def _wants_guard(run: Run, file: PlannedFile) -> bool:
    record = run.files.record(file.index)
    if record is not None and (record.kind == "text" or not record.shape.guard):
        return False
    return run.repository.is_header(file.index) and can_be_included(file.path)


def _report_same(guard: str, file: PlannedFile, other: PlannedFile, run: Run) -> None:
    declared = run.files.position(other.index)
    where = f", declared at {declared}," if declared else ""
    run.messages.warn(
        f'"{file.path}" has the guard {guard}, as "{other.path}"{where} has; whoever includes both'
        " gets one of them",
        run.files.position(file.index) or None,
    )
