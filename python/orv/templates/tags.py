"""The grammar of the packaging tags: how they are parsed, and what they are compiled to.

A tag becomes a call of an operation, `printer.NAME` or `statements.NAME`: an
nodes.EnvironmentAttribute, which no template can write. A tag with a body becomes a CallBlock of
such a call. See TemplateCode for the code that is made of them.
"""

from __future__ import annotations

import re
from collections.abc import Callable

from jinja2 import nodes
from jinja2.ext import Extension
from jinja2.lexer import Token
from jinja2.parser import Parser

from orv import _native
from orv.delimiters import tag as as_tag
from orv.errors import did_you_mean
from orv.positions import Position, template_label
from orv.templates.lexer import TagEnd, TagName
from orv.templates.parser import complain


class PackagingTags(Extension):
    """The tags that put text into the sections of files."""

    tags = {
        "custom", "file", "fill", "function", "in_use", "include_added", "include_required",
        "include_utility", "indent", "model", "place", "section", "user",
    }  # fmt: skip

    def parse(self, parser: Parser) -> nodes.Node | list[nodes.Node]:
        """Parse the tag that the parser is at."""
        token = next(parser.stream)
        if token.value.startswith("include_"):
            return self._parse_include(parser, token)
        parse: Callable[[Parser, Token], nodes.Node | list[nodes.Node]]
        parse = getattr(self, f"_parse_{token.value}")
        return parse(parser, token)

    def _parse_section(self, parser: Parser, tag: Token) -> list[nodes.Node]:
        name = parser.parse_expression()
        section = _checked_section(parser, name)
        body = _with_body(parser, tag, [section, *_parse_of(parser)])
        return [*_require_quotes(tag, name), body]

    def _parse_function(self, parser: Parser, tag: Token) -> nodes.Node:
        name = parser.parse_expression()
        target = _parse_of(parser) or [nodes.Const(None, lineno=tag.lineno)]
        position = Position(template_label(parser.name, parser.filename), tag.lineno)
        written = nodes.Const(str(position), lineno=tag.lineno)
        return _with_body(parser, tag, [name, *target, written])

    def _parse_fill(self, parser: Parser, tag: Token) -> nodes.Node:
        return _with_body(parser, tag, [parser.parse_expression(), *_parse_of(parser)])

    def _parse_custom(self, parser: Parser, tag: Token) -> nodes.Node:
        name = parser.parse_expression()
        parser.stream.expect("name:on")
        builtin = parser.parse_expression()
        return _statement(tag, "statements.custom", [name, builtin, *_parse_of(parser)])

    def _parse_in_use(self, parser: Parser, tag: Token) -> nodes.Node:
        name = parser.parse_expression()
        return _statement(tag, "statements.in_use", [name, *_parse_of(parser)])

    def _parse_place(self, parser: Parser, tag: Token) -> nodes.Node:
        name = parser.parse_expression()
        target = _parse_of(parser) or [nodes.Const(None, lineno=tag.lineno)]
        given = _parse_indentation(parser, tag, ["indent", "directives"])
        written = nodes.Const(_blanks_of_line(parser, tag), lineno=tag.lineno)
        indentation = [given.get("indent", written), given["directives"]]
        return _statement(tag, "statements.place", [name, *target, *indentation])

    def _parse_indent(self, parser: Parser, tag: Token) -> nodes.Node:
        # By the column of the tag; tabs stay tabs.
        before = re.sub(r"[^\t]", " ", getattr(tag.value, "before", ""))
        indentation: nodes.Expr = nodes.Const(before, lineno=tag.lineno)
        is_option = parser.stream.current.test("name") and parser.stream.look().test("assign")
        if not parser.stream.current.test("block_end") and not is_option:
            indentation = parser.parse_expression()
        given = _parse_indentation(parser, tag, ["directives"])
        return _with_body(parser, tag, [indentation, given["directives"]], "statements.indent")

    def _parse_user(self, parser: Parser, tag: Token) -> list[nodes.Node]:
        name = parser.parse_expression()
        blanks = nodes.Const(_blanks_before(tag), lineno=tag.lineno)
        body = _with_body(parser, tag, [name, blanks], "statements.user")
        return [*_require_quotes(tag, name), body]

    def _parse_include(self, parser: Parser, tag: Token) -> nodes.Node:
        headers = [parser.parse_expression()]
        while parser.stream.skip_if("comma"):
            headers.append(parser.parse_expression())
        listed = nodes.List(headers, lineno=tag.lineno)
        return _statement(tag, f"statements.{tag.value}", [listed, *_parse_of(parser)])

    def _parse_model(self, parser: Parser, tag: Token) -> nodes.Node:
        name = parser.parse_expression()
        return _statement(tag, "statements.model", [name, _parse_assignments(parser, tag)])

    def _parse_file(self, parser: Parser, tag: Token) -> list[nodes.Node]:
        name: nodes.Expr = nodes.Const(None, lineno=tag.lineno)
        if not parser.stream.current.test("name:as"):
            name = parser.parse_expression()
        kind, arguments = _parse_kind(parser, tag)
        attributes = _parse_assignments(parser, tag)
        body = parser.parse_statements(("name:endfile",), drop_needle=True)
        begin = _statement(tag, "statements.file", [name, kind, arguments, attributes])
        return [*_require_quotes(tag, name), begin, *body, _statement(tag, "printer.close", [])]


