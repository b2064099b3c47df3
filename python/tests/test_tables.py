"""Tables against the text of the files that they come from, and inbreeding against the tabular method."""

import fcntl

import numpy as np
import pandas as pd
import pytest

import solvanto

EXAMPLES = ["twotraits", "optimalcontributions", "externalpedigree", "merging"]


def words(path, titles=1):
    return [line.split() for line in path.read_text().splitlines()[titles:]]


def ten(values):
    return [f"{value:.10f}" for value in values]


@pytest.mark.parametrize("name", EXAMPLES)
def test_values_and_pedigree_are_those_of_the_files(example, name):
    folder = example(name)
    rows = words(folder / "SimulatedData/PedigreeTbvTdvTpv.txt")
    values = solvanto.read_values(folder)
    ntraits, nmodels = values["trait"].max(), values["model"].nunique()
    n = ntraits * nmodels
    assert len(values) == n * len(rows)
    for k, column in enumerate(["tbv", "tdv", "tpv"]):
        expected = [word for row in rows for word in row[4 + k * n : 4 + (k + 1) * n]]
        assert ten(values[column]) == expected
    assert values["individual"].tolist() == [int(row[1]) for row in rows for _ in range(n)]
    # The title names the columns: trait by trait, in each model by model.
    title = (folder / "SimulatedData/PedigreeTbvTdvTpv.txt").read_text().split("\n", 1)[0].split()
    first = values.iloc[:n]
    assert [name[-1] for name in title[4 : 4 + n]] == [str(t) for t in first["trait"]]
    short = {"NormalUnrestr": "NormUnres", "NormalRestr": "NormRestr", "GammaUnrestr": "GammUnres", "GammaRestr": "GammaRestr"}
    assert [name[3:-1] for name in title[4 : 4 + n]] == [short[model] for model in first["model"]]

    pedigree = solvanto.read_pedigree(folder)
    assert len(pedigree) == len(rows)
    assert pedigree[["generation", "individual", "sire", "dam"]].to_numpy().tolist() == [
        [int(word) for word in row[:4]] for row in rows
    ]
    genders = [int(row[2]) for row in words(folder / "SimulatedData/Gender.txt")]
    assert pedigree["gender"].tolist() == genders


@pytest.mark.parametrize("name", EXAMPLES)
def test_variances_qtn_and_accuracies_are_those_of_the_files(example, name):
    folder = example(name)
    variances = solvanto.read_variances(folder)
    ntraits = variances["trait"].max()
    names = ["genic_additive", "genic_dominance", "genetic_additive", "genetic_dominance"]
    rows = words(folder / "SimulatedData/TotalGenicAndGeneticVariancesPerGeneration.txt")
    for k, row in enumerate(rows):
        part = variances.iloc[k * ntraits : (k + 1) * ntraits]
        if len(row) < 2 + 4 * ntraits:  # a merge of folders has no values of these
            assert part[names + ["mean"]].isna().all(axis=None)
            continue
        assert ten(value for name in names for value in part[name]) == row[2:]
    means = words(folder / "SimulatedData/GeneticMeansPerGeneration.txt")
    known = variances["mean"].notna()
    assert [text for text, is_known in zip(ten(variances["mean"]), known) if is_known] == [
        row[3] for row, is_known in zip(means, known) if is_known
    ]
    for name_of_set in ["unrestricted", "restricted"]:
        qtn = solvanto.read_qtn(folder, name_of_set)
        begin = folder / f"SimulatedData/{name_of_set.capitalize()}Qtn"
        for kind, pattern in [("Addit", "additive"), ("Domin", "dominance|degree"), ("AverAlleleSubst", "substitution")]:
            file = begin.with_name(f"{begin.name}{kind}Effects.txt")
            if file.exists():
                effects = qtn.filter(regex=pattern)
                assert [ten(row) for row in effects.to_numpy()] == [row[3:] for row in words(file)]
        information = words(begin.with_name(begin.name + "Information.txt"))
        assert [ten(row) for row in qtn[["maf", "frequency", "position"]].to_numpy()] == [row[3:6] for row in information]
    accuracies = solvanto.read_accuracy(folder)
    for cycle, part in accuracies.groupby("cycle"):
        rows = words(folder / f"Selection/AccuracyOfBreedingValueSelectionCycle{cycle}.txt")
        numbers = part[["accuracy", "mean", "variance"]].to_numpy()
        assert [[f"{value:.5f}" for value in row] for row in numbers] == [row[-3:] for row in rows]
    assert accuracies.groupby("cycle")["last"].all().tolist() == [False] * (accuracies["cycle"].nunique() - 1) + [True]


def test_coancestry_has_gaps_where_the_file_has_marks(example):
    coancestry = solvanto.read_coancestry(example("optimalcontributions"))
    rows = words(example("optimalcontributions") / "SimulatedData/AverageCoancestry.txt")
    assert ten(coancestry["before"]) == [row[2] for row in rows]
    assert coancestry["cycle"].tolist() == [0] + list(range(1, len(rows)))
    assert np.isnan(coancestry["after"].iloc[-1]) and coancestry["after"].iloc[:-1].notna().all()


def test_inbreeding_is_that_of_the_relationship_matrix():
    generator = np.random.default_rng(5)
    n = 120
    parents = [(0, 0) if i < 6 else tuple(generator.integers(max(0, i - 20), i + 1, 2) % (i + 1)) for i in range(n)]
    pedigree = pd.DataFrame(parents, columns=["sire", "dam"])  # selfed ones and half-known ones among them
    pedigree = pedigree.where(pedigree.lt(np.arange(1, n + 1), axis=0), 0)
    a = np.zeros((n + 1, n + 1))
    for i, (s, d) in enumerate(pedigree.itertuples(index=False), start=1):
        a[i, 1:i] = a[1:i, i] = 0.5 * (a[s, 1:i] + a[d, 1:i])
        a[i, i] = 1 + 0.5 * a[s, d]
    assert a.diagonal()[1:].max() > 1.3
    np.testing.assert_allclose(solvanto.inbreeding(pedigree), a.diagonal()[1:] - 1, atol=1e-12)


def test_folders_that_are_not_finished_are_refused(copied, tmp_path):
    with pytest.raises(solvanto.FolderError, match="no such folder"):
        solvanto.read_values(tmp_path / "nowhere")
    with pytest.raises(solvanto.FolderError, match="holds no folder SimulatedData"):
        solvanto.read_values(tmp_path)
    folder = copied("twotraits")
    with open(folder / "SolvantoSpec.txt") as file:
        fcntl.flock(file, fcntl.LOCK_EX)
        with pytest.raises(solvanto.FolderError, match="a run is under way"):
            solvanto.read_pedigree(folder)
    values = folder / "SimulatedData/PedigreeTbvTdvTpv.txt"
    whole = values.read_text()
    lines = whole.splitlines(keepends=True)
    for text, message in [
        ("".join(lines[:-1]), "no whole generations"),
        (whole[:-1], f"{values.name}:601: is cut"),
        ("".join([lines[0], lines[1][:40] + "*" * 20 + lines[1][60:], *lines[2:]]), "column 5"),
    ]:
        values.write_text(text)
        with pytest.raises(solvanto.FolderError, match=message):
            solvanto.read_values(folder)
    with pytest.raises(solvanto.FolderError, match="ComputeAverageCoancestryYesNo"):
        solvanto.read_coancestry(folder)
