// plan.h - the tables of what a run will do: generations, chips, QTN, cycles.
#pragma once

#include "check/inputs.h"
#include "state.h"

#include <string>

// Who breeds a generation: how many parents are asked for, and of how many, behind one another.
std::string breedersof(const state &s, int64 gen);

// Prints the tables on standard output.
// Reads    pedigree, numbers of sites and what judgeinputs found
void printplan(const state &s, const runfacts &facts);
