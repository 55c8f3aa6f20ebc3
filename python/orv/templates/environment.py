"""Jinja2 as templates for C files see it: sandboxed, strict, with the packaging tags."""

from __future__ import annotations

import posixpath
from collections.abc import Mapping
from datetime import date
from functools import cached_property
from types import BuiltinMethodType, CodeType, MethodType
from typing import TYPE_CHECKING, Any

import jinja2
from jinja2 import BaseLoader, StrictUndefined, Template, TemplateSyntaxError, nodes
from jinja2.environment import TemplateModule
from jinja2.ext import Extension, do, loopcontrols
from jinja2.runtime import BlockReference, Context, LoopContext, Macro
from jinja2.sandbox import SandboxedEnvironment
from jinja2.utils import missing
from markupsafe import Markup

from orv import _native, positions
from orv.errors import Located, OrvError, did_you_mean
from orv.files.run import Run
from orv.models.element import Element
from orv.templates.sandbox import filters, formatting, sizes
from orv.templates.sandbox.access import is_allowed
from orv.templates.bytecode import CompiledTemplates
from orv.templates.compiler import TemplateCode, compiled
from orv.templates.library import Language, add_library
from orv.templates.lexer import PlacingLexer
from orv.templates.parser import TemplateParser
from orv.templates.printable import text_of
from orv.templates.statements import Statements
from orv.templates.tags import PackagingTags
from orv.templates.mistakes.wording import type_words

if TYPE_CHECKING:
    from orv.templates.tracing import Sites

# The compiler is built on that of Jinja2; docs/architecture.md lists what it relies upon.
_JINJA2 = "3.1."
if not jinja2.__version__.startswith(_JINJA2):
    raise ImportError(f"orv needs Jinja2 {_JINJA2}x; the version found is {jinja2.__version__}")

EXTENSIONS: tuple[type[Extension], ...] = (PackagingTags, do, loopcontrols)

# What a date tells about the machine and not about the model.
_CLOCK = frozenset(["astimezone", "fromtimestamp", "now", "timestamp", "today", "utcnow"])


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


class PrintingTemplate(Template):
    """A template whose code prints through the environment's printer."""

    environment: Environment

    @cached_property
    def debug_info(self) -> list[tuple[int, int]]:
        """The lines of the template and of its code; read once, as every position needs it."""
        return super().debug_info

    def run(self, context: Context) -> None:
        """Run the template, with what extends it known to the context."""
        sites = self.environment.sites
        depth = 0 if sites is None else sites.trace.depth
        for _ in self.root_render_func(context):
            pass
        if sites is not None:
            # A template that extends another leaves a link to it.
            sites.trace.leave_to(depth)
        assert isinstance(context, TemplateContext)
        context.refuse_placeless()

    def make_module(
        self,
        vars: dict[str, Any] | None = None,
        shared: bool = False,
        locals: Mapping[str, Any] | None = None,
    ) -> TemplateModule:
        """Called to import the template; what it prints belongs to no section and is refused."""
        context = self.new_context(vars, shared, locals)
        self.environment.printer.outside()
        self.run(context)
        self.environment.printer.close()
        return TemplateModule(self, context, ())


