"""The command `orv`."""

from __future__ import annotations

import io
import os
import signal
import sys
from collections.abc import Sequence
from typing import NoReturn

from orv.output import reports
from orv.output.depfile import depfile
from orv.templates.engine import RecordingLoader, render, search_folders
from orv.errors import Messages, OrvError, OutputError
from orv.models.model import build_model
from orv.command.options import Options, parse_options
from orv.command.progress import progress
from orv.files.run import Run
from orv.output.writer import PlannedFile, plan, write


def main(arguments: Sequence[str] | None = None) -> int:
    """Run the command line. 0: done; 1: failed, or something differs. Misuse ends with 2."""
    _prepare_streams()
    try:
        try:
            return _run(arguments)
        finally:
            sys.stdout.flush()
            sys.stderr.flush()
    except OSError as error:
        _give_up_streams()
        if not isinstance(error, BrokenPipeError):
            what = error.filename or "the results"
            print(f"error: {what} cannot be written: {error.strerror}", file=sys.stderr)
        return 1


def _run(arguments: Sequence[str] | None) -> int:
    options = parse_options(arguments)
    signal.signal(signal.SIGTERM, _interrupt)
    try:
        return generate(options)
    except OrvError as error:
        print(f"error: {error}", file=sys.stderr)
    except KeyboardInterrupt:
        print("error: interrupted; no file was being written", file=sys.stderr)
    return 1


def generate(options: Options) -> int:
    """Render, run the scripts, and write or compare."""
    messages = Messages(lambda text: _warn(text, options), options.strict)
    model = build_model(options.model, options.set)
    folders, name = search_folders(options.template, options.templates)
    loader = RecordingLoader(folders)
    with progress("rendering", None, options.quiet) as step:
        run = render(name, model, loader, messages, step)
    for script in options.script:
        from orv.scripts import run_script

        _say(f"running {script}", options)
        run_script(script, run, model)
    files = plan(run, options.out)
    for path in [source.path for source in options.model] + loader.files:
        _say(f"read {path}", options)
    sources = [*loader.files, *(source.path for source in options.model), *options.script]
    wanted = _reports(files, sources, run, options)
    reports.prepare(wanted, _taken(files, sources, run))
    if options.writes:
        _write_all(files, run, options)
    else:
        _show(files, options)
    for report in wanted:
        reports.write(report)
    return 1 if options.check and any(file.differs for file in files) else 0


def _reports(
    files: list[PlannedFile], sources: list[str], run: Run, options: Options
) -> list[reports.Report]:
    wanted: list[reports.Report] = []
    if options.manifest is not None and options.writes:
        from orv.output.manifest import manifest

        wanted.append(reports.Report("manifest", options.manifest, manifest(run, files)))
    if options.depfile is not None:
        rule = depfile([file.shown for file in files if file.target], sources)
        wanted.append(reports.Report("depfile", options.depfile, rule))
    return wanted


def _taken(files: list[PlannedFile], sources: list[str], run: Run) -> dict[str, str]:
    """What the run reads and the files it makes, by their real paths."""
    taken = {os.path.realpath(path): f'"{path}", which was read' for path in sources}
    for file in files:
        if file.target in taken:
            label = run.files.label(file.index)
            raise OutputError(
                f"{run.files.place(file.index)}the file {label} would take the place of"
                f" {taken[file.target]}"
            )
        if file.target:
            taken[file.target] = f'the file "{file.shown}"'
    return taken


def _write_all(files: list[PlannedFile], run: Run, options: Options) -> None:
    with progress("writing", sum(file.differs for file in files), options.quiet) as step:

        def wrote(_: PlannedFile) -> None:
            if step is not None:
                step()

        write(files, run, wrote)
    _list(files, options)


def _show(files: list[PlannedFile], options: Options) -> None:
    if not options.diff:
        _list(files, options)
        return
    from orv.output.differences import difference

    for file in files:
        if file.differs:
            sys.stdout.write(difference(file))


def _list(files: list[PlannedFile], options: Options) -> None:
    for file in files:
        line = f"{file.state.value:8}{file.shown}"
        if file.differs and not options.quiet:
            print(line)
        elif not file.differs:
            _say(line, options)


def _say(text: str, options: Options) -> None:
    if options.verbose:
        print(text, file=sys.stderr)


def _warn(text: str, options: Options) -> None:
    if not options.quiet:
        print(f"warning: {text}", file=sys.stderr)


def _prepare_streams() -> None:
    """The same bytes in any locale, and somewhere to write to when a stream is closed."""
    sys.stdout = sys.stdout or open(os.devnull, "w")
    sys.stderr = sys.stderr or open(os.devnull, "w")
    for stream in (sys.stdout, sys.stderr):
        if isinstance(stream, io.TextIOWrapper):
            stream.reconfigure(encoding="utf-8", errors="surrogateescape")


def _give_up_streams() -> None:
    """Drop what a stream does not take, or the interpreter would complain about it at the end."""
    for stream in (sys.stdout, sys.stderr):
        try:
            stream.flush()
        except OSError:
            os.dup2(os.open(os.devnull, os.O_WRONLY), stream.fileno())


def _interrupt(*_: object) -> NoReturn:
    raise KeyboardInterrupt
