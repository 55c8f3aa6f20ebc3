"""A template engine that packages generated C text into files, section by section."""

from orv._version import __version__

__all__ = ["__version__"]
