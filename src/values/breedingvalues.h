// breedingvalues.h - true breeding values and dominance deviations of a generation.
//
// Both add to values, which the caller has zeroed, for the individuals startindiv to endindiv of
// the genotype tables, every model p and trait j, a sum over the QTN of the model's set in
// ascending order. Effects and the frequency f of generation 1 are those of readqtneffects, so the
// mean of later generations shows the genetic change since generation 1.
#pragma once

#include "state.h"

// tbv: alpha x (x - 2f). Without recombselonoff recombperindperchr of all individuals becomes
// morgans.
void computetbv(state &s, int64 startindiv, int64 endindiv);

// tdv: -(d x) ((x - 1) - 2f) - 2 f^2 d, that is -2 f^2 d, 2 f (1 - f) d and -2 (1 - f)^2 d for 0, 1
// and 2 copies (Falconer and Mackay 1996). Called with dominonoff only; without, tdv stays 0.
void computetdv(state &s, int64 startindiv, int64 endindiv);
