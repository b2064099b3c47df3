#include "haplotypes/gametes.h"

#include "haplotypes/blocks.h"

#include <cassert>
#include <cstring>

namespace
{
// Draws block by block from block from on; gives the first block that crosses, nblock + 1 if none.
// No call stands in the loop, so that the stream stays in registers.
int64 nextcrossing(randomstream &random, const double *rates, int64 from, int64 nblock)
{
    int64 j = from;
    while (j <= nblock && ran1(random) > rates[j - 1]) ++j;
    return j;
}

// Position of a crossing in its block: the first entry of a whole shuffle of the 60 positions,
// whose 59 draws are all part of the stream.
int64 crossingposition(randomstream &random)
{
    int64 order[lociperblock];
    randomorder(order, lociperblock, random);
    return order[0];
}

// Blocks first to last, from 1, of a strand.
void copyblocks(const int64 *strand, int64 first, int64 last, int64 *gamete)
{
    if (last >= first)
        std::memcpy(gamete + first - 1, strand + first - 1,
                    static_cast<std::size_t>(last - first + 1) * sizeof(int64));
}
} // namespace

void recombinegametes(state &s, int64 chrom, int64 individ, int64 parentgender,
                      const parentstrands &gametes, int64 firstpos, int64 &nrecombperind,
                      array1<int64> &recomblocation, int64 *recombinedgamete)
{
    assert(parentgender == 1 || parentgender == 2);
    assert(firstpos == 1 || firstpos == 2);
    assert(recomblocation.size() == s.haplo.nblock);
    const int64 nblock = s.haplo.nblock;
    const double *rates = s.haplo.recombrateperblock.data();
    int64 x = firstpos, ncrossings = 0, copied = 0;
    for (int64 j = nextcrossing(s.random, rates, 1, nblock); j <= nblock;
         j = nextcrossing(s.random, rates, j + 1, nblock)) {
        const int64 y = 3 - x;
        const int64 position = crossingposition(s.random);
        assert(position >= 1 && position <= lociperblock);
        recomblocation(++ncrossings) = (j - 1) * lociperblock + position;
        copyblocks(gametes.strand(x), copied + 1, j - 1, recombinedgamete);
        recombination(lociperblock, gametes.strand(x)[j - 1], gametes.strand(y)[j - 1], position,
                      recombinedgamete[j - 1]);
        copied = j;
        x = y;
    }
    copyblocks(gametes.strand(x), copied + 1, nblock, recombinedgamete);

    // What the last gamete left behind the crossings of this one: everything behind it is -99.
    for (int64 c = ncrossings + 1; c <= nblock && recomblocation(c) != -99; ++c)
        recomblocation(c) = -99;
    nrecombperind = ncrossings;
    if (ncrossings > 0) { // sites rise, so the last is the highest
        s.haplo.recombcount(individ, parentgender) += ncrossings;
        int64 &highest = s.haplo.globalrecomblocationmax(chrom);
        if (recomblocation(ncrossings) > highest) highest = recomblocation(ncrossings);
    }
}

void addmutinped(state &s, int64 chrom, int64 individ, int64 indivpos)
{
    for (const denovomutation &mutant : s.sites.denovoinfo(chrom)) {
        if (mutant.carrier != individ) continue;
        int64 block = mutant.block;
        int64 position = mutant.site - (block - 1) * lociperblock;
        if (position == 0) { // stored as site / 60 + 1: one too high for the last site of a block
            --block;
            position = lociperblock;
        }
        assert(position >= 1 && position <= lociperblock);
        int64 &cell = s.haplo.tmpgenome(indivpos, block, mutant.gamete);
        mutation(lociperblock, cell, position, cell);
    }
}
