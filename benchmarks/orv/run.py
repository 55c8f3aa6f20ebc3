"""Measures the template engine and prints a table of ratios; ends with 1 when a goal is missed.

    PYTHONPATH=build/bench/python python3 benchmarks/orv/run.py [--rounds N] [GROUP...]

GROUP is one of those that `--help` lists; all of them when left out. Each ratio is of medians over
N alternating rounds (7 by default) on one machine in one run. Time is user and system time of whole
processes, except for `engine` and what is called elapsed; memory is the largest resident size.
"""

from __future__ import annotations

import argparse
import json
import sys
import tempfile
from pathlib import Path

import again
import cluster
import jobs
import packaging
import pages
import tables
from processes import GENERATE, Usage, alternate

HERE = Path(__file__).parent
LOADER = str(HERE.parents[1] / "examples" / "gl" / "loader.c.j2")
REGISTRY = "/usr/share/khronos-api/gl.xml"
SIZES = (10, 100, 1000, 10000)


class Report:
    """Prints a table: a row for each ratio, with its goal and its reach if it has them."""

    def __init__(self) -> None:
        self.missed = False
        print("| workload | goal | reach | measured | | |\n|---|---:|---:|---:|---|---|")

    def add(
        self, what: str, ratio: float, goal: float | None = None, reach: float | None = None,
        note: str = "",
    ) -> None:  # fmt: skip
        """`goal` and `reach` are upper bounds of the ratio; only a missed goal counts as missed."""
        bounds = ["" if bound is None else f"{bound:.2f}" for bound in (goal, reach)]
        verdict = ""
        if goal is not None:
            self.missed |= ratio > goal
            verdict = "MISSED" if ratio > goal else "holds"
        if reach is not None and ratio <= reach:
            verdict = "reached"
        print(f"| {what} | {' | '.join(bounds)} | {ratio:.2f} | {verdict} | {note} |", flush=True)

    def add_usage(self, what: str, ours: Usage, theirs: Usage, time: float, memory: float) -> None:
        """Time and memory with their goals."""
        seconds = f"{ours.seconds:.2f} s / {theirs.seconds:.2f} s"
        self.add(f"{what}, time", ours.seconds / theirs.seconds, time, note=seconds)
        megabytes = f"{ours.megabytes:.0f} MB / {theirs.megabytes:.0f} MB"
        self.add(f"{what}, memory", ours.megabytes / theirs.megabytes, memory, note=megabytes)


def compare_tables(report: Report, rounds: int, folder: Path) -> None:
    """A table of many rows, beside other engines and in many sections."""
    for count in (100_000, 1_000_000):
        usage = tables.measure(folder, count, rounds)
        ours = usage["table"]
        what = f"table of {count} rows"
        for peer, goal, reach in (("jinja2", 1.0, 0.7), ("mako", 0.8, None)):
            note = f"{ours.seconds:.2f} s / {usage[peer].seconds:.2f} s"
            ratio = ours.seconds / usage[peer].seconds
            report.add(f"{what}, orv / {peer}, time", ratio, goal, reach, note)
        stream = usage["jinja2_stream"].megabytes
        note = f"{ours.megabytes:.0f} MB / {stream:.0f} MB"
        ratio = ours.megabytes / stream
        report.add(f"{what}, orv / jinja2_stream, memory", ratio, 1.2, 0.8, note)
        for name in tables.SCATTERED:
            ratio = usage[name].seconds / ours.seconds
            report.add(f"{what}, {name} / table, time", ratio, 1.15, 1.0)


