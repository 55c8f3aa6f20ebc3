"""A formatter of the user's: a program that reads a file's text and prints it formatted."""

from __future__ import annotations

import hashlib
import os
import shlex
import shutil
import subprocess
from collections.abc import Iterable, Sequence
from concurrent.futures import ThreadPoolExecutor
from contextlib import suppress
from pathlib import Path

from orv import inputs
from orv.cache import Cache
from orv.errors import OutputError

# Files that formatters take their style from, looked for in a file's folder and all above.
_STYLE_FILES = (".clang-format", "_clang-format", ".clang-format-ignore", ".editorconfig")

_LONGEST_COMPLAINT = 2000


class Formatter:
    """Runs a command for each text, which it gets on standard input and prints on standard output.

    `{path}` in the command is replaced by the path of the file. Results are kept in the
    user's cache folder, by the text, the command, its program, the files that it names and the
    style files.
    """

    def __init__(self, command: str) -> None:
        try:
            self._words = shlex.split(command)
        except ValueError as error:
            raise ValueError(f"expected a command, got {command!r}: {error}") from error
        if not self._words:
            raise ValueError("expected a command, got an empty text")
        self._cache = Cache("format")
        self._digests: dict[str, bytes] = {}
        self._program = shutil.which(self._words[0])

    def format(self, texts: Sequence[tuple[str, bytes]]) -> list[bytes | OutputError]:
        """What becomes of each text, given with its path: several run at once."""
        if not texts:
            return []
        self._note_program()
        with ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
            results = list(pool.map(lambda entry: self._formatted(*entry), texts))
        self._cache.forget_unused()
        return results

    def style_files(self, paths: Iterable[str]) -> list[str]:
        """The files that the style of these paths comes from."""
        return sorted({found for path in paths for found in self._settings(path)})

    def _note_program(self) -> None:
        """Make the program an input of the run, and the places that are looked at before it."""
        word = self._words[0]
        for folder in [""] if os.path.dirname(word) else os.get_exec_path():
            path = os.path.join(folder, word)
            if path == self._program:
                inputs.current().used.add(path)
                return
            inputs.current().absent.add(path)

    def _formatted(self, path: str, text: bytes) -> bytes | OutputError:
        key = self._key(path, text)
        result = self._cache.get(key)
        if result is not None:
            return result
        try:
            result = self._run(path, text)
        except OutputError as error:
            return error
        self._cache.put(key, result)
        return result

    def _run(self, path: str, text: bytes) -> bytes:
        words = [word.replace("{path}", path) for word in self._words]
        try:
            done = subprocess.run(words, input=text, capture_output=True, check=False)
        except OSError as error:
            raise OutputError(
                f"the formatter {words[0]} cannot be run: {error.strerror}"
            ) from error
        if done.returncode != 0:
            said = done.stderr.decode(errors="replace").strip()[:_LONGEST_COMPLAINT]
            raise OutputError(
                f"the formatter {words[0]} ended with {done.returncode}" + (said and f": {said}")
            )
        if text and not done.stdout:
            raise OutputError(
                f"the formatter {words[0]} printed nothing; expected the formatted text on its"
                " standard output"
            )
        return done.stdout

    def _key(self, path: str, text: bytes) -> str:
        parts = [text, path.encode(errors="surrogateescape"), repr(self._words).encode()]
        if self._program is not None:
            found = os.stat(self._program)
            parts.append(f"{self._program} {found.st_size} {found.st_mtime_ns}".encode())
        for name in self._settings(path):
            parts += [name.encode(errors="surrogateescape"), self._digest(name)]
        digest = hashlib.blake2b(digest_size=20)
        for part in parts:
            digest.update(len(part).to_bytes(8, "little") + part)
        return digest.hexdigest()

    def _settings(self, path: str) -> list[str]:
        """The style files above a path, and the files that the command names."""
        named = [word.split("=")[-1].removeprefix("file:") for word in self._words[1:]]
        above = [str(folder / name) for folder in Path(path).parents for name in _STYLE_FILES]
        return [name for name in [*named, *above] if self._digest(name)]

    def _digest(self, path: str) -> bytes:
        """The hash of a file; empty when there is none."""
        if path not in self._digests:
            self._digests[path] = b""
            with suppress(OSError, ValueError):
                if os.path.isfile(path):
                    self._digests[path] = hashlib.blake2b(inputs.load(path)).digest()
        # Several runs may have this formatter in common: each depends on the file.
        found = inputs.current()
        (found.used if self._digests[path] else found.absent).add(path)
        return self._digests[path]
