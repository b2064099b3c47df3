// haplotypefiles.h - the three files that the formatter leaves.
//
//   SegSites.txt          number of segregating sites, free-form
//   PhysicalMapInput.txt  one line per site: position relative to the chromosome, F24.20, so that
//                         ten significant digits are left of a position of one base in 10^9
//   MacsHaplotypes.txt    one line per haplotype: its alleles at all sites, nI2
//
// They are written under other names and renamed when all are complete, SegSites.txt last.
#pragma once

#include "coalescentoutput.h"

// Removes the three files and what an earlier run left unfinished of them.
void removehaplotypefiles();
// Writes the selected sites of the store. On an error none of the three files is left.
void writehaplotypefiles(const sitestore &store, const std::vector<int64> &selected);
