"""The command line and what it means."""

from __future__ import annotations

import argparse
import os
from collections.abc import Sequence

from orv.errors import ModelError
from orv.models.model import ModelSource, Setting


class Options(argparse.Namespace):
    """The options of `orv generate`."""

    template: str
    model: list[ModelSource]
    set: list[Setting]
    out: str
    templates: list[str]
    script: list[str]
    check: bool
    diff: bool
    dry_run: bool
    depfile: str | None
    manifest: str | None
    strict: bool
    quiet: bool
    verbose: bool

    @property
    def writes(self) -> bool:
        """Whether the run may change the output folder."""
        return not (self.check or self.diff or self.dry_run)


def parse_options(arguments: Sequence[str] | None) -> Options:
    """The options of the command line. Ends the program with 2 and a hint on misuse."""
    parser = argparse.ArgumentParser(
        prog="orv", description="Packages generated C text into files, section by section."
    )
    commands = parser.add_subparsers(required=True, metavar="COMMAND", dest="command")
    generate = commands.add_parser(
        "generate",
        help="render templates and write the files",
        description="Render TEMPLATE with the models and write the files it declares below DIR.",
        epilog="Ends with 0 when all went well, 1 when something failed or differs, 2 on misuse.",
    )
    _add_input(generate)
    _add_output(generate)
    return parser.parse_args(arguments, namespace=Options())


def _add_input(parser: argparse.ArgumentParser) -> None:
    add = parser.add_argument
    add("template", metavar="TEMPLATE", help="the template; others are looked for beside it")
    add("--templates", metavar="DIR", action="append", default=[],
        help="look for templates here too (repeatable)")  # fmt: skip
    add("--model", metavar="[NAME=]FILE", action="append", default=[], type=ModelSource.parse,
        help="a model in JSON, YAML, TOML or XML, under NAME or as it is; several are merged"
        " by name")  # fmt: skip
    add("--set", metavar="KEY=VALUE", action="append", default=[], type=_setting,
        help="set one value of the model; KEY may be dotted (repeatable)")  # fmt: skip
    add("--script", metavar="FILE.py", action="append", default=[],
        help="run a script on the files before they are written (repeatable)")  # fmt: skip


def _add_output(parser: argparse.ArgumentParser) -> None:
    add = parser.add_argument
    add("--out", metavar="DIR", required=True, help="the folder for the files")
    add("--depfile", metavar="FILE", help="write the dependencies for make or ninja")
    add("--manifest", metavar="FILE.json", help="write what the run made, for other programs")
    add("--strict", action="store_true", help="treat warnings as errors")
    mode = parser.add_mutually_exclusive_group()
    mode.add_argument("--check", action="store_true",
                      help="write nothing; end with 1 when a file differs")  # fmt: skip
    mode.add_argument("--dry-run", action="store_true",
                      help="write nothing; list what would be written")  # fmt: skip
    add("--diff", action="store_true", help="write nothing; show what would change")
    volume = parser.add_mutually_exclusive_group()
    volume.add_argument("--quiet", action="store_true", help="list no files and no warnings")
    volume.add_argument("--verbose", action="store_true", help="say what is read and done")


def _setting(argument: str) -> Setting:
    try:
        # Texts are UTF-8 whatever the locale.
        return Setting.parse(os.fsencode(argument).decode())
    except (ModelError, ValueError) as error:
        raise argparse.ArgumentTypeError(str(error)) from error
