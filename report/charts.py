"""The pictures of a run: for each a title, a text that says what it shows, and its series of points.

A picture is a dictionary: id, title, text, kind (line, bar, points), x and y (names of the axes), series (name
and points [x, y]), optionally stacked or x as names (categories). The page draws it, and offers its points
as text.
"""

from __future__ import annotations

from pathlib import Path

import numpy as np
import pandas as pd

import solvanto

Chart = dict


def chart(name: str, title: str, text: str, kind: str, x: str, y: str, series: dict, **more) -> Chart:
    points = [{"name": str(label), "points": rounded(values)} for label, values in series.items()]
    return {"id": name, "title": title, "text": text, "kind": kind, "x": x, "y": y, "series": points, **more}


def rounded(values) -> list:
    """Points with six digits: more than a picture shows."""
    return [[float(f"{cell:.6g}") if isinstance(cell, (float, np.floating)) else cell for cell in point]
            for point in values if not any(isinstance(cell, (float, np.floating)) and np.isnan(cell) for cell in point)]


def pairs(x, y) -> list:
    return [[a.item() if hasattr(a, "item") else a, b.item() if hasattr(b, "item") else b] for a, b in zip(x, y)]


def number(value: float) -> str:
    return f"{value:.3g}"


def traitname(trait: int) -> str:
    return f"trait {trait}" if trait else "recombination trait"


class Run:
    """What the pictures share: tables that several of them look at."""

    def __init__(self, folder: Path):
        self.folder = folder
        self.spec = solvanto.read_spec(folder)
        self.pedigree = solvanto.read_pedigree(folder)
        self.pedigree["inbreeding"] = solvanto.inbreeding(self.pedigree)
        self.variances = solvanto.read_variances(folder)
        self.accuracy = solvanto.read_accuracy(folder)
        self.model = solvanto.selectionmodel(self.spec)
        self.generations = sorted(self.pedigree["generation"].unique())
        self.chip = self._chip()

    def _chip(self) -> int | None:
        """The chip with most SNP of those that are there."""
        found = list((self.folder / "SimulatedData").glob("Chip*SnpInformation.txt"))
        sizes = {int(file.name[4:-len("SnpInformation.txt")]): file.stat().st_size for file in found}
        chips = {chip: size for chip, size in sizes.items()
                 if list((self.folder / "SimulatedData/AllIndividualsSnpChips").glob(f"Chip{chip}Genotype.txt*"))}
        return max(chips, key=chips.get) if chips else None


def charts(run: Run) -> list[Chart]:
    makers = [sizes, contributions, sites, spectrum, linkage, qtn, trend, variances, accuracy, inbreeding, structure,
              editing, drives]
    return [found for maker in makers if (found := maker(run)) is not None]


def sizes(run: Run) -> Chart:
    counts = run.pedigree.groupby(["generation", "gender"]).size().unstack(fill_value=0)
    series = {name: pairs(counts.index, counts[gender]) for gender, name in [(1, "males"), (2, "females")] if gender in counts}
    total = len(run.pedigree)
    text = f"{len(run.generations)} generations, {total} individuals in all, " \
           f"{counts.sum(axis=1).min()} to {counts.sum(axis=1).max()} in a generation."
    return chart("sizes", "Individuals of each generation", text, "bar", "generation", "individuals", series, stacked=True)


def contributions(run: Run) -> Chart | None:
    rows = {"sires": [], "dams": [], "effective number of parents": []}
    for generation, bred in run.pedigree[run.pedigree["generation"] > 1].groupby("generation"):
        parents = pd.concat([bred["sire"], bred["dam"]])
        parents = parents[parents > 0]
        if parents.empty:
            continue
        shares = parents.value_counts(normalize=True)
        rows["sires"].append([int(generation) - 1, int(bred.loc[bred["sire"] > 0, "sire"].nunique())])
        rows["dams"].append([int(generation) - 1, int(bred.loc[bred["dam"] > 0, "dam"].nunique())])
        rows["effective number of parents"].append([int(generation) - 1, float(1 / (shares**2).sum())])
    if not rows["sires"]:
        return None
    effective = [value for _, value in rows["effective number of parents"]]
    text = ("How many sires and dams of a generation gave progeny, and how many parents with equal shares would give "
            f"the same sum of squared contributions: {number(min(effective))} to {number(max(effective))}.")
    return chart("contributions", "Parents' contributions", text, "line", "generation of the parents", "parents", rows)


