"""Runs that the workers of a scheduler render: real processes, on the loopback address."""

from __future__ import annotations

import json
import os
import re
import shutil
import signal
import subprocess
import sys
import time
from collections.abc import Iterator
from pathlib import Path

import pytest
from conftest import Command
from test_runs import snapshot

from orv import __version__

pytest.importorskip("distributed", reason="python3-distributed is not installed")

MODELS = int(os.environ.get("ORV_TEST_MODELS", "60"))
WORKERS = int(os.environ.get("ORV_TEST_WORKERS", "2"))

# Needs a template that only a value names, a module, a file that nothing names but `depends`, and
# what someone has written into a user region.
FILES = {
    "main.j2": '{% import "macros.j2" as macros %}{% file m.name ~ ".c" DefinedMacro="X" %}'
    '{% section "Banner" %}{{ macros.greet(m.name | marked) }} {% include m.part %}'
    '{{ user("note") }}{% user "note" %}nothing\n{% enduser %}{% endsection %}{% endfile %}'
    '{% if m.number == 7 %}{{ warn("seven") }}{{ nothing }}{% endif %}',
    "macros.j2": "{% macro greet(name) %}/* {{ name }} */{% endmacro %}",
    "parts/a.txt": "a\n",
    "parts/b.txt": "b\n",
    "extension.py": "import orv\nfrom words import mark\n\norv.depends('words.txt')\n"
    "WORDS = open('words.txt').read().strip()\n\n@orv.filter\ndef marked(name):\n"
    "    return mark + name + WORDS\n",
    "words.py": "mark = '>'\n",
    "words.txt": "!\n",
    "script.py": "import time\n\ntime.sleep(0.01)\nprint('script', model['m']['name'])\n",
}


@pytest.fixture
def project(tmp_path: Path) -> Path:
    """The models and what makes a file of each; one of the files has been written into."""
    folder = tmp_path / "project"
    for name, text in FILES.items():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_text(text)
    (folder / "models").mkdir()
    for number in range(MODELS):
        model = {"name": f"n{number}", "number": number, "part": f"parts/{'ab'[number % 2]}.txt"}
        (folder / f"models/{number:04}.json").write_text(json.dumps(model))
    return folder


class Machines:
    """A scheduler and its workers."""

    def __init__(self, folder: Path) -> None:
        self._file = folder / "scheduler.json"
        log = (folder / "log").open("w")

        def start(module: str, *arguments: str) -> subprocess.Popen[bytes]:
            where = ("--scheduler-file", str(self._file), "--no-dashboard")
            command = [sys.executable, "-m", f"distributed.cli.{module}", *where, *arguments]
            return subprocess.Popen(command, cwd=folder, stdout=log, stderr=log)

        address = ("--host", "127.0.0.1", "--port", "0")
        self.workers: list[subprocess.Popen[bytes]] = []
        self._all = [start("dask_scheduler", *address)]
        for _ in range(WORKERS):
            self.workers.append(start("dask_worker", "--no-nanny", "--nthreads", "1"))
        self._all += self.workers

    @property
    def address(self) -> str:
        """The scheduler's address."""
        while not self._file.exists():
            time.sleep(0.02)
        address: str = json.loads(self._file.read_text())["address"]
        return address

    def stop(self) -> None:
        """Kill all of them."""
        for process in self._all:
            process.kill()
            process.wait()


@pytest.fixture(scope="module")
def machines(tmp_path_factory: pytest.TempPathFactory) -> Iterator[Machines]:
    """A scheduler and workers that share nothing with the project but this machine."""
    started = Machines(tmp_path_factory.mktemp("machines"))
    yield started
    started.stop()


def test_a_worker_that_is_killed_changes_nothing(
    orv: Command, project: Path, machines: Machines, tmp_path: Path
) -> None:
    main = ("generate", str(project / "main.j2"), "--extend", "extension.py")
    each = ("--script", "script.py", "--for-each", "m=models/*.json", "--out", "gen/{m}")
    reports = ("--trace", "gen/{m}.trace", "--manifest", "gen/{m}.json", "--guard", "pragma")
    run = (*main, *each, *reports)
    assert orv(*run, "--jobs", "2", cwd=project).returncode == 1
    written = project / "gen/0003/n3.c"
    written.write_text(written.read_text().replace("nothing\n", "something\n"))
    for path in (project / "gen").glob("*/n*.c"):
        if path != written:
            path.unlink()
    shutil.copytree(project, tmp_path / "same" / "project")
    local = orv(*run, "--jobs", "2", cwd=tmp_path / "same" / "project")
    process = subprocess.Popen(
        [sys.executable, "-m", "orv", *run, "--scheduler", machines.address],
        cwd=project,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        text=True,
    )
    while (
        not (project / f"gen/{MODELS // 3:04}/n{MODELS // 3}.c").exists() and process.poll() is None
    ):
        time.sleep(0.01)
    machines.workers[0].send_signal(signal.SIGKILL)
    output, error = process.communicate()
    told = [line for line in error.splitlines() if "began more than once" not in line]
    assert (output, told) == (local.stdout, local.stderr.splitlines())
    assert "something" in written.read_text().partition("BEGIN")[0]
    assert snapshot(project) == snapshot(tmp_path / "same" / "project")


_OTHER = """
import sys
from orv.runs import cluster
from orv.command import main

cluster.__version__ = "0.1"
sys.exit(main(sys.argv[1:]))
"""


def test_a_worker_refuses_another_version(project: Path, machines: Machines) -> None:
    run = ("generate", "main.j2", "--model", "m=models/0000.json", "--extend", "extension.py")
    done = subprocess.run(
        [sys.executable, "-c", _OTHER, *run, "--out", "o", "--scheduler", machines.address],
        cwd=project, capture_output=True, text=True, check=False,
    )  # fmt: skip
    assert done.returncode == 1 and not (project / "o").exists()
    said = rf"error: the worker tcp://\S+ has orv {re.escape(__version__)}, expected 0\.1\n"
    assert re.fullmatch(said, done.stderr)


def test_encryption_needs_certificates(orv: Command, project: Path) -> None:
    done = orv("generate", "main.j2", "--out", "o", "--scheduler", "tls://127.0.0.1:1")
    said = "Dask's settings distributed.comm.tls name no certificates"
    assert done.stderr == f"error: the scheduler tls://127.0.0.1:1 cannot be reached: {said}\n"


def test_no_worker_is_left(project: Path, machines: Machines) -> None:
    run = ("generate", "main.j2", "--extend", "extension.py", "--script", "script.py", "--quiet")
    each = ("--for-each", "m=models/*.json", "--out", "gen/{m}", "--scheduler", machines.address)
    command = [sys.executable, "-m", "orv", *run, *each]
    process = subprocess.Popen(command, cwd=project, stderr=subprocess.PIPE, text=True)
    while not (project / "gen/0000/n0.c").exists() and process.poll() is None:
        time.sleep(0.001)
    for worker in machines.workers:
        worker.kill()
    error = process.communicate()[1]
    assert error == f"error: the scheduler {machines.address} has lost its last worker\n"
