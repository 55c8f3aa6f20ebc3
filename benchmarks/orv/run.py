"""Measures the template engine and prints ratios; ends with 1 when a goal is missed.

    PYTHONPATH=build/bench/python python3 benchmarks/orv/run.py [ROUNDS]

Each ratio is of medians over ROUNDS alternating rounds (9 when left out) on one machine in one run.
Processor time is user and system time; memory is the largest resident size.
"""

from __future__ import annotations

import json
import sys
import tempfile
from pathlib import Path

import packaging
from processes import Usage, alternate

HERE = Path(__file__).parent
GENERATE = [sys.executable, "-m", "orv", "generate", "--quiet"]
LOADER = str(HERE.parents[1] / "examples" / "gl" / "loader.c.j2")
REGISTRY = "/usr/share/khronos-api/gl.xml"
SIZES = (100, 1000, 10000)


class Report:
    """Prints one line for each ratio, with its goal if it has one."""

    def __init__(self) -> None:
        self.missed = False

    def add(self, what: str, ratio: float, goal: float | None = None, note: str = "") -> None:
        """`goal` is the upper bound of the ratio."""
        met = goal is None or ratio <= goal
        self.missed |= not met
        verdict = "" if goal is None else f"goal {goal:.2f} {'met' if met else 'MISSED'}"
        print(f"{what:58}{ratio:6.2f}  {verdict:18}{note}", flush=True)


def compare_packaging(report: Report, rounds: int) -> None:
    """Packaging against plain rendering of the same text."""
    for fields, files in ((12, 400), (120, 40)):
        model = packaging.modules(files // 2, fields)
        times = packaging.measure(model, rounds)
        note = f"{files} files, {packaging.by_jinja2(model) // files} bytes each"
        report.add("orv / Jinja2, time", times.orv / times.jinja2, 1.1, note)
        report.add(
            "orv / Jinja2 with orv's look-up of names, time",
            times.orv / times.jinja2_quick,
            note=note,
        )


def compare_with_glad(report: Report, rounds: int, folder: Path) -> None:
    """The OpenGL loader, whole process against whole process, starting from an empty folder."""
    for extensions in ("", "all"):
        ours = [
            *GENERATE,
            LOADER,
            "--model",
            REGISTRY,
            "--out",
            str(folder / "orv"),
            "--set",
            "version=4.6",
            "--set",
            f"extensions={extensions}",
        ]
        theirs = [
            "glad",
            "--reproducible",
            "--quiet",
            "--api",
            "gl:core=4.6",
            "--out-path",
            str(folder / "glad"),
            "c",
        ]
        if not extensions:
            theirs[1:1] = ["--extensions="]
        orv, glad = alternate([ours, theirs], rounds)
        what = f"orv / glad, gl core 4.6, {extensions or 'no'} extensions, "
        report.add(
            what + "time",
            orv.seconds / glad.seconds,
            0.5,
            f"{orv.seconds:.2f} s / {glad.seconds:.2f} s",
        )
        report.add(
            what + "memory",
            orv.megabytes / glad.megabytes,
            0.5,
            f"{orv.megabytes:.0f} MB / {glad.megabytes:.0f} MB",
        )


def compare_sizes(report: Report, rounds: int, folder: Path) -> None:
    """The cost of one more file in a large run over that in a small one."""
    commands = []
    for size in SIZES:
        model = folder / f"{size}.json"
        model.write_text(json.dumps(packaging.modules(size // 2, 12)))
        # Without writing: the disk's time is not the engine's.
        commands.append(
            [
                *GENERATE,
                str(HERE / "modules.j2"),
                "--model",
                str(model),
                "--dry-run",
                "--out",
                str(folder / "none"),
            ]
        )
    usages = alternate(commands, rounds)
    for index, what in enumerate(Usage._fields):
        small, middle, large = (usage[index] for usage in usages)
        first = (middle - small) / (SIZES[1] - SIZES[0])
        second = (large - middle) / (SIZES[2] - SIZES[1])
        report.add(
            f"a file of {SIZES[2]} / a file of {SIZES[1]}, {what}",
            second / first,
            1.25,
            " / ".join(f"{value:.2f}" for value in (small, middle, large)),
        )


def main() -> int:
    rounds = int(sys.argv[1]) if len(sys.argv) > 1 else 9
    report = Report()
    with tempfile.TemporaryDirectory() as folder:
        compare_packaging(report, rounds)
        compare_with_glad(report, rounds, Path(folder))
        compare_sizes(report, min(rounds, 3), Path(folder))
    return 1 if report.missed else 0


if __name__ == "__main__":
    sys.exit(main())
