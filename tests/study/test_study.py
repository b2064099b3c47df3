"""A study from study.yaml to its tables, with what goes wrong on the way."""

import os
import shutil
import subprocess
from pathlib import Path

import pandas as pd
import pytest

ROOT = Path(__file__).resolve().parents[2]


def study(folder, *arguments):
    return subprocess.run([ROOT / "scripts/study", folder, *arguments], capture_output=True, text=True)


def change(folder, old, new):
    path = folder / "study.yaml"
    text = path.read_text()
    assert old in text
    path.write_text(text.replace(old, new))


@pytest.fixture(scope="module")
def finished(tmp_path_factory):
    """The example with four replicates, at its end."""
    folder = tmp_path_factory.mktemp("study") / "study"
    shutil.copytree(ROOT / "examples/study", folder)
    change(folder, "replicates: 5", "replicates: 4")
    done = study(folder, "--cores", "2")
    assert done.returncode == 0, done.stdout + done.stderr
    assert "2 scenarios, 4 replicates" in done.stdout and "of disk (free:" in done.stdout
    return folder


@pytest.fixture
def spoilt(finished, tmp_path):
    folder = tmp_path / "study"
    shutil.copytree(finished, folder)
    return folder


def table(folder, name):
    return pd.read_csv(folder / f"study/results/{name}.tsv", sep="\t")


def test_scenarios_differ_behind_their_common_founders_alone(finished):
    mean = table(finished, "mean").set_index(["scenario", "replicate", "generation"])["value"]
    phenotypes, genomic = mean["phenotypes"], mean["genomic"]
    behind = phenotypes.index.get_level_values("generation") > 3
    assert (phenotypes[~behind] == genomic[~behind]).all() and (phenotypes[behind] != genomic[behind]).all()
    # Replicates are different founders.
    assert table(finished, "genetic_variance").query("scenario == 'genomic' and generation == 1")["value"].nunique() == 4
    summary = table(finished, "summary").set_index(["scenario", "statistic", "generation", "trait"])
    values = phenotypes.xs(6, level="generation")
    row = summary.loc[("phenotypes", "mean", 6, 1)]
    assert row["mean"] == pytest.approx(values.mean()) and row["standard_error"] == pytest.approx(values.std() / 2)
    difference = (genomic - phenotypes).xs(6, level="generation")
    row = summary.loc[("genomic - phenotypes", "mean", 6, 1)]
    half = 3.182446 * difference.std() / 2  # t with three degrees of freedom
    assert (row["lower"], row["upper"]) == (pytest.approx(difference.mean() - half), pytest.approx(difference.mean() + half))
    assert set(summary.index.get_level_values("statistic")) == {
        "mean", "genetic_variance", "genic_variance", "accuracy", "inbreeding", "inbreeding_markers", "effective_size",
        "qtn_fixed", "qtn_lost"}  # no coancestry: it isn't computed
    assert not list(finished.glob("study/runs/*/*/SimulatedData"))  # keep: summary


def test_what_is_missing_is_run_again_with_the_same_result(spoilt):
    before = {file.name: file.read_text() for file in (spoilt / "study/results").iterdir()}
    results = {folder: (folder / "results.tsv").stat().st_mtime_ns for folder in spoilt.glob("study/runs/*/*")}
    cut = spoilt / "study/runs/genomic/3"
    (cut / "results.tsv").unlink()
    (cut / "SimulatedData").mkdir()  # as a killed run leaves it
    assert study(spoilt).returncode == 0
    again = {folder for folder, time in results.items() if (folder / "results.tsv").stat().st_mtime_ns != time}
    assert again == {cut}
    assert {file.name: file.read_text() for file in (spoilt / "study/results").iterdir()} == before


