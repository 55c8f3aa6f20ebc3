"""Compiled templates that are kept from one run to the next."""

from __future__ import annotations

import marshal
import os
import sys
from collections.abc import Iterable
from contextlib import suppress
from functools import cache
from hashlib import blake2b
from importlib.util import MAGIC_NUMBER
from typing import Any

import jinja2
from jinja2 import BytecodeCache, Environment
from jinja2.bccache import Bucket
from jinja2.utils import _PassArg

from orv import _native
from orv.cache import Cache


class CompiledTemplates(BytecodeCache):
    """Keeps the code of templates. The key is everything that compiling reads.

    That is the source with its name and path, the delimiters, the names of filters and tests and
    what they are passed, the versions of Python and Jinja2, and the files of this package.
    Templates that are not files are compiled each time.
    """

    def __init__(self) -> None:
        self._cache = Cache("templates")
        self._added = False

    def get_bucket(
        self, environment: Environment, name: str, filename: str | None, source: str
    ) -> Bucket:
        """The place of a template's code; see jinja2.BytecodeCache."""
        if filename is None:
            return Bucket(environment, "", "")
        parts = [*_compiler(), *_language(environment), name, filename, source]
        digest = blake2b(digest_size=20)
        for part in parts:
            data = part.encode("utf-8", "surrogatepass")
            digest.update(len(data).to_bytes(8, "little") + data)
        bucket = Bucket(environment, digest.hexdigest(), "")
        self.load_bytecode(bucket)
        return bucket

    def load_bytecode(self, bucket: Bucket) -> None:
        """Find the code of a template."""
        data = self._cache.get(bucket.key)
        if data is not None:
            with suppress(EOFError, ValueError, TypeError):
                bucket.code = marshal.loads(data)

    def dump_bytecode(self, bucket: Bucket) -> None:
        """Keep the code of a template."""
        if not bucket.key:
            return
        self._cache.put(bucket.key, marshal.dumps(bucket.code))
        if not self._added:
            self._added = True
            self._cache.forget_unused()


@cache
def _compiler() -> tuple[str, ...]:
    """What a template is compiled by."""
    folders = os.walk(os.path.dirname(__file__))
    modules = [os.path.join(folder, name) for folder, _, names in folders for name in names]
    files = [*sorted(path for path in modules if path.endswith(".py")), _native.__file__]
    stats = [(file, os.stat(file)) for file in files]
    versions = (sys.implementation.cache_tag, MAGIC_NUMBER.hex(), jinja2.__version__)
    return (
        *map(str, versions),
        *(f"{file} {found.st_size} {found.st_mtime_ns}" for file, found in stats),
    )


def _language(environment: Environment) -> Iterable[str]:
    """What the code of a template depends on besides its source."""
    yield environment.block_start_string + " " + environment.block_end_string
    yield environment.variable_start_string + " " + environment.variable_end_string
    yield environment.comment_start_string + " " + environment.comment_end_string
    named: list[tuple[str, Any]] = [*environment.filters.items(), *environment.tests.items()]
    for name, function in named:
        yield f"{name} {_PassArg.from_obj(function)}"
