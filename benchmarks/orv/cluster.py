"""Many runs that two workers of a scheduler render: real processes, on the loopback address."""

from __future__ import annotations

import json
import shutil
import subprocess
import sys
import time
from collections.abc import Iterator, Sequence
from contextlib import ExitStack, contextmanager
from importlib.util import find_spec
from pathlib import Path
from statistics import median
from typing import NamedTuple

import jobs
import processes

# What a run costs is the difference between many and few: starting costs both the same.
_FEW, _MANY = 100, 500


class Cost(NamedTuple):
    """Processor seconds of the command, and bytes on the loopback address, there and back."""

    seconds: float
    bytes: float


def measure(folder: Path, rounds: int) -> Cost:
    """What each run costs: medians. Raises ImportError where there is no Dask.

    Raises ValueError when a file is not the one that a single process makes.
    """
    # Its own imports would find this folder's modules.
    if find_spec("distributed") is None:
        raise ImportError("distributed")
    with _machines(folder) as address:
        few, many = (_costs(folder / str(count), count, address, rounds) for count in (_FEW, _MANY))
    return Cost(*((b - a) / (_MANY - _FEW) for a, b in zip(few, many, strict=True)))


def _costs(folder: Path, count: int, address: str, rounds: int) -> Cost:
    """What a command with so many runs costs: medians."""
    folder.mkdir()
    command = jobs.command(folder, count)
    processes.run([*command, "--jobs", "1"])
    expected = _made(folder)
    costs: list[Cost] = []
    for _ in range(rounds):
        shutil.rmtree(folder / "stubs")
        costs.append(_cost([*command, "--scheduler", address]))
        if _made(folder) != expected:
            raise ValueError("the workers have made other files than --jobs 1")
    return Cost(*(median(values) for values in zip(*costs, strict=True)))


def _cost(command: Sequence[str]) -> Cost:
    before = _received()
    usage = processes.run(command)
    return Cost(usage.seconds, _received() - before)


def _made(folder: Path) -> dict[Path, bytes]:
    return {path: path.read_bytes() for path in (folder / "stubs").rglob("*") if path.is_file()}


def _received() -> int:
    """The bytes that were received on the loopback address, since the machine was started."""
    lines = Path("/proc/net/dev").read_text().splitlines()
    loopback = next(line for line in lines if line.strip().startswith("lo:"))
    return int(loopback.split()[1])


@contextmanager
def _machines(folder: Path) -> Iterator[str]:
    """A scheduler with two workers. Gives its address."""
    known = folder / "scheduler.json"
    with ExitStack() as started, (folder / "log").open("w") as log:

        def start(module: str, *arguments: str) -> None:
            command = [sys.executable, "-m", f"distributed.cli.{module}", *arguments]
            command += ["--scheduler-file", str(known), "--no-dashboard"]
            process = subprocess.Popen(command, cwd=folder, stdout=log, stderr=log)
            started.callback(process.wait)
            started.callback(process.terminate)

        start("dask_scheduler", "--host", "127.0.0.1", "--port", "0")
        for _ in range(2):
            start("dask_worker", "--no-nanny", "--nthreads", "1")
        while not known.exists():
            time.sleep(0.02)
        yield json.loads(known.read_text())["address"]
