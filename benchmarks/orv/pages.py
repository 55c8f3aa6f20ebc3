"""The page of a report of a large run, opened in a browser."""

from __future__ import annotations

import json
import subprocess
import time
from pathlib import Path
from statistics import median
from typing import NamedTuple

import packaging
from processes import GENERATE

# Two files for each module, each of about 10 kB.
_MODULES, _FIELDS = 1000, 40

_IS_OPEN = """return document.querySelectorAll("[aria-label=Files] .row").length > 0"""


class Opened(NamedTuple):
    """Seconds until the files are listed, and megabytes of the script's heap then."""

    seconds: float
    megabytes: float


def make(folder: Path) -> Path:
    """The report of a run of 2,000 files."""
    model, page = folder / "many.json", folder / "report.html"
    model.write_text(json.dumps(packaging.modules(_MODULES, _FIELDS)))
    template = str(Path(__file__).with_name("modules.j2"))
    out = ["--out", str(folder / "many"), "--dry-run", "--report", str(page)]
    subprocess.run([*GENERATE, template, "--model", str(model), *out], check=True)
    return page


def measure(page: Path, rounds: int) -> Opened:
    """What opening takes: medians. Raises ImportError where no browser can be driven."""
    from selenium.webdriver import Chrome, ChromeOptions
    from selenium.webdriver.chrome.service import Service

    options = ChromeOptions()
    for argument in ("headless=new", "no-sandbox", "disable-dev-shm-usage"):
        options.add_argument(f"--{argument}")
    found: list[Opened] = []
    with Chrome(options=options, service=Service("/usr/bin/chromedriver")) as browser:
        for _ in range(rounds):
            browser.get("about:blank")
            begin = time.perf_counter()
            browser.get(page.as_uri())
            while not browser.execute_script(_IS_OPEN):
                time.sleep(0.01)
            seconds = time.perf_counter() - begin
            heap = browser.execute_cdp_cmd("Runtime.getHeapUsage", {})
            found.append(Opened(seconds, heap["usedSize"] / 1e6))
    return Opened._make(map(median, zip(*found, strict=True)))
