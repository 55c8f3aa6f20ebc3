"""Reads the arguments of a command, by the table of its options."""

from __future__ import annotations

from collections.abc import Iterator, Sequence
from typing import Any

from orv.command.option import Option, ValueType
from orv.errors import Misuse, OrvError, did_you_mean

# Everything after it is an operand.
_END = "--"
_HELP = ("-h", "--help")


def wants_help(arguments: Sequence[str]) -> bool:
    """Whether the arguments ask for help, whatever else they say."""
    end = arguments.index(_END) if _END in arguments else len(arguments)
    return any(word in _HELP for word in arguments[:end])


def given_values(options: Sequence[Option], arguments: Sequence[str]) -> dict[str, Any]:
    """The values that are given, by attribute. Options may be before and after operands.

    Raises Misuse.
    """
    reader = _Reader(options)
    reader.read(iter(arguments))
    return reader.given


class _Reader:
    """Collects the values of options in `given`."""

    def __init__(self, options: Sequence[Option]) -> None:
        self.given: dict[str, Any] = {}
        self._options = {f"--{option.name}": option for option in options if not option.positional}
        self._operands = next((option for option in options if option.positional), None)
        # The option that was given of those that exclude each other.
        self._chosen: dict[str, str] = {}

    def read(self, words: Iterator[str]) -> None:
        """Read all words."""
        for word in words:
            if word == _END:
                for operand in words:
                    self._read_operand(operand)
            elif self._is_option(word):
                self._read_option(word, words)
            else:
                self._read_operand(word)

    def _is_option(self, word: str) -> bool:
        """Whether a word is no value: an option, or like one that there is not."""
        if word.partition("=")[0] in self._options:
            return True
        return len(word) > 1 and word[0] == "-" and not word[1].isdigit() and " " not in word

    def _read_option(self, word: str, words: Iterator[str]) -> None:
        name, separator, text = word.partition("=")
        option = self._options.get(name)
        if option is None:
            hint = did_you_mean(name, [*_HELP, *self._options])
            raise Misuse(f"unrecognized argument {word}{hint}")
        if option.type is None:
            if separator:
                raise Misuse(f"argument {name}: ignored explicit argument {text!r}")
            self._require_alone(option, name)
            self.given[option.attribute] = True
            return
        if not separator:
            text = next(words, _END)
            if self._is_option(text):
                raise Misuse(f"argument {name}: expected one argument")
        self._add(option, option.type, name, text)

    def _read_operand(self, word: str) -> None:
        option = self._operands
        if option is None or option.type is None:
            raise Misuse(f"unrecognized argument {word}")
        self._add(option, option.type, option.type.metavar, word)

    def _add(self, option: Option, type: ValueType, name: str, text: str) -> None:
        try:
            value = type.parse(text)
        except (OrvError, ValueError) as error:
            raise Misuse(f"argument {name}: {error}") from error
        if type.choices and value not in type.choices:
            choices = ", ".join(map(repr, type.choices))
            raise Misuse(f"argument {name}: invalid choice: {value!r} (choose from {choices})")
        if option.repeatable:
            self.given.setdefault(option.attribute, []).append(value)
        else:
            self.given[option.attribute] = value

    def _require_alone(self, option: Option, name: str) -> None:
        """Refuse a flag beside another one that it excludes."""
        if option.exclusive:
            other = self._chosen.setdefault(option.exclusive, name)
            if other != name:
                raise Misuse(f"argument {name}: not allowed with argument {other}")
