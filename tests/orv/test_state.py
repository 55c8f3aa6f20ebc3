"""What an output folder remembers: edits, files of other runs, files that are no longer made."""

from __future__ import annotations

import json
import os
import shutil
import subprocess
import sys
import time
from pathlib import Path

import pytest
from conftest import Command

FILES = """\
{% for name in names.split() %}
{% file name %}{% section "Banner" %}{{ text }}
more{% endsection %}{% endfile %}
{% endfor %}
"""
RUN = ("generate", "t.j2", "--out", "out", "--set")


def test_edits(orv: Command, tmp_path: Path) -> None:
    run = (*RUN, "names=a.c b.c", "--set")
    assert orv(*run, "text=1", t__j2=FILES).returncode == 0
    a, b = tmp_path / "out/a.c", tmp_path / "out/b.c"
    a.write_text("mine\n")
    a.chmod(0o444)
    refused = orv(*run, "text=2")
    assert (refused.returncode, refused.stdout, refused.stderr) == (
        1,
        "",
        "error: nothing was written\nout/a.c was edited since it was generated;"
        " --edited=overwrite discards the edits, --edited=warn leaves the file\n",
    )
    assert b.read_text() == "1\nmore\n"
    check = orv(*run, "text=2", "--check")
    assert (check.returncode, check.stdout) == (
        1,
        "edited  out/a.c\nchanged out/b.c\n1 outdated, 1 edited\n",
    )
    diff = orv(*run, "text=2", "--diff").stdout
    assert "--- out/a.c\tedited since it was generated\n+++ out/a.c\tgenerated, changed\n" in diff
    left = orv(*run, "text=2", "--edited=warn")
    assert left.stderr == (
        "warning: out/a.c was edited since it was generated and is left as it is\n"
    )
    assert (a.read_text(), b.read_text()) == ("mine\n", "2\nmore\n")
    assert orv(*run, "text=3", "--edited=overwrite").returncode == 0
    assert (a.read_text(), a.stat().st_mode & 0o777) == ("3\nmore\n", 0o444)
    # Neither of these is an edit: converted line ends, and the very bytes that are generated.
    b.write_bytes(b"3\r\nmore\r\n")
    a.chmod(0o644)
    a.write_text("4\nmore\n")
    same = orv(*run, "text=4")
    assert (same.returncode, same.stdout) == (0, "changed out/b.c\n")
    assert b.read_bytes() == b"4\nmore\n"


def test_files_of_others(orv: Command, tmp_path: Path) -> None:
    (tmp_path / "out").mkdir()
    (tmp_path / "out/own.c").write_text("mine\n")
    first = (*RUN, "names=a.c", "--run", "first", "--set")
    assert orv(*first, "text=1", t__j2=FILES).returncode == 0
    second = (*RUN, "names=a.c own.c", "--run", "second", "--set")
    refused = orv(*second, "text=2")
    assert (refused.returncode, refused.stderr) == (
        1,
        'error: nothing was written\nout/a.c was made by the run "first"; --adopt takes it over\n'
        "out/own.c is there, and no run made it; --adopt takes it over\n",
    )
    made = (tmp_path / "out/a.c").read_text()
    (tmp_path / "out/a.c").write_text("mine\n")
    edited = orv(*second, "text=2", "--adopt")
    assert "out/a.c was edited since" in edited.stderr and "own.c" not in edited.stderr
    (tmp_path / "out/a.c").write_text(made)
    assert orv(*second, "text=2", "--adopt").returncode == 0
    assert 'was made by the run "second"' in orv(*first, "text=1").stderr
    # What both make alike belongs to both; who stops making it leaves it to the other.
    assert orv(*first, "text=2").stdout == "up to date\n"
    none = tuple(argument.replace("a.c", "c.c") for argument in second)
    done = orv(*none, "text=2")
    assert (done.stdout, (tmp_path / "out/a.c").exists()) == ("new     out/c.c\n", True)
    # A run without a name gives its files to the first that has one.
    unnamed = (*RUN, "names=u.c", "--set", "text=1")
    assert orv(*unnamed).returncode == 0
    assert orv(*RUN, "names=u.c", "--set", "text=2", "--run", "named").returncode == 0
    assert 'made by the run "named"' in orv(*unnamed).stderr
    assert orv(*unnamed, "--no-state").stdout == "changed out/u.c\n"


