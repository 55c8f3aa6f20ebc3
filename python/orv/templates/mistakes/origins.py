"""Where the values came from that a failing line of a template was working with."""

from __future__ import annotations

import ast
import re
from collections.abc import Iterator
from typing import Any, NamedTuple

from jinja2 import Undefined
from jinja2.runtime import LoopContext
from jinja2.utils import missing

from orv._native import Places
from orv.models.element import ENTRIES, Element
from orv.positions import Step

# The most values that a message names.
_MOST = 3

# What the compiled code of a loop puts around its list.
_OF_LOOPS = ("LoopContext", "environment.ordered")

# What it calls to look up an entry.
_LOOK_UPS = ("entry", "environment.getitem")

_LOCAL = re.compile(r"l_\d+_\w+")


class _Value(NamedTuple):
    """A value, and the container and key that it was found by, if any."""

    value: Any
    container: Any = None
    key: Any = None


class _Scope(NamedTuple):
    """The variables of the compiled code, and the loops that it is in, innermost last."""

    names: dict[str, Any]
    loops: list[ast.For]


def origins(step: Step, places: Places, argument: int, owner: object = missing) -> list[str]:
    """The values that the failing part of the step reads from the model: `v[1].t (m.json:7)`.

    The step's code is made again and the part found by the columns that Python keeps for each
    instruction. `argument` is the one that could not be printed, or -1. Only `owner` is named if it
    is given.
    """
    part = _failing_part(step)
    if part is None:
        return []
    if argument >= 0 and isinstance(part, ast.Call) and argument < len(part.args):
        part = part.args[argument]
    names: dict[str, None] = {}
    scope = _Scope(step.at.tb_frame.f_locals, _loops(step))
    for value in _values(part, scope):
        path = _path(value, places) if owner is missing or value.value == owner else None
        if path is not None:
            names[path] = None
    return list(names)[:_MOST]


def _failing_part(step: Step) -> ast.AST | None:
    positions = list(step.at.tb_frame.f_code.co_positions())
    first, last, begin, end = positions[step.at.tb_lasti // 2]
    if first is None or last is None or begin is None or end is None:
        return None
    lines = [line.encode() for line in _code(step).splitlines()[first - 1 : last]]
    lines[-1] = lines[-1][:end]
    lines[0] = lines[0][begin:]
    try:
        return ast.parse(b"(" + b"\n".join(lines) + b")", mode="eval").body
    except SyntaxError:
        return _list_of_loop(lines[0])


def _list_of_loop(line: bytes) -> ast.AST | None:
    try:
        loop = ast.parse(line + b" pass").body[0]
    except SyntaxError:
        return None
    return loop.iter if isinstance(loop, ast.For) else None


def _loops(step: Step) -> list[ast.For]:
    line = step.at.tb_lineno
    found = [
        node
        for node in ast.walk(ast.parse(_code(step)))
        if isinstance(node, ast.For) and node.lineno <= line <= (node.end_lineno or line)
    ]
    return sorted(found, key=lambda node: node.lineno)


def _code(step: Step) -> str:
    template = step.template
    environment: Any = template.environment
    source = environment.loader.get_source(environment, template.name)[0]
    return str(environment.compile(source, template.name, template.filename, raw=True))


def _values(node: ast.AST, scope: _Scope) -> Iterator[_Value]:
    """The longest ways to a value that an expression has, as far as they lead."""
    found = _value(node, scope)
    if found is not None:
        yield found
        return
    for child in ast.iter_child_nodes(node):
        yield from _values(child, scope)


def _value(node: ast.AST, scope: _Scope) -> _Value | None:
    if isinstance(node, ast.IfExp):
        return _value(node.orelse, scope)
    if isinstance(node, ast.Name) and _LOCAL.fullmatch(node.id):
        value = scope.names.get(node.id, missing)
        if value is missing or isinstance(value, Undefined):
            return None
        return _element(node.id, value, scope) or _Value(value)
    parts = _parts(node)
    if parts is not None:
        owner = _value(parts[0], scope)
        return None if owner is None else _entry(owner, parts[1], scope)
    return None


def _parts(node: ast.AST) -> list[ast.expr] | None:
    """Owner and key of an expression that looks up an entry."""
    if isinstance(node, ast.Call) and ast.unparse(node.func) in _LOOK_UPS:
        return node.args
    return None


def _element(name: str, value: Any, scope: _Scope) -> _Value | None:
    """A loop's variable as the element of a list or as the entry of a dictionary, if it is one."""
    for loop in reversed(scope.loops):
        targets = [node.id for node in ast.walk(loop.target) if isinstance(node, ast.Name)]
        if name not in targets:
            continue
        source = loop.iter
        while isinstance(source, ast.Call) and ast.unparse(source.func) in _OF_LOOPS:
            source = source.args[0]
        items = [parts[0] for parts in map(_parts, ast.walk(source))
                 if parts and ast.unparse(parts[1]) == "'items'"]  # fmt: skip
        owner = _value(items[0] if items else source, scope)
        container = None if owner is None else owner.value
        if isinstance(container, list):
            position = _position(value, container, scope.names.get(targets[-1]))
            return None if position is None else _Value(value, container, position)
        key = scope.names.get(targets[0])
        if items and isinstance(container, dict) and container.get(key, missing) is value:
            return _Value(value, container, key)
        return None
    return None


def _position(value: Any, container: list[Any], loop: Any) -> int | None:
    """Where the value is in the list, unless it is there twice and the loop keeps no count."""
    positions = [position for position, entry in enumerate(container) if entry is value]
    if isinstance(loop, LoopContext) and loop.index0 in positions:
        return loop.index0
    return positions[0] if len(positions) == 1 else None


def _entry(owner: _Value, node: ast.AST, scope: _Scope) -> _Value | None:
    key = node.value if isinstance(node, ast.Constant) else None
    if key is None:
        found = _value(node, scope)
        key = None if found is None else found.value
    container = owner.value
    if isinstance(container, dict) and key in container:
        if isinstance(owner.container, Element):
            return _Value(container[key], owner.container, key)
        return _Value(container[key], container, key)
    if isinstance(container, list) and isinstance(key, int) and 0 <= key < len(container):
        return _Value(container[key], container, key)
    if isinstance(container, Element) and key in ENTRIES:
        return _Value(getattr(container, key), container)
    return owner


def _path(value: _Value, places: Places) -> str | None:
    if isinstance(value.value, (dict, list, Element)) and places.path_of(value.value):
        path, place = places.path_of(value.value), places.place_of(value.value)
    elif value.container is not None:
        path = places.path_of(value.container, value.key)
        place = places.place_of(value.container, value.key)
    else:
        return None
    return f"{path} ({place})" if path and place else None
