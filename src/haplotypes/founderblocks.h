// founderblocks.h - the founder haplotypes of a chromosome, packed in blocks.
//
// Read, under ./Chromosomes/Chromosome<h>/: MacsHaplotypes.txt (a line per haplotype). Written
// there:
//   MacsHaplotypesIncluded.txt  a row per haplotype, nI2: alleles of the included sites
//   MacsHaplotypesInBlocks.txt  binary, the packed haplotypes (see genomefiles.h)
#pragma once

#include "state.h"

// Packs the included sites of all haplotypes, which pass through one at a time, and writes them as
// text on the way. Mutation sites have allele 0.
// Reads    nhaplos, nsegregtmp, nsegregincl, nblock, tmpwrk, inclsnpid, inclmutindicator
// Updates  haplotypes (nhaplos, nblock), made by the caller
// An allele other than 0 and 1 and a file without haplotypes are I/O errors. Draws: none.
void packhaplotypes(state &s, int64 chrom);