class Environment(SandboxedEnvironment):
    """The environment of one run: templates that it renders fill the run's repository."""

    code_generator_class: type[TemplateCode] = TemplateCode
    template_class = PrintingTemplate
    context_class = TemplateContext
    intercepted_binops = frozenset(["+", "*", "**", "%", "//"])

    def __init__(self, run: Run, loader: BaseLoader, language: Language) -> None:
        super().__init__(
            *language.delimiters,
            loader=loader,
            extensions=EXTENSIONS,
            undefined=StrictUndefined,
            finalize=text_of,
            # What is computed beforehand is not checked by what computes it.
            optimized=False,
            keep_trailing_newline=True,
            trim_blocks=True,
            lstrip_blocks=True,
            auto_reload=False,
            bytecode_cache=CompiledTemplates(),
        )
        self.printer = run.printer
        self.sites: Sites | None = None
        if run.trace is not None:
            from orv.templates.tracing import Sites, TracedCode

            self.sites = Sites(run.trace)
            # Its code has the numbers of this run.
            self.code_generator_class = TracedCode
            self.bytecode_cache = None
        self.statements = Statements(run)
        self.add, self.concatenate = _native.operations(
            text_of, sizes.refuse_text, sizes.refuse_list
        )
        # What an element of a model and a loop tell about themselves is harmless.
        self.entry = _native.entry_reader(self._attribute_or_entry, (Element, LoopContext))
        self.ordered = filters.ordered
        self.filters.update(filters.filters())
        self.globals.update(self.statements.globals())
        # What they give differs from run to run.
        del self.filters["random"], self.globals["lipsum"]
        add_library(self, run.messages, language.extensions)

    @cached_property
    def lexer(self) -> PlacingLexer:
        """The lexer of every template; see jinja2.Environment."""
        return PlacingLexer(self)

    def _parse(self, source: str, name: str | None, filename: str | None) -> nodes.Template:
        return TemplateParser(self, source, name, filename).parse()

    def render(self, template: str, model: Mapping[str, object]) -> None:
        """Run the template with the variables of `model`."""
        main = self.get_template(template)
        assert isinstance(main, PrintingTemplate)
        _run(main, main.new_context(dict(model)))

    def include(
        self,
        template: PrintingTemplate,
        context: Context | None = None,
        local: Mapping[str, Any] | None = None,
    ) -> None:
        """Run an included template, which sees the variables of `context` if there is one."""
        if context is None:
            own = template.new_context()
        else:
            own = template.new_context(context.get_all(), True, local)
        _run(template, own)

    def call_printed(__self, __context: Context, __obj: Any, *args: Any, **kwargs: Any) -> Any:
        """Call what a template calls to print the result.

        What the template language defines prints by itself; the result is empty then. Between
        `print_next` and the callee's `enter` no code of a template runs.
        """
        kind = type(__obj)
        if kind is Macro:
            _drop_variables(kwargs)
            __self.printer.print_next()
            return __obj(__context.eval_ctx, *args, **kwargs)
        if kind is BlockReference:
            _run_block(__obj)
            return ""
        if kind is LoopContext and len(args) == 1:
            __self.printer.print_next()
            return __obj(*args)
        return __self.call(__context, __obj, *args, **kwargs)

    def call_traced(
        __self, __site: int, __context: Context, __obj: Any, *args: Any, **kwargs: Any
    ) -> Any:
        """call_printed(), with a link to the call for what the callee prints."""
        assert __self.sites is not None
        label = __self.sites.label_of(__obj)
        if label is None:
            return __self.call(__context, __obj, *args, **kwargs)
        link = __self.printer.enter_link(__site, label)
        result = __self.call_printed(__context, __obj, *args, **kwargs)
        __self.printer.leave_link(link)
        return result

    def join_path(self, template: object, parent: str) -> str:
        """The name of a template that `parent` asks for; "./x" and "../x" begin at its folder."""
        if not isinstance(template, str):
            got = type_words(type(template).__name__)
            raise OrvError(f"expected the name of a template, got {got}")
        if not template.startswith(("./", "../")):
            return template
        return posixpath.normpath(posixpath.join(posixpath.dirname(parent), template))

    def compile(self, source: Any, name: str | None = None, *arguments: Any, **named: Any) -> Any:
        """Compile a template; see jinja2.Environment."""
        try:
            return super().compile(source, name, *arguments, **named)
        except TemplateSyntaxError as error:
            error.name = error.name or name
            raise

    def _compile(self, source: str, filename: str) -> CodeType:
        return compiled(source, filename)

    def is_safe_attribute(self, obj: Any, attr: str, value: Any) -> bool:
        """Whether templates may read the attribute; the clock would make each run differ."""
        if attr in _CLOCK and isinstance(obj, date):
            return False
        return is_allowed(obj, attr)

    def getattr(self, obj: Any, attribute: str) -> Any:
        """`obj.attribute`; in a model an entry goes before a method of the same name."""
        return self.entry(obj, attribute)

    def getitem(self, obj: Any, argument: Any) -> Any:
        """`obj[argument]`; an attribute of the name when there is no such entry."""
        if isinstance(obj, type):
            # Python would make another type of it.
            return self.attribute(obj, argument)
        try:
            return obj[argument]
        except (TypeError, LookupError):
            return self.attribute(obj, argument)

    def attribute(self, obj: Any, name: Any) -> Any:
        """The attribute, as templates see it; undefined when there is none."""
        value = getattr(obj, name, missing) if isinstance(name, str) else missing
        if value is missing:
            return self.undefined(obj=obj, name=name)
        return self._reached(obj, name, value)

    def _attribute_or_entry(self, obj: Any, name: str) -> Any:
        value = getattr(obj, name, missing)
        if value is not missing:
            return self._reached(obj, name, value)
        if isinstance(obj, type):
            return self.undefined(obj=obj, name=name)
        try:
            return obj[name]
        except (TypeError, LookupError):
            return self.undefined(obj=obj, name=name)

    def _reached(self, obj: Any, attribute: str, value: Any) -> Any:
        """An attribute that a template has reached: refused, or within bounds if it is a method."""
        if not self.is_safe_attribute(obj, attribute, value):
            return self.unsafe_undefined(obj, attribute)
        if isinstance(value, (BuiltinMethodType, MethodType)):
            return formatting.bounded(self, value)
        return value

    def call(__self, __context: Context, __obj: Any, *args: Any, **kwargs: Any) -> Any:
        """Call what a template calls; macros and methods of elements need no examination."""
        if type(__obj) is Macro:
            return __context.call(__obj, *args, **kwargs)
        if type(__obj) is BlockReference:
            entered = __self.printer.enter()
            _run_block(__obj)
            text = __self.printer.leave(entered)
            return Markup(text) if __context.eval_ctx.autoescape else text
        if type(__obj) is MethodType and type(__obj.__self__) is Element:
            _drop_variables(kwargs)
            return __obj(*args, **kwargs)
        return super().call(__context, __obj, *args, **kwargs)

    def call_binop(self, context: Context, operator: str, left: Any, right: Any) -> Any:
        """Refuse what would fill the memory or never end."""
        if operator == "%" and isinstance(left, str):
            return formatting.formatted(left, right)
        _REQUIREMENTS[operator](left, right)
        return super().call_binop(context, operator, left, right)


_REQUIREMENTS = {
    "*": sizes.require_product, "**": sizes.require_power,
    "%": sizes.require_quotient, "//": sizes.require_quotient,
}  # fmt: skip


def _drop_variables(named: dict[str, Any]) -> None:
    """Leave out what compiled code passes for those who want a context."""
    named.pop("_loop_vars", None)
    named.pop("_block_vars", None)


def _run(template: PrintingTemplate, context: Context) -> None:
    template.run(context)
    # Its macros refer to the context: in a cycle, the model would outlive the run. One that is kept
    # somewhere may still run blocks, which find their names in the context.
    if not context.blocks:
        context.vars.clear()


def _run_block(block: BlockReference) -> None:
    for _ in block._stack[block._depth](block._context):
        pass
