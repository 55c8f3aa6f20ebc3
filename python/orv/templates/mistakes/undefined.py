"""What is said of a name that is not there: what it would be part of, and the closest name."""

from __future__ import annotations

import re
from types import FrameType, TracebackType
from typing import Any

from jinja2 import Undefined, nodes
from jinja2.environment import TemplateModule
from jinja2.runtime import LoopContext, TemplateReference
from jinja2.utils import Namespace, missing

from orv import _native
from orv.errors import did_you_mean, value_words
from orv.files.table import ATTRIBUTES, FileView
from orv.models.element import ENTRIES, Element
from orv.positions import Step
from orv.templates.collector import Collector
from orv.templates.mistakes.wording import type_words

# The most known names that are listed when none is close.
_LISTED = 8

_NOT_PROVIDED = re.compile(r"parameter '\w+' was not provided")
_NOT_EXPORTED = re.compile(
    r"the template '(.*)' \(imported on (?:line (\d+)|.*)\) does not export.*"
)
_EMPTY = re.compile(r"No (first|last) item, sequence was empty\.")
_LOCAL = re.compile(r"l_\d+_(\w+)")


def undefined_of(traceback: TracebackType | None) -> Undefined | None:
    """The undefined value whose use raised the exception."""
    found: Any = None
    while traceback is not None:
        found = traceback.tb_frame.f_locals.get("self", found)
        traceback = traceback.tb_next
    return found if isinstance(found, Undefined) else None


def is_missing_argument(value: Undefined) -> bool:
    """Whether the value is an argument that a call of a macro left out."""
    return _NOT_PROVIDED.fullmatch(value._undefined_hint or "") is not None


def explain(value: Undefined, steps: list[Step]) -> str:
    """The message about the use of an undefined value in the last step."""
    name, owner = value._undefined_name, value._undefined_obj
    exported = _NOT_EXPORTED.fullmatch(value._undefined_hint or "")
    if exported:
        template = steps[-1].template
        known = _macros(template.environment, exported[1])
        hint = did_you_mean(str(name), known)
        return f'the template "{exported[1]}" has no "{name}" to import{hint}'
    empty = _EMPTY.fullmatch(value._undefined_hint or "")
    if empty:
        return f"an empty list has no {empty[1]} value"
    if value._undefined_hint:
        return str(value._undefined_hint)
    if owner is missing:
        return f"'{name}' is undefined" + did_you_mean(str(name), sorted(_names(steps)))
    named: object = name
    if isinstance(named, Undefined):
        return explain(named, steps)
    return _no_entry(named, owner)


def _no_entry(name: object, owner: object) -> str:
    if isinstance(owner, (list, tuple)) and isinstance(name, int):
        return f"there is no entry {name} in a list of {len(owner)}"
    if not isinstance(name, (str, int, float)):
        where = type_words(type(owner).__name__)
        return f"there is no entry for {value_words(name)} in {where}"
    shown = f'"{name}"'
    known = [entry for entry in _entries(owner) if isinstance(entry, str)]
    if isinstance(owner, dict):
        hint = did_you_mean(str(name), known)
        if not hint and 0 < len(known) <= _LISTED:
            hint = f"; there is {', '.join(known)}"
        return f"there is no entry {shown}{hint}"
    if isinstance(owner, TemplateModule):
        what = f'the template "{owner.__name__}"'
        return f"{what} has no macro {shown}{did_you_mean(str(name), known)}"
    what = "block " if isinstance(owner, TemplateReference) else ""
    hint = did_you_mean(str(name), known)
    return f"{type_words(type(owner).__name__)} has no {what}{shown}{hint}"


def _entries(owner: object) -> list[Any]:
    if isinstance(owner, dict):
        return list(owner)
    if isinstance(owner, Element):
        return sorted(ENTRIES)
    if isinstance(owner, FileView):
        return [*ATTRIBUTES, *_native.SECTION_NAMES, "functions", "sections"]
    if isinstance(owner, TemplateModule):
        return [name for name in vars(owner) if not name.startswith("_")]
    if isinstance(owner, Namespace):
        return list(owner._Namespace__attrs)
    if isinstance(owner, TemplateReference):
        return list(owner._TemplateReference__context.blocks)  # type: ignore[attr-defined]
    if isinstance(owner, (str, list, tuple, LoopContext, Collector)):
        return [name for name in dir(owner) if not name.startswith("_")]
    return []


def _names(steps: list[Step]) -> set[str]:
    """The variables that the last step sees; those of its context are those of the run."""
    names: set[str] = set()
    for step in reversed(steps):
        frame: FrameType = step.at.tb_frame
        for local, value in frame.f_locals.items() if step is steps[-1] else ():
            found = _LOCAL.fullmatch(local)
            if found and value is not missing and not isinstance(value, Undefined):
                names.add(found[1])
        if "context" in frame.f_locals:
            context = frame.f_locals["context"]
            return names | set(context.get_all())
    return names


def _macros(environment: Any, template: str) -> list[str]:
    source = environment.loader.get_source(environment, template)[0]
    return [macro.name for macro in environment.parse(source).find_all(nodes.Macro)]
