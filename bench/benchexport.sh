#!/bin/bash
# solvanto-export: how fast files are written, against cp, bgzip and plink2 on the same bytes and
# genotypes; and its memory on sequence text of 1,000 individuals and 600,000 sites.
# Usage: bench/benchexport.sh BUILDFOLDER
set -eu
export LC_ALL=C
bin=${1:?usage: bench/benchexport.sh BUILDFOLDER}/bin
bin=$(cd "$bin" && pwd)
[ -x "$bin/solvanto-export" ] || { echo "solvanto-export is not built (Debian: libhts-dev)"; exit 0; }
sources=$(cd "$(dirname "$0")/.." && pwd)
# In memory where there is room: what a disk does at the moment would be measured too.
free=$(df -Pk /dev/shm 2>/dev/null | awk 'NR == 2 { print $4 }')
work=$(mktemp -d ${free:+$([ "$free" -gt 12000000 ] && echo -p /dev/shm)})
trap 'rm -rf "$work"' EXIT
cd "$work"
"$sources/scripts/workingfolder" small run "$bin" >/dev/null

# set KEY VALUES
set_() { sed -i "s/^$1 *,.*/$1,$2/" run/SolvantoSpec.txt; }
set_ NumberGenerationsBurnIn 1
set_ NumberGenerationsSelection 0
set_ NumberOfIndividualsInEachGeneration Constant,1000
set_ NumberOfChromosomes 3
set_ NumberOfSiresInEachGeneration Constant,100
set_ NumberOfDamsInEachGeneration Constant,400
set_ NumberOfHaplotypes 200
# Some 200,000 sites a chromosome.
set_ ChromosomeLengthBasesMaCS External,100000000
set_ MutationRateMaCS External,8.5e-7
set_ WriteFullSequenceOutOnOff On
(cd run && ./solvanto --quiet >report.txt)
nsites=$(awk 'NR > 1 { n += $3 } END { print n }' run/SimulatedData/NbOfSegSitesPerChrom.txt)
echo "1,000 individuals, $nsites sites"

# elapsed COMMAND...: the least seconds of three repetitions, in $seconds.
elapsed() {
    local k
    for k in 1 2 3; do
        rm -f copy.* last.*
        local TIMEFORMAT=%R
        { time "$@" >/dev/null 2>messages || cat messages >&2; } 2>>times
    done
    seconds=$(sort -g times | head -n 1)
    rm times
}
export_() { "$bin/solvanto-export" run --data sequence --force "$@"; }
ratio() { awk -v a="$2" -v b="$3" -v name="$1" -v wanted="$4" 'BEGIN {
    printf "%s: %.2f s, its floor %.2f s, ratio %.2f (wanted: at most %s)\n", name, a, b, a / b, wanted }'; }

# A plain copy of the bytes, which are in memory after the export.
for kind in bcf plink; do
    rm -f out.*
    options=$([ $kind = bcf ] && echo --uncompressed || true)
    elapsed export_ --to $kind $options --output out
    ours=$seconds
    mkdir copied
    elapsed cp out.* copied
    ratio "$kind from packed genomes, to cp of its $(cat out.* | wc -c) bytes" "$ours" "$seconds" 2
    rm -r copied
done

threads=$(nproc)
export_() { "$bin/solvanto-export" run --data sequence --chromosomes 1 --force "$@"; }
export_ --to vcf --uncompressed --output text >/dev/null
elapsed export_ --to vcf --threads "$threads" --output out
ours=$seconds
elapsed bgzip -@"$threads" -c text.vcf
ratio "vcf.gz of chromosome 1 with its index by $threads threads, to bgzip -@$threads of the text" "$ours" "$seconds" 1.3
if command -v plink2 >/dev/null; then
    export_ --to pgen --output last0 >/dev/null
    for file in last0.*; do mv "$file" "in.${file##*.}"; done
    elapsed plink2 --pfile in --threads "$threads" --recode vcf bgz --out last
    ratio "the same, to plink2 --recode vcf bgz of the genotypes" "$ours" "$seconds" 1
else
    echo "plink2 is not installed (Debian: plink2): no ratio to it"
fi

rm -r run/Chromosomes out.* text.vcf
command -v /usr/bin/time >/dev/null || { echo "no /usr/bin/time (Debian: time): no memory"; exit 0; }
/usr/bin/time -f %M -o memory "$bin/solvanto-export" run --data sequence --to bcf --uncompressed --output out
awk '{ printf "memory from sequence text: %.0f MB (wanted: at most 500)\n", $1 / 1024 }' memory
