#include "markers/sitesets.h"

#include "words.h"

namespace
{
std::string generationfile(int64 chrom, siteset of, const char *content, int64 gen)
{
    return chromfolder(chrom) + nameofsites(of) + content + "Generation" + numbertext(gen) + ".txt";
}
} // namespace

std::vector<siteset> sitesetsinuse(const state &s)
{
    std::vector<siteset> all;
    for (int64 e = 1; e <= s.chips.nchip; ++e) all.emplace_back(e);
    for (const qtnset set : setsinuse(s)) all.emplace_back(set);
    return all;
}

int64 nsitesonchrom(const state &s, siteset of, int64 chrom)
{
    return of.ischip() ? s.loci.nsnponthischipchrom(of.chip, chrom)
                       : s.loci.onthischrom(of.set)(chrom);
}

int64 nsitesintotal(const state &s, siteset of)
{
    int64 n = 0;
    for (int64 h = 1; h <= s.founders.nchrom; ++h) n += nsitesonchrom(s, of, h);
    return n;
}

std::string nameofsites(siteset of)
{
    return of.ischip() ? "Chip" + numbertext(of.chip) : std::string(nameofset(of.set)) + "Qtn";
}

std::string chipinformationname(int64 chip)
{
    return nameofsites(siteset(chip)) + "SnpInformation.txt";
}

std::string informationfile(int64 chrom, siteset of)
{
    if (of.ischip()) return chromfolder(chrom) + chipinformationname(of.chip);
    // One name is spelt otherwise than in all other files.
    if (of.set == qtnset::unrestricted)
        return chromfolder(chrom) + "UnRestrictedQtnInformation.txt";
    return chromfolder(chrom) + nameofsites(of) + "Information.txt";
}
std::string summaryfile(int64 chrom, siteset of)
{
    return chromfolder(chrom) + nameofsites(of) + "Summary.txt";
}
std::string phasefile(int64 chrom, siteset of, int64 gen)
{
    return generationfile(chrom, of, "Phase", gen);
}
std::string genotypefile(int64 chrom, siteset of, int64 gen)
{
    return generationfile(chrom, of, "Genotype", gen);
}
std::string frequencyfile(int64 chrom, qtnset set, int64 gen)
{
    return generationfile(chrom, set, "AlleleFreq", gen);
}

double filedfrequency(int64 ncopies, int64 nindiv)
{
    textline field;
    putf(field, static_cast<double>(ncopies) / static_cast<double>(2 * nindiv), 20, 10);
    double frequency = 0;
    readreal(trim(field), frequency);
    return frequency;
}

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

void writesiteinformation(state &s, const std::string &path, const sitelist &sites,
                          bool withmutations)
{
    s.loci.sitelists[path] = sites;
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
    infile in(path, author::system);
    sitelist sites;
    sites.reserve(static_cast<std::size_t>(nsites));
    int64 previous = 0, before = 0;
    for (int64 i = 1; i <= nsites; ++i) {
        in.record();
        const int64 rank = in.integer(); // behind a merge, among the sites of all chromosomes
        if (i == 1) before = rank - 1;
        if (rank != before + i) in.complain("the sites must be numbered one after the other");
        const int64 site = in.integer();
        in.skipwords(2);
        if (site <= previous) in.complain("the sites must ascend");
        if (site > nsegregincl)
            in.complain("site " + std::to_string(site) + " is beyond the " +
                        std::to_string(nsegregincl) + " sites of the chromosome");
        sites.push_back(previous = site);
    }
    in.stopifmore();
    return sites;
}

const sitelist &keptsites(state &s, int64 chrom, siteset of, int64 nsegregincl)
{
    const std::string path = informationfile(chrom, of);
    const auto kept = s.loci.sitelists.find(path);
    if (kept != s.loci.sitelists.end()) return kept->second;
    return s.loci.sitelists[path] = readsites(path, nsitesonchrom(s, of, chrom), nsegregincl);
}
