// testset.h - the estimates of the test individuals.
#pragma once

#include "Quillomere/snpblup.h"
#include "Quillomere/trainingset.h"

struct testset {
    array1<int64> indiv;
    array1<double> ebv;     // in the order of the test genotype file
    double correlation = 0; // of estimated and true values; 0 where one of them does not vary
};

// Applies the solutions to the test genotypes, scaled by the frequencies of training, and
// correlates the estimates with the true values. The estimates are without the intercept.
// Stops: those of readgenotypes and readvalues, and an I/O error for a genotype line whose
// individual is not that of the true-value line of the same number.
testset predicttestset(const quillomerespec &spec, const trainingset &training,
                       const array1<double> &solution);
