"""What a study tabulates of a run: generation, trait (0: all), statistic, value."""

from __future__ import annotations

from pathlib import Path

import numpy as np
import pandas as pd

import solvanto
from solvanto.files import fixed


def tabulate(folder: Path, statistics: list[str]) -> pd.DataFrame:
    """By the QTN model that selection follows."""
    account = solvanto.account(folder)
    account = account[account["model"] == solvanto.selectionmodel(solvanto.read_spec(folder))]
    rows = []
    for name in ["mean", "genetic_variance", "genic_variance", "accuracy"]:
        rows += [(g, t, name, value) for g, t, value in account[["generation", "trait", name]].itertuples(index=False)]
    first = account[account["trait"] == 1].set_index("generation")
    for name in ["inbreeding", "coancestry"]:
        rows += [(g, 0, name, value) for g, value in first[name].items()]
    rows += [(g, 0, "effective_size", value) for g, value in effectivesizes(first["inbreeding"]).items()]
    if "inbreeding_markers" in statistics:
        rows += [(g, 0, "inbreeding_markers", value) for g, value in markerinbreeding(folder).items()]
    if {"qtn_fixed", "qtn_lost"} & set(statistics):
        rows += qtncounts(folder, first.index)
    table = pd.DataFrame(rows, columns=["generation", "trait", "statistic", "value"]).dropna(subset="value")
    return table[table["statistic"].isin(statistics)]


def effectivesizes(inbreeding: pd.Series) -> pd.Series:
    """1 / (2 dF), dF the rate of inbreeding over the last five generations (Falconer and Mackay 1996, chapter 4)."""
    sizes = {}
    for g in inbreeding.index[1:]:
        before = inbreeding.get(g - 5, inbreeding.iloc[0])
        steps = min(5, g - inbreeding.index[0])
        rate = 1 - ((1 - inbreeding[g]) / (1 - before)) ** (1 / steps) if before < 1 else 0
        sizes[g] = 1 / (2 * rate) if rate > 0 else np.nan
    return pd.Series(sizes, dtype=float)


def markerinbreeding(folder: Path) -> pd.Series:
    """Heterozygotes on the largest chip that are missing, against the frequencies of generation 1."""
    chips = [int(file.name[4:-len("SnpInformation.txt")]) for file in (folder / "SimulatedData").glob("Chip*SnpInformation.txt")]
    if not chips:
        return pd.Series(dtype=float)
    chip = max(chips, key=lambda c: (folder / f"SimulatedData/Chip{c}SnpInformation.txt").stat().st_size)
    genotypes = solvanto.read_chip(folder, chip).to_numpy()
    generation = solvanto.read_pedigree(folder)["generation"].to_numpy()[: len(genotypes)]
    p = genotypes[generation == 1].mean(axis=0) / 2
    expected = (2 * p * (1 - p)).mean()
    return pd.Series(1 - (genotypes == 1).mean(axis=1) / expected).groupby(generation).mean() if expected else pd.Series(dtype=float)


def qtncounts(folder: Path, generations) -> list[tuple]:
    """QTN at which allele 1 is the only one, and at which it is gone."""
    model = solvanto.selectionmodel(solvanto.read_spec(folder))
    name = "Restricted" if model in ("NormalRestr", "GammaRestr") else "Unrestricted"
    rows = []
    for g in generations:
        files = list((folder / "Chromosomes").glob(f"Chromosome*/{name}QtnAlleleFreqGeneration{g}.txt"))
        if not files:
            continue
        frequencies = np.concatenate([fixed(file, [20] * 3, titles=0)[:, 2] for file in files])
        rows += [(g, 0, "qtn_fixed", int((frequencies == 1).sum())), (g, 0, "qtn_lost", int((frequencies == 0).sum()))]
    return rows
