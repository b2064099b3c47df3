#include "haplotypes/recombmap.h"

#include "files.h"
#include "founders/recombregions.h"
#include "founders/stores.h"
#include "haplotypes/blocks.h"
#include "sortstat.h"
#include "stops.h"
#include "words.h"

#include <algorithm>
#include <cassert>
#include <numeric>

namespace
{
// Text and value without a blank between them.
void printvalue(std::string_view text, double value)
{
    printline(std::string(text) + freeline(value).substr(1));
}

[[noreturn]] void toomanyregions(const state &s, int64 nrecblocks)
{
    printline("ERROR: Too many recombination regions (nRecBlock) defined relative to the");
    printline("       internal genome structure (nBlock) (nRecBlock must be <= nBlock)");
    printline("nBlock:            " + numbertext(s.haplo.nblock));
    printline("nRecBlock:         " + numbertext(nrecblocks));
    printline("nSegSitesPerBlock: " + numbertext(lociperblock));
    printline("nSegSites:         " + numbertext(s.haplo.nblock * lociperblock));
    printline("Solution:");
    printline(" 1. Decrease the number of recombination regions (=decrease nRecBlock)");
    printline(" 2. Simulate genome with more segregating sites (=increase nBlock)");
    plainstop();
}

// Blocks of the regions' starts or stops, from 1; 0 where none was met.
using blocklist = std::vector<int64>;

// Walks the sites and gives, for each region in turn, the first block in which a site lies at or
// behind its edge, one region a site. later: it must lie behind the block of the region before, as
// achieved(region, block met) has it.
template <class edgeof, class achieved>
blocklist walkedges(const std::vector<recombregion> &regions, const array1<double> &map,
                    edgeof edge, bool later, achieved place)
{
    blocklist blocks(regions.size(), 0);
    std::size_t m = 0;
    for (int64 l = 1; l <= map.size() && m < regions.size(); ++l) {
        const int64 j = placeofsite(l).block;
        if (map(l) < edge(regions[m])) continue;
        if (later && m > 0 && blocks[m - 1] >= j) continue;
        blocks[m] = place(m, j);
        ++m;
    }
    return blocks;
}

struct fittedregions {
    blocklist startwish, stopwish, start, stop;
};

fittedregions fitregions(const std::vector<recombregion> &regions, const array1<double> &map,
                         int64 nblock)
{
    const auto startof = [](const recombregion &region) { return region.start; };
    const auto stopof = [](const recombregion &region) { return region.stop; };
    const auto asmet = [](std::size_t, int64 j) { return j; };
    fittedregions fit;
    fit.startwish = walkedges(regions, map, startof, false, asmet);
    fit.stopwish = walkedges(regions, map, stopof, false, asmet);
    fit.start = walkedges(regions, map, startof, true, asmet);
    // The block in which a stop falls goes to the next region.
    fit.stop = walkedges(regions, map, stopof, true,
                         [&](std::size_t m, int64 j) { return std::max(fit.start[m], j - 1); });
    if (!regions.empty()) fit.stop.back() = nblock;
    return fit;
}

void stopifbeyondsites(const fittedregions &fit, int64 chrom)
{
    const auto missing = [](const blocklist &blocks, std::size_t n) {
        return std::find(blocks.begin(), blocks.begin() + static_cast<std::ptrdiff_t>(n), 0) !=
               blocks.begin() + static_cast<std::ptrdiff_t>(n);
    };
    const std::size_t n = fit.start.size();
    if (n == 0 || !(missing(fit.start, n) || missing(fit.stop, n - 1))) return;
    printfree("ERROR: Recombination region lies beyond the included sites of chromosome", chrom);
    stopwithcode(110034);
}

std::string achievedfile(int64 chrom)
{
    return "./RecombinationSpecifications/Chromosome" + numbertext(chrom) + "Achieved.txt";
}

void writeachieved(const std::vector<recombregion> &regions, const fittedregions &fit,
                   const array1<double> &map, int64 chrom)
{
    outfile out(achievedfile(chrom));
    textline line;
    puta(line, "Start Stop Prop StartBlockWish StartBlockAchieved StopBlockWish StopBlockAchieved",
         82);
    out.writeline(line);
    for (std::size_t m = 0; m < regions.size(); ++m) {
        const int64 first = (fit.start[m] - 1) * lociperblock + 1;
        putf(line, first == 1 ? 0.0 : map(first), 12, 8);
        putf(line, map(fit.stop[m] * lociperblock), 12, 8);
        putf(line, regions[m].proportion, 12, 8);
        puti(line, fit.startwish[m], 8);
        puti(line, fit.start[m], 8);
        puti(line, fit.stopwish[m], 8);
        puti(line, fit.stop[m], 8);
        out.writeline(line);
    }
    out.close();
}

void shareout(state &s, const std::vector<recombregion> &regions, const fittedregions &fit)
{
    s.haplo.recombfactperblock.fill(0);
    for (std::size_t m = 0; m < regions.size(); ++m) {
        assert(fit.start[m] >= 1 && fit.start[m] <= fit.stop[m]);
        assert(m == 0 || fit.start[m] > fit.start[m - 1]);
        const double nblocks = static_cast<double>(fit.stop[m] - fit.start[m] + 1);
        for (int64 j = fit.start[m]; j <= fit.stop[m]; ++j)
            s.haplo.recombfactperblock(j) = regions[m].proportion / nblocks;
    }
}

double evenshare(int64 nblock)
{
    return singlequotient(1, static_cast<double>(nblock));
}

void stopifshareslow(const state &s)
{
    double sum = 0;
    for (int64 j = 1; j <= s.haplo.nblock; ++j) sum += s.haplo.recombfactperblock(j);
    if (sum >= single(0.9999)) return;
    printline("ERROR: wrong specification of recombination regions");
    printline("Overall sum of recombination factors (should be 1)");
    printvalue("- with    hot/cold-spots:", sum);
    printvalue("- without hot/cold-spots:",
               single(evenshare(s.haplo.nblock) * static_cast<double>(s.haplo.nblock)));
    stopwithcode(110035);
}
} // namespace

