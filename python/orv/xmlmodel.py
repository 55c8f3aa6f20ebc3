"""XML models: a tree of elements that templates walk by name.

An element has `tag`, `attributes` (by name), `children` (its elements in order), `content` (texts
and elements in order, as written) and `text` (all text in it, inner elements included). An element
`e` also gives `e.first("tag")`, its first child of a tag, or None, and `e.all("tag")`, the list of
them.

Names keep their prefixes as written. Comments and processing instructions are left out. Documents
that declare entities, or refer to others, are refused, so that no document can grow beyond what was
read.
"""

from __future__ import annotations

from typing import Union
from xml.parsers import expat

from orv.errors import ModelError

# The depth beyond which a document is refused; walking it would exhaust the stack.
_DEEPEST = 500


class Element:
    """One element of an XML model; see the module."""

    ENTRIES = frozenset(["tag", "attributes", "children", "content", "text", "first", "all"])

    __slots__ = ("tag", "attributes", "children", "content")

    def __init__(self, tag: str, attributes: dict[str, str]) -> None:
        self.tag = tag
        self.attributes = attributes
        self.children: list[Element] = []
        self.content: list[Union[str, Element]] = []

    @property
    def text(self) -> str:
        """All text in the element, in order, that of inner elements included."""
        content = self.content
        if len(content) == 1 and isinstance(content[0], str):
            return content[0]
        return "".join(piece if isinstance(piece, str) else piece.text for piece in content)

    def first(self, tag: str) -> Element | None:
        """The first child of the tag."""
        for child in self.children:
            if child.tag == tag:
                return child
        return None

    def all(self, tag: str) -> list[Element]:
        """The children of the tag, in order."""
        return [child for child in self.children if child.tag == tag]

    def __str__(self) -> str:
        return self.text

    def __repr__(self) -> str:
        return f"<{self.tag}>"


def parse_xml(data: bytes) -> Element:
    """The root element of an XML document. Raises ModelError with the line that is to blame."""
    parser = expat.ParserCreate()
    parser.buffer_text = True
    builder = _Builder(parser)
    parser.StartElementHandler = builder.start
    parser.EndElementHandler = builder.end
    parser.CharacterDataHandler = builder.text
    parser.EntityDeclHandler = builder.refuse_entity
    parser.ExternalEntityRefHandler = builder.refuse_reference
    parser.UnparsedEntityDeclHandler = builder.refuse_entity
    try:
        parser.Parse(data, True)
    except expat.ExpatError as error:
        raise ModelError(f"line {error.lineno}: {expat.errors.messages[error.code]}") from error
    return builder.document.children[0]


class _Builder:
    def __init__(self, parser: expat.XMLParserType) -> None:
        self._parser = parser
        self.document = Element("", {})
        self._open = [self.document]

    def start(self, tag: str, attributes: dict[str, str]) -> None:
        element = Element(tag, attributes)
        parent = self._open[-1]
        parent.children.append(element)
        parent.content.append(element)
        self._open.append(element)
        if len(self._open) > _DEEPEST:
            self._fail(f"elements are nested more than {_DEEPEST - 1} deep")

    def end(self, _: str) -> None:
        self._open.pop()

    def text(self, text: str) -> None:
        self._open[-1].content.append(text)

    def refuse_entity(self, name: str, *_: object) -> None:
        self._fail(f'the document declares the entity "{name}", which is refused')

    def refuse_reference(self, *_: object) -> int:
        self._fail("the document refers to another document, which is refused")
        return 0

    def _fail(self, reason: str) -> None:
        raise ModelError(f"line {self._parser.CurrentLineNumber}: {reason}")
