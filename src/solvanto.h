// solvanto.h - the run: the driver that calls the stages in their order.
#pragma once

#include "runoptions.h"
#include "state.h"

// A whole run in the working directory, from the banner to the timing line. Stops by throwing
// (see stops.h).
void solvanto(const runoptions &options = {});

// Prints the banner.
void titles();
// Removes and makes again the run folders Chromosomes (with a folder for each chromosome),
// SimulatedData and Selection.
void makedirectories(const state &s);
