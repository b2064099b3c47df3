#include "founders/mutationslots.h"

#include "founders/simulatedsites.h"

#include <algorithm>
#include <cassert>

namespace
{
constexpr double notplaced = -999;

void makeslotarrays(state &s, arrayscope &arrays)
{
    segregatingsites &sites = s.sites;
    arrays.make(sites.tmpwrk, sites.nsegreg);
    arrays.make(sites.mutsitesid, s.founders.ndenovomutperchr);
    arrays.make(sites.mutindicator, sites.nsegreg);
    arrays.make(sites.allphysicalmap, sites.nsegreg, notplaced);
    if (!compressioninforce(s)) return;
    arrays.make(sites.tmpwrkcomp, sites.nsegregcomp);
    arrays.make(sites.allphysicalmapcomp, sites.nsegregcomp);
}

// Marks the last nmut entries of a random order as mutation slots, then puts both groups in
// ascending order: simulated sites first, mutation slots behind them.
void strewslots(state &s)
{
    segregatingsites &sites = s.sites;
    randomorder(sites.tmpwrk, sites.nsegreg, s.random);
    for (int64 i = sites.nsegregtmp + 1; i <= sites.nsegreg; ++i)
        sites.mutindicator(sites.tmpwrk(i)) = 1;
    // The marks are the sorted order already: one walk over the slots sorts both groups.
    int64 simulated = 0, mutated = 0;
    for (int64 slot = 1; slot <= sites.nsegreg; ++slot) {
        if (sites.mutindicator(slot) == 0) {
            sites.tmpwrk(++simulated) = slot;
        } else {
            sites.mutsitesid(++mutated) = slot;
            sites.tmpwrk(sites.nsegregtmp + mutated) = slot;
        }
    }
    assert(simulated == sites.nsegregtmp);
    assert(simulated + mutated == sites.nsegreg);
}

void placemutations(state &s)
{
    segregatingsites &sites = s.sites;
    array1<double> &map = sites.allphysicalmap;
    int64 right = 1; // the next placed slot to the right, or nsegreg + 1
    for (int64 j = 1; j <= sites.nmut; ++j) {
        const int64 slot = sites.mutsitesid(j);
        if (slot == 1) {
            map(slot) = 0;
        } else if (slot == sites.nsegreg) {
            map(slot) = 1;
        } else {
            right = std::max(right, slot + 1);
            while (right <= sites.nsegreg && map(right) <= -998) ++right;
            map(slot) = (map(slot - 1) + (right <= sites.nsegreg ? map(right) : 1.0)) / 2;
        }
    }
}

void writeuncompressedmap(const state &s, int64 chrom)
{
    const segregatingsites &sites = s.sites;
    outfile out(uncompressedmapfile(chrom));
    textline line;
    for (int64 i = 1; i <= sites.nsegregtmp; ++i) {
        puti(line, i, 10);
        putf(line, sites.allphysicalmap(i), 20, 10);
        puti(line, sites.mutindicator(sites.tmpwrk(i)), 10);
        out.writeline(line);
    }
    out.close();
}

// The slots of the surviving sites and of the mutations, ascending, and their positions.
void fillcompressedmap(state &s)
{
    segregatingsites &sites = s.sites;
    int64 site = 0, kept = 0;
    for (int64 slot = 1; slot <= sites.nsegreg; ++slot) {
        const bool survives = sites.mutindicator(slot) == 1 || sites.compressindicator(++site) == 1;
        if (!survives) continue;
        sites.tmpwrkcomp(++kept) = slot;
        sites.allphysicalmapcomp(kept) = sites.allphysicalmap(slot);
    }
    assert(kept == sites.nsegregcomp);
}

void writecompressedmap(const state &s, int64 chrom)
{
    const segregatingsites &sites = s.sites;
    outfile out(compressedmapfile(chrom));
    textline line;
    for (int64 i = 1; i <= sites.tmpwrkcomp.size(); ++i) {
        puti(line, i, 10);
        puti(line, sites.tmpwrkcomp(i), 10);
        putf(line, sites.allphysicalmapcomp(i), 20, 10);
        puti(line, sites.mutindicator(sites.tmpwrkcomp(i)), 10);
        out.writeline(line);
    }
    out.close();
}
} // namespace

void insertmutations(state &s, int64 chrom, arrayscope &arrays)
{
    makeslotarrays(s, arrays);
    strewslots(s);
    readphysicalmap(s, chrom);
    placemutations(s);
    writeuncompressedmap(s, chrom);
    if (compressioninforce(s)) fillcompressedmap(s);
    writecompressedmap(s, chrom);
}
