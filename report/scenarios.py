"""The report of a study: its scenarios side by side, with bands of confidence, and their differences."""

from __future__ import annotations

import html
from pathlib import Path

import pandas as pd
from charts import chart, number, traitname

import solvanto

TITLES = {
    "mean": ("Genetic trend", "mean true breeding value"),
    "genetic_variance": ("Genetic variance", "additive variance of the true breeding values"),
    "genic_variance": ("Genic variance", "additive variance in linkage equilibrium"),
    "accuracy": ("Accuracy of selection", "accuracy"),
    "inbreeding": ("Inbreeding by the pedigree", "mean inbreeding coefficient"),
    "inbreeding_markers": ("Inbreeding by markers", "share of heterozygotes that are missing"),
    "coancestry": ("Coancestry", "average relationship of the candidates"),
    "effective_size": ("Effective size", "individuals"),
    "qtn_fixed": ("QTN fixed", "QTN at which allele 1 is the only one"),
    "qtn_lost": ("QTN lost", "QTN at which allele 1 is gone"),
}


class Scenarios:
    def __init__(self, folder: Path):
        self.folder = folder
        path = folder / "study/results/summary.tsv"
        if not path.exists():
            raise solvanto.FolderError(f"{path}: is missing; scripts/study makes it")
        self.summary = pd.read_csv(path, sep="\t", float_precision="round_trip", dtype={"scenario": str})
        names = list(dict.fromkeys(self.summary["scenario"]))
        self.names = [name for name in names if " - " not in name]
        self.others = [name for name in names if " - " in name]

    def facts(self) -> list[tuple[str, str]]:
        replicates = self.summary[self.summary["scenario"].isin(self.names)].groupby("scenario")["replicates"].max()
        runs = ", ".join(f"{name} ({replicates[name]} replicates)" for name in self.names)
        return [("study", self.folder.resolve().name), ("scenarios", runs),
                ("generations", f"1 to {self.summary['generation'].max()}")]

    def specification(self) -> str:
        return (self.folder / "study.yaml").read_text()

    def charts(self) -> list[dict]:
        return [self.picture(statistic, trait) for statistic in TITLES
                for trait in sorted(self.summary.loc[self.summary["statistic"] == statistic, "trait"].unique())]

    def picture(self, statistic: str, trait: int) -> dict:
        title, axis = TITLES[statistic]
        rows = self.summary[(self.summary["statistic"] == statistic) & (self.summary["trait"] == trait)]
        series, bands = {}, {}
        for name in self.names:
            mine = rows[rows["scenario"] == name]
            series[name] = mine[["generation", "mean"]].values.tolist()
            banded = mine.dropna(subset=["lower"])
            bands[name] = banded[["generation", "lower", "upper"]].values.tolist()
        last = rows[rows["scenario"].isin(self.names)].groupby("scenario").last()["mean"]
        ends = ", ".join(f"{name} {number(last[name])}" for name in self.names if name in last)
        text = f"Means over replicates, with bands of 95 % confidence. At the end: {ends}."
        label = title + (f", {traitname(trait)}" if trait else "")
        made = chart(f"{statistic}-{trait}" if trait else statistic, label, text, "line", "generation", axis,
                     {name: [[int(x), y] for x, y in points] for name, points in series.items()})
        for one in made["series"]:
            one["band"] = [[int(x), low, high] for x, low, high in bands[one["name"]]]
        return made

    def differences(self) -> str:
        """The last generation's differences within replicates, as a table; nothing where there is one scenario."""
        rows = self.summary[self.summary["scenario"].isin(self.others)]
        if rows.empty:
            return ""
        cells = []
        for (name, statistic, trait), part in rows.groupby(["scenario", "statistic", "trait"], sort=False):
            row = part.sort_values("generation").iloc[-1]
            what = TITLES[statistic][0] + (f", {traitname(trait)}" if trait else "")
            values = [number(row[k]) if pd.notna(row[k]) else "" for k in ("mean", "standard_error", "lower", "upper")]
            cells.append([f"{name}: {what}", str(row["generation"]), *values, str(row["replicates"])])
        head = ["difference", "generation", "mean", "standard error", "lower", "upper", "replicates"]
        row_of = lambda row, tag: "<tr>" + "".join(f"<{tag}>{html.escape(cell)}</{tag}>" for cell in row) + "</tr>"  # noqa: E731
        body = row_of(head, "th") + "".join(row_of(row, "td") for row in cells)
        return ("<section aria-label=\"Differences\"><h2>Differences within replicates</h2>"
                "<p>In the last generation that has the value; bounds of 95 % confidence.</p>"
                f"<table class=\"numbers\">{body}</table></section>")
