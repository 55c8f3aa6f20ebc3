"""How deeply templates may be nested: all of it can be compiled."""

from __future__ import annotations

import math
from collections.abc import Iterator

from jinja2 import nodes

from orv.templates.sandbox.sizes import MOST_BITS

# Python takes 200 brackets within each other, and no more than 20 loops.
# The most expressions within each other, and tags.
_DEEPEST_EXPRESSION = 90
_DEEPEST_TAG = 60
# The most branches of one condition.
_MOST_BRANCHES = 400

TOO_DEEP = (
    "the template is nested too deeply; put inner tags into a macro or a template of their own, and"
    " parts of a long expression into variables"
)
TOO_LARGE = "the number is too large"


def too_deep(tree: nodes.Template) -> Iterator[tuple[str, int]]:
    """What cannot be compiled, each by message and line; only the outermost of what is nested."""
    waiting: list[tuple[nodes.Node, int, int]] = [(tree, 0, 0)]
    while waiting:
        node, tags, expressions = waiting.pop()
        if isinstance(node, nodes.Expr):
            expressions += 1
        else:
            tags, expressions = tags + 1, 0
        if isinstance(node, nodes.If) and len(node.elif_) > _MOST_BRANCHES:
            yield f"a condition has up to {_MOST_BRANCHES} branches", node.lineno
        if isinstance(node, nodes.Const) and _is_too_large(node.value):
            yield TOO_LARGE, node.lineno
        if tags > _DEEPEST_TAG or expressions > _DEEPEST_EXPRESSION:
            yield TOO_DEEP, node.lineno
        else:
            waiting.extend((child, tags, expressions) for child in node.iter_child_nodes())


def _is_too_large(value: object) -> bool:
    if isinstance(value, int):
        return value.bit_length() > MOST_BITS
    return isinstance(value, float) and math.isinf(value)
