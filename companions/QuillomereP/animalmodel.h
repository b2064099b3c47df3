// animalmodel.h - best linear unbiased prediction of breeding values from pedigree and phenotypes.
//
// Model: y = 1 mu + Z a + e, a of variance A VarA, e of variance I VarE. Mixed-model equations
// (Henderson 1984, Applications of Linear Models in Animal Breeding, University of Guelph), with
// the inverse of A written down from the pedigree (Henderson 1976, Biometrics 32: 69-83; Quaas
// 1976, 1988): for each animal the outer product of (1 for itself, -1/2 for each known parent),
// divided by its Mendelian sampling variance.
//
// An animal without Mendelian sampling variance, such as the offspring of two fully inbred lines or
// the selfed offspring of one, makes A singular. It gets no equation: its value is the mean of its
// parents' and is written as such wherever it occurs.
#pragma once

#include "QuillomereP/phenotypedpedigree.h"

#include <string>

enum class pedigreesolver { cheaper, cholesky, conjugategradients };

struct animalmodel {
    double mu = 0;
    array1<double> ebv; // by animal, as deviation from mu
};

// Estimates the breeding values: by sparse Cholesky factor for up to 2,000 animals, otherwise by
// preconditioned conjugate gradients, to a relative residual of 1e-12.
//   d        Mendelian sampling variances (inbreeding.h)
//   VarA 0 gives estimates of 0. A VarE below a millionth of VarA is replaced by that. Both are
// noted on standard output, as are the rounds and the residual.
// Stops: an I/O error in the name of file if nround rounds leave a residual above 1e-6.
animalmodel solveanimalmodel(const phenotypedpedigree &p, const array1<double> &d, double vara,
                             double vare, int64 nround, const std::string &file,
                             pedigreesolver way = pedigreesolver::cheaper);
