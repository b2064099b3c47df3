// transpose.h - byte tables turned between rows by individual and columns by QTN.
//
// Files hold a row of genotypes per individual, tables in memory a contiguous column per QTN.
#pragma once

#include "arrays.h"

// to[c x tostride + r] = from[r x fromstride + c] for r = 0 to nrows-1, c = 0 to ncols-1, in
// squares of 16 bytes a side. Byte by byte it takes about ten times as long.
void transposebytes(const int8 *from, int64 fromstride, int8 *to, int64 tostride, int64 nrows,
                    int64 ncols);
