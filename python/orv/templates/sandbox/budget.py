"""What a run of templates may use: text, memory and time."""

from __future__ import annotations

import os
import resource
import signal
import threading
import time
from collections.abc import Iterator
from contextlib import contextmanager
from types import FrameType

from orv import positions
from orv._native import alarm_handled, enforce_alarm
from orv.errors import OrvError

_MIB = 1 << 20

# A fallback of the engine may catch the error of the deadline: it comes again, after seconds.
_AGAIN = 1.0
# So many are left waiting by a step of the interpreter, which looks for them between two, before
# the process ends.
_MOST_UNHANDLED = 2


class Budget:
    """The bounds of one run; none where a number is 0.

    `text` and `memory` are in MiB: of what templates print, and of what the process grows by.
    `seconds` counts from the first use. Memory and time are bounds of the process, so that only the
    command sets them; time is bounded on the main thread only.
    """

    def __init__(self, text: int = 0, memory: int = 0, seconds: int = 0) -> None:
        self.text = text * _MIB
        self._memory = memory * _MIB
        self._seconds = seconds
        self._most_memory = 0
        self._deadline = 0.0

    @contextmanager
    def watched(self) -> Iterator[None]:
        """Raise MemoryError or OrvError in the block when it uses more than is left."""
        with self._memory_bounded(), self._time_bounded():
            yield

    @contextmanager
    def _memory_bounded(self) -> Iterator[None]:
        if not self._memory:
            yield
            return
        self._most_memory = self._most_memory or _data_size() + self._memory
        before, most = resource.getrlimit(resource.RLIMIT_DATA)
        bounds = [self._most_memory, *(bound for bound in (before, most) if bound >= 0)]
        resource.setrlimit(resource.RLIMIT_DATA, (min(bounds), most))
        try:
            yield
        finally:
            resource.setrlimit(resource.RLIMIT_DATA, (before, most))

    @contextmanager
    def _time_bounded(self) -> Iterator[None]:
        if not self._seconds or threading.current_thread() is not threading.main_thread():
            yield
            return
        self._deadline = self._deadline or time.monotonic() + self._seconds
        before = signal.signal(signal.SIGALRM, self._end)
        enforce_alarm(f"error: {self._too_long()}\n".encode(), _MOST_UNHANDLED)
        signal.setitimer(signal.ITIMER_REAL, max(self._deadline - time.monotonic(), 1e-6), _AGAIN)
        try:
            yield
        finally:
            signal.setitimer(signal.ITIMER_REAL, 0)
            signal.signal(signal.SIGALRM, before)

    def _end(self, _signal: int, _frame: FrameType | None) -> None:
        if alarm_handled():
            text = f"{positions.here()}: {self._too_long()}\n"
            os.write(2, text.encode(errors="surrogateescape"))
            os._exit(1)
        raise OrvError(self._too_long())

    def _too_long(self) -> str:
        return f"the templates take longer than {self._seconds} s, which --timeout allows"


def _data_size() -> int:
    """The writable memory of the process, in bytes, as the kernel counts it for its bound."""
    with open("/proc/self/statm", "rb") as file:
        return int(file.read().split()[5]) * resource.getpagesize()
