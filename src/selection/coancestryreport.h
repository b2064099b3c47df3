// coancestryreport.h - the average genomic relationship of each selection generation.
#pragma once

#include "state.h"

// Reports the average relationship of the candidates firstindiv to lastindiv, those of generation
// currentgen - 1, before selection, with equal shares, and after it, with the shares that they have
// in the new generation; in the last generation of the simulation also before selection among its
// own individuals, to which firstindiv and lastindiv then advance: they are the test set of the
// state, starttestindiv and endtestindiv, by which the chip files go. The new generation has its
// parents, genomes and values by now. Brenvask makes the matrices in the folder of the cycle, all
// on the allele frequencies of the first cycle, and BrenvaskSpec.txt is written anew. Extends
// SimulatedData/AverageCoancestry.txt (values/coancestry.h). Draws: none.
// Stops: an I/O error where the matrix is missing or too short.
void computecoancestry(state &s, int64 selectioncycle, int64 currentgen, int64 &firstindiv,
                       int64 &lastindiv);
