"""The entry point: streams, signals, and how errors become messages and exit codes."""

from __future__ import annotations

import importlib
import io
import os
import signal
import sys
from collections.abc import Iterator, Sequence
from contextlib import contextmanager
from typing import NoReturn

from orv.command.console import failure, failure_of
from orv.command.commands import COMMANDS
from orv.command.parser import command_parser, orv_parser
from orv.errors import Misuse, OrvError, did_you_mean

# The modules that come from elsewhere, and what they are installed as on Debian.
_REQUIRED = {
    "jinja2": "python3-jinja2",
    "jsonschema": "python3-jsonschema",
    "pygments": "python3-pygments",
    "tqdm": "python3-tqdm",
}

# What is said when there is no memory to make a message.
_NO_MEMORY = b"error: the memory is exhausted; no file was being written\n"


def main(arguments: Sequence[str] | None = None) -> int:
    """Run the command line. 0: done; 1: failed, or something differs. Misuse ends with 2.

    Whatever happens is one message.
    """
    try:
        return _main(arguments)
    except Exception as error:
        return _end(error)


def _main(arguments: Sequence[str] | None) -> int:
    _prepare_streams()
    sys.unraisablehook = _report_unraisable
    try:
        try:
            return _run(sys.argv[1:] if arguments is None else list(arguments))
        finally:
            sys.stdout.flush()
            sys.stderr.flush()
    except OSError as error:
        _give_up_streams()
        if not isinstance(error, BrokenPipeError):
            what = error.filename or "the results"
            print(f"error: {what} cannot be written: {error.strerror}", file=sys.stderr)
        return 1


def _end(error: Exception) -> int:
    """Say what no part of the command expected, without memory if need be."""
    try:
        text = f"{failure_of(error)}\n"
        # The interpreter holds on to what the failed calls had in use as long as the error lives.
        error.__traceback__ = error.__context__ = error.__cause__ = None
        sys.stderr.write(text)
        sys.stderr.flush()
    except Exception:
        os.write(2, _NO_MEMORY)
        # The interpreter would need memory to end, and say so.
        os._exit(1)
    return 1


def _run(arguments: list[str]) -> int:
    command = next((known for known in COMMANDS if known.name in arguments[:1]), None)
    if command is None:
        _end_without_command(arguments)
    parser = command_parser(command)
    signal.signal(signal.SIGTERM, _interrupt)
    try:
        with _explained_imports():
            given = parser.parse_given(arguments[1:])
            code: int = importlib.import_module(command.module).run(given)
            return code
    except Misuse as error:
        parser.error(str(error))
    except OrvError as error:
        print(failure(str(error)), file=sys.stderr)
    except KeyboardInterrupt:
        print("error: interrupted; no file was being written", file=sys.stderr)
    return 1


def _end_without_command(arguments: list[str]) -> NoReturn:
    parser = orv_parser()
    if arguments and not arguments[0].startswith("-"):
        hint = did_you_mean(arguments[0], [command.name for command in COMMANDS])
        parser.error(f'there is no command "{arguments[0]}"{hint}')
    parser.parse_args(arguments)
    parser.error("expected a command")


@contextmanager
def _explained_imports() -> Iterator[None]:
    """Make a sentence of a part of the engine that is missing."""
    try:
        yield
    except ImportError as error:
        name = (error.name or "").partition(".")[0]
        if name == "orv":
            raise OrvError(f"the native part of orv cannot be loaded: {error}") from error
        if name in _REQUIRED:
            raise OrvError(
                f"the Python package {name} cannot be loaded by {sys.executable}: {error};"
                f" on Debian it is in {_REQUIRED[name]}"
            ) from error
        raise


def _prepare_streams() -> None:
    """The same bytes in any locale, and somewhere to write to when a stream is closed."""
    sys.stdout = sys.stdout or open(os.devnull, "w")
    sys.stderr = sys.stderr or open(os.devnull, "w")
    for stream in (sys.stdout, sys.stderr):
        if isinstance(stream, io.TextIOWrapper):
            stream.reconfigure(encoding="utf-8", errors="surrogateescape")


def _report_unraisable(raised: sys.UnraisableHookArgs) -> None:
    """Leave out that there was no memory to close a generator: the run goes on, and is whole."""
    if not issubclass(raised.exc_type, MemoryError):
        sys.__unraisablehook__(raised)


def _give_up_streams() -> None:
    """Drop what a stream does not take, or the interpreter would complain about it at the end."""
    for stream in (sys.stdout, sys.stderr):
        try:
            stream.flush()
        except OSError:
            os.dup2(os.open(os.devnull, os.O_WRONLY), stream.fileno())


def _interrupt(*_: object) -> NoReturn:
    raise KeyboardInterrupt
