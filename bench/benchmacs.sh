#!/bin/bash
# The coalescent simulator at the cattle preset with 1,000 haplotypes: its time to that of scrm, the
# same process in another implementation, its time a recombination, and its memory.
# Usage: bench/benchmacs.sh BUILDFOLDER
set -eu
export LC_ALL=C
programs=$(cd "${1:?usage: bench/benchmacs.sh BUILDFOLDER}/bin" && pwd)
macs=$programs/macs
sizes="-eN 0.06 2 -eN 0.13 3 -eN 0.25 5 -eN 0.5 7 -eN 0.75 9 -eN 1 11 -eN 1.25 12.5 -eN 1.5 13
-eN 1.75 13.5 -eN 2 14 -eN 2.25 14.5 -eN 2.5 15 -eN 5 20 -eN 7.5 25 -eN 10 30 -eN 12.5 35 -eN 15 40
-eN 17.5 45 -eN 20 50 -eN 22.5 55 -eN 25 60 -eN 50 70 -eN 100 80 -eN 150 90 -eN 200 100 -eN 250 120
-eN 500 200 -eN 1000 400 -eN 1500 600 -eN 2000 800 -eN 2500 1000"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Processor time in seconds of a command, user and system, output dropped.
cpu() {
    local TIMEFORMAT='%U %S'
    { time "$@" >/dev/null 2>"$work/notes"; } 2>"$work/time"
    awk '{ print $1 + $2 }' "$work/time"
}
median() { sort -g "$1" | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

ourcall="$macs 1000 100000000 -t 0.10E-04 -r 0.40E-05 $sizes"
theircall="scrm 1000 1 -t 1000 -r 400 100000000 -l 0 $sizes"
for seed in 1 2 3 4 5; do
    cpu $ourcall -s $seed >>"$work/ours"
    if command -v scrm >/dev/null; then cpu $theircall -seed $seed >>"$work/theirs"; fi
done
echo "macs, cattle, 1,000 haplotypes, 100 Mb: $(median "$work/ours") s (median of 5)"
if [ -e "$work/theirs" ]; then
    awk -v ours="$(median "$work/ours")" -v theirs="$(median "$work/theirs")" 'BEGIN {
        printf "scrm -l 0, the same: %.2f s; ratio macs to scrm %.3f (wanted: at most 0.333)\n",
               theirs, ours / theirs }'
else
    echo "scrm is not installed (Debian: scrm): no ratio to it"
fi

# The formatter on that output, against the simulator that wrote it, both to files as in a run.
cd "$work"
for seed in 1 2 3 4 5; do
    TIMEFORMAT='%U %S'
    { time $ourcall -s $seed >output.txt 2>notes; } 2>time
    awk '{ print $1 + $2 }' time >>written
    cpu "$programs/Vintrecaskelle" 1000 >>formatted
done
awk -v ours="$(median formatted)" -v macs="$(median written)" 'BEGIN {
    printf "Vintrecaskelle on its output: %.3f s; macs, writing it: %.3f s; ratio %.2f (wanted: at most 1)\n",
           ours, macs, ours / macs }'

seconds=$(cpu "$macs" 1000 100000000 -t 0 -r 0.40E-05 $sizes -s 1 -i 20)
awk -v s="$seconds" '/recombinations/ { n += $4 } END {
    printf "a recombination: %.2f microseconds (%d of them; wanted: at most 16)\n", s / n * 1e6, n }' \
    "$work/notes"

# The limit holds for the whole address space, so more than what is touched.
if (ulimit -v 20480; $ourcall -s 1 >/dev/null 2>&1); then
    echo "memory: runs within 20 MB"
else
    echo "memory: does NOT run within 20 MB"
fi
