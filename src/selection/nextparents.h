// nextparents.h - the parents of a selection generation, by truncation.
//
// Indices: place x in the test set stands for pedigree row starttestindiv + x - 1; the rows of the
//          new generation follow the test set.
// Reads    estimatedbv, gender, the test set; the numbers of parents of generation currentgen - 1
// Updates  newsire (parentgender 1) or newdam (2) of the new generation; with geneditonoff
//          indivtobeedited, places of the male parents in rank order, 0 behind the last
#pragma once

#include "state.h"

// Makes the npargender best test individuals of a gender the parents on that side. From the
// highest value down; of equal values the earlier in the test set comes first; a value that is not
// finite, or not above -1e16, is never chosen; where candidates run out the last chosen (the first
// test individual if there is none) is entered again, with a warning on standard error. In plants
// crossed regardless of gender, or selfed, both genders are candidates. Sires get progeny in
// blocks, the best sire's first; dams fall on the rows in random order; with random mating the
// parents are then dealt anew, avoiding the row's sire (see matings.h). Draws: for dams one random
// order of the new generation; then those of random mating. Stops: where no parent is asked for
// 110019 and 110020 (plants), 110023 and 110024 (animals);
//        110021 random mating without two different parents.
void selectnextparentstruncat(state &s, int64 currentgen, int64 parentgender, int64 npargender);
