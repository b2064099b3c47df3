# What the scripts share: where the sources are, and installing what is missing.
# shellcheck shell=bash
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '%s\n' "$*"; }
fail() {
    printf 'ERROR: %s\n' "$*" >&2
    exit 1
}

# answerhelp ARGUMENTS: with --help, prints a script's header and ends: name and purpose, usage, text.
# The header's first line is "scripts/NAME ARGUMENTS: purpose".
answerhelp() {
    [ "${1:-}" = --help ] || return 0
    awk 'NR == 1 { next }
        !/^#/ { exit }
        { sub(/^# ?/, "") }
        NR == 2 {
            mark = index($0, ": ")
            usage = substr($0, 1, mark - 1)
            name = $1
            sub(/:$/, "", name)
            print name " - " substr($0, mark + 2) "\n\nusage: " usage "\n       " name " --help\n"
            next
        }
        { print }' "$0"
    exit 0
}

# Where the programs are: beside scripts and examples where they are installed, else in the build.
# SOLVANTO_BIN names another folder of them.
programsfolder() {
    if [ -n "${SOLVANTO_BIN:-}" ]; then echo "$SOLVANTO_BIN"; elif [ -d "$root/bin" ]; then echo "$root/bin"; else echo "$root/build/bin"; fi
}

# needpackages NAME...: installs those of the Debian packages that are missing; says which ones
# they are where they can't be installed.
needpackages() {
    local missing=() name
    for name in "$@"; do
        dpkg-query -W -f='${Status}\n' "$name" 2>/dev/null | grep -q '^install ok installed$' ||
            missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    command -v apt-get >/dev/null ||
        fail "these packages are missing and this machine has no apt-get: ${missing[*]}"
    local asroot=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null ||
            fail "these packages are missing, and only root can install them: ${missing[*]}"
        asroot=(sudo)
    fi
    say "Installing: ${missing[*]}"
    # An old package list may name versions that are gone: renew it when the first try fails.
    local install=(env DEBIAN_FRONTEND=noninteractive apt-get install -y -q "${missing[@]}")
    "${asroot[@]}" "${install[@]}" >/dev/null 2>&1 && return 0
    "${asroot[@]}" apt-get update -q >/dev/null 2>&1 || true
    "${asroot[@]}" "${install[@]}" >/dev/null ||
        fail "these packages could not be installed (is there a network?): ${missing[*]}"
}

# shellcheck disable=SC2034
buildpackages=(g++ cmake make libeigen3-dev libopenblas-dev)
# shellcheck disable=SC2034
exportpackages=(libhts-dev)
# shellcheck disable=SC2034
testpackages=(libgtest-dev tabix python3-numpy python3-pandas python3-matplotlib python3-pytest
    r-base-core r-cran-data.table r-cran-testthat chromium chromium-driver python3-selenium
    snakemake python3-scipy python3-yaml slurm-wlm munge
    "${exportpackages[@]}" bcftools plink2)
# shellcheck disable=SC2034
benchpackages=(libbenchmark-dev scrm time "${exportpackages[@]}" plink2 tabix)

# build FOLDER [CMAKE OPTION...]: configures and builds all, or $target; the log is shown when it fails.
build() {
    local folder=$1 log
    shift
    mkdir -p "$folder"
    log=$folder/build.log
    if ! { cmake -S "$root" -B "$folder" "$@" &&
        cmake --build "$folder" -j"$(nproc)" ${target:+--target "$target"}; } 2>&1 |
        sharedone "Building in $folder ..." "$log"; then
        tail -n 40 "$log" >&2
        fail "the build failed, see $log"
    fi
}

# sharedone TITLE LOG: keeps a build's output in a file; shows a title line, on a terminal with the
# share that is done, in percent.
sharedone() {
    local line
    if [ ! -t 1 ]; then
        say "$1"
        cat >"$2"
        return
    fi
    printf '%s' "$1"
    while IFS= read -r line; do
        printf '%s\n' "$line" >&3
        # Steps begin with [ 40%] or, from another generator, with [40/100].
        [[ $line =~ ^\[\ *([0-9]+)(%|/([0-9]+))\] ]] &&
            printf '\r%s %3d %%' "$1" $((100 * BASH_REMATCH[1] / ${BASH_REMATCH[3]:-100}))
    done 3>"$2"
    printf '\n'
}

# renewtable PAGE TABLE: puts the Markdown table of a file in place of the page's table whose title
# line is the same.
renewtable() {
    local page
    page=$(awk -v table="$2" -v title="$(head -n 1 "$2")" '
        $0 == title { while ((getline line <table) > 0) print line; intable = 1 }
        intable && /^\|/ { next }
        { intable = 0; print }' "$1")
    printf '%s\n' "$page" >"$1"
}