def compare_with_glad(report: Report, rounds: int, folder: Path) -> None:
    """The OpenGL loader, beside glad, starting from an empty folder."""
    for extensions, time, memory in (("", 0.25, 0.4), ("all", 0.2, 0.3)):
        chosen = ["--set", "version=4.6", "--set", f"extensions={extensions}"]
        out = ["--no-state", "--out", str(folder / f"orv{extensions}")]
        ours = [*GENERATE, LOADER, "--model", REGISTRY, *chosen, *out]
        ours += ["--extend", str(Path(LOADER).with_name("selection.py"))]
        theirs = ["glad", *([] if extensions else ["--extensions="]), "--reproducible", "--quiet"]
        theirs += ["--api", "gl:core=4.6", "--out-path", str(folder / "glad"), "c"]
        orv, glad = alternate([ours, theirs], rounds)
        what = f"gl core 4.6, {extensions or 'no'} extensions, orv / glad"
        report.add_usage(what, orv, glad, time, memory)


def compare_start(report: Report, rounds: int, folder: Path) -> None:
    """What a run costs that has nothing to do, and one whose inputs did not change."""
    empty = folder / "empty.j2"
    empty.write_text("")
    start = [*GENERATE, str(empty), "--no-state", "--out", str(folder / "empty")]
    bare = [sys.executable, "-c", "import jinja2"]
    ours, theirs = alternate([start, bare], rounds)
    report.add_usage("empty template, orv / import of Jinja2", ours, theirs, 1.6, 1.6)


