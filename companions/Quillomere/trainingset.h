// trainingset.h - reading what the solutions are estimated from.
#pragma once

#include "Quillomere/quillomerespec.h"
#include "evaluationhelpers/genotypestore.h"
#include "files.h"

struct trainingset {
    array1<int64> segregating; // numbers of the SNPs with entry 1 in the fixed-SNP file, ascending
    array1<double> phenotype;  // by individual
    genotypestore genotypes;   // of the segregating SNPs, scales computed
};

// Reads the fixed-SNP file, the phenotypes and the training genotypes.
// Stops: an I/O error that names file and line for a value out of range, a line with too few or
// too many values, a file with too few or too many lines, and for a genotype line whose individual
// is not that of the phenotype line of the same number.
trainingset readtrainingset(const quillomerespec &spec);

// Reads all lines "individual, value". Stops as above.
void readvalues(const std::string &filename, int64 n, array1<int64> &indiv, array1<double> &value);
