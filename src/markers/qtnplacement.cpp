#include "markers/qtnplacement.h"

#include "haplotypes/blocks.h"
#include "markers/sitesets.h"
#include "stops.h"
#include "words.h"

#include <algorithm>
#include <cmath>

namespace
{
bool ismutation(const state &s, int64 site)
{
    return s.sites.inclmutindicator(site) == 1;
}

bool isfull(const sitelist &thisarray, int64 nsnponarray)
{
    return static_cast<int64>(thisarray.size()) >= nsnponarray;
}

[[noreturn]] void notenoughqtn(const char *message, int64 chrom, int64 code)
{
    printline(message + freeline(chrom));
    stopwithcode(code);
}

sitelist mutationsites(const state &s)
{
    sitelist thisarray;
    for (int64 site = 1; site <= s.sites.nsegregincl; ++site)
        if (ismutation(s, site)) thisarray.push_back(site);
    return thisarray;
}

// Flags mutation sites, whatever their frequency, and site numbers from firstsite on in the band.
array1<int8> sitesinband(const state &s, int64 firstsite)
{
    array1<int8> flags(s.sites.nsegregincl);
    for (int64 site = 1; site <= s.sites.nsegregincl; ++site)
        flags(site) = ismutation(s, site) ||
                      (site >= firstsite && s.sites.minorallelefreq(site) >= s.qtn.minqtnfreq &&
                       s.sites.minorallelefreq(site) <= s.qtn.maxqtnfreq);
    return flags;
}

// Flagged sites, without the mutation sites from firstsite on.
int64 countqualifying(const state &s, const array1<int8> &flags, int64 firstsite)
{
    int64 countmeetqtn = 0;
    for (int64 site = 1; site <= s.sites.nsegregincl; ++site)
        countmeetqtn += flags(site) && !(site >= firstsite && ismutation(s, site));
    return countmeetqtn;
}

// Takes fitting sites of the list, which are no mutations, until the set is full.
template <class condition>
void takefromlist(const state &s, sitelist &thisarray, int64 nsnponarray, int64 firstplace,
                  int64 lastplace, condition fits)
{
    for (int64 i = firstplace; i <= lastplace && !isfull(thisarray, nsnponarray); ++i) {
        const int64 site = s.sites.snponarrays(i);
        if (!ismutation(s, site) && fits(site)) thisarray.push_back(site);
    }
}

// Takes the sites on which the regions put QTN, in map order. A QTN on a site that can't be taken
// moves on to the next site without one; beyond the last site it is lost.
template <class condition>
void takefromregions(const state &s, sitelist &thisarray, int64 nsnponarray, array1<int8> &isqtvpos,
                     condition fits)
{
    const int64 n = s.sites.nsegregincl;
    for (int64 site = 1; site <= n && !isfull(thisarray, nsnponarray); ++site) {
        if (!isqtvpos(site)) continue;
        if (!ismutation(s, site) && fits(site)) {
            thisarray.push_back(site);
            continue;
        }
        isqtvpos(site) = 0;
        int64 later = site + 1;
        while (later <= n && isqtvpos(later)) ++later;
        if (later <= n) isqtvpos(later) = 1;
    }
}

void writeset(state &s, int64 chrom, qtnset set, sitelist &thisarray)
{
    std::sort(thisarray.begin(), thisarray.end());
    writesummary(s, summaryfile(chrom, set), thisarray);
    writesiteinformation(s, informationfile(chrom, set), thisarray, set != qtnset::recombination);
}
} // namespace

void chooseqtnunrestricted(state &s, int64 chrom, int64 nsnponarray, int64 firstqtnpos)
{
    sitelist thisarray = mutationsites(s);
    takefromlist(s, thisarray, nsnponarray, firstqtnpos, s.sites.nsegregincl,
                 [](int64) { return true; });
    if (!isfull(thisarray, nsnponarray))
        notenoughqtn("ERROR: Not Enough QTN Segregating on chromosome", chrom, 110028);
    writeset(s, chrom, qtnset::unrestricted, thisarray);
}

