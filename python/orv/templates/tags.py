"""The grammar of the packaging tags: how they are parsed, and what they are compiled to.

A tag becomes a filter on its body or its first argument, the cheapest call that a compiled template
makes. The names of these filters hold a space, so that no template can write them. Those that are
not given a body take the context, which keeps the compiler from calling them itself.
"""

from __future__ import annotations

from collections.abc import Callable

from jinja2 import nodes
from jinja2.ext import Extension
from jinja2.lexer import Token
from jinja2.parser import Parser

from orv import _native
from orv.errors import did_you_mean

_KINDS = (
    "generic", "data_types", "model", "model_header", "model_types", "module_header",
    "module_source", "packaging",
)  # fmt: skip

# The statements that may print whatever others define.
_PRINTING = (nodes.Block, nodes.CallBlock, nodes.Include)


class PackagingTags(Extension):
    """The tags that put text into the sections of files."""

    tags = {
        "custom", "file", "fill", "function", "in_use", "include_added", "include_required",
        "include_utility", "model", "place", "section",
    }  # fmt: skip

    def parse(self, parser: Parser) -> nodes.Node | list[nodes.Node]:
        """Parse the tag that the parser stands at."""
        token = next(parser.stream)
        if token.value.startswith("include_"):
            return self._parse_include(parser, token)
        parse: Callable[[Parser, Token], nodes.Node | list[nodes.Node]]
        parse = getattr(self, f"_parse_{token.value}")
        return parse(parser, token)

    def _parse_section(self, parser: Parser, tag: Token) -> nodes.Node:
        name = parser.parse_expression()
        _check_section_name(parser, name)
        return _body_filter(parser, tag, [name, *_parse_of(parser)])

    def _parse_function(self, parser: Parser, tag: Token) -> nodes.Node:
        return _body_filter(parser, tag, [parser.parse_expression(), *_parse_of(parser)])

    def _parse_fill(self, parser: Parser, tag: Token) -> nodes.Node:
        return _body_filter(parser, tag, [parser.parse_expression(), *_parse_of(parser)])

    def _parse_custom(self, parser: Parser, tag: Token) -> nodes.Node:
        name = parser.parse_expression()
        parser.stream.expect("name:on")
        builtin = parser.parse_expression()
        return _statement(tag, name, [builtin, *_parse_of(parser)])

    def _parse_in_use(self, parser: Parser, tag: Token) -> nodes.Node:
        return _statement(tag, parser.parse_expression(), _parse_of(parser))

    def _parse_place(self, parser: Parser, tag: Token) -> nodes.Node:
        mark = _call(tag, parser.parse_expression(), _parse_of(parser))
        return nodes.Output([mark], lineno=tag.lineno)

    def _parse_include(self, parser: Parser, tag: Token) -> nodes.Node:
        headers = [parser.parse_expression()]
        while parser.stream.skip_if("comma"):
            headers.append(parser.parse_expression())
        return _statement(tag, nodes.List(headers, lineno=tag.lineno), _parse_of(parser))

    def _parse_model(self, parser: Parser, tag: Token) -> nodes.Node:
        return _statement(tag, parser.parse_expression(), [_parse_assignments(parser, tag)])

    def _parse_file(self, parser: Parser, tag: Token) -> list[nodes.Node]:
        name: nodes.Expr = nodes.Const(None, lineno=tag.lineno)
        if not parser.stream.current.test("name:as"):
            name = parser.parse_expression()
        kind, arguments = _parse_kind(parser, tag)
        attributes = _parse_assignments(parser, tag)
        body = parser.parse_statements(("name:endfile",), drop_needle=True)
        _guard(parser, body)
        end = nodes.ExprStmt(
            _call(tag, nodes.Const(None, lineno=tag.lineno), [], "endfile"), lineno=tag.lineno
        )
        return [_statement(tag, name, [kind, arguments, attributes]), *body, end]


def _call(
    tag: Token, value: nodes.Expr, arguments: list[nodes.Expr], name: str | None = None
) -> nodes.Filter:
    return nodes.Filter(
        value, f"orv {name or tag.value}", arguments, [], None, None, lineno=tag.lineno
    )


def _statement(tag: Token, value: nodes.Expr, arguments: list[nodes.Expr]) -> nodes.Node:
    return nodes.ExprStmt(_call(tag, value, arguments), lineno=tag.lineno)


def _body_filter(parser: Parser, tag: Token, arguments: list[nodes.Expr]) -> nodes.Node:
    name = f"orv {tag.value}" + (" of" if len(arguments) > 1 else "")
    body = parser.parse_statements((f"name:end{tag.value}",), drop_needle=True)
    call = nodes.Filter(None, name, arguments, [], None, None, lineno=tag.lineno)
    return nodes.FilterBlock(body, call, lineno=tag.lineno)


