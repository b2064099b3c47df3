# Makes a manual page of what a program answers to --help: its name and purpose in the first line,
# then usage, text and options; see programinfo.h.
#   VERSION  of the release;  SEEALSO  pages to be named at the end
function typeset(text) {
    gsub(/\\/, "\\e", text)
    gsub(/-/, "\\-", text)
    sub(/^[.']/, "\\\\\\&&", text)
    return text
}
function section(title) {
    print ".SH " title
    insection = 1
}
# Text behind a list begins a paragraph.
inlist && /^[^ ]/ { print ".PP"; inlist = 0 }
NR == 1 {
    program = $1
    printf ".TH %s 1 \"\" \"Solvanto %s\" \"Solvanto\"\n", program, VERSION
    section("NAME")
    print typeset($0)
    next
}
!insynopsis && /^usage: / {
    section("SYNOPSIS")
    print ".nf"
    insynopsis = 1
    sub(/^usage: /, "")
}
insynopsis == 1 {
    if (NF) {
        sub(/^ */, "")
        print typeset($0)
        next
    }
    print ".fi"
    section("DESCRIPTION")
    insynopsis = 2
    next
}
/^Exit status: / { section("EXIT STATUS"); sub(/^Exit status: /, "") }
!NF { print ".PP"; next }
# An option or a file, and behind two blanks what it means.
match($0, /^  +[^ ]+( [^ ]+)*  +/) {
    term = substr($0, 1, RLENGTH)
    meaning = substr($0, RLENGTH + 1)
    gsub(/^ +| +$/, "", term)
    inlist = 1
    print ".TP\n.B " typeset(term) "\n" typeset(meaning)
    next
}
/^  / { print ".br" }
{
    sub(/^ +/, "")
    print typeset($0)
}
END { if (SEEALSO) { section("SEE ALSO"); print SEEALSO } }
