"""Runs the examples of the README with what is installed, in an empty folder, and compares what
they make with what the README shows.

    readme_examples.py README.md
"""

from __future__ import annotations

import doctest
import re
import subprocess
import sys
from pathlib import Path


def run(command: str) -> str:
    return subprocess.run(
        ["bash", "-e", "-o", "pipefail", "-c", command],
        check=True, stdout=subprocess.PIPE, text=True,
    ).stdout  # fmt: skip


def same(name: str, actual: str, expected: str) -> None:
    if actual != expected:
        sys.exit(f"{name}: the README shows\n{expected}\nbut it is\n{actual}")
    print(f"{name}: as the README shows it")


readme = Path(sys.argv[1]).read_text()
blocks: dict[str, list[str]] = {}
for language, text in re.findall(r"^```(\w+)\n(.*?)^```$", readme, re.MULTILINE | re.DOTALL):
    blocks.setdefault(language, []).append(text)
# The commands, without the folder of a build tree.
commands = [line.strip() for line in re.findall(r"^    .*", readme, re.MULTILINE)]
template = [re.sub(r"^\S*/orv ", "orv ", line) for line in commands if "counters.j" in line]
compilation = next(line for line in commands if "pkg-config" in line)

Path("counters.j2").write_text(blocks["jinja"][0])
for command in template:
    run(command)
same("counters.h", Path("generated/counters.h").read_text(), blocks["c"][0])
same("counters.c", Path("generated/counters.c").read_text(), blocks["c"][1])

Path("main.cpp").write_text(blocks["cpp"][0])
same("main.cpp", run(f"{compilation} && ./a.out"), blocks["c"][2])

Path("session.txt").write_text(blocks["pycon"][0])
if doctest.testfile("session.txt", module_relative=False).failed:
    sys.exit(1)
print("session in Python: as the README shows it")
