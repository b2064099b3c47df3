// chips.h - which included sites of a chromosome are the markers of each chip.
//
// Chips and QTN are chosen together, once per chromosome, when generation 1 has been dropped and
// its minor allele frequencies are known; the choice holds for all generations. All walk one
// random order of the sites, snponarrays: chips that walk the same list are nested, QTN that
// start behind the chips' last place stand on no chip, QTN that start at its top stand on them.
//
// Files below the chromosome's folder, written once (layouts in sitesets.h):
//   Chip<e>SnpInformation.txt   without mutations
//   Chip<e>Summary.txt
#pragma once

#include "state.h"

// Makes the chips, and then the QTN of the chromosome.
// Reads    nsegregincl, minorallelefreq, inclphysicalmap, inclmutindicator,
//          inclmutindicatorindivid, nsnponthischipchrom, nqtnonthischrom,
//          nqtnrecombonthischrom, and the settings of chips and QTN
// Updates  snponarrays (nsegregincl)
// Draws: an order of the sites; another one before each chip if chips aren't nested; another one
// before the QTN if they are placed at random (snpchipinclqtn 3); those of the QTN; another one
// before the recombination QTN.
void createsnpchipsandqtnarrays(state &s, int64 chrom);

// Builds a chip of the first nsnponarray sites of snponarrays that lie in the frequency band,
// limits included, and are no mutation sites. Gives lastsnppos, the place at which it was full.
// Stops: 110013 if the list ends before that.
int64 makearray(state &s, int64 chrom, int64 chip, int64 nsnponarray);
