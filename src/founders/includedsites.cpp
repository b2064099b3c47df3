#include "founders/includedsites.h"

#include "founders/simulatedsites.h"
#include "founders/stores.h"

#include <cassert>
#include <vector>

namespace
{
// Draws the included sites, and puts their slots in ascending order.
void chooseincludedsites(state &s)
{
    segregatingsites &sites = s.sites;
    const bool compressed = compressioninforce(s);
    const int64 ncandidates = compressed ? sites.nsegregcomp : sites.nsegreg;
    array1<int64> randomsegreg(ncandidates);
    randomorder(randomsegreg, ncandidates, s.random);
    std::vector<bool> chosen(static_cast<std::size_t>(sites.nsegreg + 1));
    for (int64 i = 1; i <= sites.nsegregincl; ++i) {
        const int64 drawn = randomsegreg(i);
        chosen[static_cast<std::size_t>(compressed ? sites.tmpwrkcomp(drawn) : drawn)] = true;
    }
    int64 i = 0;
    for (int64 slot = 1; slot <= sites.nsegreg; ++slot) {
        if (!chosen[static_cast<std::size_t>(slot)]) continue;
        sites.inclsnpid(++i) = slot;
        sites.inclphysicalmap(i) = sites.allphysicalmap(slot);
        sites.inclmutindicator(i) = sites.mutindicator(slot);
    }
    assert(i == sites.nsegregincl);
}

// A carrier and its gamete for each included mutation.
void drawcarriers(state &s, int64 chrom)
{
    segregatingsites &sites = s.sites;
    const double nindiv = static_cast<double>(sites.nindivpinit);
    for (int64 i = 1; i <= sites.nsegregincl; ++i) {
        if (sites.inclmutindicator(i) == 0) continue;
        denovomutation mutation;
        mutation.slot = sites.inclsnpid(i);
        mutation.carrier = 1 + static_cast<int64>(nindiv * ran1(s.random));
        mutation.gamete = 1 + static_cast<int64>(2 * ran1(s.random));
        mutation.block = i / lociperblock + 1;
        mutation.site = i;
        assert(mutation.carrier >= 1 && mutation.carrier <= sites.nindivpinit);
        assert(mutation.gamete == 1 || mutation.gamete == 2);
        sites.denovoinfo(chrom).push_back(mutation);
        sites.inclmutindicatorindivid(i) = mutation.carrier;
        sites.indivmutindicator(chrom, mutation.carrier) = 1;
    }
}
} // namespace

void restrictsegsites(state &s, int64 chrom, arrayscope &arrays)
{
    makeincludedsites(s, arrays);
    chooseincludedsites(s);
    s.sites.nmutinclglobal(chrom) = sumof(s.sites.inclmutindicator);
    printline("      Included number of mutations" + freeline(s.sites.nmutinclglobal(chrom)));
    drawcarriers(s, chrom);
    writesitestores(s, chrom);
}
