"""What the tests of the Wayland generator share: the programs and the protocol descriptions."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path
from typing import Any, Sequence

GENERATOR = os.environ["VARN_WAYLAND"]
SCANNER = os.environ["VARN_WAYLAND_SCANNER"]
COMPILER = [os.environ["VARN_CC"] or "cc", "-std=c99", "-Wall", "-Wextra", "-Werror"]


def descriptions() -> list[Path]:
    """Every protocol description of libwayland-dev and wayland-protocols."""
    extensions = Path(os.environ["VARN_WAYLAND_PROTOCOLS"])
    found = [Path(os.environ["VARN_WAYLAND_DATA"]) / "wayland.xml"]
    for maturity in ("stable", "staging", "unstable"):
        found += sorted((extensions / maturity).glob("**/*.xml"))
    return found


def generate(
    folder: Path, files: Sequence[Path], **options: Any
) -> "subprocess.CompletedProcess[str]":
    """Runs the generator for `files` into `folder`."""
    command = [GENERATOR, "-o", str(folder), *map(str, files)]
    streams: dict[str, Any] = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE}
    return subprocess.run(command, text=True, check=False, **{**streams, **options})


class FolderTest(unittest.TestCase):
    """A test with a folder of its own."""

    maxDiff = 10000

    def setUp(self) -> None:
        holder = tempfile.TemporaryDirectory(prefix="varn_wayland_")
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name)

    def compile(self, where: Path, sources: Sequence[str], *flags: str) -> None:
        """Compiles `sources` in the folder `where`, each to an object file there."""
        done = subprocess.run(
            [*COMPILER, *flags, "-c", *sources], cwd=where, capture_output=True, text=True
        )
        self.assertEqual((done.returncode, done.stderr), (0, ""))
