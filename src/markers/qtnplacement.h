// qtnplacement.h - which included sites of a chromosome are quantitative trait nucleotides.
//
// Runs with the chip choice, once per chromosome, when generation 1 has been dropped. Three sets
// per chromosome, each with its files, held for the whole run:
//   unrestricted    sites of any minor allele frequency
//   restricted      minor allele frequency from minqtnfreq to maxqtnfreq, limits included
//   recombination   for the recombination trait
// The first two take all mutation sites of the chromosome, then chosen sites up to nsnponarray,
// the size of the set: the first that fit on snponarrays from place firstqtnpos on, or, with
// clusters, sites of the user's regions. Sites that lie in the band early on the list thus stand
// in both sets.
//
// Files below the chromosome's folder, written once (layouts in sitesets.h):
//   UnRestrictedQtnInformation.txt, RestrictedQtnInformation.txt       with mutations
//   RecombinationQtnInformation.txt                                    without
//   UnrestrictedQtnSummary.txt, RestrictedQtnSummary.txt, RecombinationQtnSummary.txt
//
// Reads    nsegregincl, snponarrays, minorallelefreq, inclphysicalmap, inclmutindicator,
//          inclmutindicatorindivid, minqtnfreq, maxqtnfreq, snpchipinclqtn
#pragma once

#include "state.h"

// Stops: 110028 if the list ends before the set is full.
void chooseqtnunrestricted(state &s, int64 chrom, int64 nsnponarray, int64 firstqtnpos);

// Besides mutation sites only site numbers from firstqtnpos on qualify.
// Stops: 110026 too few sites in the band, 110027 the list ends before the set is full.
void chooseqtnrestricted(state &s, int64 chrom, int64 nsnponarray, int64 firstqtnpos);

// By regions. lastsnp: sites at places 1 to lastsnp of snponarrays are no candidates.
// Draws: those of getqtvpositions.
// Stops: those of getqtvpositions; 110027 if the set stays short.
void chooseqtnunrestrictedclusters(state &s, int64 chrom, int64 nsnponarray, int64 lastsnp);

// By regions; a site outside the band hands its place on to the next free one. What the regions
// can't give is filled up from snponarrays, from place lastsnp on, then, unless QTN must stay off
// the chips (snpchipinclqtn 2), from the places before it. Draws, stops: as
// chooseqtnunrestrictedclusters, and 110026 for too few sites in the band.
void chooseqtnrestrictedclusters(state &s, int64 chrom, int64 nsnponarray, int64 lastsnp);

// The first nsnponarray entries of snponarrays, whatever they are.
// Stops: 110025 if there are fewer.
void chooseqtnrecombination(state &s, int64 chrom, int64 nsnponarray);

// Turns the regions of ./QtnSpecifications/Chromosome<chrom>.txt into sites. One line per region,
// free-form: start and end as fractions of the number of included sites, share of the QTN.
//   nqtvonchr  in   QTN wanted on the chromosome
//   isqtvpos   out  (nsegregincl) 1: a QTN falls here
//   first      in   warn if the shares don't sum to 1
// Counts are rounded down, the last region takes the difference. A region with more QTN than
// sites passes the surplus on to the next.
// Draws: for each region that gets QTN, a random order of its sites.
// Stops: 110030 surplus in the last region, 110031 too few free sites in a region. A region
// or share outside 0 to 1, or a region that ends before its start, is an I/O error.
void getqtvpositions(state &s, int64 nqtvonchr, int64 chrom, array1<int8> &isqtvpos, int64 lastsnp,
                     bool first);
