// mutationslots.h - slots for de novo mutations, strewn among the simulated sites of a chromosome.
//
// A slot is a place in the widened list of simulated and mutation sites, 1 to nsegreg. Simulated
// sites keep their order. Files of a chromosome, which nothing reads:
//   PhysicalMapInputUncompressed.txt rows i = 1 to nsegregtmp, I10,F20.10,I10: i,
//                                    allphysicalmap(i), mutindicator(tmpwrk(i))
//   PhysicalMapInputCompressed.txt   rows i = 1 to nsegregcomp, 2I10,F20.10,I10: i, slot, position,
//                                    mutation indicator; empty when compression isn't in force
#pragma once

#include "arrayscope.h"
#include "state.h"

inline std::string uncompressedmapfile(int64 chrom)
{
    return chromfolder(chrom) + "PhysicalMapInputUncompressed.txt";
}
inline std::string compressedmapfile(int64 chrom)
{
    return chromfolder(chrom) + "PhysicalMapInputCompressed.txt";
}

// Strews the slots, and makes and fills allphysicalmap: a mutation slot lies halfway between its
// neighbours, at 0 on the first slot, at 1 on the last, and halfway between its left neighbour and
// 1 where only mutation slots follow. Makes and fills also tmpwrk, mutindicator, mutsitesid and,
// with compression in force, tmpwrkcomp and allphysicalmapcomp. The sites have been counted. Draws:
// nsegreg - 1 for the order of the slots.
void insertmutations(state &s, int64 chrom, arrayscope &arrays);
