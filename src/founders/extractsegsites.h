// extractsegsites.h - from the simulated sites to the stores of the founders.
//
// Per chromosome: sites are thinned, if genome compression is in force (genomecompressiononoff on
// and genomecompression below 100); slots for de novo mutations are strewn among them; a random
// choice of sites whose number is a multiple of 60 is kept (the included sites); the founder
// haplotypes are packed in blocks; and the QTN and markers of the chromosome are counted.
//
// A slot is a place in the widened list of simulated and mutation sites, 1 to nsegreg. Simulated
// sites keep their order. Included sites are numbered 1 to nsegregincl in map order, and inclsnpid
// is the slot of each.
//
// Read, under ./Chromosomes/Chromosome<h>/: SegSites.txt (number of sites), PhysicalMapInput.txt
// (their positions, free-form), MacsHaplotypes.txt (a line per haplotype). Written there:
//   SegSites.txt                     with compression in force: nsegregcomp, free-form
//   PhysicalMapInputUncompressed.txt rows i = 1 to nsegregtmp, I10,F20.10,I10: i,
//                                    allphysicalmap(i), mutindicator(tmpwrk(i))
//   PhysicalMapInputCompressed.txt   rows i = 1 to nsegregcomp, 2I10,F20.10,I10: i, slot, position,
//                                    mutation indicator; empty when compression isn't in force
//   SegSitesIncluded.txt             nsegregincl, free-form
//   PhysicalMapIncluded.txt          rows i = 1 to nsegregincl, 2I10,F20.10,2I10: i, slot,
//                                    position, mutation indicator, carrier (0 if none)
//   MutDeNovoInfo.txt                a row per included mutation, 5I20: slot, carrier, gamete of
//                                    the carrier (1 or 2), block, included site
//   MutIndivIndicator.txt            a row per individual, 2I10: individual, 1 if it carries a
//                                    mutation on the chromosome
//   NbOfQtnMutationsAndSnp.txt       I20 each: QTN, included mutations, markers of each chip; with
//                                    recombselonoff on a second row, for the recombination QTN
// and ./SimulatedData/NbOfSegSitesPerChrom.txt, free-form: a title; per chromosome its number,
// nsegreg and nsegregincl.
//
// Draws, per chromosome: nsegregtmp if compression is in force; nsegreg - 1 for the order of the
// slots; nsegregcomp - 1 or nsegreg - 1 for the included sites; then two per included mutation, in
// site order, for its carrier and the carrier's gamete.
#pragma once

#include "state.h"

#include <string_view>

// What packs the founder haplotypes of a chromosome, once its included sites are chosen and while
// the arrays of the chromosome stand: packhaplotypes of haplotypes/founderblocks.h.
using haplotypepacker = void (*)(state &s, int64 chrom);

// The stage. A chromosome without SegSites.txt, because macs or the formatter failed, is an I/O
// error.
void extractsegsites(state &s, haplotypepacker packhaplotypes);

// "AllChrom" makes the arrays of all chromosomes, any other word those of the chromosome whose
// counts stand in the state.
void allocatearraysforextractsegsites(state &s, std::string_view part);
void deallocatearraysforextractsegsites(state &s, std::string_view part);

// Three steps of a chromosome, between the two routines above. nsegregtmp, nmut, nsegreg,
// nblock, nsegregincl and, with compression in force, compressindicator, nsegregtmpcomp and
// nsegregcomp have been set.

// Strews the slots, and fills allphysicalmap: a mutation slot lies halfway between its neighbours,
// at 0 on the first slot, at 1 on the last, and halfway between its left neighbour and 1 where
// only mutation slots follow. Fills tmpwrk, mutindicator, mutsitesid, tmpwrkcomp and
// allphysicalmapcomp.
void insertmutations(state &s, int64 chrom);
// Chooses the included sites, and draws the carriers of included mutations among nindivpinit
// individuals.
void restrictsegsites(state &s, int64 chrom);
// Counts QTN and markers. Stops, each with its messages: 110007 when a chip, 110008 when the QTN,
// 110009 when the recombination QTN need more than nsegregincl sites.
void determinenbofsnpandqtn(state &s, int64 chrom);
