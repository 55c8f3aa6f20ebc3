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

Models can be read from files, and options are given as a project file has them:

>>> written = pathlib.Path("limit.yaml").write_text("limit: 2")
>>> model = orv.read_model(model="limit.yaml", set=["unit=ms"])
>>> written = pathlib.Path("limit.j2").write_text('''
... <% file "limit.h" %>
... <% section "Defines" %>
... #define LIMIT_<< unit | upper >> << limit | tenfold >>
... <% endsection %>
... <% endfile %>
... ''')
>>> written = pathlib.Path("limits.py").write_text('''
... import orv
...
... @orv.filter
... def tenfold(value: int) -> int:
...     return 10 * value
... ''')
>>> run = orv.render("limit.j2", model, delimiters="<% %> << >> <# #>", extend=["limits.py"])
>>> print(orv.plan(run, "generated", guard="pragma")[0].data.decode())
#pragma once
<BLANKLINE>
#define LIMIT_MS 20
<BLANKLINE>

A run that is traced knows where each byte of its files comes from; see orv.trace:

>>> import orv.trace
>>> run = orv.render("count.j2", {"name": "visits", "start": 1}, traced=True)
>>> trace = orv.trace.trace_of(orv.plan(run, "generated"), run)
>>> [(piece.site.kind, piece.line) for piece in trace.files["visits.c"].on_line(1)][:2]
[('text', 4), ('value', 4)]

A mistake is an error that says where it is:

>>> try:
...     orv.render("count.j2", {"name": "visits"})
... except orv.TemplateError as error:
...     print(error)
count.j2:4: 'start' is undefined
>>> try:
...     orv.plan(run, "generated", guard="A B")
... except orv.OrvError as error:
...     print(error)
guard: expected pragma or a macro such as {PATH}_H, got 'A B'
"""

from __future__ import annotations

import os
from collections.abc import Callable, Mapping
from typing import TypeVar

from orv.command.option import Options, options_of
from orv.command.outputs import layout_of
from orv.command.options import LayoutOptions, LintOptions, ModelOptions
from orv.command.project import option_value
from orv.delimiters import DELIMITERS
from orv.errors import Messages, OrvError, did_you_mean, ignore
from orv.extensions import load_extensions
from orv.files.run import Run
from orv.models.model import Model, build_model
from orv.output import plan as planning
from orv.output.folder import lock, make_folder, open_folder
from orv.output.guards import check_guards
from orv.output.ownership import Policy, require_writable, settle_without_state
from orv.output.plan import Plan
from orv.output.writer import Writer
from orv.templates import engine
from orv.templates.library import Language

_Holder = TypeVar("_Holder", bound=Options)

# How long a run waits for another one, in seconds.
_LOCK_TIMEOUT = 60


def read_model(*, warn: Callable[[str], None] = ignore, **options: object) -> Model:
    """Read and merge models. Its `values` are the variables; errors know where each was written.

    The options are those of `orv generate` that make a model, with the values that a project file
    has: `model`, `set`, `schema`. `warn` gets the text of each warning. Raises ModelError.
    """
    given = _given(ModelOptions, options, "extend")
    return build_model(given.model, given.set, warn, given.schema)


def render(
    template: str | os.PathLike[str],
    model: Mapping[str, object] | Model,
    *,
    warn: Callable[[str], None] = ignore,
    strict: bool = False,
    traced: bool = False,
    **options: object,
) -> Run:
    """Render a template into the files of a new run.

    Its variables are the entries of `model`, or those of a model that was read. Other templates are
    looked for beside it. `warn` gets the text of each warning; when `strict`, warnings are errors.
    When `traced`, the run knows where its text comes from. The options are those of `orv generate`
    about templates, with the values that a project file has: `templates`, `delimiters`, `extend`.
    Raises TemplateError, and ScriptError for an extension.
    """
    given = _given(LintOptions, options)
    source = engine.source_beside(os.fspath(template), given.templates, [])
    extensions = load_extensions(given.extend)
    places = model.places if isinstance(model, Model) else None
    values = extensions.prepare(dict(model.values if isinstance(model, Model) else model))
    language = Language(extensions, given.delimiters or DELIMITERS)
    return engine.render(
        [source], values, Messages(warn, strict), None, language, places, traced=traced
    )


def plan(run: Run, out: str | os.PathLike[str], **options: object) -> Plan:
    """Compare the files of a run with what is below the folder `out`, which need not exist.

    The options are those of `orv generate` about layout, with the values that a project file has:
    `blank_lines`, `guard`, `format`, `format_all`, and, for a run that was traced,
    `line_directives` and `line_prefix`. Changes nothing. Raises OutputError, with the file and
    where it was declared, when a file cannot go where it belongs.
    """
    given = _given(LayoutOptions, options)
    if given.line_directives and run.trace is None:
        raise OrvError("line_directives: the run was not traced; traced=True of orv.render does so")
    files = planning.plan(run, open_folder(os.fspath(out)), layout_of(given))
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


def _given(holder: type[_Holder], options: Mapping[str, object], *others: str) -> _Holder:
    """The options that were given as keywords, and the defaults of the rest.

    `others` are options of the holder that cannot be given.
    """
    known = {
        option.attribute: option
        for option in options_of(holder)
        if not option.positional and option.attribute not in others
    }
    values: dict[str, object] = {}
    for name, value in options.items():
        if name not in known:
            raise TypeError(f'there is no option "{name}"{did_you_mean(name, known)}')
        entries = list(value) if isinstance(value, (list, tuple)) else value
        try:
            values[name] = option_value(known[name], entries, "")
        except ValueError as error:
            raise OrvError(f"{name}: {error}") from error
    return holder(**values)
