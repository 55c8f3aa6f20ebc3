"""The runs that a command line asks for: one of its own, or those of a project file."""

from __future__ import annotations

import os
from collections.abc import Sequence
from typing import Any

from orv.command.option import options_of
from orv.command.options import GenerateOptions, JobOptions, ProjectOptions
from orv.errors import Misuse, ProjectError

_OF_NO_RUN = [*options_of(ProjectOptions), *options_of(JobOptions)]
_OPTIONS = [option for option in options_of(GenerateOptions) if option not in _OF_NO_RUN]


def requested_runs(given: dict[str, Any]) -> list[GenerateOptions]:
    """The options of each run, complete. Raises Misuse and ProjectError."""
    asked = GenerateOptions(**given)
    if asked.template:
        runs = [_own_run(asked)]
    else:
        runs = _project_runs(asked, given)
    if all(options.for_each is None for options in runs):
        return runs
    from orv.command.foreach import runs_for_each

    return [run for options in runs for run in runs_for_each(options)]


def require_consistent(runs: Sequence[GenerateOptions]) -> None:
    """Raise Misuse when two runs write the same report, two runs of a pattern the same folder, two
    folders have the same state file, or the options of a run do not go together."""
    owners: dict[str, GenerateOptions] = {}
    wholes = {id(run.whole): run.whole for run in runs if run.whole is not None}
    for options in [*wholes.values(), *runs]:
        _require_consistent(options)
        paths = options.reports if options.whole is None else [options.out, *options.reports]
        for path in paths:
            other = owners.setdefault(os.path.realpath(path), options)
            if other is not options:
                raise Misuse(f'the runs "{other.label}" and "{options.label}" both write {path}')
    states: dict[str, GenerateOptions] = {}
    for options in runs:
        if options.state is not None:
            other = states.setdefault(os.path.realpath(options.state), options)
            if os.path.realpath(other.out) != os.path.realpath(options.out):
                raise Misuse(
                    f'the runs "{other.label}" and "{options.label}" write different folders; both'
                    f" have the state file {options.state}"
                )


def _require_consistent(options: GenerateOptions) -> None:
    if options.state is not None and options.no_state:
        raise Misuse("argument --no-state: not allowed with argument --state")
    if options.format_all and options.format is None:
        raise Misuse("--format-all needs --format COMMAND")
    if options.line_directives and options.format is not None:
        raise Misuse("argument --line-directives: not allowed with argument --format")
    if options.line_prefix is not None and not options.line_directives:
        raise Misuse("--line-prefix needs --line-directives")
    if options.scheduler is not None and options.report is not None:
        raise Misuse("argument --report: not allowed with argument --scheduler")
    if options.scheduler is not None and options.trace is not None and options.format is not None:
        raise Misuse("argument --trace: not allowed with arguments --scheduler and --format")
    if options.depfile is not None and not (options.stamp or options.depfile_target):
        raise Misuse("--depfile needs a target: --stamp FILE or --depfile-target NAME")


def _own_run(options: GenerateOptions) -> GenerateOptions:
    if options.project is not None:
        raise Misuse("argument --project: not allowed with TEMPLATE")
    if len(options.run) > 1:
        raise Misuse("argument --run: expected one name for the run of TEMPLATE")
    if not options.out:
        raise Misuse("--out is missing")
    return options


def _project_runs(asked: GenerateOptions, given: dict[str, Any]) -> list[GenerateOptions]:
    from orv.command.project import PROJECT_FILE, Project, find_project, merged

    path = asked.project or find_project()
    if path is None:
        raise Misuse(f"expected a TEMPLATE, or {PROJECT_FILE} in this folder or one above")
    project = Project(path, _OPTIONS)
    runs: list[GenerateOptions] = []
    for run in project.select(asked.run):
        values = merged(_OPTIONS, run.values, given)
        for needed in ("template", "out"):
            if not values.get(needed):
                place = project.place("run", run.name)
                raise ProjectError(f'{place}: the run "{run.name}" has no key "{needed}"')
        values.update(run=[run.name], project=path)
        runs.append(GenerateOptions(**values))
    return runs
