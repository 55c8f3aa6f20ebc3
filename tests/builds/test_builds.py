"""The examples of docs/builds.md: how often each build runs the generator and the compiler."""

from __future__ import annotations

import os
import re
import shutil
import subprocess
import time
from collections.abc import Mapping
from pathlib import Path
from typing import NamedTuple

import pytest

import orv

DOCUMENT = Path(__file__).parents[2] / "docs" / "builds.md"
BLOCK = re.compile(r"^(?:## (.+)|```\w+ (\S+)\n((?:.*\n)*?)```)$", re.MULTILINE)
BUILD_TREE = Path(orv.__file__).parents[2]


class Tool(NamedTuple):
    """A section of the document, and the commands before and in each build.

    `build_file` is where outputs are declared, if they have to be.
    """

    section: str
    setup: str
    build: str
    build_file: str = ""


CMAKE = 'cmake -B build -DCMAKE_PREFIX_PATH="$PREFIX" -G '
TOOLS = {
    "CMake, Ninja": Tool("CMake", CMAKE + "Ninja", "cmake --build build"),
    "CMake, Make": Tool("CMake", CMAKE + "'Unix Makefiles'", "cmake --build build"),
    "CMake with OUTPUTS, Ninja":
        Tool("CMake with OUTPUTS", CMAKE + "Ninja", "cmake --build build", "CMakeLists.txt"),
    "CMake with OUTPUTS, Make":
        Tool(
            "CMake with OUTPUTS",
            CMAKE + "'Unix Makefiles'",
            "cmake --build build",
            "CMakeLists.txt",
        ),
    "Make": Tool("Make", "true", "make"),
    "Ninja": Tool("Ninja", "true", "ninja", "build.ninja"),
    "Ninja with a script": Tool("Ninja with a script", "sh configure.sh", "ninja"),
    "Meson": Tool("Meson", "meson setup build", "ninja -C build", "meson.build"),
}  # fmt: skip

INPUTS = ("main.j2", "device.j2", "model.yaml", "naming.py", "words.py", "banner.py")

# What becomes of the texts of inputs in each step, the runs and the compilations. Where the outputs
# have to be declared, the step "valve" fails at first, with one run more.
SAME = (1, 0)
STEPS: dict[str, tuple[int, int]] = {
    "first build": (1, 3),
    "nothing changed": (0, 0),
    **{f"touch {name}": SAME for name in INPUTS},
    "nothing changed again": (0, 0),
    "included template renamed": SAME,
    "one output changed": (1, 1),
    "new output, undeclared": SAME,
    "new output": (1, 1),
    "output renamed": (1, 1),
    "error in a template": SAME,
    "error again": SAME,
    "error mended": SAME,
    "nothing changed at last": (0, 0),
}
ERROR = "{{ nothing }}\n"


def sections() -> dict[str, dict[str, str]]:
    """The files of the document's examples, by section and name."""
    found: dict[str, dict[str, str]] = {}
    for heading, name, text in BLOCK.findall(DOCUMENT.read_text()):
        if heading:
            files = found.setdefault(heading, {})
        else:
            files[name] = text
    return found


@pytest.fixture(scope="session")
def prefix(tmp_path_factory: pytest.TempPathFactory) -> Path:
    """An installation that was moved, whose `orv` and `cc` write what they do to $BUILD_LOG."""
    folder = tmp_path_factory.mktemp("installed")
    subprocess.run(
        ["cmake", "--install", BUILD_TREE, "--prefix", folder / "first"],
        check=True, stdout=subprocess.DEVNULL,
    )  # fmt: skip
    moved = (folder / "first").rename(folder / "moved prefix")
    program = (moved / "bin/orv").rename(moved / "bin/orv.real")
    script(moved / "bin/orv", f'echo orv >>"$BUILD_LOG"\nexec "{program}" "$@"\n')
    script(
        moved / "bin/cc",
        "for word; do case $word in *app.c|*fan.c|*pump.c|*valve.c|*tank.c)"
        f' echo cc >>"$BUILD_LOG";; esac; done\nexec "{shutil.which("cc")}" "$@"\n',
    )
    return moved


def script(path: Path, text: str) -> None:
    path.write_text("#!/bin/sh\n" + text)
    path.chmod(0o755)


