// solvanto.h - the run: the driver that calls the stages in their order.
#pragma once

#include "runoptions.h"
#include "state.h"

// What main has to tell of a run.
struct runaccount {
    bool seedtaken = false; // Seed.txt holds the next run's seed
    commandfailures failures;
};

// A whole run in the working directory, from the banner to the timing line. Stops by throwing
// (see stops.h); account: as far as it came.
void solvanto(const runoptions &options, runaccount &account);

// Prints the banner.
void titles();
// Removes and makes again the run folders Chromosomes (with a folder for each chromosome),
// SimulatedData and Selection.
void makedirectories(state &s);
