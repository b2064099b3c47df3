"""Genotypes of a run: chips, packed genomes, sequence."""

from __future__ import annotations

import os
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Iterable

import numpy as np
import pandas as pd

from . import files
from .errors import FolderError
from .files import Folder, find, fixed, runfolder

BLOCK = 60  # sites in a block
IDENTIFIER = 20  # columns of the identifier before the alleles, of two columns each
PIECE = 1 << 20  # bytes that are turned into alleles at once, so that they stay in the processor's cache


def read_chip(folder: Folder, chip: int = 1, generations: Iterable[int] | None = None) -> pd.DataFrame:
    """Genotypes 0, 1, 2 on a chip (copies of allele 1), as int8: a row for each individual (the index), a
    column for each SNP, 1 to the last, as in read_snp.

    generations: those wanted; None for all.
    """
    path = runfolder(folder)
    file = find(path, f"SimulatedData/AllIndividualsSnpChips/Chip{chip}Genotype.txt", _nochip(chip))
    identifiers, alleles = _read_rows(path, file, 1, generations)
    return pd.DataFrame(alleles, index=pd.Index(identifiers, name="individual"), columns=_sites(alleles))


def read_phase(folder: Folder, chip: int = 1, generations: Iterable[int] | None = None) -> pd.DataFrame:
    """Alleles 0, 1 on a chip, as int8: two rows for each individual (index: individual, gamete; gamete 1 is
    its sire's), a column for each SNP."""
    path = runfolder(folder)
    file = find(path, f"SimulatedData/AllIndividualsSnpChips/Chip{chip}Phase.txt", _nochip(chip))
    identifiers, alleles = _read_rows(path, file, 2, generations)
    return pd.DataFrame(alleles, index=_gametes(identifiers[::2]), columns=_sites(alleles))


def read_snp(folder: Folder, chip: int = 1) -> pd.DataFrame:
    """SNP of a chip: snp, chromosome, site, maf (minor allele frequency), position."""
    path = runfolder(folder)
    table = fixed(find(path, f"SimulatedData/Chip{chip}SnpInformation.txt", _nochip(chip)), [20] * 5)
    names = ["snp", "chromosome", "site", "maf", "position"]
    return pd.DataFrame(table, columns=names).astype({name: np.int64 for name in names[:3]})


def _nochip(chip: int) -> str:
    return f"chip {chip} must be one of NumberOfSnpChips, with UseSnpChipOnOff On"


def _sites(alleles: np.ndarray) -> pd.RangeIndex:
    return pd.RangeIndex(1, alleles.shape[1] + 1)


def _gametes(individuals: np.ndarray) -> pd.MultiIndex:
    codes = [np.repeat(np.arange(len(individuals)), 2), np.tile([0, 1], len(individuals))]
    return pd.MultiIndex([individuals, [1, 2]], codes, names=["individual", "gamete"])


