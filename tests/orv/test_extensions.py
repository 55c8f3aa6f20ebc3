"""Python beside templates: extensions, what they depend on, and functions that templates call."""

from __future__ import annotations

import os
from pathlib import Path

import pytest
from conftest import Command, files_of, stderr_of

import orv as api
from orv.errors import OrvError

EXTENSION = """\
import orv
import helpers

@orv.filter
def member(name: str) -> str:
    import late
    return helpers.PREFIX + name

@orv.test("paired")
def is_even(number: int) -> bool:
    return number % 2 == 0

calls = []

@orv.function
def count(step: int = 1) -> int:
    calls.append(step)
    return sum(calls)

@orv.filter
def counted(value: str) -> str:
    return value + str(count())

@orv.prepare
def add(model: orv.Model) -> orv.Model:
    orv.depends("data.txt")
    return model | {"fields": ["a", "b"]}

@orv.prepare
def reverse(model: orv.Model) -> orv.Model:
    model["fields"].reverse()
    return model
"""
TEMPLATE = """\
{{ depends("./t.j2") }}{{ debug(fields) }}
{% file "a.c" %}{% section "Enums" %}
{% for f in fields %}{{ f|member }} {{ "x"|counted }} {{ 'e' if loop.index is paired }} {% endfor %}
{{ count(step=5) }}{% endsection %}{% endfile %}
"""

# What is in a cycle, as the class is with its method, is freed at the end of the process.
SCRIPT = """\
import shown
depends('s.txt')
class Late:
    def __del__(self):
        open("freed", "w")
late = Late()
"""


def test_extensions(orv: Command, tmp_path: Path) -> None:
    (tmp_path / "other").mkdir()
    (tmp_path / "other" / "helpers.py").write_text('PREFIX = "other"\n')
    (tmp_path / "other" / "e.py").write_text("import helpers\nassert helpers.PREFIX == 'other'\n")
    (tmp_path / "lib").mkdir()
    (tmp_path / "lib" / "late.py").write_text("")
    done = orv(
        "generate", "t.j2", "--extend", "other/e.py", "--extend", "e.py", "--out", "out",
        "--depfile", "/dev/stdout", "--depfile-target", "out/a.c", "--quiet", "--script", "s.py",
        env={"PYTHONPATH": f"{tmp_path / 'lib'}{os.pathsep}{os.environ.get('PYTHONPATH', '')}"},
        t__j2=TEMPLATE, s__py=SCRIPT, shown__py="", s__txt="",
        e__py=EXTENSION, helpers__py='PREFIX = "m_"\n', data__txt="",
    )  # fmt: skip
    assert (done.returncode, done.stderr) == (0, "debug: t.j2:1: ['b', 'a']\n")
    assert (tmp_path / "out" / "a.c").read_text() == "m_b x1  m_a x2 e 7\n"
    read = ["data.txt", "e.py", "helpers.py", "lib/late.py", "other/e.py", "other/helpers.py",
            "s.py", "s.txt", "shown.py", "t.j2"]  # fmt: skip
    assert done.stdout == "out/a.c: \\\n  " + " \\\n  ".join(read) + "\n"
    assert not list(tmp_path.rglob("__pycache__"))
    assert (tmp_path / "freed").exists()


# The extension from its second line on, the template, and what is said.
FAILURES = {
    "e.py:3: unmatched ')'": (")", ""),
    "e.py:3: KeyError: 'x'": ("{}['x']", ""),
    "h.py:1: ZeroDivisionError: division by zero": ("import h", ""),
    "e.py: the extension ended with 3": ("raise SystemExit(3)", ""),
    'e.py:4: the filter "a" is declared at e.py:3 already':
        ("orv.filter('a')(lambda v: v)\norv.filter('a')(lambda v: v)", ""),
    'e.py:3: a filter is called by a name; "a b" is none':
        ("orv.filter('a b')(lambda v: v)", ""),
    'e.py:3: there is a filter "upper" already; give this one another name: @orv.filter("NAME")':
        ("orv.filter('upper')(lambda v: v)", ""),
    "e.py:3: f gives NoneType; a preparation returns the model, a dict with names as keys":
        ("def f(model): pass\norv.prepare(f)", ""),
    "e.py:4: there are no fields":
        ("def f(model):\n    raise orv.OrvError('there are no fields')\norv.prepare(f)", ""),
    "h.py:2: KeyError: 'x'; called from t.j2:2":
        ("from hh import f\norv.filter('f')(f)", "\n{{ 'x' | f }}"),
    "t.j2:2: no such type": (
        "def f(name):\n    raise orv.OrvError('no such type')\norv.function(f)", "\n{{ f(1) }}"),
    "t.j2:1: f is given too many arguments":
        ("def f(): pass\norv.function(f)", "{{ f(1) }}"),
    't.j2:1: depends: there is no file "no"': ("", "{{ depends('no') }}"),
}  # fmt: skip


