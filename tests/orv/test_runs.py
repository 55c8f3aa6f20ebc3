"""Many runs: of a project file, and for each model of a pattern; in turn and at once."""

from __future__ import annotations

import os
import signal
import subprocess
import sys
import time
from pathlib import Path

import pytest
from conftest import Command

TEMPLATE = (
    '{% file m.name ~ ".c" %}{% section "Banner" %}{{ m.name }}{{ warn(m.name) }}'
    '{% if m.name == "c" %}{{ nothing }}{% endif %}{% endsection %}{% endfile %}'
)
# A script that prints, and so does a program that it starts; the first run is the slowest.
SCRIPT = """\
import os, sys, time
time.sleep(0.3 if model["m"]["name"] == "a" else 0)
print("script", model["m"]["name"])
if model["m"]["name"] in os.environ.get("KILLED", ""):
    os.kill(os.getpid(), 9)
sys.stdout.flush()
os.system("echo program")
"""
# Runs that need what others before them have made, and one that writes what one before it reads.
PROJECT = """\
[run.each]
template = "t.j2"
for-each = "m=models/*.json"
script = "s.py"
out = "gen/{m}"
depfile = "{m}.d"
depfile-target = "{m}"

[run.next]
template = "t.j2"
model = "m=made.json"
out = "next"

[run.first]
template = "first.j2"
model = "m=models/a.json"
script = "s.py"
out = "."

[run.second]
template = "t.j2"
model = "m=made.json"
out = "second"
manifest = "second.json"
"""


@pytest.fixture
def models(tmp_path: Path) -> None:
    """Five models, and what makes a file of each."""
    (tmp_path / "models").mkdir()
    for name in "abcde":
        (tmp_path / f"models/{name}.json").write_text(f'{{"name": "{name}"}}')
    (tmp_path / "made.json").write_text('{"name": "old"}')
    (tmp_path / "t.j2").write_text(TEMPLATE)
    (tmp_path / "first.j2").write_text(
        '{% file "made.json" as text %}{% section "Text" %}{"name": "new"}{% endsection %}'
        "{% endfile %}"
    )
    (tmp_path / "s.py").write_text(SCRIPT)
    (tmp_path / "orv.toml").write_text(PROJECT)


def snapshot(folder: Path) -> dict[str, bytes]:
    return {str(path.relative_to(folder)): path.read_bytes()
            for path in folder.rglob("*") if path.is_file()}  # fmt: skip


def test_several_at_once_do_what_one_after_the_other_does(
    orv: Command, models: None, tmp_path: Path
) -> None:
    given = snapshot(tmp_path)
    command = ("generate", "--adopt", "--jobs")
    one = orv(*command, "1")
    made = snapshot(tmp_path)
    assert (one.returncode, one.stderr.splitlines()[2:5], one.stderr.splitlines()[-2:]) == (
        1,
        ["t.j2:1: warning: c", "t.j2:1: 'nothing' is undefined",
         '    in the run "each, m=models/c.json"'],
        ["t.j2:1: warning: new", "error: 1 of 8 runs failed"],
    )  # fmt: skip
    assert {"gen/a/a.c", "gen/e/e.c", "next/old.c", "second/new.c", "a.d"} < made.keys()
    assert "gen/c/c.c" not in made
    for path in made:
        (tmp_path / path).unlink()
    for path, data in given.items():
        (tmp_path / path).write_bytes(data)
    several = orv(*command, "3")
    assert (several.stdout, several.stderr, snapshot(tmp_path)) == (one.stdout, one.stderr, made)


def test_reports_of_all_runs_of_a_pattern(orv: Command, models: None, tmp_path: Path) -> None:
    run = ("generate", "t.j2", "--for-each", "m=models/[abd].json", "--out", "gen/{m}", "--quiet")
    reports = ("--depfile", "d", "--stamp", "s", "--outputs", "/dev/stdout", "--trace", "{m}.trace")
    outdated = orv(*run, *reports, "--check")
    assert (outdated.returncode, (tmp_path / "s").exists()) == (1, False)
    done = orv(*run, *reports)
    assert (done.returncode, done.stdout) == (0, "gen/a/a.c\ngen/b/b.c\ngen/d/d.c\n")
    rule = (
        "s: \\\n  models \\\n  models/a.json \\\n  models/b.json \\\n  models/d.json \\\n  t.j2\n"
    )
    assert ((tmp_path / "d").read_text(), (tmp_path / "s").exists()) == (rule, True)
    (tmp_path / "s").unlink()
    (tmp_path / "models/b.json").write_text('{"name": "c"}')
    assert (orv(*run, *reports).returncode, (tmp_path / "s").exists()) == (1, False)
    (tmp_path / "models/b.json").unlink()
    assert orv("list-outputs", *run[1:-1]).stdout == "gen/a/a.c\ngen/d/d.c\n"


