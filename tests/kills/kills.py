"""Kills runs at random moments and runs them again: the repetition has to leave the tree of a run
that nobody killed. See docs/reliability.md.

usage: kills.py BIN [--kills N] [--seed SEED]
"""
import argparse
import collections
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "faults"))
import programmes


def killed(prog, folder, moment):
    """Starts the run and kills it, not its children, after so many seconds; whether it was there still."""
    child = subprocess.Popen(prog.command, cwd=folder, env=programmes.environment,
                             stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(moment)
    child.kill()
    return child.wait() == -signal.SIGKILL


def duration(folders, prog):
    folder = folders.fresh(prog, 0)
    start = time.time()
    folders.runprogramme(prog, folder)
    return time.time() - start


def repeatwhenfree(folders, prog, folder):
    """Repeats the run. What the killed one started ends with it, but holds the folder's lock until it
    has: a refusal is asked again, for two seconds at most. Tells whether there was one."""
    end = time.time() + 2
    again = folders.repeat(prog, folder)
    refused = b"another run works" in again.err
    while b"another run works" in again.err and time.time() < end:
        time.sleep(0.02)
        again = folders.repeat(prog, folder)
    return again, refused


def main():
    options = argparse.ArgumentParser(usage=__doc__.split("usage: ")[1])
    options.add_argument("bin")
    options.add_argument("--kills", type=int, default=50)
    options.add_argument("--seed", type=int, default=1)
    given = options.parse_args()
    moments = random.Random(given.seed)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # folders are removed then too
    folders = programmes.campaign(given.bin, 1)
    table = collections.defaultdict(collections.Counter)
    try:
        folders.maketemplates()
        progs = [programmes.programme(name) for name in ["start", "goon", "merge"]]
        for prog in progs:
            folders.makereference(prog)
            prog.seconds = duration(folders, prog)
        for i in range(given.kills):
            prog = progs[i % len(progs)]
            count = table[prog.name]
            moment = moments.uniform(0, prog.seconds)
            while not killed(prog, folders.fresh(prog, 0), moment):
                moment = moments.uniform(0, moment)  # it had come to its end
            count["kills"] += 1
            folder = folders.worker(0) / "run"
            before = folders.readtree(folder, 0)
            if before == prog.tree:
                count["killed with all files done"] += 1
            again, refused = repeatwhenfree(folders, prog, folder)
            count["refused at first"] += refused
            stale = programmes.differences(prog.tree, folders.readtree(folder, 0))
            if again.status != 0 or stale:
                count["re-runs that differ"] += 1
                kept = f"/tmp/solvanto-kill-{os.getpid()}-{i}"
                shutil.copytree(folder, kept, symlinks=True)
                print(f"{prog.name} killed after {moment:.3f} s: the repetition ends with {again.status}, differs in "
                      f"{stale[:4]}, says {again.err.decode(errors='replace')[:200]!r}; it is kept in {kept}")
    finally:
        folders.remove()
    columns = ["kills", "killed with all files done", "refused at first", "re-runs that differ"]
    print("| programme | " + " | ".join(columns) + " |")
    print("|---" * (len(columns) + 1) + "|")
    for name, count in table.items():
        print("| " + " | ".join([name] + [str(count[column]) for column in columns]) + " |")
    return 1 if any(count["re-runs that differ"] for count in table.values()) else 0


if __name__ == "__main__":
    sys.exit(main())