def _read_rows(
    folder: Path, file: Path, nlines: int, generations: Iterable[int] | None,
    title: int = 0, columns: slice = slice(None),
) -> tuple[np.ndarray, np.ndarray]:
    """Identifiers and alleles of the rows of I20, one I2 for each site: nlines rows for each individual.

    title: bytes before the first row; columns: those of the sites that are wanted. Only rows of the
    generations are read; a packed file is read through.
    """
    with files.openbytes(file) as stream:
        stream.seek(title)
        first = stream.readline()
        width = len(first)
        if width == 0:
            raise FolderError(f"{file}: is empty; was the run cut short?")
        if first[-1:] != b"\n" or (width - 1 - IDENTIFIER) % 2 or width <= IDENTIFIER:
            raise files.cut(file, 1)
        nrows, rest = divmod(stream.seek(0, 2) - title, width)
        if rest or nrows % nlines:
            raise files.cut(file, nrows + 1)
        generation = files.wholegenerations(folder, file, nrows // nlines)
        if generations is None:
            pieces = [(0, nrows)]
        else:
            pieces = _pieces(generation, generations, nlines, file)
    identifiers = np.empty(sum(n for _, n in pieces), dtype=np.int64)
    alleles = np.empty((len(identifiers), len(range(width // 2 - 10)[columns])), dtype=np.int8)
    work, start = [], 0
    for begin, n in pieces:
        for part in _parts(n, n * width if file.suffix != ".gz" else 0):
            rows = slice(start + part.start, start + part.stop)
            work.append((title + (begin + part.start) * width, identifiers[rows], alleles[rows]))
        start += n
    with ThreadPoolExecutor(_nthreads()) as pool:
        for _ in pool.map(lambda part: _read_piece(file, width, columns, *part), work):
            pass
    return identifiers, alleles


def _pieces(generation: np.ndarray, wanted: Iterable[int], nlines: int, file: Path) -> list[tuple[int, int]]:
    """First row and number of rows of each generation that is wanted."""
    pieces = []
    for g in sorted(set(wanted)):
        places = np.flatnonzero(generation == g)
        if len(places) == 0:
            raise FolderError(f"{file}: holds no generation {g}, but 1 to {generation[-1]}")
        pieces.append((nlines * int(places[0]), nlines * len(places)))
    return pieces


def _nthreads() -> int:
    return len(os.sched_getaffinity(0))


def _parts(nrows: int, nbytes: int) -> list[slice]:
    """Rows cut into parts that are read side by side: one for a small file and for a packed one (0 bytes)."""
    nparts = _nthreads() if nbytes > 64 * PIECE else 1
    bounds = [nrows * k // nparts for k in range(nparts + 1)]
    return [slice(begin, end) for begin, end in zip(bounds, bounds[1:])]


def _read_piece(
    file: Path, width: int, columns: slice, place: int, identifiers: np.ndarray, alleles: np.ndarray
) -> None:
    """Rows from a place in the file on, some at a time."""
    step = max(1, PIECE // width)
    buffer = np.empty((step, width), dtype=np.uint8)
    with files.openbytes(file) as stream:
        stream.seek(place)
        for row in range(0, len(identifiers), step):
            n = min(step, len(identifiers) - row)
            rows = buffer[:n]
            if stream.readinto(memoryview(rows.reshape(-1))) != rows.size or (rows[:, -1] != 10).any():
                raise files.cut(file, row + 1)
            text = np.ascontiguousarray(rows[:, :IDENTIFIER]).view(f"S{IDENTIFIER}")[:, 0]
            identifiers[row : row + n] = text.astype(np.float64)
            # The low bits of a digit are its value. In two steps: only a plain copy is quick with gaps.
            out = alleles[row : row + n]
            np.copyto(out.view(np.uint8), rows[:, IDENTIFIER + 1 :: 2][:, columns])
            out &= 15
            if out.size and out.max() > 2:
                raise FolderError(f"{file}: holds something else than genotypes 0, 1, 2")


def read_genomes(folder: Folder, chromosome: int, generation: int) -> np.ndarray:
    """Packed genomes of a generation on a chromosome: alleles as uint8, (individuals, 2, included sites).

    Gamete 1 (first of the second dimension) is the sire's. Sites are in map order, as in read_map.
    """
    path = runfolder(folder)
    file = find(path, f"Chromosomes/Chromosome{chromosome}/GenomeGeneration{generation}.txt",
                "set KeepChromosomesFolderYesNo to Yes")
    sizes = files.generationsizes(path)
    if not 1 <= generation <= len(sizes):
        raise FolderError(f"{path}: holds no generation {generation}, but 1 to {len(sizes)}")
    cells = np.frombuffer(_record(file), dtype="<i8")
    nindividuals = int(sizes[generation - 1])
    if nindividuals == 0 or cells.size % (2 * nindividuals):
        raise FolderError(f"{file}: its length doesn't fit {nindividuals} individuals")
    if (cells < 0).any():
        raise FolderError(f"{file}: holds blocks that were never made; was the run cut short?")
    # In the file the individual varies fastest, then the block, then the gamete.
    blocks = cells.reshape(2, -1, nindividuals).transpose(2, 0, 1)
    bits = np.unpackbits(np.ascontiguousarray(blocks).astype(">i8").view(np.uint8), axis=-1)
    return np.ascontiguousarray(bits.reshape(nindividuals, 2, -1, 64)[..., 64 - BLOCK :]).reshape(nindividuals, 2, -1)


def _record(file: Path) -> bytes:
    """A record framed by its length before and behind; a negative length in front says that another frame
    goes on with it."""
    content = files.readbytes(file)
    parts, at, more = [], 0, True
    while more:
        length = int.from_bytes(content[at : at + 4], "little", signed=True)
        more = length < 0
        end = at + 4 + abs(length)
        behind = int.from_bytes(content[end : end + 4], "little", signed=True)
        if end + 4 > len(content) or abs(behind) != abs(length):
            raise FolderError(f"{file}: is cut; was the run cut short?")
        parts.append(content[at + 4 : end])
        at = end + 4
    if at != len(content):
        raise FolderError(f"{file}: holds more than its record")
    return b"".join(parts)


def read_map(folder: Folder, chromosome: int) -> pd.DataFrame:
    """Included sites of a chromosome: site (from 1), position (0 to 1)."""
    path = runfolder(folder)
    own = path / f"Chromosomes/Chromosome{chromosome}/PhysicalMapIncluded.txt"
    if own.exists():
        table = fixed(own, [10, 10, 20, 10, 10], titles=0)[:, [0, 2]]
    else:
        advice = "set KeepChromosomesFolderYesNo or WriteFullSequenceOutOnOff to have the sites kept"
        rows = files.freeform(find(path, "SimulatedData/FullSequencePhysicalMapIncluded.txt", advice))
        table = np.array([(float(r[1]), float(r[2])) for r in rows if int(r[0]) == chromosome])
        if len(table) == 0:
            raise FolderError(f"{path}: there is no chromosome {chromosome}")
    frame = pd.DataFrame(table, columns=["site", "position"])
    return frame.astype({"site": np.int64})


def read_sequence(
    folder: Folder, chromosome: int, start: float = 0.0, end: float = 1.0,
    generations: Iterable[int] | None = None, phased: bool = False,
) -> pd.DataFrame:
    """Sequence of a region: included sites of a chromosome with start <= position <= end.

    Genotypes, or with phased alleles (index: individual, gamete); a column for each site, by its number.
    Read from the packed genomes where these are, otherwise from the sequence of the whole genome.
    """
    path = runfolder(folder)
    sites = read_map(path, chromosome)
    inside = sites["position"].between(start, end)
    numbers = sites["site"][inside].to_numpy()
    sizes = files.generationsizes(path)
    wanted = sorted(set(generations)) if generations is not None else range(1, len(sizes) + 1)
    if (path / f"Chromosomes/Chromosome{chromosome}").is_dir():
        ends = np.cumsum(sizes)
        alleles = [read_genomes(path, chromosome, g)[:, :, inside.to_numpy()] for g in wanted]
        individuals = np.concatenate([np.arange(ends[g - 1] - sizes[g - 1], ends[g - 1]) + 1 for g in wanted])
        gametes = np.concatenate(alleles).astype(np.int8)
        if phased:
            return pd.DataFrame(gametes.reshape(-1, len(numbers)), index=_gametes(individuals), columns=numbers)
        return pd.DataFrame(gametes.sum(axis=1, dtype=np.int8), columns=numbers,
                            index=pd.Index(individuals, name="individual"))
    return _fromtext(path, chromosome, numbers, wanted, phased)


def _fromtext(path: Path, chromosome: int, numbers: np.ndarray, wanted: Iterable[int], phased: bool) -> pd.DataFrame:
    name = "SimulatedData/FullSequencePhase.txt" if phased else "SimulatedData/FullSequenceGenotype.txt"
    file = find(path, name, "set WriteFullSequenceOutOnOff to On")
    included = [int(row[2]) for row in files.freeform(find(path, "SimulatedData/NbOfSegSitesPerChrom.txt"), 1)]
    first = sum(included[: chromosome - 1]) + (int(numbers[0]) - 1 if len(numbers) else 0)
    columns = slice(first, first + len(numbers))
    identifiers, alleles = _read_rows(path, file, 2 if phased else 1, wanted, title=51, columns=columns)
    index = _gametes(identifiers[::2]) if phased else pd.Index(identifiers, name="individual")
    return pd.DataFrame(alleles, index=index, columns=numbers)
