#include "arguments.h"

#include "spec/keylist.h"
#include "stops.h"
#include "textlayout.h"
#include "tidy/leavings.h"

#include <cstdio>
#include <string_view>

namespace
{
constexpr programinfo solvantoinfo{
    "solvanto", "simulates a breeding programme in the working directory",
    "[--check] [--quiet] [--progress] [--tidy] [--strict] [--repeat] | --keys | --tidylist",
    "Without arguments it runs the programme that SolvantoSpec.txt describes: generations of\n"
    "burn-in and selection, with genomes, true values, phenotypes and predictions.\n"
    "\n"
    "  --check     tells what a run would do and what it would take, and whether it would get to\n"
    "              its end; writes nothing and uses up no seed\n"
    "  --quiet     no warnings on standard error\n"
    "  --strict    the first command or companion that fails ends the run with status 3\n"
    "  --repeat    runs with the seed of the last run in this folder, whether it came to its "
    "end "
    "or\n"
    "              not\n"
    "  --progress  a line on standard error that tells how far the run has come; it is shown\n"
    "              without being asked for where standard error is a terminal and standard "
    "output\n"
    "              is not\n"
    "  --tidy      removes on the way what no later step and no later run reads\n"
    "  --keys      the keys of SolvantoSpec.txt, their values and meaning, as JSON\n"
    "  --tidylist  the files that scripts/tidy removes or packs\n"
    "  --help      this text\n"
    "  --version   version of the release and commit of the build\n"
    "\n"
    "It reads SolvantoSpec.txt, Seed.txt and the files that the specification names, and "
    "starts\n"
    "its companions macs, Vintrecaskelle, Quillomere, QuillomereP, Brenvask and Corvalind from "
    "the\n"
    "working directory. It writes Chromosomes, SimulatedData and Selection, SeedOld.txt and "
    "the\n"
    "next seed into Seed.txt.\n"
    "\n"
    "Exit status: 0 when the run came to its end; 3 when it did, but commands or companions "
    "failed;\n"
    "2 for arguments and files that could not be read or written; otherwise the code behind STOP\n"
    "modulo 256, 1 for a stop without one.\n"};

// A table that is printed.
bool answeredtable(arguments &given, int argc, char **argv)
{
    const std::string_view word = argc == 2 ? argv[1] : "";
    if (word == "--keys")
        given.status = runtostop([] { printline(keysasjson()); });
    else if (word == "--tidylist")
        given.status = runtostop(printleavings);
    else
        return false;
    return true;
}

void check(arguments &given)
{
    given.action = arguments::actions::check;
    given.options.checking = true;
}

void refuse(arguments &given, std::string_view word)
{
    given.action = arguments::actions::done;
    given.status = 2;
    std::fprintf(stderr, "ERROR: argument %.*s is not known\n", static_cast<int>(word.size()),
                 word.data());
    if (!word.starts_with("-"))
        std::fprintf(stderr, "solvanto takes no names of files: it reads SolvantoSpec.txt of the "
                             "working directory\n");
    std::fprintf(stderr, "solvanto --help tells what there is\n");
}
} // namespace

arguments readarguments(int argc, char **argv)
{
    arguments given;
    if (answered(solvantoinfo, argc, argv) || answeredtable(given, argc, argv)) {
        given.action = arguments::actions::done;
        return given;
    }
    for (int i = 1; i < argc && given.action != arguments::actions::done; ++i) {
        const std::string_view word = argv[i];
        if (word == "--quiet")
            given.options.quiet = true;
        else if (word == "--strict")
            given.options.strict = true;
        else if (word == "--repeat")
            given.options.repeat = true;
        else if (word == "--progress")
            given.options.progress = true;
        else if (word == "--tidy")
            given.options.tidy = true;
        else if (word == "--check")
            check(given);
        else
            refuse(given, word);
    }
    return given;
}
