"""JSON Schema for models: every violation is reported at the line of the model."""

from __future__ import annotations

import re
from typing import TYPE_CHECKING, Any, NoReturn

import jsonschema

from orv.errors import ModelError

if TYPE_CHECKING:
    from orv.models.model import Model

# How many violations are reported, and how long the text of each may be.
_MOST_SHOWN = 100
_LONGEST = 300


def check_model(model: Model, schema: Any, path: str) -> None:
    """Raise ModelError with all that the schema of the file `path` has against the model.

    The draft is the one that `$schema` names, or 2020-12. References to other documents are
    refused.
    """
    kind = jsonschema.validators.validator_for(schema, jsonschema.Draft202012Validator)
    try:
        kind.check_schema(schema)
        validator = kind(schema, resolver=_LocalResolver.from_schema(schema))
        found = [_located(model, error) for error in validator.iter_errors(model.values)]
    except jsonschema.SchemaError as error:
        raise ModelError(f"{path}: {_shortened(error.message)}") from error
    except jsonschema.RefResolutionError as error:
        raise ModelError(f"{path}: {error}") from error
    except RecursionError as error:
        raise ModelError(f"{path}: the schema refers to itself without end") from error
    if not found:
        return
    found.sort()
    lines = [text for _, text in found[:_MOST_SHOWN]]
    if len(found) > _MOST_SHOWN:
        lines.append(f"{path}: {len(found) - _MOST_SHOWN} more violations")
    raise ModelError("\n".join(lines))


class _LocalResolver(jsonschema.RefResolver):
    def resolve_remote(self, uri: str) -> NoReturn:
        raise ValueError(f'the reference to "{uri}" leads out of the schema')


def _located(model: Model, error: jsonschema.ValidationError) -> tuple[tuple[str, int], str]:
    """A violation with a key to sort by: the file and the line."""
    container: Any = model.values
    steps = [*error.absolute_path, *_unknown_names(error)[:1]]
    for step in steps[:-1]:
        container = container[step]
    key = steps[-1] if steps else None
    value = container[key] if steps else container
    holds = isinstance(value, (dict, list))
    place = (model.places.place_of(value) if holds else None) or model.places.place_of(
        container, key
    )
    path = model.places.path_of(container, key)
    parts = [part for part in (place, path, _shortened(error.message)) if part]
    file, _, line = (place or "").rpartition(":")
    return (file, int(line) if line.isdecimal() else 0), ": ".join(parts)


def _unknown_names(error: jsonschema.ValidationError) -> list[str]:
    """The names that an object may not have, if that is the violation."""
    if str(error.validator) != "additionalProperties":
        return []
    known, patterns = (error.schema.get(key, {}) for key in ("properties", "patternProperties"))
    return [
        name
        for name in error.instance
        if name not in known and not any(re.search(pattern, name) for pattern in patterns)
    ]


def _shortened(text: str) -> str:
    half = _LONGEST // 2
    return text if len(text) <= _LONGEST else f"{text[:half]} ... {text[-half:]}"
