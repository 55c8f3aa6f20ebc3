"""Where text comes from: what is recorded of a run, and what is read back from trace files."""

from __future__ import annotations

import json
import re
import subprocess
import sys
from collections.abc import Iterator, Mapping
from pathlib import Path
from typing import Any

import jsonschema
import pytest
from conftest import Command
from jinja2 import DictLoader
from test_tags import RESULTS

from orv import trace as tracing
from orv.errors import Messages
from orv.files.run import Run
from orv.models.model import Setting, build_model
from orv.models.sources import ModelSource
from orv.output.folder import open_folder
from orv.output.formatter import Formatter
from orv.output.layout import Layout
from orv.output.plan import plan
from orv.output.tracefile import trace_file
from orv.scripts import run_script
from orv.templates.engine import Source, render

SCHEMA = json.loads(Path(tracing.__file__).with_name("trace.schema.json").read_text())
MODEL = {
    "states": [
        {"name": "idle", "on": [{"to": "busy"}]},
        {"name": "busy", "on": [{"to": "idle"}, {"to": "busy"}]},
    ],
    "names": ["a", "b", "a"],
    "sizes": {"x": 1, "y y": 2},
}


def traced(
    templates: str | Mapping[str, str],
    model: Path | None = None,
    layout: Layout = Layout(),
    script: Path | None = None,
) -> tuple[tracing.Trace, dict[str, bytes]]:
    """The trace of a run, and its files by path."""
    if isinstance(templates, str):
        templates = {"main.j2": templates}
    settings = [Setting(("m",), {"items": 7})]
    found = build_model([ModelSource(None, str(model))] if model else [], settings)
    source = Source(next(iter(templates)), DictLoader(templates))
    run = render([source], found.values, Messages(), places=found.places, traced=True)
    if script is not None:
        run_script(str(script), run, {})
    return _trace_of(run, layout)


def _trace_of(run: Run, layout: Layout) -> tuple[tracing.Trace, dict[str, bytes]]:
    files = plan(run, open_folder("/out"), layout)
    data = trace_file(run, files, "/out")
    jsonschema.validate(json.loads(data), SCHEMA)
    return tracing.parse(data), {file.path: file.data for file in files if not file.is_empty}


def pieces(trace: tracing.Trace, path: str, text: bytes) -> Iterator[str]:
    """Each piece as one text: its bytes, who printed it, and the chain."""
    file = trace.files[path]
    for piece in file.pieces():
        printed = text[piece.begin : piece.end].decode()
        who = f"{piece.site.kind} {piece.site.file}:{piece.line}" if piece.site.file else ""
        chain = "".join(f" < {_shown(link)}" for link in reversed(trace.chain(piece.link)))
        spans = ".".join(span.name for span in file.spans_at(piece.begin))
        yield f"{printed!r} {who or piece.site.kind}{chain} [{spans}]"


def _shown(link: tracing.Link) -> str:
    element = link.element
    what = f"{element.path}@{Path(element.file).name}:{element.line}" if element else link.name
    return f"{link.kind} {what}:{link.site.line}"


