// gametes.h - one gamete from the two strands of a parent, and de novo mutations.
//
// Crossings are decided block by block: the genetic map of a chromosome is a probability of a
// crossing for each block. At most one crossing falls in a block, at each of its 60 positions
// with equal chance; there is no interference, and both sexes have the same map.
//
// Indices: blocks 1..nblock; strand 1 came from the parent's sire, 2 from its dam; sites
//          1..60*nblock in map order.
#pragma once

#include "state.h"

// The two strands of a parent, each given by its first block.
struct parentstrands {
    const int64 *fromsire = nullptr, *fromdam = nullptr;
    const int64 *strand(int64 which) const { return which == 1 ? fromsire : fromdam; }
};

// Makes one gamete of individual individ on a chromosome.
//   parentgender      in   1: the gamete from the sire, 2: from the dam
//   gametes           in   (nblock) blocks each: the parent's strands
//   firstpos          in   strand to begin on, 1 or 2
//   nrecombperind     out  number of crossings
//   recomblocation    out  (nblock) last site before each crossing, in order; -99 behind the
//                          last. It comes in as the last gamete left it, or all -99.
//   recombinedgamete  out  (nblock) blocks; no part of the strands
// Reads    nblock; recombrateperblock(nblock): probability of a crossing in each block; 1 or more
//          is a crossing in every gamete
// Updates  recombcount(individ, parentgender), globalrecomblocationmax(chrom), random
// Draws: one per block, and 59 more right after the draw of a block that crosses.
// Stops: none. Cost: a draw and a copy per block; alleles are looked at only where a crossing
// falls.
void recombinegametes(state &s, int64 chrom, int64 individ, int64 parentgender,
                      const parentstrands &gametes, int64 firstpos, int64 &nrecombperind,
                      array1<int64> &recomblocation, int64 *recombinedgamete);

// Sets the de novo mutations that individual individ carries on a chromosome to allele 1.
//   indivpos  in  place of the individual in tmpgenome
// Reads denovoinfo; updates tmpgenome. Draws, stops: none.
void addmutinped(state &s, int64 chrom, int64 individ, int64 indivpos);
