"""The command `orv`."""

from __future__ import annotations

from collections.abc import Sequence
from contextlib import ExitStack
from typing import Any

from orv.command.console import debug, say, warn
from orv.command.options import GenerateOptions
from orv.command.outputs import Outcome, Outputs
from orv.command.progress import progress
from orv.command.runs import requested_runs, require_consistent
from orv.dependencies import recorded
from orv.errors import Messages
from orv.extensions import load_extensions
from orv.files.run import Run
from orv.models.model import build_model, refuse_unknown
from orv.templates.budget import Budget
from orv.templates.engine import mentioned_names, render, source_beside
from orv.templates.library import DELIMITERS, Language

# How many empty files are named.
_SHOWN = 10


def run(given: dict[str, Any]) -> int:
    """The command `orv generate`, with the options that were given."""
    runs = requested_runs(given)
    require_consistent(runs)
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
    run, sources = render_run(options)
    return Outputs(run, sources, options).finish()


def render_run(options: GenerateOptions) -> tuple[Run, list[str]]:
    """Render and run the scripts. Returns the run and the paths of what it has read."""
    with recorded() as dependencies, ExitStack() as imports:
        if options.extend or options.script:
            from orv.pythonfiles import imports_recorded

            imports.enter_context(imports_recorded())
        run, sources = _render_run(options, dependencies)
    run.dependencies = dependencies
    return run, sources


def _render_run(options: GenerateOptions, dependencies: list[str]) -> tuple[Run, list[str]]:
    if options.run_name is not None:
        say(f"run {options.run_name}", options)
    messages = Messages(lambda text: warn(text, options), options.strict, debug)
    extensions = load_extensions(options.extend)
    model = build_model(options.model, options.set, messages.warn, options.schema)
    values = extensions.prepare(model.values)
    read: list[str] = []
    templates = [
        source_beside(path, options.templates, read, options.follow_links)
        for path in options.template
    ]
    language = Language(extensions, options.delimiters or DELIMITERS)
    budget = Budget(options.max_text, options.max_memory, options.timeout)
    with progress("rendering", None, options.quiet) as step:
        run = render(templates, values, messages, step, language, model.places, budget)
    for script in options.script:
        from orv.scripts import run_script

        say(f"running {script}", options)
        run_script(script, run, values)
    if options.strict:
        python = [path for path in [*options.script, *dependencies] if path.endswith(".py")]
        refuse_unknown(options.set, model, lambda: mentioned_names(read, python, language))
    for path in [*model.files, *read]:
        say(f"read {path}", options)
    sources = [*read, *model.files, *model.folders, *options.script]
    if options.project is not None:
        sources.append(options.project)
    return run, sources


def _summarize(outcomes: Sequence[Outcome]) -> None:
    if not any(outcome.differs for outcome in outcomes):
        print("up to date")
    empty = [label for outcome in outcomes for label in outcome.empty]
    if empty:
        more = f" and {len(empty) - _SHOWN} more" if len(empty) > _SHOWN else ""
        print(f"empty, not written: {', '.join(empty[:_SHOWN])}{more}")
