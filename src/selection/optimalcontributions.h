// optimalcontributions.h - the parents of a selection generation, by optimal contributions.
//
// The method (Meuwissen 1997, J. Anim. Sci. 75:934) gives each candidate the contribution with
// which the next generation has the highest mean at a given average relationship of its parents.
#pragma once

#include "state.h"

// The whole step: relationships of the candidates, the allocation of matings, its check, and the
// parents of the new generation , which are written into the pedigree.
// The programs run in the folder of the cycle (evaluation/relationshipruns.h). Draws: none.
void selectbyoptimcontrib(state &s, int64 selectioncycle, int64 currentgen);

// Accepts the allocation if the average relationship of the parents exceeds the smallest one there
// is by percentdeltaf, to 0.0001. Stop 110001 if not.
void checkdeltafoptimcontrib(const state &s, int64 selectioncycle);

// Writes the matings of the list into newsire and newdam of the new generation, in row order.
void selectnextparentsoptimcontrib(state &s, int64 selectioncycle, int64 currentgen);
