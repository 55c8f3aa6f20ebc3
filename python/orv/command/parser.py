"""The parser of the command line, made from the tables of commands and options."""

from __future__ import annotations

import argparse
from collections.abc import Callable, Sequence
from typing import Any, NoReturn

from orv._version import __version__
from orv.command.commands import COMMANDS, EXIT_CODES, SUMMARY, Command
from orv.command.option import Option
from orv.errors import OrvError, did_you_mean


class CommandParser(argparse.ArgumentParser):
    """A parser that returns only what was given, and takes options before and after operands."""

    def __init__(self, **settings: Any) -> None:
        settings.setdefault("epilog", EXIT_CODES)
        super().__init__(argument_default=argparse.SUPPRESS, allow_abbrev=False, **settings)
        self.children: dict[str, CommandParser] = {}

    def add_options(self, options: Sequence[Option]) -> None:
        """Add rows of an option table, under the titles of their groups."""
        groups: dict[str, Any] = {}
        exclusive: dict[str, Any] = {}
        for option in options:
            group = groups.get(option.group) or self.add_argument_group(option.group)
            groups[option.group] = group
            if option.exclusive:
                one_of = exclusive.get(option.exclusive) or group.add_mutually_exclusive_group()
                group = exclusive[option.exclusive] = one_of
            _add(group, option)

    def parse_given(self, arguments: Sequence[str]) -> dict[str, Any]:
        """The values that were given, by attribute. Ends the program with 2 on misuse."""
        namespace, unknown = self.parse_known_intermixed_args(list(arguments))
        for argument in unknown:
            known = [name for action in self._actions for name in action.option_strings]
            hint = did_you_mean(argument.partition("=")[0], known)
            self.error(f"unrecognized argument {argument}{hint}")
        return vars(namespace)

    def error(self, message: str) -> NoReturn:
        """End the program with 2, the message and where to read on."""
        self.exit(2, f"{self.prog}: error: {message}\nTry '{self.prog} --help'.\n")


def orv_parser() -> CommandParser:
    """The parser of `orv` itself: its options, and its commands as children, by name."""
    parser = CommandParser(prog="orv", usage="orv [OPTIONS] COMMAND ...", description=SUMMARY)
    parser.add_argument("--version", action="version", version=f"orv {__version__}")
    commands = parser.add_subparsers(metavar="COMMAND")
    for command in COMMANDS:
        child = commands.add_parser(command.name, help=command.help, **_settings(command))
        child.add_options(command.options)
        parser.children[command.name] = child
    return parser


def command_parser(command: Command) -> CommandParser:
    """The parser of one command's arguments."""
    parser = CommandParser(prog=f"orv {command.name}", **_settings(command))
    parser.add_options(command.options)
    return parser


def _settings(command: Command) -> dict[str, Any]:
    operands = [f" [{option.type.metavar} ...]" for option in command.options
                if option.positional and option.type]  # fmt: skip
    usage = f"orv {command.name} [OPTIONS]{''.join(operands)}"
    return {"usage": usage, "description": command.description}


def _add(group: Any, option: Option) -> None:
    help = option.full_help.replace("%", "%%")
    if option.type is None:
        group.add_argument(f"--{option.name}", action="store_true", help=help)
        return
    settings: dict[str, Any] = {"metavar": option.type.metavar, "help": help}
    if option.type.choices:
        settings["choices"] = option.type.choices
    settings["type"] = _parser_of(option.type.parse)
    if option.positional:
        group.add_argument(option.attribute, nargs="*", **settings)
    else:
        action = "append" if option.repeatable else "store"
        group.add_argument(f"--{option.name}", action=action, **settings)


def _parser_of(parse: Callable[[str], Any]) -> Callable[[str], Any]:
    def parsed(text: str) -> Any:
        try:
            return parse(text)
        except (OrvError, ValueError) as error:
            raise argparse.ArgumentTypeError(str(error)) from error

    return parsed
