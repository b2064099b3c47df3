// founderblocks.h - the founder haplotypes of a chromosome, packed in blocks.
//
// Read in the folder of the chromosome: MacsHaplotypes.txt (a line per haplotype). Written there:
//   MacsHaplotypesIncluded.txt  a row per haplotype, nI2: alleles of the included sites
//   MacsHaplotypesInBlocks.txt  binary, the packed haplotypes (see genomefiles.h)
#pragma once

#include "state.h"

#include <string>

inline std::string founderhaplotypesfile(int64 chrom)
{
    return chromfolder(chrom) + "MacsHaplotypes.txt";
}
inline std::string includedhaplotypesfile(int64 chrom)
{
    return chromfolder(chrom) + "MacsHaplotypesIncluded.txt";
}

// Packs the included sites of all haplotypes, which pass through one at a time, and writes them as
// text on the way. Mutation sites have allele 0.
// Reads    nsegregtmp, nsegregincl, nblock, tmpwrk, inclsnpid, inclmutindicator
// Makes    haplotypes (haplotypes of the file, nblock)
// An allele other than 0 and 1 and a file without haplotypes are I/O errors. Draws: none.
void packhaplotypes(state &s, int64 chrom);
