"""Tables of a run: pedigree, values, accuracy, variances, QTN, coancestry."""

from __future__ import annotations

import heapq
import re
from pathlib import Path

import numpy as np
import pandas as pd

from . import files
from .errors import FolderError
from .files import Folder, find, fixed, runfolder
from .specification import read_spec

MODELS = ["NormalUnrestr", "NormalRestr", "GammaUnrestr", "GammaRestr"]


def read_pedigree(folder: Folder) -> pd.DataFrame:
    """Individuals of all generations.

    Columns: generation, individual (its number, the same in all files), sire and dam (0 unknown), gender
    (1 male, 2 female), external (identifier in an external pedigree, or its own number).
    """
    path = runfolder(folder)
    file = find(path, "SimulatedData/Pedigree.txt")
    numbers = fixed(file, [20] * 5)
    short = np.isnan(numbers[:, 4])
    # A merge of individuals leaves rows of four columns: generation, number, sire, dam.
    numbers[short, 2:5] = numbers[short, 1:4]
    numbers = numbers.astype(np.int64)
    if (numbers[:, 2] != np.arange(1, len(numbers) + 1)).any():
        raise FolderError(f"{file}: individuals are not numbered from 1 on")
    genders = fixed(find(path, "SimulatedData/Gender.txt"), [20] * 3)[:, 2].astype(np.int64)
    if len(genders) != len(numbers):
        raise FolderError(f"{path}: Pedigree.txt and Gender.txt hold different individuals; was the run cut short?")
    return pd.DataFrame(
        {
            "generation": numbers[:, 0],
            "individual": numbers[:, 2],
            "sire": numbers[:, 3],
            "dam": numbers[:, 4],
            "gender": genders,
            "external": numbers[:, 1],
        }
    )


def _dimensions(title: bytes, names: list[bytes]) -> int:
    """How often the columns of some names stand in a title."""
    return sum(title.split().count(name) for name in names)


def _ntraits(folder: Path) -> int:
    """Traits of a run, by its table of means, in which all of a generation stand."""
    means = fixed(find(folder, "SimulatedData/GeneticMeansPerGeneration.txt"), [20] * 4)
    if len(means) == 0:
        raise FolderError(f"{folder}: holds no values yet; was the run cut short?")
    return int(means[:, 2].max())


def _nmodels(folder: Path) -> int:
    means = fixed(find(folder, "SimulatedData/GeneticMeansPerGeneration.txt"), [20] * 4)
    return int(means[:, 1].max())


def read_values(folder: Folder) -> pd.DataFrame:
    """True breeding values (tbv), dominance deviations (tdv) and phenotypes (tpv), in long form.

    Columns: individual, generation, trait (from 1), model (name of the QTN model), tbv, tdv, tpv. Sorted by
    individual, trait, model.
    """
    path = runfolder(folder)
    ntraits, nmodels = _ntraits(path), _nmodels(path)
    file = find(path, "SimulatedData/PedigreeTbvTdvTpv.txt")
    n = ntraits * nmodels
    table = fixed(file, [10] * 4 + [20] * (3 * n))
    files.wholegenerations(path, file, len(table))
    if np.isnan(table[:, -1]).any():
        raise FolderError(f"{file}: rows of fewer than {4 + 3 * n} columns")
    long = np.tile(np.arange(n), len(table))
    return pd.DataFrame(
        {
            "individual": np.repeat(table[:, 1].astype(np.int64), n),
            "generation": np.repeat(table[:, 0].astype(np.int64), n),
            "trait": long // nmodels + 1,
            "model": pd.Categorical.from_codes(long % nmodels, MODELS[:nmodels]),
            "tbv": table[:, 4 : 4 + n].ravel(),
            "tdv": table[:, 4 + n : 4 + 2 * n].ravel(),
            "tpv": table[:, 4 + 2 * n :].ravel(),
        }
    )


