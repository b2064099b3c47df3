"""replicate.py STUDY founders REPLICATE ATTEMPT, or replicate.py STUDY SCENARIO REPLICATE ATTEMPT: one run of a study.

The folder is made anew, whatever an earlier trial left in it, and the seed is always the same: a run that was
cut off is repeated. Leaves results.tsv in the folder (or done, for founders) when all else is done; where the
run fails, failed.txt with its message, and status 1. A cluster may start a job again that was killed (ATTEMPT 2,
3, ...): one that failed by itself would only fail again, and isn't run.
"""

from __future__ import annotations

import shutil
import subprocess
import sys
from pathlib import Path

from statistics_of_run import tabulate
from study import Study, drawseed, part, programs, readstudy

import solvanto

PROGRAMS = ["solvanto", "macs", "Vintrecaskelle", "Quillomere", "QuillomereP", "Brenvask", "Corvalind"]


def prepare(study: Study, folder: Path) -> None:
    for program in PROGRAMS:
        subprocess.run(["cp", "--reflink=auto", programs() / program, folder], check=True)
    for name in study.files:
        shutil.copy(study.folder / name, folder)


def makefounders(study: Study, replicate: int) -> None:
    folder = renew(study.foundersfolder(replicate))
    prepare(study, folder)
    burnin = int(study.spec["NumberGenerationsBurnIn"])
    start(folder, part(study.spec, 1, burnin), drawseed(study.seed, replicate))
    (folder / "done").touch()


def makerun(study: Study, scenario: str, replicate: int) -> None:
    folder = renew(study.runfolder(scenario, replicate))
    spec = study.specof(scenario)
    if study.commonfounders:
        # A copy that shares its blocks with the founders where the file system can: runs extend their files.
        for name in ["Chromosomes", "SimulatedData", "Selection"]:
            subprocess.run(["cp", "-r", "--reflink=auto", study.foundersfolder(replicate) / name, folder], check=True)
        first = int(spec["NumberGenerationsBurnIn"]) + 1
        spec = part(spec, first, first - 1 + int(spec["NumberGenerationsSelection"]))
    prepare(study, folder)
    start(folder, spec, study.seedof(scenario, replicate))
    table = tabulate(folder, study.statistics)
    table.insert(0, "replicate", replicate)
    table.insert(0, "scenario", scenario)
    prune(study, folder)
    beside = folder / "results.tsv.new"
    table.to_csv(beside, sep="\t", index=False, float_format="%.10g")
    beside.replace(folder / "results.tsv")


def start(folder: Path, spec: dict, seed: int) -> None:
    (folder / "report.txt").write_text(solvanto.run(folder, spec, seed, progress=False))


def prune(study: Study, folder: Path) -> None:
    """What the study doesn't keep."""
    for program in PROGRAMS:
        (folder / program).unlink(missing_ok=True)
    gone = {"summary": ["Chromosomes", "Selection", "SimulatedData"], "simulateddata": ["Chromosomes", "Selection"], "all": []}
    for name in gone[study.keep]:
        shutil.rmtree(folder / name, ignore_errors=True)


def renew(folder: Path) -> Path:
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return folder


def main() -> int:
    study = readstudy(Path(sys.argv[1]))
    scenario, replicate = sys.argv[2], int(sys.argv[3])
    folder = study.foundersfolder(replicate) if scenario == "founders" else study.runfolder(scenario, replicate)
    if int(sys.argv[4]) > 1 and (folder / "failed.txt").exists():
        return 1
    try:
        makefounders(study, replicate) if scenario == "founders" else makerun(study, scenario, replicate)
    except (solvanto.SolvantoError, OSError, subprocess.CalledProcessError) as error:
        (folder / "failed.txt").write_text(f"{error}\n")
        if isinstance(error, solvanto.RunError):
            (folder / "report.txt").write_text(error.report)
        print(f"FAILED: {scenario}, replicate {replicate}: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
