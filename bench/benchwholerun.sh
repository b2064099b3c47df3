#!/usr/bin/env bash
# bench/benchwholerun.sh BUILDFOLDER: a whole burn-in run without the coalescent, wall time to that of
# "cp -r" of its result tree. Founder files are made once and put in place by stand-ins for the
# two programs. Sizes: CHROMOSOMES (10), INDIVIDUALS per generation (1000), GENERATIONS (5),
# sequence output on; about 9 GB of results at full size. FOLDER: where it works (a temporary one).
set -euo pipefail
bin=$(cd "${1:?usage: $0 BUILDFOLDER}/bin" && pwd)
nchrom=${CHROMOSOMES:-10}
nindiv=${INDIVIDUALS:-1000}
ngen=${GENERATIONS:-5}
folder=${FOLDER:-$(mktemp -d)}
trap 'rm -rf "$folder"' EXIT
root=$(cd "$(dirname "$0")/.." && pwd)

spec() {
    sed -E -e "s/^(NumberOfChromosomes *),.*/\1,$1/" \
        -e "s/^(NumberGenerationsBurnIn *),.*/\1,$2/" \
        -e "s/^(NumberGenerationsSelection *),.*/\1,0/" \
        -e "s/^(NumberOfIndividualsInEachGeneration *),.*/\1,Constant,$3/" \
        -e "s/^(NumberOfHaplotypes *),.*/\1,260/" \
        "$root/examples/small/SolvantoSpec.txt"
}

# 260 haplotypes of the test history have about 6,100 sites, 6,060 or more of them included.
mkdir "$folder/founders" "$folder/run"
(
    cd "$folder/founders"
    cp "$bin"/{solvanto,macs,Vintrecaskelle} .
    spec "$nchrom" 1 50 >SolvantoSpec.txt
    echo -1 >Seed.txt
    ./solvanto >report.txt
)
cd "$folder/run"
cp "$bin/solvanto" .
spec "$nchrom" "$ngen" "$nindiv" >SolvantoSpec.txt
echo -2 >Seed.txt
printf '#!/bin/sh\nexit 0\n' >macs
cat >Vintrecaskelle <<'END'
#!/bin/sh
cp "../../../founders/Chromosomes/$(basename "$PWD")"/SegSites.txt .
cp "../../../founders/Chromosomes/$(basename "$PWD")"/PhysicalMapInput.txt .
cp "../../../founders/Chromosomes/$(basename "$PWD")"/MacsHaplotypes.txt .
END
chmod +x macs Vintrecaskelle

seconds() {
    local start
    start=$(date +%s.%N)
    "$@" >"$folder/report.txt"
    echo "$(date +%s.%N) $start" | awk '{ printf "%.3f", $1 - $2 }'
}
best=1e9
for try in 1 2 3; do
    echo -2 >Seed.txt
    sync
    run=$(seconds ./solvanto)
    sync
    mkdir "$folder/copy$try"
    copy=$(seconds cp -r Chromosomes SimulatedData Selection "$folder/copy$try")
    rm -rf "$folder/copy$try"
    ratio=$(echo "$run $copy" | awk '{ printf "%.2f", $1 / $2 }')
    echo "run $run s, cp -r $copy s, ratio $ratio"
    best=$(echo "$best $ratio" | awk '{ print $1 < $2 ? $1 : $2 }')
done
awk -v n="$nindiv" -v g="$ngen" -v h="$nchrom" -v r="$best" 'BEGIN {
    printf "wholerun (%d chromosomes, %d generations of %d) ratio %.2f allowed 2.50\n", h, g, n, r }'
