// quillomerespec.h - QuillomereSpec.txt: what to evaluate, from which files.
//
// Lines "key ,value" in any order, keys compared in lower case. All keys must be there but nBurn
// and MarkerSolver, NumberOfProcessors and MissingGenoCode, which have defaults.
#pragma once

#include "arrays.h"

#include <string>

struct quillomerespec {
    std::string file;              // where it was read
    std::string genotypetraining;  // id and nsnp genotypes per line
    std::string genotypetesting;   // the same
    std::string phenotypetraining; // id and phenotype per line
    std::string tbvtesting;        // id and true value per line
    std::string fixedsnpfile;      // 1 per line for a SNP that segregates in training, else 0
    int64 nsnp = 0;
    int64 nanistraining = 0;
    int64 nanistest = 0;
    int64 nround = 0; // most rounds of the iterative solver
    double vara = 0;  // additive variance, explained by all SNPs together
    double vare = 0;  // residual variance
    int64 numberofprocessors = 1;
    int64 missinggenocode = 9;
};

// Stops: an I/O error that names file and line for a line that is no setting, an unknown key, a
// key that comes twice, a value out of range, and for what these programs can't do: a
// ScalingOption other than 2, a MarkerSolver other than Ridge. One that names the file and the
// key for a key that is missing.
quillomerespec readquillomerespec(const std::string &filename);
