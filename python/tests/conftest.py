"""Run folders that the tests share: examples, run once."""

import os
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "python"))
BIN = Path(os.environ.get("SOLVANTO_BIN", ROOT / "build" / "bin"))


@pytest.fixture(scope="session")
def example(tmp_path_factory):
    """A function that gives the folder of an example's run. It must be left as it is."""
    top = Path(os.environ["SOLVANTO_RUNS"]) if "SOLVANTO_RUNS" in os.environ else tmp_path_factory.mktemp("runs")

    def made(name):
        folder = top / name
        if not folder.exists():
            subprocess.run([ROOT / "scripts/workingfolder", name, folder, BIN], check=True)
            subprocess.run(["./runexample"], cwd=folder, check=True, capture_output=True)
        return folder

    return made


@pytest.fixture
def copied(example, tmp_path):
    """The same as a copy that may be spoilt."""

    def copy(name):
        shutil.copytree(example(name), tmp_path / name)
        return tmp_path / name

    return copy