def touch(path: Path) -> None:
    """Give a file the present time. The system's own stamps may be a tick behind it."""
    now = time.time_ns()
    os.utime(path, ns=(now, now))


class Project:
    """A project in a folder, and the table of what its builds ran."""

    def __init__(self, folder: Path, prefix: Path, tool: Tool) -> None:
        self.folder, self._tool = folder, tool
        self._log = folder.parent / "log"
        self._environment = os.environ | {
            "PATH": f"{prefix / 'bin'}:{os.environ['PATH']}",
            "PREFIX": str(prefix),
            "BUILD_LOG": str(self._log),
            "CC": "cc",
        }
        for name in ("PYTHONPATH", "CFLAGS", "MAKEFLAGS", "CMAKE_C_COMPILER_LAUNCHER"):
            self._environment.pop(name, None)
        self.table: dict[str, tuple[int, int]] = {}
        found = sections()
        folder.mkdir()
        for name, text in (found["The example"] | found[tool.section]).items():
            (folder / name).write_text(text)

    def build(self, step: str, fails: str = "") -> None:
        """Build, which fails with a message if `fails` is one, and enter the counts."""
        command = self._tool.build if self.table else f"{self._tool.setup} && {self._tool.build}"
        self._log.write_text("")
        done = subprocess.run(
            ["bash", "-c", command], cwd=self.folder, env=self._environment,
            capture_output=True, text=True, check=False,
        )  # fmt: skip
        said = f"{step}\n{done.stdout}{done.stderr}"
        assert (done.returncode != 0) is bool(fails) and fails in said, said
        words = self._log.read_text().split()
        self.table[step] = words.count("orv"), words.count("cc")

    def replace(self, name: str, old: str, new: str) -> None:
        path = self.folder / name
        text = path.read_text()
        assert old in text
        path.write_text(text.replace(old, new))
        touch(path)

    def declare(self, lines: Mapping[str, str]) -> None:
        """Replace words in the lines of the build file; what begins with "+" comes after them.

        The file is written even if nothing is replaced.
        """
        if not self._tool.build_file:
            return
        path = self.folder / self._tool.build_file
        text = path.read_text()
        for old, new in lines.items():
            for line in text.splitlines(keepends=True):
                if old in line:
                    kept = line if new.startswith("+") else ""
                    text = text.replace(line, kept + line.replace(old, new.removeprefix("+")))
        path.write_text(text)
        touch(path)

    def program(self) -> bytes:
        """The program that was built; its symbols are names of devices."""
        return (self.folder / "build/app").read_bytes()


@pytest.mark.parametrize("name", TOOLS)
def test_builds(tmp_path: Path, prefix: Path, name: str) -> None:
    tool = TOOLS[name]
    project = Project(tmp_path / "a project", prefix, tool)
    project.build("first build")
    project.build("nothing changed")
    for input in INPUTS:
        touch(project.folder / input)
        project.build(f"touch {input}")
    project.build("nothing changed again")
    (project.folder / "device.j2").rename(project.folder / "part.j2")
    project.replace("main.j2", "device.j2", "part.j2")
    project.build("included template renamed")
    # A change that only the depfile tells of, while the build itself is made anew.
    project.replace("part.j2", "[device] }}", "[device] + (device == 'pump') }}")
    project.declare({})
    project.build("one output changed")

    project.replace("model.yaml", "fan: 3", "fan: 3\n  valve: 4")
    if tool.build_file:
        project.build("new output, undeclared", "valve.c is made, but no --expect names it")
    project.declare({"fan": "+valve"})
    project.build("new output")
    assert b"valve_limit" in project.program()
    project.replace("part.j2", "device ~", 'device | replace("valve", "tank") ~')
    project.declare({"valve": "tank"})
    project.build("output renamed")
    assert b"valve_limit" in project.program()
    assert not list(project.folder.rglob("valve.[ch]"))

    project.replace("main.j2", "{% for", ERROR + "{% for")
    for step in ("error in a template", "error again"):
        project.build(step, "main.j2:1: 'nothing' is undefined")
    project.replace("main.j2", ERROR, "")
    project.build("error mended")
    project.build("nothing changed at last")
    for step, counts in project.table.items():
        print(f"| {name} | {step} | {counts[0]} | {counts[1]} |")
    assert project.table == {step: STEPS[step] for step in project.table}
    assert not list(project.folder.rglob("__pycache__"))
