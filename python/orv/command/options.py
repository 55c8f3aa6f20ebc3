"""The options of each command: one row for each, with its name, type and help."""

from __future__ import annotations

import os
import re
from typing import TYPE_CHECKING, ClassVar, NamedTuple

from orv.command.option import (
    Options, ValueType, choice, file, flag, folder, number, operands, text, value, values,
)  # fmt: skip

if TYPE_CHECKING:
    from orv.models.model import Setting
    from orv.models.sources import ModelSource
    from orv.output.formatter import Formatter


def _model(argument: str) -> ModelSource:
    from orv.models.sources import ModelSource

    return ModelSource.parse(argument)


def _each(argument: str) -> ModelSource:
    source = _model(argument)
    if source.name is None or source.is_input:
        raise ValueError(f"expected NAME=PATTERN, got {argument!r}")
    return source


def _model_below(folder: str, model: ModelSource) -> ModelSource:
    return model.below(folder)


def _setting(argument: str) -> Setting:
    from orv.models.model import Setting

    # Texts are UTF-8 whatever the locale.
    return Setting.parse(os.fsencode(argument).decode())


def _mode(argument: str) -> int:
    if not re.fullmatch("0?[0-7]{3}", argument):
        raise ValueError(f"expected an octal mode such as 444, got {argument!r}")
    return int(argument, 8)


def _formatter(argument: str) -> Formatter:
    from orv.output.formatter import Formatter

    return Formatter(argument)


def _guard(argument: str) -> str:
    if argument == "pragma" or re.fullmatch(
        r"(?:[A-Za-z_]\w*)?\{PATH\}(?:\w|\{PATH\})*", argument, re.ASCII
    ):
        return argument
    raise ValueError(f"expected pragma or a macro such as {{PATH}}_H, got {argument!r}")


FORMATTER = ValueType("COMMAND", _formatter)
EACH = ValueType("NAME=PATTERN", _each, _model_below, "file")
GUARD = ValueType("GUARD", _guard)
MODE = ValueType("MODE", _mode)
MODEL = ValueType("[NAME=]FILE", _model, _model_below, "file")


def _delimiters(argument: str) -> tuple[str, ...]:
    words = tuple(argument.split())
    if len(words) != 6 or len(set(words[::2])) != 3 or set(words[::2]) & set(words[1::2]):
        raise ValueError(
            f"expected three different pairs such as '<% %> << >> <# #>', got {argument!r}"
        )
    return words


def _markers(argument: str) -> str:
    from orv import _native

    return _native.Markers(argument).pattern


def _scheduler(argument: str) -> str:
    if not re.fullmatch(r"(tcp|tls)://[^/]+:\d+", argument):
        raise ValueError(f"expected tcp://HOST:PORT or tls://HOST:PORT, got {argument!r}")
    return argument


DELIMITERS = ValueType("'<% %> << >> <# #>'", _delimiters)
MARKERS = ValueType("'BEGIN {id} ... END {id}'", _markers)
SCHEDULER = ValueType("tcp://HOST:PORT", _scheduler)
SETTING = ValueType("KEY=VALUE", _setting)


class ExtensionOptions(Options):
    """What helps the model and the templates."""

    GROUP: ClassVar[str] = "model"

    extend: list[str] = values(
        file("FILE.py"),
        "load an extension: it prepares the model and helps templates; trusted code",
    )


class ModelOptions(ExtensionOptions):
    """The model."""

    GROUP: ClassVar[str] = "model"

    model: list[ModelSource] = values(
        MODEL,
        "a model in JSON, YAML, TOML, CSV or XML, under NAME or as it is; several are merged by"
        " name; with NAME also a pattern of files, or -:FORMAT for standard input",
    )
    set: list[Setting] = values(SETTING, "set one value of the model; KEY may be dotted")
    schema: list[str] = values(file("FILE"), "check the model with a JSON Schema, in JSON or YAML")


class TemplateOptions(Options):
    """The templates."""

    GROUP: ClassVar[str] = "input"

    template: list[str] = operands(file("TEMPLATE"), "a template; others are looked for beside it")
    templates: list[str] = values(folder("DIR"), "look for templates here too")
    follow_links: bool = flag("take templates through links that lead out of their folders, too")
    delimiters: tuple[str, ...] | None = value(
        DELIMITERS, "the delimiters of tags, values and comments, instead of '{% %} {{ }} {# #}'"
    )


class InputOptions(TemplateOptions):
    """What is rendered, and what runs after it."""

    GROUP: ClassVar[str] = "input"

    for_each: ModelSource | None = value(
        EACH,
        "do the run once for each file of this pattern, with the file as the model NAME; {NAME} in"
        " the paths of what is written becomes the file's name without its ending",
    )
    script: list[str] = values(file("FILE.py"), "run a script on the files before they are written")


