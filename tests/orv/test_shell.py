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
    "orv generate --ou": "--out",
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


def test_a_missing_part_is_a_sentence(orv: Command, tmp_path: Path) -> None:
    shutil.copytree(PACKAGE, tmp_path / "bare/orv", ignore=shutil.ignore_patterns("*.so"))
    (tmp_path / "jinja2.py").write_text("raise ImportError('gone', name='jinja2')\n")
    for path, message in (
        ("bare", "the native part of orv cannot be loaded: "),
        (f"{tmp_path}{os.pathsep}{PACKAGE.parent}", "the Python package jinja2 cannot be loaded"),
    ):
        arguments = ("generate", "t.j2", "--out", "o", "--model", "m.json")
        done = orv(*arguments, env={"PYTHONPATH": path}, t__j2="", m__json="{}")
        assert (done.returncode, done.stdout) == (1, "")
        assert done.stderr.startswith(f"error: {message}") and done.stderr.count("\n") == 1
        assert orv("--version", env={"PYTHONPATH": path}).stdout == f"orv {package.__version__}\n"
