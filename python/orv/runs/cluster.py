"""Doing tasks on the workers of a Dask scheduler."""

from __future__ import annotations

import pickle
from collections import Counter
from collections.abc import Sequence
from importlib import import_module
from logging import CRITICAL, getLogger
from time import monotonic
from typing import Any
from uuid import uuid4

from orv._version import __version__
from orv.errors import OrvError
from orv.runs.done import Done
from orv.runs.parcel import digest
from orv.runs.service import service

# How often tasks begin again that ended with an error of the machine.
_RETRIES = 3

# How many seconds a scheduler has to answer, and to have a worker.
_PATIENCE = 30

# How many seconds what the scheduler says of its workers is taken to hold: to answer costs time.
_BETWEEN_LOOKS = 1

# How often tasks are sent ahead for each thread of a worker, and how many together at most: what a
# scheduler costs is for each time.
_AHEAD = 3
_TOGETHER = 16


class Cluster:
    """The workers of a scheduler. Raises OrvError when it cannot be reached or has none."""

    def __init__(self, address: str) -> None:
        try:
            distributed: Any = import_module("distributed")
        except ImportError as error:
            raise OrvError(
                f"--scheduler needs the Python package distributed ({error}); on Debian it is in"
                " python3-distributed"
            ) from error
        # Without this the lines of code that each task comes from are looked up, and sent with it.
        no_code = {"distributed.diagnostics.computations.ignore-modules": [".*"]}
        import_module("dask").config.set(no_code)
        # What goes wrong is said once, in the words of this program.
        for name in ("distributed", "distributed.client", "asyncio", "tornado.application"):
            getLogger(name).setLevel(CRITICAL + 1)
        self._address = address
        self._topic = f"orv-{uuid4().hex}"
        try:
            self._client: Any = _client(distributed, address)
        except (OSError, ValueError) as error:
            raise OrvError(f"the scheduler {address} cannot be reached: {error}") from error
        try:
            self._client.wait_for_workers(1, timeout=_PATIENCE)
        except TimeoutError as error:
            self.close()
            raise OrvError(f"the scheduler {address} has no worker") from error
        self._running = distributed.as_completed(
            [], loop=self._client.loop, with_results=True, raise_errors=False
        )
        self._parcels: dict[str, Any] = {}
        self._under_way = 0
        # The threads of all workers when they were last asked for, and when that was.
        self._threads = 0
        self._looked = 0.0
        # The numbers of tasks that were sent together, by the key that the scheduler knows.
        self._numbers: dict[str, Sequence[int]] = {}

    def room(self, waiting: int) -> int:
        """How many tasks to send together, of so many that wait; 0 while workers are busy."""
        threads = max(self._count_threads(), 1)
        if self._under_way >= _AHEAD * threads:
            return 0
        return max(1, min(_TOGETHER, waiting // (_AHEAD * threads)))

    def send(self, numbers: Sequence[int], packed: bytes, tasks: Sequence[bytes]) -> None:
        """Have tasks done, which are known by numbers, with the files of a parcel.

        A task is a Task of the service, and the parcel is packed, both as bytes.
        """
        key = digest(packed)
        if key not in self._parcels:
            # A task of its own: it is done again when the worker that has the result dies.
            self._parcels[key] = self._client.submit(bytes, packed, key=f"orv-parcel-{key}")
        name = f"{self._topic}-{len(self._numbers)}"
        self._numbers[name] = numbers
        future = self._client.submit(
            _perform, self._parcels[key], key, tasks, __version__, (self._topic, name),
            key=name, retries=_RETRIES,
        )  # fmt: skip
        self._under_way += 1
        self._running.add(future)

    def receive(self) -> list[tuple[int, Done[Any]]]:
        """Wait for tasks that were sent together. Gives their numbers, and what became of each.

        Raises OrvError when the scheduler or the last worker has gone.
        """
        arrival = self._running.thread_condition
        while not self._running.has_ready():
            if not self._count_threads():
                raise OrvError(f"the scheduler {self._address} has lost its last worker")
            with arrival:
                arrival.wait_for(self._running.has_ready, _BETWEEN_LOOKS)
        future, result = next(self._running)
        self._under_way -= 1
        numbers = self._numbers[future.key]
        if isinstance(result, list):
            return list(zip(numbers, map(pickle.loads, result), strict=True))
        error = result[1] if isinstance(result, tuple) else result
        if type(error).__name__ == "CancelledError":
            raise self._lost()
        what = OrvError(f"the run failed on its worker: {type(error).__name__}: {error}")
        return [(number, Done(None, what)) for number in numbers]

    def _count_threads(self) -> int:
        """How many threads all workers have."""
        now = monotonic()
        if now - self._looked >= _BETWEEN_LOOKS:
            try:
                self._threads = sum(self._client.nthreads().values())
            except OSError as error:
                raise self._lost() from error
            self._looked = now
        return self._threads

    def _lost(self) -> OrvError:
        return OrvError(f"the connection to the scheduler {self._address} was lost")

    def begun_again(self) -> list[int]:
        """The numbers of the tasks that began more than once, on workers that died or failed."""
        counts = Counter(name for _, name in self._client.get_events(self._topic))
        again = [self._numbers[name] for name, count in counts.items() if count > 1]
        return sorted({number for numbers in again for number in numbers})

    def close(self) -> None:
        """Drop the tasks that have not ended."""
        self._client.close()


def _client(distributed: Any, address: str) -> Any:
    """A connection to the scheduler. Raises OSError and ValueError."""
    # What TLS needs is in the settings of the package.
    security = distributed.Security()
    encryption = security.get_connection_args("client")["ssl_context"]
    if address.startswith("tls:") and encryption is None:
        raise ValueError("Dask's settings distributed.comm.tls name no certificates")
    return distributed.Client(address, security=security, timeout=_PATIENCE, set_as_default=False)


def _perform(
    packed: bytes, key: str, tasks: Sequence[bytes], version: str, event: tuple[str, str]
) -> list[bytes]:
    """Do tasks on a worker. Gives a Done for each, as bytes."""
    worker = import_module("distributed").get_worker()
    worker.log_event(*event)
    if version != __version__:
        what = f"the worker {worker.address} has orv {__version__}, expected {version}"
        return [_failed(what) for _ in tasks]
    return [_performed(packed, key, task) for task in tasks]


def _performed(packed: bytes, key: str, task: bytes) -> bytes:
    try:
        with service() as process:
            return process.call(key, packed, task)
    except ConnectionError as error:
        return _failed(str(error))


def _failed(what: str) -> bytes:
    return pickle.dumps(Done(None, OrvError(what)))
