"""The command `orv lint`."""

from __future__ import annotations

import sys
from typing import Any

from orv.command.options import LintOptions
from orv.delimiters import DELIMITERS
from orv.errors import Misuse
from orv.extensions import load_extensions
from orv.templates.engine import lint, source_beside
from orv.templates.library import Language


def run(given: dict[str, Any]) -> int:
    """The command `orv lint`, with the options that were given."""
    options = LintOptions(**given)
    if not options.template:
        raise Misuse("expected a TEMPLATE")
    language = Language(load_extensions(options.extend), options.delimiters or DELIMITERS)
    sources = [
        source_beside(path, options.templates, [], options.follow_links)
        for path in options.template
    ]
    messages = lint(sources, language)
    for message in messages:
        print(message, file=sys.stderr)
    return int(bool(messages))
