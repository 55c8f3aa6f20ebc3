"""Writes the table of tables.py by another template engine.

    python3 table_peers.py jinja2|jinja2_stream|mako MODEL.json FILE
"""

from __future__ import annotations

import json
import re
import sys
from pathlib import Path
from typing import TYPE_CHECKING

if TYPE_CHECKING:
    from jinja2 import Template

TEMPLATE = Path(__file__).with_name("table.j2").read_text()


def jinja2_template() -> Template:
    """The template of orv without its own tags."""
    from jinja2 import Environment, StrictUndefined

    environment = Environment(
        undefined=StrictUndefined, keep_trailing_newline=True, trim_blocks=True, lstrip_blocks=True
    )
    plain = re.sub(r"\{% (end)?(file|section).*%\}\n", "", TEMPLATE)
    return environment.from_string(plain)


def mako_source() -> str:
    """The same template in Mako's words."""
    source = re.sub(r"\{% (end)?(file|section).*%\}\n", "", TEMPLATE)
    source = source.replace("{% for row in rows %}", "% for row in rows:")
    source = source.replace("{% endfor %}", "% endfor")
    return re.sub(r"\{\{ row\.(\w+) \}\}", r"${row['\1']}", source)


def main() -> None:
    peer, model, path = sys.argv[1:]
    with open(model, "rb") as file:
        rows = json.load(file)["rows"]
    if peer == "jinja2_stream":
        jinja2_template().stream(rows=rows).dump(path, "utf-8")
        return
    if peer == "jinja2":
        text = jinja2_template().render(rows=rows)
    else:
        from mako.template import Template as MakoTemplate

        text = MakoTemplate(mako_source()).render(rows=rows)
    with open(path, "wb") as file:
        file.write(text.encode())


if __name__ == "__main__":
    main()
