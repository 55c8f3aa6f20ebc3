"""Jinja2 as templates for C files see it: sandboxed, strict, with the packaging tags."""

from __future__ import annotations

import functools
from collections.abc import Callable, Iterator
from datetime import date
from typing import Any

from jinja2 import BaseLoader, StrictUndefined, Template, nodes
from jinja2.compiler import CodeGenerator, Frame
from jinja2.environment import TemplateModule
from jinja2.exceptions import SecurityError
from jinja2.runtime import Context, LoopContext, Macro
from jinja2.sandbox import ImmutableSandboxedEnvironment

from orv.templates import positions
from orv.errors import Located, OrvError, did_you_mean
from orv.templates.tags import PackagingTags, first_text_line, is_guarded_block, outside_text
from orv.templates.printable import printable
from orv.files.run import Run
from orv.templates.statements import IncludedText, Statements
from orv.models.xmlmodel import ENTRIES, Element

# What a loop tells about itself: all of it harmless.
_LOOP_ATTRIBUTES = frozenset(name for name in dir(LoopContext) if not name.startswith("_"))

# The longest text or list that multiplication may make, and the most bits of a power.
_LONGEST_PRODUCT = 1 << 24
_MOST_BITS = 1 << 16

# What a date tells about the machine and not about the model.
_CLOCK = frozenset(["astimezone", "fromtimestamp", "now", "timestamp", "today", "utcnow"])

_NOTHING_OUTSIDE = (
    "a template that extends another prints nothing outside its blocks; put this into a block"
)


class TemplateCode(CodeGenerator):
    """Refuses the text that a template would drop without a word, and knows its lines."""

    def visit_Template(self, node: nodes.Template, frame: Frame | None = None) -> None:
        """Compile a template, with an eye to the blocks that it prints by `self.NAME()`."""
        self._called_blocks = {
            access.attr
            for access in node.find_all(nodes.Getattr)
            if isinstance(access.node, nodes.Name) and access.node.name == "self"
        }
        super().visit_Template(node, frame)

    def visit_Output(self, node: nodes.Output, frame: Frame) -> None:
        """Compile output piece by piece where it may turn out to stand outside every section."""
        if frame.buffer is not None:
            super().visit_Output(node, frame)
            return
        for child in node.nodes:
            if frame.require_output_check and self.extends_so_far:
                self._refuse_lost(child)
            piece = nodes.Output([child], lineno=first_text_line(child))
            self.newline(piece)
            super().visit_Output(piece, frame)

    def visit_Block(self, node: nodes.Block, frame: Frame) -> None:
        """Compile a block, which must have its place in a template that this one extends."""
        super().visit_Block(node, frame)
        if frame.toplevel and self.extends_so_far and node.name not in self._called_blocks:
            self.writeline("if parent_template is not None:")
            self.indent()
            self.writeline(f"context.require_place({node.name!r}, block_{node.name})", node)
            self.outdent()

    def visit_FilterBlock(self, node: nodes.FilterBlock, frame: Frame) -> None:
        """Compile a filter; one that guards a block watches it piece by piece."""
        if not is_guarded_block(node):
            super().visit_FilterBlock(node, frame)
            return
        block = node.body[0]
        assert isinstance(block, nodes.Block)
        if frame.toplevel and self.extends_so_far:
            self.visit_Block(block, frame)
            return
        context = self.derive_context(frame) if block.scoped else self.get_context_ref()
        blocks = f"context.blocks[{block.name!r}]"
        self.writeline(
            f"for event in environment.watch({blocks}, {context}, {block.required}):", block
        )
        self.indent()
        self.simple_write("event", frame)
        self.outdent()

    def _output_child_pre(self, node: nodes.Expr, frame: Frame, finalize: Any) -> None:
        """Begin the code of what is printed: text, nearly always, which needs no call."""
        if frame.eval_ctx.volatile or frame.eval_ctx.autoescape:
            super()._output_child_pre(node, frame, finalize)
        else:
            self.write("(printed if type(printed := ")

    def _output_child_post(self, node: nodes.Expr, frame: Frame, finalize: Any) -> None:
        """End the code that `_output_child_pre` began."""
        if frame.eval_ctx.volatile or frame.eval_ctx.autoescape:
            super()._output_child_post(node, frame, finalize)
        else:
            self.write(") is str else str(environment.finalize(printed)))")

    def visit_Concat(self, node: nodes.Concat, frame: Frame) -> None:
        """Compile `~`, whose operands become text as if they were printed."""
        if frame.eval_ctx.volatile or frame.eval_ctx.autoescape:
            super().visit_Concat(node, frame)
            return
        self.write("str_join(map(environment.finalize, (")
        for operand in node.nodes:
            self.visit(operand, frame)
            self.write(", ")
        self.write(")))")

    def _refuse_lost(self, node: nodes.Expr) -> None:
        """Refuse what is printed beside an extended template, at run time if only then known."""
        complaint, line = _NOTHING_OUTSIDE, node.lineno
        if isinstance(node, nodes.TemplateData):
            if not node.data or node.data.isspace():
                return
            complaint, line = outside_text(node.data), first_text_line(node)
        if self.has_known_extends:
            self.fail(complaint, line)
        self.writeline("if parent_template is not None:")
        self.indent()
        piece = nodes.Output([node], lineno=line)
        self.writeline(f"raise TemplateRuntimeError({complaint!r})", piece)
        self.outdent()


