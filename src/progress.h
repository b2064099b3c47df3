// progress.h - one line on standard error that tells how far a run has come.
//
// A run is a row of parts, each with the share of the work that it is expected to be. The line is
// renewed in place on a terminal, at most ten times a second; elsewhere a new line is written at
// most every ten seconds.
#pragma once

#include <chrono>
#include <string>
#include <vector>

struct progresspart {
    std::string name;
    double work = 0; // in any unit, the same for all parts
};

struct progressline {
    bool shown = false;
    bool inplace = false; // standard error is a terminal
    std::vector<progresspart> parts;
    std::chrono::steady_clock::time_point start, last; // of the run; when the line was last written
};

// Begins: the clock runs from here.
void beginprogress(progressline &progress, std::vector<progresspart> parts);
// Tells that of a part (from 0) the given share (0 to 1) is done. where: chromosome, generation,
// trait, ...
void tellprogress(progressline &progress, std::size_t part, double share, const std::string &where);
// Takes the line away.
void endprogress(progressline &progress);
