"""Whether a command, or one of its runs, would do again what it did the last time.

A record says what a command found and made. While all of that holds, the command would only say
again what it said. Records are looked at before the engine is loaded: this module imports little.
A command that does several runs has a record for each of them, too.
"""

from __future__ import annotations

import fcntl
import marshal
import os
import stat
import sys
import time
from hashlib import blake2b

from orv.cache import Cache

TYPE_CHECKING = False
if TYPE_CHECKING:
    from collections.abc import Mapping, Sequence
    from typing import Any

# What tells versions of a file apart: mode, device, inode, size, time of the bytes and of the file.
Signature = tuple[int, int, int, int, int, int]

# A file as a record knows it: its signature and digest, and where it leads if it is a link.
Entry = tuple[Signature, bytes, str]

# A file that changed so shortly before it was looked at, in nanoseconds, may have changed once more
# without another time: some file systems count in steps of two seconds.
RACY = 2_000_000_000

# What a shell says about itself; nothing that a run does depends on it.
_SESSION = frozenset([b"_", b"COLUMNS", b"LINES", b"OLDPWD", b"PWD", b"SHLVL", b"TERM"])

# The longest report that is not hashed, in bytes.
_SHORT = 65536

# When this command began.
STARTED = time.time_ns()

_records = Cache("unchanged")
_runs = Cache("runs")
_key = ""


def again(arguments: Sequence[str]) -> int | None:
    """Do what the command does when nothing has changed. None when it has to run."""
    global _key
    if arguments[:1] != ["generate"] or "--always" in arguments:
        return None
    try:
        _key = _identity(arguments)
        data = _records.get(_key)
        return None if data is None else _repeat(marshal.loads(data))
    except OSError:
        return None


def is_recorded() -> bool:
    """Whether a record of this command would be found again."""
    return bool(_key)


def keep(record: dict[str, Any]) -> None:
    """Keep the record of this command."""
    _records.put(_key, marshal.dumps(record))
    _records.forget_unused()


def kept_runs() -> dict[str, Any]:
    """What is kept of the runs of this command, as given to keep_runs(); empty if nothing is."""
    data = _runs.get(_key)
    records: dict[str, Any] = {} if data is None else marshal.loads(data)
    return records


def keep_runs(records: dict[str, Any]) -> None:
    """Keep the records of the runs of this command."""
    _runs.put(_key, marshal.dumps(records))
    _runs.forget_unused()


def look(path: str) -> tuple[Signature, bytes]:
    """The signature of a file and its bytes, which are at least as new. Raises OSError."""
    with open(path, "rb") as file:
        signature = signature_of(os.fstat(file.fileno()))
        return signature, file.read()


def signature_of(found: os.stat_result) -> Signature:
    """What has to be the same of a file for its bytes to be the same."""
    return (found.st_mode, found.st_dev, found.st_ino, found.st_size,
            found.st_mtime_ns, found.st_ctime_ns)  # fmt: skip


def is_settled(signature: Signature, since: int) -> bool:
    """Whether a file with this signature has had the same bytes since then, and before."""
    return signature[5] < since - RACY


def digest_of(data: Any) -> bytes:
    """What has to be the same of two buffers for their bytes to be the same."""
    # Most records hold by signatures alone, and need not load the native part.
    from orv import _native

    return _native.byte_hash(data)


def contents_of(data: bytes) -> bytes:
    """The same for reports, which are compared each time: a short one is kept as it is."""
    return data if len(data) <= _SHORT else digest_of(data)


def _identity(arguments: Sequence[str]) -> str:
    """What the record is kept by: the command line and what surrounds it."""
    environment = sorted(item for item in os.environb.items() if item[0] not in _SESSION)
    program = __file__, sys.version, sys.flags, sys.path
    user = os.geteuid(), os.getegid(), os.getgroups()
    parts = list(arguments), os.getcwd(), environment, program, user
    return blake2b(repr(parts).encode("utf-8", "surrogateescape"), digest_size=20).hexdigest()


def _repeat(record: dict[str, Any]) -> int | None:
    now = time.time_ns()
    with Locks() as locks:
        seen = verified(record, locks) if are_same(record["programs"]) else None
        if seen is None:
            return None
        if any(is_settled(entry[0], now) for entry in seen.values()):
            keep(record | {"files": record["files"] | seen, "since": now})
        for stream, text in ((2, record["said"]), (1, record["printed"])):
            while text:
                text = text[os.write(stream, text) :]
        return 0


class Locks:
    """Locks that keep those who write out of folders, until the end of a `with` block."""

    def __init__(self) -> None:
        self._descriptors: list[int] = []

    def __enter__(self) -> Locks:
        return self

    def __exit__(self, *_: object) -> None:
        for descriptor in self._descriptors:
            os.close(descriptor)

    def add(self, folder: str) -> None:
        """Lock a folder. Raises OSError when someone writes into it."""
        self._descriptors.append(os.open(folder, os.O_RDONLY | os.O_DIRECTORY | os.O_CLOEXEC))
        fcntl.flock(self._descriptors[-1], fcntl.LOCK_SH | fcntl.LOCK_NB)


def are_same(programs: Mapping[str, Signature]) -> bool:
    """Whether the files of the program have these signatures. Raises OSError."""
    return all(signature_of(os.stat(path)) == known for path, known in programs.items())


def verified(record: dict[str, Any], locks: Locks) -> dict[str, Entry] | None:
    """Whether all is as the record says, but for programs, and stays so while the locks are held.

    Gives entries of the files whose bytes had to be looked at, as their signatures may lie; None if
    something has changed. The reports are as new then as if they had been written now. Raises
    OSError.
    """
    for folder in record["outputs"]:
        locks.add(folder)
    if not _holds(record):
        return None
    seen = _seen(record)
    for path in record["reports"] if seen is not None else ():
        os.utime(path)
    return seen


def _holds(record: dict[str, Any]) -> bool:
    """Whether all but the files is as the record says."""
    return (
        all(os.path.realpath(path) == real for path, real in record["folders"].items())
        and not any(map(os.path.lexists, record["absent"]))
        and not any(map(_has_temporary, record["cleaned"]))
        and _are_found(record["patterns"])
        and all(_has(path, known) for path, known in record["reports"].items())
    )


def _has(path: str, contents: bytes) -> bool:
    # Opening a pipe would wait for someone who writes into it.
    return os.path.isfile(path) and contents_of(look(path)[1]) == contents


def _has_temporary(folder: str) -> bool:
    """Whether a run that was killed has left something in the folder."""
    return any(name.startswith(".orv-") and name.endswith(".tmp") for name in os.listdir(folder))


def _are_found(patterns: Mapping[str, Sequence[str]]) -> bool:
    if not patterns:
        return True
    from glob import glob

    return all(
        sorted(glob(pattern, recursive=True)) == known for pattern, known in patterns.items()
    )


def _seen(record: dict[str, Any]) -> dict[str, Entry] | None:
    """Entries of the files whose bytes were looked at; None when a file is not the same."""
    files: dict[str, Entry] = record["files"]
    seen: dict[str, Entry] = {}
    for path, entry in files.items():
        signature, digest, real = entry
        found = os.stat(path) if real else os.lstat(path)
        if real and os.path.realpath(path) != real:
            return None
        if signature_of(found) == signature and is_settled(signature, record["since"]):
            continue
        if found.st_mode != signature[0] or not stat.S_ISREG(found.st_mode):
            return None
        newer, data = look(path)
        if digest_of(data) != digest:
            return None
        seen[path] = (newer, digest, real)
    return seen