class BudgetOptions(Options):
    """What templates may use. No honest run comes near the defaults."""

    GROUP: ClassVar[str] = "bounds"

    max_text: int = value(
        number("MIB"),
        "end when the templates have printed more text (1024 MiB by default; 0: no bound)",
        default=1024,
    )
    max_memory: int = value(
        number("MIB"),
        "end when the templates need more memory (8192 MiB by default; 0: no bound)",
        default=8192,
    )
    timeout: int = value(
        number("SECONDS"),
        "end when the templates run longer (600 s by default; 0: no bound)",
        default=600,
    )


class OutputFolderOptions(Options):
    """Where files are written."""

    GROUP: ClassVar[str] = "output"

    out: str = value(folder("DIR"), "the folder for the files", default="")


class OutputOptions(OutputFolderOptions):
    """What is written, and whether."""

    GROUP: ClassVar[str] = "output"

    depfile: str | None = value(
        file("FILE"), "write the dependencies of the stamp or target for make or ninja"
    )
    depfile_target: str | None = value(text("NAME"), "the target of the depfile")
    stamp: str | None = value(file("FILE"), "write this file last, when all went well")
    manifest: str | None = value(file("FILE.json"), "write what the run made, for other programs")
    outputs: str | None = value(
        file("FILE"), "write the paths of the run's files, as list-outputs prints them"
    )
    expect: list[str] = values(
        text("PATH"),
        "a file that the run makes, from DIR; if any is given, a run that does not make exactly"
        " these fails",
    )
    trace: str | None = value(
        file("FILE.json"),
        "write where each byte of the files comes from, for `orv where` and others",
    )
    report: str | None = value(
        file("FILE.html"),
        "write a page that shows the files, where each line comes from, and what took time",
    )
    check: bool = flag("write nothing; end with 1 when a file differs", exclusive="mode")
    dry_run: bool = flag("write nothing; list what would be written", exclusive="mode")
    diff: bool = flag("write nothing; show what would change")
    always: bool = flag("do all runs, even if nothing has changed since the same command ran last")


class LayoutOptions(Options):
    """How the text of files is laid out."""

    GROUP: ClassVar[str] = "layout"

    blank_lines: bool = flag("put a blank line between the sections of a file")
    guard: str = value(
        GUARD,
        "guard headers without a DefinedMacro by this macro; {PATH} in it becomes the path of the"
        " file without its ending; or pragma, for #pragma once",
        default="",
    )
    format: Formatter | None = value(
        FORMATTER,
        "run this formatter on the files whose attribute Indent is true; {path} in it becomes the"
        " path of the file",
    )
    format_all: bool = flag("run the formatter on every file")
    line_directives: bool = flag(
        "put #line directives into C files, so that compilers and debuggers name templates"
    )
    line_prefix: str | None = value(
        text("PREFIX"),
        "what the paths of templates begin with in #line directives, instead of the way"
        " from the file to the template",
    )
    markers: str | None = value(
        MARKERS,
        "the lines around user regions, in files that have none of their own, instead of"
        " '/* USER CODE BEGIN {id} */ ... /* USER CODE END {id} */'",
    )


class WritingOptions(Options):
    """How the output folder is written."""

    GROUP: ClassVar[str] = "writing"

    lock_timeout: int = value(
        number("SECONDS"),
        "wait so long for another run that uses the same folder (60 by default)",
        default=60,
    )
    file_mode: int | None = value(
        MODE, "give the files these permissions, in octal (444 is read-only)"
    )
    fsync: bool = flag("end only when everything is on the disk")


class StateOptions(Options):
    """What becomes of files that are there already."""

    GROUP: ClassVar[str] = "files that are there already"

    state: str | None = value(
        file("FILE"), "keep the state of the output folder here and not in .orv-state.json in it"
    )
    no_state: bool = flag("keep no state: write over any file and remove none")
    edited: str = value(
        choice("error", "warn", "overwrite"),
        "files that were edited since they were generated: stop (the default), leave or discard",
        default="error",
    )
    stale: str = value(
        choice("remove", "keep"),
        "files that the run made before and no longer makes (a named run removes them by default)",
        default="remove",
    )
    adopt: bool = flag("take over, and write over, files that another run made, or none")
    orphans: str = value(
        choice("error", "keep", "drop"),
        "user regions that no template has any more: stop (the default), move their texts to"
        " FILE.orphans or discard them",
        default="error",
    )


