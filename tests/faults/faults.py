"""Fails calls of the system, one in each run, and tells what became of the runs: see docs/reliability.md.

usage: faults.py BIN [--each N] [--within N] [--only PROGRAMME]... [--kinds KIND,...]
  --each N           N calls of each kind, spread over those that a run makes; without it, all
  --within N         the same for programs that fail within a run of solvanto
  --only PROGRAMME   this one, by its name in the table
  --kinds KIND,...   calls of these kinds
"""
import argparse
import collections
import concurrent.futures
import copy
import os
import queue
import signal
import sys
import time

sys.path.insert(0, os.path.dirname(__file__))
import programmes

columns = ["faults", "named", "survived", "told, status 0", "silent", "nameless", "signals", "hung",
           "re-runs that differ"]
mustbenone = ["told, status 0", "silent", "nameless", "signals", "hung", "re-runs that differ"]


class judge:
    """Runs with a fault and what they count as."""

    def __init__(self, folders, library):
        self.folders, self.library = folders, library

    def faulty(self, prog, kind, call, n):
        """A run with a fault in a fresh folder: the folder, what it left, the lines of the library."""
        folder = self.folders.fresh(prog, n)
        log = self.folders.worker(n) / "log"
        log.unlink(missing_ok=True)
        extra = {"LD_PRELOAD": self.library, "FAULTS_PROGRAM": prog.program, "FAULTS_KIND": kind,
                 "FAULTS_CALL": str(call), "FAULTS_LOG": str(log)}
        if prog.issystem() and prog.program != "solvanto":  # its first start is to be that for the first chromosome
            extra["SOLVANTO_THREADS"] = "1"
        if kind == "lock":  # what it is about is a warning
            prog = copy.copy(prog)
            prog.command = [word for word in prog.command if word != "--quiet"]
        result = self.folders.runprogramme(prog, folder, extra)
        lines = log.read_text().splitlines() if log.exists() else []
        return folder, result, lines

    def countcalls(self, prog):
        """Calls of each kind in a run; of a program that starts several times, of its first start."""
        _, result, lines = self.faulty(prog, "open", 0, 0)
        counts = {}
        for line in lines:
            word, kind, number = line.split(" ", 2)
            if word == "calls":
                counts.setdefault(kind, int(number))
        if result.status != 0 or not counts:
            raise RuntimeError(f"{prog.name}: no calls were counted, status {result.status}")
        return counts

    def test(self, prog, kind, call, n):
        """One fault: the columns that it counts for, and a line about what is not as it should be."""
        folder, result, lines = self.faulty(prog, kind, call, n)
        failed = [line.split(" ", 2)[2] for line in lines if line.startswith("failed")]
        if not failed:
            return [], None
        tree = self.folders.readtree(folder, n)
        changed = programmes.differences(prog.tree, tree)
        samereport = programmes.withouttimes(result.out) == prog.report
        verdict = self.verdict(prog, result, kind, failed[0], changed, samereport)
        marks = ["faults", verdict]
        wrong = f"{verdict}: status {result.status}" if verdict in mustbenone else ""
        if verdict != "survived":
            again = self.folders.repeat(prog, folder)
            stale = programmes.differences(prog.tree, self.folders.readtree(folder, n))
            if again.status != 0 or stale:
                marks.append("re-runs that differ")
                wrong += f"; the repetition ends with {again.status} and differs in {stale[:4]}"
        if not wrong:
            return marks, None
        said = result.err.decode(errors="replace").splitlines() + [""]
        text = next((line for line in said if line.startswith("ERROR")), said[0])
        return marks, f"{prog.name}: {kind} {call} ({failed[0]}) {wrong}; changed {changed[:4]}; says: {text[:150]}"

    def verdict(self, prog, result, kind, failed, changed, samereport):
        if result.status is None:
            return "hung"
        if result.status < 0:
            return "signals"
        told = result.err != prog.messages or not samereport
        if result.status == 0:
            if not changed and samereport and (kind != "lock" or b"can't be locked" in result.err):
                return "survived"
            return "told, status 0" if told and kind != "lock" else "silent"
        return "named" if self.names(prog, result, kind, failed) else "nameless"

    def names(self, prog, result, kind, failed):
        """Whether a message tells what failed: the file, memory, or the command."""
        said = result.err.decode(errors="replace") + result.out.decode(errors="replace")
        if prog.issystem() and prog.program != "solvanto":
            if prog.program in result.err.decode(errors="replace") or "failure" in said:
                return True  # else the program's own message is what there is
        wanted = [os.path.basename(failed.rstrip("/")), failed]
        if failed == "memory":
            wanted = ["memory"]
        elif failed.endswith("standard output"):
            wanted = ["standard output"]
        elif kind == "fork":
            wanted += ["failure", failed.split()[-1].rstrip("/")]
            wanted += [name + " ended" for name in programmes.programs if name in failed]
        return any(text and text in said for text in wanted)


def spread(count, each):
    if not each or count <= each:
        return range(1, count + 1)
    return sorted({1 + round(i * (count - 1) / (each - 1)) for i in range(each)})


def main():
    options = argparse.ArgumentParser(usage=__doc__.split("usage: ")[1])
    options.add_argument("bin")
    options.add_argument("--each", type=int, default=0)
    options.add_argument("--within", type=int, default=0)
    options.add_argument("--only", action="append")
    options.add_argument("--kinds", default="")
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
    examiner = judge(folders, os.path.abspath(os.path.join(given.bin, "libfaults.so")))
    progs = programmes.allprogrammes(folders)
    progs = [prog for prog in progs if not given.only or prog.name in given.only]
    kinds = [kind for kind in given.kinds.split(",") if kind]
    tasks = []
    for prog in progs:
        within = prog.issystem() and prog.program != "solvanto"
        for kind, count in examiner.countcalls(prog).items():
            if not kinds or kind in kinds:
                each = given.within if within else given.each
                tasks += [(prog, kind, call) for call in spread(count, each)]
    free = queue.SimpleQueue()
    for n in range(nworkers):
        free.put(n)

    def work(task):
        n = free.get()
        try:
            return task[0].name, task[1], *examiner.test(*task, n)
        finally:
            free.put(n)

    table = collections.defaultdict(collections.Counter)
    bykind = collections.defaultdict(collections.Counter)
    with concurrent.futures.ThreadPoolExecutor(nworkers) as pool:
        for name, kind, marks, wrong in pool.map(work, tasks):
            for mark in marks:
                table[name][mark] += 1
                bykind[kind][mark] += 1
            if wrong:
                print(wrong, flush=True)
    programmes.show("programme", columns, table)
    print()
    programmes.show("kind of call", columns, bykind)
    return programmes.judgement(table, mustbenone, "faults")


if __name__ == "__main__":
    sys.exit(main())
