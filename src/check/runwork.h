// runwork.h - what a run has to do, in counts, and the memory that it takes at most: for the estimates
// of time, memory and draws.
#pragma once

#include "check/inputs.h"
#include "check/machinespeed.h"
#include "state.h"

struct runwork {
    double draws = 0;          // of uniform numbers by the run itself
    double byteswritten = 0;   // by the run and its programs
    double bytespacked = 0;    // that go through gzip
    double tablebytes = 0;     // of tables that each cycle goes through from their beginning
    double starts = 0;         // of programs
    double recombinations = 0; // in the history of the founders
    double foundercells = 0;   // haplotypes x simulated sites
    double genotypes = 0;      // individuals x QTN, for values, under each model and trait
    double predictedcells = 0; // training individuals x loci of the cycles' predictions
    double equationwork = 0;   // multiplications of the predictions' solutions
    double allocationwork = 0; // the same for relationships and mate allocation
};
runwork workofrun(const state &s, const runfacts &facts);

// By the machine's speed at present; seconds.
double expectedseconds(const runwork &work, const machinespeed &speed);

// Where a run takes most memory: solvanto itself, and the program that it waits for (0 for none), in
// bytes.
struct memorysize {
    double own = 0, program = 0;
};
memorysize expectedmemory(const state &s, const runfacts &facts);

// Draws after which the generator begins anew.
constexpr double generatorperiod = 2147483646; // 2^31 - 2
