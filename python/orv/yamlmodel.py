"""The YAML of models: plain data only, every name once."""

from __future__ import annotations

from collections.abc import Hashable
from typing import Any

import yaml

_Base: Any = getattr(yaml, "CSafeLoader", yaml.SafeLoader)


class ModelLoader(_Base):  # type: ignore[misc]
    """yaml.safe_load, but a name that stands twice in one mapping is an error."""

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
