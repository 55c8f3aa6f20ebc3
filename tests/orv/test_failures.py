"""What the command says when something fails that nobody foresaw: one message, and nothing left."""

from __future__ import annotations

import os
import subprocess
import sys
from pathlib import Path

import pytest
from conftest import Command

from orv.command import main

# A run in a process of its own for each of the allocations, which fails; one line of result each.
_RUNS = """
import os, sys, _testcapi
import jinja2, orv.command.generate, orv.command.outputs, orv.output.manifest, orv.pythonfiles
from orv.command import main

def run(failing):
    os.dup2(os.open("said", os.O_RDWR | os.O_CREAT | os.O_TRUNC), 2)
    os.dup2(os.open(os.devnull, os.O_WRONLY), 1)
    _testcapi.set_nomemory(failing, failing + 1)
    sys.exit(main(["generate", "t.j2", "--out", "out", "--manifest", "made.json"]))

for failing in range(1, 16000, 900):
    child = os.fork()
    if child == 0:
        run(failing)
    status = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
    print(failing, status, ascii(open("said", errors="replace").read()))
"""


def test_each_failing_allocation_is_one_message(orv: Command, tmp_path: Path) -> None:
    pytest.importorskip("_testcapi")
    (tmp_path / "t.j2").write_text(
        '{% for f in "ab" %}{% file f ~ ".c" %}{% section "Enums" %}{{ f | upper }}{% endsection %}'
        "{% endfile %}{% endfor %}"
    )
    done = subprocess.run(
        [sys.executable, "-c", _RUNS], cwd=tmp_path, capture_output=True, text=True, check=True
    )
    statuses = set()
    for line in done.stdout.splitlines():
        _, status, said = line.split(" ", 2)
        statuses.add(status)
        assert "Traceback" not in said and "ignored" not in said, line
        assert status == "0" or (status == "1" and len(said) > 2), line
    assert "1" in statuses
    left = [name for _, _, names in os.walk(tmp_path) for name in names if name.endswith(".tmp")]
    assert not left


def test_a_fault_of_the_program_is_one_message(
    tmp_path: Path, monkeypatch: pytest.MonkeyPatch, capsys: pytest.CaptureFixture[str]
) -> None:
    names: dict[str, object] = {}
    exec(compile("def fail(*_): raise KeyError('gone')", "x.py", "exec"), names)
    monkeypatch.chdir(tmp_path)
    Path("t.j2").write_text('{% file "a.c" IsEmpty=false %}{% endfile %}')
    fault = "orv failed in x.py, line 1: KeyError: 'gone'"
    for place, message in (
        ("orv.command.outputs.plan", f"error: {fault}; no file was being written\n"),
        (
            "orv.output.writer.Writer._set_modes",
            f"error: out/a.c cannot be written: {fault}\nold  out/a.c\n",
        ),
        (
            "orv.command.outputs.Outputs._list",
            f"error: {fault}; all files are new, what is written beside them may be old\n",
        ),
    ):
        with monkeypatch.context() as patch:
            patch.setattr(place, names["fail"])
            assert main(["generate", "t.j2", "--out", "out"]) == 1
        assert capsys.readouterr().err == message


def test_links_out_of_the_folders_of_templates(orv: Command, tmp_path: Path) -> None:
    for folder in ("in", "more", "other"):
        (tmp_path / folder).mkdir()
    for name in ("other/o.j2", "other/main.j2", "more/m.j2"):
        text = "{% include 'o.j2' %}" if name.endswith("main.j2") else ""
        (tmp_path / name).write_text(text)
    (tmp_path / "in/main.j2").symlink_to("../other/main.j2")
    (tmp_path / "in/m.j2").symlink_to("../more/m.j2")
    generate = ["generate", "in/main.j2", "--out", "out", "--templates", "more"]
    for name, target in (("o.j2", "../other/o.j2"), ("o.j2", "../more/m.j2")):
        (tmp_path / "in" / name).unlink(missing_ok=True)
        (tmp_path / "in" / name).symlink_to(target)
        refused, followed = orv(*generate), orv(*generate, "--follow-links")
        outside = "more" not in target
        assert (refused.returncode, followed.returncode) == (int(outside), 0)
        assert refused.stderr == outside * (
            f'in/main.j2:1: a link takes the template "o.j2" from {tmp_path}/other/o.j2, outside'
            " the folders of templates; --follow-links allows it\n"
        )