def test_files_no_longer_made(orv: Command, tmp_path: Path) -> None:
    run = (*RUN, "text=1", "--run", "r", "--set")
    out = tmp_path / "out"
    (out / "there").mkdir(parents=True)
    names = "names=keep.c new/x/a.c new/b.c there/c.c"
    assert orv(*run, names, t__j2=FILES).returncode == 0
    state = (out / ".orv-state.json").read_text()
    made = ["out/keep.c", "out/new/b.c", "out/new/x/a.c", "out/there/c.c"]
    listing = ("list-outputs", *run[1:], names)
    assert orv(*listing).stdout.splitlines() == json.loads(orv(*listing, "--json").stdout) == made
    (out / "new/b.c").write_text("mine")
    moved = shutil.move(out, tmp_path / "moved")
    fewer = (*run, "names=keep.c", "--out", "moved")
    assert orv(*fewer, "--stale=keep").returncode == 0
    check = orv(*fewer, "--check")
    assert check.stdout == "removed moved/new/x/a.c\nremoved moved/there/c.c\n2 to be removed\n"
    removed = orv(*fewer)
    assert removed.stdout == "removed moved/new/x/a.c\nremoved moved/there/c.c\n"
    assert removed.stderr == (
        "warning: moved/new/b.c is no longer made and was edited since it was generated; it is left"
        " as it is\n"
    )
    left = sorted(str(path.relative_to(moved)) for path in Path(moved).rglob("*"))
    assert left == [".orv-state.json", "keep.c", "new", "new/b.c", "there"]
    (Path(moved) / "new/b.c").unlink()
    assert orv(*run, names, "--out", "moved").returncode == 0
    assert (Path(moved) / ".orv-state.json").read_text() == state
    orv(*run, "names=keep.c", "--out", "moved", "--no-state")
    assert (Path(moved) / "there/c.c").exists()


# What is done to a state file, and what is said about it.
HASH = '"hash": "'
DAMAGES = {
    ('"runs"', '"ru'): "is damaged: ",
    (HASH, '"hush": "'): "is damaged: it lacks what a state holds; restore it, or remove it and",
    ('"a.c"', '"../t.j2"'): 'is damaged: the path "../t.j2" climbs out of its folder; restore it',
    ('"format": 1', '"format": 2'): "has the format 2, which this version does not know; use the",
    ("orv output state", "x"): "is not a state file of orv; --state=FILE keeps the state elsewhere",
}


def test_states_that_cannot_be_used(orv: Command, tmp_path: Path) -> None:
    run = (*RUN, "names=a.c", "--run", "r", "--set", "text=2")
    orv(*run, t__j2=FILES)
    state = tmp_path / "out/.orv-state.json"
    good = state.read_text()
    for (old, new), message in DAMAGES.items():
        state.write_text(good.replace(old, new))
        done = orv(*RUN, "names=", "--run", "r", "--set", "text=2")
        assert done.returncode == 1
        assert done.stderr.startswith(f"error: out/.orv-state.json {message}"), done.stderr
        assert (tmp_path / "out/a.c").exists() and state.read_text() != good
    state.unlink()
    assert orv(*run, "--adopt").returncode == 0 and state.read_text() == good
    state.unlink()
    state.symlink_to("a.c")
    assert "a link took the place" in orv(*run).stderr


@pytest.mark.parametrize("seconds", [0.0, 0.004, 0.012])
def test_killed_at_any_moment(orv: Command, tmp_path: Path, seconds: float) -> None:
    def run(count: int, text: str) -> list[str]:
        names = " ".join(f"{count}/{i}.c" for i in range(300))
        return [*RUN, f"names={names}", "--run", "r", "--set", f"text={text}"]

    out = tmp_path / "out"
    assert orv(*run(1, "a"), t__j2=FILES).returncode == 0
    began = out / ".orv-state.json"
    before = began.stat().st_ino
    process = subprocess.Popen([sys.executable, "-m", "orv", *run(2, "b")], cwd=tmp_path)
    while began.stat().st_ino == before and process.poll() is None:
        time.sleep(0.0005)
    time.sleep(seconds)
    process.kill()
    process.wait()
    assert "intent" in json.loads(began.read_text()) or process.returncode == 0
    # Neither the files of the first run nor those of the killed one are left.
    assert orv(*run(3, "c")).returncode == 0
    found = {str(path.relative_to(out)) for path in out.rglob("*") if path.is_file()}
    assert found == {".orv-state.json", *(f"3/{i}.c" for i in range(300))}
    assert os.listdir(out / "3") and not (out / "2").exists()
    assert orv(*run(3, "c"), "--check").stdout == "up to date\n"
