// runoptions.h - what the arguments of a run ask for beyond the specification, and the warnings that
// they switch off. None of it changes a line of standard output, or what stands in a file.
#pragma once

#include "arrays.h"

#include <string_view>

struct runoptions {
    bool quiet = false;    // no warnings
    bool progress = false; // a line of progress also where standard error is no terminal
    bool tidy = false;     // what no later step and no later run reads is removed
    bool strict = false;   // the first command or program that fails ends the run
    bool repeat = false;   // with the seed of the last run
    bool checking = false; // --check: nothing is run, and warnings say more
};

// One line on standard error, unless warnings are off: "WARNING: file:line: text". A line of 0 names
// the file alone; an empty file, neither.
void warn(const runoptions &options, std::string_view file, int64 line, std::string_view text);
