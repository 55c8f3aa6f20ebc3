"""Puts a banner on every file that is about to be written, and lists the functions of each.

For `orv generate --script`, which gives the repository as `repo`.
"""

from __future__ import annotations

import textwrap
from typing import Any

repo: Any


def functions_of(file: Any) -> list[str]:
    """The names of the functions in a file; none where it cannot have any."""
    if not file.hasSection("FUNCTIONS_SECTION"):
        return []
    section = file.getFileSection("FUNCTIONS_SECTION")
    return [section.getFunctionName(i) for i in range(1, section.getNumberOfFunctions() + 1)]


def banner(name: str, functions: list[str]) -> str:
    """A comment that says what the file is and names its functions."""
    lines = [f"{name}: made from the Khronos registry. Do not edit; make it again."]
    if functions:
        lines += ["", "Functions:"]
        lines += textwrap.wrap(", ".join(functions), 90)
    return "/*\n" + "".join(f" * {line}".rstrip() + "\n" for line in lines) + " */\n"


for file in repo.FileList:
    functions = functions_of(file)
    if functions:
        print(f"{file.Name} has {len(functions)} functions")
    text = banner(file.Name, functions)
    if file.hasSection("BANNER_SECTION"):
        file.getFileSection("BANNER_SECTION").addContent(text + "\n")
    else:
        # A module's files have no banner of their own; their documentation comes first.
        file.getFileSection("DOCUMENTATION_SECTION").addContent(text)
