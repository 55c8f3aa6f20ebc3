"""The command `orv list-outputs`."""

from __future__ import annotations

import json
from typing import Any

from orv.command.generate import render_run
from orv.command.runs import requested_runs
from orv.output.folder import open_folder
from orv.output.plan import plan, shown_paths


def run(given: dict[str, Any]) -> int:
    """Print the path of every file that the runs write, sorted, whether or not it differs."""
    as_json = given.pop("json", False)
    paths: set[str] = set()
    for options in requested_runs(given):
        rendered, _ = render_run(options)
        folder = open_folder(options.out)
        paths.update(shown_paths(plan(rendered, folder)))
    if as_json:
        print(json.dumps(sorted(paths), indent=2))
    else:
        for path in sorted(paths):
            print(path)
    return 0
