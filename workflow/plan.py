"""plan.py STUDY CORES [cluster]: judges a study before anything of it starts, and tells what it will take.

Every scenario is checked by the program itself (solvanto --check) in a folder that is removed again. Prints a
table of the scenarios, and the study's disk, memory and time beside what this machine has. Status 1 where a
scenario is refused or the disk is too small.
"""

from __future__ import annotations

import json
import math
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from replicate import prepare
from study import Study, StudyError, part, readstudy

import solvanto

UNITS = {"MB": 1e6, "GB": 1e9, "TB": 1e12, "s": 1, "minutes": 60, "hours": 3600}


def estimate(report: str, name: str) -> float:
    value, unit = re.search(rf"^   {name} +([0-9.]+) (\w+)", report, re.MULTILINE).groups()
    return float(value) * UNITS[unit]


def check(study: Study, spec: dict, seed: int) -> dict[str, float]:
    """Disk, memory and seconds of a run, or StudyError with what the program says."""
    with tempfile.TemporaryDirectory() as folder:
        prepare(study, Path(folder))
        (Path(folder) / "Seed.txt").write_text(f"{seed}\n")
        solvanto.write_spec(spec, folder)
        done = subprocess.run([Path(folder) / "solvanto", "--check", "--quiet"], cwd=folder, capture_output=True, text=True)
    if done.returncode != 0:
        lines = [line for line in (done.stdout + done.stderr).splitlines() if "ERROR" in line or "STOP" in line]
        raise StudyError("\n  ".join(lines or [f"status {done.returncode}"]))
    return {name: estimate(done.stdout, name) for name in ("Disk", "Memory", "Time")}


def number(value: float, units: list[tuple[str, float]]) -> str:
    for unit, size in reversed(units):
        if value >= size:
            return f"{value / size:.3g} {unit}"
    return f"{value / units[0][1]:.2g} {units[0][0]}"


def writeplan(study: Study, sizes: dict[str, dict[str, float]]) -> None:
    """What a job of each scenario is given on a cluster: twice the memory and three times the time expected, and
    room for the interpreter."""
    jobs = {scenario: {"memory": math.ceil(2 * size["Memory"] / 1e6) + 200, "minutes": math.ceil(3 * size["Time"] / 60) + 1}
            for scenario, size in sizes.items()}
    # Jobs of less than a minute go several at a time.
    together = max(1, int(60 / max(max(size["Time"] for size in sizes.values()), 1)))
    path = study.folder / "study" / "plan.json"
    path.parent.mkdir(exist_ok=True)
    path.write_text(json.dumps({"jobs": jobs, "together": min(together, study.replicates)}, indent=1) + "\n")


def main() -> int:
    bytes_, seconds = [("MB", 1e6), ("GB", 1e9), ("TB", 1e12)], [("s", 1), ("minutes", 60), ("hours", 3600)]
    oncluster = sys.argv[3:] == ["cluster"]
    try:
        study = readstudy(Path(sys.argv[1]))
        cores = min(int(sys.argv[2]), len(study.scenarios) * study.replicates)
        sizes = {}
        for scenario in study.scenarios:
            try:
                sizes[scenario] = check(study, study.specof(scenario), study.seedof(scenario, 1))
            except (StudyError, solvanto.SolvantoError) as error:
                raise StudyError(f"the scenario {scenario} is refused:\n  {error}") from None
    except (StudyError, solvanto.SolvantoError) as error:
        print(f"ERROR: {error}", file=sys.stderr)
        return 1
    print(f"{len(study.scenarios)} scenarios, {study.replicates} replicates; for one run of each")
    print(f"{'scenario':<30} {'disk':>10} {'memory':>10} {'time':>12}")
    for scenario, size in sizes.items():
        print(f"{scenario:<30} {number(size['Disk'], bytes_):>10} {number(size['Memory'], bytes_):>10} {number(size['Time'], seconds):>12}")
    onerun = max(size["Disk"] for size in sizes.values())
    kept = 0 if study.keep == "summary" else sum(size["Disk"] for size in sizes.values()) * study.replicates
    disk = kept + cores * onerun + (study.replicates * onerun if study.commonfounders else 0)
    memory = cores * max(size["Memory"] for size in sizes.values())
    time = study.replicates * sum(size["Time"] for size in sizes.values()) / cores
    free = shutil.disk_usage(study.folder).free
    have = os.sysconf("SC_PHYS_PAGES") * os.sysconf("SC_PAGE_SIZE")
    print(f"the study, {cores} at once: up to {number(disk, bytes_)} of disk (free: {number(free, bytes_)}), "
          f"{number(memory, bytes_)} of memory ({'of the nodes' if oncluster else 'there are ' + number(have, bytes_)}), "
          f"about {number(time, seconds)}", flush=True)
    writeplan(study, sizes)
    if disk > free:
        print("ERROR: the disk is too small: keep less, or fewer replicates", file=sys.stderr)
        return 1
    if memory > have and not oncluster:
        print("WARNING: there is less memory: run fewer at once (--cores)", file=sys.stderr)
    return 0


if __name__ == "__main__":
    sys.exit(main())
