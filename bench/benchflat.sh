#!/usr/bin/env bash
# bench/benchflat.sh BUILDFOLDER: whether cycles of selection on true values stay as long as the first ones were.
# 1. Bytes read and written by a run of 120 cycles of 100 individuals to one of 40, as the system counts them.
# 2. 200 cycles of 200 individuals: the last ten to the first ten, wall time by the folders of the cycles, and user
#    time of runs that end before and behind twenty of them (medians of PAIRS, 5).
source "$(dirname "$0")/lib.sh"
cd "$folder"
cp "$bin"/{solvanto,macs,Vintrecaskelle} .
echo "load: $(cut -d ' ' -f 1 /proc/loadavg)"

# run INDIVIDUALS CYCLES: user seconds in $user, bytes read and written in $bytes.
run() {
    spec small NumberOfIndividualsInEachGeneration="Constant,$1" NumberGenerationsSelection="$2" WriteFullSequenceOutOnOff=Off
    echo -1 >Seed.txt
    rm -rf Chromosomes Selection SimulatedData
    sync
    # shellcheck disable=SC2016  # of the shell within
    bash -c './solvanto --quiet >report.txt; times >times; cat /proc/$$/io >io'
    user=$(awk 'NR == 2 { split($1, t, /[ms]/); print 60 * t[1] + t[2] }' times)
    bytes=$(awk '$1 == "rchar:" || $1 == "wchar:" { n += $2 } END { print n }' io)
}

run 100 40
few=$bytes
run 100 120
awk -v a="$bytes" -v b="$few" 'BEGIN { printf "bytes of 120 cycles to 40: %.2f (wanted: at most 3.3)\n", a / b }'

began() { madeat "Selection/SelectionFolder$1"; }
for ((pair = 1; pair <= pairs; ++pair)); do
    for cycles in 1 21 180 200; do
        run 200 "$cycles"
        echo "$user" >>"user.$cycles"
    done
    echo "$(began 1) $(began 11) $(began 190) $(began 200)" | awk '{ print ($4 - $3) / ($2 - $1) }' >>wall
done
awk -v r="$(median wall)" 'BEGIN { printf "200 cycles, last ten to first ten, wall: %.2f (wanted: at most 1.05)\n", r }'
awk -v a="$(median user.200)" -v b="$(median user.180)" -v c="$(median user.21)" -v d="$(median user.1)" 'BEGIN {
    printf "200 cycles, last twenty to first twenty, user: %.3f s to %.3f s, %.2f (wanted: at most 1.05)\n", a - b, c - d, (a - b) / (c - d) }'