# What is printed in the section Enums of a.c, with the model: (templates, the pieces).
PIECES: dict[str, tuple[str | dict[str, str], list[str]]] = {
    "loops over elements of the model": (
        "{% for s in states %}{% for t in s.on %}\n{{ t.to }}{% endfor %}{% endfor %}",
        [
            "'busy' value main.j2:2 < for states[0].on[0]@model.json:6:1"
            " < for states[0]@model.json:3:1 [Enums]",
            "'idle' value main.j2:2 < for states[1].on[0]@model.json:14:1"
            " < for states[1]@model.json:11:1 [Enums]",
            "'busy' value main.j2:2 < for states[1].on[1]@model.json:17:1"
            " < for states[1]@model.json:11:1 [Enums]",
            "'\\n' final newline []",
        ],
    ),
    "elements that filters left, and plain values by position": (
        "{% for s in states|sort(attribute='name') if loop is defined or true %}{{ s.name }}"
        "{% endfor %}"
        "{% for n in names %}{{ n }}{% endfor %}{% for n in names|sort %}{{ n }}{% endfor %}"
        "{% for k, v in sizes.items() %}{{ v }}{% endfor %}{% for k in sizes %}{{ k }}{% endfor %}",
        [
            "'busy' value main.j2:1 < for states[1]@model.json:11:1 [Enums]",
            "'idle' value main.j2:1 < for states[0]@model.json:3:1 [Enums]",
            "'a' value main.j2:1 < for names[0]@model.json:24:1 [Enums]",
            "'b' value main.j2:1 < for names[1]@model.json:25:1 [Enums]",
            "'a' value main.j2:1 < for names[2]@model.json:26:1 [Enums]",
            "'a' value main.j2:1 < for :1 [Enums]",
            "'a' value main.j2:1 < for :1 [Enums]",
            "'b' value main.j2:1 < for :1 [Enums]",
            "'1' value main.j2:1 < for sizes.x@model.json:29:1 [Enums]",
            "'2' value main.j2:1 < for sizes['y y']@model.json:30:1 [Enums]",
            "'x' value main.j2:1 < for sizes.x@model.json:29:1 [Enums]",
            "'y y' value main.j2:1 < for sizes['y y']@model.json:30:1 [Enums]",
            "'\\n' final newline []",
        ],
    ),
    "a loop that is left early, and one that recurses": (
        "{% for n in names %}{% if n == 'b' %}{% break %}{% endif %}{{ n }}{% endfor %}-"
        "{% for x in [[[]]] recursive %}x{{ loop(x) }}{% else %}y{% endfor %}",
        [
            "'a' value main.j2:1 < for names[0]@model.json:24:1 [Enums]",
            "'-' text main.j2:1 [Enums]",
            "'x' text main.j2:1 < for :1 [Enums]",
            "'x' text main.j2:1 < for :1 < loop :1 < for :1 [Enums]",
            "'y' text main.j2:1 < loop :1 < for :1 < loop :1 < for :1 [Enums]",
            "'\\n' final newline []",
        ],
    ),
    "macros, caller and what became a value": (
        "{% macro m(x) %}<{{ x }}{{ caller() }}>{% endmacro %}"
        "{% call m(1) %}c{% endcall %}{% macro n() %}n{% endmacro %}\n{{ n() }}{{ n()|upper }}"
        "{% set s %}s{{ n() }}{% endset %}{{ s ~ s }}{% filter upper %}f{{ 1 }}{% endfilter %}",
        [
            "'<' text main.j2:1 < macro m:1 [Enums]",
            "'1' value main.j2:1 < macro m:1 [Enums]",
            "'c' text main.j2:1 < call :1 < macro m:1 [Enums]",
            "'>' text main.j2:1 < macro m:1 [Enums]",
            "'n' text main.j2:1 < macro n:2 [Enums]",
            "'N' value main.j2:2 [Enums]",
            "'snsn' value main.j2:2 [Enums]",
            "'F1' value main.j2:2 [Enums]",
            "'\\n' final newline []",
        ],
    ),
    "includes, imports and blocks": (
        {
            "main.j2": "{% extends 'base.j2' %}\n{% block b %}{{ super() }}c\n{% endblock %}",
            "base.j2": '{% file "a.c" %}{% section "Enums" %}{% import "m.j2" as m %}'
            '{% include "i.j2" %}{% block b %}b{% endblock %}{{ m.n() }}'
            "{% endsection %}{% endfile %}",
            "i.j2": "\ni{% include 'j.j2' %}",
            "j.j2": "j",
            "m.j2": "{% macro n() %}n{% endmacro %}",
        },
        [
            "'\\n' text i.j2:1 < include i.j2:1 < extends base.j2:1 [Enums]",
            "'i' text i.j2:2 < include i.j2:1 < extends base.j2:1 [Enums]",
            "'j' text j.j2:1 < include j.j2:2 < include i.j2:1 < extends base.j2:1 [Enums]",
            "'b' text base.j2:1 < block b:2 < block b:1 < extends base.j2:1 [Enums]",
            "'c\\n' text main.j2:2 < block b:1 < extends base.j2:1 [Enums]",
            "'n' text m.j2:1 < macro n:1 < extends base.j2:1 [Enums]",
            "'\\n' final newline []",
        ],
    ),
    "a loop with a test": (
        "{% for n in names if n == 'b' %}{{ n }}{% endfor %}",
        ["'b' value main.j2:1 < for :1 [Enums]", "'\\n' final newline []"],
    ),
    "indented text and custom sections": (
        "{% custom 'c' on 'Enums' %}{% fill 'c' %}1\n{% for n in names %}{{ n }}\n{% endfor %}"
        "{% endfill %}x\n  {% indent %}\ny\n#z\n{% place 'c' indent=2 %}w{% endindent %}v",
        [
            "'x\\n' text main.j2:3 [Enums]",
            "'  y\\n' text main.j2:5 [Enums]",
            "'  #z\\n' text main.j2:6 [Enums]",
            "'    1\\n' text main.j2:1 [Enums.c]",
            "'    a' value main.j2:2 < for names[0]@model.json:24:2 [Enums.c]",
            "'\\n' text main.j2:2 < for names[0]@model.json:24:2 [Enums.c]",
            "'    b' value main.j2:2 < for names[1]@model.json:25:2 [Enums.c]",
            "'\\n' text main.j2:2 < for names[1]@model.json:25:2 [Enums.c]",
            "'    a' value main.j2:2 < for names[2]@model.json:26:2 [Enums.c]",
            "'\\n' text main.j2:2 < for names[2]@model.json:26:2 [Enums.c]",
            "'  w' text main.j2:7 [Enums]",
            "'v' text main.j2:7 [Enums]",
            "'\\n' final newline []",
        ],
    ),
    "lists of headers, and who asked first": (
        "@@{% include_required 'r.h' %}\n{% include_required 'r.h' %}{% include_added 'a.h' %}"
        "{% for n in names %}\n{% include_utility n ~ '.h', '<u.h>' %}{% endfor %}",
        [
            "'#include \"r.h\"\\n' include main.j2:1 [Includes]",
            "'\\n#include <u.h>\\n' include main.j2:3 < for names[0]@model.json:24:2 [Includes]",
            '\'#include "a.h"\\n\\n#include "a.h"\\n\' include main.j2:2 [Includes]',
            "'\\n#include \"b.h\"\\n' include main.j2:3 < for names[1]@model.json:25:2 [Includes]",
        ],
    ),
}


