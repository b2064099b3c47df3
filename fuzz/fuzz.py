"""Runs the fuzzers and tells what they did; inputs that a fuzzer failed on are kept in FOLDER/found.

usage: fuzz.py FOLDER CORPUS [--seconds N] [--only NAME]...
"""
import argparse
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys

limits = ["-timeout=10", "-rss_limit_mb=2048", "-malloc_limit_mb=2048", "-max_len=4096"]


def fuzz(program, corpus, found, seconds):
    name = program.name[4:]
    grown = found.parent / "grown" / name
    for folder in [found / name, grown]:
        folder.mkdir(parents=True, exist_ok=True)
    command = [program, f"-max_total_time={seconds}", "-print_final_stats=1", "-close_fd_mask=3", "-seed=1",
               f"-artifact_prefix={found / name}/", *limits, grown, corpus / name]
    environment = {**os.environ, "ASAN_OPTIONS": "detect_leaks=0", "UBSAN_OPTIONS": "print_stacktrace=1"}
    result = subprocess.run(command, capture_output=True, text=True, errors="replace", env=environment)
    (found.parent / f"{name}.log").write_text(result.stderr)

    def number(what):
        match = re.search(rf"stat::{what}: *(\d+)", result.stderr)
        return int(match.group(1)) if match else 0

    edges = re.findall(r" cov: (\d+)", result.stderr)
    reason = re.search(r"(ERROR: .*|runtime error: .*)", result.stderr)
    return {
        "fuzzer": name,
        "inputs": number("number_of_executed_units"),
        "a second": number("average_exec_per_sec"),
        "places reached": edges[-1] if edges else 0,
        "MB": number("peak_rss_mb"),
        "failures": "" if result.returncode == 0 else reason.group(1)[:100] if reason else result.returncode,
    }


def main():
    options = argparse.ArgumentParser(usage=__doc__.split("usage: ")[1])
    options.add_argument("folder", type=pathlib.Path)
    options.add_argument("corpus", type=pathlib.Path)
    options.add_argument("--seconds", type=int, default=60)
    options.add_argument("--only", action="append")
    given = options.parse_args()
    found = given.folder.resolve() / "found"
    programs = sorted(given.folder.resolve().glob("bin/fuzz*"))
    programs = [p for p in programs if not given.only or p.name[4:] in given.only]
    if not programs:
        print("there is no fuzzer of that name")
        return 1
    failed = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        rows = pool.map(lambda p: fuzz(p, given.corpus.resolve(), found, given.seconds), programs)
        for i, row in enumerate(rows):
            if i == 0:
                print("| " + " | ".join(row) + " |")
                print("|---" * len(row) + "|")
            failed += row["failures"] != ""
            print("| " + " | ".join(str(value) for value in row.values()) + " |", flush=True)
    if failed:
        print(f"{failed} fuzzers failed: inputs in {found}, reports in {given.folder}/NAME.log")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
