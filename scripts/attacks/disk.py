"""Runs of the command while the disk fails, while they are killed, and while folders are swapped.

Whatever happens, each file is as before the run or as after it, nothing outside the output folder
is touched, the command says why it failed, and the next run completes.
"""

from __future__ import annotations

import contextlib
import ctypes
import errno
import functools
import math
import os
import random
import resource
import shutil
import signal
import subprocess
import sys
import time
import traceback
from collections.abc import Callable, Iterator
from pathlib import Path
from typing import Any

from orv.command import outputs
from orv.command.main import main

# A library that counts calls, and what arms it; see faults.cpp.
LAYER = ctypes.CDLL(None)

FILES = 12
TEMPLATE = """\
{% for i in range(FILES) %}
{% file "%02d.c" % i OutputDirectory="d%d" % (i % 3) %}
{% section "Banner" %}{{ x * (1 + i * 97) * (1 if x == "old" else 3) }}{% endsection %}
{% endfile %}
{% endfor %}
""".replace(
    "FILES", str(FILES)
)
ERRORS = [
    errno.EIO,
    errno.ENOSPC,
    errno.EROFS,
    errno.EACCES,
    errno.EMFILE,
    errno.ENFILE,
    errno.EDQUOT,
    errno.ENOMEM,
    errno.EFBIG,
    errno.EBUSY,
]

# Killed, or ended by a fault of the interpreter; see allocations.cpp.
_ENDED = (-signal.SIGKILL, 86)

Action = Callable[[], None]


class Found(Exception):
    """What must not happen has happened."""


class Outcome:
    """How a run has ended: an exit code, or the negative number of a signal."""

    def __init__(self, code: int, said: str) -> None:
        self.code = code
        self.said = said


class Running:
    """A run of the command in a child of this process, which need not load it again."""

    def __init__(self, folder: Path, x: str, prepare: Action) -> None:
        reading, writing = os.pipe()
        self._said = reading
        self._process = os.fork()
        if self._process == 0:
            os.close(reading)
            _run_in_child(folder, x, prepare, writing)
        os.close(writing)

    def kill(self) -> None:
        os.kill(self._process, signal.SIGKILL)

    def end(self) -> Outcome:
        with open(self._said, "rb") as stream:
            said = stream.read().decode(errors="replace")
        _, status = os.waitpid(self._process, 0)
        outcome = Outcome(os.waitstatus_to_exitcode(status), said)
        if "Traceback" in said or outcome.code not in (0, 1, *_ENDED):
            raise Found(f"the run ended with {outcome.code}: {said[-2000:]}")
        if outcome.code == 1 and not said.startswith(("error: ", "warning: ", "t.j2:")):
            raise Found(f"the run failed without a message: {said!r}")
        return outcome


def _run_in_child(folder: Path, x: str, prepare: Action, said: int) -> None:
    code = 70
    try:
        os.chdir(folder)
        os.dup2(os.open(os.devnull, os.O_WRONLY), 1)
        os.dup2(said, 2)
        sys.stdout = open(1, "w", closefd=False)
        sys.stderr = open(2, "w", buffering=1, closefd=False)
        arguments = ["generate", "t.j2", "--out", "out", "--set", f'x="{x}"', "--quiet"]
        prepare()
        code = main(arguments)
    except SystemExit as ended:
        code = ended.code if isinstance(ended.code, int) else 70
    except BaseException:
        arm(0)()
        os.write(2, traceback.format_exc().encode())
    finally:
        os._exit(code)


def nothing() -> None:
    pass


