"""Models: the data that templates walk, from files and from the command line."""

from __future__ import annotations

import json
import math
import os
import re
import tomllib
from collections.abc import Callable, Iterable
from typing import Any, NamedTuple, NoReturn

from orv.errors import ModelError

_NAMED = re.compile(r"([A-Za-z_]\w*)=(.+)", re.DOTALL)
_WHOLE_NUMBER = re.compile(r"-?(0|[1-9][0-9]{0,17})")


class ModelSource(NamedTuple):
    """A model file, and the variable that holds it; None when its own entries are variables."""

    name: str | None
    path: str

    @classmethod
    def parse(cls, argument: str) -> ModelSource:
        """From FILE or NAME=FILE."""
        named = _NAMED.fullmatch(argument)
        return cls(named[1], named[2]) if named else cls(None, argument)


class Setting(NamedTuple):
    """One value for one name of the model, given as the names of the way to it."""

    names: tuple[str, ...]
    value: object

    @classmethod
    def parse(cls, argument: str) -> Setting:
        """From KEY=VALUE, where KEY may be dotted.

        VALUE is text as it stands, unless it is a whole number, true, false or null, or begins like
        a text in quotes, a list or an object of JSON. Raises ValueError when there is no key, and
        ModelError when such JSON is wrong.
        """
        key, separator, text = argument.partition("=")
        names = tuple(key.split("."))
        if not separator or not all(name.isidentifier() for name in names):
            raise ValueError(f"expected KEY=VALUE with a name for KEY, not {argument!r}")
        try:
            return cls(names, _set_value(text))
        except ModelError as error:
            hint = "put a text that begins like JSON in double quotes"
            raise ModelError(f"{key}: {error}; {hint}") from error


def build_model(
    sources: Iterable[ModelSource], settings: Iterable[Setting]
) -> dict[str, object]:
    """Merge models and settings by name, in order.

    Where two models have an object under the same name, the objects are merged; anything else of a
    later model takes the place of the earlier. Raises ModelError, whose text begins with the file.
    """
    model: dict[str, object] = {}
    for source in sources:
        value = load_model(source.path)
        if source.name is not None:
            value = {source.name: value}
        if not isinstance(value, dict):
            raise ModelError(
                f"{source.path}: the model is {_described(value)}, not an object with names;"
                f" give it a name: --model NAME={source.path}"
            )
        _merge(model, value)
    for setting in settings:
        nested: object = setting.value
        for name in reversed(setting.names):
            nested = {name: nested}
        assert isinstance(nested, dict)
        _merge(model, nested)
    return model


def load_model(path: str) -> object:
    """What a model file holds, by the ending of its name. An XML model is its root by its tag."""
    parse = _PARSERS.get(os.path.splitext(path)[1].lower())
    if parse is None:
        raise ModelError(f"{path}: a model's name ends in {', '.join(_PARSERS)}")
    try:
        with open(path, "rb") as file:
            data = file.read()
    except OSError as error:
        raise ModelError(f"{path}: {error.strerror}") from error
    try:
        return _parsed(parse, data)
    except ModelError as error:
        raise ModelError(f"{path}: {error}") from error


def _parsed(parse: Callable[[bytes], object], data: bytes) -> object:
    try:
        root = parse(data)
    except RecursionError as error:
        raise ModelError("the model is nested too deeply") from error
    except ValueError as error:
        raise ModelError(str(error)) from error
    _refuse_unusable(root)
    return root


def _parse_json(data: bytes) -> object:
    def refuse(constant: str) -> NoReturn:
        raise ModelError(f"{constant} is no JSON value")

    text = data.decode("utf-8-sig")
    try:
        return json.loads(text, object_pairs_hook=_unique, parse_constant=refuse)
    except json.JSONDecodeError as error:
        raise ModelError(f"line {error.lineno}: {error.msg}") from error


def _unique(pairs: list[tuple[str, object]]) -> dict[str, object]:
    entries = dict(pairs)
    if len(entries) < len(pairs):
        names = [name for name, _ in pairs]
        repeated = next(name for name in names if names.count(name) > 1)
        raise ModelError(f'the name "{repeated}" is given twice in one object')
    return entries


def _parse_toml(data: bytes) -> object:
    return tomllib.loads(data.decode("utf-8-sig"))


def _parse_yaml(data: bytes) -> object:
    import yaml

    from orv.models.yamlmodel import load

    try:
        return load(data)
    except yaml.MarkedYAMLError as error:
        line = f"line {error.problem_mark.line + 1}: " if error.problem_mark else ""
        raise ModelError(f"{line}{error.problem}") from error
    except yaml.YAMLError as error:
        raise ModelError(" ".join(str(error).split())) from error


def _parse_xml(data: bytes) -> object:
    from orv.models.xmlmodel import parse_xml

    root = parse_xml(data)
    return {root.tag: root}


_PARSERS: dict[str, Callable[[bytes], object]] = {
    ".json": _parse_json,
    ".yaml": _parse_yaml,
    ".yml": _parse_yaml,
    ".toml": _parse_toml,
    ".xml": _parse_xml,
}


def _refuse_unusable(root: object) -> None:
    """Refuse what templates cannot print the same everywhere, wherever it stands in the model."""
    waiting: list[Any] = [[root]]
    seen: set[int] = set()
    while waiting:
        container = waiting.pop()
        if id(container) in seen:
            continue
        seen.add(id(container))
        values = container
        if isinstance(container, dict):
            values = container.values()
            for key in container:
                _refuse_scalar(key)
        for value in values:
            if isinstance(value, (dict, list, tuple)):
                waiting.append(value)
            else:
                _refuse_scalar(value)


def _refuse_scalar(value: object) -> None:
    if isinstance(value, str):
        if "\0" in value:
            raise ModelError("the model holds a NUL character, which no file of text can hold")
    elif isinstance(value, bytes):
        raise ModelError("the model holds binary data, which templates cannot print")
    elif isinstance(value, float) and not math.isfinite(value):
        raise ModelError(f"the model holds {value}, which is no finite number")


def _merge(into: dict[str, Any], other: dict[str, Any]) -> None:
    for name, value in other.items():
        current = into.get(name)
        if isinstance(current, dict) and isinstance(value, dict):
            merged = dict(current)
            _merge(merged, value)
            into[name] = merged
        else:
            into[name] = value


def _set_value(text: str) -> object:
    if text in ("true", "false", "null") or text[:1] in ('"', "[", "{"):
        return _parsed(_parse_json, text.encode())
    return int(text) if _WHOLE_NUMBER.fullmatch(text) else text


def _described(value: object) -> str:
    return "a list" if isinstance(value, list) else "empty" if value is None else "a single value"
