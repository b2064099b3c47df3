#include "markers/chips.h"

#include "markers/qtnplacement.h"
#include "markers/sitesets.h"
#include "stops.h"
#include "words.h"

#include <algorithm>

int64 makearray(state &s, int64 chrom, int64 chip, int64 nsnponarray)
{
    const int64 n = s.sites.nsegregincl;
    sitelist markers;
    int64 lastsnppos = 0;
    while (lastsnppos < n && static_cast<int64>(markers.size()) < nsnponarray) {
        const int64 site = s.sites.snponarrays(++lastsnppos);
        if (s.sites.minorallelefreq(site) >= s.chips.minsnpfreq &&
            s.sites.minorallelefreq(site) <= s.chips.maxsnpfreq &&
            s.sites.inclmutindicator(site) != 1)
            markers.push_back(site);
    }
    const int64 nfound = static_cast<int64>(markers.size());
    if (nfound < nsnponarray) {
        printline("ERROR: Not Enough SNP Segregating on SNP array " + numbertext(chip));
        printfree(lastsnppos, nfound, nsnponarray);
        stopwithcode(110013);
    }
    std::sort(markers.begin(), markers.end());
    writesummary(s, summaryfile(chrom, siteset(chip)), markers);
    writesiteinformation(s, informationfile(chrom, siteset(chip)), markers, false);
    return lastsnppos;
}

namespace
{
void drawsnponarrays(state &s)
{
    randomorder(s.sites.snponarrays, s.sites.nsegregincl, s.random);
}

// Largest place at which a chip was full.
int64 makechips(state &s, int64 chrom)
{
    int64 lastsnppos = 0;
    for (int64 e = 1; e <= s.chips.nchip; ++e) {
        if (!s.chips.nestedonoff) drawsnponarrays(s);
        lastsnppos =
            std::max(lastsnppos, makearray(s, chrom, e, s.loci.nsnponthischipchrom(e, chrom)));
    }
    return lastsnppos;
}
} // namespace

void createsnpchipsandqtnarrays(state &s, int64 chrom)
{
    drawsnponarrays(s);
    const int64 lastsnppos = makechips(s, chrom);
    const int64 firstqtnpos = s.chips.snpchipinclqtn == 2 ? lastsnppos + 1 : 1;
    if (s.chips.snpchipinclqtn == 3) drawsnponarrays(s);

    const int64 nqtn = s.loci.nqtnonthischrom(chrom);
    if (s.qtn.qtnclustersonoff) {
        chooseqtnunrestrictedclusters(s, chrom, nqtn, firstqtnpos);
        chooseqtnrestrictedclusters(s, chrom, nqtn, firstqtnpos);
    } else {
        chooseqtnunrestricted(s, chrom, nqtn, firstqtnpos);
        chooseqtnrestricted(s, chrom, nqtn, firstqtnpos);
    }
    if (s.selection.recombselonoff) {
        drawsnponarrays(s);
        chooseqtnrecombination(s, chrom, s.loci.nqtnrecombonthischrom(chrom));
    }
}
