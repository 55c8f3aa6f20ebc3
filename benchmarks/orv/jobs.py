"""Many runs of the kind of examples/dbus: one for each description of an interface."""

from __future__ import annotations

import shutil
import subprocess
import time
from pathlib import Path
from statistics import median

from processes import GENERATE, Usage, run

_DESCRIPTIONS = sorted(Path("/usr/share/dbus-1/interfaces").glob("org.freedesktop.*portal*.xml"))
_EXAMPLE = Path(__file__).parents[2] / "examples" / "dbus"

# The example makes stubs of several descriptions at once.
_EXTENSION = """\
import orv

@orv.prepare
def one(model: orv.Model) -> orv.Model:
    return model | {"descriptions": {"interface": model["description"]}}
"""


def command(folder: Path, count: int) -> list[str]:
    """The command that does so many runs, on descriptions that are copied to the folder."""
    models = folder / "descriptions"
    models.mkdir(exist_ok=True)
    for number in range(count):
        source = _DESCRIPTIONS[number % len(_DESCRIPTIONS)]
        shutil.copy(source, models / f"{number:05}.xml")
    (folder / "one.py").write_text(_EXTENSION)
    schema = (_EXAMPLE / "stubs.schema.json").read_text()
    (folder / "schema.json").write_text(schema.replace('"descriptions"', '"description"'))
    return [
        *GENERATE, str(_EXAMPLE / "stubs.j2"), "--model", f"stubs={_EXAMPLE / 'stubs.yaml'}",
        "--schema", str(folder / "schema.json"), "--guard", "{PATH}_H",
        "--extend", str(folder / "one.py"), "--extend", str(_EXAMPLE / "interfaces.py"),
        "--for-each", f"description={models}/*.xml", "--out", str(folder / "stubs/{description}"),
    ]  # fmt: skip


def elapsed(arguments: list[str], rounds: int) -> dict[int, float]:
    """The seconds from beginning to end, by the number of jobs, in turn: medians."""
    times: dict[int, list[float]] = {1: [], 2: []}
    for _ in range(rounds):
        for jobs, found in times.items():
            begin = time.perf_counter()
            subprocess.run([*arguments, "--jobs", str(jobs)], check=True)
            found.append(time.perf_counter() - begin)
    return {jobs: median(found) for jobs, found in times.items()}


def usage(arguments: list[str], rounds: int) -> dict[int, Usage]:
    """What all processes use together, by the number of jobs."""
    found: dict[int, list[Usage]] = {1: [], 2: []}
    for _ in range(rounds):
        for jobs, usages in found.items():
            usages.append(run([*arguments, "--jobs", str(jobs)]))
    return {jobs: Usage._make(map(median, zip(*usages))) for jobs, usages in found.items()}
