"""What it costs to keep an output folder: a second run, in which nothing changes."""

from __future__ import annotations

import json
import time
from pathlib import Path

import packaging
from processes import GENERATE, Usage, alternate

# Eight in every other file: each function has one, or a comment in its place.
_END = "\n}\n\n{% endfunction %}"
_INSIDE = {
    "regions": "  {% user structure.name %}\n  rest();\n  {% enduser %}\n",
    "comments": "  /* the beginning {{ structure.name }} */\n  rest();\n  /* the end */\n",
}


def measure(folder: Path, count: int, rounds: int) -> dict[str, Usage]:
    """The second of two runs of `count` files: with and without a state, with user regions, and
    skipped as nothing has changed."""
    model = folder / f"again-{count}.json"
    model.write_text(json.dumps(packaging.modules(count // 2, 12)))
    commands: dict[str, list[str]] = {}
    for name, inside in _INSIDE.items():
        template = folder / f"{name}.j2"
        template.write_text(packaging.TEMPLATE.replace(_END, "\n" + inside + _END[1:]))
        out = str(folder / f"{name}-{count}")
        commands[name] = [*GENERATE, str(template), "--model", str(model), "--out", out]
    # The state and the depfile of a run with a name, and neither.
    report = ("--depfile", str(folder / "d"), "--depfile-target", "all")
    commands["state"] = [*commands["comments"], "--run", "again", *report]
    commands["regions"] += ["--run", "again"]
    commands["none"] = [*commands["comments"], "--no-state"]
    commands["comments"] += ["--run", "again"]
    commands["skipped"] = [word for word in commands["state"] if word != "--always"]
    alternate(list(commands.values()), 1)
    # What has just changed is looked at twice.
    time.sleep(2)
    alternate([commands["skipped"]], 2)
    return dict(zip(commands, alternate(list(commands.values()), rounds), strict=True))