void chooseqtnrestricted(state &s, int64 chrom, int64 nsnponarray, int64 firstqtnpos)
{
    const array1<int8> sitesmeetingfreqrestriction = sitesinband(s, firstqtnpos);
    const int64 countmeetqtn = countqualifying(s, sitesmeetingfreqrestriction, firstqtnpos + 1);
    if (countmeetqtn < nsnponarray) {
        printline("ERROR: Not enough segregating sites for QTN model 3");
        printfree(s.sites.nsegregincl, nsnponarray, countmeetqtn);
        stopwithcode(110026);
    }
    sitelist thisarray = mutationsites(s);
    takefromlist(s, thisarray, nsnponarray, firstqtnpos, s.sites.nsegregincl,
                 [&](int64 site) { return sitesmeetingfreqrestriction(site); });
    if (!isfull(thisarray, nsnponarray))
        notenoughqtn("ERROR: Not enough QTN segregating on chromosome", chrom, 110027);
    writeset(s, chrom, qtnset::restricted, thisarray);
}

void chooseqtnrecombination(state &s, int64 chrom, int64 nsnponarray)
{
    const int64 n = s.sites.nsegregincl;
    if (nsnponarray > n)
        notenoughqtn("ERROR: Not Enough QTN Segregating on chromosome", chrom, 110025);
    const int64 *const first = s.sites.snponarrays.begin();
    sitelist thisarray(first, first + nsnponarray);
    writeset(s, chrom, qtnset::recombination, thisarray);
}

// ------------------------------------------------------- regions

namespace
{
struct region {
    int64 firstsite, endsite; // the end site itself is no candidate
    int64 count;              // QTN
    double proportion;
    int64 nsites() const { return endsite - firstsite; }
};

std::vector<region> readregions(const state &s, int64 nqtvonchr, int64 chrom)
{
    const std::string path = "./QtnSpecifications/Chromosome" + numbertext(chrom) + ".txt";
    // Multiplied one after the other: which site a fraction falls on can hang on the last bit.
    const double nblock = static_cast<double>(s.sites.nsegregincl / lociperblock);
    const auto siteat = [&](double fraction) {
        return static_cast<int64>(
            std::floor(fraction * static_cast<double>(lociperblock) * nblock));
    };
    const int64 nrows = countlines(path);
    if (nrows == 0) ioerror(path, "holds no regions: start, end and share of the QTN are wanted");
    std::vector<region> regions;
    infile in(path);
    for (int64 r = 1; r <= nrows; ++r) {
        in.record();
        const double start = in.real(), end = in.real(), proportion = in.real();
        if (!(start >= 0 && start <= end && end <= 1))
            in.complain("a region must start and end within 0 to 1, and not end before its start");
        if (!(proportion >= 0 && proportion <= 1))
            in.complain("the share of the QTN must lie within 0 to 1");
        regions.push_back(
            {siteat(start), siteat(end),
             static_cast<int64>(std::floor(proportion * static_cast<double>(nqtvonchr))),
             proportion});
        // Sites are numbered from 1.
        regions.back().firstsite = std::max<int64>(regions.back().firstsite, 1);
        regions.back().endsite = std::max(regions.back().endsite, regions.back().firstsite);
    }
    return regions;
}

void warnofrescaling(const std::vector<region> &regions, int64 chrom)
{
    double sum = 0;
    for (const region &r : regions) sum += r.proportion;
    if (sum == 1) return;
    textline line;
    puta(line,
         "WARNING: proportion of QTN over the defined regions must sum to 1.0 - rescaling for "
         "chromosome",
         94);
    puti(line, chrom, 3);
    printline(line);
    printline("");
}

void sharedifference(std::vector<region> &regions, int64 nqtvonchr)
{
    for (const region &r : regions) nqtvonchr -= r.count;
    regions.back().count += nqtvonchr;
}

void passsurpluson(std::vector<region> &regions)
{
    for (std::size_t r = 0; r < regions.size(); ++r) {
        const int64 surplus = regions[r].count - regions[r].nsites();
        if (regions[r].count <= 0 || surplus <= 0) continue;
        if (r + 1 == regions.size()) {
            printline(
                "The specified QTN clusters are not feasible - there are too many QTN than there ");
            printline("are possible locations. Please reconsider your clusters");
            stopwithcode(110030);
        }
        regions[r].count -= surplus;
        regions[r + 1].count += surplus;
    }
}

void drawsites(state &s, const region &r, const array1<int8> &barred, array1<int8> &isqtvpos)
{
    array1<int64> order(r.nsites());
    randomorder(order, r.nsites(), s.random);
    int64 found = 0;
    for (int64 i = 1; i <= r.nsites() && found < r.count; ++i) {
        const int64 site = r.firstsite + order(i) - 1;
        if (isqtvpos(site) || barred(site)) continue;
        isqtvpos(site) = 1;
        ++found;
    }
    if (found == r.count) return;
    printline(
        "The specified QTN clusters are not feasible - there are not enough segregating sites "
        "within your clusters");
    printline("Please reconsider your clusters, or increase the MaCS parameters to generate more "
              "segregating sites");
    stopwithcode(110031);
}
} // namespace

