"""Calls that Hypothesis makes up: of host classes, of templates and of models.

Each case is a run of many examples; a failure is reduced to a small one.
"""

from __future__ import annotations

import gc
import json
import os
import random
import threading
from collections.abc import Callable
from pathlib import Path
from typing import Any

import orbel
from conftest import files_of
from hypothesis import HealthCheck, given, seed, settings
from hypothesis import strategies as st
from orv._native import read_model
from orv.errors import OrvError

EXAMPLES = 100
FRAGMENTS = Path(__file__).with_name("fragments.txt").read_text().split("\n\n")
STATEMENTS, EXPRESSIONS, FILTERS = (part.splitlines()[1:] for part in FRAGMENTS[:3])

BYTES = st.binary(max_size=30).map(lambda data: data.decode(errors="surrogateescape"))
TEXTS = BYTES.filter(lambda text: "\0" not in text)


def examples(case: int, strategy: st.SearchStrategy[Any], check: Callable[[Any], None]) -> None:
    """Check examples of a strategy that follow from the number of the case."""
    quiet = settings(
        max_examples=EXAMPLES,
        deadline=None,
        database=None,
        suppress_health_check=list(HealthCheck),
    )
    seed(case)(quiet(given(strategy)(check)))()


# Of files: what can be set, and what it is set to.
ATTRIBUTES = st.one_of(
    st.tuples(
        st.sampled_from(["Type", "Creator", "CodeTemplate", "OutputDirectory", "Group"]), BYTES
    ),
    st.tuples(
        st.sampled_from(["Filtered", "WrittenToDisk", "Indent", "Shared", "SharedType"]),
        st.booleans(),
    ),
    st.tuples(st.just("SystemsInFile"), st.lists(BYTES, max_size=4)),
)
STEPS = st.lists(
    st.one_of(
        st.tuples(st.just("file"), st.tuples(st.sampled_from(["Generic", "DataTypes"]), BYTES)),
        st.tuples(st.just("set"), ATTRIBUTES),
        st.tuples(st.just("function"), st.tuples(BYTES, TEXTS)),
        st.tuples(st.just("text"), TEXTS),
        st.tuples(st.sampled_from(["collect", "thread", "fork", "compare"]), st.none()),
    ),
    max_size=40,
)


class Session:
    """A script's repository, and beside it what should be in it."""

    def __init__(self, varn: Any) -> None:
        self.repository = varn.VarnFileRepository()
        self.files: list[tuple[Any, dict[str, Any], list[str], list[str]]] = []

    def step(self, name: str, argument: Any) -> None:
        getattr(self, name)(argument)

    def file(self, argument: tuple[str, str]) -> None:
        kind, name = argument
        made = getattr(self.repository, f"create{kind}File")(name)
        self.files.append((made, {"Name": made.Name}, [], []))
        assert self.repository.findFileByName(name) == made

    def set(self, argument: tuple[str, Any]) -> None:
        for made, attributes, _, _ in self.files[-1:]:
            name, value = argument
            setattr(made, name, value)
            attributes[name] = value

    def function(self, argument: tuple[str, str]) -> None:
        for made, _, functions, _ in self.files[-1:]:
            if made.hasSection("FUNCTIONS_SECTION"):
                made.getFunctionsSection().addFunction(*argument)
                functions.append(argument[1])

    def text(self, text: str) -> None:
        for made, _, _, typedefs in self.files[-1:]:
            made.getTypedefsSection().addContent(text)
            typedefs.append(text)

    def collect(self, _: None) -> None:
        gc.collect()

    def thread(self, _: None) -> None:
        thread = threading.Thread(target=self.compare, args=(None,))
        thread.start()
        thread.join()

    def fork(self, _: None) -> None:
        child = os.fork()
        if child == 0:
            try:
                self.compare(None)
            except BaseException:
                os._exit(1)
            os._exit(0)
        assert os.waitpid(child, 0)[1] == 0

    def compare(self, _: None) -> None:
        assert list(self.repository.FileList) == [made for made, *_ in self.files]
        for made, attributes, functions, typedefs in self.files:
            assert {name: getattr(made, name) for name in attributes} == attributes
            assert _bytes(made.getTypedefsSection().getContent()) == b"".join(map(_bytes, typedefs))
            if functions:
                section = made.getFunctionsSection()
                numbers = range(1, section.getNumberOfFunctions() + 1)
                assert [section.getFunction(number) for number in numbers] == functions


