// recombtrait.h - the recombination trait: a heritable control of the own crossover rate.
#pragma once

#include "state.h"

constexpr const char *recombinationtable = "./SimulatedData/PedigreeTbvRecombination.txt";

// For generation currentgen, individuals startindiv to endindiv, with M = morgans, C = nchrom:
//   tbvrecomb           sum over its QTN of effect x (x - 2f); the caller has zeroed it
//   tbvrecombz          tbvrecomb standardised within the generation, times sqrt(vararecombt);
//                       0 for all when the generation has no variance
//   recombperindperchr  exp(log(M C) + tbvrecombz) / C: the rate, in Morgans, of the gametes that
//   it gives
// vararecombt = (heritrecomb / (M C)) / (1 - heritrecomb), so that with the residual variance
// 1 / (M C) of the crossovers themselves the trait has its heritability; nothing is drawn.
// recombcount of all individuals so far comes from RecombinationCount.txt.
// Extends SimulatedData/PedigreeTbvRecombination.txt, (4I10, 2F20.10, 3I20), title with
// generation 1. Stop 110003: fewer than two individuals.
void computetbvrecomb(state &s, int64 currentgen, int64 startindiv, int64 endindiv);
