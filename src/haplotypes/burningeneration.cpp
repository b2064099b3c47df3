#include "haplotypes/burningeneration.h"

#include "haplotypes/blocks.h"
#include "haplotypes/droplines.h"
#include "haplotypes/genomefiles.h"
#include "haplotypes/recombmap.h"
#include "pedigree/pedigreefiles.h"
#include "stops.h"
#include "words.h"

#include <algorithm>
#include <cassert>

void checkblocknumber(const state &s)
{
    if (static_cast<double>(s.haplo.nblock) > s.founders.morgans) return;
    printline(
        " ERROR: There are not enough blocks per chromosome compared to the chromosome length "
        "(Morgans)");
    printline(" Increase the number of segregating sites per chromosome (see RunMacs) or,");
    printline(" if On, increase the parameter GenomeCompression");
    printline(" nBlock:" + numbertext(s.haplo.nblock));
    printline(" Morgans:" + freeline(s.founders.morgans).substr(1));
    stopwithcode(110012);
}

void checkparents(const state &s, int64 startindiv, int64 endindiv)
{
    for (int64 i = startindiv; i <= endindiv; ++i) {
        for (int64 parent : {s.pedi.ped(i).newsire, s.pedi.ped(i).newdam})
            if (parent < 0 || parent >= i)
                ioerror(pedigreetable, "individual " + numbertext(i) + " has parent " +
                                           numbertext(parent) + ", which doesn't stand before it");
    }
}

namespace
{
// Parents that stand before the generation before: an external pedigree's.
struct olderparents {
    std::vector<int64> ids; // ascending; ids[r] is at place r + 1
    genomestore genomes;
};

// Where a generation's parents come from.
struct parentsources {
    int64 startindiv = 0; // first of this generation
    int64 prev = 0;       // last before the generation before, which is in oldtmpgenome
    olderparents older;
};

// Loads what the generation's parents need: founder haplotypes if one is unknown, the generation
// before, and older parents.
parentsources loadparents(state &s, int64 chrom, int64 currentgen, int64 startindiv, int64 endindiv,
                          bool parentsloaded)
{
    parentsources from;
    from.startindiv = startindiv;
    if (!parentsbetween(s, startindiv, endindiv, 0, 0).empty() && !s.haplo.haplotypes.allocated())
        readhaplotypes(haplotypeblocksfile(chrom), s.haplo.haplotypes, s.haplo.nblock);
    if (currentgen == 1) return from;
    from.prev = s.pedi.cumindivnbtogen(currentgen - 2);
    if (!parentsloaded)
        readgenome(genomefile(chrom, currentgen - 1), s.haplo.oldtmpgenome,
                   s.pedi.nindivinthisgen(currentgen - 1), s.haplo.nblock);
    from.older.ids = parentsbetween(s, startindiv, endindiv, 1, from.prev);
    readgenomesof(s, chrom, from.older.ids, from.older.genomes);
    return from;
}

parentstrands strandsof(const genomestore &g, int64 place)
{
    return {g.gamete(place, 1), g.gamete(place, 2)};
}

parentstrands knownparent(const state &s, const parentsources &from, int64 parent)
{
    if (parent >= from.startindiv)
        return strandsof(s.haplo.tmpgenome, parent - from.startindiv + 1);
    if (parent > from.prev) return strandsof(s.haplo.oldtmpgenome, parent - from.prev);
    const auto &ids = from.older.ids;
    const auto found = std::lower_bound(ids.begin(), ids.end(), parent);
    assert(found != ids.end() && *found == parent);
    return strandsof(from.older.genomes, found - ids.begin() + 1);
}

// Two founder haplotypes, noted in base[0] and base[1].
parentstrands unknownparent(state &s, int64 *base)
{
    const double nhaplos = static_cast<double>(s.haplo.haplotypes.nhaplos());
    base[0] = 1 + static_cast<int64>(nhaplos * ran1(s.random));
    base[1] = 1 + static_cast<int64>(nhaplos * ran1(s.random));
    return {s.haplo.haplotypes.haplotype(base[0]), s.haplo.haplotypes.haplotype(base[1])};
}

// The file is opened with the first line: without base individuals the last one stays.
void writebaseline(const state &s, outfile &basefile, int64 chrom, int64 individ, const int64 *base)
{
    if (!basefile.isopen()) basefile.open(basetrackingfile(chrom));
    textline line;
    puti(line, s.pedi.ped(individ).newid, 20);
    for (int64 b = 0; b < 4; ++b) puti(line, base[b], 10);
    basefile.writeline(line);
}
} // namespace

