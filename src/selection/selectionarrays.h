// selectionarrays.h - the arrays of the selection phase.
#pragma once

#include "arrayscope.h"
#include "state.h"

// For the whole phase, when the stores are read: those of all stages with values (valuearrays.h),
// crossovers, the sorted QTN of gene editing, the drive flags. All entries 0.
void makestagearrays(state &s, arrayscope &arrays);

// For a cycle, whose test set is known: estimates and their variances (0), genotype tables of the
// generation currentgen to be made; nindivinsimulrun becomes its size. The cycle's end also frees
// what others make in it: training individuals and their phenotypes, genders of the test set.
void makecyclearrays(state &s, int64 currentgen, arrayscope &arrays);