class TemplateContext(Context):
    """A context that knows which blocks count on a place in an extended template."""

    def __init__(self, *arguments: Any, **named: Any) -> None:
        super().__init__(*arguments, **named)
        self._placeless: list[tuple[str, object, positions.Position]] = []

    def require_place(self, name: str, block: object) -> None:
        """Note that the block is printed only if an extended template has one of its name."""
        self._placeless.append((name, block, positions.here()))

    def refuse_placeless(self) -> None:
        """Raise Located for a block without a place, once every extended template is known."""
        placeless, self._placeless = self._placeless, []
        for name, block, position in placeless:
            if self.blocks[name][-1] is block:
                others = [n for n in self.blocks if n not in {entry[0] for entry in placeless}]
                raise Located(
                    f'{position}: no template that this one extends has a block "{name}"'
                    + (did_you_mean(name, others) or "; what it prints would be lost")
                )


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

        A template is included as often as it is asked for, as what it puts into files counts each
        time.
        """
        if ctx is None:
            return super().make_module()
        return super()._get_default_module(ctx)

    def make_module(self, *arguments: Any, **named: Any) -> TemplateModule:
        """Called to import the template; text that it prints goes nowhere and is refused."""
        tracking = self.environment.statements
        tracking.included_text = None
        module = super().make_module(*arguments, **named)
        if tracking.included_text is not None:
            position = tracking.included_text.position
            raise Located(f"{position}: {outside_text(str(module))}")
        return module


class Environment(ImmutableSandboxedEnvironment):
    """The environment of one run: templates that it renders fill the run's repository."""

    code_generator_class = TemplateCode
    template_class = TrackedTemplate
    context_class = TemplateContext
    intercepted_binops = frozenset(["*", "**"])

    def __init__(self, run: Run, loader: BaseLoader) -> None:
        super().__init__(
            loader=loader,
            extensions=[PackagingTags],
            undefined=StrictUndefined,
            finalize=printable,
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

    def track(self, render: Any, context: TemplateContext) -> Iterator[str]:
        """The output of `render`, which is a template's; see `output_position`."""
        output: Iterator[str] = render(context)
        self._active.append(output)
        first_text: IncludedText | None = None
        for piece in output:
            if piece and not piece.isspace():
                first_text = IncludedText(self.output_position(), piece)
                yield piece
                break
            yield piece
        yield from output
        context.refuse_placeless()
        self._active.pop()
        self.statements.included_text = first_text

    def watch(
        self, blocks: list[Callable[[Context], Iterator[str]]], context: Context, required: bool
    ) -> Iterator[str]:
        """The output of a block that stands in a file outside its sections: white space only."""
        if required and len(blocks) == 1:
            raise OrvError("no template that extends this one fills the required block")
        output = blocks[0](context)
        for piece in output:
            if piece and not piece.isspace():
                complaint = outside_text(self.run.placements.readable(piece))
                raise Located(f"{positions.of_generator(output)}: {complaint}")
            yield piece

    def is_safe_attribute(self, obj: Any, attr: str, value: Any) -> bool:
        """Whether templates may read the attribute; the clock would make each run differ."""
        if attr in _CLOCK and isinstance(obj, date):
            return False
        return super().is_safe_attribute(obj, attr, value)

    def call_filter(self, name: str, *arguments: Any, **named: Any) -> Any:
        """Call the filter that a template names in a text; the tags are none."""
        if " " in name:
            raise OrvError(f"No filter named {name!r}.")
        return super().call_filter(name, *arguments, **named)

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
