"""Doing tasks in processes of this machine, which talk over pipes."""

from __future__ import annotations

import gc
import signal
from collections.abc import Callable, Sequence
from contextlib import suppress
from multiprocessing import get_context
from multiprocessing.connection import Connection
from selectors import EVENT_READ, PollSelector
from typing import Generic

from orv.errors import OrvError
from orv.runs.capture import Capture
from orv.runs.done import Done, Result

# A process that is interrupted has so many seconds to complete what it is writing.
_PATIENCE = 10.0

_CONTEXT = get_context("fork")


def do_in_processes(
    do: Callable[[int], Result],
    after: Sequence[int],
    jobs: int,
    report: Callable[[int, Done[Result]], None],
) -> None:
    """Do the tasks of the numbers from 0, at most `jobs` at once, and report them in order.

    `after` has for each task how many tasks, from the first on, must have ended before it begins.
    The processes are copies of this one, which must have a single thread. An interruption ends all
    of them; what was completed until then, and what was being written, is still reported.
    """
    pool = _Pool(do, after, report)
    try:
        pool.start(jobs)
        pool.run()
    except KeyboardInterrupt:
        pool.interrupt()
        raise
    finally:
        pool.close()


class _Worker(Generic[Result]):
    """A process that does one task at a time. `others` are connections that are not its own."""

    def __init__(self, do: Callable[[int], Result], others: Sequence[Connection]) -> None:
        self.task: int | None = None
        self.is_dead = False
        self.connection, theirs = _CONTEXT.Pipe()
        unused = [*others, self.connection]
        self._process = _CONTEXT.Process(target=_serve, args=(theirs, unused, do))
        self._process.start()
        self._was_interrupted = False
        theirs.close()

    def begin(self, task: int) -> None:
        """Have the process do a task."""
        self.task = task
        # That the process is dead is seen when it ends the task.
        with suppress(BrokenPipeError):
            self.connection.send(task)

    def end(self) -> Done[Result]:
        """Wait for what becomes of the task."""
        self.task = None
        try:
            done: Done[Result] = self.connection.recv()
            return done
        except (EOFError, OSError):
            self.is_dead = True
            self._process.join()
            code = self._process.exitcode or 0
            how = f"was killed by signal {-code}" if code < 0 else f"ended with {code}"
            what = "the next run completes what it had begun"
            return Done(None, OrvError(f"the process of this run {how}; {what}"))

    def interrupt(self) -> None:
        """Ask the process to end."""
        self._was_interrupted = True
        self._process.terminate()

    def close(self) -> None:
        """End the process, whatever it is doing."""
        self.connection.close()
        if self.task is not None and not self._was_interrupted:
            self.interrupt()
            self._process.join(_PATIENCE)
        if self.task is not None:
            self._process.kill()
        self._process.join()


class _Pool(Generic[Result]):
    """Processes that begin tasks in the order of their numbers."""

    def __init__(
        self,
        do: Callable[[int], Result],
        after: Sequence[int],
        report: Callable[[int, Done[Result]], None],
    ) -> None:
        self._do = do
        self._after = after
        self._report = report
        self._begun = 0
        # All tasks up to this number have been reported.
        self._reported = 0
        self._waiting: dict[int, Done[Result]] = {}
        self._workers: list[_Worker[Result]] = []
        # Has the connections of workers that do a task.
        self._busy = PollSelector()

    def start(self, jobs: int) -> None:
        """Start the processes."""
        # What is never freed is not written to, and stays in memory that all of them share.
        gc.freeze()
        for _ in range(min(jobs, len(self._after))):
            self._add_worker()

    def run(self) -> None:
        """Do all tasks. A process gets its next one before others are reported."""
        while self._reported < len(self._after):
            self._begin()
            if self._reported in self._waiting:
                self._report_next()
                continue
            for key, _ in self._busy.select():
                self._end(key.data)

    def interrupt(self) -> None:
        """End the tasks that run; report those that ended by themselves or were writing."""
        busy = [worker for worker in self._workers if worker.task is not None]
        for worker in busy:
            worker.interrupt()
        for worker in busy:
            if worker.connection.poll(_PATIENCE):
                assert worker.task is not None
                task, done = worker.task, worker.end()
                if not isinstance(done.error, KeyboardInterrupt):
                    self._waiting[task] = done
        for task in sorted(self._waiting):
            self._report(task, self._waiting[task])

    def close(self) -> None:
        """End the processes."""
        self._busy.close()
        for worker in self._workers:
            worker.close()

    def _add_worker(self) -> None:
        others = [worker.connection for worker in self._workers]
        self._workers.append(_Worker(self._do, others))

    def _begin(self) -> None:
        for worker in self._workers:
            if self._begun == len(self._after) or self._after[self._begun] > self._reported:
                return
            if worker.task is None:
                self._busy.register(worker.connection, EVENT_READ, worker)
                worker.begin(self._begun)
                self._begun += 1

    def _end(self, worker: _Worker[Result]) -> None:
        assert worker.task is not None
        task = worker.task
        self._busy.unregister(worker.connection)
        self._waiting[task] = worker.end()
        if worker.is_dead:
            worker.close()
            self._workers.remove(worker)
            self._add_worker()

    def _report_next(self) -> None:
        self._reported += 1
        self._report(self._reported - 1, self._waiting.pop(self._reported - 1))


def _serve(
    connection: Connection, unused: Sequence[Connection], do: Callable[[int], Result]
) -> None:
    """Do tasks until the other end of the connection is closed."""
    # A terminal tells all processes; the one that asks says when to end.
    signal.signal(signal.SIGINT, lambda *_: None)
    for other in unused:
        other.close()
    capture = Capture()
    try:
        while True:
            task = connection.recv()
            try:
                done = Done(do(task))
            except BaseException as error:
                done = Done(None, error)
            connection.send(done._replace(printed=capture.take()))
    except (EOFError, OSError, KeyboardInterrupt):
        return
