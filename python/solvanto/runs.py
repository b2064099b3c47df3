"""Starting runs, and an account of what they left."""

from __future__ import annotations

import os
import re
import subprocess
import sys
import threading
from pathlib import Path
from typing import Any, Mapping

import numpy as np
import pandas as pd

from .errors import FolderError, RunError
from .files import Folder, runfolder
from .specification import program, read_spec, write_spec
from .tables import MODELS, inbreeding, read_accuracy, read_coancestry, read_pedigree, read_variances


def run(
    folder: str | os.PathLike, spec: Mapping[str, Any] | None = None, seed: int | None = None,
    progress: bool | None = None, executable: str | None = None,
) -> str:
    """Runs the program in a folder and gives its report, which is its standard output.

    spec and seed are written first, where they are given. progress: its line of progress and its warnings go
    to standard error (None: where that is a terminal). executable: None for that of the folder, or of the
    path. Raises RunError where the run doesn't end with status 0.
    """
    path = Path(folder)
    if not path.is_dir():
        raise FolderError(f"{path}: there is no such folder")
    executable = str(Path(executable).resolve()) if executable else program(path)
    if spec is not None:
        write_spec(spec, path, executable)
    if seed is not None:
        (path / "Seed.txt").write_text(f"{int(seed)}\n")
    shown = sys.stderr.isatty() if progress is None else progress
    command = [executable, "--progress"] if shown else [executable]
    process = subprocess.Popen(
        command, cwd=path, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
        stderr=subprocess.PIPE, text=True, errors="replace",
    )
    said: list[str] = []

    def listen() -> None:
        for line in process.stderr:
            said.append(line)
            if shown:
                sys.stderr.write(line)
                sys.stderr.flush()

    listener = threading.Thread(target=listen)
    listener.start()
    try:
        report = process.stdout.read()
        status = process.wait()
    except BaseException:
        process.terminate()
        process.wait()
        raise
    finally:
        listener.join()
    if status != 0:
        raise RunError(str(path), status, _code(said), _message(report, said), report)
    return report


def _code(said: list[str]) -> int | None:
    codes = [int(match[1]) for line in said if (match := re.match(r"STOP (\d+)", line))]
    return codes[-1] if codes else None


def _message(report: str, said: list[str]) -> str:
    """What the program says last before it stops: errors first."""
    errors = [line.strip() for line in [*report.splitlines(), *said] if line.lstrip().startswith("ERROR")]
    rest = [line.strip() for line in report.splitlines() if line.strip()]
    return errors[-1] if errors else rest[-1] if rest else "no message"


def selectionmodel(spec: Mapping[str, Any]) -> str:
    """Name of the QTN model that selection follows."""
    restricted = str(spec.get("SelectionBasedOnRestrictedOrUnrestrictedQtn", "")).lower() == "restricted"
    gamma = str(spec.get("DistributionOfQtnOfSelectionTraits", "")).lower() == "gamma"
    return MODELS[2 * gamma + restricted]


def account(folder: Folder) -> pd.DataFrame:
    """One table of a run: generation, trait, model, mean, genetic_variance, genic_variance, accuracy (of the
    candidates of that generation, NaN where there is none), inbreeding (mean, by the pedigree), coancestry
    (average x'Gx before selection, NaN where it isn't computed), parents (of the next generation that this
    generation gave, NaN for the last).

    Variances are additive. Accuracies stand with the QTN model that selection follows.
    """
    path = runfolder(folder)
    spec = read_spec(path)
    pedigree = read_pedigree(path)
    table = read_variances(path)[["generation", "trait", "model", "mean", "genetic_additive", "genic_additive"]]
    table = table.rename(columns={"genetic_additive": "genetic_variance", "genic_additive": "genic_variance"})
    accuracies = read_accuracy(path)
    if str(spec.get("SelectionMethod", "")).lower() in ("gblup", "pedigreeblup"):
        accuracies = accuracies[~accuracies["last"]]
    model = selectionmodel(spec)
    accuracies = accuracies[["generation", "trait", "accuracy"]].assign(model=model)
    table = table.astype({"model": str}).merge(accuracies, how="left", on=["generation", "trait", "model"])
    pedigree["inbreeding"] = inbreeding(pedigree)
    bygeneration = pedigree.groupby("generation")
    table["inbreeding"] = table["generation"].map(bygeneration["inbreeding"].mean())
    if (path / "SimulatedData/AverageCoancestry.txt").exists():
        coancestry = read_coancestry(path).set_index("generation")["before"]
        table["coancestry"] = table["generation"].map(coancestry)
    else:
        table["coancestry"] = np.nan
    last = pedigree["generation"].max()
    parents = {
        generation - 1: len({*rows["sire"], *rows["dam"]} - {0})
        for generation, rows in bygeneration
        if generation > 1
    }
    table["parents"] = table["generation"].map(parents)
    table.loc[table["generation"] == last, "parents"] = np.nan
    return table.sort_values(["generation", "trait", "model"], kind="stable").reset_index(drop=True)