class MessageOptions(Options):
    """What is said."""

    GROUP: ClassVar[str] = "messages"

    strict: bool = flag("treat warnings as errors")
    quiet: bool = flag("list no files and no warnings", exclusive="volume")
    verbose: bool = flag("say what is read and done", exclusive="volume")


class ProjectOptions(Options):
    """Which runs of which project file."""

    GROUP: ClassVar[str] = "project"

    run: list[str] = values(
        text("NAME"), "do this run of the project file; with TEMPLATE, the name of the run"
    )
    project: str | None = value(
        file("FILE.toml"), "the project file; orv.toml here or in the closest folder above"
    )


class JobOptions(Options):
    """Where the runs are done. It changes nothing of what they make."""

    GROUP: ClassVar[str] = "jobs"

    jobs: int | None = value(
        number("N", 1), "do up to N runs at once; as many as there are cores by default"
    )
    scheduler: str | None = value(
        SCHEDULER, "have the runs done by the workers of this Dask scheduler"
    )


class GenerateOptions(
    ProjectOptions,
    JobOptions,
    MessageOptions,
    StateOptions,
    WritingOptions,
    LayoutOptions,
    OutputOptions,
    BudgetOptions,
    ModelOptions,
    InputOptions,
):
    """The options of `orv generate`."""

    # Of a run for one file of a pattern: this file, and the options that the pattern has.
    model_file: ModelSource | None = None
    whole: GenerateOptions | None = None

    @property
    def label(self) -> str:
        """What messages call the run: its name, and the file of a pattern that it is for."""
        return ", ".join(map(str, filter(None, (self.run_name, self.model_file))))

    @property
    def run_name(self) -> str | None:
        """The name of the run; a run without TEMPLATE in the command line has one."""
        return self.run[0] if self.run else None

    @property
    def inputs(self) -> list[str]:
        """The files and folders that the run is told to read."""
        models = [model.path for model in self.model if not model.is_input]
        return [*self.template, *self.templates, *self.script, *self.extend, *self.schema, *models]

    @property
    def written(self) -> list[str]:
        """The files and folders that the run is told to write."""
        return [path for path in (self.out, self.state, *self.reports) if path is not None]

    @property
    def always_runs(self) -> bool:
        """Whether the run says or writes something else each time, or is wanted to run."""
        return self.always or self.verbose or self.report is not None

    @property
    def reports(self) -> list[str]:
        """The paths of the reports."""
        paths = (
            self.depfile, self.manifest, self.outputs, self.report, self.stamp, self.trace
        )  # fmt: skip
        return [path for path in paths if path is not None]

    def ends_well(self, differs: bool) -> bool:
        """Whether a run that did not fail went well; `differs` says that a file did."""
        return self.writes or (self.check and not differs)

    @property
    def is_traced(self) -> bool:
        """Whether the run has to know where its text comes from."""
        return bool(self.trace is not None or self.report is not None or self.line_directives)

    @property
    def writes(self) -> bool:
        """Whether the run may change the output folder."""
        return not (self.check or self.diff or self.dry_run)


class PrintModelOptions(MessageOptions, ModelOptions):
    """The options of `orv model`."""

    places: bool = flag("print one line for each value, with the place where it was written")


class ListOutputsOptions(
    ProjectOptions, MessageOptions, OutputFolderOptions, BudgetOptions, ModelOptions, InputOptions
):
    """The options of `orv list-outputs`."""

    json: bool = flag("print a JSON list")


class LinePlace(NamedTuple):
    """A line of a file, and a column in bytes, both from 1; column 0 is the whole line."""

    path: str
    line: int
    column: int = 0

    @classmethod
    def parse(cls, argument: str) -> LinePlace:
        """From FILE:LINE or FILE:LINE:COLUMN. Raises ValueError."""
        place = re.fullmatch(r"(.+?):([1-9]\d{0,8})(?::([1-9]\d{0,8}))?:?", argument)
        if place is None:
            raise ValueError(f"expected FILE:LINE or FILE:LINE:COLUMN, got {argument!r}")
        return cls(place[1], int(place[2]), int(place[3] or 0))

    def __str__(self) -> str:
        return f"{self.path}:{self.line}" + (f":{self.column}" if self.column else "")


PLACE = ValueType("FILE:LINE[:COLUMN]", LinePlace.parse, completes="file")


class WhereOptions(ProjectOptions):
    """The options of `orv where`."""

    GROUP: ClassVar[str] = "input"

    line: list[LinePlace] = operands(PLACE, "a line of a generated file")
    trace: str | None = value(
        file("FILE.json"), "the trace file; the runs of the project file when it is left out"
    )
    json: bool = flag("print a JSON list")


class LintOptions(ExtensionOptions, TemplateOptions):
    """The options of `orv lint`."""
