"""The examples of the documentation do what they say."""

from __future__ import annotations

import doctest
import json
import re
from collections.abc import Sequence
from pathlib import Path
from typing import NamedTuple

import pytest
from conftest import files_of

from orv import _native, interface
from orv.delimiters import DELIMITERS
from orv.errors import OrvError
from orv.extensions import Extensions
from orv.output.layout import Layout
from orv.templates.library import Language

DOCUMENT = Path(__file__).parents[2] / "docs" / "templates.md"
BLOCK = re.compile(r"^(?:#+ (.+)|```(\w+) ?(.*)\n((?:.*\n)*?)```)$", re.MULTILINE)


class Example(NamedTuple):
    """A main template with what belongs to it."""

    title: str
    templates: dict[str, str]
    model: dict[str, object]
    strict: bool
    files: dict[str, str]
    message: list[str]
    extensions: dict[str, str]
    delimiters: Sequence[str]
    guard: str
    before: dict[str, str]


def examples() -> list[Example]:
    found: list[Example] = []
    model: dict[str, object] = {}
    more: dict[str, str] = {}
    extensions: dict[str, str] = {}
    title = ""
    for heading, language, argument, text in BLOCK.findall(DOCUMENT.read_text()):
        title = heading or title
        if language == "json":
            model = json.loads(text)
        elif language == "jinja" and argument.endswith(".j2"):
            more[argument] = text
        elif language == "python" and argument:
            extensions[argument] = text
        elif language == "jinja":
            templates, strict = {"main.j2": text, **more}, argument == "strict"
            guard = argument.removeprefix("--guard ") if argument.startswith("--guard ") else ""
            delimiters = argument.split() if argument and not (strict or guard) else DELIMITERS
            found.append(
                Example(title, templates, model, strict, {}, [], extensions, delimiters, guard, {})
            )
            model, more, extensions = {}, {}, {}
        elif argument.startswith("before "):
            found[-1].before[argument.removeprefix("before ")] = text
        elif language == "text" and not argument:
            found[-1].message.append(text.strip())
        elif argument:
            found[-1].files[argument] = text
    return found


def test_table_of_sections() -> None:
    rows = re.findall(r"^\| (\w+) \|.*\| (\d+) \| (\d+) \|$", DOCUMENT.read_text(), re.MULTILINE)
    sections = "".join(
        f'{{% section "{name}" %}}{name}{{% endsection %}}' for name in _native.SECTION_NAMES[:-1]
    )
    for column, name in ((1, "a.h"), (2, "a.c")):
        expected = [row[0] for row in sorted(rows, key=lambda row: int(row[column]))]
        text = files_of(f'{{% file "{name}" %}}{sections}{{% endfile %}}')[name]
        assert text.split() == expected


@pytest.mark.parametrize("example", examples(), ids=lambda e: str(e.title))
def test_example(example: Example, tmp_path: Path) -> None:
    extensions = Extensions()
    for name, text in example.extensions.items():
        (tmp_path / name).write_text(text)
        extensions.load(str(tmp_path / name))
    try:
        outcome: object = files_of(
            example.templates,
            extensions.prepare(example.model),
            example.strict,
            language=Language(extensions, example.delimiters),
            layout=Layout(guard=example.guard),
            before=example.before,
        )
    except OrvError as error:
        outcome = [str(error)]
    assert outcome == (example.message or example.files)


def test_interface(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.chdir(tmp_path)
    assert doctest.testmod(interface) == (0, 19)
