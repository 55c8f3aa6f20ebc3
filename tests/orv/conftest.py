"""Ways to run the engine and the command, shared by the tests."""

from __future__ import annotations

import os
import re
import subprocess
import sys
from collections.abc import Callable, Mapping
from pathlib import Path
from tempfile import TemporaryDirectory
from types import MappingProxyType

import pytest
from jinja2 import DictLoader

from orv.templates.engine import Source, render
from orv.errors import Messages
from orv.files.regions import KnownRegions
from orv.output.folder import open_folder, texts_on_disk
from orv.output.layout import Layout
from orv.output.plan import plan
from orv.templates.library import Language

# A test's parameter as its name shows it.
_LONGEST_ID = 28


def pytest_make_parametrize_id(val: object) -> str | None:
    """A text on one short line; anything else as pytest has it."""
    if not isinstance(val, str):
        return None
    return " ".join(val.split()).encode("unicode_escape").decode()[:_LONGEST_ID]


Command = Callable[..., subprocess.CompletedProcess[str]]


def files_of(
    templates: str | Mapping[str, str],
    model: Mapping[str, object] | None = None,
    strict: bool = False,
    warnings: list[str] | None = None,
    language: Language = Language(),
    layout: Layout = Layout(),
    before: Mapping[str, str] = MappingProxyType({}),
) -> dict[str, str]:
    """The files that templates make, by path; the first template is the main one.

    The output folder has the files `before`, and templates know the texts of their user regions.
    """
    if isinstance(templates, str):
        templates = {"main.j2": templates}
    heard: list[str] = [] if warnings is None else warnings
    messages = Messages(heard.append, strict)
    source = Source(next(iter(templates)), DictLoader(templates))
    with TemporaryDirectory() as name:
        for path, text in before.items():
            (Path(name) / path).write_text(text)
        folder = open_folder(name)
        known = KnownRegions(None, lambda _, path, markers: texts_on_disk(folder, path, markers))
        run = render([source], model or {}, messages, language=language, known=known)
        return {
            file.path: file.data.decode() for file in plan(run, folder, layout) if not file.is_empty
        }


def stderr_of(message: str) -> str:
    """How the command says an error: one that begins with a line has no word before it."""
    return f"{message}\n" if re.match(r"[^ :]+:\d+: ", message) else f"error: {message}\n"


@pytest.fixture(autouse=True, scope="session")
def cache(tmp_path_factory: pytest.TempPathFactory) -> None:
    """Keep compiled templates and formatted texts of the tests out of the user's cache."""
    os.environ["XDG_CACHE_HOME"] = str(tmp_path_factory.mktemp("cache"))


@pytest.fixture
def orv(tmp_path: Path) -> Command:
    """Runs the command line in a folder of its own, where files can be put before."""

    def run(
        *arguments: str,
        env: Mapping[str, str] | None = None,
        cwd: Path = tmp_path,
        **texts: str,
    ) -> subprocess.CompletedProcess[str]:
        for name, text in texts.items():
            (tmp_path / name.replace("__", ".")).write_text(text)
        return subprocess.run(
            [sys.executable, "-m", "orv", *arguments],
            cwd=cwd,
            env={**os.environ, **(env or {})},
            capture_output=True,
            text=True,
            check=False,
        )

    return run