def _parse_of(parser: Parser) -> list[nodes.Expr]:
    return [parser.parse_expression()] if parser.stream.skip_if("name:of") else []


def _parse_kind(parser: Parser, tag: Token) -> tuple[nodes.Expr, nodes.Expr]:
    arguments = nodes.List([], lineno=tag.lineno)
    if not parser.stream.skip_if("name:as"):
        return nodes.Const(None, lineno=tag.lineno), arguments
    kind = parser.stream.expect("name")
    if kind.value not in _KINDS:
        hint = did_you_mean(kind.value, _KINDS) or "; the kinds are " + ", ".join(_KINDS)
        parser.fail(f'there is no kind of file "{kind.value}"{hint}', kind.lineno)
    if parser.stream.skip_if("lparen"):
        while not parser.stream.skip_if("rparen"):
            if arguments.items:
                parser.stream.expect("comma")
            arguments.items.append(parser.parse_expression())
    return nodes.Const(kind.value, lineno=kind.lineno), arguments


def _parse_assignments(parser: Parser, tag: Token) -> nodes.Expr:
    pairs: list[nodes.Pair] = []
    while not parser.stream.current.test("block_end"):
        parser.stream.skip_if("comma")
        name = parser.stream.expect("name")
        parser.stream.expect("assign")
        key = nodes.Const(name.value, lineno=name.lineno)
        if any(pair.key == key for pair in pairs):
            parser.fail(f"{name.value} is given twice", name.lineno)
        pairs.append(nodes.Pair(key, parser.parse_expression(), lineno=name.lineno))
    return nodes.Dict(pairs, lineno=tag.lineno)


def _check_section_name(parser: Parser, name: nodes.Expr) -> None:
    if isinstance(name, nodes.Const) and name.value not in _native.SECTION_NAMES:
        hint = did_you_mean(str(name.value), _native.SECTION_NAMES)
        parser.fail(
            f'there is no section "{name.value}"'
            + (hint or "; a custom section is filled with {% fill %}"),
            name.lineno,
        )


def _guard(parser: Parser, body: list[nodes.Node]) -> None:
    """Watch what the body of a file prints outside its sections: nothing would hold that text."""
    for position, node in enumerate(body):
        if isinstance(node, nodes.Output):
            node.nodes = [_guarded(parser, child) for child in node.nodes]
        elif isinstance(node, nodes.If):
            _guard(parser, node.body)
            for branch in node.elif_:
                _guard(parser, branch.body)
            _guard(parser, node.else_)
        elif isinstance(node, nodes.For):
            _guard(parser, node.body)
            _guard(parser, node.else_)
        elif isinstance(node, (nodes.With, nodes.Scope, nodes.ScopedEvalContextModifier)):
            _guard(parser, node.body)
        elif isinstance(node, _PRINTING) or _is_plain_filter(node):
            body[position] = nodes.FilterBlock([node], _outside(None, node), lineno=node.lineno)


def is_guarded_block(node: nodes.FilterBlock) -> bool:
    """Whether the filter is there to watch what one block prints in the body of a file."""
    return node.filter.name == "orv outside" and isinstance(node.body[0], nodes.Block)


def _is_plain_filter(node: nodes.Node) -> bool:
    return isinstance(node, nodes.FilterBlock) and not node.filter.name.startswith("orv ")


def _guarded(parser: Parser, node: nodes.Expr) -> nodes.Expr:
    if not isinstance(node, nodes.TemplateData):
        already = isinstance(node, nodes.Filter) and node.name == "orv outside"
        return node if already else _outside(node, node)
    if node.data and not node.data.isspace():
        parser.fail(outside_text(node.data), first_text_line(node))
    return node


def _outside(value: nodes.Expr | None, at: nodes.Node) -> nodes.Filter:
    return nodes.Filter(value, "orv outside", [], [], None, None, lineno=at.lineno)


def first_text_line(node: nodes.Expr) -> int:
    """The line on which something printed begins, white space aside."""
    if not isinstance(node, nodes.TemplateData):
        return node.lineno
    white_space = len(node.data) - len(node.data.lstrip())
    return node.lineno + node.data.count("\n", 0, white_space)


def outside_text(text: str) -> str:
    """The complaint about text that belongs to no section."""
    line, *more = text.strip().splitlines()
    shown = line[:60] + ("..." if more or len(line) > 60 else "")
    return f'this text stands outside every section: "{shown}"; put it between' + (
        " {% section %} and {% endsection %}"
    )
