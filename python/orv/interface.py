"""Generating from Python: what `orv generate` does, in three steps.

Nothing is written unless every step before succeeded:

>>> import orv, pathlib
>>> written = pathlib.Path("count.j2").write_text('''
... {% file name ~ ".c" %}
... {% section "Definitions" %}
... int {{ name }} = {{ start }};
... {% endsection %}
... {% endfile %}
... ''')
>>> run = orv.render("count.j2", {"name": "visits", "start": 1})
>>> files = orv.plan(run, "generated")
>>> [(file.path, file.state.value, file.data) for file in files]
[('visits.c', 'new', b'int visits = 1;\\n')]
>>> orv.write(files, run)
>>> [file.state.value for file in orv.plan(run, "generated")]
['same']

A mistake is an error that says where it is:

>>> try:
...     orv.render("count.j2", {"name": "visits"})
... except orv.TemplateError as error:
...     print(error)
count.j2:4: 'start' is undefined
"""

from __future__ import annotations

import os
from collections.abc import Callable, Mapping, Sequence

from orv.errors import Messages, ignore
from orv.files.run import Run
from orv.output import plan as planning
from orv.output.folder import lock, make_folder, open_folder
from orv.output.guards import check_guards
from orv.output.ownership import Policy, require_writable, settle_without_state
from orv.output.plan import Plan
from orv.output.writer import Writer
from orv.templates import engine

# How long a run waits for another one, in seconds.
_LOCK_TIMEOUT = 60


def render(
    template: str | os.PathLike[str],
    model: Mapping[str, object],
    *,
    templates: Sequence[str] = (),
    warn: Callable[[str], None] = ignore,
    strict: bool = False,
) -> Run:
    """Render a template, whose variables are the entries of `model`, into the files of a new run.

    Other templates are looked for beside it, then in the folders `templates`. `warn` gets the text
    of each warning; when `strict`, warnings are errors. Raises TemplateError.
    """
    source = engine.source_beside(os.fspath(template), templates, [])
    return engine.render([source], model, Messages(warn, strict))


def plan(run: Run, out: str | os.PathLike[str]) -> Plan:
    """Compare the files of a run with what is below the folder `out`, which need not exist.

    Changes nothing. Raises OutputError, with the file and where it was declared, when a file cannot
    go where it belongs.
    """
    files = planning.plan(run, open_folder(os.fspath(out)))
    check_guards(files, run)
    return files


def write(files: Plan, run: Run, *, orphans: str = "error") -> None:
    """Write the planned files that differ, each in one step. No state file is read or written.

    `orphans` says what becomes of user regions on the disk that no template has any more: "error",
    "keep" puts their texts into FILE.orphans, "drop" discards them.

    Waits for other runs that use the folder and keeps them out until the plan is dropped. Raises
    OutputError, which says of every file whether it is old or new, when one cannot be written.
    """
    make_folder(files.folder)
    lock(files.folder, shared=False, timeout=_LOCK_TIMEOUT)
    planning.compare(files, run)
    policy = Policy(orphans=orphans)
    settled = settle_without_state(files, files.folder, policy)
    require_writable(files, settled, policy, run)
    writer = Writer(files.folder, run)
    writer.clean(files)
    for location, text in settled.rescued.items():
        writer.rescue(location, text)
    writer.write(files)
