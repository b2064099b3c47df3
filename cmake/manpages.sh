#!/bin/sh
# cmake/manpages.sh VERSION PAGES PROGRAM...: makes the manual pages in the folder PAGES: of the
# programs and of the scripts that are installed by what they answer to --help, and of the pages of
# docs/ where lowdown is installed.
set -eu
version=$1 pages=$2
shift 2
sources=$(cd "$(dirname "$0")/.." && pwd)
rm -rf "$pages"
mkdir -p "$pages"

# Scripts have another name where they are installed.
installednames='s,scripts/\(account\|seed\|tidy\|workingfolder\),solvanto-\1,g'
# One line for each page; awk reads \n as a line end.
alsosee=
# The pages on files stand in section 5, the others in section 7.
sectionof() {
    case $1 in *-file | *-files) echo 5 ;; *) echo 7 ;; esac
}
if command -v lowdown >/dev/null; then
    for page in "$sources"/docs/*.md; do
        name=$(basename "$page" .md)
        # How the code is laid out stays with the sources.
        case $name in architecture | glossary) continue ;; esac
        section=$(sectionof "$name")
        sed -e "1s/^# \(.*\)/# NAME\n\nsolvanto-$name - \1/" -e 's/^##/#/' \
            -e 's/\[\([a-z-]*\)\.md\]([^)]*)/**solvanto-\1**/g' -e "$installednames" "$page" |
            lowdown -s -Tman --nroff-nolinks -m "title=solvanto-$name" -m "section=$section" \
                -m volume=Solvanto -m "source=Solvanto $version" |
            sed '/^\.SH$/ { N; s/\n/ / }' >"$pages/solvanto-$name.$section"
        alsosee="$alsosee${alsosee:+,\\n}.BR solvanto-$name ($section)"
    done
fi

# helppage NAME COMMAND: a page of section 1 of what the command prints.
helppage() {
    "$2" --help >"$pages/help"
    [ -s "$pages/help" ]
    sed "$installednames" "$pages/help" |
        awk -v VERSION="$version" -v SEEALSO="$alsosee" -f "$sources/cmake/manpage.awk" \
            >"$pages/$1.1"
    rm "$pages/help"
}
for program in "$@"; do
    case $program in
    "$sources"/scripts/*) helppage "solvanto-$(basename "$program")" "$program" ;;
    *) helppage "$(basename "$program")" "$program" ;;
    esac
done
