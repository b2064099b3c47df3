#include "markers/sitesets.h"

double meanheterozygosity(const state &s, const sitelist &sites)
{
    if (sites.empty()) return 0;
    double sum = 0;
    for (const int64 site : sites) {
        const double f = s.sites.minorallelefreq(site);
        sum += 1 - (f * f + (1 - f) * (1 - f));
    }
    return sum / static_cast<double>(sites.size());
}

void writesummary(const state &s, const std::string &path, const sitelist &sites)
{
    outfile out(path);
    out.writeline(freeline(meanheterozygosity(s, sites)));
    out.close();
}

void writesiteinformation(const state &s, const std::string &path, const sitelist &sites,
                          bool withmutations)
{
    outfile out(path);
    textline line;
    int64 rank = 0;
    for (const int64 site : sites) {
        puti(line, ++rank, 20);
        puti(line, site, 20);
        putf(line, s.sites.minorallelefreq(site), 20, 10);
        putf(line, s.sites.inclphysicalmap(site), 20, 10);
        if (withmutations) {
            puti(line, s.sites.inclmutindicator(site), 20);
            puti(line, s.sites.inclmutindicatorindivid(site), 20);
        }
        out.writeline(line);
    }
    out.close();
}

sitelist readsites(const std::string &path, int64 nsites, int64 nsegregincl)
{
    infile in(path);
    sitelist sites;
    sites.reserve(static_cast<std::size_t>(nsites));
    int64 previous = 0;
    for (int64 i = 1; i <= nsites; ++i) {
        in.record();
        in.integer(); // the rank
        const int64 site = in.integer();
        in.skipwords(2);
        if (site <= previous) in.complain("the sites must ascend");
        if (site > nsegregincl)
            in.complain("site " + std::to_string(site) + " is beyond the " +
                        std::to_string(nsegregincl) + " sites of the chromosome");
        sites.push_back(previous = site);
    }
    return sites;
}