@pytest.mark.parametrize("message", FAILURES)
def test_failures(orv: Command, message: str) -> None:
    extension, template = FAILURES[message]
    helpers = "1 / 0\n" if extension == "import h" else "def f(value):\n    return {}[value]\n"
    done = orv("generate", "t.j2", "--extend", "e.py", "--out", "o", t__j2=template,
               e__py=f"import orv\n\n{extension}\n", h__py=helpers,
               hh__py="from h import f\n")  # fmt: skip
    assert (done.returncode, done.stderr) == (1, stderr_of(message))


def test_decorators_leave_functions_as_they_are_outside_of_a_run() -> None:
    assert api.filter("x")(len) is len and api.test(len) is len and api.prepare(dict) is dict
    assert api.depends(__file__) == ""


SECTION = '{% file "a.c" %}{% section "Enums" %}'
END = "{% endsection %}{% endfile %}"

PRINTED = {
    "{% set c = collector() %}{% for i in range(3) %}{% do c.add(i) %}{% endfor %}"
    "{{ c | join }}{{ c | length }}{{ c[-1] }}{{ 'y' if 2 in c }}": "01232y",
    "{% set c = collector() %}{% for k in ['b', 'a', 'b'] %}{{ c.put(k, loop.index) }}{% endfor %}"
    "{% for k, v in c.items() %}{{ k }}{{ v }}{% endfor %}{{ c.get('z', 0) }}{{ c.a }}{{ c['b'] }}"
    "{{ c.keys() | join }}{{ c.values() | join }}": "b3a2023ba32",
    "{% for i in range(9) %}{% if i == 1 %}{% continue %}{% elif i == 3 %}{% break %}{% endif %}"
    "{{ i }}{% endfor %}": "02",
}
REFUSED = {
    "{% set c = collector() %}{% do c.add(1) %}{% for i in c %}{% do c.add(i) %}{% endfor %}":
        "the collector grew while a loop went over it",
    "{% set c = collector() %}{% do c.add(1) %}{% do c.put(1, 2) %}":
        "the collector has been filled with add; put is for dictionaries",
    "{% do collector().put([], 1) %}": "put expects a text or a number as key, got list",
    '{{ warn("odd") }}': "odd",
}  # fmt: skip


@pytest.mark.parametrize("body", [*PRINTED, *REFUSED])
def test_functions_of_templates(body: str) -> None:
    try:
        outcome = files_of(SECTION + body + END, strict=True)["a.c"]
    except OrvError as error:
        outcome = str(error)
    wanted = REFUSED.get(body)
    assert outcome == (f"main.j2:1: {wanted}" if wanted else PRINTED[body] + "\n")


def test_delimiters_and_relative_templates(orv: Command, tmp_path: Path) -> None:
    (tmp_path / "a" / "b").mkdir(parents=True)
    (tmp_path / "a" / "b" / "m.j2").write_text('<% import "../n.j2" as n %><% include "./i.j2" %>')
    (tmp_path / "a" / "n.j2").write_text("")
    text = (
        '<% file "a.c" %><% section "Enums" %>int a[] = {{0}}; <<1>>\n'
        '<# c\n#>\n  <% indent %><<"b\\nc">><% endindent %><% endsection %><% endfile %>'
    )
    (tmp_path / "a" / "b" / "i.j2").write_text(text)
    run = ("generate", "t.j2", "--out", "o", "--delimiters")
    done = orv(*run, "<% %> << >> <# #>", t__j2='<# no #><% include "a/b/m.j2" %>')
    assert (done.returncode, done.stderr) == (0, "")
    assert (tmp_path / "o" / "a.c").read_text() == "int a[] = {{0}}; 1\n  b\n  c\n"
    wrong = '<% section "Enums" %><% break %><< none >>'
    done = orv("lint", "w.j2", *run[-1:], "<% %> << >> <# #>", w__j2=wrong)
    assert done.stderr.splitlines() == [
        "w.j2:1: <% section %> is never ended: expected <% endsection %>"
    ]
    done = orv(*run, "<% %> << >> <# #>", t__j2=wrong[:21] + "<% endsection %>")
    assert done.stderr.endswith(
        'put this between <% file ... %> and <% endfile %> or say which file it is for: of "NAME"\n'
    )
    done = orv(*run, "<% %> << >> <# #>", t__j2="<< none >>{{ 1 }}")
    assert done.stderr.endswith('write << "NULL" if VALUE is none else VALUE >>\n')
    assert orv(*run, "<% %>").stderr.endswith(
        "error: argument --delimiters: expected three different pairs such as '<% %> << >> <# #>',"
        " got '<% %>'\nTry 'orv generate --help'.\n"
    )
