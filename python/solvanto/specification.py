"""The specification file: read into a dictionary, written from one."""

from __future__ import annotations

import difflib
import json
import os
import shutil
import subprocess
from pathlib import Path
from typing import Any, Mapping

from .errors import SpecificationError

Value = str | int | float
MATRICES = ("GeneticCorrelationMatrix", "ResidualCorrelationMatrix")


def _value(word: str) -> Value:
    for kind in (int, float):
        try:
            return kind(word)
        except ValueError:
            pass
    return word


def read_spec(folder: str | os.PathLike) -> dict[str, Any]:
    """Keys of a specification with their values: a number or word, a list of them, and for the correlation
    matrices a list of the rows. folder: of a run, or the file itself.
    """
    path = Path(folder)
    path = path / "SolvantoSpec.txt" if path.is_dir() else path
    try:
        text = path.read_text(encoding="utf-8")
    except (OSError, UnicodeDecodeError) as error:
        raise SpecificationError(f"{path}: can't be read: {error}") from None
    spec: dict[str, Any] = {}
    rows: list | None = None
    for line in text.splitlines():
        line = "".join(line.split())
        if not line or line.startswith("#") or line.lower().startswith("box"):
            continue
        words = line.split(",")
        matrix = next((name for name in MATRICES if words[0].lower() == name.lower()), None)
        if matrix:
            rows = spec[matrix] = []
        elif rows is not None and isinstance(_value(words[0]), (int, float)):
            rows.append([_value(word) for word in words])
        else:
            rows = None
            values = [_value(word) for word in words[1:]]
            spec[words[0]] = values[0] if len(values) == 1 else values
    return spec


def program(folder: str | os.PathLike = ".") -> str:
    """The program of a folder, or of the path."""
    own = Path(folder) / "solvanto"
    found = str(own.resolve()) if own.exists() else shutil.which("solvanto")
    if found is None:
        raise SpecificationError(f"{own}: is missing, and no solvanto is on the path")
    return found


def keys(executable: str | None = None) -> list[dict[str, Any]]:
    """What the program tells of its keys: name, box, form, words, bounds, default, ..., in order."""
    answer = subprocess.run([executable or program(), "--keys"], capture_output=True, text=True, check=True)
    return json.loads(answer.stdout)


def write_spec(spec: Mapping[str, Any], folder: str | os.PathLike, executable: str | None = None) -> Path:
    """Writes SolvantoSpec.txt into a folder from a dictionary as of read_spec, boxes in order.

    Names are checked against the keys of the program (executable; None: that of the folder, or of the
    path); so is that no key which every run needs is missing. A value may be a number, a word, or a list; a
    matrix a list of rows.
    """
    known = keys(executable or program(folder))
    names = {key["name"].lower(): key["name"] for key in known}
    given: dict[str, Any] = {}
    for name, value in spec.items():
        if name.lower() not in names:
            near = difflib.get_close_matches(name.lower(), names, 1, 0)
            raise SpecificationError(f"{name}: is no key; the nearest is {names[near[0]]}")
        given[names[name.lower()]] = value
    # Keys that need others to take effect are left to the program.
    missing = [key["name"] for key in known
               if key["default"] == "required" and not key["needs"] and key["name"] not in given]
    if missing:
        raise SpecificationError(f"these keys are missing: {', '.join(missing)}")
    lines: list[str] = []
    box = 0
    for key in known:
        while box < key["box"]:
            box += 1
            lines.append(f"Box {box}")
        if key["name"] in given:
            lines += _lines(key, given[key["name"]])
    path = Path(folder) / "SolvantoSpec.txt"
    path.parent.mkdir(parents=True, exist_ok=True)
    beside = path.with_suffix(".txt.new")
    beside.write_text("\n".join(lines) + "\n", encoding="utf-8")
    beside.replace(path)
    return path


def _word(name: str, value: Any) -> str:
    text = repr(float(value)) if isinstance(value, float) else str(value)
    if any(c in text for c in ", \t\n") or not text:
        raise SpecificationError(f'{name}: "{text}" can\'t be a value: it is empty or holds a comma or a blank')
    return text


def _lines(key: Mapping[str, Any], value: Any) -> list[str]:
    name = key["name"]
    listed = not isinstance(value, (str, int, float)) and hasattr(value, "__iter__")
    if key["form"] == "matrix rows":
        return [name] + [",".join(_word(name, cell) for cell in row) for row in value]
    words = [_word(name, cell) for cell in (value if listed else [value])]
    return [f"{name:<52}," + ",".join(words)]
