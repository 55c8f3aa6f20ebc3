"""The names that templates and Python files mention: what the entries of a model may be read by."""

from __future__ import annotations

import ast
from collections.abc import Iterator
from typing import Any

from jinja2 import nodes


def names_in_template(environment: Any, path: str) -> Iterator[str]:
    """The variables, entries and texts that a template mentions, but those that it sets."""
    with open(path, encoding="utf-8-sig") as file:
        tree = environment.parse(file.read())
    for node in tree.find_all((nodes.Name, nodes.Getattr, nodes.Const)):
        if isinstance(node, nodes.Name) and node.ctx == "load":
            yield node.name
        elif isinstance(node, nodes.Getattr):
            yield node.attr
        elif isinstance(node, nodes.Const) and isinstance(node.value, str):
            yield node.value


def names_in_python(path: str) -> Iterator[str]:
    """The names and texts that a Python file mentions; none when it is not Python."""
    with open(path, "rb") as file:
        try:
            tree = ast.parse(file.read(), path)
        except (SyntaxError, ValueError):
            return
    for node in ast.walk(tree):
        if isinstance(node, ast.Name):
            yield node.id
        elif isinstance(node, ast.Attribute):
            yield node.attr
        elif isinstance(node, (ast.arg, ast.keyword)):
            yield node.arg or ""
        elif isinstance(node, ast.Constant) and isinstance(node.value, str):
            yield node.value
