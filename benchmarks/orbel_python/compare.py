"""What calls through orbel cost: ratios to the same calls bound directly with pybind11.

    PYTHONPATH=build/bench/python python3 build/bench/benchmarks/orbel_python/compare.py

With --smoke, a short run that only shows that everything works. Times are nanoseconds per call, the
least of several rounds, in which the two sides take turns; the empty loop is subtracted.
"""

from __future__ import annotations

import argparse
from timeit import Timer
from typing import Any

import direct_binding
import orbel

ACCESSES = (
    ("property read, text", "file.Type"),
    ("property read, 16-bit text", "file.Name"),
    ("property read, logical", "file.Indent"),
    ("property set, text", "file.Type = 'SystemBody'"),
    ("method call, no argument", "section.getNumberOfFunctions()"),
    ("method call, number", "section.getFunctionName(1)"),
    ("method call, text", "file.hasSection('TYPEDEFS_SECTION')"),
    ("method call, object result", "file.getFunctionsSection()"),
)


def sample_objects(package: Any) -> dict[str, Any]:
    repository = package.VarnFileRepository()
    file = repository.createGenericFile("model.c")
    file.Type = "SystemBody"
    section = file.getFunctionsSection()
    section.addFunction("step", "void step(void);")
    return {"repository": repository, "file": file, "section": section}


def least_times(timers: list[Timer], count: int, rounds: int) -> list[float]:
    """The nanoseconds of each timer's statement, the empty loop subtracted."""
    turns = [Timer(), *timers]
    results = [
        min(times) for times in zip(*([t.timeit(count) for t in turns] for _ in range(rounds)))
    ]
    return [(time - results[0]) / count * 1e9 for time in results[1:]]


def listing_time(package: Any, size: int) -> float:
    """Seconds to list `size` functions by index."""
    section = sample_objects(package)["section"]
    for number in range(size - 1):
        section.addFunction(f"f{number}", f"void f{number}(void);")
    statement = "[section.getFunction(i) for i in range(1, section.getNumberOfFunctions() + 1)]"
    return min(Timer(statement, globals={"section": section}).repeat(5, 1))


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--smoke", action="store_true", help="a short run")
    smoke = parser.parse_args().smoke
    count, rounds = (100, 1) if smoke else (100_000, 9)

    host = orbel.load("varn_filepackaging")
    through_orbel, direct = sample_objects(host), sample_objects(direct_binding)
    print(f"{'from Python':32} {'orbel ns':>9} {'direct ns':>9} {'ratio':>6}")
    direct_call = 0.0
    for what, statement in ACCESSES:
        timers = [Timer(statement, globals=objects) for objects in (through_orbel, direct)]
        ours, theirs = least_times(timers, count, rounds)
        print(f"{what:32} {ours:9.1f} {theirs:9.1f} {ours / theirs:6.2f}")
        if what == "method call, no argument":
            direct_call = theirs

    print(f"\n{'from C++':32} {'host ns':>9} {'direct ns':>9} {'over':>6} {'ratio':>6}")
    for what, measure in (
        ("property read, text", direct_binding.time_property_read),
        ("method call, number", direct_binding.time_method_call),
    ):
        member, hosted = (min(times) for times in zip(*(measure(count) for _ in range(rounds))))
        over = hosted - member
        print(f"{what:32} {hosted:9.1f} {member:9.1f} {over:6.1f} {over / direct_call:6.2f}")
    print(f"(the ratio is to a direct pybind11 call without arguments: {direct_call:.1f} ns)")

    small, large = (10, 100) if smoke else (1_000, 10_000)
    ratio = listing_time(host, large) / listing_time(host, small)
    print(f"\nlisting {large} functions by index takes {ratio:.1f} times as long as {small}")


if __name__ == "__main__":
    main()
