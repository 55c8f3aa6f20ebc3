"""Writes manual pages and shell completion for `orv`, from the tables that its help comes from.

    command_pages.py FOLDER ZSH

FOLDER gets man/man1, bash-completion/completions and zsh/ZSH. Completion is left out when Python
has no shtab.
"""

from __future__ import annotations

import argparse
import gzip
import sys
from collections.abc import Iterable
from pathlib import Path
from typing import Any

from orv import __version__
from orv.command.commands import COMMANDS, EXIT_CODES, SUMMARY, Command
from orv.command.option import Option
from orv.command.parser import CommandParser, orv_parser


def main() -> None:
    """Write all pages."""
    folder, zsh = Path(sys.argv[1]), sys.argv[2]
    parser = orv_parser()
    _write(folder / "man/man1/orv.1.gz", _compressed(orv_page(parser)))
    for command in COMMANDS:
        page = command_page(command, parser.children[command.name])
        _write(folder / f"man/man1/orv-{command.name}.1.gz", _compressed(page))
    try:
        import shtab
    except ImportError:
        return
    _offer_paths(parser, {"file": shtab.FILE, "folder": shtab.DIR})
    for shell, place in (("bash", "bash-completion/completions/orv"),
                         ("zsh", f"zsh/{zsh}/_orv")):  # fmt: skip
        _write(folder / place, shtab.complete(parser, shell=shell).encode())


def orv_page(parser: argparse.ArgumentParser) -> str:
    """The manual page of the command itself."""
    commands = [
        line
        for command in COMMANDS
        for line in (".TP", rf"\fBorv\-{_roff(command.name)}\fR(1)", _roff(command.help))
    ]
    return _page(
        "orv",
        SUMMARY,
        [_usage(parser), ".SH DESCRIPTION", _roff(SUMMARY), ".SH COMMANDS", *commands],
        [f"orv-{command.name}" for command in COMMANDS],
    )


def command_page(command: Command, parser: argparse.ArgumentParser) -> str:
    """The manual page of one command."""
    lines = [_usage(parser), ".SH DESCRIPTION", _roff(command.description), ".SH OPTIONS"]
    group = ""
    for option in command.options:
        if option.group != group:
            group = option.group
            lines.append(f".SS {group.capitalize()}")
        lines += [".TP", _signature(option), _roff(option.full_help)]
    return _page(f"orv-{command.name}", command.help, lines, ["orv"])


def _page(name: str, summary: str, body: Iterable[str], others: Iterable[str]) -> str:
    lines = [
        f'.TH {_roff(name.upper())} 1 "" "orv {__version__}" "User Commands"',
        ".SH NAME",
        rf"{_roff(name)} \- {_roff(summary[:1].lower() + summary[1:].rstrip('.'))}",
        ".SH SYNOPSIS",
        *body,
        ".SH EXIT STATUS",
        _roff(EXIT_CODES),
        ".SH SEE ALSO",
        ",\n".join(f".BR {_roff(other)} (1)" for other in others),
    ]
    return "\n".join(lines) + "\n"


def _usage(parser: argparse.ArgumentParser) -> str:
    name, _, rest = parser.format_usage().removeprefix("usage: ").strip().partition(" [")
    return rf"\fB{_roff(name)}\fR {_roff('[' + rest)}"


def _signature(option: Option) -> str:
    if option.type is None:
        return rf"\fB\-\-{_roff(option.name)}\fR"
    metavar = rf"\fI{_roff(option.type.metavar)}\fR"
    return metavar if option.positional else rf"\fB\-\-{_roff(option.name)}\fR {metavar}"


def _roff(text: str) -> str:
    escaped = text.replace("\\", r"\e").replace("-", r"\-")
    return r"\&" + escaped if escaped[:1] in (".", "'") else escaped


def _offer_paths(parser: CommandParser, completions: dict[str, Any]) -> None:
    for command in COMMANDS:
        types = {option.attribute: option.type for option in command.options}
        for action in parser.children[command.name]._actions:
            kind = types.get(action.dest)
            if kind is not None and kind.completes:
                action.complete = completions[kind.completes]  # type: ignore[attr-defined]


def _compressed(text: str) -> bytes:
    return gzip.compress(text.encode(), mtime=0)


def _write(path: Path, data: bytes) -> None:
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(data)


if __name__ == "__main__":
    main()
