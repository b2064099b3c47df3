// inbreeding.h - inbreeding coefficients and Mendelian sampling variances of a pedigree.
#pragma once

#include "QuillomereP/phenotypedpedigree.h"

// Per animal the variance of its value given those of its parents, in units of the additive
// variance of the base, with F the inbreeding coefficient of a parent:
//     no parent known 1, one known 3/4 - F/4, both known 1/2 - (F_s + F_d)/4
// which for selfing is (1 - F)/2. A doubled haploid repeats one gamete: 1 - F of its parent, 2 if
// that is unknown; its own F is 1.
//
// Coefficients of parents are found by tracing the pedigree upwards (Quaas 1976, Biometrics 32:
// 949-953; Meuwissen and Luo 1992, Genet. Sel. Evol. 24: 305-313): a_ii is the sum over ancestors
// j of T_ij^2 D_j. One row of T at a time makes memory linear; eight rows are traced together, and
// full sibs only once, since they share their coefficient.
//   meaninbreeding   out  mean F of the animals that are parents, for the report
array1<double> mendelianvariances(const phenotypedpedigree &p, double &meaninbreeding);
