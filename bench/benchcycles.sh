#!/usr/bin/env bash
# bench/benchcycles.sh BUILDFOLDER: selection cycles on true values in whole runs.
# 1. One cycle of 10 chromosomes x 6,000 sites, 1,000 candidates, 2,000 QTN: its time to that of
#    "cp -r" of the files that belong to it alone (those of its generation and its folder).
# 2. Forty cycles of 1,000 individuals: the time of each, which may grow only by what the growing
#    files cost in bytes.
# CYCLES (40).
source "$(dirname "$0")/lib.sh"
source "$(dirname "$0")/lib.sh"

# run NAME CHROMOSOMES CYCLES QTN: runs, and leaves in NAME/times when each cycle began its work,
# the first files of its folder being the first that it makes, and when the last one ended.
run() {
    mkdir "$folder/$1"
    cd "$folder/$1"
    cp "$bin"/{solvanto,macs,Vintrecaskelle} .
    spec small NumberOfChromosomes="$2" NumberGenerationsBurnIn=2 NumberGenerationsSelection="$3" \
        NumberOfIndividualsInEachGeneration=Constant,1000 NumberOfHaplotypes=260 \
        NumberOfQtnPerChromosomeNormalDist="$4" WriteFullSequenceOutOnOff=Off
    echo -3 >Seed.txt
    ./solvanto >report.txt
    for cycle in $(seq 1 "$3"); do madeat "Selection/SelectionFolder$cycle"; done >times
    writtenat SimulatedData/GlobalRecombLocationMax.txt >>times
}

run one 10 3 200
cycle=$(tail -n 2 times | awk 'NR == 1 { from = $1 } NR == 2 { printf "%.3f", $1 - from }')
mkdir written
cp -r Selection/SelectionFolder3 written/
for chrom in Chromosomes/Chromosome*; do
    mkdir "written/$(basename "$chrom")"
    cp "$chrom"/*Generation5.* "written/$(basename "$chrom")/"
done
best=1e9
for try in 1 2 3; do
    start=$EPOCHREALTIME
    cp -r written "copy$try"
    best=$(echo "$(since "$start") $best" | awk '{ print $1 < $2 ? $1 : $2 }')
done
size=$(du -sm written | cut -f1)
awk -v c="$cycle" -v f="$best" -v s="$size" 'BEGIN {
    printf "one cycle: %.3f s, cp -r of its %d MB: %.3f s\n", c, s, f
    printf "cycle ratio %.2f allowed 4.00\n", c / f }'
rm -rf "${folder:?}/one"

run many 2 "${CYCLES:-40}" 50
awk 'NR > 1 { t[NR - 1] = 1000 * ($1 - last) } { last = $1 }
    END { printf "milliseconds per cycle:"
        for (c = 1; c < NR; c++) printf " %.0f", t[c]
        printf "\n"
        for (c = 1; c <= 5; c++) { first += t[c] / 5; end += t[NR - c] / 5 }
        printf "last five cycles to first five: %.2f\n", end / first }' times
size=$(du -sm SimulatedData | cut -f1)
echo "result files read and extended along the way: $size MB in SimulatedData at the end"
