// snpblup.h - estimating the effects of the SNPs.
//
// Model: y = 1 mu + Z u + e, with Z the scaled genotypes, u of variance VarA / nsnp each, and e of
// variance VarE. Since the columns of Z sum to 0 over the training individuals the intercept is the
// mean of y, and u is found from either of
//     (Z'Z + lambda I) u = Z'(y - mu)             one equation per SNP
//     (ZZ' + lambda I) a = y - mu,  u = Z'a       one equation per individual
// with lambda = VarE / (VarA / nsnp): ridge regression and its dual, the genomic BLUP (Meuwissen,
// Hayes and Goddard 2001, Genetics 157: 1819-1829; Stranden and Garrick 2009, J. Dairy Sci. 92:
// 2971-2975). The side with fewer equations is solved, by Cholesky factor where forming the
// equations is quick, otherwise by preconditioned conjugate gradients, which never form them.
#pragma once

#include "evaluationhelpers/genotypestore.h"

#include <string>

enum class equations { cheaper, ofsnps, ofindividuals };
enum class solver { cheaper, cholesky, conjugategradients };

struct snpblup {
    double mu = 0;
    double lambda = 0;
    array1<double> solution; // by segregating SNP, on scaled genotypes
};

// Estimates the effects. The relative residual of the equations is at most 1e-12, or what double
// precision can give. Conjugate gradients that don't get there in nround rounds are followed by
// the Cholesky factor if that fits in memory.
//   VarA 0 gives solutions of 0. A VarE below a millionth of VarA is replaced by that, since
//   without residual variance the equations have no single solution. Both are noted on standard
//   output, as are the equations, the rounds and the residual.
// Stops: an I/O error in the name of specfile if nround rounds leave a residual above 1e-6 of
// equations that are too many for the Cholesky factor.
snpblup solvesnpblup(const genotypestore &g, const array1<double> &phenotype, double vara,
                     double vare, int64 nround, const std::string &specfile,
                     equations side = equations::cheaper, solver way = solver::cheaper);

// Number of threads that dense algebra may use.
void setprocessors(int64 n);
