"""Whole processes: their processor time and memory."""

from __future__ import annotations

import subprocess
import sys
from collections.abc import Sequence
from pathlib import Path
from statistics import median
from typing import NamedTuple

# A command that always runs.
GENERATE = [sys.executable, "-m", "orv", "generate", "--quiet", "--always"]

_USAGE_OF = str(Path(__file__).with_name("usage_of.py"))


class Usage(NamedTuple):
    """Processor time in seconds, user and system, and the largest resident size in MB."""

    seconds: float
    megabytes: float


def run(command: Sequence[str]) -> Usage:
    """Run a command to its end. Raises subprocess.CalledProcessError when it fails."""
    done = subprocess.run(
        [sys.executable, "-I", _USAGE_OF, *command], stdout=subprocess.PIPE, text=True, check=True
    )
    return Usage(*map(float, done.stdout.split()))


def alternate(commands: Sequence[Sequence[str]], rounds: int) -> list[Usage]:
    """The medians of each command, the commands run in turn."""
    usages: list[list[Usage]] = [[] for _ in commands]
    for _ in range(rounds):
        for usage, command in zip(usages, commands, strict=True):
            usage.append(run(command))
    return [Usage._make(map(median, zip(*usage, strict=True))) for usage in usages]
