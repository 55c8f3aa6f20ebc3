"""The YAML of models: plain data only, every name once."""

from __future__ import annotations

from collections.abc import Hashable, Iterator
from typing import Any

import yaml

from orv.errors import ModelError

_Base: Any = getattr(yaml, "CSafeLoader", yaml.SafeLoader)

# The depth beyond which a document is refused, the same as in XML.
_DEEPEST = 499


def load(data: bytes) -> object:
    """What a document holds. Raises yaml.YAMLError and ModelError."""
    _refuse_depth(data)
    return yaml.load(data, ModelLoader)


def _refuse_depth(data: bytes) -> None:
    """The parser's events come one by one, but making nodes of them takes stack for each level."""
    depth = 0
    for event in yaml.parse(data, ModelLoader):  # type: ignore[no-untyped-call]
        if isinstance(event, yaml.CollectionStartEvent):
            depth += 1
        elif isinstance(event, yaml.CollectionEndEvent):
            depth -= 1
        if depth > _DEEPEST:
            line = event.start_mark.line + 1
            raise ModelError(f"line {line}: the model is nested more than {_DEEPEST} deep")


class ModelLoader(_Base):  # type: ignore[misc]
    """As yaml.safe_load, but a name that stands twice in one mapping is an error, and a set becomes
    a sorted list.
    """

    def construct_mapping(self, node: yaml.MappingNode, deep: bool = False) -> dict[Hashable, Any]:
        """The mapping of a node."""
        seen: set[Hashable] = set()
        for key_node, _ in node.value:
            if not isinstance(key_node, yaml.ScalarNode) or key_node.tag.endswith(":merge"):
                continue
            key = key_node.tag, key_node.value
            if key in seen:
                raise yaml.constructor.ConstructorError(
                    None, None, f'the name "{key_node.value}" is given twice', key_node.start_mark
                )
            seen.add(key)
        mapping: dict[Hashable, Any] = super().construct_mapping(node, deep)
        return mapping

    def construct_sorted_set(self, node: yaml.MappingNode) -> Iterator[list[Hashable]]:
        """The members of a set, in two steps as for any collection that may hold itself."""
        members: list[Hashable] = []
        yield members
        members.extend(sorted(self.construct_mapping(node), key=str))


ModelLoader.add_constructor("tag:yaml.org,2002:set", ModelLoader.construct_sorted_set)
