// options.h - the command line: N L -t theta -r rho [-eN time size]... [-R file] [-s seed]
// [-h 1] [-i iterations].
//
// Rates are per base and scaled by 4N0, times in 4N0 generations, sizes relative to N0. Whatever
// else stands on a command line is refused, by name where it is a known wish (growth, migration,
// trees...): a population simulated otherwise than asked for must not pass unnoticed.
#pragma once

#include "macs/history.h"
#include "macs/recombinationrates.h"

#include <string>
#include <vector>

namespace macs
{
struct macsoptions {
    int64 nhaplotypes = 0;               // N, at least 2
    double length = 0;                   // L, in bases
    double mutationrate = 0;             // -t, per base, times 4N0
    double recombinationrate = 0;        // -r, the same; none when not given
    std::vector<sizechange> sizechanges; // -eN, as given
    std::vector<rateregion> regions;     // of the -R file, empty without
    bool seedgiven = false;              // -s
    int64 seed = 0;
    int64 niterations = 1; // -i, chromosomes in one output
};

// Reads the words behind the program's name, and the file of regions.
// Stops: a plain stop with status 1 behind a message on standard error and the usage on
// standard output; an I/O error for the file of regions.
macsoptions readoptions(const std::vector<std::string> &words);
// The usage text, whole lines.
std::string usage();
} // namespace macs
