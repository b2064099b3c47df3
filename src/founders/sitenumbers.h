// sitenumbers.h - how many QTN and markers a chromosome gets.
#pragma once

#include "state.h"

// Counts QTN and markers (nqtnonthischrom, nqtnrecombonthischrom, nsnponthischipchrom). Draws: none.
// Stops, each with its messages: 110007 when a chip, 110008 when the QTN, 110009 when the
// recombination QTN need more than nsegregincl sites.
void setsitenumbers(state &s, int64 chrom);
// The same, and writes their store.
void determinenbofsnpandqtn(state &s, int64 chrom);
