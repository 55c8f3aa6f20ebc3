"""How names of the host are written in Python."""

import re
from collections.abc import Sequence
from keyword import iskeyword


def is_special(name: str) -> bool:
    """Whether Python gives names like this a meaning of its own."""
    return re.fullmatch(r"__.*[^_]__", name, re.DOTALL) is not None


def python_names(host_names: Sequence[str]) -> list[str]:
    """The names in Python of classes of a package or members of a class.

    A name that Python keeps for itself gets underscores appended until nothing else has it:
    ``import`` is ``import_``.
    """
    taken = set(host_names)
    names = []
    for host_name in host_names:
        name = host_name
        while iskeyword(name) or is_special(name) or (name != host_name and name in taken):
            name += "_"
        taken.add(name)
        names.append(name)
    return names
