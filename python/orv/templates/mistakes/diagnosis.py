"""What is said of an exception that a template ended with: where, what, and the way that led there.

All of it is found out afterwards, from the traceback: a run without errors pays nothing.
"""

from __future__ import annotations

import os
import re
from typing import Any

from jinja2 import BaseLoader, TemplateNotFound, TemplateSyntaxError, UndefinedError
from jinja2.exceptions import TemplatesNotFound
from jinja2.utils import missing

from orv import positions
from orv._native import Places
from orv.errors import OrvError, TemplateError, did_you_mean
from orv.positions import Position, Step
from orv.templates.mistakes import undefined
from orv.templates.mistakes.origins import origins
from orv.templates.parser import TemplateMistakes, unknown_name
from orv.templates.mistakes.wording import in_plain_words, syntax_words

# The most steps of a chain that are shown at each of its ends.
_SHOWN = 6

_UNKNOWN = re.compile(r"No (filter|test) named '(.*?)'(?: found)?\.")


def template_error(
    error: Exception, loader: BaseLoader, places: Places | None, argument: int
) -> TemplateError:
    """The error as the person at the keyboard sees it.

    `argument` is the number of the printed value that failed, or -1.
    """
    if isinstance(error, TemplateSyntaxError):
        return TemplateError("\n".join(syntax_messages(error)))
    steps = positions.trail(error.__traceback__, max(argument, 0))
    text = _failed_extension(error)
    if text is not None:
        return TemplateError(
            "\n".join([f"{text}; called from {steps[-1].position}", *_chain(steps)])
        )
    if isinstance(error, RecursionError) and steps:
        return TemplateError(_endless(steps))
    value = undefined.undefined_of(error.__traceback__)
    owner = missing if value is None else value._undefined_obj
    values = origins(steps[-1], places, argument, owner) if steps and places is not None else []
    text = _described(error, loader, steps)
    if value is not None and undefined.is_missing_argument(value) and len(steps) > 1:
        used = steps.pop()
        name = "caller" if used.macro is None else used.macro.name
        text = f'the macro "{name}" needs the argument "{value._undefined_name}"'
        text += f", which it uses at {used.position}"
    if not steps:
        return TemplateError(text)
    lines = [f"{steps[-1].position}: {text}", *_chain(steps)]
    if values:
        lines.append(f"    with {', '.join(values)}")
    return TemplateError("\n".join(lines))


def syntax_messages(error: TemplateSyntaxError) -> list[str]:
    """The mistakes of a template, each with its line."""
    mistakes = error.mistakes if isinstance(error, TemplateMistakes) else [error]
    label = positions.template_label(error.name, error.filename)
    return [
        f"{Position(label, mistake.lineno)}: {syntax_words(str(mistake.message))}"
        for mistake in mistakes
    ]


def _chain(steps: list[Step]) -> list[str]:
    """The line with the way to the last step, innermost first; none when it is the outermost."""
    ways = [
        f"{inner.way} from {outer.position}"
        for outer, inner in zip(reversed(steps[:-1]), reversed(steps))
    ]
    if len(ways) > 2 * _SHOWN:
        left_out = len(ways) - 2 * _SHOWN
        ways[_SHOWN:-_SHOWN] = [f"... {left_out} more ..."]
    return [f"    {', '.join(ways)}"] if ways else []


def _endless(steps: list[Step]) -> str:
    """The message about a circle of calls, with each of its lines once."""
    seen: dict[Position, int] = {}
    for index, step in enumerate(steps):
        if step.position in seen:
            begin = seen[step.position]
            circle = " -> ".join(str(step.position) for step in steps[begin : index + 1])
            macros = any(step.macro is not None for step in steps[begin : index + 1])
            what = "macros call each other" if macros else "templates include each other"
            return f"{step.position}: {what} without end: {circle}"
        seen[step.position] = index
    return f"{steps[-1].position}: macros or templates call each other without end"


def _failed_extension(error: Exception) -> str | None:
    """What is said of an error that an extension did not mean for the user."""
    below = positions.below_templates(error.__traceback__)
    if isinstance(error, OrvError) or below is None:
        return None
    from orv.pythonfiles import place, words

    where = place(below)
    return None if where is None else f"{where}: {words(error)}"


def _described(error: Exception, loader: BaseLoader, steps: list[Step]) -> str:
    if isinstance(error, TemplateNotFound):
        return not_found(error, loader)
    if isinstance(error, UndefinedError):
        value = undefined.undefined_of(error.__traceback__)
        return str(error) if value is None else undefined.explain(value, steps)
    if isinstance(error, RecursionError):
        return "macros or templates call each other without end"
    if isinstance(error, MemoryError):
        return "the memory is exhausted"
    unknown = _UNKNOWN.fullmatch(str(error))
    if unknown and steps:
        environment: Any = steps[-1].template.environment
        return unknown_name(environment, unknown[1], unknown[2])
    if isinstance(error, OrvError):
        return str(error)
    return in_plain_words(error)


def not_found(error: TemplateNotFound, loader: BaseLoader) -> str:
    """The message about a template that no folder has."""
    names = error.templates if isinstance(error, TemplatesNotFound) else [error.name]
    if not names:
        return "expected the name of a template, or a list of names that is not empty"
    shown = " or ".join(f'"{name}"' for name in names)
    folders: list[str] = getattr(loader, "folders", [])
    where = ", ".join(f'"{folder}"' for folder in folders)
    text = f"there is no template {shown}" + (f" in {where}" if where else "")
    return text + did_you_mean(str(names[-1]), known_templates(str(names[-1]), loader))


def known_templates(name: str, loader: BaseLoader) -> list[str]:
    """The names of templates that `name` may have been meant for; none outside the folders."""
    if name.startswith(("../", "/")):
        return []
    folders: list[str] | None = getattr(loader, "folders", None)
    if folders is None:
        return loader.list_templates()
    below = os.path.dirname(name)
    known: list[str] = []
    for folder in folders:
        try:
            known += [
                os.path.join(below, entry) for entry in os.listdir(os.path.join(folder, below))
            ]
        except OSError:
            continue
    return sorted(set(known))
