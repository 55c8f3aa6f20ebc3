"""The page of a report, in a real browser: what it shows, and that nothing in it is run."""

from __future__ import annotations

import json
import os
import re
import shutil
import subprocess
import sys
from collections.abc import Callable, Iterator
from pathlib import Path

import pytest

pytest.importorskip("selenium", reason="needs python3-selenium: scripts/setup browser")

from selenium.common.exceptions import (
    ElementNotInteractableException,
    StaleElementReferenceException,
)
from selenium.webdriver import Chrome, ChromeOptions, Keys
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import WebDriverWait

EXAMPLE = Path(__file__).parents[2] / "examples" / "gl"
REGISTRY = Path("/usr/share/khronos-api/gl.xml")
# What would run if any of it became a part of the page.
HOSTILE = (
    '</script><script>document.title="run"</script><img src=x onerror="document.title=1">'
    "]]>--><svg/onload=document.title=2>'\"&lt;\u2028{{ javascript:alert(1) }}"
)

# Lines that print nothing, though they could: 3, 4 and 6.
PARTS = """\
{% file "a.c" %}{% section "Enums" %}
{% if false %}
one
two

{{ x }}
{% endif %}
{% macro m() %}
m
n
{% endmacro %}
{{ m() -}}
{% for i in range(3) %}
int a{{ i }};
{% endfor %}{% endsection %}{% do warn("look here") %}{% endfile %}
"""


def generate(folder: Path, *arguments: str | Path) -> str:
    """The address of the report of a run."""
    page = folder / "report.html"
    command = [sys.executable, "-m", "orv", "generate", *arguments, "--report", page,
               "--out", folder / "out", "--no-state", "--quiet"]  # fmt: skip
    subprocess.run(command, check=True, cwd=folder)
    return page.as_uri()


@pytest.fixture(scope="module")
def browser() -> Iterator[Chrome]:
    """A browser without a window."""
    program, driver = shutil.which("chromium"), shutil.which("chromedriver")
    if program is None or driver is None:
        pytest.skip("needs chromium and chromium-driver: scripts/setup browser")
    options = ChromeOptions()
    options.binary_location = program
    for argument in ("headless=new", "no-sandbox", "disable-dev-shm-usage", "disable-gpu",
                     "window-size=1400,900"):  # fmt: skip
        options.add_argument(f"--{argument}")
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    # Libraries that are preloaded into the tests are not the browser's.
    environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
    chrome = Chrome(options=options, service=Service(driver, env=environment))
    yield chrome
    chrome.quit()


class Page:
    """A report in the browser. Lists are named by the beginning of their labels."""

    def __init__(self, browser: Chrome, address: str) -> None:
        self.browser = browser
        self._address = address
        self.open("#")

    def open(self, state: str) -> None:
        """Load the page anew, in the state that an address tells."""
        self.browser.get("about:blank")
        self.browser.get(self._address + state)

    def rows(self, label: str) -> list[str]:
        """The rows of a list that are in view."""
        script = """return [...document.querySelectorAll(`[aria-label^="${arguments[0]}"] .row`)]
                           .map((row) => row.textContent)"""
        found: list[str] = self.browser.execute_script(script, label)
        return found

    def texts(self, selector: str) -> list[str]:
        """The texts of all elements of a selector."""
        return [found.text for found in self.browser.find_elements(By.CSS_SELECTOR, selector)]

    def row(self, label: str, text: str) -> None:
        """Click the row of a list that has a text."""
        rows = f'//*[starts-with(@aria-label, "{label}")]//*[@role="option"]'
        found = f'{rows}[contains(., "{text}")]/*[1]'

        def click() -> bool:
            matches = self.browser.find_elements(By.XPATH, found)
            for match in matches[:1]:
                match.click()
            return bool(matches)

        self.wait(click)

    def wait(self, condition: Callable[[], object]) -> None:
        """Wait until a condition holds; the page may make elements anew meanwhile."""
        ignored = [ElementNotInteractableException, StaleElementReferenceException]
        WebDriverWait(self.browser, 10, ignored_exceptions=ignored).until(lambda _: condition())

    def shows(self, label: str, *texts: str) -> None:
        """Wait until rows in view of a list have these texts."""
        self.wait(lambda: all(any(t in row for row in self.rows(label)) for t in texts))

    def press(self, *keys: str) -> None:
        """Press keys where the focus is."""
        self.browser.switch_to.active_element.send_keys(*keys)

    def focus(self) -> str:
        """The label of what has the focus."""
        return self.browser.switch_to.active_element.get_attribute("aria-label") or ""

    def is_clean(self) -> bool:
        """Whether the browser has found nothing to complain about."""
        return not self.browser.get_log("browser")


