"""What templates may do to a run: its model, its memory and time, and the sameness of its bytes.

The folder payloads has expressions: refused.txt by message, honest.txt with what they print. In
them TEXT@*N@ is TEXT repeated N times; TEXT is an operator with its operand, or one character.
"""

from __future__ import annotations

import copy
import os
import re
from contextlib import suppress
from array import array
from collections import Counter, OrderedDict, deque
from datetime import date
from pathlib import Path
from typing import Any

import pytest
from jinja2 import DictLoader

from orv.errors import Messages, OrvError
from orv.files.run import Run
from orv.templates.sandbox.budget import Budget
from orv.templates.engine import Source, render
from orv.templates.environment import Environment
from orv.templates.library import Language
from orv.templates.printable import refuse_outside, text_of

PAYLOADS = Path(__file__).parent / "payloads"

# What payloads build upon.
_BEFORE = (
    "{% macro repeat(n) %}{% for i in range(n) %}{{ 'x' * 999999 }}{% endfor %}{% endmacro %}"
    '{% file "a" %}{% section "Enums" %}'
)
_AFTER = "{% endsection %}{% endfile %}"

BIG = "x" * (1 << 27)


class Opaque:
    """A value whose text is its address."""


def nested(depth: int, width: int) -> list[Any]:
    value: list[Any] = []
    for _ in range(depth):
        value = [value] * width
    return value


def model() -> dict[str, Any]:
    return {
        "m": {
            "l": [3, 1, 2], "d": {"a": 1}, "s": {f"a{i}" for i in range(9)}, "b": bytearray(b"ab"),
            "q": deque([1, 2]), "o": OrderedDict(a=1, b=2), "c": Counter("aab"),
            "a": array("i", [1, 2]), "mixed": {1, "a"}, "opaque": Opaque(),
            "day": date(2024, 2, 29),
        },
        "big": BIG, "x": "x", "f": str, "nest": lambda n: nested(n, 2),
        "deep": lambda n: nested(n, 1),
    }  # fmt: skip


def printed(expression: str, values: dict[str, Any]) -> str:
    text = f"{_BEFORE}{{{{ {expression} }}}}{_AFTER}"
    budget = Budget(text=16, memory=2048, seconds=20)
    source = Source("main.j2", DictLoader({"main.j2": text}))
    run = render([source], values, Messages(), budget=budget)
    return run.repository.section_text(0, "Enums")


def _run() -> Run:
    return Run(Messages(), text_of, refuse_outside)


def unfolded(payload: str) -> str:
    return re.sub(
        r"(1 if 1 else |not |1 and |\"a\" ~ |\(1\)|\{1:|[xf][\[(]|[|.]\w+|\d[+*]|.)@\*(\d+)@",
        lambda found: found[1] * int(found[2]),
        payload,
    )


def refused() -> list[tuple[str, str]]:
    groups = (PAYLOADS / "refused.txt").read_text().removeprefix("=== ").split("\n=== ")
    return [(line, group.split("\n")[0]) for group in groups for line in group.splitlines()[1:]]


def honest() -> list[tuple[str, str]]:
    lines = (PAYLOADS / "honest.txt").read_text().splitlines()
    return [(line.partition(" => ")[0], line.partition(" => ")[2]) for line in lines]


@pytest.mark.parametrize(("payload", "message"), refused())
def test_refused(payload: str, message: str) -> None:
    with pytest.raises(OrvError) as raised:
        printed(unfolded(payload), model())
    assert str(raised.value).splitlines()[0] == f"main.j2:1: {message}"


@pytest.mark.parametrize(("payload", "result"), honest())
def test_honest(payload: str, result: str) -> None:
    assert repr(printed(unfolded(payload), model())) == result


@pytest.mark.parametrize("name", "ldsbqoca")
def test_nothing_of_the_model_changes(name: str) -> None:
    values = model()
    container = values["m"][name]
    before = copy.deepcopy(container)
    kind = type(container).__name__
    methods = [method for method in dir(container) if not method.startswith("_")]
    environment = Environment(_run(), DictLoader({}), Language())
    for method in [*methods, "__delitem__", "__init__", "__setitem__"]:
        for way in (
            f"m.{name}.{method}(",
            f'(m.{name}|attr("{method}"))(',
            f"t.{method}(m.{name},",
        ):
            for arguments in ("", "1", "0, 1", '"a"', "[1]"):
                template: Any = environment.from_string(f"{{% do {way}{arguments}) %}}")
                with suppress(Exception):
                    template.run(template.new_context(values | {"t": type(container)}))
                assert container == before, f"{way}{arguments}) of {kind}"


TOO_LONG = "the templates take longer than 1 s, which --timeout allows"
BOUNDS = [
    ("--timeout", "{% set y = i + 1 %}", TOO_LONG),
    # One step of the interpreter, which does not look at the clock.
    (
        "--timeout",
        "{% set n = namespace(a=[], b=[]) %}{% for k in range(60) %}{% set n.a = [n.a, n.a] %}"
        "{% set n.b = [n.b, n.b] %}{% endfor %}{{ n.a == n.b }}",
        TOO_LONG,
    ),
    ("--max-memory", '{% do c.add("x" * 1000000 ~ i) %}', "the memory is exhausted"),
    ("--max-text", "{{ 'x' * 1000000 }}", "the templates print more text than --max-text allows"),
]


@pytest.mark.parametrize(("option", "body", "message"), BOUNDS)
def test_bounds_end_a_run_at_its_line(option: str, body: str, message: str, orv: Any) -> None:
    if option == "--max-memory" and "asan" in os.environ.get("LD_PRELOAD", ""):
        pytest.skip("the sanitizer's allocator ends the process when memory is exhausted")
    text = (
        '{% set c = collector() %}{% file "a.c" %}{% section "Enums" %}{% for j in range(99999) %}'
        f"{{% for i in range(99999) %}}\n{body}{{% endfor %}}{{% endfor %}}{_AFTER}"
    )
    done = orv("generate", "t.j2", "--out", "out", "--timeout=20", f"{option}=1", t__j2=text)
    if option == "--max-memory":
        done = orv("generate", "t.j2", "--out", "out", "--timeout=20", f"{option}=64")
    assert (done.returncode, done.stdout, done.stderr) == (1, "", f"t.j2:2: {message}\n")


def test_bytes_do_not_depend_on_the_order_of_hashes(orv: Any, tmp_path: Path) -> None:
    extension = (
        'import orv\n@orv.function\ndef names():\n    return {"n%d" % i for i in range(30)}\n'
        "@orv.filter\ndef letters(text):\n    return frozenset(text)\n"
    )
    template = (
        '{% file "a.c" %}{% section "Enums" %}{% for n in names() %}{{ n }}{% endfor %}'
        '{{ names()|join }}{{ "hello"|letters|join }}{{ ({"a": 1, "b": 2, "c": 3}.keys() - [])|list'
        "|join }}{% endsection %}{% endfile %}"
    )
    made = set()
    for seed in "012":
        done = orv(
            "generate", "t.j2", "--out", seed, "--extend", "e.py", t__j2=template, e__py=extension,
            env={"PYTHONHASHSEED": seed},
        )  # fmt: skip
        assert done.returncode == 0, done.stderr
        made.add((tmp_path / seed / "a.c").read_text())
    assert len(made) == 1
