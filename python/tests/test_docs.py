"""The examples of the page on Python run, and say what they promise."""

import re

import pytest

from conftest import ROOT

pytest.importorskip("matplotlib")


def test_the_pages_examples_run(copied, capsys, monkeypatch, tmp_path):
    monkeypatch.chdir(tmp_path)
    page = (ROOT / "docs/python.md").read_text()
    blocks = re.findall(r"^```python\n(.*?)^```", page, re.MULTILINE | re.DOTALL)
    names = {"folder": copied("twotraits")}
    for block in blocks:
        exec(compile(block, "docs/python.md", "exec"), names)
    assert (tmp_path / "trend.png").stat().st_size > 10000
    printed = capsys.readouterr().out
    assert 0.3 < float(re.search(r"accuracy ([0-9.]+)$", printed, re.MULTILINE)[1]) < 1
    f = names["pedigree"].groupby("generation")[["f", "fmarkers"]].mean()
    assert abs(f.loc[6, "f"] - f.loc[6, "fmarkers"]) < 0.1 and f.loc[6, "f"] > 0.03
    assert printed.rstrip().splitlines()[-1].split()[0] != "0"  # the run that was refused
