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
from collections.abc import Callable, Iterable, Mapping, Sequence

from orv.errors import Messages, ignore
from orv.files.run import Run
from orv.output import writer
from orv.output.writer import PlannedFile
from orv.templates import engine


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


def plan(run: Run, out: str | os.PathLike[str]) -> list[PlannedFile]:
    """Compare the files of a run with what is below the folder `out`, which need not exist.

    Changes nothing. Raises OutputError, with the file and where it was declared, when a file cannot
    go where it belongs.
    """
    return writer.plan(run, os.fspath(out))


def write(files: Iterable[PlannedFile], run: Run) -> None:
    """Write the planned files that differ, each in one step.

    Raises OutputError, which says of every file whether it is old or new, when one cannot be
    written.
    """
    writer.write(files, run, lambda _: None)
