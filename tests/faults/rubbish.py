"""Spoils the files that a run finds, one in each run, and tells what became of the runs: see docs/reliability.md.

usage: rubbish.py BIN [--only PROGRAMME]... [--files TEXT]
  --only PROGRAMME   this one, by its name in the table
  --files TEXT       files whose path holds this text
"""
import argparse
import collections
import concurrent.futures
import os
import queue
import re
import signal
import sys
import time

sys.path.insert(0, os.path.dirname(__file__))
import programmes

columns = ["spoilt", "refused", "without effect", "kept", "believed", "nameless", "signals", "hung"]
filename = re.compile(r"\w+\.(txt|bin)")
mustbenone = ["believed", "nameless", "signals", "hung"]


# ----------------------------------------------------------------- what is done to a file of lines


def nolineend(lines):
    """The last line end is missing."""
    return lines[:-1] + [lines[-1].rstrip(b"\n")]


def cutline(lines):
    """The last line lacks its last digit, and its line end."""
    return lines[:-1] + [lines[-1].rstrip()[:-1]]


def missinglast(lines):
    return lines[:-1]


def missing(lines):
    return lines[:middle(lines)] + lines[middle(lines) + 1:]


def doubled(lines):
    return lines[:middle(lines)] + [lines[middle(lines)]] + lines[middle(lines):]


def swapped(lines):
    """Two neighbours that differ, as near to the middle as there are."""
    order = sorted(range(len(lines) - 1), key=lambda i: abs(i - middle(lines)))
    for i in order:
        if lines[i] != lines[i + 1]:
            return lines[:i] + [lines[i + 1], lines[i]] + lines[i + 2:]
    return lines


def surplus(lines):
    return lines + lines[-1:]


def middle(lines):
    return (len(lines) - 1) // 2


# ------------------------------------------------------------------------ and to a binary file


def shorter(content):
    return content[:-8]


def longer(content):
    return content + content[-8:]


def otherframe(content):
    """The length before the record is another one than behind it."""
    return content[:4] + content[12:]


def highbits(content):
    """A block has bits that no locus uses."""
    return content[:11] + b"\xf0" + content[12:]


def unmade(content):
    """A block is what stands for one that wasn't made."""
    return content[:4] + (-99).to_bytes(8, "little", signed=True) + content[12:]


def textchange(change):
    return lambda content: b"".join(change(content.splitlines(keepends=True)))


textways = {way.__name__: textchange(way) for way in
            [nolineend, cutline, missinglast, missing, doubled, swapped, surplus]}
binaryways = {way.__name__: way for way in [shorter, longer, otherframe, highbits, unmade]}


def ways(content):
    if b"\0" in content:
        return binaryways
    return textways if content.endswith(b"\n") else {}


class judge:
    def __init__(self, folders):
        self.folders = folders

    def run(self, prog, path, content, n):
        """A run with the file spoilt, None: gone. What it left, and files that differ."""
        folder = self.folders.fresh(prog, n)
        spoilt = folder / path
        before = spoilt.read_bytes()
        spoilt.unlink()
        if content is not None:
            spoilt.write_bytes(content)
        result = self.folders.runprogramme(prog, folder)
        if path.startswith(".."):
            spoilt.write_bytes(before)  # it stands beside the run's folder, which alone is made anew
        tree = self.folders.readtree(folder, n)
        # Merges and cycles copy what they don't read: what came through as it was counts for unchanged.
        return result, [name for name in programmes.differences(prog.tree, tree)
                        if os.path.basename(name) != os.path.basename(path) or tree.get(name) != content], tree

    def isread(self, prog, path, n):
        result, changed, _ = self.run(prog, path, None, n)
        return result.status != 0 or bool(changed)

    def test(self, prog, path, way, n):
        content = (self.folders.fresh(prog, n) / path).read_bytes()
        spoilt = ways(content)[way](content)
        if spoilt == content:
            return [], None
        result, changed, tree = self.run(prog, path, spoilt, n)
        verdict = self.verdict(prog, result, changed)
        if verdict == "believed" and changed == [path] and tree[path].startswith(spoilt):
            verdict = "kept"  # the run goes on behind records that it doesn't read
        if verdict not in mustbenone:
            return ["spoilt", verdict], None
        said = result.err.decode(errors="replace").splitlines() + [""]
        return ["spoilt", verdict], f"{prog.name}: {path}: {way}: {verdict}: status {result.status}; " \
                                    f"changed {changed[:4]}; says: {said[0][:150]}"

    def verdict(self, prog, result, changed):
        if result.status is None:
            return "hung"
        if result.status < 0:
            return "signals"
        if result.status == 0:
            same = not changed and programmes.withouttimes(result.out) == prog.report
            return "without effect" if same else "believed"
        said = (result.err + result.out).decode(errors="replace")
        return "refused" if filename.search(said) else "nameless"


def candidates(folders, prog, n, text):
    """Files that the run could read: what earlier runs left, in its folder and in those beside it."""
    folder = folders.fresh(prog, n)
    places = [folder] + ([folder.parent / name for name in ["burnin", "first", "second"]]
                         if prog.name == "merge" else [])
    own = {"SolvantoSpec.txt", "Seed.txt", "SeedOld.txt", "list.txt"}
    return [os.path.relpath(path, folder) for place in places for path in sorted(place.rglob("*"))
            if path.is_file() and not path.is_symlink() and path.name not in own and text in str(path)
            and "Chromosome2" not in path.parts and ways(path.read_bytes())]


def main():
    options = argparse.ArgumentParser(usage=__doc__.split("usage: ")[1])
    options.add_argument("bin")
    options.add_argument("--only", action="append")
    options.add_argument("--files", default="")
    given = options.parse_args()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # folders are removed then too
    start = time.time()
    nworkers = os.cpu_count() or 1
    folders = programmes.campaign(given.bin, nworkers)
    try:
        status = act(given, folders, nworkers)
    finally:
        folders.remove()
    print(f"{time.time() - start:.0f} seconds")
    return status


def act(given, folders, nworkers):
    examiner = judge(folders)
    progs = [prog for prog in programmes.goingon(folders) if not given.only or prog.name in given.only]
    free = queue.SimpleQueue()
    for n in range(nworkers):
        free.put(n)

    def withworker(act, *what):
        n = free.get()
        try:
            return act(*what, n)
        finally:
            free.put(n)

    table = collections.defaultdict(collections.Counter)
    byway = collections.defaultdict(collections.Counter)
    with concurrent.futures.ThreadPoolExecutor(nworkers) as pool:
        found = [(prog, path) for prog in progs for path in candidates(folders, prog, 0, given.files)]
        isread = pool.map(lambda task: withworker(examiner.isread, *task), found)
        tasks = [(prog, path, way) for (prog, path), read in zip(found, list(isread)) if read
                 for way in ways((folders.fresh(prog, 0) / path).read_bytes())]
        tested = pool.map(lambda task: withworker(examiner.test, *task), tasks)
        for (prog, path, way), (marks, wrong) in zip(tasks, tested):
            for mark in marks:
                table[prog.name][mark] += 1
                byway[way][mark] += 1
            if wrong:
                print(wrong, flush=True)
    programmes.show("programme", columns, table)
    print()
    programmes.show("change", columns, byway)
    return programmes.judgement(table, mustbenone, "spoilt")


if __name__ == "__main__":
    sys.exit(main())
