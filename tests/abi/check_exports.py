"""Compares the names of Varn that a library exports with a list.

check_exports.py LIBRARY LIST            fails when they differ
check_exports.py LIBRARY LIST --update   writes the list
"""

import difflib
import subprocess
import sys
from pathlib import Path

C_NAMES = ("Orbel", "QueryOrbel", "varn_filepackaging")


def exported(library: str) -> list[str]:
    """The demangled names of Varn and of the module's entry points."""
    command = ["nm", "--dynamic", "--defined-only", "--demangle", "--format=posix", library]
    names = set()
    for line in subprocess.run(
        command, check=True, capture_output=True, text=True
    ).stdout.splitlines():
        name = line.rsplit(" ", 3)[0]
        if "Varn::" in name or name.startswith(C_NAMES):
            names.add(name)
    return sorted(names)


def main(library: str, list_path: str, update: str = "") -> str | None:
    """The difference as text; None when there is none."""
    actual = [name + "\n" for name in exported(library)]
    path = Path(list_path)
    if update:
        path.write_text("".join(actual))
        return None
    expected = path.read_text().splitlines(keepends=True)
    return "".join(difflib.unified_diff(expected, actual, list_path, library)) or None


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
