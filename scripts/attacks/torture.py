"""Runs all attacks side by side and prints what came of them: torture.py MINUTES LAYER FUZZERS.

LAYER is the library of faults.cpp and allocations.cpp, FUZZERS the folder of the fuzzers. Ends with
1 when anything was found; what it was has been printed, and inputs that fuzzers found are in the
working folder.
"""

from __future__ import annotations

import json
import os
import re
import subprocess
import sys
import tempfile
from collections.abc import Callable
from pathlib import Path

import attack

HERE = Path(__file__).parent
CORPUS = HERE.parents[1] / "tests/fuzz/corpus"

Result = dict[str, int | str]
# A process with the files that take what it prints and what it says, and how to read them.
Started = tuple["subprocess.Popen[bytes]", Path, Callable[[int, str], Result]]


def start(
    command: list[str], log: Path, preload: str, read: Callable[[int, str], Result]
) -> Started:
    environment = {**os.environ, "LD_PRELOAD": preload} if preload else dict(os.environ)
    with log.open("wb") as stream:
        process = subprocess.Popen(
            command, stdout=stream, stderr=subprocess.STDOUT, env=environment
        )
    return process, log, read


def start_attack(name: str, seconds: float, layer: str, folder: Path) -> Started:
    command = [sys.executable, str(HERE / "attack.py"), name, str(seconds)]
    return start(command, folder / name, layer, read_attack)


def read_attack(code: int, said: str) -> Result:
    lines = said.splitlines()
    if code != 0 or not lines or not lines[-1].startswith("{"):
        return {"cases": 0, "failed": 1, "note": f"ended with {code}"}
    result: Result = json.loads(lines[-1])
    return result


def start_fuzzer(fuzzer: Path, seconds: float, folder: Path) -> Started:
    name = fuzzer.name
    found = folder / f"{name}.corpus"
    found.mkdir()
    seeds = CORPUS / name.removesuffix("_fuzzer")
    command = [
        *(str(part) for part in (fuzzer, found, seeds)),
        f"-max_total_time={seconds:.0f}",
        "-print_final_stats=1",
        "-max_len=2000",
        "-timeout=20",
        "-rss_limit_mb=3000",
        # The interpreter frees little of what it has at the end.
        f"-detect_leaks={0 if name == 'model_fuzzer' else 1}",
        f"-artifact_prefix={name}-",
        "-verbosity=0",
    ]
    return start(command, folder / name, "", read_fuzzer)


def read_fuzzer(code: int, said: str) -> Result:
    units = re.search(r"number_of_executed_units: (\d+)", said)
    return {"cases": int(units.group(1)) if units else 0, "failed": int(code != 0)}


def main(minutes: float, layer: str, fuzzers: Path) -> int:
    seconds = minutes * 60
    failed = 0
    with tempfile.TemporaryDirectory() as made:
        folder = Path(made)
        running = [start_attack(name, seconds, layer, folder) for name in attack.ATTACKS]
        running += [
            start_fuzzer(path, seconds, folder) for path in sorted(fuzzers.glob("*_fuzzer"))
        ]
        rows = []
        try:
            for process, log, read in running:
                result = read(process.wait(), log.read_text(errors="replace"))
                rows.append((log.name.replace("_", " "), result))
                if result["failed"]:
                    failed += 1
                    said = log.read_text(errors="replace")[-6000:]
                    print(f"== {log.name}\n{said}", file=sys.stderr)
        finally:
            for process, *_ in running:
                process.terminate()
    print("| attack | cases | survived | failed |\n|---|---|---|---|")
    for name, result in rows:
        cases, lost = int(result["cases"]), int(result["failed"])
        note = f" ({result['note']})" if "note" in result else ""
        print(f"| {name}{note} | {cases} | {max(cases - lost, 0)} | {lost} |")
    return int(failed != 0)


if __name__ == "__main__":
    sys.exit(main(float(sys.argv[1]), sys.argv[2], Path(sys.argv[3])))
