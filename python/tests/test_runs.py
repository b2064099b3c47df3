"""Specifications, runs and the account of a run."""

import shutil
import subprocess

import pytest

import solvanto
from conftest import BIN, ROOT

PROGRAMS = ["solvanto", "macs", "Vintrecaskelle"]


@pytest.fixture
def folder(tmp_path):
    for program in PROGRAMS:
        shutil.copy(BIN / program, tmp_path)
    return tmp_path


@pytest.fixture
def spec():
    """A programme of a second."""
    spec = solvanto.read_spec(ROOT / "examples/twotraits/SolvantoSpec1.txt")
    return spec | {"NumberGenerationsSelection": 1, "StartStopGeneration": [1, spec["NumberGenerationsBurnIn"] + 1]}


def test_a_specification_that_is_read_and_written_makes_the_same_run(folder, spec):
    assert spec["GeneticCorrelationMatrix"] == [[1.0], [0.4, 1.0]]
    assert spec["IndexWeights"] == [0.7, -0.3]
    report = solvanto.run(folder, spec, seed=-77)
    assert "Time duration of Solvanto" in report
    first = solvanto.read_values(folder)
    solvanto.write_spec(solvanto.read_spec(folder), folder)
    assert solvanto.read_spec(folder) == spec
    solvanto.run(folder, seed=-77, progress=False)
    assert solvanto.read_values(folder).equals(first)


def test_names_and_values_are_checked_before_anything_is_written(folder, spec):
    with pytest.raises(solvanto.SpecificationError, match="NumberOfTrait: .* nearest is NumberOfTraits"):
        solvanto.write_spec(spec | {"NumberOfTrait": 2}, folder)
    with pytest.raises(solvanto.SpecificationError, match="missing: .*SelectionMethod|missing: .*TraitHeritability"):
        solvanto.write_spec({key: value for key, value in spec.items() if key != "TraitHeritability"}, folder)
    with pytest.raises(solvanto.SpecificationError, match="holds a comma or a blank"):
        solvanto.write_spec(spec | {"PedigreeStatus": "my file.txt"}, folder)
    assert not (folder / "SolvantoSpec.txt").exists()


def test_a_run_that_stops_tells_code_and_message(folder, spec, capfd):
    with pytest.raises(solvanto.RunError) as caught:
        solvanto.run(folder, spec | {"NumberOfSiresInEachGeneration": ["Constant", 70]}, seed=-1, progress=True)
    assert caught.value.code == 110023 and caught.value.status == 110023 % 256
    assert "sires" in caught.value.message.lower() or "sires" in caught.value.report.lower()
    assert "STOP 110023" in capfd.readouterr().err


def test_the_account_joins_what_the_readers_give(example):
    folder = example("twotraits")
    account = solvanto.account(folder)
    assert list(account) == [
        "generation", "trait", "model", "mean", "genetic_variance", "genic_variance", "accuracy", "inbreeding",
        "coancestry", "parents",
    ]
    pedigree = solvanto.read_pedigree(folder)
    second = pedigree[pedigree["generation"] == 3]
    row = account.query("generation == 2 and trait == 2 and model == 'GammaRestr'")
    assert row["parents"].item() == len(set(second["sire"]) | set(second["dam"]))
    accuracies = solvanto.read_accuracy(folder)
    model = solvanto.selectionmodel(solvanto.read_spec(folder))
    mine = account[account["model"] == model].dropna(subset="accuracy")
    assert mine["accuracy"].tolist() == accuracies["accuracy"].tolist()
    assert mine["mean"].round(5).tolist() == accuracies["mean"].tolist()  # of the same individuals
    table = subprocess.run([ROOT / "scripts/account", folder, "--tsv"], check=True, capture_output=True, text=True).stdout
    lines = [line.split("\t") for line in table.splitlines()]
    assert lines[0] == list(account) and len(lines) == len(account) + 1
    assert lines[1][:3] == ["1", "1", account["model"][0]] and lines[1][8] == ""  # no coancestry
    # Estimates: the last generation has none.
    estimated = solvanto.account(example("optimalcontributions"))
    assert estimated["accuracy"].notna().sum() == 10
    assert estimated.loc[estimated["generation"] == 12, "accuracy"].isna().all()
    assert estimated.loc[estimated["generation"] == 12, "coancestry"].notna().all()


def test_a_prediction_in_python_chooses_the_parents(example):
    folder = example("ownprediction")
    accuracies = solvanto.read_accuracy(folder)
    assert (accuracies[~accuracies["last"]]["accuracy"] > 0.5).all()
    for cycle in [1, 2, 3]:
        told = (folder / f"Selection/SelectionFolder{cycle}/outQuillomere").read_text()
        accuracy = accuracies.query("cycle == @cycle")["accuracy"].item()
        assert abs(float(told.split()[-1]) - accuracy) < 1e-4
    values = solvanto.read_values(folder).query("trait == 1 and model == 'NormalUnrestr'")
    means = values.groupby("generation")["tbv"].mean()
    assert means[6] > means[3] + 0.5