def read_accuracy(folder: Folder) -> pd.DataFrame:
    """Accuracies of the selection criterion, cycle by cycle.

    Columns: cycle, generation (of the candidates), trait (0: the recombination trait), accuracy (correlation
    of the criterion with the true breeding values), mean and variance of those, last (True for the rows of
    the last generation, from which nobody was chosen: under selection on estimates their accuracy means
    nothing).
    """
    path = runfolder(folder)
    burnin = int(read_spec(path)["NumberGenerationsBurnIn"])
    rows = []
    found = {}
    for file in (path / "Selection").glob("AccuracyOfBreedingValueSelectionCycle*.txt"):
        found[int(re.search(r"(\d+)\.txt$", file.name)[1])] = file
    for cycle in sorted(found):
        file = found[cycle]
        last = not (path / "Selection" / f"SelectionFolder{cycle}").is_dir()
        for values in _accuracies(file):
            rows.append((cycle, burnin + cycle - 1, *values, last))
    names = ["cycle", "generation", "trait", "accuracy", "mean", "variance", "last"]
    frame = pd.DataFrame(rows, columns=names)
    types = {"cycle": np.int64, "generation": np.int64, "trait": np.int64, "last": bool}
    return frame.astype(types | {name: np.float64 for name in ("accuracy", "mean", "variance")})


def _accuracies(file: Path) -> list[tuple]:
    """Trait, accuracy, mean and variance, of each line of a cycle's file."""
    title, *lines = files.lines(file, 0)
    if not lines:
        raise files.cut(file, 2)
    words = [[float(word) for word in line.split()] for line in lines]
    if title.split()[:1] == [b"Trait"]:
        return [(int(row[0]), *row[1:4]) for row in words]
    (row,) = words
    if len(row) == 3:
        return [(1, *row)]
    # With the recombination trait: both accuracies, both means, the expected crossings, both variances.
    return [(1, row[0], row[2], row[5]), (0, row[1], row[3], row[6])]


def read_variances(folder: Folder) -> pd.DataFrame:
    """Means and variances per generation, QTN model and trait.

    Columns: generation, model, trait, mean (of the true breeding values), genic_additive, genic_dominance
    (by the allele frequencies, in linkage equilibrium), genetic_additive, genetic_dominance (of the
    individuals' values). A merge of folders leaves no values (NaN) of generations that its first folder
    doesn't have.
    """
    path = runfolder(folder)
    ntraits, nmodels = _ntraits(path), _nmodels(path)
    file = find(path, "SimulatedData/TotalGenicAndGeneticVariancesPerGeneration.txt")
    table = fixed(file, [10, 10] + [20] * (4 * ntraits))
    means = fixed(find(path, "SimulatedData/GeneticMeansPerGeneration.txt"), [20] * 4)
    if len(means) != len(table) * ntraits or len(table) % nmodels:
        raise FolderError(f"{path}: means and variances are of different generations; was the run cut short?")
    missing = np.isnan(table[:, -1]) if ntraits * 4 > 2 else np.zeros(len(table), bool)
    table[missing, 2:] = np.nan
    parts = table[:, 2:].reshape(len(table), 4, ntraits)
    mean = {(int(g), int(p), int(t)): value for g, p, t, value in means}
    frame = pd.DataFrame(
        {
            "generation": np.repeat(table[:, 0].astype(np.int64), ntraits),
            "model": pd.Categorical.from_codes(
                np.repeat(table[:, 1].astype(np.int64) - 1, ntraits), MODELS[:nmodels]
            ),
            "trait": np.tile(np.arange(1, ntraits + 1), len(table)),
        }
    )
    models = np.repeat(table[:, 1].astype(np.int64), ntraits)
    frame["mean"] = [mean[key] for key in zip(frame["generation"], models, frame["trait"])]
    frame.loc[np.repeat(missing, ntraits), "mean"] = np.nan
    for k, name in enumerate(["genic_additive", "genic_dominance", "genetic_additive", "genetic_dominance"]):
        frame[name] = parts[:, k, :].ravel()
    return frame


