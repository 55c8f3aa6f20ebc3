"""What a process prints, kept instead of shown."""

from __future__ import annotations

import os
import sys
from tempfile import TemporaryFile
from typing import IO

from orv.runs.done import Printed


class Capture:
    """Keeps what this process prints from now on, and the programs that it starts."""

    def __init__(self) -> None:
        self._files = [TemporaryFile(buffering=0) for _ in range(2)]
        for descriptor, file in enumerate(self._files, 1):
            os.dup2(file.fileno(), descriptor)

    def take(self) -> Printed:
        """What was printed since the last call."""
        sys.stdout.flush()
        sys.stderr.flush()
        return Printed(*map(_taken, self._files))


def _taken(file: IO[bytes]) -> bytes:
    file.seek(0)
    data = file.read()
    file.seek(0)
    file.truncate()
    return data
