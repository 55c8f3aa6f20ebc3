"""One table of many rows: orv, plain Jinja2 and Mako, whole processes that write the same bytes."""

from __future__ import annotations

import json
import sys
from pathlib import Path
from random import Random

from processes import GENERATE, Usage, alternate

HERE = Path(__file__).parent
PEERS = ("jinja2", "jinja2_stream", "mako")
# One section a row; one section and one function a row, in two files.
SCATTERED = ("rows_in_sections", "rows_in_two_files")


def write_model(path: Path, count: int) -> None:
    """Write a JSON model of `count` rows of mixed lengths, the same each time."""
    random = Random(count)
    words = ["LATIN", "CAPITAL", "SMALL", "LETTER", "WITH", "ABOVE", "SIGN", "DIGIT", "A", "OE"]
    rows = [
        {
            "code": code,
            "name": " ".join(random.choices(words, k=random.randint(2, 6))),
            "category": random.choice(("CAT_LU", "CAT_LL", "CAT_SM", "CAT_ND")),
            "upper": random.randint(0, 0x10FFFF),
            "lower": random.randint(0, 0x10FFFF),
        }
        for code in range(count)
    ]
    path.write_text(json.dumps({"rows": rows}))


def measure(folder: Path, count: int, rounds: int) -> dict[str, Usage]:
    """The usage of each contender for a table of `count` rows; "orv" and "orv_NAME" are ours.

    Raises RuntimeError when the contenders wrote different bytes.
    """
    model = folder / "table.json"
    write_model(model, count)
    commands: dict[str, list[str]] = {}
    for name in ("table", *SCATTERED):
        out = ["--model", str(model), "--out", str(folder / name), "--no-state"]
        commands[name] = [*GENERATE, str(HERE / f"{name}.j2"), *out]
    for peer in PEERS:
        out = [str(model), str(folder / f"{peer}.c")]
        commands[peer] = [sys.executable, str(HERE / "table_peers.py"), peer, *out]
    usages = dict(zip(commands, alternate(list(commands.values()), rounds), strict=True))
    expected = (folder / "table" / "table.c").read_bytes()
    for peer in PEERS:
        if (folder / f"{peer}.c").read_bytes() != expected:
            raise RuntimeError(f"orv and {peer} wrote different tables")
    return usages