def test_example(browser: Chrome, tmp_path: Path) -> None:
    if not REGISTRY.exists():
        pytest.skip("needs khronos-api")
    address = generate(tmp_path, EXAMPLE / "loader.c.j2", "--extend", EXAMPLE / "selection.py",
                       "--model", REGISTRY, "--set", "version=1.1",
                       "--script", EXAMPLE / "banner.py")  # fmt: skip
    page = Page(browser, address)
    page.shows("Files", "gl_loader.c", "gl_version_1_1.h")
    assert "5\nfiles" in "\n".join(page.texts(".facts > div"))
    for name in ("banner.py", "commands.j2"):
        (row,) = [row for row in page.rows("Templates and scripts") if name in row]
        assert re.search(r"[\d.]*[1-9][\d.]* ms$", row)

    # From a line of a file to its template and model, and back to all that the line printed.
    out = tmp_path / "out"
    made = {path.name: path.read_text().splitlines() for path in out.glob("gl_version_*.h")}
    lines = made["gl_version_1_1.h"]
    page.row("Files", "gl_version_1_1.h")
    include = lines.index('#include "gl_types.h"') + 1
    page.row("Includes", "files.j2:")
    page.wait(lambda: browser.current_url.endswith(f"line={include}"))
    line = lines.index("#define glBindTexture glloader_glBindTexture") + 1
    page.open(f"#file=gl_version_1_1.h&line={line - 1}")
    page.row("Lines", "#define glBindTexture")
    page.wait(lambda: page.texts(".pieces code")[:2] == ["#define ", "glBindTexture"])
    chain = " ".join(page.texts(".chain li"))
    assert re.match(
        r"in section Defines for registry/commands/command\[.*include commands.j2", chain
    )
    page.row("Lines of the template", "#define {{ name }}")
    counts = {name: sum("#define gl" in line for line in text) for name, text in made.items()}
    page.shows("Files with what", *(f"{name}×{count}" for name, count in counts.items()))
    total = f"Line 21 printed on {sum(counts.values())} lines of 2 files"
    assert total in page.texts("#aside h2")
    lit = f"{counts['gl_version_1_1.h']} lines of "
    assert page.texts(".steps span")[0].startswith(lit)
    assert page.focus().startswith("Lines of the template")
    page.row("Files with what", "gl_version_1_0.h")
    page.wait(lambda: "#file=gl_version_1_0.h&line=" in browser.current_url)

    # The address holds it all; the keyboard reaches it all.
    page.open("#file=gl_loader.c&line=3")
    page.wait(lambda: page.texts(".origin h2") == ["gl_loader.c:3"])
    page.press("/")
    page.press("look_up_GL_VERSION_1_1", Keys.ENTER)
    page.shows("What was found", "function look_up_GL_VERSION_1_1", "look_up_GL_VERSION_1_1(")
    page.press(Keys.ARROW_DOWN, Keys.ENTER)
    page.shows("Outline", "look_up_GL_VERSION_1_1function")
    browser.back()
    page.wait(lambda: page.focus() == "What was found" and page.texts("main [aria-selected=true]"))
    assert page.is_clean()


def test_coverage_and_warnings(browser: Chrome, tmp_path: Path) -> None:
    (tmp_path / "a.j2").write_text(PARTS)
    page = Page(browser, generate(tmp_path, "a.j2"))
    page.row("Warnings", "look here")
    shown = ["3neverone", "4nevertwo", "9×1m", "10×1n", "14×3int a{{ i }};"]
    page.shows("Lines of the template", *shown)
    assert page.texts(".never .count") == ["never"] * 3
    for file, before in (("a.c", ""), ("b.c", "The run has no file b.c. ")):
        page.open(f"#file={file}&source=b.j2")
        page.wait(lambda: page.texts("#status") == [f"{before}The run has no template b.j2"])
    assert page.is_clean()


def test_hostile_run(browser: Chrome, tmp_path: Path) -> None:
    (tmp_path / "m.json").write_text(json.dumps({"rows": {HOSTILE: HOSTILE}}))
    name = HOSTILE.replace("/", "").replace("\u2028", "")
    (tmp_path / f"{name}.j2").write_text(
        '{% file name %}{% section "Enums" %}{% for key, row in rows.items() %}\n'
        f"{{% raw %}}{HOSTILE}{{% endraw %}}\n{{{{ row }}}}\n{{% endfor %}}{{% endsection %}}"
        "{% endfile %}{% do warn(rows|first) %}"
        '{% file "wide.c" %}{% section "Enums" %}{% for i in range(100000) %}{{ i }},{% endfor %}'
        "{% endsection %}{% endfile %}"
    )
    address = generate(tmp_path, f"{name}.j2", "--model", "m.json", "--set", f"name={name}.c")
    page = Page(browser, address)
    for label, text in {"Warnings": "onerror", "Files": "onerror", "Lines": "onload"}.items():
        page.row(label, text)
    page.wait(lambda: len(page.texts(".pieces li")) > 0)
    page.open("#file=wide.c")
    page.wait(lambda: page.texts(".origin > p") == ["and 199,501 more pieces"])
    page.press("/")
    page.press("document.title", Keys.ENTER)
    page.shows("What was found", "onload")
    assert browser.title.startswith("Report of ")
    assert browser.find_elements(By.CSS_SELECTOR, "img, svg") == []
    # The page allows no other script, and no script has tried to run.
    assert page.is_clean()
    browser.execute_script(
        "const division = document.createElement('div');"
        "document.body.append(Object.assign(division, {innerHTML: arguments[0]}))",
        HOSTILE,
    )
    page.wait(lambda: not page.is_clean())
    assert browser.title.startswith("Report of ")
