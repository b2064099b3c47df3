// effectarrays.h - the arrays of the effect stage: QTN of all sets, effects of all models.
#pragma once

#include "arrayscope.h"
#include "state.h"

// Makes what the effect stage fills, per QTN and per QTN and trait, when the numbers of QTN are
// known, all entries 0; dominance arrays only with dominonoff, the recombination set and its
// effects only with recombselonoff.
void makeeffectarrays(state &s, arrayscope &arrays);