def section(text: str) -> str:
    """The text in the section Enums of a.c, except for what is before "@@"."""
    before, _, inside = text.rpartition("@@")
    return (
        f'{{% file "a.c" DefinedMacro="A" %}}{before}{{% section "Enums" %}}{inside}'
        "{% endsection %}{% endfile %}"
    )


@pytest.mark.parametrize("name", PIECES)
def test_pieces(name: str, tmp_path: Path) -> None:
    templates, expected = PIECES[name]
    if isinstance(templates, str):
        templates = section(templates)
    model = tmp_path / "model.json"
    model.write_text(json.dumps(MODEL, indent=1))
    trace, files = traced(templates, model)
    assert list(pieces(trace, "a.c", files["a.c"])) == expected


@pytest.mark.parametrize("name", RESULTS)
def test_text_is_on_the_line_that_is_named(name: str) -> None:
    templates, expected = RESULTS[name]
    sources = {"main.j2": templates} if isinstance(templates, str) else templates
    trace, files = traced(templates)
    assert {path: text.decode() for path, text in files.items()} == expected
    for path, text in files.items():
        end = 0
        for piece in trace.files[path].pieces():
            assert piece.begin == end
            end = piece.end
            printed = text[piece.begin : piece.end].decode()
            line = sources[piece.site.file].splitlines()[piece.line - 1] if piece.site.file else ""
            if piece.site.kind == "text":
                assert printed.strip() in line
            elif piece.site.kind == "value":
                assert "{{" in line or "{%" in line
            else:
                assert piece.site.kind != "unknown"
        assert end == len(text)


