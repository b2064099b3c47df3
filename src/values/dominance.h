// dominance.h - true dominance deviations of a generation.
#pragma once

#include "state.h"

// Adds to tdv(i, p, j), which the caller has zeroed, for the individuals startindiv to endindiv of
// the genotype tables, every model p and trait j: the sum over QTN, ascending, of
// -(d x) ((x - 1) - 2f) - 2 f^2 d, that is -2 f^2 d, 2 f (1 - f) d and -2 (1 - f)^2 d for 0, 1 and
// 2 copies (Falconer and Mackay 1996), with d and the frequency f of generation 1 from their files.
// Called with dominonoff only; without, tdv stays 0.
void computetdv(state &s, int64 startindiv, int64 endindiv);
