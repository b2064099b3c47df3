#!/usr/bin/env bash
# rpackage.sh BIN: installs the R package into a folder of its own, and runs its tests.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$root/r" "$work/r"
mkdir "$work/library" "$work/runs"
R CMD INSTALL --no-test-load --library="$work/library" "$work/r" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
! grep -i warning "$work/log"
export R_LIBS=$work/library SOLVANTO_ROOT=$root SOLVANTO_BIN=$1 SOLVANTO_RUNS=$work/runs PYTHONDONTWRITEBYTECODE=1
cd "$work/r/tests"
Rscript testthat.R
