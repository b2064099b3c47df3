// Sites, founders, the drop of every gamete, and what is cut from the genomes: phases, genotypes,
// frequencies, chips, sequence.
#include "checkrun/runfolder.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <tuple>

namespace checkrun
{
namespace
{
// ------------------------------------------------------------------------ sites

// Included sites, whole blocks in rising order; false if they can't be told.
bool readsites(run &r, chromosome &on)
{
    const std::string countfile = on.folder + "SegSitesIncluded.txt";
    const textfile map = r.files.read(on.folder + "PhysicalMapIncluded.txt");
    on.nsites = r.files.read(countfile)(1).whole(1);
    on.nblocks = on.nsites / 60;
    if (!r.told.holds(on.nsites > 0 && on.nsites % 60 == 0, {countfile, 1}, "whole blocks of 60") ||
        !r.told.is({map.path}, "included sites", double(on.nsites), double(map.n())))
        return false;
    double slot = 0, position = 0;
    for (int64 s = 1; s <= on.nsites; ++s) {
        const place where{map.path, s};
        const numberline line = map(s);
        r.told.is(where, "site", double(s), line(1));
        r.told.holds(line(2) > slot, where, "slots rise");
        r.told.holds(line(3) >= position && line(3) <= 1, where, "positions rise, up to 1");
        r.told.holds((line(4) == 1) == (line(5) > 0), where,
                     "mutations, and only they, have a carrier");
        slot = line(2);
        on.position.push_back(position = line(3));
        on.mutation.push_back(line(4));
    }
    return true;
}

// Founder haplotypes, in blocks and in text, are columns of the simulated ones: for each included
// site the next one at its position. No founder carries a mutation yet to come.
void readfounders(run &r, chromosome &on)
{
    const textfile included = r.files.read(on.folder + "MacsHaplotypesIncluded.txt"),
                   simulated = r.files.read(on.folder + "MacsHaplotypes.txt"),
                   positions = r.files.read(on.folder + "PhysicalMapInput.txt");
    const int64 n = included.n();
    const list<int64> packed =
        r.files.records(on.folder + "MacsHaplotypesInBlocks.txt", n * on.nblocks);
    if (packed.n() != n * on.nblocks || n != simulated.n()) return;
    for (int64 k = 1; k <= n; ++k)
        for (int64 b = 0; b < on.nblocks; ++b) on.founders.push_back(packed(b * n + k));
    const auto same = [&](const textfile &file, int64 site, int64 column) {
        const std::size_t at = static_cast<std::size_t>(2 * column - 1);
        for (int64 k = 1; k <= n; ++k) {
            const std::string_view line = file.lines(k);
            if (at >= line.size() || line[at] - '0' != alleleof(on.founder(k), site)) return false;
        }
        return true;
    };
    reals position;
    for (int64 i = 1; i <= positions.n(); ++i)
        for (const double x : positions(i).values) position.push_back(x);
    for (int64 s = 1, j = 1; s <= on.nsites; ++s) {
        const place where{included.path, s, "site"};
        r.told.holds(same(included, s, s), where, "alleles as in blocks");
        int64 at = j;
        const auto fits = [&] {
            return std::fabs(position(at) - on.position(s)) < tendecimals && same(simulated, s, at);
        };
        if (on.mutation(s) == 1) {
            for (int64 k = 1; k <= n; ++k)
                r.told.is(where, "a mutation yet to come", 0, alleleof(on.founder(k), s));
            continue;
        }
        while (at <= position.n() && !fits()) ++at;
        if (r.told.holds(at <= position.n(), where, "a simulated site, behind the one before"))
            j = at + 1;
    }
}

void readgenomes(run &r, chromosome &on)
{
    on.genomes.assign(static_cast<std::size_t>(2 * r.nindiv * on.nblocks), 0);
    for (int64 g = 1; g <= r.ngenerations; ++g) {
        const std::string path = numbered(on.folder + "GenomeGeneration", g, ".txt");
        const int64 n = r.size(g), nstrands = 2 * on.nblocks; // blocks of side 1, then of side 2
        const list<int64> packed = r.files.records(path, n * nstrands);
        for (int64 k = 1; k <= packed.n(); ++k) {
            const int64 i = r.first(g) + (k - 1) % n, block = packed(k);
            on.genomes((i - 1) * nstrands + (k - 1) / n + 1) = block;
            r.told.holds(block >= 0 && block < int64{1} << 60, {path, i, "individual"}, "60 bits");
        }
    }
}

// Minor allele frequencies among individuals of generation 1 without known parents.
void checkfrequencies(run &r, chromosome &on)
{
    double n = 0;
    on.maf.assign(static_cast<std::size_t>(on.nsites), 0.0);
    for (int64 i = 1; i <= r.last(1); ++i) {
        if (r.individuals(i).parent[1] > 0 || r.individuals(i).parent[2] > 0) continue;
        n += 2;
        for (int64 s = 1; s <= on.nsites; ++s)
            on.maf(s) += alleleof(on.strand(i, 1), s) + alleleof(on.strand(i, 2), s);
    }
    for (double &f : on.maf) f = std::min(f / n, 1 - f / n);
    if (r.merged)
        return r.told.leaveout("minor allele frequencies", "they are those before the merge");
    r.files.table(on.folder + "MinorAlleleFrequency.txt", 1, on.nsites, "minor allele frequency",
                  [&](int64 s) {
                      return reals{double(s), on.maf(s)};
                  });
}

// A set of sites: number, site, frequency (behind a merge a second one of QTN), position, and of
// QTN mutation mark and carrier.
void readset(run &r, chromosome &on, const std::string &name, const std::string &path)
{
    if (!r.files.there(path)) return;
    const textfile file = r.files.read(path);
    const double before = r.merged ? double(r.sitesof(name).n()) : 0;
    if (file.n() == 0) return; // no recombination trait
    list<int64> &sites = on.sets[name];
    double heterozygosity = 0;
    for (int64 k = 1; k <= file.n(); ++k) {
        const int64 site = file(k).whole(2), earlier = k > 1 ? sites(k - 1) : 0;
        const bool ok = site > earlier && site <= on.nsites;
        r.told.holds(ok, {path, k}, "sites of the chromosome, rising");
        sites.push_back(ok ? site : std::max<int64>(earlier, 1));
        heterozygosity += 2 * on.maf(sites(k)) * (1 - on.maf(sites(k))) / double(file.n());
    }
    r.files.table(path, 0, file.n(), "number, site, frequency, position, mutation", [&](int64 k) {
        const int64 s = sites(k);
        reals expected = {before + double(k), double(s), r.merged ? any : on.maf(s)};
        if (file(1).n() % 2 == 1) expected.push_back(any);
        expected.push_back(on.position(s));
        if (file(1).n() > 5) expected.insert(expected.end(), {on.mutation(s), any});
        return expected;
    });
    const std::string summary = on.folder + name + "Summary.txt";
    if (!r.merged)
        r.told.is({summary, 1}, "mean heterozygosity", heterozygosity, r.files.read(summary)(1)(1),
                  1e-12);
}

void readsets(run &r, chromosome &on)
{
    reals counts = {0, double(std::count(on.mutation.begin(), on.mutation.end(), 1.0))};
    for (const char *name : {"UnrestrictedQtn", "RestrictedQtn", "RecombinationQtn"}) {
        const bool capital = name == std::string("UnrestrictedQtn");
        readset(r, on, name, on.folder + (capital ? "UnRestrictedQtn" : name) + "Information.txt");
    }
    counts(1) = double(on.sets["UnrestrictedQtn"].n());
    for (int64 e = 1; e <= r.nchips; ++e) {
        const std::string name = numbered("Chip", e, "");
        readset(r, on, name, on.folder + name + "SnpInformation.txt");
        counts.push_back(double(on.sets[name].n()));
    }
    const std::string path = on.folder + "NbOfQtnMutationsAndSnp.txt";
    const numberline found = r.files.read(path)(1);
    for (int64 k = 1; k <= counts.n(); ++k)
        r.told.is({path, 1}, "QTN, mutations, SNP", counts(k), found(k));
}

// ------------------------------------------------------------------------ the drop

struct gameteline {
    int64 strand = 1;
    list<int64> crossings; // last site before each
};

struct drop {
    run &r;
    int64 h = 1;
    list<gameteline> tracking; // of individual i lines 2 i - 1 and 2 i
    // Founder haplotypes of an individual's sides; first individual of the last generation with
    // unknown parents, behind which they may be gone.
    std::map<int64, numberline> base;
    int64 lastbase = 0;
    std::map<std::pair<int64, int64>, list<int64>> mutations; // individual, side: sites
    // What editing makes of a parent for a generation: generation, parent, chromosome: site,
    // allele.
    std::map<std::tuple<int64, int64, int64>, std::map<int64, int64>> edits;
    std::set<std::tuple<int64, int64, int64>> drives; // individual, site, side
    reals crossings;                                  // of gametes, all chromosomes
    const chromosome &on() const { return r.chromosomes(h); }
};

void readediting(drop &d)
{
    run &r = d.r;
    const list<genomesite> qtn = r.sitesof(r.selectedset);
    for (int64 g = r.nburnin + 1; g <= r.ngenerations; ++g) {
        const std::string folder = numbered("Selection/SelectionFolder", g - r.nburnin, "/"),
                          path = folder + "GeneEditingInformation.txt";
        if (!r.files.there(path)) continue;
        const textfile file = r.files.read(path);
        for (int64 k = 2; k <= file.n(); ++k) {
            const int64 parent = file(k).whole(1), q = file(k).whole(2), aim = file(k).whole(4);
            const bool known =
                parent >= r.first(g - 1) && parent <= r.last(g - 1) && q >= 1 && q <= qtn.n();
            if (!r.told.holds(known && (aim == 0 || aim == 2), {path, k},
                              "a candidate, a QTN, 0 or 2"))
                continue;
            r.told.is({path, k}, "genotype found", qtn(q).genotype(parent), file(k)(3));
            d.edits[{g, parent, qtn(q).h}][qtn(q).site] = aim / 2;
        }
    }
    const std::string path = "SimulatedData/GeneDriveQtnPresence.txt";
    const textfile file = r.files.there(path) ? r.files.read(path) : textfile{};
    for (int64 k = 2; k <= file.n(); ++k)
        d.drives.insert({file(k).whole(1), file(k).whole(2), file(k).whole(3)});
}

void readtracking(drop &d)
{
    run &r = d.r;
    const textfile file = r.files.read(d.on().folder + "RecombinationTracking.txt");
    r.told.is({file.path}, "lines", 2 * double(r.nindiv), double(file.n()));
    d.tracking.clear();
    for (int64 k = 1; k <= 2 * r.nindiv; ++k) {
        const place where{file.path, k};
        const numberline line = file(k);
        gameteline gamete{line.whole(2), {}};
        r.told.is(where, "individual", double((k + 1) / 2), line(1));
        r.told.holds(gamete.strand == 1 || gamete.strand == 2, where, "first strand 1 or 2");
        r.told.is(where, "crossings in the line", line(3), double(line.n() - 3));
        for (int64 c = 4, block = -1; c <= line.n(); ++c) {
            const int64 site = line.whole(c);
            if (r.told.holds(site >= 1 && site <= d.on().nsites && blockof(site) > block, where,
                             "crossings rise, one in a block")) {
                block = blockof(site);
                gamete.crossings.push_back(site);
            }
        }
        d.tracking.push_back(gamete);
    }
}

// Founder haplotypes of individuals with unknown parents, and where mutations arise. Behind a merge
// carriers go by other numbers than in the map.
void readorigins(drop &d)
{
    run &r = d.r;
    const chromosome &on = d.on();
    const textfile base = r.files.read(on.folder + "BaseIndividualGameteTracking.txt"),
                   mutations = r.files.read(on.folder + "MutDeNovoInfo.txt"),
                   map = r.files.read(on.folder + "PhysicalMapIncluded.txt");
    d.base.clear();
    for (int64 k = 1; k <= base.n(); ++k) d.base[base(k).whole(1)] = base(k);
    for (const individual &one : r.individuals)
        if (one.parent[1] == 0 || one.parent[2] == 0) d.lastbase = r.first(one.generation);
    d.mutations.clear();
    std::set<int64> sites;
    for (int64 k = 1; k <= mutations.n(); ++k) {
        const numberline line = mutations(k);
        const place where{mutations.path, k};
        const int64 site = line.whole(5);
        const bool known = site >= 1 && site <= on.nsites && on.mutation(site) == 1;
        if (!r.told.holds(known, where, "a mutation site")) continue;
        sites.insert(site);
        r.told.is(where, "slot", map(site)(2), line(1));
        if (!r.merged) r.told.is(where, "carrier, by the map", map(site)(5), line(2));
        d.mutations[{line.whole(2), line.whole(3)}].push_back(site);
    }
    const auto n = std::count(on.mutation.begin(), on.mutation.end(), 1.0);
    r.told.is({mutations.path}, "mutation sites", double(n), double(sites.size()));
}

// The two strands that a parent passes on, one behind the other; none where its founder haplotypes
// aren't known.
list<int64> parentstrands(const drop &d, int64 i, int64 side)
{
    const individual &one = d.r.individuals(i);
    const int64 n = d.on().nblocks, parent = one.parent[side];
    list<int64> strands;
    if (parent == 0) {
        const auto found = d.base.find(i);
        for (const int64 k : {2 * side, 2 * side + 1}) {
            const int64 haplotype = found == d.base.end() ? 0 : found->second.whole(k);
            if (haplotype < 1 || haplotype * n > d.on().founders.n()) return {};
            strands.insert(strands.end(), d.on().founder(haplotype), d.on().founder(haplotype) + n);
        }
        return strands;
    }
    strands.assign(d.on().strand(parent, 1), d.on().strand(parent, 1) + 2 * n);
    if (const auto edits = d.edits.find({one.generation, parent, d.h}); edits != d.edits.end())
        for (const auto &[site, allele] : edits->second)
            for (const int64 strand : {int64{0}, n}) {
                int64 &block = strands(strand + blockof(site) + 1);
                block = allele ? block | bitof(site) : block & ~bitof(site);
            }
    return strands;
}

// The gamete that a line makes of two strands of n blocks.
list<int64> cross(const gameteline &line, const list<int64> &strands, int64 n)
{
    list<int64> gamete;
    int64 now = line.strand == 2, c = 1;
    for (int64 b = 0; b < n; ++b) {
        const int64 here = strands(now * n + b + 1), other = strands((1 - now) * n + b + 1);
        if (c > line.crossings.n() || blockof(line.crossings(c)) != b) {
            gamete.push_back(here);
            continue;
        }
        const int64 behind =
            bitof(line.crossings(c++)) - 1; // sites of the block behind the crossing
        gamete.push_back((here & ~behind) | (other & behind));
        now = 1 - now;
    }
    return gamete;
}

// Whether a drive on the other gamete has converted a site. Flags of an earlier run are gone.
bool converted(const drop &d, int64 i, int64 side, int64 site)
{
    const chromosome &on = d.on();
    const int64 g = d.r.individuals(i).generation;
    const auto qtn = on.sets.find(d.r.selectedset);
    if (g <= d.r.nburnin || d.r.spec.word("GeneDriveOnOff") != "on" || qtn == on.sets.end() ||
        !std::binary_search(qtn->second.begin(), qtn->second.end(), site) ||
        alleleof(on.strand(i, 1), site) != alleleof(on.strand(i, 2), site))
        return false;
    if (g < d.r.firstgeneration)
        d.r.told.leaveout("drives of earlier runs", "the file of drives is that of the last run");
    return g < d.r.firstgeneration ||
           (d.drives.contains({i, site, side}) && d.drives.contains({i, site, 3 - side}));
}

void checkgamete(drop &d, int64 i, int64 side)
{
    run &r = d.r;
    const chromosome &on = d.on();
    const individual &one = r.individuals(i);
    const gameteline &line = d.tracking(2 * i + side - 2);
    const std::string path = numbered(on.folder + "GenomeGeneration", one.generation, ".txt"),
                      basefile = on.folder + "BaseIndividualGameteTracking.txt";
    list<int64> expected(on.strand(i, 1), on.strand(i, 1) + on.nblocks); // doubled haploids'
    if (side == 1 || !r.doubledhaploids.contains(one.generation)) {
        if (r.merged && one.path.empty())
            return r.told.leaveout("the drop of merged individuals", "their parents are elsewhere");
        const list<int64> strands = parentstrands(d, i, side);
        if (strands.empty() && i < d.lastbase)
            return r.told.leaveout("the drop of the first individuals with unknown parents",
                                   "a later generation has such ones, and the file is theirs");
        if (!r.told.holds(!strands.empty(), {basefile, i, "individual"}, "founder haplotypes"))
            return;
        expected = cross(line, strands, on.nblocks);
        for (const int64 site : d.mutations[{i, side}]) expected(blockof(site) + 1) |= bitof(site);
    }
    const place where{path, i, "individual"};
    for (int64 b = 0; b < on.nblocks; ++b)
        if (expected(b + 1) != on.strand(i, side)[b])
            for (int64 s = 60 * b + 1; s <= 60 * b + 60; ++s)
                if (const int a = alleleof(expected.data(), s),
                    found = alleleof(on.strand(i, side), s);
                    a != found && !converted(d, i, side, s))
                    r.told.is(where,
                              numbered("allele by the drop, gamete ", side, ", site ") +
                                  std::to_string(s),
                              a, found);
    ++r.told.nchecked;
}

// The highest crossing is that of the generations which the last run made; one that begins in
// selection generations goes on from what it finds, also from individuals that it makes anew.
void checkdrop(drop &d)
{
    run &r = d.r;
    readtracking(d);
    readorigins(d);
    int64 highest = 1;
    for (int64 i = 1; i <= r.nindiv; ++i)
        for (const int64 side : {1, 2}) {
            checkgamete(d, i, side);
            const list<int64> &crossings = d.tracking(2 * i + side - 2).crossings;
            d.crossings(2 * i + side - 2) += double(crossings.n());
            if (r.individuals(i).generation >= r.firstgeneration && !crossings.empty())
                highest = std::max(highest, crossings.back());
        }
    const std::string path = "SimulatedData/GlobalRecombLocationMax.txt";
    const numberline line = r.files.read(path)(d.h);
    r.told.is({path, d.h}, "chromosome", double(d.h), line(1));
    if (r.merged || r.firstgeneration > r.nburnin)
        r.told.holds(r.merged || line(2) >= double(highest), {path, d.h}, "not below a crossing");
    else
        r.told.is({path, d.h}, "highest crossing", double(highest), line(2));
}

// ------------------------------------------------------------------------ what is cut from genomes

void checkgeneration(run &r, int64 h, int64 g)
{
    const chromosome &on = r.chromosomes(h);
    const int64 n = r.size(g), first = r.first(g);
    for (const auto &[name, places] : on.sets) {
        const list<genomesite> sites = r.sitesof(name, h);
        const std::string stem = on.folder + name;
        checkgenotypes(r, numbered(stem + "PhaseGeneration", g, ".txt"), 0, sites, true, first, n);
        checkgenotypes(r, numbered(stem + "GenotypeGeneration", g, ".txt"), 0, sites, false, first,
                       n);
        if (name.starts_with("Chip")) continue;
        if (r.merged && g == 1)
            r.told.leaveout("allele frequencies of generation 1", "a merge counts them anew");
        else
            r.files.table(
                numbered(stem + "AlleleFreqGeneration", g, ".txt"), 0, sites.n(),
                "number, site, allele frequency", [&](int64 k) {
                    double count = 0;
                    for (int64 i = first; i < first + n; ++i) count += sites(k).genotype(i);
                    return reals{double(k), double(sites(k).site), count / (2.0 * double(n))};
                });
    }
    for (const int64 nlines :
         {1, 2}) { // of an individual: genotypes, or the alleles of its gametes
        const std::string path = numbered(
            on.folder + (nlines == 1 ? "SequenceGenotypeGeneration" : "SequencePhaseGeneration"), g,
            ".bin");
        if (!r.files.there(path)) continue;
        const list<int64> items = r.files.records(path, 1 + on.nsites);
        r.told.is({path}, "items", double(nlines * n * (1 + on.nsites)), double(items.n()));
        for (int64 k = 0; k < items.n(); ++k) {
            const int64 record = k / (1 + on.nsites), s = k % (1 + on.nsites),
                        i = std::min(first + record / nlines, r.last(g));
            const genomesite at{&on, h, std::max<int64>(s, 1)};
            const int64 expected = s == 0        ? i
                                   : nlines == 1 ? at.genotype(i)
                                                 : at.allele(i, 1 + record % 2);
            if (items(k + 1) != expected)
                r.told.is({path, record + 1, "record"}, "individual, alleles", double(expected),
                          double(items(k + 1)));
        }
    }
}

void checkwholegenome(run &r)
{
    list<genomesite> all;
    for (int64 h = 1; h <= r.chromosomes.n(); ++h)
        for (int64 s = 1; s <= r.chromosomes(h).nsites; ++s)
            all.push_back({&r.chromosomes(h), h, s});
    const std::string data = "SimulatedData/", sequence = data + "FullSequence";
    for (int64 e = 1; e <= r.nchips; ++e) {
        const std::string name = numbered("Chip", e, ""),
                          stem = data + "AllIndividualsSnpChips/" + name;
        const list<genomesite> sites = r.sitesof(name);
        checkgenotypes(r, stem + "Phase.txt", 0, sites, true, 1, r.nindiv);
        checkgenotypes(r, stem + "Genotype.txt", 0, sites, false, 1, r.nindiv);
        r.files.table(data + name + "SnpInformation.txt", 1, sites.n(),
                      "number, chromosome, site, frequency, position", [&](int64 k) {
                          const auto &[on, h, site] = sites(k);
                          return reals{double(k), double(h), double(site),
                                       r.merged ? any : on->maf(site), on->position(site)};
                      });
    }
    if (!r.files.there(sequence + "Phase.txt")) return;
    checkgenotypes(r, sequence + "Phase.txt", 1, all, true, 1, r.nindiv);
    checkgenotypes(r, sequence + "Genotype.txt", 1, all, false, 1, r.nindiv);
    const std::string path = sequence + "PhysicalMapIncluded.txt";
    if (r.files.there(path) && r.files.read(path).n() > 0) // else the last generation is to come
        r.files.table(path, 0, all.n(), "chromosome, site, position", [&](int64 k) {
            return reals{double(all(k).h), double(all(k).site), all(k).on->position(all(k).site)};
        });
}
} // namespace

void checkgenotypes(run &r, const std::string &path, int64 ntitles, const list<genomesite> &sites,
                    bool phase, int64 first, int64 n)
{
    const textfile file = r.files.read(path);
    const int64 nlines = first > 0 ? (1 + phase) * n : file.n() - ntitles;
    r.told.is({path}, "lines", double(ntitles + nlines), double(file.n()));
    for (int64 k = 1; k <= std::min(nlines, file.n() - ntitles); ++k) {
        const std::string_view line = file.lines(ntitles + k);
        const place where{path, ntitles + k};
        const int64 i = numbersof(line.substr(0, 20)).whole(1), side = 2 - k % 2;
        if (!r.told.is(where, "columns", double(20 + 2 * sites.n()), double(line.size())) ||
            !r.told.holds(i >= 1 && i <= r.nindiv, where, "an individual of the folder"))
            continue;
        if (first > 0)
            r.told.is(where, "individual", double(first + (k - 1) / (1 + phase)), double(i));
        for (int64 s = 1; s <= sites.n(); ++s) {
            const int expected = phase ? sites(s).allele(i, side) : sites(s).genotype(i);
            const int found = line[static_cast<std::size_t>(19 + 2 * s)] - '0';
            if (expected != found)
                r.told.is(where, numbered("value ", s, " behind the individual"), expected, found);
        }
        ++r.told.nchecked;
    }
}

void checkgenomes(run &r)
{
    const std::string stem = "Chromosomes/Chromosome";
    int64 n = 0;
    while (std::filesystem::is_directory(r.files.folder + '/' + numbered(stem, n + 1, ""))) ++n;
    if (n == 0) r.told.leaveout("sites and genomes", "the run has removed the folder Chromosomes");
    for (r.chromosomes.reserve(static_cast<std::size_t>(n)); r.chromosomes.n() < n;) {
        chromosome &on = r.chromosomes.emplace_back();
        on.folder = numbered(stem, r.chromosomes.n(), "/");
        if (!readsites(r, on)) {
            r.chromosomes.clear();
            return r.told.leaveout("genomes", "sites can't be told");
        }
        readfounders(r, on);
        readgenomes(r, on);
        checkfrequencies(r, on);
        readsets(r, on);
    }
    if (n == 0) return;
    drop d{r, 1, {}, {}, 0, {}, {}, {}, reals(static_cast<std::size_t>(2 * r.nindiv), 0.0)};
    readediting(d);
    const std::string path = "SimulatedData/NbOfSegSitesPerChrom.txt";
    const textfile counts = r.files.read(path);
    for (d.h = 1; d.h <= n; ++d.h) {
        checkdrop(d);
        for (int64 g = 1; g <= r.ngenerations; ++g) checkgeneration(r, d.h, g);
        r.told.is({path, d.h + 1}, "included sites", double(d.on().nsites), counts(d.h + 1)(3));
        r.told.holds(counts(d.h + 1)(2) >= counts(d.h + 1)(3), {path, d.h + 1},
                     "some of all sites");
    }
    r.files.table("SimulatedData/RecombinationCount.txt", 0, r.nindiv, "crossings", [&](int64 i) {
        return reals{double(i), d.crossings(2 * i - 1), d.crossings(2 * i)};
    });
    checkwholegenome(r);
}
} // namespace checkrun
