#!/usr/bin/python3
"""Prediction with weighted SNPs, in the place of Quillomere: SNP-BLUP, and once more with SNPs weighted by
their squared solutions (Wang and others 2012, Genet. Res. 94: 73-83). It works in the folder of a cycle."""
import sys

import numpy as np

if len(sys.argv) > 1:  # --version, when a run is checked
    sys.exit("prediction.py reads QuillomereSpec.txt and takes no arguments")
with open("QuillomereSpec.txt") as file:
    spec = {key.strip(): value.strip() for key, value in (line.split(",", 1) for line in file)}


def table(key):
    return np.loadtxt(spec[key], ndmin=2)


training, testing = table("GenotypeTraining"), table("GenotypeTesting")
y, tbv = table("PhenotypeTraining")[:, 1], table("TbvTesting")[:, 1]
p = training[:, 1:].mean(axis=0) / 2
scale = np.where((p > 0) & (p < 1), 1 / np.sqrt(2 * p * (1 - p) + 1e-5), 0)
z = (training[:, 1:] - 2 * p) * scale
weight = (scale > 0) / (scale > 0).sum()  # shares of the additive variance
for _ in range(2):
    v = float(spec["VarA"]) * (z * weight) @ z.T + float(spec["VarE"]) * np.eye(len(y))
    u = float(spec["VarA"]) * weight * (z.T @ np.linalg.solve(v, y - y.mean()))
    weight = u**2 / (u**2).sum()
ebv = (testing[:, 1:] - 2 * p) * scale @ u


def write(name, numbers, values):
    with open(name, "w") as file:
        file.writelines(f"{number:20.0f} {value:.15g}\n" for number, value in zip(numbers, values))


write("Ebv.txt", testing[:, 0], ebv)
write("SnpSolutions.txt", range(1, len(u) + 1), u)
write("AlleleFreq.txt", np.flatnonzero(scale > 0) + 1, p[scale > 0])
with open("TbvEbvCorrelation.txt", "w") as file:
    file.write(f" {np.corrcoef(tbv, ebv)[0, 1]:.15g}\n")
print(len(y), "training individuals,", len(u), "SNPs, correlation", round(np.corrcoef(tbv, ebv)[0, 1], 4))