namespace
{
// The regions of a chromosome, rescaled, and the blocks that they got.
struct chromosomeregions {
    std::vector<recombregion> regions;
    array1<double> map;
    fittedregions fit;
};

chromosomeregions fitchromosome(const state &s, int64 chrom)
{
    std::vector<recombregion> regions = readrecombregions(chrom);
    if (std::ssize(regions) > s.haplo.nblock) toomanyregions(s, std::ssize(regions));
    array1<double> map = readincludedmap(chrom, s.haplo.nblock * lociperblock);
    if (!regionsinorder(regions)) {
        printline("ERROR: Variable recombination file should be sorted from start to end of "
                  "chromosome");
        stopwithcode(110033);
    }
    if (!regions.empty() && regions.back().stop == 1) regions.back().stop = map(map.size());
    rescaleproportions(regions);

    fittedregions fit = fitregions(regions, map, s.haplo.nblock);
    stopifbeyondsites(fit, chrom);
    return {std::move(regions), std::move(map), std::move(fit)};
}
} // namespace

void readrecombspec(state &s, int64 chrom)
{
    const chromosomeregions found = fitchromosome(s, chrom);
    writeachieved(found.regions, found.fit, found.map, chrom);
    shareout(s, found.regions, found.fit);
    stopifshareslow(s);
}

void checkrecombspec(state &s, int64 chrom)
{
    const chromosomeregions found = fitchromosome(s, chrom);
    shareout(s, found.regions, found.fit);
    stopifshareslow(s);
}

array1<double> readachievedshares(int64 chrom, int64 nblock)
{
    array1<double> shares(nblock);
    infile in(achievedfile(chrom), author::system);
    in.skiprecords(1);
    while (in.nextrecord()) {
        in.skipwords(2); // start and stop
        const double proportion = in.real();
        int64 blocks[4]; // wished and achieved start, wished and achieved stop
        for (int64 &block : blocks) block = in.integer();
        const int64 first = blocks[1], last = blocks[3];
        if (first < 1 || last < first || last > nblock)
            in.complain("blocks " + numbertext(first) + " to " + numbertext(last) +
                        " are not among the " + numbertext(nblock) + " of the chromosome");
        for (int64 j = first; j <= last; ++j)
            shares(j) = proportion / static_cast<double>(last - first + 1);
    }
    return shares;
}

void setrecombfactors(state &s, int64 chrom)
{
    if (s.founders.recombhotspotsonoff)
        readrecombspec(s, chrom);
    else
        s.haplo.recombfactperblock.fill(evenshare(s.haplo.nblock));
}
