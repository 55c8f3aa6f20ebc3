"""What a user meets before a run: manual pages, completion, and an engine that lacks a part."""

from __future__ import annotations

import gzip
import os
import shutil
import subprocess
from pathlib import Path

import orv as package
from conftest import Command

from orv.command.commands import COMMANDS

PACKAGE = Path(package.__file__).parent
SHARE = PACKAGE.parents[1] / "share"

# What a shell offers for the last word of a command line.
COMPLETIONS = {
    "orv gen": "generate",
    "orv generate --ou": "--out --outputs",
    "orv generate --out ''": "folder",
    "orv generate --check ''": "folder main.j2",
    "orv generate --model x = m": "main.j2",
    "orv generate --set x=1 main.j2 m": "main.j2",
}
_COMPLETE = (
    "COMP_WORDS=({}); COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1)); _shtab_orv;"
    " echo $(printf '%s\\n' ${{COMPREPLY[@]}} | sort)\n"
)


def test_completion(tmp_path: Path) -> None:
    (tmp_path / "folder").mkdir()
    (tmp_path / "main.j2").touch()
    script = f"source {SHARE}/bash-completion/completions/orv\n"
    script += "".join(_COMPLETE.format(line) for line in COMPLETIONS)
    done = subprocess.run(
        ["bash", "-c", script], cwd=tmp_path, capture_output=True, text=True, check=True
    )
    assert dict(zip(COMPLETIONS, done.stdout.splitlines())) == COMPLETIONS
    zsh = (SHARE / "zsh/site-functions/_orv").read_text()
    assert "--depfile[write the dependencies" in zsh


def test_manual_pages_name_every_option() -> None:
    for command in COMMANDS:
        page = gzip.decompress((SHARE / f"man/man1/orv-{command.name}.1.gz").read_bytes()).decode()
        lines = page.replace("\\-", "-").splitlines()
        for option in command.options:
            position = lines.index(option.full_help)
            assert option.name in lines[position - 1].lower() and lines[position - 2] == ".TP"
    main = gzip.decompress((SHARE / "man/man1/orv.1.gz").read_bytes()).decode()
    assert main.startswith(f'.TH ORV 1 "" "orv {package.__version__}"')


def test_help_is_shown_for_every_command(orv: Command) -> None:
    for command in COMMANDS:
        done = orv(command.name, "--help")
        assert done.returncode == 0, done.stderr
        shown = " ".join(done.stdout.split())
        assert all(" ".join(option.full_help.split()) in shown for option in command.options)


def test_a_missing_part_is_a_sentence(orv: Command, tmp_path: Path) -> None:
    shutil.copytree(PACKAGE, tmp_path / "bare/orv", ignore=shutil.ignore_patterns("*.so"))
    generate = ["generate", "t.j2", "--out", "o", "--model", "m.json"]
    for missing, path, arguments, message in (
        ("", "bare", generate, "the native part of orv cannot be loaded: "),
        ("jinja2", "", generate, "the Python package jinja2 cannot be loaded"),
        (
            "jsonschema",
            "",
            generate + ["--schema", "m.json"],
            "the Python package jsonschema cannot",
        ),
    ):
        if missing:
            (tmp_path / missing).mkdir()
            text = f"raise ImportError('gone', name={missing!r})\n"
            (tmp_path / missing / f"{missing}.py").write_text(text)
            path = f"{tmp_path / missing}{os.pathsep}{PACKAGE.parent}"
        done = orv(*arguments, env={"PYTHONPATH": path}, t__j2="", m__json="{}")
        assert (done.returncode, done.stdout) == (1, "")
        assert done.stderr.startswith(f"error: {message}") and done.stderr.count("\n") == 1
        assert orv("--version", env={"PYTHONPATH": path}).stdout == f"orv {package.__version__}\n"
