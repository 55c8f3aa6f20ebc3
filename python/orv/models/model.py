"""The model of a run: what its sources and settings make together."""

from __future__ import annotations

import re
from collections.abc import Callable, Iterable, Sequence
from typing import Any, NamedTuple

from orv._native import Places, read_model
from orv.errors import ModelError, did_you_mean, ignore
from orv.models.sources import ModelSource, Reader

_WHOLE_NUMBER = re.compile(r"-?(0|[1-9][0-9]{0,17})")

# The most names in the key of a setting: as deep as a model may be.
_DEEPEST = 499


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
            raise ValueError(f"expected KEY=VALUE with a name for KEY, not {_shortened(argument)}")
        if len(names) > _DEEPEST:
            raise ValueError(f"expected at most {_DEEPEST} names in KEY, got {len(names)}")
        try:
            return cls(names, _set_value(text))
        except ModelError as error:
            hint = "put a text that begins like JSON in double quotes"
            raise ModelError(f"{key}: {error}; {hint}") from error


class Model(NamedTuple):
    """A model, where its values were written, and what was read for it.

    `written` is the model without the settings.
    """

    values: dict[str, Any]
    written: dict[str, Any]
    places: Places
    files: list[str]
    # The folders in which patterns were looked for.
    folders: list[str]


def build_model(
    sources: Iterable[ModelSource],
    settings: Iterable[Setting],
    warn: Callable[[str], None] = ignore,
    schemas: Iterable[str] = (),
) -> Model:
    """Merge models and settings by name, in order, and check them with the files of schemas.

    Where two models have an object under the same name, the objects are merged, and inside of them
    a later model goes before an earlier one. Anything else under one name is an error; settings
    take the place of everything. Raises ModelError, whose text begins with FILE:LINE.
    """
    places = Places()
    reader = Reader(places, warn)
    values: dict[str, Any] = {}
    for source in sources:
        entries = _entries(source, reader.read(source), places)
        _refuse_conflicts(values, entries, source, places)
        values = _merged(values, entries, places) if values else entries
    written = values
    for setting in settings:
        nested: Any = setting.value
        for name in reversed(setting.names):
            nested = {name: nested}
            places.note(nested, f"--set {'.'.join(setting.names)}")
        values = _merged(values, nested, places)
    model = Model(values, written, places, reader.files, reader.folders)
    for path in schemas:
        from orv.models.schema import check_model

        check_model(model, reader.read_file(path), path)
    return model


def refuse_unknown(
    settings: Sequence[Setting], model: Model, mentioned: Callable[[], set[str]]
) -> None:
    """Raise ModelError for settings whose names no model has and nothing mentions.

    `mentioned` gives the names that whatever reads the model mentions.
    """
    wrong: list[str] = []
    names = mentioned() if settings else set()
    for setting in settings:
        found: Any = model.written
        for name in setting.names:
            known = found if isinstance(found, dict) else {}
            if name not in known and name not in names:
                hint = did_you_mean(name, [*sorted(names), *known])
                wrong.append(
                    f'--set {".".join(setting.names)}: no model has "{name}", and no template,'
                    f" extension or script reads it{hint}"
                )
                break
            found = known.get(name)
    if wrong:
        raise ModelError("\n".join(wrong))


def _entries(source: ModelSource, value: object, places: Places) -> dict[str, Any]:
    if source.name is not None:
        named = {source.name: value}
        places.note(named, source.path)
        return named
    if not isinstance(value, dict):
        raise ModelError(
            f"{places.place_of(value) or source.path}: the model is {_described(value)}, not an"
            f" object with names; give it a name: --model NAME={source.path}"
        )
    return value


def _refuse_conflicts(
    values: dict[str, Any], entries: dict[str, Any], source: ModelSource, places: Places
) -> None:
    conflicts = [
        f'{places.place_of(entries, name)}: "{name}" is already at'
        f" {places.place_of(values, name)}; give a model a name of its own:"
        f" --model NAME={source.path}"
        for name, entry in entries.items()
        if name in values and not (isinstance(values[name], dict) and isinstance(entry, dict))
    ]
    if conflicts:
        raise ModelError("\n".join(conflicts))


def _merged(first: dict[str, Any], second: dict[str, Any], places: Places) -> dict[str, Any]:
    merged = dict(first)
    for name, value in second.items():
        current = first.get(name)
        if isinstance(current, dict) and isinstance(value, dict):
            value = _merged(current, value, places)
        merged[name] = value
    places.note_merged(merged, first, second)
    return merged


def _set_value(text: str) -> object:
    if text in ("true", "false", "null") or text[:1] in ('"', "[", "{"):
        return read_model("json", text.encode(), "", None)[0]
    return int(text) if _WHOLE_NUMBER.fullmatch(text) else text


def _described(value: object) -> str:
    return "a list" if isinstance(value, list) else "empty" if value is None else "a single value"


def _shortened(argument: str) -> str:
    return repr(argument if len(argument) <= 80 else argument[:77] + "...")
