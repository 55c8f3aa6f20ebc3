"""Checks on the public headers, each a subcommand.

umbrella INCLUDE_DIR     varn_filepackaging.hpp and orbel.hpp include every public header
example HEADER SOURCE    writes the header's example to SOURCE as a program
output PROGRAM EXPECTED  PROGRAM prints what the file EXPECTED holds
rooms SOURCE_DIR         the folders of the library include each other in one direction only
"""

import re
import subprocess
import sys
from collections.abc import Callable
from pathlib import Path

ROOMS = ("sections", "files", "custom", "bridge", "host/diagnostics", "host", "orbel")
# Public headers without a source file of the same name, by the folder that uses them first.
HEADERS_ONLY = {
    "Export": None,
    "FileAttribute": "bridge",
    "FileType": "files",
    "VarnFileSectionKind": "sections",
    "varn_filepackaging": None,
}
# The repository owns its bridge, and the bridge addresses the files of its repository.
EXPECTED_CIRCLES = {frozenset({"files", "bridge"})}


def umbrella(include_dir: str) -> str | None:
    """The public headers that their umbrella header does not include."""
    missing: list[str] = []
    for library, name in (("varn", "varn_filepackaging.hpp"), ("orbel", "orbel.hpp")):
        folder = Path(include_dir) / library
        text = (folder / name).read_text()
        headers = {f"{library}/{path.name}" for path in folder.glob("*.hpp") if path.name != name}
        missing += sorted(headers - set(re.findall(r"#include <(.+)>", text)))
    return f"not included by the umbrella headers: {missing}" if missing else None


def example(header: str, source: str) -> str | None:
    """Write the indented lines of the header's first comment as the body of main()."""
    comment = Path(header).read_text().split("#ifndef")[0]
    body = "\n".join(line[3:] for line in comment.splitlines() if line.startswith("//   "))
    Path(source).write_text(
        "#include <cstdio>\n#include <varn/varn_filepackaging.hpp>\n" f"int main() {{\n{body}\n}}\n"
    )
    return None


def output(program: str, expected: str) -> str | None:
    """The difference between what the program prints and the expected text."""
    printed = subprocess.run([program], check=True, capture_output=True, text=True).stdout
    wanted = Path(expected).read_text()
    return None if printed == wanted else f"printed:\n{printed}\nexpected:\n{wanted}"


def room_of_header(name: str, root: Path) -> str | None:
    """The folder that implements a public header."""
    for room in ROOMS:
        if (root / room / f"{name}.cpp").exists():
            return room
    return HEADERS_ONLY[name]


def room_of_include(path: str, root: Path) -> str | None:
    """The folder that an included file belongs to; None for what is not of the library."""
    if public := re.fullmatch(r"varn/(?:detail/)?(\w+)\.hpp", path):
        return room_of_header(public[1], root)
    if path.startswith("orbel/"):
        return "orbel"
    folder = path.rpartition("/")[0].removesuffix("/mi")
    return folder if folder in ROOMS else None


def files_of_rooms(root: Path) -> list[tuple[str, Path]]:
    """Every source file and header with its folder."""
    found = [
        (room, path)
        for room in ROOMS
        for path in sorted((root / room).glob("**/*.[ch]pp"))
        if room != "host" or "diagnostics" not in path.parts
    ]
    found += [("orbel", path) for path in sorted((root / "include/orbel").glob("**/*.hpp"))]
    for path in sorted((root / "include/varn").glob("**/*.hpp")):
        if room := room_of_header(path.stem, root):
            found.append((room, path))
    return found


def reachable(edges: dict[str, set[str]], start: str) -> set[str]:
    """The rooms that a room includes, directly or not."""
    seen: set[str] = set()
    waiting = [start]
    while waiting:
        new = edges[waiting.pop()] - seen
        seen |= new
        waiting += new
    return seen


def rooms(source_dir: str) -> str | None:
    """The circles of rooms that are not expected."""
    root = Path(source_dir)
    edges: dict[str, set[str]] = {room: set() for room in ROOMS}
    for room, path in files_of_rooms(root):
        for included in re.findall(r'#include [<"]([^">]+)[">]', path.read_text()):
            other = room_of_include(included, root)
            if other is not None and other != room:
                edges[room].add(other)
    reach = {room: reachable(edges, room) for room in ROOMS}
    circles = {
        frozenset(other for other in ROOMS if other in reach[room] and room in reach[other])
        for room in ROOMS
        if room in reach[room]
    }
    if circles == EXPECTED_CIRCLES and not edges["orbel"]:
        return None
    return f"circles {[sorted(circle) for circle in circles]}, orbel includes {edges['orbel']}"


if __name__ == "__main__":
    checks: dict[str, Callable[..., str | None]] = {
        "umbrella": umbrella,
        "example": example,
        "output": output,
        "rooms": rooms,
    }
    sys.exit(checks[sys.argv[1]](*sys.argv[2:]))
