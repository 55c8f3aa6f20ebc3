"""The cost of packaging: the same templates rendered through orv and by Jinja2 alone."""

from __future__ import annotations

import re
import time
from pathlib import Path
from statistics import median
from typing import Any, NamedTuple

from jinja2 import DictLoader, Environment, StrictUndefined
from jinja2.sandbox import ImmutableSandboxedEnvironment

from orv.templates.engine import Source, render
from orv.errors import Messages

TEMPLATE = Path(__file__).with_name("modules.j2").read_text()

# A packaging tag; a comment in its place treats the white space around it alike.
_TAG = re.compile(r"\{%(-?) *(?:end)?(?:file|section|function)\b[^%]*%\}")


class Times(NamedTuple):
    """Seconds of processor time for the same text."""

    orv: float
    jinja2: float
    jinja2_quick: float


class QuickEnvironment(ImmutableSandboxedEnvironment):
    """Jinja2's sandbox with the engine's shortcut to the entries of a model, and nothing else."""

    def getattr(self, obj: Any, attribute: str) -> Any:
        """`obj.attribute`, as the engine looks it up."""
        if type(obj) is dict and attribute in obj:
            return obj[attribute]
        return super().getattr(obj, attribute)


def modules(count: int, fields: int) -> dict[str, object]:
    """A model of `count` modules, each with eight structures of so many fields."""
    members = [
        {"type": "double", "name": f"field_{i}", "initial": f"{i}.0", "description": f"Field {i}."}
        for i in range(fields)
    ]
    structures = [
        {"name": f"part_{i}", "description": f"Part {i} of the module.", "fields": members}
        for i in range(8)
    ]
    return {
        "modules": [
            {"name": f"module_{i}", "description": "One of many.", "structures": structures}
            for i in range(count)
        ]
    }


def through_orv(model: dict[str, object]) -> int:
    """Render and compose all files in memory; returns the number of bytes in their sections."""
    run = render([Source("modules.j2", DictLoader({"modules.j2": TEMPLATE}))], model, Messages())
    files = [run.repository.compose(index) for index in range(len(run.repository))]
    return sum(size for file in files for size in file.sections.values())


def by_jinja2(model: dict[str, object], environment_class: type[Environment] = Environment) -> int:
    """Render the same text to one string of bytes; returns its length."""
    environment = environment_class(
        undefined=StrictUndefined, keep_trailing_newline=True, trim_blocks=True, lstrip_blocks=True
    )
    text = environment.from_string(_TAG.sub(r"{#\1 #}", TEMPLATE)).render(model)
    return len(text.encode())


def measure(model: dict[str, object], rounds: int) -> Times:
    """The medians of alternating rounds. Raises RuntimeError when the texts differ in length."""
    if not through_orv(model) == by_jinja2(model) == by_jinja2(model, QuickEnvironment):
        raise RuntimeError("the same templates gave different texts")
    times: list[Times] = []
    for _ in range(rounds):
        stops = [time.process_time()]
        through_orv(model)
        stops.append(time.process_time())
        by_jinja2(model)
        stops.append(time.process_time())
        by_jinja2(model, QuickEnvironment)
        stops.append(time.process_time())
        times.append(Times(*(b - a for a, b in zip(stops, stops[1:], strict=False))))
    return Times._make(map(median, zip(*times, strict=True)))
