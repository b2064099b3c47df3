// qtnsums.h - sums over QTN for all individuals of a generation.
//
// The order of a sum is behaviour: each individual adds its QTN in ascending order. The inner loop
// runs over individuals, whose sums don't touch each other, so several may be taken at once
// without changing a bit.
#pragma once

#include "arrays.h"

#include <algorithm>
#include <vector>

// Individuals taken together: a tile's sums and genotypes stay in the nearest cache while all QTN
// pass. Loops over a tile have this constant length, which is what lets them be vectorised.
constexpr int64 sumtile = 512;

// Genotypes of a tile as reals.
void widencodes(const int8 *codes, double *x);
// Adds effect x (x - 2f) for a tile: the deviation of the genotype from twice the frequency.
void adddeviations(double *sum, const double *x, double effect, double f);
// Adds -(d x) ((x - 1) - 2f) - 2 f^2 d for a tile: the dominance deviation.
void adddominance(double *sum, const double *x, double d, double f);

// Asks for genotypes that are needed soon: columns lie pages apart, so nothing else foresees them.
inline void fetchahead(const int8 *codes, int64 n)
{
    for (int64 k = 0; k < n; k += 64) __builtin_prefetch(codes + k);
}

// Adds to the n values of each column the terms of the QTN 1 to nqtn.
//   genos     in      (n, nqtn) genotypes
//   columns   in/out  first of the n values of each sum
//   addterms          called as addterms(q, x, sums): adds to sums + c x sumtile the terms of QTN q
//                     for column c (from 0); x holds the genotypes of the tile as reals
template <class Addterms>
void sumoverqtn(const array2<int8> &genos, int64 nqtn, const std::vector<double *> &columns,
                int64 n, Addterms addterms)
{
    std::vector<double> sums(columns.size() * static_cast<std::size_t>(sumtile));
    int8 codes[sumtile] = {};
    double x[sumtile];
    for (int64 from = 0; from < n; from += sumtile) {
        const int64 size = std::min(sumtile, n - from);
        double *tile = sums.data();
        for (const double *column : columns) {
            std::copy_n(column + from, size, tile);
            tile += sumtile;
        }
        for (int64 q = 1; q <= nqtn; ++q) {
            if (q + 4 <= nqtn) fetchahead(genos.column(q + 4) + from, size);
            std::copy_n(genos.column(q) + from, size, codes);
            widencodes(codes, x);
            addterms(q, static_cast<const double *>(x), sums.data());
        }
        tile = sums.data();
        for (double *column : columns) {
            std::copy_n(tile, size, column + from);
            tile += sumtile;
        }
    }
}
