// allelerows.h - rows of an identifier and alleles or genotypes, the layout of all files of them:
// I20, nI2.
#pragma once

#include "files.h"

constexpr int64 alleleidwidth = 20;
// Bytes of a row of n alleles, line end included.
inline int64 allelerowlength(int64 n)
{
    return alleleidwidth + 2 * n + 1;
}

// Begins rows of one identifier, and gives the place of the first one's alleles, 2n bytes; those of
// the next lie allelerowlength(n) bytes behind. The file has them once they are filled and ended,
// and isn't written on before.
char *beginallelerows(outfile &out, int64 id, int64 n, int64 nrows = 1);
void endallelerows(outfile &out, int64 n, int64 nrows = 1);
// Writes a row.
void writeallelerow(outfile &out, int64 id, const int8 *alleles, int64 n);
// Goes to the next record, which may be in other columns and must be that of the individual, and
// reads its alleles or genotypes: from 0 to highest, or whatever they are.
void readallelerow(infile &in, int64 id, int8 *alleles, int64 n, int8 highest);
void readallelerow(infile &in, int64 id, int8 *alleles, int64 n);
