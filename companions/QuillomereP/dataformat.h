// dataformat.h - DataFormatParameters.txt: which pedigree-phenotype file to evaluate, and how.
//
// Line 1 is a title, line 2 the word Blup, line 3 begins with the name of the pedigree-phenotype
// file (up to the first comma; genotypes named behind it are no matter of a pedigree evaluation).
// The lines that follow are settings "key ,value". Animal, Sire, Dam, Id and Phen name the columns
// of the file, in this order. What steers sampling (nBurnIn, OutputIterationNumber, SnpSolver and
// so on) is read and checked, and has no effect: the variances are taken as known.
#pragma once

#include "arrays.h"

#include <string>

struct dataformat {
    std::string file;         // where it was read
    std::string pedigreefile; // pedigree and phenotypes
    double missingvalue = 0;  // phenotype of an individual that has none
    double vara = 0;          // additive variance in the base, StartValuePolygenicVariance
    double vare = 0;          // residual variance, StartValueResidualVariance
    int64 nround = 0;         // most rounds of the iterative solver, nIterations
};

// Stops: an I/O error that names file and line for a file of another form, an unknown key or one
// that comes twice, a value out of range, and for a model that is not that of this program: other
// columns, fixed effects besides the mean, regressions, SNPs, genetic groups. One that names the
// file and the key for a key that is missing, and one that names the line for a pedigree-phenotype
// file that doesn't exist.
dataformat readdataformat(const std::string &filename);
