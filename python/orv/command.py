"""The command `orv`."""

from __future__ import annotations

import io
import os
import signal
import sys
from collections.abc import Sequence
from typing import NoReturn

from orv.depfile import depfile
from orv.engine import RecordingLoader, render, search_folders
from orv.errors import OrvError, OutputError
from orv.messages import Messages
from orv.models import build_model
from orv.options import Options, parse_options
from orv.progress import progress
from orv.run import Run
from orv.writer import PlannedFile, plan, replace_file, write


def main(arguments: Sequence[str] | None = None) -> int:
    """Run the command line. 0: done; 1: failed, or something differs. Misuse ends with 2."""
    _use_utf8()
    options = parse_options(arguments)
    signal.signal(signal.SIGTERM, _interrupt)
    try:
        return generate(options)
    except OrvError as error:
        print(f"error: {error}", file=sys.stderr)
    except KeyboardInterrupt:
        print("error: interrupted; no file was being written", file=sys.stderr)
    except BrokenPipeError:
        # Nobody reads the results; keep the interpreter from complaining about it at the end.
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
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
    if options.writes:
        _write_all(files, run, options)
    else:
        _show(files, options)
    if options.depfile is not None:
        sources = [*loader.files, *(source.path for source in options.model), *options.script]
        targets = [file.shown for file in files if file.target]
        _replace(options.depfile, depfile(targets, sources))
    return 1 if options.check and any(file.differs for file in files) else 0


def _write_all(files: list[PlannedFile], run: Run, options: Options) -> None:
    with progress("writing", sum(file.differs for file in files), options.quiet) as step:

        def wrote(_: PlannedFile) -> None:
            if step is not None:
                step()

        write(files, run, wrote)
    _list(files, options)
    if options.manifest is not None:
        from orv.manifest import manifest

        _replace(options.manifest, manifest(run, files))


def _show(files: list[PlannedFile], options: Options) -> None:
    if not options.diff:
        _list(files, options)
        return
    from orv.differences import difference

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


def _replace(path: str, data: bytes) -> None:
    try:
        replace_file(path, data)
    except OSError as error:
        raise OutputError(f"{path} cannot be written: {error.strerror}") from error


def _say(text: str, options: Options) -> None:
    if options.verbose:
        print(text, file=sys.stderr)


def _warn(text: str, options: Options) -> None:
    if not options.quiet:
        print(f"warning: {text}", file=sys.stderr)


def _use_utf8() -> None:
    """The same bytes in any locale."""
    for stream in (sys.stdout, sys.stderr):
        if isinstance(stream, io.TextIOWrapper):
            stream.reconfigure(encoding="utf-8", errors="surrogateescape")


def _interrupt(*_: object) -> NoReturn:
    raise KeyboardInterrupt
