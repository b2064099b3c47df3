#!/usr/bin/env bash
# bench/benchwholerun.sh BUILDFOLDER: a whole run, wall time to that of "cp -r" of its result tree (median of PAIRS, 5).
# Sizes: CHROMOSOMES (10), INDIVIDUALS per generation (1000), GENERATIONS of the burn-in (5), CYCLES of selection on
# true values (0), SEQUENCE output (On); about 9 GB of results at full size. FOUNDERS=yes: with macs and the formatter;
# else founder files are made once and put in place by stand-ins for them. ALLOWED: the ratio that is told beside the
# measured one (2.5). Before each pair as much free memory is touched as the
# tree is large, since a virtual machine hands out fresh memory slowly.
source "$(dirname "$0")/lib.sh"
source "$(dirname "$0")/lib.sh"
nchrom=${CHROMOSOMES:-10}
nindiv=${INDIVIDUALS:-1000}
ngen=${GENERATIONS:-5}
ncycles=${CYCLES:-0}
sequence=${SEQUENCE:-On}
same=(NumberOfChromosomes="$nchrom" WriteFullSequenceOutOnOff="$sequence" NumberOfHaplotypes=260)

# 260 haplotypes of the test history have about 6,100 sites, 6,060 or more of them included.
mkdir "$folder/founders" "$folder/run"
(
    cd "$folder/founders"
    cp "$bin"/{solvanto,macs,Vintrecaskelle} .
    spec small "${same[@]}" NumberOfIndividualsInEachGeneration=Constant,50 NumberGenerationsBurnIn=1 \
        NumberGenerationsSelection=0
    echo -1 >Seed.txt
    ./solvanto --quiet >report.txt
)
cd "$folder/run"
cp "$bin"/{solvanto,macs,Vintrecaskelle} .
spec small "${same[@]}" NumberOfIndividualsInEachGeneration=Constant,"$nindiv" NumberGenerationsBurnIn="$ngen" \
    NumberGenerationsSelection="$ncycles"
echo -2 >Seed.txt
if [ "${FOUNDERS:-no}" != yes ]; then
    printf '#!/bin/sh\nexit 0\n' >macs
    cat >Vintrecaskelle <<'END'
#!/bin/sh
cp "../../../founders/Chromosomes/$(basename "$PWD")"/SegSites.txt .
cp "../../../founders/Chromosomes/$(basename "$PWD")"/PhysicalMapInput.txt .
cp "../../../founders/Chromosomes/$(basename "$PWD")"/MacsHaplotypes.txt .
END
fi

seconds() {
    local start=$EPOCHREALTIME
    "$@" >"$folder/report.txt"
    since "$start"
}
# Runs once unmeasured, to know the size.
echo -2 >Seed.txt
./solvanto --quiet >"$folder/report.txt"
size=$(du -scm Chromosomes SimulatedData Selection | awk 'END { print $1 }')
echo "load: $(cut -d ' ' -f 1 /proc/loadavg), results: $size MB"
touchmemory() {
    dd if=/dev/zero of="/dev/shm/touched.$$" bs=1M count="$size" 2>/dev/null || true
    rm -f "/dev/shm/touched.$$"
}
for ((pair = 1; pair <= pairs; ++pair)); do
    rm -rf Chromosomes SimulatedData Selection
    echo -2 >Seed.txt
    sync
    touchmemory
    run=$(seconds ./solvanto --quiet)
    sync
    mkdir "$folder/copy"
    copy=$(seconds cp -r Chromosomes SimulatedData Selection "$folder/copy")
    rm -rf "$folder/copy"
    echo "$run $copy" | awk '{ printf "run %.3f s, cp -r %.3f s, ratio %.2f\n", $1, $2, $1 / $2 }'
    echo "$run $copy" | awk '{ print $1 / $2 }' >>"$folder/ratios"
done
awk -v n="$nindiv" -v g="$ngen" -v c="$ncycles" -v h="$nchrom" -v s="$sequence" -v a="${ALLOWED:-2.5}" -v r="$(median "$folder/ratios")" '
    BEGIN { printf "wholerun (%d chromosomes, %d generations and %d cycles of %d, sequence %s) ratio %.2f allowed %.2f\n",
                   h, g, c, n, s, r, a }'
