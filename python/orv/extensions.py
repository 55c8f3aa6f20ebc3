"""Extensions: Python files that give templates filters, tests, functions and a prepared model.

    import orv

    @orv.filter
    def member(name: str) -> str:
        return "m_" + name

    @orv.prepare
    def add_sizes(model: orv.Model) -> orv.Model:
        model["size"] = sum(field["size"] for field in model["fields"])
        return model

`orv generate --extend FILE.py` loads the file. An extension is trusted code: it runs with the
rights of the user, as the program itself does. Outside of `orv` the decorators do nothing, so that
an extension can be imported and tested like any module.
"""

from __future__ import annotations

import os
import sys
from collections.abc import Callable, Iterable, Iterator
from contextlib import contextmanager
from contextvars import ContextVar
from types import ModuleType
from typing import Any, TypeVar, overload

from orv import inputs
from orv.dependencies import depends
from orv.errors import OrvError, ScriptError

Model = dict[str, Any]

Function = TypeVar("Function", bound=Callable[..., Any])
Preparation = TypeVar("Preparation", bound=Callable[[Model], Model])


class Extensions:
    """What the extensions of one run declare, by name, and their preparations in order."""

    def __init__(self) -> None:
        self.filters: dict[str, Callable[..., Any]] = {}
        self.tests: dict[str, Callable[..., Any]] = {}
        self.functions: dict[str, Callable[..., Any]] = {}
        self._preparations: list[Callable[[Model], Model]] = []
        self._count = 0
        # All functions that the extensions declare.
        self._declared: list[Callable[..., Any]] = []

    def load(self, path: str) -> None:
        """Run the file at `path` as a module of its own. Raises ScriptError with the line."""
        from orv.pythonfiles import failure, surroundings_kept

        self._count += 1
        stem = os.path.splitext(os.path.basename(path))[0]
        module = ModuleType(f"orv_extension_{self._count}_{stem}")
        module.__file__ = path
        sys.modules[module.__name__] = module
        with surroundings_kept(path):
            token = _loading.set(self)
            try:
                code = compile(inputs.load(path), path, "exec", dont_inherit=True)
                depends(path)
                known = len(self._declared)
                with vouched_for() as vouched:
                    exec(code, module.__dict__)
                declared = {id(function) for function in self._declared[known:]}
                if not declared or declared - {id(function) for function in vouched}:
                    inputs.current().is_incomplete = True
            except SystemExit as end:
                raise ScriptError(f"{path}: the extension ended with {end.code!r}") from end
            except Exception as error:
                raise ScriptError(failure(path, error)) from error
            finally:
                _loading.reset(token)

    def declare(
        self, kind: str, declared: dict[str, Callable[..., Any]], name: str,
        function: Callable[..., Any],
    ) -> None:  # fmt: skip
        """Note a function under a name that no other of its kind has."""
        if not name.isidentifier():
            raise OrvError(f'a {kind} is called by a name; "{name}" is none')
        if name in declared:
            raise OrvError(f'the {kind} "{name}" is declared at {place(declared[name])} already')
        declared[name] = function
        self._declared.append(function)

    def declare_preparation(self, function: Callable[[Model], Model]) -> None:
        """Note a function that prepares the model."""
        self._preparations.append(function)
        self._declared.append(function)

    def prepare(self, model: Model) -> Model:
        """The model after all preparations. Raises ScriptError with the line of the extension."""
        for function in self._preparations:
            try:
                prepared = function(model)
            except Exception as error:
                from orv.pythonfiles import failure

                raise ScriptError(failure(place(function), error)) from error
            if not isinstance(prepared, dict) or not all(isinstance(k, str) for k in prepared):
                raise ScriptError(
                    f"{place(function)}: {function.__name__} gives {type(prepared).__name__};"
                    " a preparation returns the model, a dict with names as keys"
                )
            model = prepared
        return model


def load_extensions(paths: Iterable[str]) -> Extensions:
    """What the files declare, loaded in order. Raises ScriptError with the line."""
    extensions = Extensions()
    for path in paths:
        extensions.load(path)
    return extensions


_loading: ContextVar[Extensions | None] = ContextVar("loading", default=None)
_vouched: ContextVar[list[Callable[..., Any]]] = ContextVar("vouched")


@contextmanager
def vouched_for() -> Iterator[list[Callable[..., Any]]]:
    """The functions that are declared to be pure from now on."""
    functions: list[Callable[..., Any]] = []
    token = _vouched.set(functions)
    try:
        yield functions
    finally:
        _vouched.reset(token)


@overload
def filter(function: Function, /) -> Function:
    ...


@overload
def filter(name: str, /) -> Callable[[Function], Function]:
    ...


def filter(function: Any, /) -> Any:
    """Declare a filter: `{{ VALUE | NAME(ARGUMENTS) }}` calls it with the value first.

    NAME is that of the function, or the one that the decorator is given.
    """
    return _declaration("filter", lambda extensions: extensions.filters, function)


@overload
def test(function: Function, /) -> Function:
    ...


@overload
def test(name: str, /) -> Callable[[Function], Function]:
    ...


def test(function: Any, /) -> Any:
    """Declare a test: `{% if VALUE is NAME(ARGUMENTS) %}`; named as filters are."""
    return _declaration("test", lambda extensions: extensions.tests, function)


@overload
def function(function: Function, /) -> Function:
    ...


@overload
def function(name: str, /) -> Callable[[Function], Function]:
    ...


def function(function: Any, /) -> Any:
    """Declare a function: `{{ NAME(ARGUMENTS) }}`; named as filters are."""
    return _declaration("function", lambda extensions: extensions.functions, function)


def prepare(function: Preparation, /) -> Preparation:
    """Declare a preparation: it takes the model and returns the one to use, which may be the same.

    Preparations run before the templates, in the order of their declaration.
    """
    extensions = _loading.get()
    if extensions is not None:
        extensions.declare_preparation(function)
    return function


def pure(function: Function, /) -> Function:
    """Declare that a function depends on its arguments, and on nothing else that may change.

    Modules that it imports, files that it gives to `depends` and the environment may be read, too.
    It changes nothing outside of the run and prints nothing. A run is repeated only when something
    has changed if all functions that its extensions declare are pure, and each of its scripts has
    one: the function that does its work. What the file does when it is loaded is vouched for, too.
    """
    _vouched.get([]).append(function)
    return function


def place(function: Callable[..., Any]) -> str:
    """FILE:LINE of the function, or its name when it was not written in Python."""
    from orv.pythonfiles import shown

    code = getattr(function, "__code__", None)
    return f"{shown(code.co_filename)}:{code.co_firstlineno}" if code else repr(function)


def _declaration(
    kind: str, table: Callable[[Extensions], dict[str, Callable[..., Any]]], given: Any
) -> Any:
    def declare(function: Function, name: str | None = None) -> Function:
        extensions = _loading.get()
        if extensions is not None:
            extensions.declare(kind, table(extensions), name or function.__name__, function)
        return function

    if isinstance(given, str):
        return lambda function: declare(function, given)
    return declare(given)
