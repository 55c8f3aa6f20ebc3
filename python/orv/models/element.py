"""XML models: a tree of elements that templates walk by name.

An element has `tag`, `attributes` (by name), `children` (its elements in order), `content` (texts
and elements in order, as written), `text` (all text in it, inner elements included) and `line`. An
element `e` also gives `e.first("tag")`, its first child of a tag, or None, and `e.all("tag")`, the
list of them.

Names keep their prefixes as written. Comments and processing instructions are left out. A document
is kept as it was parsed: its elements become objects when they are looked at, each time anew, and
are equal when they are the same element.
"""

from __future__ import annotations

from orv._native import Element

# What a template finds on an element.
ENTRIES = frozenset(["tag", "attributes", "children", "content", "text", "line", "first", "all"])

__all__ = ["ENTRIES", "Element"]
