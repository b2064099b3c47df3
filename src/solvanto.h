// solvanto.h - the run: the driver that calls the stages in their order.
#pragma once

#include "runoptions.h"
#include "state.h"

// A whole run in the working directory, from the banner to the timing line. Stops by throwing
// (see stops.h). seedtaken: set when Seed.txt holds the next run's seed.
void solvanto(const runoptions &options, bool &seedtaken);

// Prints the banner.
void titles();
// Removes and makes again the run folders Chromosomes (with a folder for each chromosome),
// SimulatedData and Selection.
void makedirectories(const state &s);
