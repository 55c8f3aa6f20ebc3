"""Runs a command and prints its processor seconds and largest resident size in megabytes.

A process begins with the size of the one that it comes from as its largest. This program is small,
so that it may be in between.
"""

import os
import sys

_nowhere = os.open(os.devnull, os.O_WRONLY)
_process = os.posix_spawnp(
    sys.argv[1],
    sys.argv[1:],
    os.environ,
    file_actions=[(os.POSIX_SPAWN_DUP2, _nowhere, 1), (os.POSIX_SPAWN_DUP2, _nowhere, 2)],
)
_, _status, _usage = os.wait4(_process, 0)
print(_usage.ru_utime + _usage.ru_stime, _usage.ru_maxrss / 1024)
sys.exit(os.waitstatus_to_exitcode(_status))
