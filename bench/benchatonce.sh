#!/usr/bin/env bash
# bench/benchatonce.sh BUILDFOLDER: programs side by side, wall time of as many at once as there are processors to one
# after the other (medians of PAIRS, 5): the founders of ten chromosomes of the cattle history with 1,000 haplotypes,
# from the run's beginning to the last formatter's end, and a run that compresses its sequence files against the same
# run without compression.
source "$(dirname "$0")/lib.sh"
echo "processors: $(nproc); load: $(cut -d ' ' -f 1 /proc/loadavg)"

# seconds WORD...: of a run with the seed and the environment given; its folders are made anew.
seconds() {
    rm -rf Chromosomes Selection SimulatedData
    echo -1 >Seed.txt
    sync
    local start=$EPOCHREALTIME
    env "$@" ./solvanto --quiet >report.txt
    since "$start"; echo
}
# The same until the programs of the founders had ended.
founderseconds() {
    seconds "$@" >/dev/null
    echo "$(writtenat SeedOld.txt) $(writtenat Chromosomes/Chromosome10/MaCSParametersUsed.txt)" |
        awk '{ print $2 - $1 }'
}

mkdir "$folder/founders" "$folder/packed" "$folder/plain"
for run in founders packed plain; do cp "$bin"/{solvanto,macs,Vintrecaskelle} "$folder/$run"; done
few=(NumberOfIndividualsInEachGeneration=Constant,50 NumberGenerationsBurnIn=1 NumberGenerationsSelection=0)
(cd "$folder/founders" && spec small "${few[@]}" PopulationHistoryMaCS=InternalCattle NumberOfHaplotypes=1000 \
    NumberOfChromosomes=10 WriteFullSequenceOutOnOff=Off)
many=(NumberOfIndividualsInEachGeneration=Constant,1000 NumberGenerationsBurnIn=2 NumberGenerationsSelection=0
    NumberOfChromosomes=2 NumberOfHaplotypes=260 WriteFullSequenceOutOnOff=On)
(cd "$folder/packed" && spec small "${many[@]}" ZipSequenceOutputFilesYesNo=Yes)
(cd "$folder/plain" && spec small "${many[@]}" ZipSequenceOutputFilesYesNo=No)
for ((pair = 1; pair <= pairs; ++pair)); do
    for natonce in 1 "$(nproc)"; do
        (cd "$folder/founders" && founderseconds SOLVANTO_THREADS="$natonce") >>"$folder/founders.$natonce"
        for run in packed plain; do
            (cd "$folder/$run" && seconds SOLVANTO_THREADS="$natonce") >>"$folder/$run.$natonce"
        done
    done
done
# tell WHAT ONE MANY: both times and their ratio.
tell() { awk -v one="$2" -v many="$3" -v what="$1" 'BEGIN {
    printf "%s: %.3f s one after the other, %.3f s side by side; ratio %.2f (wanted on two processors: at most 0.55)\n",
           what, one, many, many / one }'; }
of() { median "$folder/$1.$2"; }
tell "founders" "$(of founders 1)" "$(of founders "$(nproc)")"
gzips() { awk -v packed="$(of packed "$1")" -v plain="$(of plain "$1")" 'BEGIN { print packed - plain }'; }
tell "compression" "$(gzips 1)" "$(gzips "$(nproc)")"
