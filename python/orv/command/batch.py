"""The runs of one command line: done one after the other or several at once, and what is said."""

from __future__ import annotations

import os
import sys
from collections.abc import Callable, Sequence
from typing import NamedTuple

from orv import inputs
from orv.command.console import failure_of
from orv.command.options import GenerateOptions
from orv.command.outputs import Outcome
from orv.errors import Interrupted, OrvError
from orv.models.sources import standard_input
from orv.runs.done import Done
from orv.unchanged import is_recorded

# How many empty files are named.
_SHOWN = 10

Generate = Callable[[GenerateOptions], Outcome]


def do_runs(runs: Sequence[GenerateOptions], generate: Generate) -> int:
    """Do the runs, each a transaction of its own. Returns the exit code.

    A single run that fails raises its error. Of several, a failing one does not stop the others.
    """
    batch = _Batch(runs, generate)
    jobs = min(runs[0].jobs or len(os.sched_getaffinity(0)), len(runs))
    if runs[0].scheduler is not None:
        batch.do_elsewhere(runs[0].scheduler)
    elif len(runs) == 1:
        batch.outcomes[0] = generate(runs[0])
    elif jobs == 1:
        for number in range(len(runs)):
            batch.report(number, Done(batch.attempt(number)))
    else:
        batch.do_at_once(jobs)
    batch.write_common_reports()
    return batch.end()


class Attempt(NamedTuple):
    """What came of a run that was one of several; `failure` is the message of its error, or ""."""

    outcome: Outcome | None
    failure: str = ""
    found: inputs.Inputs = inputs.Inputs()


def attempt(do: Callable[[], Outcome | None]) -> Attempt:
    """Do a run. What ends all runs is raised: an interruption, and failing standard streams."""
    try:
        with inputs.observed() as found:
            known = set(sys.modules)
            outcome = do()
            found.note_modules(sys.modules.keys() - known)
            return Attempt(outcome, found=found)
    except (Interrupted, OSError, ImportError):
        raise
    except Exception as error:
        return Attempt(None, failure_of(error))


class _Batch:
    """Several runs, by number, and what came of them."""

    def __init__(self, runs: Sequence[GenerateOptions], generate: Generate) -> None:
        self._runs = runs
        self._generate = generate
        self.outcomes: dict[int, Outcome] = {}
        self._failed = 0
        self._interrupted: list[str] = []
        self._recorder = self._known = None
        if is_recorded():
            from orv.command.record import Recorder
            from orv.command.repeat import KnownRuns

            self._recorder = Recorder()
            if len(runs) > 1 and runs[0].scheduler is None:
                self._known = KnownRuns(runs, self._recorder)

    def attempt(self, number: int) -> Attempt:
        """Do a run, unless it would do what it did the last time."""
        options = self._runs[number]
        known = None if self._known is None else self._known.repeat(options)
        if known is not None:
            return Attempt(known[0], found=known[1])
        return attempt(lambda: self._generate(options))

    def report(self, number: int, done: Done[Attempt]) -> None:
        """Say what came of a run."""
        done.printed.show()
        if isinstance(done.error, Interrupted):
            self._interrupted.append(str(done.error))
        elif isinstance(done.error, OrvError):
            self._fail(number, failure_of(done.error))
        elif done.error is not None:
            raise done.error
        elif done.result is not None and done.result.outcome is not None:
            self.outcomes[number] = done.result.outcome
            inputs.current().add(done.result.found)
            if self._known is not None:
                self._known.note(self._runs[number], done.result.outcome, done.result.found)
        elif done.result is not None:
            self._fail(number, done.result.failure)

    def _fail(self, number: int, text: str) -> None:
        self._failed += 1
        where = f'\n    in the run "{self._runs[number].label}"' if len(self._runs) > 1 else ""
        print(text + where, file=sys.stderr)

    def do_at_once(self, jobs: int) -> None:
        """Do all runs, several at once. Those that touch the same files keep their order."""
        from orv.runs.local import do_in_processes
        from orv.runs.order import Touched, waits

        if any(model.is_input for run in self._runs for model in run.model):
            # The processes get it with the copy.
            standard_input()
        after = waits(Touched(run.inputs, run.written) for run in self._runs)
        try:
            do_in_processes(self.attempt, after, jobs, self.report)
        except KeyboardInterrupt:
            if self._interrupted:
                raise Interrupted("\n".join(self._interrupted)) from None
            raise

    def do_elsewhere(self, scheduler: str) -> None:
        """Have all runs rendered by the workers of a scheduler; format and write here."""
        from orv.command.remote import RemoteRuns

        RemoteRuns(self._runs, self.report).do(scheduler)

    def write_common_reports(self) -> None:
        """Write what the runs of a pattern report together, unless one of them failed."""
        members: dict[int, list[int]] = {}
        for number, run in enumerate(self._runs):
            if run.whole is not None:
                members.setdefault(id(run.whole), []).append(number)
        for numbers in members.values():
            whole = self._runs[numbers[0]].whole
            if whole is not None and all(number in self.outcomes for number in numbers):
                from orv.command.foreach import write_common_reports

                write_common_reports(whole, [self.outcomes[number] for number in numbers])

    def end(self) -> int:
        """Say what all runs came to. Returns the exit code."""
        told = [self.outcomes[number] for number, run in enumerate(self._runs)
                if number in self.outcomes and not run.quiet and not run.diff]  # fmt: skip
        same = told and not self._failed and not any(outcome.differs for outcome in told)
        print(_summary(told, bool(same)), end="")
        if self._failed and len(self._runs) > 1:
            print(f"error: {self._failed} of {len(self._runs)} runs failed", file=sys.stderr)
        if self._known is not None:
            self._known.keep()
        differs = any(self._runs[number].check and outcome.differs
                      for number, outcome in self.outcomes.items())  # fmt: skip
        if differs or self._failed:
            return 1
        if self._recorder is not None and not any(run.always_runs for run in self._runs):
            self._recorder.keep(inputs.current(), len(self._runs), _summary(told, bool(told)))
        return 0


def _summary(told: Sequence[Outcome], same: bool) -> str:
    """What is printed at the end of runs whose files are the `same` as before."""
    text = "up to date\n" if same else ""
    empty = [label for outcome in told for label in outcome.empty]
    if empty:
        more = f" and {len(empty) - _SHOWN} more" if len(empty) > _SHOWN else ""
        text += f"empty, not written: {', '.join(empty[:_SHOWN])}{more}\n"
    return text
