#include "founders/simulatedsites.h"

#include "shell.h"
#include "stops.h"

namespace
{
int64 readsegsites(int64 chrom)
{
    const std::string path = segsitesfile(chrom);
    if (!pathexists(path))
        ioerror(path, "is missing, so macs or Vintrecaskelle failed for this chromosome: see "
                      "the messages of macs in " +
                          std::string(macsmessages) +
                          " of the same folder, and those of Vintrecaskelle above");
    infile in(path, author::program);
    in.record();
    const int64 nsites = in.integer();
    if (nsites < 0) in.complain("the number of sites is negative");
    in.stopifmore();
    return nsites;
}

// Decides by a draw for each simulated site whether it survives.
void compressgenome(state &s, int64 chrom, arrayscope &arrays)
{
    segregatingsites &sites = s.sites;
    arrays.make(sites.compressindicator, sites.nsegregtmp);
    sites.nsegregtmpcomp = 0;
    for (int64 j = 1; j <= sites.nsegregtmp; ++j) {
        if (!(100 * ran1(s.random) < s.founders.genomecompression)) continue;
        sites.compressindicator(j) = 1;
        ++sites.nsegregtmpcomp;
    }
    sites.nsegregcomp = sites.nmut + sites.nsegregtmpcomp;
    outfile out(segsitesfile(chrom));
    out.writeline(freeline(sites.nsegregcomp));
    out.close();
}
} // namespace

void countsites(state &s, int64 chrom, arrayscope &arrays)
{
    segregatingsites &sites = s.sites;
    sites.nsegregtmp = readsegsites(chrom);
    sites.nmut = s.founders.ndenovomutperchr;
    sites.nsegreg = sites.nsegregtmp + sites.nmut;
    int64 nsites = sites.nsegreg;
    if (compressioninforce(s)) {
        compressgenome(s, chrom, arrays);
        nsites = sites.nsegregcomp;
    }
    s.haplo.nblock = nsites / lociperblock;
    sites.nsegregincl = s.haplo.nblock * lociperblock;
    sites.nsegreginclglobal(chrom) = sites.nsegregincl;
}

void readphysicalmap(state &s, int64 chrom)
{
    segregatingsites &sites = s.sites;
    infile in(simulatedmapfile(chrom), author::program);
    if (sites.nsegregtmp > 0) in.record();
    double behind = 0;
    for (int64 k = 1; k <= sites.nsegregtmp; ++k) {
        const double position = in.fraction();
        if (position < behind) in.complain("positions must rise along the chromosome");
        behind = sites.allphysicalmap(sites.tmpwrk(k)) = position;
    }
    in.stopifmore();
}