def read_qtn(folder: Folder, set: str = "unrestricted") -> pd.DataFrame:
    """QTN of a set, "unrestricted", "restricted" or "recombination", with their effects.

    Columns: qtn (from 1 through all chromosomes), chromosome, site (among the included ones, from 1), maf
    (minor allele frequency in the founders), frequency (of allele 1 in generation 1), position (0 to 1), and
    for trait sets mutation (1: a de novo mutation), carrier, then effects of allele 1 on the traits:
    additive_normal_1, ..., additive_gamma_1, ..., with dominance dominance_normal_1, ..., degree_normal_1,
    ..., substitution_normal_1, ...; for recombination effect.
    """
    path = runfolder(folder)
    name = set.capitalize()
    if set == "recombination":
        file = find(path, "SimulatedData/RecombinationQtnInformationEffects.txt", "set RecombinationOnOff to On")
        table = fixed(file, [10] * 3 + [20] * 4)
        names = ["qtn", "chromosome", "site", "maf", "frequency", "position", "effect"]
        return pd.DataFrame(table, columns=names).astype({n: np.int64 for n in names[:3]})
    if set not in ("unrestricted", "restricted"):
        raise FolderError(f"{set}: the sets of QTN are unrestricted, restricted and recombination")
    file = find(path, f"SimulatedData/{name}QtnInformation.txt")
    # A merge widens the first three columns.
    first = 20 if len(max(files.lines(file, 1), key=len, default=b"")) > 130 else 10
    table = fixed(file, [first] * 3 + [20] * 5)
    names = ["qtn", "chromosome", "site", "maf", "frequency", "position", "mutation", "carrier"]
    frame = pd.DataFrame(table, columns=names).astype({n: np.int64 for n in names[:3] + names[6:]})
    gamma = _nmodels(path) == 4
    kinds = {"Addit": ["additive"], "Domin": ["dominance", "degree"], "AverAlleleSubst": ["substitution"]}
    for kind, blocks in kinds.items():
        effects = path / f"SimulatedData/{name}Qtn{kind}Effects.txt"
        if kind != "Addit" and not effects.exists():
            continue
        columns = [
            f"{block}_{distribution}_{trait}"
            for block in blocks
            for distribution in (["normal", "gamma"] if gamma else ["normal"])
            for trait in range(1, _ntraits(path) + 1)
        ]
        values = fixed(find(path, str(effects.relative_to(path))), [10] * 3 + [20] * len(columns))
        if len(values) != len(frame):
            raise FolderError(f"{effects}: {len(values)} QTN, and {len(frame)} in {file.name}")
        frame = pd.concat([frame, pd.DataFrame(values[:, 3:], columns=columns)], axis=1)
    return frame


def read_coancestry(folder: Folder) -> pd.DataFrame:
    """Average coancestry x'Gx of the candidates.

    Columns: generation, cycle (that made them; 0 for the burn-in's), before (with equal shares), after (with
    their shares among the parents of the next generation; NaN for the last generation).
    """
    path = runfolder(folder)
    file = find(path, "SimulatedData/AverageCoancestry.txt", "set ComputeAverageCoancestryYesNo to Yes")
    rows = [[0.0 if (k, word) == (1, "-") else np.nan if word == "-" else float(word) for k, word in enumerate(row)]
            for row in files.freeform(file, titles=1)]
    frame = pd.DataFrame(rows, columns=["generation", "cycle", "before", "after"])
    return frame.astype({"generation": np.int64, "cycle": np.int64})


def inbreeding(pedigree: pd.DataFrame) -> np.ndarray:
    """Inbreeding coefficients of all individuals of a pedigree, in its order.

    Base individuals are unrelated; a parent 0 is unknown. Individuals must be numbered from 1, parents
    before their progeny. Method of Meuwissen and Luo (1992), Genet. Sel. Evol. 24: 305-313: the diagonal
    of A as a sum over ancestors of squared elements of T times Mendelian sampling variances.
    """
    sire = np.concatenate([[0], pedigree["sire"].to_numpy()])
    dam = np.concatenate([[0], pedigree["dam"].to_numpy()])
    n = len(sire) - 1
    numbers = np.arange(1, n + 1)
    if (sire[1:] >= numbers).any() or (dam[1:] >= numbers).any():
        raise FolderError("the pedigree has parents that stand behind their progeny")
    f = np.zeros(n + 1)
    f[0] = -1.0  # of an unknown parent
    d = np.zeros(n + 1)
    cache: dict[tuple[int, int], float] = {}
    for i in range(1, n + 1):
        s, t = int(sire[i]), int(dam[i])
        d[i] = 0.5 - 0.25 * (f[s] + f[t])
        if s == 0 or t == 0:
            continue
        key = (min(s, t), max(s, t))
        if key not in cache:
            cache[key] = _diagonal(i, sire, dam, d) - 1
        f[i] = cache[key]
    return f[1:]


def _diagonal(i: int, sire: np.ndarray, dam: np.ndarray, d: np.ndarray) -> float:
    """Diagonal of A: ancestors from the youngest on, each with the sum of its paths."""
    share = {i: 1.0}
    youngest = [-i]
    total = 0.0
    while youngest:
        j = -heapq.heappop(youngest)
        part = share.pop(j)
        total += part * part * d[j]
        for parent in (int(sire[j]), int(dam[j])):
            if parent == 0:
                continue
            if parent not in share:
                heapq.heappush(youngest, -parent)
            share[parent] = share.get(parent, 0.0) + 0.5 * part
    return total