def test_a_failed_replicate_is_named_and_stops_no_other(spoilt):
    for replicate in [2, 4]:
        (spoilt / f"study/runs/genomic/{replicate}/results.tsv").unlink()
    effects = spoilt / "study/founders/2/SimulatedData/UnrestrictedQtnAdditEffects.txt"
    times = os.stat(effects)
    effects.write_text(effects.read_text()[:-30])
    os.utime(effects, ns=(times.st_atime_ns, times.st_mtime_ns))
    done = study(spoilt)
    assert done.returncode == 1
    assert "FAILED: genomic, replicate 2" in done.stderr and "UnrestrictedQtnAdditEffects.txt" in done.stderr
    assert "FAILED: genomic, replicate 4" not in done.stderr
    assert table(spoilt, "mean").query("scenario == 'genomic'")["replicate"].unique().tolist() == [1, 3, 4]


@pytest.mark.parametrize("old, new, message", [
    ("replicates: 5", "replicate: 5", "replicate is no key of a study"),
    ("replicates: 5", "replicates: none", "replicates: a whole number from 1 is wanted"),
    ("{SelectionMethod: GBlup}", "{SelectionMethods: GBlup}", "the nearest is SelectionMethod"),
    ("{SelectionMethod: GBlup}", "{NumberOfHaplotypes: 50}", "can't change NumberOfHaplotypes"),
    ("{SelectionMethod: GBlup}", "{NumberOfSiresInEachGeneration: [Constant, 70]}", "the scenario genomic is refused"),
    ("keep: summary", "keep: some", "keep: some is none of"),
])
def test_a_wrong_study_is_refused_before_anything_starts(tmp_path, old, new, message):
    folder = tmp_path / "study"
    shutil.copytree(ROOT / "examples/study", folder)
    change(folder, old, new)
    done = study(folder)
    assert done.returncode == 1 and message in done.stderr, done.stderr
    assert not (folder / "study").exists()


def test_a_product_makes_all_combinations(tmp_path):
    folder = tmp_path / "study"
    shutil.copytree(ROOT / "examples/study", folder)
    text = (folder / "study.yaml").read_text()
    begin, end = text.index("scenarios:"), text.index("replicates:")
    product = "product: {SelectionMethod: [Pheno, Tbv], TraitHeritability: [0.2, 0.5]}\n"
    (folder / "study.yaml").write_text(text[:begin] + product + text[end:].replace("replicates: 5", "replicates: 1")
                                       .replace("commonfounders: yes", "commonfounders: no"))
    done = study(folder)
    assert done.returncode == 0, done.stderr
    assert table(folder, "mean")["scenario"].unique().tolist() == ["Pheno_0.2", "Pheno_0.5", "Tbv_0.2", "Tbv_0.5"]
    # Without common founders every run has a seed of its own.
    assert table(folder, "genetic_variance").query("generation == 1")["value"].nunique() == 4


@pytest.mark.skipif(not shutil.which("slurmctld") or not shutil.which("munged") or os.geteuid() != 0,
                    reason="needs Debian's slurm-wlm and munge, and root")
def test_a_cluster_makes_the_same_tables_also_where_a_job_is_killed(finished, tmp_path):
    folder = tmp_path / "study"
    shutil.copytree(ROOT / "examples/study", folder)
    change(folder, "replicates: 5", "replicates: 4")
    # The first job that runs is killed once, with all that it has started.
    kill = ("for _ in {1..300}; do job=$(squeue --noheader --states=RUNNING --format=%A | head -n 1); "
            "[ -n \"$job\" ] && { sleep 0.5; scancel --signal=KILL \"$job\"; echo \"killed $job\"; break; }; sleep 0.1; done")
    script = tmp_path / "script"
    script.write_text(f"({kill}) >{tmp_path}/killed & {ROOT}/scripts/study {folder} --slurm; status=$?; wait; exit $status\n")
    done = subprocess.run([Path(__file__).with_name("cluster.sh"), tmp_path / "cluster", "bash", script], capture_output=True, text=True)
    assert done.returncode == 0, done.stdout + done.stderr + (folder / "study/log.txt").read_text()
    assert (tmp_path / "killed").read_text().startswith("killed")
    for file in (finished / "study/results").iterdir():
        assert (folder / "study/results" / file.name).read_text() == file.read_text(), file.name
    jobs = list((folder / "study/jobs").glob("*.status"))
    assert 2 <= len(jobs) <= 8  # some at a time
