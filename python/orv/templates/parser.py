"""Parsing templates, with messages that lead to the tag that is meant, and all mistakes at once."""

from __future__ import annotations

from collections.abc import Iterator
from typing import Any, NoReturn

from jinja2 import TemplateSyntaxError, nodes
from jinja2.lexer import Token
from jinja2.parser import Parser

from orv.errors import did_you_mean
from orv.files.table import attribute_mistake
from orv.templates.sandbox.depth import TOO_DEEP, TOO_LARGE, too_deep

_TAGS = (
    "block", "call", "extends", "filter", "for", "from", "if", "import", "include", "macro",
    "print", "set", "with",
)  # fmt: skip


class TemplateMistakes(TemplateSyntaxError):
    """Everything that is wrong in a template, by line, and its tree if it can be parsed."""

    def __init__(self, mistakes: list[TemplateSyntaxError], tree: nodes.Template | None) -> None:
        first = mistakes[0]
        super().__init__(str(first.message), first.lineno, first.name, first.filename)
        self.mistakes = mistakes
        self.tree = tree


class TemplateParser(Parser):
    """A parser that knows where the open tags are, and goes on after a wrong name."""

    def __init__(self, *arguments: Any) -> None:
        super().__init__(*arguments)
        self._opened: list[Token] = []
        self.mistakes: list[TemplateSyntaxError] = []

    def parse(self) -> nodes.Template:
        """The tree of the template. Raises TemplateMistakes."""
        tree: nodes.Template | None = None
        try:
            tree = self._bounded(super().parse())
        except TemplateSyntaxError as error:
            self.mistakes.append(error)
        except RecursionError:
            self.complain(TOO_DEEP, self.stream.current.lineno)
        except ValueError:
            # Python refuses to read a number of so many digits.
            self.complain(TOO_LARGE, self.stream.current.lineno)
        if tree is None or self.mistakes:
            found = sorted(self.mistakes, key=lambda mistake: mistake.lineno)
            raise TemplateMistakes(found, tree)
        return tree

    def complain(self, message: str, line: int) -> None:
        """Note a mistake that does not keep the rest of the template from being read."""
        self.mistakes.append(TemplateSyntaxError(message, line, self.name, self.filename))

    def parse_statement(self) -> nodes.Node | list[nodes.Node]:
        """Parse a tag and what belongs to it."""
        self._opened.append(self.stream.current)
        statement = super().parse_statement()
        self._opened.pop()
        return statement

    def fail_unknown_tag(self, name: str, lineno: int | None = None) -> NoReturn:
        """Fail at a tag that begins nothing, or ends what is not open."""
        # The unknown tag itself is noted as open.
        opened = self._opened[-2] if len(self._opened) > 1 else None
        known = [*_TAGS, *self.extensions, *self._ends()]
        if name.startswith("end") and name[3:] in known and opened is not None:
            self.fail(
                f"{self._tag(name)} does not end {self._tag(opened.value)} of line {opened.lineno}:"
                f" expected {self._expected()}",
                lineno,
            )
        if name in ("elif", "else") or (name.startswith("end") and name[3:] in known):
            self.fail(f"{self._tag(name)} ends no open tag", lineno)
        self.fail(f'there is no tag "{name}"{did_you_mean(name, known)}', lineno)

    def fail_eof(
        self, end_tokens: tuple[str, ...] | None = None, lineno: int | None = None
    ) -> NoReturn:
        """Fail at the innermost tag that the end of the template leaves open."""
        if end_tokens is not None:
            self._end_token_stack.append(end_tokens)
        opened = self._opened[-1]
        self.fail(
            f"{self._tag(opened.value)} is never ended: expected {self._expected()}", opened.lineno
        )

    def _ends(self) -> Iterator[str]:
        for ends in self._end_token_stack:
            yield from (end.partition(":")[2] for end in ends)

    def _expected(self) -> str:
        ends = [end.partition(":")[2] for end in self._end_token_stack[-1]]
        closing = [end for end in ends if end.startswith("end")]
        return " or ".join(self._tag(end) for end in closing or ends)

    def _tag(self, name: str) -> str:
        environment = self.environment
        return f"{environment.block_start_string} {name} {environment.block_end_string}"

    def _bounded(self, tree: nodes.Template) -> nodes.Template | None:
        """The tree, with its names checked; None when it is too deep to look at any further."""
        mistakes = list(too_deep(tree))
        for message, line in mistakes:
            self.complain(message, line)
        if mistakes:
            return None
        self._check_names(tree)
        return tree

    def _check_names(self, tree: nodes.Template) -> None:
        """Complain about filters, tests and attributes of files that do not exist.

        A name that the template itself asks for, as in `"x" is filter`, is left to the run.
        """
        found = list(tree.find_all((nodes.Filter, nodes.Test, nodes.Call)))
        asked = {
            node.node.value
            for node in found
            if isinstance(node, nodes.Test) and isinstance(node.node, nodes.Const)
        }
        for node in found:
            if isinstance(node, nodes.Call):
                self._check_attributes(node)
            elif isinstance(node, (nodes.Filter, nodes.Test)) and node.name not in asked:
                self._check_name(node)

    def _check_name(self, node: nodes.Filter | nodes.Test) -> None:
        kind = "filter" if isinstance(node, nodes.Filter) else "test"
        known = self.environment.filters if kind == "filter" else self.environment.tests
        if node.name not in known:
            self.complain(unknown_name(self.environment, kind, node.name), node.lineno)

    def _check_attributes(self, call: nodes.Call) -> None:
        operation = call.node
        if (
            isinstance(operation, nodes.EnvironmentAttribute)
            and operation.name == "statements.file"
        ):
            attributes = call.args[3]
            assert isinstance(attributes, nodes.Dict)
            for pair in attributes.items:
                assert isinstance(pair.key, nodes.Const)
                mistake = attribute_mistake(pair.key.value)
                if mistake is not None:
                    self.complain(mistake, pair.lineno)


def complain(parser: Parser, message: str, line: int) -> None:
    """Note a mistake in the template that the parser reads."""
    assert isinstance(parser, TemplateParser)
    parser.complain(message, line)


def unknown_name(environment: Any, kind: str, name: str) -> str:
    """The message about a filter or test that there is not."""
    known = environment.filters if kind == "filter" else environment.tests
    return f'there is no {kind} "{name}"{did_you_mean(name, sorted(known))}'
