"""Files of a run folder: where they are, whether the run is at its end, lines of fixed columns.

All tables are read by their columns, not by blanks between them, so that values that fill theirs don't
run together.
"""

from __future__ import annotations

import fcntl
import gzip
import os
from pathlib import Path
from typing import BinaryIO, Sequence

import numpy as np

from .errors import FolderError

Folder = str | os.PathLike


def runfolder(folder: Folder) -> Path:
    """The folder, once it is clear that a run has been there and that none works in it now."""
    path = Path(folder)
    if not path.is_dir():
        raise FolderError(f"{path}: there is no such folder")
    if not (path / "SimulatedData").is_dir():
        raise FolderError(f"{path}: holds no folder SimulatedData; did a run end here?")
    specification = path / "SolvantoSpec.txt"
    if specification.exists():
        with open(specification, "rb") as file:
            try:
                fcntl.flock(file, fcntl.LOCK_SH | fcntl.LOCK_NB)
            except BlockingIOError:
                raise FolderError(f"{path}: a run is under way in this folder; wait for its end") from None
            except OSError:
                pass  # a disk without locks
    return path


def find(folder: Path, name: str, advice: str = "") -> Path:
    """A file of the folder, plain or packed (.gz). advice: what makes a run leave it."""
    for path in (folder / name, folder / f"{name}.gz"):
        if path.is_file():
            return path
    raise FolderError(f"{folder / name}: is missing" + (f"; {advice}" if advice else ""))


def openbytes(path: Path) -> BinaryIO:
    return gzip.open(path, "rb") if path.suffix == ".gz" else open(path, "rb")


def readbytes(path: Path) -> bytes:
    try:
        with openbytes(path) as file:
            return file.read()
    except (EOFError, gzip.BadGzipFile) as error:
        raise FolderError(f"{path}: {error}") from None


def cut(path: Path, line: int) -> FolderError:
    return FolderError(f"{path}:{line}: is cut; was the run cut short?")


def lines(path: Path, titles: int) -> list[bytes]:
    """The lines behind the titles; the last one must be complete."""
    content = readbytes(path)
    if content and not content.endswith(b"\n"):
        raise cut(path, content.count(b"\n") + 1)
    return content.split(b"\n")[titles:-1]


def fixed(path: Path, widths: Sequence[int], titles: int = 1) -> np.ndarray:
    """A table of fixed columns as doubles, (rows, columns). What a row doesn't hold is NaN: merges leave
    shorter rows. Widths beyond those of the file's longest row are left out."""
    rows = lines(path, titles)
    ends = np.cumsum(widths)
    starts = ends - np.asarray(widths)
    if not rows:
        return np.empty((0, len(widths)))
    lengths = {len(row) for row in rows}
    table = np.full((len(rows), len(widths)), np.nan)
    for length in lengths:
        at = [i for i, row in enumerate(rows) if len(row) == length] if len(lengths) > 1 else slice(None)
        some = [rows[i] for i in at] if len(lengths) > 1 else rows
        cells = np.frombuffer(b"".join(some), dtype=np.uint8).reshape(len(some), length)
        for k, (start, end) in enumerate(zip(starts, ends)):
            if end > length:
                break
            column = np.ascontiguousarray(cells[:, start:end]).view(f"S{end - start}")[:, 0]
            try:
                table[at, k] = column.astype(np.float64)
            except ValueError as error:
                raise FolderError(f"{path}: column {k + 1}: {error}") from None
    return table


def freeform(path: Path, titles: int = 0) -> list[list[str]]:
    """Words of the lines behind the titles."""
    return [line.decode("ascii", "replace").split() for line in lines(path, titles)]


def generationsizes(folder: Path) -> np.ndarray:
    """Individuals of each generation, from generation 1 on."""
    path = find(folder, "SimulatedData/NbOfIndivInEachGen.txt")
    return fixed(path, [4, 20, 20, 20])[:, 1].astype(np.int64)


def wholegenerations(folder: Path, path: Path, nindividuals: int) -> np.ndarray:
    """The generation of individuals 1 to nindividuals, which must be whole generations: otherwise the run
    was cut short, or is under way."""
    sizes = generationsizes(folder)
    ends = np.cumsum(sizes)
    if nindividuals not in ends:
        raise FolderError(
            f"{path}: holds {nindividuals} individuals, which are no whole generations of {folder}; "
            "was the run cut short?"
        )
    return np.repeat(np.arange(1, len(sizes) + 1), sizes)[:nindividuals]