def test_script_and_engine(tmp_path: Path) -> None:
    script = tmp_path / "s.py"
    script.write_text(
        "import helper, os\n"
        "os.chdir('/')\n"
        "f = repo.FileList[0]\n"
        "section = f.getFileSection('ENUMERATIONS_SECTION')\n"
        "for i in range(2):\n"
        "    section.addContent('s\\n')\n"
        "list(map(section.addContent, [f'\u20ac\\0']))\n"
        "helper.add(section)\n"
        "includes = f.getFileSection('INCLUDES_SECTION')\n"
        "includes.RequiredIncludes = [*includes.RequiredIncludes, 'q.h']\n"
        "includes.addInclude('t.h', True)\n"
        "includes.addContent('/* */')\n"
        "for name in 't.h', 's.h', 's.h':\n"
        "    includes.addInclude(name, False)\n"
    )
    (tmp_path / "helper.py").write_text("def add(section):\n    section.addContent('h')\n")
    templates = '{% file "a.h" DefinedMacro="A" RequiredIncludes=["r.h"] %}{% section "Enums" %}e'
    trace, files = traced(templates + "{% endsection %}{% endfile %}", script=script)
    assert list(pieces(trace, "a.h", files["a.h"])) == [
        "'#ifndef A\\n#define A\\n\\n' guard []",
        "'\\n#include \"r.h\"\\n' include main.j2:1 [Includes]",
        f"'\\n#include \"q.h\"\\n' script {script}:0 [Includes]",
        f"'#include <t.h>\\n' script {script}:11 [Includes]",
        f"'/* */' script {script}:12 [Includes]",
        f"'#include \"s.h\"\\n' script {script}:14 [Includes]",
        "'e' text main.j2:1 [Enums]",
        f"'s\\ns\\n' script {script}:6 [Enums]",
        f"'\u20ac' script {script}:7 [Enums]",
        f"'h' script {tmp_path}/helper.py:2 [Enums]",
        "'\\n' final newline []",
        "'\\n#endif /* A */\\n' guard []",
    ]


def test_after_a_formatter(tmp_path: Path) -> None:
    # It moves the first line to the end, breaks the second and changes the last.
    formatter = Formatter("sed -e '1h;1d;4G;s/^int d/long e/;s/  / /;s/; /;\\n   /'")
    text = section("first  = 1;\nint b; /* the value {{ 12 }} */\nint  c;\nint d; // none")
    trace, files = traced(text, layout=Layout(formatter=formatter, formats_all=True))
    assert list(pieces(trace, "a.c", files["a.c"])) == [
        "'int b;\\n   /* the value ' line main.j2:2 [Enums]",
        "'12 ' value main.j2:2 [Enums]",
        "'*/\\n' line main.j2:2 [Enums]",
        "'int c;\\n' line main.j2:3 [Enums]",
        "'long e;\\n   // none\\n' formatter [Enums]",
        "'first = 1;\\n' line main.j2:1 [Enums]",
    ]


def test_command(orv: Command, tmp_path: Path) -> None:
    template = section("{{ n }}")
    command = ["generate", "a.j2", "--set", "n=1", "--out", "o", "--trace"]
    for arguments in ((), ("--check",)):
        done = orv(*command, "t/t.json", *arguments, a__j2=template)
        assert (done.returncode, done.stderr) == (0, "")
        trace = tracing.read(tmp_path / "t" / "t.json")
        assert next(trace.files["a.c"].pieces()).site == ("value", "a.j2", 1)
        (tmp_path / "t" / "t.json").unlink()
    done = orv(*command, "o/a.c")
    assert done.stderr == 'error: the trace "o/a.c" would take the place of the file "o/a.c"\n'


BLOCK = re.compile(r"^```(\w+) ?(.*)\n((?:.*\n)*?)```$", re.MULTILINE)


def test_documentation(orv: Command, tmp_path: Path) -> None:
    text = (Path(__file__).parents[2] / "docs" / "tracing.md").read_text()
    blocks = BLOCK.findall(text)
    for _, name, content in blocks:
        if name:
            (tmp_path / name).write_text(content)
    generate, *_ = re.findall("    orv (generate .*)", text)
    assert orv(*generate.split()).returncode == 0
    answers = [content for kind, _, content in blocks if kind == "text"]
    where, program = (content for kind, _, content in blocks if kind in ("sh", "python"))
    assert orv(*where.split()[1:]).stdout == answers[0]
    done = subprocess.run(
        [sys.executable, "-c", program], cwd=tmp_path, capture_output=True, text=True, check=True
    )
    assert done.stdout == answers[1]


