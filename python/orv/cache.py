"""What is kept from one run to the next in the user's cache folder."""

from __future__ import annotations

import os
import stat
import time
from hashlib import blake2b

# What no run has asked for so long, in seconds, leaves the cache.
_LONGEST_UNUSED = 30 * 24 * 3600

_DIGEST = 20


class Cache:
    """Bytes by their keys, hexadecimal digests, in a folder that only the user can write to.

    The folder is `orv/PART` of $XDG_CACHE_HOME, or of ~/.cache. Nothing is kept, and nothing is
    found, where that folder cannot be used or belongs to someone else.
    """

    def __init__(self, part: str) -> None:
        base = os.environ.get("XDG_CACHE_HOME") or os.path.expanduser("~/.cache")
        self._folder = os.path.join(base, "orv", part)
        self._is_private = False

    def get(self, key: str) -> bytes | None:
        """What was kept under the key; None when there is nothing or it is damaged."""
        path = os.path.join(self._folder, key)
        if not self._is_usable():
            return None
        try:
            with open(path, "rb") as file:
                data = file.read()
            os.utime(path)
        except OSError:
            return None
        digest, kept = data[:_DIGEST], data[_DIGEST:]
        return kept if blake2b(kept, digest_size=_DIGEST).digest() == digest else None

    def put(self, key: str, data: bytes) -> None:
        """Keep the bytes under the key."""
        path = os.path.join(self._folder, key)
        temporary = f"{path}.{os.getpid()}"
        try:
            os.makedirs(self._folder, 0o700, exist_ok=True)
            if not self._is_usable():
                return
            with open(
                os.open(temporary, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o600), "wb"
            ) as file:
                file.write(blake2b(data, digest_size=_DIGEST).digest() + data)
            os.replace(temporary, path)
        except OSError:
            pass

    def forget_unused(self) -> None:
        """Remove what no run has asked for lately."""
        oldest = time.time() - _LONGEST_UNUSED
        try:
            for entry in os.scandir(self._folder):
                if entry.stat().st_mtime < oldest:
                    os.unlink(entry)
        except OSError:
            pass

    def _is_usable(self) -> bool:
        """Whether the folder is the user's own and closed to others; looked at once."""
        if not self._is_private:
            try:
                found = os.stat(self._folder)
            except OSError:
                return False
            others = stat.S_IWGRP | stat.S_IWOTH
            self._is_private = found.st_uid == os.geteuid() and not found.st_mode & others
        return self._is_private
