"""The texts of templates and scripts as a report shows them, split by Pygments for colouring."""

from __future__ import annotations

from itertools import groupby

from pygments.lexer import DelegatingLexer, Lexer
from pygments.lexers import CLexer, DjangoLexer, PythonLexer
from pygments.token import Comment, Keyword, Name, Number, String, _TokenType

# The first that a token belongs to names its class in the page's style sheet.
_CLASSES = (
    (Comment.Preproc, "directive"),
    (Comment, "comment"),
    (Keyword, "keyword"),
    (String, "string"),
    (Number, "number"),
    (Name.Variable, "variable"),
)


def read_source(path: str) -> list[tuple[str, str]] | None:
    """The text of a template or script as pairs of class and text; None when it cannot be read.

    Lines end as the template language counts them.
    """
    try:
        with open(path, encoding="utf-8-sig", errors="replace") as file:
            text = file.read()
    except (OSError, ValueError):
        return None
    tokens = _lexer(path).get_tokens(text)
    classes = ((_class_of(kind), piece) for kind, piece in tokens)
    pieces = [
        (name, "".join(piece for _, piece in group))
        for name, group in groupby(classes, key=lambda pair: pair[0])
    ]
    return pieces if "".join(piece for _, piece in pieces) == text else [("", text)]


def _lexer(path: str) -> Lexer:
    lexer: Lexer
    if path.endswith(".py"):
        lexer = PythonLexer(stripnl=False, ensurenl=False)
    else:
        lexer = DelegatingLexer(CLexer, DjangoLexer, stripnl=False, ensurenl=False)
    return lexer


def _class_of(kind: _TokenType) -> str:
    return next((name for known, name in _CLASSES if kind[: len(known)] == known), "")
