"""A process that does tasks of other machines, one at a time, in private folders.

A task may change what a process has one of: its working folder, its streams, its modules, its
limits. So it is not done in the threads of the scheduler's worker, but in a process beside them.
"""

from __future__ import annotations

import importlib
import os
import pickle
import socket
import subprocess
import sys
from collections.abc import Iterator
from contextlib import contextmanager
from multiprocessing.connection import Connection
from tempfile import TemporaryDirectory
from threading import Lock
from typing import Any, NamedTuple

from orv.runs.capture import Capture
from orv.runs.done import Done, Printed
from orv.runs.parcel import Mirror, Parcel, unpacked


class Task(NamedTuple):
    """What is done: the function `name`, as MODULE:FUNCTION, with a mirror and `argument`.

    `folder` is the working folder; `own` are files of this task alone.
    """

    name: str
    argument: Any
    folder: str
    own: Parcel


class Service:
    """Such a process, seen from the one that started it."""

    def __init__(self) -> None:
        ours, theirs = socket.socketpair()
        environment = {**os.environ, "PYTHONPATH": os.pathsep.join(filter(None, sys.path))}
        self._process = subprocess.Popen(
            [sys.executable, "-m", __name__, str(theirs.fileno())],
            env=environment,
            stdin=subprocess.DEVNULL,
            pass_fds=[theirs.fileno()],
        )
        theirs.close()
        self._connection = Connection(ours.detach())
        self._known: set[str] = set()

    def call(self, key: str, packed: bytes, task: bytes) -> bytes:
        """Do a task, with the files of a parcel that has this key. Gives a Done as bytes.

        Raises ConnectionError when the process dies.
        """
        sent = b"" if key in self._known else packed
        self._known.add(key)
        try:
            self._connection.send((key, sent))
            self._connection.send_bytes(task)
            return self._connection.recv_bytes()
        except (EOFError, OSError) as error:
            code = self._process.wait()
            how = f"was killed by signal {-code}" if code < 0 else f"ended with {code}"
            raise ConnectionError(f"the process of this run {how}") from error


_idle: list[Service] = []
_lock = Lock()


@contextmanager
def service() -> Iterator[Service]:
    """A process that nobody else uses meanwhile."""
    with _lock:
        found = _idle.pop() if _idle else None
    found = found or Service()
    yield found
    with _lock:
        _idle.append(found)


def _serve(connection: Connection) -> None:
    capture = Capture()
    mirrors: dict[str, Mirror] = {}
    with TemporaryDirectory(prefix="orv-") as folder:
        os.environ["XDG_CACHE_HOME"] = folder
        while True:
            try:
                key, packed = connection.recv()
                task = pickle.loads(connection.recv_bytes())
            except EOFError:
                return
            if key not in mirrors:
                mirrors[key] = Mirror(os.path.join(os.path.realpath(folder), key))
                mirrors[key].put(unpacked(packed))
            done = _done(task, mirrors[key])
            printed = capture.take()
            printed = Printed(*map(mirrors[key].originals, printed))
            connection.send_bytes(pickle.dumps(done._replace(printed=printed)))


def _done(task: Task, mirror: Mirror) -> Done[Any]:
    module, _, function = task.name.partition(":")
    mirror.put(task.own)
    os.makedirs(mirror.path(task.folder), exist_ok=True)
    os.chdir(mirror.path(task.folder))
    try:
        return Done(getattr(importlib.import_module(module), function)(task.argument, mirror))
    except Exception as error:
        return Done(None, error)
    finally:
        os.chdir("/")
        mirror.remove(task.own)


if __name__ == "__main__":
    _serve(Connection(int(sys.argv[1])))
