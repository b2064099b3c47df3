// extractsegsites.h - from the simulated sites to the stores of the founders.
//
// Per chromosome: sites are thinned, if genome compression is in force (simulatedsites.h); slots
// for de novo mutations are strewn among them (mutationslots.h); a random choice of sites whose
// number is a multiple of 60 is kept (includedsites.h); the founder haplotypes are packed in
// blocks; and the QTN and markers of the chromosome are counted (sitenumbers.h). What later stages
// need stands in the stores (stores.h).
//
// Written besides: ./SimulatedData/NbOfSegSitesPerChrom.txt, free-form: a title; per chromosome its
// number, nsegreg and nsegregincl.
#pragma once

#include "state.h"

#include <vector>

// What packs the founder haplotypes of a chromosome, once its included sites are chosen and while
// the arrays of the chromosome stand: packhaplotypes of haplotypes/founderblocks.h.
using haplotypepacker = void (*)(state &s, int64 chrom);

// Included sites of chromosomes 1, 2, ..., as the table has them, also where the chromosomes' folders
// are gone.
std::vector<int64> readincludedcounts();

// The stage. Draws: per chromosome those of countsites, insertmutations and restrictsegsites.
void extractsegsites(state &s, haplotypepacker packhaplotypes);
