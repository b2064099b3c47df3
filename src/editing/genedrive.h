// genedrive.h - edits that convert the other chromosome of their carriers.
//
// Each allele put into a genome by editing is a drive: in the zygote of every selection generation
// a carrier becomes homozygous for it. Flags are kept beside the genome, genedriveqtnpresence
// (individual, QTN by its number in the whole genome, phase 1 from the sire or 2 from the dam): 1
// for a drive allele. Edited parents get both flags in the cycle of the edit; nothing clears a
// flag; they live in memory alone, so a run that goes on begins without any. Sites and chromosomes
// of the QTN come from the list of the latest editing: without editing there are neither flags nor
// a list, and nothing happens.
//
// The flags follow their gamete by a rule simpler than its crossings: a single change of phase.
// That does no harm, since a carrier has both flags behind the conversion.
#pragma once

#include "state.h"

#include <vector>

// Flags of all individuals and QTN, all 0.
void allocatedriveflags(state &s);

void setdriveflags(state &s, int64 individ, int64 qtn);

// Flags of the gamete of an individual on a chromosome, from those of its parent on that side.
//   parentgender    in  1: gamete from the sire, sets phase 1; 2: from the dam, sets phase 2
//   recomblocation  in  last site before each crossing of the gamete, -99 behind the last
// Without a crossing all come from the parent's phase 1. Otherwise from phase 1 up to a QTN that
// the crossings move along the list, from there on from phase 2.
void definegenedriveinheritance(state &s, int64 individ, int64 parentgender, int64 currchrom,
                                const array1<int64> &recomblocation);

// A doubled haploid's flags: those of the gamete from the sire, on both sides. Burn-in generations
// have none.
void copysireflags(state &s, int64 individ);

// A QTN of a chromosome: its site there and its number in the whole genome.
struct drivesite {
    int64 site = 0, qtn = 0;
};
// Those of a chromosome, in the order of the list; none before the first editing.
std::vector<drivesite> drivesites(const state &s, int64 chrom);

// Conversion in individual individ, at place indivpos of tmpgenome, on the chromosome of the sites:
// where one phase has the flag, both phases get its allele and the flag; where both have it, that
// of phase 1.
void convertdrives(state &s, const std::vector<drivesite> &sites, int64 individ, int64 indivpos);

// The zygotes of a selection generation on a chromosome, individuals startindiv to endindiv, as
// tmpgenome holds them: doubled haploids take over the flags of their gamete, then all are
// converted.
void drivezygotes(state &s, int64 chrom, int64 currentgen, int64 startindiv, int64 endindiv);

// Copies the allele at a site, qtnid, from one phase to the other.
//   phasewithgenedrive  in      1 or 2; a plain stop otherwise
//   fromsire, fromdam   in/out  blocks of the individual's two gametes
void genedriveedit(int64 phasewithgenedrive, int64 *fromsire, int64 *fromdam, int64 qtnid);

// SimulatedData/GeneDriveQtnPresence.txt: a title, then one line per flag, 3I10: individual, site
// of the QTN on its chromosome, phase; individuals up to generation currendgen, QTN in the order of
// the list.
void writegenedriveinformation(const state &s, int64 currendgen);