void getqtvpositions(state &s, int64 nqtvonchr, int64 chrom, array1<int8> &isqtvpos, int64 lastsnp,
                     bool first)
{
    const int64 n = s.sites.nsegregincl;
    std::vector<region> regions = readregions(s, nqtvonchr, chrom);
    if (first) warnofrescaling(regions, chrom);
    sharedifference(regions, nqtvonchr);
    passsurpluson(regions);

    array1<int8> barred(n);
    for (int64 i = 1; i <= std::min(lastsnp, n); ++i) barred(s.sites.snponarrays(i)) = 1;
    isqtvpos.fill(0);
    for (const region &r : regions)
        if (r.count > 0) drawsites(s, r, barred, isqtvpos);
}

void chooseqtnunrestrictedclusters(state &s, int64 chrom, int64 nsnponarray, int64 lastsnp)
{
    sitelist thisarray = mutationsites(s);
    array1<int8> isqtvpos(s.sites.nsegregincl);
    getqtvpositions(s, nsnponarray, chrom, isqtvpos, lastsnp, true);
    takefromregions(s, thisarray, nsnponarray, isqtvpos, [](int64) { return true; });
    if (!isfull(thisarray, nsnponarray))
        notenoughqtn("ERROR: Not enough QTN segregating on chromosome", chrom, 110027);
    writeset(s, chrom, qtnset::unrestricted, thisarray);
}

namespace
{
void warnoffillup(const array1<int8> &isqtvpos, int64 nfree, int64 chrom)
{
    textline line;
    puta(line, "WARNING: Could only identify ", 29);
    puti(line, std::count(isqtvpos.begin(), isqtvpos.end(), 1), 6);
    puta(line, " restricted QTN segregating on chromosome ", 42);
    puti(line, chrom, 4);
    printline(line);
    line.clear();
    puta(line, "within specified clusters. The remaining ", 41);
    puti(line, nfree, 6);
    puta(line, " frequency-restricted QTN", 25);
    printline(line);
    printline("will now be chosen at random.");
    printline("");
}
} // namespace

void chooseqtnrestrictedclusters(state &s, int64 chrom, int64 nsnponarray, int64 lastsnp)
{
    const int64 n = s.sites.nsegregincl;
    array1<int8> isqtvpos(n);
    getqtvpositions(s, nsnponarray, chrom, isqtvpos, lastsnp, false);
    const array1<int8> sitesmeetingfreqrestriction = sitesinband(s, 1);
    if (countqualifying(s, sitesmeetingfreqrestriction, 1) < nsnponarray) {
        printline("ERROR: Not enough segregating sites for QTN model 3");
        stopwithcode(110026);
    }
    const auto inband = [&](int64 site) { return sitesmeetingfreqrestriction(site); };
    sitelist thisarray = mutationsites(s);
    takefromregions(s, thisarray, nsnponarray, isqtvpos, inband);
    if (!isfull(thisarray, nsnponarray)) {
        warnoffillup(isqtvpos, nsnponarray - static_cast<int64>(thisarray.size()), chrom);
        const auto isfree = [&](int64 site) { return inband(site) && !isqtvpos(site); };
        takefromlist(s, thisarray, nsnponarray, lastsnp, n, isfree);
        if (s.chips.snpchipinclqtn != 2)
            takefromlist(s, thisarray, nsnponarray, 1, lastsnp - 1, isfree);
        if (!isfull(thisarray, nsnponarray))
            notenoughqtn("ERROR: Not enough QTN segregating on chromosome", chrom, 110027);
    }
    writeset(s, chrom, qtnset::restricted, thisarray);
}
