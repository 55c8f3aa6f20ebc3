"""Mistakes of authors, and what they are told: the cases are in the folder mistakes.

A case begins with "=== " and the whole message, and "--- NAME" begins each of its files. The first
file is the template that is rendered, strictly, or linted when it is called lint.j2.
"""

from __future__ import annotations

import os
from pathlib import Path

import pytest

from orv.errors import Messages, OrvError
from orv.models.model import build_model
from orv.models.sources import ModelSource
from orv.output.folder import open_folder
from orv.output.guards import check_guards
from orv.output.plan import plan
from orv.templates.engine import lint, render, source_beside

MODEL = "model.toml"


def cases() -> list[tuple[str, dict[str, str]]]:
    found: list[tuple[str, dict[str, str]]] = []
    for path in sorted((Path(__file__).parent / "mistakes").glob("*.txt")):
        for case in path.read_text().removeprefix("=== ").split("\n=== "):
            message, *parts = case.split("\n--- ")
            files = {
                part.partition("\n")[0]: part.partition("\n")[2].rstrip("\n") for part in parts
            }
            found.append((message, files))
    return found


@pytest.mark.parametrize(("message", "files"), cases())
def test_message(
    message: str, files: dict[str, str], tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    monkeypatch.chdir(tmp_path)
    for name, text in {MODEL: "day = 2024-02-29\n[m]\nx = 1", **files}.items():
        Path(name).write_text(text, encoding="latin-1" if name.startswith("latin") else "utf-8")
    try:
        said = "\n".join(_said(next(iter(files))))
    except OrvError as error:
        said = str(error)
    assert said == message


def _said(template: str) -> list[str]:
    source = source_beside(template, [], [])
    if template == "lint.j2":
        return lint([source])
    messages = Messages(strict=True)
    path = next(
        (name for name in sorted(os.listdir()) if name != MODEL and "model." in name), MODEL
    )
    model = build_model([ModelSource(None, path)], [])
    run = render([source], model.values, messages, places=model.places)
    check_guards(plan(run, open_folder("out")), run)
    return []
