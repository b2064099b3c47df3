// genotypestore.h - the genotypes of many individuals, packed five to a byte, and the sums over
// SNPs and over individuals on which evaluations stand.
//
// Z is the matrix of scaled genotypes, individuals x segregating SNPs: z = (g - 2p) / sd, a missing
// genotype standing at 2p, that is, at 0. It is never formed as a whole. A byte holds five
// genotypes as digits of a number of base 3, the first one the lowest. Sums over SNPs look up, byte
// by byte, what the five genotypes contribute together (tables of 243 entries, small enough for the
// innermost cache); sums over individuals collect weights per byte value first and take them apart
// into genotypes afterwards. Both are the method of the four Russians (Arlazarov et al. 1970), and
// cost one lookup in double precision for five genotypes.
//
// Indices: individuals 1..nindiv, SNPs 1..nsnp of those that are stored; slabs of 40 SNPs from 1.
#pragma once

#include "arrays.h"

#include <vector>

// SNPs of a slab.
constexpr int64 slabwidth = 40;

struct missinggenotype {
    std::int32_t indiv, snp;
};

struct genotypestore {
    int64 nindiv = 0;
    int64 nsnp = 0;
    int64 nslabs() const { return codes.extent3().size(); }
    array3<std::uint8_t> codes;           // (8, nindiv, slabs): five SNPs a byte, missing as 0
    std::vector<missinggenotype> missing; // in order of the individuals, then of the SNPs
    array1<double> freq;                  // frequency p of the allele coded 1
    array1<double> sd;                    // sqrt(2p(1-p) + 0.00001)
    array1<double> sumsq;                 // per SNP: sum of z^2 over individuals
};

// Makes an empty store: all genotypes 0.
void makegenotypestore(genotypestore &g, int64 nindiv, int64 nsnp);

// Stores the genotypes of one individual, at most once each.
//   genotypes   in  nsnp genotypes from offset 0: 0, 1, 2; anything else is missing
void packindividual(genotypestore &g, int64 indiv, const int8 *genotypes);

// The frequencies in the stored genotypes, once all are there. A SNP without any known genotype
// gets the frequency 0.
void computefrequencies(genotypestore &g);
// The same, and the scales.
void computescales(genotypestore &g);

// out(i) = sum over SNPs of value(genotype of i, SNP); value has rows 0 to 2. Missing genotypes add
// nothing.
void sumoversnps(const genotypestore &g, const array2<double> &value, array1<double> &out);

// out(i) = sum over SNPs of z(i, j) * x(j)
void timesz(const genotypestore &g, const array1<double> &x, array1<double> &out);
// out(j) = sum over individuals of z(i, j) * w(i)
void timesztransposed(const genotypestore &g, const array1<double> &w, array1<double> &out);
// out(i) = sum over SNPs of z(i, j)^2
void individualsquares(const genotypestore &g, array1<double> &out);
// z(indiv, firstsnp .. firstsnp + n - 1), from offset 0.
void scaledgenotypes(const genotypestore &g, int64 indiv, int64 firstsnp, int64 n, double *z);
// Genotypes less 1, that is, -1, 0 and 1, of all individuals at the SNPs of the slabs from
// firstslab on: panel has a row for each of their SNPs, as many as it has slabs, and a column for
// each individual. Missing genotypes stand as 0. Rows behind the last SNP are of no meaning.
void unpackslabs(const genotypestore &g, int64 firstslab, array2<float> &panel);
