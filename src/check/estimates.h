// estimates.h - what a run will take: disk, memory, random numbers, time.
#pragma once

#include "check/inputs.h"
#include "state.h"

// Prints them on standard output, each with its basis.
// Reads    generations, numbers of sites, SNP and QTN, and what judgeinputs found
void printestimates(const state &s, const runfacts &facts);
