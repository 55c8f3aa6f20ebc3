"""The command `orv model`."""

from __future__ import annotations

import sys
from typing import Any

from orv.command.console import warning
from orv.command.options import PrintModelOptions
from orv.errors import Messages
from orv.extensions import load_extensions
from orv.models.listing import as_json, with_places
from orv.models.model import build_model


def run(given: dict[str, Any]) -> int:
    """The command `orv model`, with the options that were given."""
    options = PrintModelOptions(**given)

    def warn(text: str) -> None:
        if not options.quiet:
            print(warning(text), file=sys.stderr)

    messages = Messages(warn, options.strict)
    extensions = load_extensions(options.extend)
    model = build_model(options.model, options.set, messages.warn, options.schema)
    model = model._replace(values=extensions.prepare(model.values))
    if options.places:
        sys.stdout.writelines(f"{line}\n" for line in with_places(model))
    else:
        sys.stdout.write(as_json(model))
    return 0
