"""A study: scenarios with replicates, as study.yaml in its folder asks for them.

study.yaml:
    base: SolvantoSpec.txt       # specification that the scenarios change, from the study's folder
    files: [Pedigree.csv]        # files of the user's that every run needs (none)
    scenarios:                   # by name: keys and their values ...
      phenotypes: {SelectionMethod: Pheno}
      genomic: {SelectionMethod: GBlup}
    product:                     # ... or instead all combinations of the values of some keys
      SelectionMethod: [Pheno, GBlup]
      TraitHeritability: [0.2, 0.5]
    replicates: 10
    seed: 2026                   # number of the study: seeds come from scripts/seed
    commonfounders: yes          # replicate r has the same burn-in in all scenarios (no)
    keep: summary                # of each run: summary (the results alone), simulateddata, all
    statistics: [mean, accuracy] # what is tabulated (all)
"""

from __future__ import annotations

import itertools
import os
import subprocess
import sys
from dataclasses import dataclass, field
from pathlib import Path
from typing import Any

import yaml

ROOT = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "python"))
import solvanto  # noqa: E402

STATISTICS = ["mean", "genetic_variance", "genic_variance", "accuracy", "inbreeding", "inbreeding_markers", "coancestry",
              "effective_size", "qtn_fixed", "qtn_lost"]
KEEP = ["summary", "simulateddata", "all"]
# Keys that a scenario can't change where the burn-in is that of all scenarios.
BURNIN_BOXES = {1, 3, 5, 6, 7, 8, 12, 13, 15}
BURNIN_FREE = {"NumberGenerationsSelection", "IndexWeights", "IdOfChipUsedForSelection"}


class StudyError(Exception):
    """A study that can't be run as it is asked for."""


@dataclass
class Study:
    folder: Path
    spec: dict[str, Any]
    scenarios: dict[str, dict[str, Any]]
    replicates: int
    seed: int
    commonfounders: bool = False
    keep: str = "summary"
    statistics: list[str] = field(default_factory=lambda: list(STATISTICS))
    files: list[str] = field(default_factory=list)

    def specof(self, scenario: str) -> dict[str, Any]:
        """The scenario's whole programme; keys in any case."""
        names = {name.lower(): name for name in self.spec}
        return self.spec | {names.get(key.lower(), key): value for key, value in self.scenarios[scenario].items()}

    def runfolder(self, scenario: str, replicate: int) -> Path:
        return self.folder / "study" / "runs" / scenario / str(replicate)

    def foundersfolder(self, replicate: int) -> Path:
        return self.folder / "study" / "founders" / str(replicate)

    def seedof(self, scenario: str, replicate: int) -> int:
        """An independent seed for every run; with common founders scenarios share that of a replicate, so that
        they differ by what they do alone."""
        place = list(self.scenarios).index(scenario)
        number = replicate if self.commonfounders else place * self.replicates + replicate
        return drawseed(self.seed + 1 if self.commonfounders else self.seed, number)


def drawseed(studyseed: int, replicate: int) -> int:
    answer = subprocess.run([ROOT / "scripts/seed", str(studyseed), str(replicate)], capture_output=True, text=True, check=True)
    return int(answer.stdout)


def readstudy(folder: Path) -> Study:
    path = folder / "study.yaml"
    try:
        asked = yaml.safe_load(path.read_text())
    except (OSError, yaml.YAMLError) as error:
        raise StudyError(f"{path}: can't be read: {error}") from None
    if not isinstance(asked, dict):
        raise StudyError(f"{path}: holds no keys")
    known = {"base", "files", "scenarios", "product", "replicates", "seed", "commonfounders", "keep", "statistics"}
    for key in asked:
        if key not in known:
            raise StudyError(f"{path}: {key} is no key of a study; there are {', '.join(sorted(known))}")
    for key in ("base", "replicates", "seed"):
        if key not in asked:
            raise StudyError(f"{path}: {key} is missing")
    for key, least in (("replicates", 1), ("seed", 0)):
        if not isinstance(asked[key], int) or asked[key] < least:
            raise StudyError(f"{path}: {key}: a whole number from {least} is wanted, not {asked[key]}")
    study = Study(folder, solvanto.read_spec(folder / asked["base"]), scenariosof(path, asked), asked["replicates"], asked["seed"],
                  bool(asked.get("commonfounders", False)), asked.get("keep", "summary"),
                  asked.get("statistics") or list(STATISTICS), asked.get("files") or [])
    if study.keep not in KEEP:
        raise StudyError(f"{path}: keep: {study.keep} is none of {', '.join(KEEP)}")
    for name in study.statistics:
        if name not in STATISTICS:
            raise StudyError(f"{path}: statistics: {name} is none of {', '.join(STATISTICS)}")
    for name in study.files:
        if not (folder / name).is_file():
            raise StudyError(f"{path}: files: there is no {folder / name}")
    if study.commonfounders:
        checkcommon(path, study)
    return study


def scenariosof(path: Path, asked: dict[str, Any]) -> dict[str, dict[str, Any]]:
    if ("scenarios" in asked) == ("product" in asked):
        raise StudyError(f"{path}: either scenarios or product is wanted")
    if "scenarios" in asked:
        scenarios = {str(name): changes or {} for name, changes in asked["scenarios"].items()}
    else:
        keys = list(asked["product"])
        scenarios = {"_".join(wordof(value) for value in values): dict(zip(keys, values))
                     for values in itertools.product(*asked["product"].values())}
    for name in scenarios:
        if not name or any(not (c.isalnum() or c in "._-") for c in name):
            raise StudyError(f"{path}: the scenario {name} must have a name of letters, digits and . _ -")
    return scenarios


def wordof(value: Any) -> str:
    return "-".join(wordof(part) for part in value) if isinstance(value, list) else str(value)


def checkcommon(path: Path, study: Study) -> None:
    """Scenarios on common founders may change what happens behind the burn-in alone."""
    keys = {key["name"].lower(): key for key in solvanto.keys(str(programs() / "solvanto"))}
    for scenario, changes in study.scenarios.items():
        for name in changes:
            key = keys.get(name.lower())
            if key and key["box"] in BURNIN_BOXES and key["name"] not in BURNIN_FREE:
                raise StudyError(f"{path}: {scenario}: with common founders a scenario can't change {key['name']}, "
                                 "which the burn-in depends on")


def programs() -> Path:
    """Where the programs of a run stand, as the scripts find them."""
    if "SOLVANTO_BIN" in os.environ:
        return Path(os.environ["SOLVANTO_BIN"])
    return ROOT / "bin" if (ROOT / "bin").is_dir() else ROOT / "build" / "bin"


def part(spec: dict[str, Any], first: int, last: int) -> dict[str, Any]:
    """The same programme, generations first to last alone."""
    return spec | {"GenerationFlexibilityOnOff": "On", "StartStopGeneration": [first, last], "KeepChromosomesFolderYesNo": "Yes"}
