"""The interfaces that the stubs are made for, and the C types of their signatures.

A signature is a sequence of complete types: a letter for a basic type, `a` and a complete type for
an array, types in parentheses for a struct, `{` key value `}` for an entry of a dictionary. Each
container becomes a type of its own, whose name is the signature with letters for the brackets.
"""

from __future__ import annotations

from collections.abc import Iterator
from fnmatch import fnmatchcase
from typing import Any, NamedTuple

import orv

Element = Any

BASIC = {
    "y": "uint8_t", "b": "bool", "n": "int16_t", "q": "uint16_t", "i": "int32_t", "u": "uint32_t",
    "x": "int64_t", "t": "uint64_t", "d": "double", "h": "int", "s": "const char *",
    "o": "const char *", "g": "const char *", "v": "dbus_variant",
}  # fmt: skip
BRACKETS = str.maketrans({"(": "r", ")": "z", "{": "e", "}": "z"})
ENDS = {"(": ")", "{": "}"}


class Argument(NamedTuple):
    """An argument of a method or signal."""

    name: str
    signature: str


class Method(NamedTuple):
    """A method with what goes in and what comes out."""

    name: str
    inputs: list[Argument]
    outputs: list[Argument]


class Signal(NamedTuple):
    """A signal."""

    name: str
    arguments: list[Argument]


class Property(NamedTuple):
    """A property; `access` is read, write or readwrite."""

    name: str
    signature: str
    access: str


class Interface(NamedTuple):
    """An interface. `short` is its name without the prefix that all of them share."""

    name: str
    short: str
    methods: list[Method]
    signals: list[Signal]
    properties: list[Property]

    @property
    def signatures(self) -> Iterator[str]:
        """The signatures of everything in it."""
        for method in self.methods:
            yield from (argument.signature for argument in method.inputs + method.outputs)
        for signal in self.signals:
            yield from (argument.signature for argument in signal.arguments)
        yield from (entry.signature for entry in self.properties)


class Container(NamedTuple):
    """A type made of others: an array of one, an entry of two or a struct of any number."""

    signature: str
    parts: list[str]


@orv.pure
@orv.prepare
def choose(model: orv.Model) -> orv.Model:
    """Add the interfaces in order of their names, and the containers that they need."""
    wanted = model["stubs"]
    interfaces = [
        interface(element, f"{stem}.xml", wanted["strip"])
        for stem, description in model["descriptions"].items()
        for element in description["node"].all("interface")
        if any(fnmatchcase(element.attributes["name"], only) for only in wanted["only"])
    ]
    if not interfaces:
        raise orv.OrvError(f"no description has an interface {' or '.join(wanted['only'])}")
    interfaces.sort()
    needed = {c.signature: c for i in interfaces for s in i.signatures for c in containers(s)}
    return model | {"interfaces": interfaces, "containers": list(needed.values())}


def interface(element: Element, file: str, prefix: str) -> Interface:
    """The interface that an element describes."""
    name = element.attributes["name"]
    return Interface(
        name,
        name.removeprefix(prefix),
        [
            Method(method.attributes["name"], arguments(method, file, "in", "in"),
                   arguments(method, file, "in", "out"))
            for method in element.all("method")
        ],
        [
            Signal(signal.attributes["name"], arguments(signal, file, "out", "out"))
            for signal in element.all("signal")
        ],
        [
            Property(entry.attributes["name"], checked(entry, file), entry.attributes["access"])
            for entry in element.all("property")
        ],
    )  # fmt: skip


def arguments(owner: Element, file: str, usual: str, direction: str) -> list[Argument]:
    """The arguments in one direction; those that say none have the usual one."""
    return [
        Argument(element.attributes.get("name", f"arg{position}"), checked(element, file))
        for position, element in enumerate(owner.all("arg"))
        if element.attributes.get("direction", usual) == direction
    ]


def checked(element: Element, file: str) -> str:
    """The signature of an element, which must be one complete type."""
    signature: str = element.attributes["type"]
    if end_of_type(signature, 0) != len(signature):
        raise orv.OrvError(f'{file}:{element.line}: "{signature}" is not one complete type')
    return signature


def end_of_type(signature: str, at: int) -> int:
    """Where the complete type that begins at a position ends; 0 when there is none."""
    first = signature[at : at + 1]
    if first == "a":
        return end_of_type(signature, at + 1)
    if first not in ENDS:
        return at + 1 if first in BASIC else 0
    at += 1
    while at and signature[at : at + 1] != ENDS[first]:
        at = end_of_type(signature, at)
    return at + 1 if at else 0


def parts(signature: str) -> list[str]:
    """The complete types that a container is made of."""
    inside = signature[1:] if signature[0] == "a" else signature[1:-1]
    found: list[str] = []
    while inside:
        end = end_of_type(inside, 0)
        found.append(inside[:end])
        inside = inside[end:]
    return found


def containers(signature: str) -> Iterator[Container]:
    """The containers in a complete type, each after those that it is made of."""
    if signature in BASIC:
        return
    made_of = parts(signature)
    for part in made_of:
        yield from containers(part)
    yield Container(signature, made_of)


@orv.pure
@orv.filter
def c_type(signature: str) -> str:
    """The C type of a complete type."""
    return BASIC.get(signature) or f"dbus_{signature.translate(BRACKETS)}"


@orv.pure
@orv.filter
def declared(name: str, signature: str) -> str:
    """The declaration of a name of this type."""
    type = c_type(signature)
    return f"{type}{name}" if type.endswith("*") else f"{type} {name}"
