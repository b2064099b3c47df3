#include "exportsites.h"

#include "founders/stores.h"
#include "haplotypes/recombmap.h"
#include "results/sequence.h"
#include "shell.h"
#include "stops.h"
#include "words.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace
{
[[noreturn]] void refuse(const std::string &reason)
{
    std::fprintf(stderr, "ERROR: %s\n", reason.c_str());
    plainstop(2);
}

// ------------------------------------------------------------------ maps of all sites

// From the stores of a chromosome.
std::vector<exportsite> readstoredmap(const finishedrun &run, int64 chrom)
{
    state &s = *run.s;
    arrayscope arrays;
    s.sites.nsegregincl = run.nsites[static_cast<std::size_t>(chrom - 1)];
    makeincludedsites(s, arrays);
    readsegsitesdataperchrom(s, chrom);
    std::vector<exportsite> sites(static_cast<std::size_t>(s.sites.nsegregincl));
    for (int64 i = 1; i <= s.sites.nsegregincl; ++i) {
        exportsite &site = sites[static_cast<std::size_t>(i - 1)];
        site.site = i;
        site.relative = s.sites.inclphysicalmap(i);
        site.mutation = s.sites.inclmutindicator(i) == 1;
    }
    return sites;
}

// From the map of the sequence, which doesn't tell mutations: all that a chromosome keeps are QTN.
void readsequencemaps(const finishedrun &run, sitetables &tables)
{
    runtext map(sequencemapfile);
    for (int64 h = 1; h <= run.nchrom(); ++h) {
        const auto nsites = static_cast<std::size_t>(run.nsites[static_cast<std::size_t>(h - 1)]);
        std::vector<double> &positions = tables.positions.emplace_back(nsites);
        int64 site = 0;
        for (double &position : positions) {
            map.in.record();
            map.in.identifier(h, "chromosome");
            map.in.identifier(++site, "site");
            position = map.in.fraction();
        }
    }
    map.in.nextrecord();
    map.finish();
}

bool hasstoredmaps(const finishedrun &run)
{
    for (int64 h = 1; h <= run.nchrom(); ++h)
        if (!pathexists(includedmapfile(h))) return false;
    return true;
}

// The map of the sequence is left empty before the last generation.
bool hassequencemap()
{
    if (!istextthere(sequencemapfile)) return false;
    runtext map(sequencemapfile);
    return map.in.nextrecord();
}

void readqtn(const finishedrun &run, sitetables &tables)
{
    for (const qtnset set : setsinuse(*run.s)) {
        std::vector<qtnsite> &sites = tables.qtn[static_cast<std::size_t>(set)];
        sites = readqtnsites(set);
        for (const qtnsite &qtn : sites)
            if (qtn.chrom < 1 || qtn.chrom > run.nchrom() || qtn.site < 1 ||
                qtn.site > run.nsites[static_cast<std::size_t>(qtn.chrom - 1)])
                ioerror(informationfile(set), "QTN " + numbertext(&qtn - sites.data() + 1) +
                                                  " lies on no site of the run");
    }
}

void resolvechip(const finishedrun &run, exportoptions &options)
{
    const chipsettings &chips = run.s->chips;
    if (options.data == exportdata::selectionchip) {
        if (chips.nchip == 0)
            refuse("the run has no chips: --data sequence, or UseSnpChipOnOff,On in the "
                   "specification of a run");
        options.data = exportdata::chip;
        options.chip = chips.tmpchip >= 1 && chips.tmpchip <= chips.nchip ? chips.tmpchip : 1;
    }
    if (options.data == exportdata::chip && !pathexists(snpinformationfile(options.chip)))
        refuse("there is no " + snpinformationfile(options.chip) + ": the run has no chip " +
               numbertext(options.chip) +
               "; set NumberOfSnpChips and nSnpPerChipPerChromosme for a run that has it");
}
} // namespace

sitetables readsitetables(const finishedrun &run, exportoptions &options)
{
    sitetables tables;
    resolvechip(run, options);
    if (options.data == exportdata::chip) tables.snp = readsnpmap(options.chip);
    readqtn(run, tables);
    tables.storedmaps = hasstoredmaps(run);
    if (tables.storedmaps) return tables;
    if (hassequencemap()) {
        readsequencemaps(run, tables);
    } else if (options.data == exportdata::sequence) {
        refuse("the run left no map of all sites: KeepChromosomesFolderYesNo,Yes or "
               "WriteFullSequenceOutOnOff,On in the specification of a run that is to be exported "
               "with --data sequence");
    }
    return tables;
}

std::vector<int64> chosenchromosomes(const finishedrun &run, const exportoptions &options)
{
    std::vector<int64> all;
    for (int64 h = 1; h <= run.nchrom(); ++h) all.push_back(h);
    if (options.chromosomes.empty()) return all;
    if (options.chromosomes.back() > run.nchrom())
        refuse("--chromosomes: the run has " + numbertext(run.nchrom()) + " chromosomes");
    return options.chromosomes;
}

