// accuracy.h - how well the values used for selection matched the truth.
#pragma once

#include "state.h"

// Reports, for one trait of a cycle, the correlation of estimatedbvtrait(:, selectedtrait) with the
// tbv of the test individuals (starttestindiv to endtestindiv, ntestindiv of them) under qtnmodel,
// and the mean and sample variance of those tbv; with recombselonoff the same of the recombination
// trait, and the mean expected number of crossovers over the genome.
// When the test set and the estimates differ in size, as they may after the last generation, the
// first min(sizes) of both are correlated.
//
// Writes a title and a line of F20.5 per trait to the file of the cycle, and the same on standard
// output.
// Stop 110003: fewer than two test individuals.
void computebvaccuracyandmoments(const state &s, outfile &out, int64 selectedtrait);
// Selection/AccuracyOfBreedingValueSelectionCycle<selectioncycle>.txt, which stays open for all
// traits of the cycle.
outfile openaccuracyfile(int64 selectioncycle);
