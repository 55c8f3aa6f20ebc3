"""`python3 -m orv`, and what the command `orv` calls."""

import sys

from orv.unchanged import again


def main() -> int:
    """Run the command line, as far as there is something to do. Returns the exit code."""
    code = again(sys.argv[1:])
    if code is None:
        from orv.command import main as run

        code = run()
    return code


if __name__ == "__main__":
    sys.exit(main())