def compare_sizes(report: Report, rounds: int, folder: Path) -> None:
    """The cost of one more file in a large run over that in a small one."""
    commands = []
    for size in SIZES:
        model = folder / f"{size}.json"
        model.write_text(json.dumps(packaging.modules(size // 2, 12)))
        # Without writing: the disk's time is not the engine's.
        run = [*GENERATE, str(HERE / "modules.j2"), "--model", str(model), "--dry-run"]
        commands.append([*run, "--out", str(folder / "none")])
    usages = alternate(commands, rounds)
    files = [right - left for left, right in zip(SIZES, SIZES[1:], strict=False)]
    costs = [
        Usage((right.seconds - left.seconds) / count, (right.megabytes - left.megabytes) / count)
        for left, right, count in zip(usages, usages[1:], files, strict=False)
    ]
    note = " / ".join(f"{usage.seconds:.2f}" for usage in usages) + " s"
    ratio = costs[-1].seconds / costs[-2].seconds
    report.add("a file of 10,000 / a file of 1,000, time", ratio, 1.15, note=note)
    text = packaging.by_jinja2(packaging.modules(SIZES[2] // 2, 12)) / SIZES[2] / 2**20
    note = " / ".join(f"{usage.megabytes:.0f}" for usage in usages) + " MB"
    report.add("a file of 10,000 / its text, memory", costs[-1].megabytes / text, 4, 3, note)


def compare_again(report: Report, rounds: int, folder: Path) -> None:
    """A run in which nothing changes: what the state file, the depfile and user regions cost, and
    what it costs to skip it."""
    for count in (1000, 10_000):
        usage = again.measure(folder, count, rounds)
        goal = 1.05 if count == 1000 else None
        for what, ours, theirs in (
            ("state and depfile / none", usage["state"], usage["none"]),
            ("user regions / comments", usage["regions"], usage["comments"]),
        ):
            note = f"{ours.seconds:.2f} s / {theirs.seconds:.2f} s"
            ratio = ours.seconds / theirs.seconds
            report.add(f"{count} files again, {what}, time", ratio, goal, note=note)
        ours, theirs = usage["skipped"], usage["state"]
        note = f"{ours.seconds:.3f} s / {theirs.seconds:.2f} s"
        ratio = ours.seconds / theirs.seconds
        report.add(f"{count} files again, skipped / run, time", ratio, 0.25, 0.1, note)


def compare_trace(report: Report, rounds: int, folder: Path) -> None:
    """What a trace costs, for a million rows."""
    model = folder / "traced.json"
    tables.write_model(model, 1_000_000)
    plain = [*GENERATE, str(HERE / "table.j2"), "--model", str(model), "--no-state"]
    plain += ["--out", str(folder / "traced")]
    theirs, ours = alternate([plain, [*plain, "--trace", str(folder / "trace.json")]], rounds)
    report.add_usage("a million rows, with a trace / without", ours, theirs, 1.6, 2)


def compare_pages(report: Report, rounds: int, folder: Path) -> None:
    """Opening the report of a large run, if there is a browser."""
    try:
        opened = pages.measure(pages.make(folder), rounds)
    except ImportError:
        print("opening a report: needs scripts/setup browser")
        return
    note = f"{opened.seconds:.2f} s, {opened.megabytes:.0f} MB of heap"
    report.add("report of 2,000 files, opening / 2 s", opened.seconds / 2, 1, note=note)
    report.add("report of 2,000 files, heap / 100 MB", opened.megabytes / 100, 1)


def compare_jobs(report: Report, rounds: int, folder: Path) -> None:
    """Two hundred runs, two at once against one after the other."""
    command = jobs.command(folder, 200)
    elapsed, usage = jobs.elapsed(command, rounds), jobs.usage(command, rounds)
    note = f"{elapsed[2]:.2f} s / {elapsed[1]:.2f} s"
    report.add("200 runs, two jobs / one, elapsed", elapsed[2] / elapsed[1], 1 / 1.8, note=note)
    note = f"{usage[2].seconds:.2f} s / {usage[1].seconds:.2f} s"
    ratio = usage[2].seconds / usage[1].seconds
    report.add("200 runs, two jobs / one, time", ratio, 1.1, note=note)


def compare_cluster(report: Report, rounds: int) -> None:
    """Runs that the workers of a scheduler render, if there is one."""
    try:
        # In memory: what the disk's file system takes to write is not the command's.
        with tempfile.TemporaryDirectory(dir="/dev/shm") as name:
            cost = cluster.measure(Path(name), rounds)
    except ImportError:
        print("runs of a scheduler: needs python3-distributed")
        return
    note = f"{cost.seconds * 1000:.2f} ms, {cost.bytes / 1000:.1f} kB there and back"
    ratio = cost.seconds / 0.003
    report.add("a run of a scheduler, the command's time / 3 ms", ratio, 1, note=note)


def compare_engines(report: Report, rounds: int) -> None:
    """Packaging against plain rendering of the same text, in one process."""
    for fields, files, goal, reach in ((12, 400, 1.5, 1.2), (120, 40, 1.1, 1.0)):
        model = packaging.modules(files // 2, fields)
        times = packaging.measure(model, rounds)
        note = f"{files} files, {packaging.by_jinja2(model) // files} bytes each"
        report.add("engine / Jinja2", times.orv / times.jinja2, 1.1, note=note)
        quick = times.orv / times.jinja2_quick
        report.add("engine / Jinja2 with orv's look-up of names", quick, goal, reach, note)


def main() -> int:
    groups = ("tables", "loaders", "start", "growth", "again", "trace", "pages", "jobs", "cluster",
              "engine")  # fmt: skip
    parser = argparse.ArgumentParser()
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("group", nargs="*", choices=(*groups, []))
    arguments = parser.parse_args()
    rounds = arguments.rounds
    report = Report()
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        for group in arguments.group or groups:
            if group == "tables":
                compare_tables(report, rounds, folder)
            elif group == "loaders":
                compare_with_glad(report, rounds, folder)
            elif group == "start":
                compare_start(report, rounds, folder)
            elif group == "growth":
                compare_sizes(report, min(rounds, 3), folder)
            elif group == "again":
                compare_again(report, rounds, folder)
            elif group == "jobs":
                compare_jobs(report, min(rounds, 5), folder)
            elif group == "cluster":
                compare_cluster(report, min(rounds, 5))
            elif group == "trace":
                compare_trace(report, min(rounds, 3), folder)
            elif group == "pages":
                compare_pages(report, rounds, folder)
            else:
                compare_engines(report, rounds)
    return 1 if report.missed else 0


if __name__ == "__main__":
    sys.exit(main())
