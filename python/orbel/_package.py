"""Packages of the host, as Python sees them."""

from __future__ import annotations

import atexit
import os
from collections.abc import Callable
from types import ModuleType
from typing import Any, NoReturn

from . import _native
from ._error import Error
from ._names import is_special, python_names


class Package(ModuleType):
    """A package of host classes, which are its attributes.

    Each class is defined when it is first asked for. A package comes from :func:`load` or
    :func:`package`, and cannot be changed.
    """

    __module__ = "orbel"

    def __init__(self, name: str, module: _native.Module | None = None) -> None:
        super().__init__(name, _native.package_description(name) or "Package of host classes")
        if module is not None:
            self.__dict__.update(__version__=module.version, __date__=module.build_date)
            self.__dict__.update(module.functions if module.package_names[0] == name else {})

    def _host_names(self) -> dict[str, str]:
        host_names = _native.class_names(self.__name__)
        return dict(zip(python_names(host_names), host_names))

    def __getattr__(self, name: str) -> Any:
        if name == "__all__":
            return list(self._host_names())
        host_name = None if is_special(name) else self._host_names().get(name)
        if host_name is None:
            raise AttributeError(f"the package {self.__name__} has no class {name!r}")
        found = _native.find_class(self.__name__, host_name)
        self.__dict__[name] = found
        return found

    def __setattr__(self, name: str, value: object) -> NoReturn:
        raise AttributeError(f"{name!r} cannot be set: a package of the host cannot be changed")

    def __delattr__(self, name: str) -> NoReturn:
        raise AttributeError(f"{name!r} cannot be deleted: a package of the host cannot be changed")

    def __dir__(self) -> list[str]:
        try:
            return sorted({*self.__dict__, *self._host_names()})
        except Error:  # the package was unloaded
            return sorted(self.__dict__)

    def __repr__(self) -> str:
        return f"<package {self.__name__}>"

    def __reduce__(self) -> tuple[Callable[[str], Package], tuple[str]]:
        return package, (self.__name__,)


# A module is closed with its last owner and cannot be started again: it is kept for the process.
_modules: dict[str, _native.Module] = {}
_packages: dict[str, Package] = {}
# Those too whose initialisation added nothing, perhaps because the program had started them itself.
_without_package: list[_native.Module] = []


def package(name: str) -> Package:
    """The package ``name`` of the host, as :func:`load` returns it.

    Raises :class:`Error` ``Orbel:UnknownPackage`` when there is none, or when it was unloaded.
    """
    _native.package_description(name)
    if name not in _packages:
        _packages[name] = Package(name, _modules.get(name))
    return _packages[name]


def load(name: str | os.PathLike[str]) -> Package:
    """Load a module of the host and return its package; of several, the first that it added.

    ``name`` is that of the module, or the path of its file (anything with a ``/``). The free
    functions of the module are attributes of the package, beside the classes. Loading a module
    again returns the same package.

    Raises :class:`Error` when there is no such module (``Orbel:ModuleNotLoaded``), when the file is
    none (``Orbel:ModuleIncomplete``) and when it was unloaded before (``Orbel:ModuleSpent``), and
    :class:`ImportError` when the module adds no package.
    """
    module = _native.load(os.fspath(name))
    names = module.package_names
    if not names:
        _without_package.append(module)
        raise ImportError(f"the module {module.name!r} adds no package", name=module.name)
    _modules.update(dict.fromkeys(names, module))
    return package(names[0])


def unload(package: Package) -> None:
    """Terminate the module that ``package`` comes from; it cannot be loaded again.

    Its packages are no longer found and no objects of their classes are made. Objects that exist
    stay usable. Does nothing for a package that is not of a module, or was unloaded before. The
    module's free functions must not be called any more.

    Raises :class:`TypeError` when ``package`` is no package of the host.
    """
    if not isinstance(package, Package):
        raise TypeError(f"orbel.unload needs a package of the host, not {type(package).__name__}")
    module = _modules.get(package.__name__)
    if module is not None:
        module.close()


@atexit.register
def _close_modules() -> None:
    for module in _modules.values():
        module.close()