def test_where_renders_again(orv: Command, tmp_path: Path) -> None:
    (tmp_path / "orv.toml").write_text('[run.r]\ntemplate = "a.j2"\nout = "o"\nset = ["n=1"]\n')
    template = section("{# \f #}int a;\n{{ n }}")
    assert orv("generate", a__j2=template).returncode == 0
    assert "    a.j2:2: {{ n }}" in orv("where", "o/a.c:2").stdout
    (found,) = json.loads(orv("where", "o/a.c:2", "--json").stdout)
    assert [(p["text"], p["file"], p["line"]) for p in found["pieces"]] == [
        ("1", "a.j2", 2),
        ("\n", None, None),
    ]
    (tmp_path / "a.j2").write_text(template.replace("int", "long"))
    for place, message in {
        "o/a.c:2": 'o/a.c:1: the file has "int a;", the templates make "long a;"; generate again',
        "o/b.c:1": "error: o/b.c: no run that is known makes this file",
    }.items():
        done = orv("where", place)
        assert (done.returncode, done.stderr) == (1, message + "\n")
    assert orv("generate").returncode == 0
    done = orv("where", "o/a.c:7")
    assert (done.returncode, done.stderr) == (1, "o/a.c:7: the file has 2 lines\n")
    project = tmp_path / "orv.toml"
    broken = '[run.broken]\ntemplate = "none.j2"\nout = "p"\n'
    project.write_text(f'{project.read_text()}trace = "t.json"\n{broken}')
    assert orv("generate", "--run", "r").returncode == 0
    assert orv("where", "a.c:1", cwd=tmp_path / "o").stdout.startswith("a.c:1: long a;\n")


def test_user_regions(orv: Command, tmp_path: Path) -> None:
    template = section(
        "{% indent 1 %}a{% user 'r' %}\nold\n{% enduser %}b\n{% user 's' %}\nx\n{% enduser %}\n"
        "{% function 'f' %}c{% endfunction %}{% endindent %}"
    )
    command = ["generate", "a.j2", "--out", "o", "--trace", "t.json"]
    assert orv(*command, a__j2=template).returncode == 0
    file = tmp_path / "o" / "a.c"
    file.write_bytes(file.read_bytes().replace(b"old\n", b"mine\n\n").replace(b"\n", b"\r\n"))
    assert orv(*command).stderr == ""
    trace = tracing.read(tmp_path / "t.json")
    assert list(pieces(trace, "a.c", file.read_bytes())) == [
        "' a' text a.j2:1 [Enums]",
        "'\\r\\n /* USER CODE BEGIN r */\\r\\n' marker a.j2:1 [Enums]",
        "' mine\\r\\n\\r\\n' user region [Enums.r]",
        "' /* USER CODE END r */\\r\\n' marker a.j2:1 [Enums]",
        "' b\\r\\n' text a.j2:3 [Enums]",
        "' /* USER CODE BEGIN s */\\r\\n' marker a.j2:4 [Enums]",
        "' x\\r\\n' user region [Enums.s]",
        "' /* USER CODE END s */\\r\\n' marker a.j2:4 [Enums]",
        "'c' text a.j2:7 [Functions.f]",
        "'\\r\\n' final newline []",
    ]


# What a value of a trace file, or all of it, is replaced by, and what is said when it is read.
DAMAGES: list[tuple[str, Any, str]] = [
    ("", "[" * 100_000, "expected a trace file, which is JSON: maximum recursion depth exceeded"
     " while decoding a JSON array from a unicode string"),
    ("format", None, 'expected a trace file, which has "format": "orv-trace"'),
    ("version", 2, "the trace file has version 2; this program reads 1"),
    ("files", [{}], '"files" is missing or has another form'),
    ("folder", 7, '"folder" is missing or has another form'),
    ("sites", [[0, 0, -1]], '"sites" is missing or has another form'),
    ("strings", "text", '"strings" is missing or has another form'),
    ("size", True, '"files" is missing or has another form'),
    ("sites", [[0, 0, 0]], "a table has no entry 13"),
    ("labels", [], "a table has no entry 2"),
    ("links", "", "a table has no entry 0"),
    ("links", "c", "the table of numbers is damaged"),
    ("links", "CcEA", "a chain does not end"),
    ("ranges", "CgBA", "a table has no entry 16"),
    ("lines", "", "a table has no entry 0"),
]  # fmt: skip


@pytest.mark.parametrize(("key", "value", "said"), DAMAGES)
def test_damaged_files_are_refused(tmp_path: Path, key: str, value: Any, said: str) -> None:
    trace, _ = traced("{% macro m() %}a\nb\nc{% endmacro %}" + section("x{{ m() }}"))
    document = json.loads(json.dumps(trace._document))
    for table in (document, document["files"][0]):
        if key in table:
            table[key] = value
    path = tmp_path / "trace.json"
    path.write_text(json.dumps(document) if key else value)
    with pytest.raises(tracing.TraceError) as caught:
        read = tracing.read(path)
        for piece in read.files["a.c"].pieces():
            read.chain(piece.link)
    damaged = "" if key in ("", "format", "version") else "the trace file is damaged: "
    assert str(caught.value) == f"{path}: {damaged}{said}"