def _bytes(text: str) -> bytes:
    """Pieces of a character become one when texts are joined."""
    return text.encode(errors="surrogateescape")


def scripts(_: Path, case: int, __: random.Random) -> None:
    """Sessions of scripts with the classes and properties that they see."""
    varn = orbel.load("varn_filepackaging")

    def check(steps: list[tuple[str, Any]]) -> None:
        session = Session(varn)
        for name, argument in steps:
            session.step(name, argument)
        session.compare(None)

    examples(case, STEPS, check)


def _filled(pattern: str, *parts: str) -> str:
    for part in parts:
        pattern = pattern.replace("$", part, 1)
    return pattern.replace("$", "1")


_values = st.recursive(
    st.sampled_from(EXPRESSIONS),
    lambda inner: st.builds(_filled, st.sampled_from(FILTERS), inner, inner),
    max_leaves=4,
)
_bodies = st.recursive(
    _values.map("{{{{ {} }}}}".format) | st.sampled_from(["text\n", " ", "é"]),
    lambda inner: st.lists(inner, max_size=4).map("".join)
    | st.builds(
        lambda statement, value, body: _filled(statement, value).replace("BODY", body),
        st.sampled_from(STATEMENTS),
        _values,
        inner,
    ),
    max_leaves=12,
)
HEAD = '{% file "a.c" %}{% custom "Licence" on "Typedefs" %}{% section "Banner" %}'
MODEL = {"l": [3, 1, 2], "d": {"a": 1, "b": {"c": "x"}}, "s": "a b_c", "n": 7, "e": "", "z": None}


def templates(_: Path, case: int, __: random.Random) -> None:
    """Templates of known fragments: files or an error, and the same ones every time."""

    def outcome(template: str) -> str:
        try:
            return repr(files_of(template, MODEL))
        except OrvError as error:
            return f"{type(error).__name__}: {error}"

    def check(body: str) -> None:
        template = HEAD + body + "{% endsection %}{% endfile %}"
        said = outcome(template)
        assert " object at 0x" not in said, said
        assert outcome(template) == said

    examples(case, _bodies, check)


# All that YAML takes as they are.
_characters = st.characters(
    blacklist_categories=["Cc", "Cs"], blacklist_characters="\ufeff\ufffe\uffff"
)
_scalars = (
    st.none()
    | st.booleans()
    | st.integers(-(2**70), 2**70)
    | st.floats(allow_nan=False, allow_infinity=False)
    | st.text(_characters, max_size=20)
)
_keys = st.text(_characters, max_size=10)
_models = st.dictionaries(
    _keys,
    st.recursive(
        _scalars,
        lambda inner: st.lists(inner, max_size=5) | st.dictionaries(_keys, inner, max_size=5),
    ),
    max_size=5,
)


def models(_: Path, case: int, __: random.Random) -> None:
    """Models that are written as JSON, which is YAML too, and read back."""

    def check(model: dict[str, Any]) -> None:
        # In YAML, a character beyond 16 bits is no pair of escapes.
        for format_, ascii_only in (("json", True), ("json", False), ("yaml", False)):
            text = json.dumps(model, ensure_ascii=ascii_only).encode()
            value, _ = read_model(format_, text, "m", None)
            assert _same(value, model), (format_, text, value)

    examples(case, _models, check)


def _same(left: Any, right: Any) -> bool:
    if isinstance(left, dict) and isinstance(right, dict):
        return list(left) == list(right) and all(_same(left[key], right[key]) for key in left)
    if isinstance(left, list) and isinstance(right, list):
        return len(left) == len(right) and all(map(_same, left, right))
    return type(left) is type(right) and bool(left == right)


ATTACKS = [scripts, templates, models]