class Project:
    """A template, the output folder of a run with the text "old", and a folder of others."""

    def __init__(self, folder: Path) -> None:
        self.folder = folder
        self._out = folder / "out"
        self._outside = folder / "outside"
        for name in ("out", "moved", "outside"):
            _remove(folder / name)
        (folder / "t.j2").write_text(TEMPLATE)
        self.run("old")
        for path in self._files():
            outside = self._outside / path.name
            outside.parent.mkdir(exist_ok=True)
            outside.write_text("theirs")

    def run(self, x: str, prepare: Action = nothing) -> Outcome:
        return Running(self.folder, x, prepare).end()

    def check(self, outcome: Outcome, new: str = "new") -> None:
        """Check what a run has left, then that the next one completes."""
        texts = self._texts()
        if outcome.code == 0 and texts != {new}:
            raise Found(f"the run succeeded and left {texts}")
        if not texts <= {"old", new}:
            raise Found(f"files are neither old nor new: {texts}")
        self.check_outside()
        again = self.run("end")
        if again.code != 0 or self._texts() != {"end"}:
            raise Found(f"the next run ended with {again.code}: {again.said}")
        left = {path.name for path in self._out.rglob("*") if path.is_file()}
        if left - {path.name for path in self._files()} != {".orv-state.json"}:
            raise Found(f"files were left behind: {sorted(left)}")

    def check_outside(self) -> None:
        found = {path.name: path.read_text() for path in self._outside.rglob("*.c")}
        if found != {path.name: "theirs" for path in self._files()}:
            raise Found(f"a file outside was touched: {found}")

    def _files(self) -> list[Path]:
        return [self._out / f"d{i % 3}" / f"{i:02}.c" for i in range(FILES)]

    def _texts(self) -> set[str]:
        return {self._text(i, path) for i, path in enumerate(self._files())}

    def _text(self, i: int, path: Path) -> str:
        text = path.read_text() if path.exists() else "missing"
        word = text[:3]
        whole = word * (1 + i * 97) * (1 if word == "old" else 3) + "\n"
        return word if text in (whole, "missing") else f"{path}: {text[:50]!r}"


def _remove(path: Path) -> None:
    if path.is_symlink():
        path.unlink()
    shutil.rmtree(path, ignore_errors=True)


def _arm(call: int, *how: object) -> None:
    LAYER.faults_arm(ctypes.c_long(call), *how)


def arm(call: int, lasts: bool = False, error: int = 0, sent: int = 0) -> Action:
    """Have the call number `call` of the run that is about to begin fail, or kill the run."""
    return lambda: _arm(call, lasts, error, sent, None, None, None)


def calls_of_a_run(folder: Path) -> int:
    """How many calls that use the disk a whole run makes."""
    low, high = 1, 2**14
    while low < high:
        middle = (low + high) // 2
        if Project(folder).run(f"{middle:03}", arm(middle, sent=signal.SIGKILL)).code == 0:
            high = middle
        else:
            low = middle + 1
    return low - 1


@functools.cache
def _calls_until_opened(folder: Path) -> int:
    """How many calls that use the disk a run makes until it has opened the output folder."""

    def note_opening() -> None:
        opening = vars(outputs)["open_folder"]

        def open_folder(*arguments: Any) -> Any:
            opened = opening(*arguments)
            (folder / "opened").write_text(str(LAYER.faults_calls()))
            return opened

        vars(outputs)["open_folder"] = open_folder
        _arm(2**30, False, 0, 0, None, None, None)

    Project(folder).run("new", note_opening)
    return int((folder / "opened").read_text())


def failing_call(folder: Path, case: int, chance: random.Random) -> None:
    failing = arm(_call(folder, case), error=chance.choice(ERRORS))
    project = Project(folder)
    project.check(project.run("new", failing))


def failing_calls(folder: Path, case: int, chance: random.Random) -> None:
    failing = arm(_call(folder, case), lasts=True, error=chance.choice(ERRORS))
    project = Project(folder)
    project.check(project.run("new", failing))


def killed_at_a_call(folder: Path, case: int, _: random.Random) -> None:
    killing = arm(_call(folder, case), sent=signal.SIGKILL)
    project = Project(folder)
    project.check(project.run("new", killing))


def killed_at_a_moment(folder: Path, _: int, chance: random.Random) -> None:
    project = Project(folder)
    running = Running(folder, "new", nothing)
    time.sleep(chance.random() * 0.1)
    running.kill()
    project.check(running.end())


def swapped_folder(folder: Path, case: int, chance: random.Random) -> None:
    """A folder of the output becomes a link to a folder outside."""
    call = _call(folder, case)
    project = Project(folder)
    swapped = chance.choice(["out/d0", "out/d1", "out/d2", "out"])
    target = "outside" if swapped == "out" else "../outside"
    names = [os.fsencode(name) for name in (swapped, "moved", target)]
    if swapped == "out":
        # The folder that a user names may be a link: a run that begins with one follows it.
        call = max(call, _calls_until_opened(folder) + 1)
    outcome = project.run("new", lambda: _arm(call, False, 0, 0, *names))
    project.check_outside()
    if outcome.code == 0 and not (folder / "moved").exists():
        raise Found("the swap did not take place")


