#include "haplotypes/founderblocks.h"

#include "haplotypes/blocks.h"
#include "haplotypes/genomefiles.h"
#include "stops.h"
#include "words.h"

#include <cassert>
#include <vector>

namespace
{
// For each included site its place among the simulated sites, from 0; mutations get the place
// behind the last, whose allele is always 0.
std::vector<int64> includedplaces(const state &s)
{
    const segregatingsites &sites = s.sites;
    std::vector<int64> places(static_cast<std::size_t>(sites.nsegregincl), sites.nsegregtmp);
    int64 k = 0;
    for (int64 i = 1; i <= sites.nsegregincl; ++i) {
        if (sites.inclmutindicator(i) == 1) continue;
        while (sites.tmpwrk(k + 1) < sites.inclsnpid(i)) ++k;
        assert(k < sites.nsegregtmp);
        places[static_cast<std::size_t>(i - 1)] = k;
    }
    return places;
}

// Reads the alleles of the simulated sites of the next haplotype.
void readhaplotype(infile &in, std::vector<int8> &tmphapin, int64 nsegregtmp)
{
    in.record();
    in.alleles(tmphapin.data(), nsegregtmp);
    unsigned bits = 0;
    for (const int8 allele : tmphapin) bits |= static_cast<unsigned char>(allele);
    if (bits > 1) in.complain("an allele is neither 0 nor 1");
}
} // namespace

void packhaplotypes(state &s, int64 chrom)
{
    haplotypestore &haplotypes = s.haplo.haplotypes;
    const std::vector<int64> places = includedplaces(s);
    std::vector<int8> tmphapin(static_cast<std::size_t>(s.sites.nsegregtmp + 1), 0);
    int8 chunk[lociperblock];

    infile in(founderhaplotypesfile(chrom), author::program);
    const int64 nhaplos = countlines(in);
    if (nhaplos != s.founders.nhaps && s.sites.nsegregtmp > 0)
        ioerror(in.path(), "holds " + numbertext(nhaplos) + " haplotypes where " +
                               numbertext(s.founders.nhaps) + " were asked for");
    haplotypes.allocate(nhaplos, s.haplo.nblock);
    outfile out(includedhaplotypesfile(chrom));
    for (int64 h = 1; h <= nhaplos; ++h) {
        readhaplotype(in, tmphapin, s.sites.nsegregtmp);
        const int64 *place = places.data();
        int64 *blocks = haplotypes.haplotype(h);
        for (int64 j = 0; j < s.haplo.nblock; ++j) {
            for (int8 &allele : chunk) allele = tmphapin[static_cast<std::size_t>(*place++)];
            blocks[j] = packblock(chunk);
            putblocktext(out.reserve(2 * lociperblock), blocks[j]);
            out.commit(2 * lociperblock);
        }
        out.write("\n");
    }
    out.close();
    if (nhaplos == 0 && s.sites.nsegregincl > 0) ioerror(in.path(), "holds no haplotypes");
    writehaplotypes(haplotypeblocksfile(chrom), haplotypes);
}
