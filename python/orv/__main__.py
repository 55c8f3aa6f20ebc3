"""`python3 -m orv`."""

import sys

from orv.command import main

sys.exit(main())
