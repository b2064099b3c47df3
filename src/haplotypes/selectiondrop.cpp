#include "haplotypes/selectiondrop.h"

#include "arrayscope.h"
#include "haplotypes/blocks.h"
#include "haplotypes/droplines.h"
#include "haplotypes/genomefiles.h"
#include "haplotypes/recombmap.h"

#include <algorithm>
#include <cassert>
#include <vector>

namespace
{
// Which row of oldtmpgenome holds a parent: its place in the generation before, or, with a pedigree
// from outside, its rank among the parents.
struct parentrows {
    int64 before = 0;       // last individual before the generation before
    std::vector<int64> ids; // ascending; empty if all parents are of the generation before
    int64 row(int64 parent) const
    {
        if (ids.empty()) return parent - before;
        assert(std::binary_search(ids.begin(), ids.end(), parent));
        return std::lower_bound(ids.begin(), ids.end(), parent) - ids.begin() + 1;
    }
};

parentrows loadparents(state &s, int64 chrom, int64 currentgen, int64 startindiv, int64 endindiv)
{
    const int64 endtestindiv = s.cycle.endtestindiv;
    parentrows parents;
    if (s.run.importextpedforthisgen == currentgen) {
        parents.ids = parentsbetween(s, startindiv, endindiv, 1, endtestindiv);
        readgenomesof(s, chrom, parents.ids, s.haplo.oldtmpgenome);
    } else {
        parents.before = endtestindiv - s.cycle.ntestindiv;
        readgenome(genomefile(chrom, currentgen - 1), s.haplo.oldtmpgenome, s.cycle.ntestindiv,
                   s.haplo.nblock);
    }
    return parents;
}

// The cycle's edits on a chromosome, in the copy of the parents that this drop works on alone: the
// files keep their genomes as they were.
void editparents(state &s, int64 chrom, const parentrows &parents)
{
    const editingsettings &edit = s.editing;
    const editdata &edits = s.edits;
    for (int64 i = 1; i <= edit.nindedited; ++i)
        for (int64 j = 1; j <= edit.ngeneditsperind; ++j) {
            if (edits.genomeeditqtnchrom(i, j) != chrom) continue;
            const siteplace place = placeofsite(edits.genomeeditqtnpos(i, j));
            const int64 row = parents.row(edits.idofgenomeeditinds(i));
            int64 &sireside = s.haplo.oldtmpgenome(row, place.block, 1);
            int64 &damside = s.haplo.oldtmpgenome(row, place.block, 2);
            genomeedition(lociperblock, sireside, damside, place.position, sireside, damside,
                          edits.genomeeditqtnposneg(i, j));
        }
}

// Shares of the chromosome's blocks in its recombination: worked out for the first generation, and
// kept for the others.
void setsharesofblocks(state &s, int64 chrom)
{
    array1<double> &kept = s.haplo.recombfactors(chrom);
    if (!kept.allocated()) {
        setrecombfactors(s, chrom);
        kept = s.haplo.recombfactperblock;
    }
    s.haplo.recombfactperblock = kept;
}

// Crossing probabilities in the gametes of a parent.
void setparentrates(state &s, int64 parent)
{
    const double morgans = s.values.recombperindperchr(parent);
    for (int64 j = 1; j <= s.haplo.nblock; ++j)
        s.haplo.recombrateperblock(j) = morgans * s.haplo.recombfactperblock(j);
}

void genedropselection(state &s, int64 chrom, int64 currentgen, int64 startindiv, int64 endindiv,
                       const dropsteps &steps)
{
    arrayscope arrays;
    arrays.hold(s.haplo.oldtmpgenome);
    const parentrows parents = loadparents(s, chrom, currentgen, startindiv, endindiv);
    setsharesofblocks(s, chrom);
    dropwork work;
    opendrop(s, work, chrom, startindiv);
    s.haplo.tmpgenome.fill(-99);
    if (s.editing.geneditonoff) editparents(s, chrom, parents);

    for (int64 i = startindiv; i <= endindiv; ++i) {
        const int64 k = i - startindiv + 1;
        for (int64 side = 1; side <= 2; ++side) {
            const int64 parent = side == 1 ? s.pedi.ped(i).newsire : s.pedi.ped(i).newdam;
            const int64 row = parents.row(parent);
            setparentrates(s, parent);
            dropgamete(s, work, chrom, i, k, side,
                       {s.haplo.oldtmpgenome.gamete(row, 1), s.haplo.oldtmpgenome.gamete(row, 2)});
            if (steps.followgamete) steps.followgamete(s, i, side, chrom, work.recomblocation);
            if (isdoubledhaploid(s, currentgen)) {
                repeatsiregamete(s, work, i);
                break;
            }
        }
        finishindividual(s, work, chrom, currentgen, i, k);
    }
    if (steps.finishzygotes) steps.finishzygotes(s, chrom, currentgen, startindiv, endindiv);
    writegenome(genomefile(chrom, currentgen), s.haplo.tmpgenome);
    closedrop(work);
}

} // namespace

void performgenedropselection(state &s, int64 currentgen, int64 startindiv, int64 endindiv,
                              const dropsteps &steps)
{
    for (int64 chrom = 1; chrom <= s.founders.nchrom; ++chrom) {
        s.haplo.nblock = s.sites.nsegreginclglobal(chrom) / lociperblock;
        arrayscope arrays;
        arrays.make(s.haplo.tmpgenome, s.pedi.nindivinthisgen(currentgen), s.haplo.nblock);
        arrays.make(s.haplo.recombrateperblock, s.haplo.nblock);
        arrays.make(s.haplo.recombfactperblock, s.haplo.nblock);
        genedropselection(s, chrom, currentgen, startindiv, endindiv, steps);
        steps.finishgeneration(s, chrom, currentgen, startindiv, endindiv);
    }
}