def sites(run: Run) -> Chart | None:
    rows = [line.split() for line in (run.folder / "SimulatedData/NbOfSegSitesPerChrom.txt").read_text().splitlines()[1:]]
    if not rows:
        return None
    series = {name: [[int(row[0]), int(row[k])] for row in rows] for k, name in [(1, "segregating"), (2, "included")]}
    text = f"{sum(int(row[1]) for row in rows)} segregating sites in the founders, of which {sum(int(row[2]) for row in rows)} are included."
    return chart("sites", "Sites of each chromosome", text, "bar", "chromosome", "sites", series)


def spectrum(run: Run) -> Chart | None:
    bounds = np.linspace(0, 0.5, 26)
    series, below = {}, None
    files = sorted((run.folder / "Chromosomes").glob("Chromosome*/MinorAlleleFrequency.txt"))
    if files:
        maf = np.concatenate([np.array(file.read_bytes().split(b"\n", 1)[1].split()[1::2], dtype=float) for file in files])
        series["all included sites"] = histogram(maf, bounds)
        below = (maf < 0.05).mean()
    if run.chip:
        series[f"SNP of chip {run.chip}"] = histogram(solvanto.read_snp(run.folder, run.chip)["maf"], bounds)
    if not series:
        return None
    text = "Shares of sites by the minor allele frequency among the base individuals."
    if below is not None:
        text += f" {100 * below:.0f} % of the included sites lie below 0.05."
    return chart("spectrum", "Frequency spectrum of the founders", text, "line", "minor allele frequency", "share of sites", series)


def histogram(values, bounds) -> list:
    counts, _ = np.histogram(values, bounds)
    middles = (bounds[1:] + bounds[:-1]) / 2
    return pairs(middles, counts / max(counts.sum(), 1))


def linkage(run: Run) -> Chart | None:
    """Decay of r2 with distance on a chip, in the first and the last generation; at most 250 SNP a chromosome."""
    if not run.chip:
        return None
    snp = solvanto.read_snp(run.folder, run.chip)
    morgans = run.spec.get("ChromosomeLengthMorgansSolvanto")
    length = float(morgans) if isinstance(morgans, (int, float)) else None
    unit = 100 * length if length else 1
    bounds = np.linspace(0, unit * 0.5, 26)
    generator = np.random.default_rng(1)
    series = {}
    for generation in dict.fromkeys([run.generations[0], run.generations[-1]]):
        phases = solvanto.read_phase(run.folder, run.chip, [generation]).to_numpy()
        if len(phases) > 1000:
            phases = phases[:1000]
        sums, counts = np.zeros(25), np.zeros(25)
        for _, part in snp.groupby("chromosome"):
            columns = part["snp"].to_numpy() - 1
            columns = columns[(phases[:, columns].mean(axis=0) > 0.05) & (phases[:, columns].mean(axis=0) < 0.95)]
            if len(columns) > 250:
                columns = np.sort(generator.choice(columns, 250, replace=False))
            if len(columns) < 3:
                continue
            r2 = np.corrcoef(phases[:, columns].T.astype(float)) ** 2
            position = part.set_index("snp")["position"].loc[columns + 1].to_numpy() * unit
            above = np.triu_indices(len(columns), 1)
            place = np.digitize(np.abs(position[above[0]] - position[above[1]]), bounds) - 1
            inside = place < 25
            sums += np.bincount(place[inside], r2[above][inside], 25)
            counts += np.bincount(place[inside], minlength=25)
        there = counts > 0
        series[f"generation {generation}"] = pairs(((bounds[1:] + bounds[:-1]) / 2)[there], sums[there] / counts[there])
    first = next(iter(series.values()))
    if not first:
        return None
    axis = "distance, cM" if length else "distance, share of the chromosome"
    text = ("Mean squared correlation of alleles at two SNP by their distance, SNP of a frequency above 0.05: "
            f"{number(first[0][1])} among close neighbours, {number(first[-1][1])} half a chromosome away, in generation {run.generations[0]}.")
    return chart("linkage", "Decay of linkage disequilibrium", text, "line", axis, "r²", series)


