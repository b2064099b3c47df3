// breedingvalues.h - true breeding values of a generation.
#pragma once

#include "state.h"
#include "values/qtngenotypes.h"

// Adds to tbv(i, p, j), which the caller has zeroed, for the individuals startindiv to endindiv
// of the genotype tables, every model p and trait j: the sum over QTN of alpha x (x - 2f), QTN in
// ascending order. alpha and f, the frequency of generation 1, come from their files each time, so
// the mean of later generations shows the genetic change since generation 1.
// Without recombselonoff recombperindperchr of all individuals becomes morgans.
void computetbv(state &s, int64 startindiv, int64 endindiv);
