// relationships.h - VanRaden's first genomic relationship matrix (VanRaden 2008, J. Dairy Sci. 91:
// 4414-4423): G = Z Z' / (2 sum p(1-p)), Z the genotypes less 2p, a missing genotype at 2p.
//
// With c = g - 1 and u = 2p - 1, z = c - u, and c = u where g is missing:
//     Z Z'(i, k) = sum c(i) c(k) - sum u c(i) - sum u c(k) + sum u^2
// The first sum over the loci that are known in both individuals is one of whole numbers of at most
// 1, and exact in single precision up to 2^24 loci, whatever the order in which it is taken: one
// single-precision ssyrk gives the same sums on every processor and with any number of threads.
// All that is left is linear in the genotypes, and is summed in double precision in one order.
#pragma once

#include "evaluationhelpers/genotypestore.h"

#include <string>

struct relationships {
    int64 n = 0;
    double scale = 0;         // 2 sum p(1-p)
    double usumsq = 0;        // sum u^2
    double fudge = 0;         // added to the diagonal
    array1<double> uc;        // (n) sum u c
    array2<float> cc;         // (n, n) sum c c over the loci known in both
    array2<double> atmissing; // (n, n) sum of u c(i) over the loci missing in k, u/2 standing for c
                              // where both are missing; empty if no genotype is missing
};

// Computes what relationships are made of; one thread, unless OPENBLAS_NUM_THREADS is set.
//   freq     by locus
//   source   the file that the frequencies are of, for messages
// Stops: an I/O error in the name of source if all loci are fixed.
relationships computerelationships(const genotypestore &g, const array1<double> &freq,
                                   const std::string &source, double fudge);

// The relationship of two individuals.
inline double relationship(const relationships &g, int64 i, int64 k)
{
    double sum = (static_cast<double>(g.cc(i, k)) - (g.uc(i) + g.uc(k))) + g.usumsq;
    if (g.atmissing.size() > 0) sum += g.atmissing(i, k) + g.atmissing(k, i);
    return sum / g.scale + (i == k ? g.fudge : 0);
}
