"""The output folder: opened once, locked while a run plans and writes."""

from __future__ import annotations

import errno
import os
import time
from collections.abc import Callable

from orv import _native
from orv.errors import OutputError

# How often a run that waits looks whether the other one has ended, in seconds.
_INTERVAL = 0.05

# What file systems without locks say.
_NO_LOCKS = (errno.ENOLCK, errno.EOPNOTSUPP, errno.ENOSYS, errno.EINVAL, errno.EBADF)


def open_folder(path: str, durable: bool = False) -> _native.OutputFolder:
    """Open the folder that a user names; it need not exist.

    Raises OutputError when something else is in its place or it cannot be read.
    """
    try:
        return _native.OutputFolder(path, os.path.realpath(path), durable)
    except OSError as error:
        raise OutputError(f"{path} cannot be opened: {reason(error)}") from error


def make_folder(folder: _native.OutputFolder) -> None:
    """Make the folder when it is not there. Raises OutputError."""
    try:
        folder.create()
    except OSError as error:
        raise OutputError(f"{folder.path} cannot be made: {reason(error)}") from error


def lock(
    folder: _native.OutputFolder,
    shared: bool,
    timeout: float,
    waiting: Callable[[], None] = lambda: None,
) -> None:
    """Lock the folder for readers or one writer, until the process ends or the folder is dropped.

    While another run holds it, wait at most `timeout` seconds; `waiting` is called once. Raises
    OutputError when the time is over. On file systems without locks nothing is locked.
    """
    end = time.monotonic() + timeout
    is_waiting = False
    try:
        while not folder.lock(shared):
            if time.monotonic() >= end:
                raise OutputError(
                    f"another run is using {folder.path} and has not ended in {timeout:g} seconds;"
                    " --lock-timeout=SECONDS waits longer"
                )
            if not is_waiting:
                waiting()
            is_waiting = True
            time.sleep(_INTERVAL)
    except OSError as error:
        if error.errno not in _NO_LOCKS:
            raise OutputError(f"{folder.path} cannot be locked: {reason(error)}") from error


def texts_on_disk(
    folder: _native.OutputFolder, path: str, markers: _native.Markers
) -> dict[str, bytes]:
    """The texts of the user regions of a file; none when it cannot be read.

    Raises Located when its markers are damaged.
    """
    try:
        found = folder.compare(folder.locate(path), b"", _native.Regions(), markers)
    except (OSError, OutputError):
        return {}
    return {region.id: region.text for region in found.regions}


def shown(folder: _native.OutputFolder, path: str) -> str:
    """A path below the folder as messages and listings show it."""
    # The bytes of names are UTF-8 whatever the locale.
    return os.path.join(folder.path, os.fsdecode(path.encode("utf-8", "surrogateescape")))


def reason(error: OSError) -> str:
    """What the system said, for a message."""
    if error.errno == errno.ELOOP:
        return "a link took the place of a file or folder"
    return error.strerror or str(error)
