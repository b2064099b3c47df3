// recombmap.h - how the recombination of a chromosome is shared out over its blocks.
//
// The user's regions (founders/recombregions.h) are fitted to the grid of blocks, and what came of
// it is written to RecombinationSpecifications/Chromosome<h>Achieved.txt: a title in A82, then per
// region 3F12.8,4I8: position of the first site of the start block (0 for block 1), of the last
// site of the stop block, proportion after rescaling, start block wished for and achieved, the same
// for the stop.
#pragma once

#include "state.h"

// Fills recombfactperblock(nblock) from the regions of the chromosome. A region has the first
// block behind the start block of the region before in which its start is met; where its stop is
// met in block j, it ends with block j - 1, but not before it starts; the last one ends with
// nblock. Its proportion is shared out evenly; where regions overlap the later one holds, and
// blocks without a region get 0.
// Reads nblock. Draws: none.
// Stops: more regions than blocks, plain; regions out of order, 110033; a start or stop, other
// than the last stop, that meets no block, 110034; shares that sum to less than 0.9999, 110035.
void readrecombspec(state &s, int64 chrom);
// The same without the file of what was achieved.
void checkrecombspec(state &s, int64 chrom);

// The shares of the blocks by the file of what was achieved, with its eight decimals.
array1<double> readachievedshares(int64 chrom, int64 nblock);

// recombfactperblock for a chromosome, made by the caller: readrecombspec with hotspots on, else
// the even share 1 / nblock, in single precision.
void setrecombfactors(state &s, int64 chrom);
