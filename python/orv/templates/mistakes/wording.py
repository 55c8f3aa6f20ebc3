"""Errors of Python and Jinja2 in the words of somebody who writes templates."""

from __future__ import annotations

import re

from jinja2.runtime import Macro

from orv import _native
from orv.delimiters import shown, tag
from orv.errors import did_you_mean

# What messages call a value, by the name of its type in Python.
_TYPES = {
    "str": "text",
    "int": "a whole number",
    "float": "a number",
    "bool": "true or false",
    "list": "a list",
    "tuple": "a list",
    "dict": "a dictionary",
    "set": "a set",
    "type": "a type",
    "NoneType": "none",
    "Element": "an element",
    "FileView": "a file",
    "Macro": "a macro",
    "TemplateModule": "an imported template",
    "LoopContext": "a loop",
    "date": "a date",
    "datetime": "a date",
    "Collector": "a collector",
    "Namespace": "a namespace",
    "TemplateReference": "this template",
    "BlockReference": "a block",
    "Cycler": "a cycler",
    "Joiner": "a joiner",
    "function": "a function",
    "method": "a method",
    "builtin_function_or_method": "a method",
    "generator": "a generator",
}

_CALL = r"(?:\w+\.)*(?:<locals>\.)?(?:do_|_)?(\w+)\(\) "

# What an exception says, and what is said instead. {1}, {2}: the groups; {1:t}: a type's words.
_SENTENCES = [
    (r"unsupported operand type\(s\) for (\S+)(?: or .*)?: '(\w+)' and '(\w+)'",
     "{1} does not take {2:t} and {3:t}"),
    (r'can only concatenate str \(not "(\w+)"\) to str',
     "+ does not take text and {1:t}; ~ makes one text of any two values"),
    (r'can only concatenate (\w+) \(not "(\w+)"\) to \w+', "+ does not take {1:t} and {2:t}"),
    (r"can't multiply sequence by non-int of type '(\w+)'", "* does not take text and {1:t}"),
    (r"bad operand type for unary (\S+) '(\w+)'", "{1} does not take {2:t}"),
    (r"'(\S+)' not supported between instances of '(\w+)' and '(\w+)'",
     "{2:t} and {3:t} cannot be compared by {1}"),
    (r"cannot unpack non-iterable (\w+) object", "expected a list, got {1:t}"),
    (r"'([\w.]+)' object is not iterable", "expected a list, got {1:t}"),
    (r"argument of type '(\w+)' is not iterable", "expected a list or text after in, got {1:t}"),
    (r"'in <string>' requires string as left operand, not (\w+)",
     "expected text before in, got {1:t}"),
    (r"'([\w.]+)' object is not callable", "{1:t} cannot be called"),
    (r"object of type '(\w+)' has no len\(\)", "{1:t} has no length"),
    (r"'(\w+)' object is not reversible", "{1:t} cannot be reversed"),
    (r"unhashable type: '(\w+)'", "{1:t} cannot be a key"),
    (r"not enough values to unpack \(expected (?:at least )?(\d+), got (\d+)\)",
     "expected {1} values, got {2}"),
    (r"too many values to unpack \(expected (\d+)\)", "expected {1} values, got more"),
    (r"not all arguments converted during string formatting",
     "there are more values than places for them"),
    (r"not enough arguments for format string", "there are fewer values than places for them"),
    (r"(%\w) format: .* is required, not (\w+)", "{1} does not take {2:t}"),
    (_CALL + r"missing \d+ required (?:positional|keyword-only) arguments?: (.+)",
     "{1} needs the argument {2:q}"),
    (_CALL + r"takes .*positional arguments? but \d+ (?:was|were) given",
     "{1} is given too many arguments"),
    (_CALL + r"got an unexpected keyword argument '(\w+)'", '{1} has no argument "{2}"'),
    (
        _CALL + r"got multiple values for argument '(\w+)'",
        'the argument "{2}" of {1} is given twice',
    ),
    (r"macro '(\w+)' takes not more than (\d+) argument\(s\)",
     'the macro "{1}" is given too many arguments; it takes {2}'),
    (r"macro '(\w+)' takes no keyword argument '(\w+)'", 'the macro "{1}" has no argument "{2}"'),
    (r"macro '(\w+)' was invoked with two values for the special caller argument.*",
     'the macro "{1}" does not use caller(), and cannot be called by {call}'),
    (r"<.*> is not safely callable", "a template may not call this"),
    (r"access to attribute '(\w+)' of '(\w+)' object is unsafe\.",
     'a template may not use "{1}" of {2:t}'),
    (r"(?:float|integer) division or modulo by zero|(?:float )?division by zero|.*modulo by zero",
     "division by zero"),
    (r"'(\w+)' object has no attribute '(\w+)'", '{1:t} has no "{2}"'),
    (r"type (\w+) doesn't define __round__ method", "{1:t} cannot be rounded"),
    (r"'(\w+)' object cannot be interpreted as an integer", "expected a whole number, got {1:t}"),
    (r"slice indices must be integers .*", "expected whole numbers to cut a text or list by"),
    (r"must be real number, not (\w+)", "expected a number, got {1:t}"),
    (r"Unknown format code '(.)' for object of type '(\w+)'", "the format {1} does not take {2:t}"),
    (r"Replacement index (\d+) out of range .*|tuple index out of range",
     "there are fewer values than places for them"),
    (r"must be str or None, not (\w+)", "expected text, got {1:t}"),
    (r"cannot assign attribute on non-namespace object",
     "only what namespace() has made can be given attributes"),
    (r"(\w+)\(\) argument (\d+) must be (\w+), not (\w+)",
     "argument {2} of {1} must be {3:t}, got {4:t}"),
    (r"substring not found", "the text does not have it"),
]  # fmt: skip

