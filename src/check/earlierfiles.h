// earlierfiles.h - what a run that goes on needs of the runs before it: that the files are there and
// hold the records of all individuals before this run's, in lines and records of the right length.
// Nothing is asked of a generation that the run doesn't go back to. The readers are the run's own;
// any fault is an I/O error.
#pragma once

#include "state.h"

// The stores of the sites: fills the arrays of makechromarrays, which the caller has made.
void readearlierstores(state &s);
// Pedigree.txt up to the last individual before this run's, into ped.
void readearlierpedigree(state &s);

// What the gene drops read and extend. Stops: 110012, 110033 to 110035 for a map that the sites
// don't allow.
// Reads    pedigree, numbers of sites, as all below
void checkearlierdrops(state &s);
// What the values are computed from, and the tables by generation.
void checkearliervalues(state &s);
// Files with a record for each individual that this run extends.
void checkearlierindividuals(const state &s);
// Chips that the cycle of generation gen reads of generations before this run's: candidates and
// training data, whose ranges are set; and the table of coancestries that it extends.
void checkearliercycle(const state &s, int64 gen);
