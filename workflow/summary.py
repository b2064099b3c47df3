"""summary.py STUDY: joins the results of all runs, in study/results, and names the runs that failed.

results/<statistic>.tsv: scenario, replicate, generation, trait, statistic, value. results/summary.tsv: mean, standard
error and number of replicates by scenario, and, for each later scenario, its differences from the first within
replicates, with a confidence interval of 95 % by the t distribution.
"""

from __future__ import annotations

import sys
from pathlib import Path

import numpy as np
import pandas as pd
from scipy import stats
from study import Study, readstudy

BY = ["scenario", "generation", "trait", "statistic"]


def collect(study: Study) -> tuple[pd.DataFrame, list[tuple[str, int, str]]]:
    tables, failed = [], []
    for scenario in study.scenarios:
        for replicate in range(1, study.replicates + 1):
            folder = study.runfolder(scenario, replicate)
            if (folder / "results.tsv").exists():
                tables.append(pd.read_csv(folder / "results.tsv", sep="\t", float_precision="round_trip", dtype={"scenario": str}))
            else:
                failed.append((scenario, replicate, reason(study, folder, replicate)))
    columns = ["scenario", "replicate", "generation", "trait", "statistic", "value"]
    return pd.concat(tables, ignore_index=True) if tables else pd.DataFrame(columns=columns), failed


def reason(study: Study, folder: Path, replicate: int) -> str:
    for failed in (folder / "failed.txt", study.foundersfolder(replicate) / "failed.txt"):
        if failed.exists():
            return failed.read_text().strip()
    return f"{folder}: did not come to its end"


def interval(values: pd.Series) -> pd.Series:
    n = values.count()
    error = values.std(ddof=1) / np.sqrt(n) if n > 1 else np.nan
    half = stats.t.ppf(0.975, n - 1) * error if n > 1 else np.nan
    mean = values.mean()
    return pd.Series({"mean": mean, "standard_error": error, "replicates": n, "lower": mean - half, "upper": mean + half})


def summarise(study: Study, results: pd.DataFrame) -> pd.DataFrame:
    parts = [results]
    first, *others = study.scenarios
    key = ["replicate", "generation", "trait", "statistic"]
    base = results[results["scenario"] == first].set_index(key)["value"]
    for scenario in others:
        mine = results[results["scenario"] == scenario].set_index(key)["value"]
        difference = (mine - base).dropna().reset_index()
        parts.append(difference.assign(scenario=f"{scenario} - {first}"))
    joined = pd.concat(parts, ignore_index=True)
    order = {name: k for k, name in enumerate([*study.scenarios, *(f"{name} - {first}" for name in others)])}
    table = joined.groupby(BY)["value"].apply(interval).unstack().reset_index()
    table["place"] = table["scenario"].map(order)
    table = table.sort_values(["place", "statistic", "trait", "generation"], kind="stable").drop(columns="place")
    return table.astype({"replicates": int})


def write(table: pd.DataFrame, path: Path) -> None:
    beside = path.with_name(path.name + ".new")
    table.to_csv(beside, sep="\t", index=False, float_format="%.8g")
    beside.replace(path)


def main() -> int:
    study = readstudy(Path(sys.argv[1]))
    results, failed = collect(study)
    folder = study.folder / "study" / "results"
    folder.mkdir(parents=True, exist_ok=True)
    for name in study.statistics:
        write(results[results["statistic"] == name], folder / f"{name}.tsv")
    if len(results):
        table = summarise(study, results)
        write(table, folder / "summary.tsv")
        last = table[(table["generation"] == table["generation"].max()) & (table["statistic"] == study.statistics[0])]
        print(last.to_string(index=False, float_format=lambda value: f"{value:.4g}"))
    print(f"Results: {folder}")
    for scenario, replicate, message in failed:
        print(f"FAILED: {scenario}, replicate {replicate}: {message}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