def qtn(run: Run) -> Chart | None:
    set_name = "restricted" if run.model.endswith("NormalRestr") or run.model == "GammaRestr" else "unrestricted"
    table = solvanto.read_qtn(run.folder, set_name)
    kind = "gamma" if run.model.startswith("Gamma") else "normal"
    series = {}
    for column in table.filter(regex=f"^additive_{kind}_"):
        series[traitname(int(column.rsplit("_", 1)[1]))] = pairs(table["chromosome"] - 1 + table["position"], table[column])
    if table.empty:
        return None
    first = table[f"additive_{kind}_1"].abs()
    largest = first.sort_values(ascending=False)
    share = (largest.head(max(1, len(largest) // 10)) ** 2).sum() / max((largest**2).sum(), 1e-300)
    text = (f"{len(table)} QTN of the model that selection follows ({run.model}) and their additive effects, along the genome. The tenth with "
            f"the largest effects on trait 1 holds {100 * share:.0f} % of the sum of squares.")
    return chart("qtn", "QTN effects", text, "points", "chromosome and position", "additive effect", series)


def bymodel(run: Run, column: str) -> dict:
    """A column of the variances by trait: those of the model that selection follows first."""
    series = {}
    for model in sorted(run.variances["model"].unique(), key=lambda m: m != run.model):
        for trait, part in run.variances[run.variances["model"] == model].groupby("trait"):
            label = traitname(trait) + ("" if model == run.model else f", {model}")
            series[label] = pairs(part["generation"], part[column])
    return series


def trend(run: Run) -> Chart:
    series = bymodel(run, "mean")
    changes = []
    mine = run.variances[run.variances["model"] == run.model].dropna(subset="mean")
    for trait, part in mine.groupby("trait"):
        base = part["genetic_additive"].iloc[0]
        gain = part["mean"].iloc[-1] - part["mean"].iloc[0]
        changes.append(f"{traitname(trait)} by {number(gain)}" + (f" ({number(gain / np.sqrt(base))} genetic standard deviations)" if base > 0 else ""))
    text = "Mean true breeding value of each generation. From the first to the last it changed in " + ", in ".join(changes) + "."
    hidden = [label for label in series if ", " in label]
    return chart("trend", "Genetic trend", text, "line", "generation", "mean true breeding value", series, hidden=hidden)


def variances(run: Run) -> Chart:
    series = {}
    mine = run.variances[run.variances["model"] == run.model].dropna(subset="mean")
    texts = []
    for trait, part in mine.groupby("trait"):
        series[f"{traitname(trait)}, genetic"] = pairs(part["generation"], part["genetic_additive"])
        series[f"{traitname(trait)}, genic"] = pairs(part["generation"], part["genic_additive"])
        if part["genic_additive"].iloc[0] > 0:
            texts.append(f"{100 * part['genic_additive'].iloc[-1] / part['genic_additive'].iloc[0]:.0f} % of {traitname(trait)}")
    text = "Additive variance of the true breeding values (genetic), and what it would be in linkage equilibrium (genic)."
    if texts:
        text += " Left of the genic variance at the end: " + ", ".join(texts) + "."
    return chart("variances", "Genetic and genic variance", text, "line", "generation", "variance", series)


def accuracy(run: Run) -> Chart | None:
    estimated = str(run.spec.get("SelectionMethod", "")).lower() in ("gblup", "pedigreeblup")
    table = run.accuracy[~run.accuracy["last"]] if estimated else run.accuracy
    table = table.dropna(subset="accuracy")
    if table.empty:
        return None
    series = {traitname(trait): pairs(part["generation"], part["accuracy"]) for trait, part in table.groupby("trait")}
    means = ", ".join(f"{number(part['accuracy'].mean())} in {traitname(trait)}" for trait, part in table.groupby("trait"))
    method = {"gblup": "genomic prediction", "pedigreeblup": "pedigree prediction", "pheno": "phenotypes", "tbv": "true values"}
    name = method.get(str(run.spec.get("SelectionMethod", "")).lower(), "the criterion")
    text = f"Correlation of what candidates are ranked by ({name}) with their true breeding values; on average {means}."
    return chart("accuracy", "Accuracy of selection", text, "line", "generation of the candidates", "accuracy", series)


def inbreeding(run: Run) -> Chart:
    mean = run.pedigree.groupby("generation")["inbreeding"].mean()
    series = {"inbreeding, pedigree": pairs(mean.index, mean)}
    if run.chip:
        chip = solvanto.read_chip(run.folder, run.chip)
        base = (run.pedigree["generation"] == run.generations[0]).to_numpy()
        values = chip.to_numpy()
        p = values[base].mean(axis=0) / 2
        expected = (2 * p * (1 - p)).mean()
        if expected > 0:
            lacking = 1 - (values == 1).mean(axis=1) / expected
            marker = pd.Series(lacking).groupby(run.pedigree["generation"].to_numpy()[: len(values)]).mean()
            series[f"inbreeding, chip {run.chip}"] = pairs(marker.index, marker)
    if (run.folder / "SimulatedData/AverageCoancestry.txt").exists():
        coancestry = solvanto.read_coancestry(run.folder)
        series["coancestry x'Gx"] = pairs(coancestry["generation"], coancestry["before"])
    last, first = mean.iloc[-1], mean.iloc[0]
    rate = 1 - ((1 - last) / (1 - first)) ** (1 / max(len(mean) - 1, 1)) if first < 1 else 0
    text = f"Mean inbreeding by the pedigree reaches {number(last)}: {100 * rate:.2f} % a generation"
    text += f", an effective size of {1 / (2 * rate):.0f}." if rate > 0 else "."
    text += " By markers: heterozygotes that are missing against the frequencies of the first generation."
    return chart("inbreeding", "Inbreeding and coancestry", text, "line", "generation", "coefficient", series)


def structure(run: Run) -> Chart | None:
    """First two principal components of the chip, at most 60 individuals a generation and 2,000 SNP."""
    if not run.chip:
        return None
    chip = solvanto.read_chip(run.folder, run.chip)
    generation = run.pedigree["generation"].to_numpy()[: len(chip)]
    step = max(1, chip.shape[1] // 2000)
    some = np.concatenate([np.flatnonzero(generation == g)[:60] for g in run.generations])
    m = chip.to_numpy()[some][:, ::step].astype(float)
    m -= m.mean(axis=0)
    if m.std() == 0 or len(m) < 3:
        return None
    values, vectors = np.linalg.eigh(m @ m.T)
    scores = vectors[:, -2:][:, ::-1] * np.sqrt(np.maximum(values[-2:][::-1], 0))
    scores *= np.where(scores[0] < 0, -1, 1)
    shares = 100 * values[-2:][::-1] / values.sum()
    series = {f"generation {g}": pairs(*scores[generation[some] == g].T) for g in run.generations}
    text = (f"The first two principal components of the genotypes on chip {run.chip} ({shares[0]:.0f} and {shares[1]:.0f} % of the variance); "
            "up to 60 individuals of each generation.")
    return chart("structure", "Population structure", text, "points", "first component", "second component", series, shaded=True)


def editing(run: Run) -> Chart | None:
    """Frequency of the favourable alleles at edited QTN."""
    aimed = {}
    for file in (run.folder / "Selection").glob("SelectionFolder*/GeneEditingInformation.txt"):
        for line in file.read_text().splitlines()[1:]:
            _, q, _, goal = line.split()
            aimed[int(q)] = int(goal)
    if not aimed:
        return None
    restricted = "Restricted" if run.model in ("NormalRestr", "GammaRestr") else "Unrestricted"
    genotypes = (run.folder / f"SimulatedData/{restricted}QtnIndivGenotypes.txt").read_bytes()
    width = genotypes.index(b"\n") + 1
    cells = np.frombuffer(genotypes, np.uint8).reshape(-1, width)[:, 21::2] - ord("0")
    generation = run.pedigree["generation"].to_numpy()[: len(cells)]
    columns = sorted(aimed)
    favourable = np.array([aimed[q] == 2 for q in columns])
    edited = np.where(favourable, cells[:, [q - 1 for q in columns]], 2 - cells[:, [q - 1 for q in columns]])
    mean = pd.Series(edited.mean(axis=1) / 2).groupby(generation).mean()
    text = (f"Mean frequency of the favourable allele at the {len(columns)} QTN that were edited in some parent: "
            f"{number(mean.iloc[0])} in the first generation, {number(mean.iloc[-1])} in the last.")
    return chart("editing", "Edited alleles", text, "line", "generation", "frequency", {"favourable alleles": pairs(mean.index, mean)})


def drives(run: Run) -> Chart | None:
    file = run.folder / "SimulatedData/GeneDriveQtnPresence.txt"
    if not file.exists():
        return None
    rows = solvanto.files.fixed(file, [10, 10, 10])
    if len(rows) == 0:
        return None
    generation = run.pedigree["generation"].to_numpy()
    counts = pd.Series(generation[rows[:, 0].astype(int) - 1]).value_counts().sort_index()
    sizes = run.pedigree.groupby("generation").size()
    carried = counts / sizes.loc[counts.index]
    text = f"Alleles that are gene drives in an individual, on average: {number(carried.iloc[-1])} in the last generation."
    return chart("drives", "Gene drives", text, "bar", "generation", "drive alleles an individual", {"drive alleles": pairs(carried.index, carried)})
