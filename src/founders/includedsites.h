// includedsites.h - the choice of the sites of a chromosome that the run works on, a multiple of
// 60, and of those who carry its de novo mutations.
//
// Included sites are numbered 1 to nsegregincl in map order, and inclsnpid is the slot of each.
#pragma once

#include "arrayscope.h"
#include "state.h"

// Chooses the included sites among the slots, and draws the carriers of included mutations among
// nindivpinit individuals. Makes and fills inclsnpid, inclphysicalmap, inclmutindicator,
// inclmutindicatorindivid; fills the chromosome's part of nmutinclglobal, denovoinfo and
// indivmutindicator; writes the stores of sites and mutations (stores.h).
// Draws: nsegregcomp - 1 or nsegreg - 1 for the included sites; then two per included mutation, in
// site order, for its carrier and the carrier's gamete.
void restrictsegsites(state &s, int64 chrom, arrayscope &arrays);