void setburninrecombrates(state &s, int64 chrom)
{
    setrecombfactors(s, chrom);
    for (int64 j = 1; j <= s.haplo.nblock; ++j)
        s.haplo.recombrateperblock(j) = s.founders.morgans * s.haplo.recombfactperblock(j);
    checkblocknumber(s);
}

void genedropburninindiv(state &s, int64 chrom, int64 currentgen, int64 startindiv, int64 endindiv,
                         bool parentsloaded)
{
    checkparents(s, startindiv, endindiv);
    const parentsources from =
        loadparents(s, chrom, currentgen, startindiv, endindiv, parentsloaded);
    dropwork work;
    opendrop(s, work, chrom, startindiv);
    outfile basefile;

    for (int64 i = startindiv; i <= endindiv; ++i) {
        const int64 k = i - startindiv + 1;
        int64 base[4] = {-99, -99, -99, -99};
        const int64 parents[2] = {s.pedi.ped(i).newsire, s.pedi.ped(i).newdam};
        for (int64 side = 1; side <= 2; ++side) {
            const int64 parent = parents[side - 1];
            const parentstrands strands = parent == 0 ? unknownparent(s, base + 2 * (side - 1))
                                                      : knownparent(s, from, parent);
            dropgamete(s, work, chrom, i, k, side, strands);
            if (isdoubledhaploid(s, currentgen)) {
                repeatsiregamete(s, work, i);
                break;
            }
        }
        if (parents[0] == 0 || parents[1] == 0) writebaseline(s, basefile, chrom, i, base);
        finishindividual(s, work, chrom, currentgen, i, k);
    }
    writegenome(genomefile(chrom, currentgen), s.haplo.tmpgenome);
    closedrop(work);
    basefile.close();
}

// ---------------------------------------------------------------------------- frequencies

namespace
{
// Counts allele 1 at the sites of many gametes: eight sites to a word, a byte each, emptied into
// the sums before a byte can run over.
class allelecounter
{
  public:
    explicit allelecounter(int64 numberofblocks)
        : nblock(numberofblocks), bytes(static_cast<std::size_t>(8 * numberofblocks)),
          sums(numberofblocks * lociperblock)
    {
    }
    void add(const int64 *gamete)
    {
        std::uint64_t *eight = bytes.data();
        for (int64 b = 0; b < nblock; ++b)
            for (int i = 0; i < 8; ++i)
                *eight++ += blocktables::bytes[blocktables::eightalleles(gamete[b], i)];
        if (++nadded == 255) empty();
    }
    // (nblock * 60) copies of allele 1.
    const array1<int64> &counts()
    {
        empty();
        return sums;
    }

  private:
    void empty()
    {
        for (int64 b = 0; b < nblock; ++b) {
            for (int64 p = 0; p < lociperblock; ++p)
                sums(b * lociperblock + p + 1) += static_cast<int64>(
                    bytes[static_cast<std::size_t>(8 * b + p / 8)] >> (8 * (p % 8)) & 255);
        }
        std::fill(bytes.begin(), bytes.end(), 0);
        nadded = 0;
    }
    int64 nblock, nadded = 0;
    std::vector<std::uint64_t> bytes;
    array1<int64> sums;
};

void writeminorfrequencies(const state &s, int64 chrom)
{
    outfile out(minorfrequencyfile(chrom));
    textline line;
    puta(line, "   SegSite     MinorAlleleFreq", 30);
    out.writeline(line);
    for (int64 site = 1; site <= s.sites.nsegregincl; ++site) {
        puti(line, site, 10);
        putf(line, s.sites.minorallelefreq(site), 20, 10);
        out.writeline(line);
    }
    out.close();
}
} // namespace

void computeminorallelefrequency(state &s, int64 chrom)
{
    allelecounter counter(s.haplo.nblock);
    int64 nbase = 0;
    for (int64 i = 1; i <= lastindivofgen(s, 1); ++i) {
        if (s.pedi.ped(i).newsire != 0 || s.pedi.ped(i).newdam != 0) continue;
        ++nbase;
        for (int64 m = 1; m <= 2; ++m) counter.add(s.haplo.tmpgenome.gamete(i, m));
    }
    const array1<int64> &counts = counter.counts();
    for (int64 site = 1; site <= s.sites.nsegregincl; ++site) {
        assert(counts(site) >= 0 && counts(site) <= 2 * nbase);
        const double frequency =
            static_cast<double>(counts(site)) / (2 * static_cast<double>(nbase));
        s.sites.minorallelefreq(site) = frequency > 0.5 ? 1 - frequency : frequency;
    }
    writeminorfrequencies(s, chrom);
}
