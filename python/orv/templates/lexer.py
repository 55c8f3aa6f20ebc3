"""Jinja2's lexer, which also tells where in its line a tag is written."""

from __future__ import annotations

from collections.abc import Iterator

from jinja2 import Environment, TemplateSyntaxError
from jinja2.lexer import Lexer, newline_re

# The tags that depend on where they are written.
_TAGS = frozenset(["indent", "place", "user"])


class TagName(str):
    """The name of a tag. `before` is what precedes the tag in its line."""

    before: str
    # Whether the tag takes all white space before it away.
    strips: bool


class TagEnd(str):
    """The end of a tag. `after` is what follows it in its line."""

    after: str


def _braces(number: str) -> str:
    braces = f"{{{{{number}}}}}"
    return f"the braces in {braces} would be lost; write {{% raw %}}{braces}{{% endraw %}}"


class PlacingLexer(Lexer):
    """Makes a TagName and a TagEnd of the first and last token of the tags that need them.

    Refuses a number alone between braces, as it was written for a compiler of C.

    White space that the settings for blocks drop is part of `before` and `after`.
    """

    def __init__(self, environment: Environment) -> None:
        super().__init__(environment)
        self._stripping = environment.block_start_string + "-"

    def tokeniter(
        self, source: str, name: str | None, filename: str | None = None, state: str | None = None
    ) -> Iterator[tuple[int, str, str]]:
        """The tokens of the source; see jinja2.lexer.Lexer."""
        text = "\n".join(newline_re.split(source)[::2])
        start = end = 0
        tag, placed = "", False
        opened, number = "", ""
        for line, kind, value in super().tokeniter(source, name, filename, state):
            if kind == "variable_end" and number and opened + value == "{{}}":
                raise TemplateSyntaxError(_braces(number), line, name, filename)
            number = value if kind == "integer" and opened else ""
            opened = value if kind == "variable_begin" else opened if number else ""
            # Tokens follow each other in the source, but for white space that is stripped.
            start = text.index(value, end)
            end = start + len(value)
            if kind in ("block_begin", "linestatement_begin"):
                tag, tag_start = value, start + len(value) - len(value.lstrip())
            elif kind == "name" and tag:
                placed = value in _TAGS
                if placed:
                    value = TagName(value)
                    value.before = text[text.rfind("\n", 0, tag_start) + 1 : tag_start]
                    value.strips = tag == self._stripping
                tag = ""
            elif kind in ("block_end", "linestatement_end") and placed:
                value = TagEnd(value)
                value.after = text[start + len(value.rstrip()) :].split("\n", 1)[0]
                placed = False
            yield line, kind, value