MISTAKES = {
    ("m=models/*.json", "gen/{m}", "--report", "r.html", "--scheduler", "tcp://localhost:1"):
        "argument --report: not allowed with argument --scheduler",
    ("m=models/*.json", "gen/{m}", "--scheduler", "here"):
        "argument --scheduler: expected tcp://HOST:PORT or tls://HOST:PORT, got 'here'",
    ("m=models/*.xml", "gen/{m}"): "error: models/*.xml: no file has such a name",
    ("m=models/*.json", "gen"): "argument --for-each: expected {m} in --out, got 'gen'",
    ("models/*.json", "gen/{m}"):
        "argument --for-each: expected NAME=PATTERN, got 'models/*.json'",
    ("m=*/a.json", "gen/{m}"):
        'the runs "m=models/a.json" and "m=other/a.json" both write gen/a',
    ("m=models/*.json", "gen/{m}", "--trace", "t"):
        'the runs "m=models/a.json" and "m=models/b.json" both write t',
    ("m=models/*.json", "gen/{m}", "--state", "s"):
        'the runs "m=models/a.json" and "m=models/b.json" write different folders; both have the'
        " state file s",
    ("m=models/*.json", "gen/{m}", "--jobs", "0"):
        "argument --jobs: expected a whole number from 1, got '0'",
    ("m=models/*.json", "gen/{m}", "--report", ""):
        "argument --report: expected the path of a file, got ''",
    ("m=models/*.json", "gen/{m}", "--report", "-"):
        "argument --report: expected the path of a file, got '-'; ./- is a file of this name",
    ("m=models/[ab].json", "gen/{m}", "--stamp", "models/a.json"):
        'error: the stamp "models/a.json" would take the place of "models/a.json", which was read',
}  # fmt: skip


@pytest.mark.parametrize("case", MISTAKES)
def test_mistakes(orv: Command, models: None, tmp_path: Path, case: tuple[str, ...]) -> None:
    (tmp_path / "other").mkdir()
    (tmp_path / "other/a.json").write_text("{}")
    done = orv("generate", "t.j2", "--quiet", "--for-each", case[0], "--out", *case[1:])
    message = MISTAKES[case]
    if message.startswith("error"):
        assert (done.returncode, done.stderr) == (1, f"{message}\n")
    else:
        assert done.returncode == 2 and done.stderr.startswith(f"orv generate: error: {message}\n")


def test_a_process_that_dies_is_one_run_that_failed(orv: Command, models: None) -> None:
    run = ("generate", "t.j2", "--script", "s.py", "--for-each", "m=models/[abd].json")
    done = orv(*run, "--out", "gen/{m}", "--jobs", "2", "--quiet", env={"KILLED": "ab"})
    assert (done.returncode, done.stdout, done.stderr) == (
        1,
        "script d\nprogram\n",
        "".join(
            "error: the process of this run was killed by signal 9; the next run completes what it"
            f' had begun\n    in the run "m=models/{name}.json"\n'
            for name in "ab"
        )
        + "error: 2 of 3 runs failed\n",
    )


MANY = """\
{% for i in range(1500) %}
{% file "%04d.c" % i %}{% section "Banner" %}{{ x * 2000 }}{% endsection %}{% endfile %}
{% endfor %}
"""


def test_an_interruption_ends_all(orv: Command, models: None, tmp_path: Path) -> None:
    run = ("generate", "many.j2", "--out", "gen/{m}", "--for-each", "m=models/[ab].json", "--quiet")
    assert orv(*run, "--set", 'x="old"', many__j2=MANY).returncode == 0
    seen = [tmp_path / f"gen/{name}/0040.c" for name in "ab"]
    before = [path.stat().st_ino for path in seen]
    process = subprocess.Popen(
        [sys.executable, "-m", "orv", *run, "--jobs", "2", "--set", 'x="new"'],
        cwd=tmp_path,
        stderr=subprocess.PIPE,
        text=True,
        start_new_session=True,
    )
    while any(path.stat().st_ino == old for path, old in zip(seen, before, strict=True)):
        time.sleep(0.0005)
    # As a terminal does.
    os.killpg(process.pid, signal.SIGINT)
    _, message = process.communicate()
    said = [f"interrupted while writing\n{_states(tmp_path, name)}" for name in "ab"]
    ended = [text for text in said if text in message]
    assert message == "error: " + "".join(ended) and ended


def _states(folder: Path, name: str) -> str:
    files = sorted((folder / "gen" / name).glob("*.c"))
    return "".join(f"{file.read_text()[:3]}  gen/{name}/{file.name}\n" for file in files)
