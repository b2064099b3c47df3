// recombregions.h - the user's recombination regions of a chromosome, for the coalescent simulator
// and for the gene drops.
//
// RecombinationSpecifications/Chromosome<h>.txt has one line for each, free-form: start, stop (on
// the scale of PhysicalMapIncluded.txt, 0 to 1), proportion of the chromosome's recombination.
#pragma once

#include "arrays.h"

#include <vector>

struct recombregion {
    double start = 0, stop = 0, proportion = 0;
};

// The regions of a chromosome, as many as the file has lines.
std::vector<recombregion> readrecombregions(int64 chrom);
// From the second region on, each starts behind the start and stops behind the stop of the last.
bool regionsinorder(const std::vector<recombregion> &regions);
// Divides the proportions by their sum unless that is exactly 1; true if it did.
bool rescaleproportions(std::vector<recombregion> &regions);
