"""Jinja2 as templates for C files see it: sandboxed, strict, with the packaging tags."""

from __future__ import annotations

import functools
from collections.abc import Iterator
from typing import Any

from jinja2 import BaseLoader, StrictUndefined, Template, nodes
from jinja2.compiler import CodeGenerator, Frame
from jinja2.environment import TemplateModule
from jinja2.exceptions import SecurityError
from jinja2.runtime import Context, LoopContext, Macro
from jinja2.sandbox import ImmutableSandboxedEnvironment

from orv import positions
from orv.extension import PackagingTags, first_text_line, outside_text
from orv.run import Run
from orv.statements import LocatedError, Statements
from orv.xmlmodel import ENTRIES, Element

# What a loop tells about itself: all of it harmless.
_LOOP_ATTRIBUTES = frozenset(name for name in dir(LoopContext) if not name.startswith("_"))

# The longest text or list that multiplication may make, and the most bits of a power.
_LONGEST_PRODUCT = 1 << 24
_MOST_BITS = 1 << 16


class TemplateCode(CodeGenerator):
    """Refuses the text that a template would drop without a word, and knows its lines."""

    def visit_Output(self, node: nodes.Output, frame: Frame) -> None:
        """Compile output piece by piece where it may turn out to stand outside every section."""
        if frame.buffer is not None:
            super().visit_Output(node, frame)
            return
        for child in node.nodes:
            if frame.require_output_check and self.has_known_extends:
                self._refuse_lost(child)
            piece = nodes.Output([child], lineno=first_text_line(child))
            self.newline(piece)
            super().visit_Output(piece, frame)

    def _refuse_lost(self, node: nodes.Expr) -> None:
        if not isinstance(node, nodes.TemplateData):
            self.fail(
                "a template that extends another prints nothing outside its blocks; put this into"
                " a block",
                node.lineno,
            )
        if node.data and not node.data.isspace():
            self.fail(outside_text(node.data), first_text_line(node))


class TrackedTemplate(Template):
    """A template that knows, while its output is pulled, which line it stands at."""

    environment: Environment

    @classmethod
    def _from_namespace(cls, environment: Any, namespace: Any, globals: Any) -> TrackedTemplate:
        template = super()._from_namespace(environment, namespace, globals)
        template.root_render_func = functools.partial(
            environment.track, template.root_render_func
        )
        return template  # type: ignore[return-value]

    def _get_default_module(self, ctx: Context | None = None) -> TemplateModule:
        """Called to import the template, with a context, or to include it without one.

        Text that an imported template prints goes nowhere. A template is included as often as it
        is asked for, as what it puts into files counts each time.
        """
        if ctx is None:
            return self.make_module()
        tracking = self.environment.statements
        tracking.included_text = None
        module = super()._get_default_module(ctx)
        if tracking.included_text is not None:
            position, tracking.included_text = tracking.included_text, None
            raise LocatedError(position, outside_text(str(module)))
        return module


class Environment(ImmutableSandboxedEnvironment):
    """The environment of one run: templates that it renders fill the run's repository."""

    code_generator_class = TemplateCode
    template_class = TrackedTemplate
    intercepted_binops = frozenset(["*", "**"])

    def __init__(self, run: Run, loader: BaseLoader) -> None:
        super().__init__(
            loader=loader,
            extensions=[PackagingTags],
            undefined=StrictUndefined,
            keep_trailing_newline=True,
            trim_blocks=True,
            lstrip_blocks=True,
            auto_reload=False,
        )
        self.run = run
        self.statements = Statements(run)
        self._active: list[Iterator[str]] = []
        self.filters.update(self.statements.filters())
        self.globals.update(self.statements.globals())
        # What they give differs from run to run.
        del self.filters["random"], self.globals["lipsum"]

    def track(self, render: Any, context: Context) -> Iterator[str]:
        """The output of `render`, which is a template's; see `output_position`."""
        output: Iterator[str] = render(context)
        self._active.append(output)
        first_text = None
        for piece in output:
            if piece and not piece.isspace():
                first_text = self.output_position()
                yield piece
                break
            yield piece
        yield from output
        self._active.pop()
        self.statements.included_text = first_text

    def output_position(self) -> positions.Position | None:
        """The line that printed the piece of output that was pulled last."""
        return positions.of_generator(self._active[-1])

    def getattr(self, obj: Any, attribute: str) -> Any:
        """`obj.attribute`; in a model an entry goes before a method of the same name."""
        kind = type(obj)
        if kind is dict and attribute in obj:
            return obj[attribute]
        if kind is LoopContext and attribute in _LOOP_ATTRIBUTES:
            return getattr(obj, attribute)
        if kind is Element and attribute in ENTRIES:
            return getattr(obj, attribute)
        return super().getattr(obj, attribute)

    def call(__self, __context: Context, __obj: Any, *args: Any, **kwargs: Any) -> Any:
        """Call what a template calls; its own macros need no examination."""
        if type(__obj) is Macro:
            return __context.call(__obj, *args, **kwargs)
        return super().call(__context, __obj, *args, **kwargs)

    def call_binop(self, context: Context, operator: str, left: Any, right: Any) -> Any:
        """Refuse a product that would fill the memory and a power that would never end."""
        if operator == "**":
            bits = left.bit_length() * right if _are_ints(left, right) else 0
            if bits > _MOST_BITS:
                raise SecurityError(f"the power {left} ** {right} is too large")
        elif hasattr(left, "__len__") or hasattr(right, "__len__"):
            sequence, count = (left, right) if hasattr(left, "__len__") else (right, left)
            if isinstance(count, int) and len(sequence) * count > _LONGEST_PRODUCT:
                raise SecurityError(f"{count} times {len(sequence)} elements are too many")
        elif _are_ints(left, right) and left.bit_length() + right.bit_length() > _MOST_BITS:
            raise SecurityError("the product is too large")
        return super().call_binop(context, operator, left, right)


def _are_ints(*values: Any) -> bool:
    return all(isinstance(value, int) for value in values)
