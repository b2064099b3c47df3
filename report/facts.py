"""What a report says of a run in words: what was simulated, with which program, seed and disk."""

from __future__ import annotations

import datetime
import subprocess
from pathlib import Path

FOLDERS = ("Chromosomes", "Selection", "SimulatedData")


def facts(folder: Path) -> list[tuple[str, str]]:
    rows = [("folder", folder.resolve().name)]
    if (version := programversion(folder)) is not None:
        rows.append(("program", version))
    for name, label in [("SeedOld.txt", "seed of the last run"), ("Seed.txt", "seed it left")]:
        if (folder / name).exists():
            rows.append((label, (folder / name).read_text().strip()))
    rows += times(folder)
    sizes = {name: disk(folder / name) for name in FOLDERS}
    rows.append(("disk", ", ".join(f"{bytetext(size)} in {name}" for name, size in sizes.items() if size)))
    return rows


def programversion(folder: Path) -> str | None:
    program = folder / "solvanto"
    if not program.exists():
        return None
    try:
        answer = subprocess.run([program.resolve(), "--version"], capture_output=True, text=True, timeout=5)
    except (OSError, subprocess.TimeoutExpired):
        return None
    return answer.stdout.strip() or None


def times(folder: Path) -> list[tuple[str, str]]:
    """When the last run began, and until when it wrote files."""
    seed = folder / "SeedOld.txt"
    written = [file.stat().st_mtime for file in (folder / "SimulatedData").rglob("*") if file.is_file()]
    if not seed.exists() or not written:
        return []
    begin, end = seed.stat().st_mtime, max(written)
    rows = [("began", datetime.datetime.fromtimestamp(begin).strftime("%Y-%m-%d %H:%M"))]
    if end >= begin:
        rows.append(("took", f"{end - begin:.1f} s" if end - begin < 120 else f"{(end - begin) / 60:.1f} minutes"))
    return rows


def disk(folder: Path) -> int:
    return sum(file.stat().st_size for file in folder.rglob("*") if file.is_file() and not file.is_symlink())


def bytetext(size: float) -> str:
    for unit in ["bytes", "kB", "MB", "GB"]:
        if size < 1000 or unit == "GB":
            return f"{size:.3g} {unit}"
        size /= 1000
    return ""
