"""The command `orv`."""

from __future__ import annotations

import os
import sys
from collections.abc import Sequence
from typing import Any, NamedTuple

from orv.command.options import GenerateOptions
from orv.command.progress import progress
from orv.command.runs import requested_runs, require_own_reports
from orv.errors import Messages, OutputError
from orv.files.run import Run
from orv.models.model import build_model
from orv.output import reports
from orv.output.depfile import depfile
from orv.output.writer import PlannedFile, plan, write
from orv.templates.engine import render, source_beside

# How many empty files are named.
_SHOWN = 10


class Outcome(NamedTuple):
    """What a run came to: whether a file differed from the disk, and the files without text."""

    differs: bool
    empty: list[str]


def run(given: dict[str, Any]) -> int:
    """The command `orv generate`, with the options that were given."""
    runs = requested_runs(given)
    require_own_reports(runs)
    code = 0
    told: list[Outcome] = []
    for options in runs:
        outcome = generate(options)
        code = max(code, int(options.check and outcome.differs))
        if not options.quiet and not options.diff:
            told.append(outcome)
    if told:
        _summarize(told)
    return code


def generate(options: GenerateOptions) -> Outcome:
    """Render, run the scripts, and write or compare."""
    if options.run_name is not None:
        _say(f"run {options.run_name}", options)
    messages = Messages(lambda text: _warn(text, options), options.strict)
    model = build_model(options.model, options.set, messages.warn, options.schema)
    read: list[str] = []
    templates = [source_beside(path, options.templates, read) for path in options.template]
    with progress("rendering", None, options.quiet) as step:
        run = render(templates, model.values, messages, step)
    for script in options.script:
        from orv.scripts import run_script

        _say(f"running {script}", options)
        run_script(script, run, model.values)
    files = plan(run, options.out)
    for path in [*model.files, *read]:
        _say(f"read {path}", options)
    sources = [*read, *model.files, *model.folders, *options.script]
    if options.project is not None:
        sources.append(options.project)
    wanted = _reports(files, sources, run, options)
    reports.prepare(wanted, _taken(files, sources, run))
    if options.writes:
        _write_all(files, run, options)
    else:
        _show(files, options)
    for report in wanted:
        reports.write(report)
    empty = [_empty_label(file, run) for file in files if not file.target]
    return Outcome(any(file.differs for file in files), empty)


def _reports(
    files: list[PlannedFile], sources: list[str], run: Run, options: GenerateOptions
) -> list[reports.Report]:
    wanted: list[reports.Report] = []
    if options.manifest is not None and options.writes:
        from orv.output.manifest import manifest

        wanted.append(reports.Report("manifest", options.manifest, manifest(run, files)))
    if options.depfile is not None:
        rule = depfile([file.shown for file in files if file.target], sources)
        wanted.append(reports.Report("depfile", options.depfile, rule))
    return wanted


def _taken(files: list[PlannedFile], sources: list[str], run: Run) -> dict[str, str]:
    """What the run reads and the files it makes, by their real paths."""
    taken = {os.path.realpath(path): f'"{path}", which was read' for path in sources}
    for file in files:
        if file.target in taken:
            label = run.files.label(file.index)
            raise OutputError(
                f"{run.files.place(file.index)}the file {label} would take the place of"
                f" {taken[file.target]}"
            )
        if file.target:
            taken[file.target] = f'the file "{file.shown}"'
    return taken


def _write_all(files: list[PlannedFile], run: Run, options: GenerateOptions) -> None:
    with progress("writing", sum(file.differs for file in files), options.quiet) as step:

        def wrote(_: PlannedFile) -> None:
            if step is not None:
                step()

        write(files, run, wrote)
    _list(files, options)


def _show(files: list[PlannedFile], options: GenerateOptions) -> None:
    if not options.diff:
        _list(files, options)
        return
    from orv.output.differences import difference

    for file in files:
        if file.differs:
            sys.stdout.write(difference(file))


def _list(files: list[PlannedFile], options: GenerateOptions) -> None:
    for file in files:
        line = f"{file.state.value:8}{file.shown}"
        if file.differs and not options.quiet:
            print(line)
        elif not file.differs:
            _say(line, options)


def _empty_label(file: PlannedFile, run: Run) -> str:
    includes = [
        run.repository.get_attribute(file.index, name)
        for name in ("RequiredIncludes", "UtilityIncludes")
    ]
    return f"{file.shown} (only includes)" if any(includes) else file.shown


def _summarize(outcomes: Sequence[Outcome]) -> None:
    if not any(outcome.differs for outcome in outcomes):
        print("up to date")
    empty = [label for outcome in outcomes for label in outcome.empty]
    if empty:
        more = f" and {len(empty) - _SHOWN} more" if len(empty) > _SHOWN else ""
        print(f"empty, not written: {', '.join(empty[:_SHOWN])}{more}")


def _say(text: str, options: GenerateOptions) -> None:
    if options.verbose:
        print(text, file=sys.stderr)


def _warn(text: str, options: GenerateOptions) -> None:
    if not options.quiet:
        print(f"warning: {text}", file=sys.stderr)
