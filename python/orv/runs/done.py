"""What came of one task of many."""

from __future__ import annotations

import sys
from typing import Generic, NamedTuple, TypeVar

Result = TypeVar("Result")


class Printed(NamedTuple):
    """What was printed on the standard output and on the standard error."""

    output: bytes = b""
    error: bytes = b""

    def show(self) -> None:
        """Print it."""
        for stream, data in ((sys.stderr, self.error), (sys.stdout, self.output)):
            if data:
                stream.flush()
                stream.buffer.write(data)
                stream.flush()


class Done(NamedTuple, Generic[Result]):
    """The result of a task, or the error that it ended with, and what it has printed."""

    result: Result | None
    error: BaseException | None = None
    printed: Printed = Printed()
