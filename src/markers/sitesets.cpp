#include "markers/sitesets.h"

#include "words.h"

namespace
{
std::string fileofset(int64 chrom, qtnset set, const std::string &rest)
{
    return chromfolder(chrom) + nameofset(set) + "Qtn" + rest;
}
std::string fileofchip(int64 chrom, int64 chip, const std::string &rest)
{
    return chromfolder(chrom) + "Chip" + numbertext(chip) + rest;
}
std::string generationending(int64 gen)
{
    return "Generation" + numbertext(gen) + ".txt";
}
} // namespace

std::string informationfileofset(int64 chrom, qtnset set)
{
    // One name is spelt otherwise than in all other files.
    if (set == qtnset::unrestricted) return chromfolder(chrom) + "UnRestrictedQtnInformation.txt";
    return fileofset(chrom, set, "Information.txt");
}
std::string summaryfileofset(int64 chrom, qtnset set)
{
    return fileofset(chrom, set, "Summary.txt");
}
std::string phasefileofset(int64 chrom, qtnset set, int64 gen)
{
    return fileofset(chrom, set, "Phase" + generationending(gen));
}
std::string genotypefileofset(int64 chrom, qtnset set, int64 gen)
{
    return fileofset(chrom, set, "Genotype" + generationending(gen));
}
std::string frequencyfileofset(int64 chrom, qtnset set, int64 gen)
{
    return fileofset(chrom, set, "AlleleFreq" + generationending(gen));
}

std::string informationnameofchip(int64 chip)
{
    return "Chip" + numbertext(chip) + "SnpInformation.txt";
}
std::string informationfileofchip(int64 chrom, int64 chip)
{
    return chromfolder(chrom) + informationnameofchip(chip);
}
std::string summaryfileofchip(int64 chrom, int64 chip)
{
    return fileofchip(chrom, chip, "Summary.txt");
}
std::string phasefileofchip(int64 chrom, int64 chip, int64 gen)
{
    return fileofchip(chrom, chip, "Phase" + generationending(gen));
}
std::string genotypefileofchip(int64 chrom, int64 chip, int64 gen)
{
    return fileofchip(chrom, chip, "Genotype" + generationending(gen));
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

const sitelist &keptsites(state &s, const std::string &path, int64 nsites, int64 nsegregincl)
{
    const auto kept = s.loci.sitelists.find(path);
    if (kept != s.loci.sitelists.end()) return kept->second;
    return s.loci.sitelists[path] = readsites(path, nsites, nsegregincl);
}
