"""Host modules as Python packages.

A module of the host adds packages of classes; Python sees each package as a module, and each class
as a Python class, built from the host's own definitions:

>>> import orbel
>>> Varn = orbel.load("varn_filepackaging")
>>> repository = Varn.VarnFileRepository()

Values pass as follows; anything else, and an ``int`` that does not fit, is a ``TypeError``:

====================================  ======================================================
to the host                           from the host
====================================  ======================================================
``None``: missing value               no result, no object: ``None``
``str`` or ``bytes``: text            text: ``str`` (bytes that are no UTF-8 are surrogates
                                      as of the error handler ``surrogateescape``)
``bool``: logical                     logical: ``bool``
``int``: unsigned 32-bit integer      unsigned 32-bit integer: ``int``
``float``: double                     double: ``float``
``list`` or ``tuple``: cell array     cell array: ``list``
:class:`StringArray`: string array    string array: :class:`StringArray`
an object of a host class             an object of its actual class
..                                    object array: :class:`ObjectArray`
====================================  ======================================================

Every error of the host is an :class:`Error`. Objects refer to objects of the host, which may die
before them; using such an object is the error ``Orbel:InvalidHandle``. What a script made lives as
long as the script holds it, or anything that was obtained from it.
"""

from __future__ import annotations

from ._arrays import ObjectArray, StringArray
from ._error import Error
from ._native import Class, Method, Object, destroy, is_valid, set_message, wrap
from ._package import Package, load, package, unload
from ._version import __version__

__all__ = [
    "Class",
    "Error",
    "Method",
    "Object",
    "ObjectArray",
    "Package",
    "StringArray",
    "__version__",
    "destroy",
    "is_valid",
    "load",
    "package",
    "set_message",
    "unload",
    "wrap",
]