# How the library refuses the name of a section that a template has computed.
_SECTION = re.compile(r'(there is no section "(.*)"); the sections are .*', re.DOTALL)

_DELIMITERS = (
    "begin of statement block", "end of statement block",
    "begin of print statement", "end of print statement",
)  # fmt: skip
_WORD = {
    "end of template": "the end of the template", "integer": "a number", "float": "a number",
    "string": "a text",
}  # fmt: skip


def _hint(error: BaseException, called: str, name: str) -> str:
    """The closest argument, when a macro or filter has none of this name."""
    trace = error.__traceback__
    macro, environment = None, None
    while trace is not None:
        owner = trace.tb_frame.f_locals.get("self")
        macro = owner if type(owner) is Macro and owner.name == called else macro
        environment = trace.tb_frame.f_globals.get("environment", environment)
        trace = trace.tb_next
    if macro is not None:
        return did_you_mean(name, macro.arguments)
    function = getattr(environment, "filters", {}).get(called)
    code = getattr(function, "__code__", None)
    return did_you_mean(name, code.co_varnames[: code.co_argcount]) if code is not None else ""


def type_words(name: str) -> str:
    """What messages call a value of the type with this name."""
    name = name.rpartition(".")[2]
    return _TYPES.get(name, f"a value of type {name}")


# How messages of the parser begin with a capital letter.
_CAPITALS = ("Expected", "Missing", "Unexpected", "Unknown")


def in_plain_words(error: BaseException) -> str:
    """What is said of an exception that was not written for the person at the keyboard."""
    text = str(error.args[0] if error.args else error)
    found = _SECTION.fullmatch(text)
    hint = did_you_mean(found[2], _native.SECTION_NAMES) if found else ""
    if found and hint:
        return found[1] + hint
    for pattern, sentence in _SENTENCES:
        found = re.fullmatch(pattern, text, re.DOTALL)
        if found:
            groups = [_Group(group or "") for group in found.groups()]
            hint = _hint(error, *groups) if "has no argument" in sentence else ""
            return sentence.format("", *groups, call=tag("call")) + hint
    if isinstance(error, KeyError):
        return f'there is no entry "{text}"'
    return text or type(error).__name__


def syntax_words(text: str) -> str:
    """A message of the parser, with the delimiters as they are written."""
    for name, written in [*zip(_DELIMITERS, shown(), strict=False), *_WORD.items()]:
        text = text.replace(f"'{name}'", written)
    text = re.sub(
        r"^unexpected char (['\"])(['\"])\1 at \d+", r"a text that begins with \2 has no end", text
    )
    text = re.sub(r"^(unexpected char)( .*) at \d+", r"\1acter\2", text, flags=re.DOTALL)
    text = text.replace("expected token ", "expected ").removesuffix(".")
    if text == "unexpected '}'" and shown()[2].startswith("{"):
        text += f"; braces of C go between {tag('raw')} and {tag('endraw')}"
    return text[:1].lower() + text[1:] if text.startswith(_CAPITALS) else text


class _Group(str):
    """A part of a message that can be given as the words for a type, or in double quotes."""

    def __format__(self, form: str) -> str:
        if form == "t":
            return type_words(self)
        return self.replace("'", '"') if form == "q" else self
