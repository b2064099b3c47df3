"""Chips, genomes and sequence against the text of the files and against one another."""

import shutil
import subprocess

import numpy as np
import pytest

import solvanto
from conftest import BIN, ROOT


def plain(path):
    """Identifiers and alleles of a file, word by word."""
    rows = np.array([line.split() for line in path.read_text().splitlines()], dtype=int)
    return rows[:, 0], rows[:, 1:]


def test_chips_are_those_of_the_files(example):
    folder = example("twotraits")
    for chip in [1, 2]:
        identifiers, genotypes = plain(folder / f"SimulatedData/AllIndividualsSnpChips/Chip{chip}Genotype.txt")
        read = solvanto.read_chip(folder, chip)
        assert read.index.tolist() == identifiers.tolist()
        assert (read.to_numpy() == genotypes).all()
        third = solvanto.read_chip(folder, chip, [3])
        assert third.index.tolist() == list(range(201, 301)) and (third == read.loc[201:300]).all(axis=None)
        phases = solvanto.read_phase(folder, chip)
        assert (phases.to_numpy() == plain(folder / f"SimulatedData/AllIndividualsSnpChips/Chip{chip}Phase.txt")[1]).all()
        assert (phases.groupby("individual").sum() == read).all(axis=None)


def test_genomes_hold_the_alleles_of_the_chips(example):
    folder = example("twotraits")
    snp = solvanto.read_snp(folder, 2)
    for chromosome in [1, 2]:
        there = snp[snp["chromosome"] == chromosome]
        for generation in [1, 6]:
            genomes = solvanto.read_genomes(folder, chromosome, generation)
            phases = solvanto.read_phase(folder, 2, [generation])[there["snp"]]
            assert (genomes[:, :, there["site"] - 1].reshape(len(phases), -1) == phases.to_numpy()).all()
        sites = solvanto.read_map(folder, chromosome).set_index("site")["position"]
        np.testing.assert_array_equal(sites[there["site"]], there["position"])


@pytest.mark.parametrize("name", ["small", "externalpedigree"])  # plain text, and packed by the run
def test_sequence_is_the_same_by_genomes_and_by_text(example, copied, name):
    folder = copied(name)
    genomes = {
        (chromosome, phased): solvanto.read_sequence(folder, chromosome, 0.25, 0.3, [2, 4], phased)
        for chromosome in [1, 2] for phased in [False, True]
    }
    shutil.rmtree(folder / "Chromosomes")
    for (chromosome, phased), expected in genomes.items():
        assert expected.shape[1] > 50
        text = solvanto.read_sequence(folder, chromosome, 0.25, 0.3, [2, 4], phased)
        assert text.equals(expected)


def test_tidied_folders_open(copied):
    folder = copied("twotraits")
    before = solvanto.read_chip(folder, 2), solvanto.account(folder)
    subprocess.run([ROOT / "scripts/tidy", folder, "--keep", "data", "--bin", BIN], check=True, capture_output=True)
    assert (folder / "SimulatedData/AllIndividualsSnpChips/Chip2Genotype.txt.gz").exists()
    assert solvanto.read_chip(folder, 2).equals(before[0])
    assert solvanto.account(folder).equals(before[1])


def test_spoilt_genotypes_are_refused(copied):
    folder = copied("twotraits")
    chip = folder / "SimulatedData/AllIndividualsSnpChips/Chip1Genotype.txt"
    content = chip.read_bytes()
    width = content.index(b"\n") + 1
    spoilt = bytearray(content)
    spoilt[width + 21] = ord("7")
    for text, message in [
        (content[:-1], "is cut"),
        (content[:-width], "no whole generations"),
        (bytes(spoilt), "something else than genotypes"),
        (b"", "is empty"),
    ]:
        chip.write_bytes(text)
        with pytest.raises(solvanto.FolderError, match=message):
            solvanto.read_chip(folder, 1)
    genome = folder / "Chromosomes/Chromosome1/GenomeGeneration2.txt"
    genome.write_bytes(genome.read_bytes()[:-8])
    with pytest.raises(solvanto.FolderError, match="is cut"):
        solvanto.read_genomes(folder, 1, 2)
    with pytest.raises(solvanto.FolderError, match="NumberOfSnpChips"):
        solvanto.read_chip(folder, 3)
    with pytest.raises(solvanto.FolderError, match="no generation 9, but 1 to 6"):
        solvanto.read_chip(folder, 2, [9])
