# bench/lib.sh - sourced by the benchmarks that are scripts, with the build folder as their argument.
set -euo pipefail
bin=$(cd "${1:?usage: $0 BUILDFOLDER}/bin" && pwd)
root=$(cd "$(dirname "$0")/.." && pwd)
pairs=${PAIRS:-5}
folder=${FOLDER:-$(mktemp -d)} # where it works
trap 'rm -rf "$folder"' EXIT

# spec EXAMPLE KEY=VALUE...: SolvantoSpec.txt of the example with keys changed, in the folder it is called in.
spec() {
    local file=$root/examples/$1/SolvantoSpec.txt change words=()
    for change in "${@:2}"; do words+=(-e "s/^(${change%%=*} *),.*/\\1,${change#*=}/"); done
    sed -E "${words[@]}" "$file" >SolvantoSpec.txt
}
# The median of a file's numbers, one a line.
median() { sort -g "$1" | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
# When a path was made, and when it was last written: seconds since 1970.
madeat() { stat -c %W.%w "$1" | sed -E 's/^([0-9]+)\..*:[0-9]+(\.[0-9]+) .*/\1\2/'; }
writtenat() { stat -c %.9Y "$1"; }
# since SECONDS: how many have gone by.
since() { awk -v begin="$1" -v end="$EPOCHREALTIME" 'BEGIN { printf "%.3f", end - begin }'; }
