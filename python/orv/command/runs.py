"""The runs that a command line asks for: one of its own, or those of a project file."""

from __future__ import annotations

import os
from collections.abc import Sequence
from typing import Any

from orv.command.option import options_of
from orv.command.options import GenerateOptions, ProjectOptions
from orv.errors import Misuse, ProjectError

_SELECTION = options_of(ProjectOptions)
_OPTIONS = [option for option in options_of(GenerateOptions) if option not in _SELECTION]


def requested_runs(given: dict[str, Any]) -> list[GenerateOptions]:
    """The options of each run, complete. Raises Misuse and ProjectError."""
    asked = GenerateOptions(**given)
    if asked.template:
        return [_own_run(asked)]
    return _project_runs(asked, given)


def require_consistent(runs: Sequence[GenerateOptions]) -> None:
    """Raise Misuse when two runs write the same report, a depfile has no target, or a run asks for
    a state file and for none, or to format every file without a formatter."""
    owners: dict[str, str | None] = {}
    for options in runs:
        if options.state is not None and options.no_state:
            raise Misuse("argument --no-state: not allowed with argument --state")
        if options.format_all and options.format is None:
            raise Misuse("--format-all needs --format COMMAND")
        if options.line_directives and options.format is not None:
            raise Misuse("argument --line-directives: not allowed with argument --format")
        if options.line_prefix is not None and not options.line_directives:
            raise Misuse("--line-prefix needs --line-directives")
        reports = (options.depfile, options.manifest, options.outputs, options.stamp, options.trace)
        for path in reports:
            if path is None:
                continue
            other = owners.setdefault(os.path.realpath(path), options.run_name)
            if other != options.run_name:
                raise Misuse(f'the runs "{other}" and "{options.run_name}" both write {path}')
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