def _call(tag: Token, operation: str, arguments: list[nodes.Expr]) -> nodes.Call:
    name = nodes.EnvironmentAttribute(operation, lineno=tag.lineno)
    return nodes.Call(name, arguments, [], None, None, lineno=tag.lineno)


def _statement(tag: Token, operation: str, arguments: list[nodes.Expr]) -> nodes.Node:
    return nodes.ExprStmt(_call(tag, operation, arguments), lineno=tag.lineno)


def _with_body(
    parser: Parser, tag: Token, arguments: list[nodes.Expr], operation: str = ""
) -> nodes.Node:
    body = parser.parse_statements((f"name:end{tag.value}",), drop_needle=True)
    begin = _call(tag, operation or f"printer.{tag.value}", arguments)
    return nodes.CallBlock(begin, [], [], body, lineno=tag.lineno)


def _parse_of(parser: Parser) -> list[nodes.Expr]:
    return [parser.parse_expression()] if parser.stream.skip_if("name:of") else []


def _parse_kind(parser: Parser, tag: Token) -> tuple[nodes.Expr, nodes.Expr]:
    arguments = nodes.List([], lineno=tag.lineno)
    if not parser.stream.skip_if("name:as"):
        return nodes.Const(None, lineno=tag.lineno), arguments
    kind = parser.stream.expect("name")
    kinds = _native.FILE_KINDS
    if kind.value not in kinds:
        hint = did_you_mean(kind.value, kinds) or "; the kinds are " + ", ".join(kinds)
        complain(parser, f'there is no kind of file "{kind.value}"{hint}', kind.lineno)
    if parser.stream.skip_if("lparen"):
        while not parser.stream.skip_if("rparen"):
            if arguments.items:
                parser.stream.expect("comma")
            arguments.items.append(parser.parse_expression())
    return nodes.Const(kind.value, lineno=kind.lineno), arguments


def _parse_assignments(parser: Parser, tag: Token) -> nodes.Dict:
    pairs: list[nodes.Pair] = []
    while not parser.stream.current.test("block_end"):
        parser.stream.skip_if("comma")
        name = parser.stream.expect("name")
        parser.stream.expect("assign")
        key = nodes.Const(name.value, lineno=name.lineno)
        if any(pair.key == key for pair in pairs):
            complain(parser, f"{name.value} is given twice", name.lineno)
        pairs.append(nodes.Pair(key, parser.parse_expression(), lineno=name.lineno))
    return nodes.Dict(pairs, lineno=tag.lineno)


def _parse_indentation(parser: Parser, tag: Token, names: list[str]) -> dict[str, nodes.Expr]:
    """The options of a tag that indents, with "directives" in any case."""
    given: dict[str, nodes.Expr] = {"directives": nodes.Const(True, lineno=tag.lineno)}
    for pair in _parse_assignments(parser, tag).items:
        name = pair.key.as_const()
        if name not in names:
            hint = did_you_mean(name, names) or "; it has " + " and ".join(names)
            complain(parser, f'{tag.value} has no option "{name}"{hint}', pair.lineno)
        given[name] = pair.value
    return given


def _blanks_of_line(parser: Parser, tag: Token) -> str:
    """The blanks before a tag that is alone on its line, unless it takes them away."""
    end = parser.stream.current.value
    is_alone = isinstance(end, TagEnd) and not end.after.strip()
    return _blanks_before(tag) if is_alone else ""


def _blanks_before(tag: Token) -> str:
    """The blanks before a tag that begins its line, unless it takes them away."""
    name = tag.value
    if not isinstance(name, TagName) or name.strips or name.before.strip(" \t"):
        return ""
    return name.before


def _checked_section(parser: Parser, name: nodes.Expr) -> nodes.Expr:
    """A name that is written as it is becomes the number of its kind, any other is looked up."""
    if not isinstance(name, nodes.Const):
        return name
    names = _native.SECTION_NAMES
    if name.value not in names:
        hint = did_you_mean(str(name.value), names) or (
            f"; the sections are {', '.join(names)};"
            f" a custom section is filled with {as_tag('fill')}"
        )
        complain(parser, f'there is no section "{name.value}"{hint}', name.lineno)
        return nodes.Const(0, lineno=name.lineno)
    return nodes.Const(names.index(name.value), lineno=name.lineno)


def _require_quotes(tag: Token, name: nodes.Expr) -> list[nodes.Node]:
    """The statement that explains an undefined name which was meant as it is written."""
    written = _as_written(name)
    if written is None:
        return []
    first: nodes.Node = name
    while not isinstance(first, nodes.Name):
        first = next(first.iter_child_nodes())
    defined = nodes.Test(first, "defined", [], [], None, None, lineno=tag.lineno)
    arguments = [defined, *(nodes.Const(text, lineno=tag.lineno) for text in (tag.value, written))]
    return [_statement(tag, "statements.require_quotes", arguments)]


def _as_written(name: nodes.Node) -> str | None:
    """The text of an expression that looks like a name or a path; None for any other."""
    if isinstance(name, nodes.Name):
        return name.name
    if isinstance(name, nodes.Getattr):
        owner = _as_written(name.node)
        return None if owner is None else f"{owner}.{name.attr}"
    if isinstance(name, (nodes.Div, nodes.Sub)):
        sides = [_as_written(side) for side in (name.left, name.right)]
        return None if None in sides else f"{sides[0]}{name.operator}{sides[1]}"
    return None
