"""Makes loaders with the example's templates and with glad, and looks at what they declare."""

from __future__ import annotations

import os
import re
import subprocess
import sys
from pathlib import Path
from typing import NamedTuple

import glad

EXAMPLE = Path(__file__).parents[2] / "examples" / "gl"
GLAD_REGISTRY = Path(glad.__file__).parent / "files" / "gl.xml"
REGISTRY = Path("/usr/share/khronos-api/gl.xml")


class Choice(NamedTuple):
    """What a loader is for; `extensions` are names with commas between them, or "all"."""

    api: str
    profile: str
    version: str
    extensions: str = ""


def run(*command: str | Path) -> subprocess.CompletedProcess[str]:
    return subprocess.run(command, capture_output=True, text=True, check=False)


def output(*command: str | Path) -> str:
    """What a program prints, which must succeed and must not complain."""
    done = run(*command)
    assert (done.returncode, done.stderr) == (0, "")
    return done.stdout


def generate(
    out: Path, *settings: str, script: Path | None = None, registry: Path = REGISTRY
) -> subprocess.CompletedProcess[str]:
    """Run the example's templates on a registry."""
    options = [option for setting in settings for option in ("--set", setting)]
    options += ["--script", str(script)] if script else []
    return run(
        sys.executable,
        "-m",
        "orv",
        "generate",
        EXAMPLE / "loader.c.j2",
        "--strict",
        "--quiet",
        "--extend",
        EXAMPLE / "selection.py",
        "--model",
        registry,
        "--out",
        out,
        *options,
    )


def make(out: Path, choice: Choice, registry: Path = REGISTRY) -> Path:
    """Make a loader with the example's templates; returns its header."""
    settings = [f"{name}={value}" for name, value in choice._asdict().items() if value]
    done = generate(out, *settings, registry=registry)
    assert (done.returncode, done.stdout, done.stderr) == (0, "", "")
    return out / "gl_loader.h"


def make_with_glad(out: Path, choice: Choice) -> Path:
    """Make a loader with glad, from its own registry; returns its header."""
    api = choice.api + (f":{choice.profile}" if choice.profile else "")
    extensions = [] if choice.extensions == "all" else [f"--extensions={choice.extensions}"]
    done = run(
        "glad",
        "--reproducible",
        "--quiet",
        f"--api={api}={choice.version}",
        *extensions,
        f"--out-path={out}",
        "c",
    )
    assert done.returncode == 0, done.stderr
    return next((out / "include" / "glad").iterdir())


def compile_c(program: Path, *sources: str | Path, include: Path) -> Path:
    """Compile and link as strictly as loaders have to bear."""
    output(
        os.environ.get("CC", "cc"),
        "-std=c99",
        "-Wall",
        "-Wextra",
        "-Werror",
        f"-I{include}",
        *sources,
        "-o",
        program,
    )
    return program


def command_names(header: Path) -> set[str]:
    """The names that programs call commands by."""
    return _defined(header, "gl[A-Z]")


def constant_values(header: Path) -> dict[str, int]:
    """The constants, and what they are for the compiler."""
    names = sorted(_defined(header, "GL_"))
    rows = "".join(f'{{"{name}", (long long){name}}},\n' for name in names)
    source = header.parent / "constants.c"
    source.write_text(
        f'#include <stdio.h>\n#include "{header}"\n'
        f"static const struct {{ const char *name; long long value; }} rows[] = {{{rows}}};\n"
        "int main(void) {\n  for (unsigned i = 0; i < sizeof rows / sizeof *rows; i++)\n"
        '    printf("%s %lld\\n", rows[i].name, rows[i].value);\n  return 0;\n}\n'
    )
    # glad's headers find each other from the folder above their own.
    program = compile_c(source.with_suffix(""), source, include=header.parent.parent)
    lines = output(program).splitlines()
    return {name: int(value) for name, value in (line.split() for line in lines)}


def _defined(header: Path, beginning: str) -> set[str]:
    pattern = re.compile(rf"^#define ({beginning}\w*) ", re.MULTILINE)
    return {n for file in header.parent.glob("*.h") for n in pattern.findall(file.read_text())}
