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

// The reason, and what to do.
std::string adviceon(const missingcompanion &missing);

// What a program of the working directory answers to --version, its first line. Empty where it can't
// be started or hasn't answered within a second, as programs of others may. It is started in a folder
// that can't be written to, and ended behind the second with all that it has started.
std::string versionanswer(const std::string &program);
// Whether it is one of ours: these answer with their own name first.
bool isours(const std::string &program);
