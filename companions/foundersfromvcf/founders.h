// founders.h - the haplotypes of a chromosome's contig, as the coalescent simulator writes its own.
#pragma once

#include "foundersettings.h"
#include "macs/options.h"

#include "files.h"

// Writes the sites to out: positions are bases of the file over the length of the options. Where the
// file has more haplotypes than asked for, the same ones are taken on all chromosomes of a run:
// the first ones, or drawn by the seed.
//
// A site at which all haplotypes taken are alike is left out, as the simulator has none. What can't
// be taken is an I/O error that names file and record, or with settings.skip left out: more than two
// alleles, a second record of a position, beyond the length, no genotypes, a missing or unphased
// one, another number of alleles than the sample has elsewhere. Notes on standard error count both.
//
// Draws: with more haplotypes than asked for one for each haplotype of the file, in order, until all
// are taken (selection sampling: Knuth, The Art of Computer Programming 2, 3.4.2).
void writefounders(const founderfile &settings, const macs::macsoptions &options, int64 seed,
                   outfile &out);
