// companions.h - the programs that a run starts from the working directory.
#pragma once

#include "state.h"

#include <string>
#include <vector>

// Names of the programs that a run with these settings starts, in the order in which it first needs
// them. A merge needs none, and a run that goes on no coalescent simulator. Draws nothing and
// touches no file.
std::vector<std::string> neededcompanions(const state &s);

struct missingcompanion {
    std::string program;
    std::string reason; // "is missing", "is not executable", ...
};

// Those of them that the working directory doesn't hold as files that can be copied and executed.
// Starts none of them.
std::vector<missingcompanion> missingcompanions(const state &s);