namespace
{
// ------------------------------------------------------------------ the sites of a chromosome

// All sites of the chromosome whose positions are known, in map order; place is not set.
using sitesbynumber = std::map<int64, exportsite>;

exportsite &siteat(sitesbynumber &sites, int64 site, double position)
{
    exportsite &found = sites[site];
    if (found.site == 0) {
        found.site = site;
        found.relative = position;
    }
    return found;
}

std::vector<exportsite> knownsites(const finishedrun &run, const sitetables &tables, int64 chrom)
{
    if (tables.storedmaps) return readstoredmap(run, chrom);
    const auto h = static_cast<std::size_t>(chrom - 1);
    std::vector<exportsite> all;
    if (!tables.positions.empty()) {
        for (std::size_t k = 0; k < tables.positions[h].size(); ++k) {
            exportsite &site = all.emplace_back();
            site.site = static_cast<int64>(k) + 1;
            site.relative = tables.positions[h][k];
        }
    } else {
        sitesbynumber some;
        for (const snpsite &snp : tables.snp)
            if (snp.chrom == chrom) siteat(some, snp.site, snp.pos);
        for (const std::vector<qtnsite> &set : tables.qtn)
            for (const qtnsite &qtn : set)
                if (qtn.chrom == chrom) siteat(some, qtn.site, qtn.pos);
        for (const auto &[number, site] : some) all.push_back(site);
    }
    return all;
}

exportsite &findsite(std::vector<exportsite> &sites, int64 number)
{
    return *std::lower_bound(sites.begin(), sites.end(), number,
                             [](const exportsite &site, int64 n) { return site.site < n; });
}

void markqtn(const sitetables &tables, int64 chrom, std::vector<exportsite> &sites)
{
    for (std::size_t k = 0; k < tables.qtn.size(); ++k)
        for (const qtnsite &qtn : tables.qtn[k]) {
            if (qtn.chrom != chrom) continue;
            exportsite &site = findsite(sites, qtn.site);
            site.qtnsets |= 1u << k;
            if (qtn.mutation == 1) site.mutation = true;
        }
}

void setbases(std::vector<exportsite> &sites, int64 length, int64 chrom)
{
    if (length <= 0)
        refuse("the length of the chromosomes in bases isn't known: ChromosomeLengthBasesMaCS in "
               "SolvantoSpec.txt must be a number where the history is a file");
    if (std::ssize(sites) > length)
        refuse("chromosome " + numbertext(chrom) + " has " + numbertext(std::ssize(sites)) +
               " sites on " + numbertext(length) + " bases: each wants a base of its own");
    int64 before = 0;
    for (exportsite &site : sites) {
        const double bases = std::round(site.relative * static_cast<double>(length));
        site.bases = std::max(std::clamp<int64>(static_cast<int64>(bases), 1, length), before + 1);
        before = site.bases;
    }
    int64 behind = length + 1;
    for (auto site = sites.rbegin(); site != sites.rend() && site->bases >= behind; ++site)
        behind = site->bases = behind - 1;
}

void setcentimorgans(const finishedrun &run, int64 chrom, std::vector<exportsite> &sites)
{
    const int64 nblock = run.nsites[static_cast<std::size_t>(chrom - 1)] / lociperblock;
    array1<double> shares(nblock, 1 / static_cast<double>(std::max<int64>(nblock, 1)));
    if (run.s->founders.recombhotspotsonoff) shares = readachievedshares(chrom, nblock);
    const double length = 100 * run.s->founders.morgans;
    double before = 0; // share of the blocks before
    int64 block = 1;
    for (exportsite &site : sites) {
        for (; block < (site.site - 1) / lociperblock + 1; ++block) before += shares(block);
        const double inblock = static_cast<double>((site.site - 1) % lociperblock) / lociperblock;
        site.centimorgan = length * (before + shares(block) * inblock);
    }
}

// Sites of the data on the chromosome, by number.
std::vector<char> indata(const exportoptions &options, const sitetables &tables, int64 chrom,
                         int64 nsites)
{
    const bool ischip = options.data == exportdata::chip;
    std::vector<char> wanted(static_cast<std::size_t>(nsites + 1), !ischip);
    for (const snpsite &snp : tables.snp) {
        if (snp.chrom != chrom) continue;
        if (snp.site < 1 || snp.site > nsites)
            ioerror(snpinformationfile(options.chip), "site " + numbertext(snp.site) +
                                                          " is beyond the sites of chromosome " +
                                                          numbertext(chrom));
        wanted[static_cast<std::size_t>(snp.site)] = 1;
    }
    return wanted;
}

bool iswanted(qtnchoice choice, bool isindata, bool isqtn)
{
    switch (choice) {
    case qtnchoice::asis:
        return isindata;
    case qtnchoice::only:
        return isqtn;
    case qtnchoice::without:
        return isindata && !isqtn;
    case qtnchoice::with:
        return isindata || isqtn;
    }
    return false;
}
} // namespace

std::vector<exportsite> sitesofchrom(const finishedrun &run, const exportoptions &options,
                                     const sitetables &tables, int64 chrom)
{
    const int64 nsites = run.nsites[static_cast<std::size_t>(chrom - 1)];
    const std::vector<char> wanted = indata(options, tables, chrom, nsites);
    std::vector<exportsite> sites = knownsites(run, tables, chrom);
    markqtn(tables, chrom, sites);
    setbases(sites, run.chrlength, chrom);
    setcentimorgans(run, chrom, sites);
    int64 nchip = 0;
    for (exportsite &site : sites) {
        const bool onchip =
            options.data == exportdata::chip && wanted[static_cast<std::size_t>(site.site)] != 0;
        if (onchip) site.chipplace = ++nchip;
    }
    std::erase_if(sites, [&](const exportsite &site) {
        return !iswanted(options.qtn, wanted[static_cast<std::size_t>(site.site)] != 0,
                         site.qtnsets != 0);
    });
    return sites;
}

std::string siteid(int64 chrom, int64 site)
{
    textline id;
    putsiteid(id, chrom, site);
    return id;
}

void putsiteid(textline &line, int64 chrom, int64 site)
{
    puti(line, chrom, 0);
    line += '_';
    puti(line, site, 0);
}

std::string qtnsetnames(const exportsite &site)
{
    std::string names;
    for (std::size_t k = 0; k < std::size(qtnsets); ++k)
        if (site.qtnsets >> k & 1)
            names += (names.empty() ? "" : ",") + std::string(nameofset(qtnsets[k]));
    return names;
}
