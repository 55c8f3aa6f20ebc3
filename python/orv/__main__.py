"""`python3 -m orv`, and what the command `orv` calls."""

import gc
import sys

from orv.unchanged import again

# How many objects are made between two looks for unused cycles. Most of what a run makes lives to
# its end, and the interpreter's own number would have it looked at again and again.
_BETWEEN_COLLECTIONS = 50_000


def main() -> int:
    """Run the command line, as far as there is something to do. Returns the exit code.

    The process is expected to end then: what is in cycles is not freed any more, unless Python
    files of the user have run, which may have left something to be done when objects are freed.
    """
    gc.set_threshold(_BETWEEN_COLLECTIONS)
    try:
        code = again(sys.argv[1:])
        if code is None:
            from orv.command import main as run

            code = run()
        return code
    finally:
        if "orv.pythonfiles" not in sys.modules:
            gc.freeze()


if __name__ == "__main__":
    sys.exit(main())
