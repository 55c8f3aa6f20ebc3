"""Carries out one attack for some time: attack.py NAME SECONDS. Ends with a line of JSON."""

from __future__ import annotations

import contextlib
import json
import random
import signal
import sys
import tempfile
import time
from pathlib import Path

import allocations
import calls
import disk

ATTACKS = {
    attack.__name__: attack for attack in [*disk.ATTACKS, *allocations.ATTACKS, *calls.ATTACKS]
}
# A finding is said this often; the rest is counted.
_SAID = 3


def carry_out(name: str, seconds: float) -> dict[str, int | str]:
    attack = ATTACKS[name]
    cases = failed = 0
    with tempfile.TemporaryDirectory() as made, contextlib.ExitStack() as stack:
        folder = Path(made)
        if attack in disk.ON_A_DISK_OF_ITS_OWN:
            try:
                stack.enter_context(disk.small_disk(folder))
            except OSError as error:
                return {"cases": 0, "failed": 0, "note": str(error)}
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            try:
                attack(folder, cases, random.Random(cases))
            except Exception as error:
                failed += 1
                if failed <= _SAID:
                    for found in getattr(error, "exceptions", [error]):
                        text = f"{type(found).__name__}: {found}"
                        print(f"{name}, case {cases}: {text}", file=sys.stderr, flush=True)
            cases += 1
    return {"cases": cases, "failed": failed}


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    print(json.dumps(carry_out(sys.argv[1], float(sys.argv[2]))))
