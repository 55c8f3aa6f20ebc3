"""The commands of `orv`."""

from __future__ import annotations

from typing import NamedTuple

from orv.command.option import Option, Options, options_of

from orv.command.options import (
    GenerateOptions, LintOptions, ListOutputsOptions, PrintModelOptions, WhereOptions,
)  # fmt: skip

SUMMARY = "Packages generated C text into files, section by section."
EXIT_CODES = "Ends with 0 when all went well, 1 when something failed or differs, 2 on misuse."


class Command(NamedTuple):
    """One command. The function `run` of its module takes its options and returns the exit code.

    The module is imported only when the command runs, so that help needs no engine.
    """

    name: str
    help: str
    description: str
    holder: type[Options]

    @property
    def module(self) -> str:
        """The name of the module that does the work."""
        return f"orv.command.{self.name.replace('-', '_')}"

    @property
    def options(self) -> list[Option]:
        """The command's options, in the order of its help."""
        return options_of(self.holder)


COMMANDS = (
    Command(
        "generate",
        "render templates and write the files",
        "Render each TEMPLATE with the models and write the files that they declare below DIR."
        " Without TEMPLATE, do the runs of a project file.",
        GenerateOptions,
    ),
    Command(
        "lint",
        "check templates without a model",
        "Report what is wrong with each TEMPLATE and those that it names, as far as that can be"
        " known without a model. Nothing is rendered.",
        LintOptions,
    ),
    Command(
        "list-outputs",
        "print the paths of the files that a run writes",
        "Render, and print the path of each file that `orv generate` would write, whether or not"
        " it differs.",
        ListOutputsOptions,
    ),
    Command(
        "model",
        "print the model as JSON",
        "Print what the models and settings make together, as templates see it.",
        PrintModelOptions,
    ),
    Command(
        "where",
        "say where a line of a generated file comes from",
        "Print the section, the lines of templates, the calls and the model's elements that a line"
        " comes from, as the trace file has it that `orv generate --trace` wrote. Without one,"
        " render the runs of the project file again in memory; the file must be as they make it.",
        WhereOptions,
    ),
)
