// genicvariances.h - genic and genetic variances of a generation, side by side.
#pragma once

#include "state.h"

#include <vector>

constexpr const char *variancetable =
    "./SimulatedData/TotalGenicAndGeneticVariancesPerGeneration.txt";

// The lines of the table: a generation and QTN model, and for each trait the four variances; less
// of them where a merge has left a shorter line.
struct variancesofmodel {
    int64 generation = 0, model = 0;
    std::vector<double>
        values; // additive genic of the traits, dominance genic, additive genetic, ...
};
std::vector<variancesofmodel> readgenicvariances(const state &s);

// Genic: the sum over QTN of 2 p q alpha^2, and of (2 p q d)^2 for dominance, with the fixed
// effects and the frequencies of this generation alone, by the genotype tables: what loci that are
// independent would give. Genetic: the sample variance of tbv and tdv, which are complete by now,
// over the generation's individuals. The difference shows what selection and linkage do. Leaves the
// frequencies of this generation in currentfreq, as the files of the chromosomes hold them. Extends
// SimulatedData/TotalGenicAndGeneticVariancesPerGeneration.txt by a line per QTN model,
// (2I10, 4 x ntraits F20.10), title with generation 1.
// Stop 110003: fewer than two individuals.
void computetotalgenicvariances(state &s, int64 currentgen);
