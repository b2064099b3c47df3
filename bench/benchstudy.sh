#!/usr/bin/env bash
# benchstudy.sh BUILD [REPLICATES]: what the workflow engine adds to each run of a study, in seconds. The limit
# is 0.5. A study of one scenario with many replicates on one core, against the same runs one after the other
# without the engine (five of them).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
export SOLVANTO_BIN=$1/bin PYTHONPATH=$root/python PYTHONDONTWRITEBYTECODE=1 OPENBLAS_NUM_THREADS=1
replicates=${2:-100}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$root/examples/study/SolvantoSpec.txt" "$work"
printf 'base: SolvantoSpec.txt\nscenarios: {one: {SelectionMethod: Tbv}}\nreplicates: %d\nseed: 1\n' "$replicates" >"$work/study.yaml"
seconds() {
    local begin=$EPOCHREALTIME
    "$@" >/dev/null
    awk -v begin="$begin" -v end="$EPOCHREALTIME" 'BEGIN { printf "%.3f\n", end - begin }'
}
five() { for k in 1 2 3 4 5; do /usr/bin/python3 "$root/workflow/replicate.py" "$work" one $k 1; done; }
alone=$(seconds five)
rm -rf "$work/study"
all=$(seconds "$root/scripts/study" "$work" --cores 1)
awk -v alone="$alone" -v all="$all" -v n="$replicates" 'BEGIN {
    printf "%d replicates in %.1f s; a run without the engine %.3f s; the engine adds %.3f s a run (limit 0.5)\n",
        n, all, alone / 5, all / n - alone / 5 }'
