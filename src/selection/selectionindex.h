// selectionindex.h - from the estimates of a cycle to the one value on which parents are ranked.
//
// Indices: entry i of the estimates is the i-th test individual.
#pragma once

#include "state.h"

// Variance (divisor n - 1) of one trait's true values tbv of the rows firstid to lastid, to
// selectionvaratr. A variance not above 1e-25 becomes 0, with a warning on standard output. With
// recombination selection on, that of the recombination values goes to selectionvararecombtr,
// without that threshold. Draws: none.
void computetrainingvara(state &s, int64 selectedtrait, int64 firstid, int64 lastid);

// Fills selectionvarate and selectionvararecombte in the same way from the estimates of the test
// individuals, and from these estimatedbv. With several traits it is the sum of the estimates in
// units of their standard deviations, weighted by indexwt; with recombination selection that of the
// trait and of the recombination trait, whose weight recombindexwt gives way to
// recombindexwtlatergen for good once currentgen is past ngen + ngenselectonrec; otherwise the
// estimates of the one trait themselves. An index is written to SelectionIndex.txt in the folder of
// the cycle (I20,F20.10: pedigree row, index). Closes the accuracy file. A variance of 0 leaves
// values that are not finite.
void computeselectionindex(state &s, int64 selectioncycle, int64 currentgen);
