"""Models as text, for authors who want to see what their templates see."""

from __future__ import annotations

import json
import sys
from collections.abc import Iterator
from typing import Any

from orv.models.element import Element
from orv.models.model import Model

# Enough for models of the greatest depth, whose XML elements become dictionaries of lists.
_RECURSION = 10_000


def as_json(model: Model) -> str:
    """The whole model. An XML element is an object with its tag, attributes and content."""
    sys.setrecursionlimit(max(sys.getrecursionlimit(), _RECURSION))
    return json.dumps(model.values, indent=2, ensure_ascii=False, default=_plain) + "\n"


def with_places(model: Model) -> Iterator[str]:
    """One line for each value: where it was written, the way to it, and the value."""
    waiting: list[tuple[str, str, Any]] = [("", "", model.values)]
    while waiting:
        place, path, value = waiting.pop()
        entries = list(_entries(model, path, value))
        if entries:
            waiting += reversed(entries)
        elif path:
            text = json.dumps(value, ensure_ascii=False, default=_plain)
            yield f"{place}: {path} = {text}" if place else f"{path} = {text}"


def _entries(model: Model, path: str, value: Any) -> Iterator[tuple[str, str, Any]]:
    if isinstance(value, dict):
        for key, entry in value.items():
            yield model.places.place_of(value, key) or "", _extended(path, key), entry
    elif isinstance(value, list):
        for position, entry in enumerate(value):
            yield model.places.place_of(value, position) or "", f"{path}[{position}]", entry
    elif isinstance(value, Element):
        yield from _parts(model, path, value)


def _parts(model: Model, path: str, element: Element) -> Iterator[tuple[str, str, Any]]:
    place = model.places.place_of(element) or ""
    for name, text in element.attributes.items():
        yield place, _extended(f"{path}.attributes", name), text
    for position, part in enumerate(element.content):
        if isinstance(part, Element):
            yield model.places.place_of(part) or "", f"{path}.content[{position}]", part
        elif not part.isspace():
            yield place, f"{path}.content[{position}]", part


def _extended(path: str, key: str) -> str:
    if not key.isidentifier():
        return f"{path}[{key!r}]"
    return f"{path}.{key}" if path else key


def _plain(value: object) -> object:
    if isinstance(value, Element):
        parts = {"tag": value.tag, "attributes": value.attributes, "content": value.content}
        return {name: part for name, part in parts.items() if part}
    return str(value)
