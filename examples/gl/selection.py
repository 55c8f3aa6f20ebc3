"""What the choice takes from the Khronos registry, for the templates: the model's `chosen`.

The rules are those of the registry's readme. `require` and `remove` count when their `api` and
`profile`, where they have them, are the ones chosen; what a version removes is gone unless a later
version or an extension requires it again. The constant that a required one is an alias of comes
with it, unless a version removes it. An owner is the version or extension that brings something.
"""

from __future__ import annotations

import re
from typing import Any, NamedTuple

import orv

Element = Any
PROFILES = {"gl": ["core", "compatibility"], "gles1": ["common"]}


class Owner(NamedTuple):
    """A version, or an extension, which has no number and no header of its own."""

    element: Element
    name: str
    number: int = 0
    header: str = ""


class Choice:
    """The versions and extensions of the choice, and what they bring in the registry's order."""

    def __init__(self, model: orv.Model) -> None:
        registry = model["registry"]
        self.api = model.get("api", "gl")
        self.versions = versions(registry, self.api, model.get("version"))
        self.newest = self.versions[-1].element.attributes["number"]
        profiles = PROFILES.get(self.api, [""])
        self.profile = model.get("profile", profiles[0])
        if self.profile not in profiles:
            raise orv.OrvError(f"{self.api} has no profile {self.profile}")
        self.extensions = extensions(registry, self.api, model.get("extensions", ""))
        self.owners = self.versions + self.extensions
        self.aliases = {e.attributes["name"]: e.attributes["alias"] for b in registry.all("enums")
                        for e in b.all("enum") if "alias" in e.attributes}  # fmt: skip
        self.removed = {tag: {name: owner.number for owner in self.versions
                              for name in self.changes(owner, "remove", tag)}
                        for tag in ("enum", "command", "type")}  # fmt: skip
        self.constants = self.owned("enum")
        self.commands = self.owned("command")
        self.types = types(registry, {*self.owned("type")}, self.commands)

    def changes(self, owner: Owner, kind: str, tag: str) -> list[str]:
        """The names of the tag that the owner requires or removes."""
        return [item.attributes["name"] for change in owner.element.all(kind)
                if change.attributes.get("api", self.api) == self.api
                and change.attributes.get("profile", self.profile) == self.profile
                for item in change.all(tag)]  # fmt: skip

    def required(self, owner: Owner, tag: str) -> list[str]:
        """The names that the owner requires and no later version removes."""
        names = {}
        removed = self.removed[tag]
        for name in self.changes(owner, "require", tag):
            if not owner.number or removed.get(name, 0) < owner.number:
                names[name] = True
            alias = self.aliases.get(name) if tag == "enum" else None
            if alias and (not owner.number or alias not in removed):
                names[alias] = True
        return list(names)

    def owned(self, tag: str) -> dict[str, Owner]:
        """Everything required, with the oldest version that does, or else the first extension."""
        return {n: owner for owner in reversed(self.owners) for n in self.required(owner, tag)}


@orv.pure
@orv.prepare
def choose(model: orv.Model) -> orv.Model:
    """Add what the templates print."""
    return model | {"chosen": Choice(model)}


def versions(registry: Element, api: str, newest: object) -> list[Owner]:
    """The versions of the API up to the newest one, oldest first."""
    features = {f.attributes["number"]: f for f in registry.all("feature")
                if f.attributes["api"] == api}  # fmt: skip
    if not features:
        raise orv.OrvError(f"the registry has no API {api}")
    newest = max(features) if newest is None else str(newest)
    if newest not in features:
        raise orv.OrvError(f"{api} has no version {newest}")
    found = []
    for number in sorted(number for number in features if number <= newest):
        name = features[number].attributes["name"]
        major, minor = number.split(".")
        found.append(
            Owner(features[number], name, 100 * int(major) + int(minor), f"{name.lower()}.h")
        )
    return found


def extensions(registry: Element, api: str, asked: str | list[str]) -> list[Owner]:
    """The extensions that are asked for: names, or all that the API has."""
    supported = {e.attributes["name"]: Owner(e, e.attributes["name"])
                 for e in registry.first("extensions").children
                 if api in e.attributes["supported"].split("|")}  # fmt: skip
    names = supported if asked == "all" else asked.split(",") if isinstance(asked, str) else asked
    for name in names:
        if name and name not in supported:
            raise orv.OrvError(f"{api} has no extension {name}")
    return [owner for name, owner in supported.items() if name in names]


def types(registry: Element, needed: set[str], commands: dict[str, Owner]) -> list[Element]:
    """What is needed and what the commands take; each type stands after those it is made of."""
    for command in registry.first("commands").all("command"):
        if command.first("proto").first("name").text in commands:
            parts = [part.first("ptype") for part in command.children]
            needed.update(word for part in parts if part for word in part.text.split())
    elements = [((e.attributes.get("name") or e.first("name").text).split()[-1], e)
                for e in registry.first("types").all("type")]  # fmt: skip
    for name, element in reversed(elements):
        if name in needed:
            needed.update(re.findall(r"\w+", element.text))
    return [element for name, element in elements if name in needed]


@orv.pure
@orv.filter
def in_standard_types(element: Element) -> str:
    """The text of a type, with the standard's types for the registry's own."""
    pieces = ("GLLOADER_CALL" if getattr(piece, "tag", "") == "apientry" else str(piece)
              for piece in element.content)  # fmt: skip
    text = (
        "".join(pieces).replace("khronos_float_t", "float").replace("khronos_ssize_t", "ptrdiff_t")
    )
    return text.replace("khronos_", "")