_calls: dict[Path, int] = {}


def _call(folder: Path, case: int) -> int:
    """Each call of a run, in turn."""
    if folder not in _calls:
        _calls[folder] = calls_of_a_run(folder)
    return spread(case, _calls[folder]) + 1


def spread(case: int, total: int) -> int:
    """Each number below `total` as cases go on, soon some of all parts."""
    stride = next(step for step in range(total * 5 // 8, 2 * total) if math.gcd(step, total) == 1)
    return case * stride % total


def file_size_limit(folder: Path, _: int, chance: random.Random) -> None:
    project = Project(folder)
    limit = chance.randrange(4000)
    project.check(project.run("new", lambda: _limit(resource.RLIMIT_FSIZE, limit)))


def few_descriptors(folder: Path, _: int, chance: random.Random) -> None:
    project = Project(folder)
    limit = len(os.listdir("/proc/self/fd")) + chance.randrange(-4, 8)
    project.check(project.run("new", lambda: _limit(resource.RLIMIT_NOFILE, limit)))


def _limit(what: int, limit: int) -> None:
    resource.setrlimit(what, (limit, limit))


def two_runs(folder: Path, _: int, chance: random.Random) -> None:
    """Two runs at once: one waits for the other."""
    project = Project(folder)
    runs = []
    for x in ("new", "two"):
        runs.append(Running(folder, x, nothing))
        time.sleep(chance.random() * 0.03)
    codes = [run.end().code for run in runs]
    if codes != [0, 0]:
        raise Found(f"the runs ended with {codes}")
    project.check(Outcome(1, ""), next(iter(project._texts())))


def full_disk(folder: Path, _: int, chance: random.Random) -> None:
    project = _project_on_small_disk(folder)
    filler = project.folder / "filler"
    with contextlib.suppress(OSError), filler.open("wb", buffering=0) as stream:
        while stream.write(bytes(4096)) == 4096:
            pass
    if filler.exists():
        os.truncate(filler, max(0, filler.stat().st_size - 4096 * chance.randrange(12)))
    _check_with_room(project, [filler])


def no_inodes(folder: Path, _: int, chance: random.Random) -> None:
    project = _project_on_small_disk(folder)
    fillers = [project.folder / f"filler{number}" for number in range(100)]
    with contextlib.suppress(OSError):
        for filler in fillers:
            filler.touch()
    made = [filler for filler in fillers if filler.exists()]
    for filler in made[: chance.randrange(6)]:
        filler.unlink()
    _check_with_room(project, made)


def _check_with_room(project: Project, fillers: list[Path]) -> None:
    outcome = project.run("new")
    for filler in fillers:
        filler.unlink(missing_ok=True)
    project.check(outcome)


def read_only_disk(folder: Path, _: int, chance: random.Random) -> None:
    project = _project_on_small_disk(folder)
    mount = ["mount", "-o", "remount,ro", str(project.folder)]
    running = Running(project.folder, "new", lambda: time.sleep(0.02))
    time.sleep(chance.random() * 0.06)
    readonly = subprocess.run(mount, capture_output=True, check=False).returncode == 0
    outcome = running.end()
    if readonly:
        subprocess.run([*mount[:2], "remount,rw", mount[3]], check=True)
    project.check(outcome)


def _project_on_small_disk(folder: Path) -> Project:
    return Project(folder / "disk")


@contextlib.contextmanager
def small_disk(folder: Path) -> Iterator[None]:
    """A disk of 256 kB and 60 files below `folder`. Raises OSError where none can be mounted."""
    disk = folder / "disk"
    disk.mkdir()
    options = "size=256k,nr_inodes=60"
    mount = ["mount", "-t", "tmpfs", "-o", options, "tmpfs", str(disk)]
    if subprocess.run(mount, capture_output=True, check=False).returncode != 0:
        raise OSError("needs the right to mount")
    try:
        yield
    finally:
        subprocess.run(["umount", str(disk)], check=True)


ON_A_DISK_OF_ITS_OWN = [full_disk, no_inodes, read_only_disk]
ATTACKS = [
    failing_call,
    failing_calls,
    killed_at_a_call,
    killed_at_a_moment,
    swapped_folder,
    file_size_limit,
    few_descriptors,
    two_runs,
    *ON_A_DISK_OF_ITS_OWN,
]
