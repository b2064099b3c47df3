"""makereport.py FOLDER -o FILE: one page of HTML, with pictures, of what a run left, or a study."""

from __future__ import annotations

import argparse
import html
import json
import os
import re
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent / "python")]

import charts  # noqa: E402
import facts  # noqa: E402
import scenarios  # noqa: E402
import solvanto  # noqa: E402


def page(title: str, rows: list[tuple[str, str]], specification: str, pictures: list, table: str = "") -> str:
    """The template with all parts put in; nothing in it is loaded from elsewhere."""
    parts = {
        "TITLE": html.escape(title),
        "FACTS": "".join(f"<tr><th scope=row>{html.escape(k)}</th><td>{html.escape(v)}</td></tr>" for k, v in rows),
        "SPECIFICATION": html.escape(specification),
        "TABLE": table,
        "STYLE": (HERE / "page.css").read_text(),
        "LIBRARY": (HERE / "vendor/echarts.min.js").read_text(),
        "SCRIPT": (HERE / "page.js").read_text(),
        # No "</script>" may stand in the text of a script.
        "DATA": json.dumps(pictures, ensure_ascii=False, separators=(",", ":")).replace("</", "<\\/"),
    }
    return re.sub("@([A-Z]+)@", lambda mark: parts[mark[1]], (HERE / "page.html").read_text())


def write(path: Path, text: str) -> None:
    """Whole or not at all."""
    beside = path.with_name(path.name + ".new")
    beside.write_text(text, encoding="utf-8")
    os.replace(beside, path)


def runpage(folder: Path) -> str:
    pictures = charts.charts(charts.Run(folder))
    specification = (folder / "SolvantoSpec.txt").read_text()
    return page(f"Report of {folder.resolve().name}", facts.facts(folder), specification, pictures)


def studypage(folder: Path) -> str:
    study = scenarios.Scenarios(folder)
    return page(f"Study {folder.resolve().name}", study.facts(), study.specification(), study.charts(), study.differences())


def main() -> int:
    parser = argparse.ArgumentParser(prog="scripts/report", description="Makes one page of HTML of what a run left, or a study.")
    parser.add_argument("folder", type=Path, help="of a finished run, or of a study with its results")
    parser.add_argument("-o", "--output", type=Path, help="the page (report.html in the folder)")
    arguments = parser.parse_args()
    try:
        isstudy = (arguments.folder / "study.yaml").exists()
        text = studypage(arguments.folder) if isstudy else runpage(arguments.folder)
        output = arguments.output or arguments.folder / "report.html"
        write(output, text)
    except (solvanto.SolvantoError, OSError) as error:
        print(f"ERROR: {error}", file=sys.stderr)
        return 2
    print(output)
    return 0


if __name__ == "__main__":
    sys.exit(main())
