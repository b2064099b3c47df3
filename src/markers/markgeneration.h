// markgeneration.h - what the markers do with each generation on a chromosome, straight after its
// drop: the step that the gene drops are given.
#pragma once

#include "state.h"

// In generation 1 chooses the chips and the QTN of the chromosome (chips.h); in each one writes the
// chip, QTN and sequence files of the generation that tmpgenome holds (extraction.h).
// Draws: in generation 1 those of createsnpchipsandqtnarrays.
void markgeneration(state &s, int64 chrom, int64 currentgen, int64 startindiv, int64 endindiv);
