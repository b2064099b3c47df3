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
using double2 = std::vector<double>;

std::string numbered(const std::string &before, int64 n, const std::string &behind)
{
    return before + std::to_string(n) + behind;
}

// ------------------------------------------------------------------------ sites

// Included sites: whole blocks, in rising order.
void readsites(run &r, chromosome &on)
{
    statements &told = r.told();
    const std::string path = on.folder + "PhysicalMapIncluded.txt",
                      countfile = on.folder + "SegSitesIncluded.txt";
    on.nsites = r.files.read(countfile).numbers(1).whole(1);
    told.equal({countfile, 1}, "sites beyond whole blocks", 0, on.nsites % 60);
    on.nblocks = on.nsites / 60;
    const textfile file = r.files.read(path);
    told.equal({path}, "included sites", on.nsites, file.size());
    double2 slot(1, 0.0);
    on.position.assign(1, 0.0);
    on.mutation.assign(1, 0.0);
    for (int64 s = 1; s <= on.nsites; ++s) {
        const place where{path, s};
        const numberline line = s <= file.size() ? file.numbers(s) : numberline{};
        told.equal(where, "site", s, line.whole(1));
        told.holds(line(2) > slot.back(), where, "slots rise");
        told.holds(line(3) >= on.position.back() && line(3) <= 1, where, "positions rise, up to 1");
        told.holds((line(4) == 1) == (line(5) > 0), where,
                   "mutations, and they alone, have a carrier");
        slot.push_back(line(2));
        on.position.push_back(line(3));
        on.mutation.push_back(line(4));
    }
}

// Founder haplotypes, and that they are columns of the simulated ones: those at the position of the
// included site, in the order of simulated sites. Mutation sites aren't simulated.
void readfounders(run &r, chromosome &on)
{
    statements &told = r.told();
    const std::string path = on.folder + "MacsHaplotypesIncluded.txt",
                      packedfile = on.folder + "MacsHaplotypesInBlocks.txt",
                      positionfile = on.folder + "PhysicalMapInput.txt";
    const textfile included = r.files.read(path),
                   simulated = r.files.read(on.folder + "MacsHaplotypes.txt"),
                   positions = r.files.read(positionfile);
    const int64 n = included.size();
    const std::vector<int64> packed = r.files.records(packedfile, n * on.nblocks);
    if (static_cast<int64>(packed.size()) != n * on.nblocks) return;
    told.equal({path}, "founder haplotypes", simulated.size(), n);
    for (int64 k = 1; k <= n; ++k)
        for (int64 b = 0; b < on.nblocks; ++b)
            on.founders.push_back(packed[static_cast<std::size_t>(b * n + k - 1)]);
    for (int64 k = 1; k <= n; ++k) {
        const std::string_view line = included.line(k);
        int64 wrong = static_cast<int64>(line.size()) == 2 * on.nsites ? 0 : on.nsites;
        for (int64 s = 1; s <= on.nsites && wrong == 0; ++s)
            if (line[static_cast<std::size_t>(2 * s - 1)] - '0' != alleleof(on.founder(k), s))
                wrong = s;
        told.equal({path, k}, "site that differs from the haplotype in blocks", 0, wrong);
    }
    double2 position;
    for (int64 i = 1; i <= positions.size(); ++i)
        for (const double x : positions.numbers(i).values) position.push_back(x);
    std::size_t j = 0;
    const auto same = [&](int64 site) {
        for (int64 k = 1; k <= std::min(n, simulated.size()); ++k) {
            const std::string_view line = simulated.line(k);
            if (2 * j + 1 >= line.size() || line[2 * j + 1] - '0' != alleleof(on.founder(k), site))
                return false;
        }
        return std::fabs(position[j] - on.position[static_cast<std::size_t>(site)]) < tendecimals;
    };
    for (int64 s = 1; s <= on.nsites; ++s) {
        const place where{path, s, "site"};
        if (on.mutation[static_cast<std::size_t>(s)] == 1) {
            int carriers = 0;
            for (int64 k = 1; k <= n; ++k) carriers += alleleof(on.founder(k), s);
            told.equal(where, "founders that carry a mutation yet to come", 0, carriers);
            continue;
        }
        const std::size_t from = j;
        while (j < position.size() && !same(s)) ++j;
        if (!told.holds(j < position.size(), where, "a simulated site behind the one before"))
            j = from;
        else
            ++j;
    }
}

void readgenomes(run &r, chromosome &on)
{
    on.genomes.assign(static_cast<std::size_t>(2 * r.nindiv * on.nblocks), 0);
    for (int64 g = 1; g <= r.ngenerations; ++g) {
        const std::string path = numbered(on.folder + "GenomeGeneration", g, ".txt");
        const int64 n = r.size(g);
        const std::vector<int64> packed = r.files.records(path, 2 * n * on.nblocks);
        if (static_cast<int64>(packed.size()) != 2 * n * on.nblocks) continue;
        for (int64 i = 1; i <= n; ++i) {
            bool small = true;
            for (int64 side = 1; side <= 2; ++side)
                for (int64 b = 0; b < on.nblocks; ++b) {
                    const int64 block =
                        packed[static_cast<std::size_t>(((side - 1) * on.nblocks + b) * n + i - 1)];
                    on.strand(r.first(g) + i - 1, side)[b] = block;
                    small = small && block >= 0 && block < int64{1} << 60;
                }
            r.told().holds(small, {path, r.first(g) + i - 1, "individual"}, "blocks of 60 bits");
        }
    }
}

// Minor allele frequencies, among individuals of generation 1 without known parents.
void checkfrequencies(run &r, chromosome &on)
{
    on.maf.assign(static_cast<std::size_t>(on.nsites) + 1, 0.0);
    double nbase = 0;
    for (int64 i = 1; i <= r.end(1); ++i) {
        if (r.of(i).parent[1] > 0 || r.of(i).parent[2] > 0) continue;
        ++nbase;
        for (int64 s = 1; s <= on.nsites; ++s)
            on.maf[static_cast<std::size_t>(s)] +=
                alleleof(on.strand(i, 1), s) + alleleof(on.strand(i, 2), s);
    }
    for (double &f : on.maf) f = std::min(f / (2 * nbase), 1 - f / (2 * nbase));
    if (r.merged)
        return r.told().skip("minor allele frequencies",
                             "they are those of the burn-in before the merge");
    r.files.tableholds(on.folder + "MinorAlleleFrequency.txt", 1, on.nsites,
                       "minor allele frequency", [&](int64 s, double2 &expected) {
                           expected = {double(s), on.maf[static_cast<std::size_t>(s)]};
                       });
}

// A set of sites: number, site, frequency (behind a merge a second one of QTN), position, and of
// QTN mutation mark and carrier.
void readset(run &r, chromosome &on, const std::string &name, const std::string &file, int64 before)
{
    const std::string path = on.folder + file, summary = on.folder + name + "Summary.txt";
    const textfile text = r.files.read(path);
    if (!r.files.there(path) || text.size() == 0) return;
    std::vector<int64> &sites = on.sets[name];
    double heterozygosity = 0;
    int64 earlier = 0;
    for (int64 k = 1; k <= text.size(); ++k) {
        const int64 site = text.numbers(k).whole(2);
        if (!r.told().holds(site > earlier && site <= on.nsites, {path, k},
                            "sites of the chromosome, rising"))
            sites.push_back(1);
        else
            sites.push_back(earlier = site);
        const double f = on.maf[static_cast<std::size_t>(sites.back())];
        heterozygosity += 2 * f * (1 - f) / static_cast<double>(text.size());
    }
    const int64 ncolumns = text.numbers(1).size();
    r.files.tableholds(path, 0, text.size(), "number, site, frequency, position, mutation",
                       [&](int64 k, double2 &expected) {
                           const std::size_t site =
                               static_cast<std::size_t>(sites[static_cast<std::size_t>(k - 1)]);
                           expected = {double(k + (r.merged ? before : 0)), double(site)};
                           expected.push_back(r.merged ? any : on.maf[site]);
                           if (ncolumns % 2 == 1) expected.push_back(any);
                           expected.push_back(on.position[site]);
                           if (ncolumns > 5)
                               expected.insert(expected.end(), {on.mutation[site], any});
                       });
    if (!r.merged)
        r.told().near({summary, 1}, "mean heterozygosity", heterozygosity,
                      r.files.read(summary).numbers(1)(1), 1e-12);
}

void readsets(run &r, int64 h)
{
    chromosome &on = r.chromosomes[static_cast<std::size_t>(h)];
    const auto add = [&](const std::string &name, const std::string &file) {
        if (r.files.there(on.folder + file))
            readset(r, on, name, file, static_cast<int64>(r.sitesof(name).size()));
    };
    for (int64 e = 1; e <= r.nchips; ++e)
        add(numbered("Chip", e, ""), numbered("Chip", e, "SnpInformation.txt"));
    add("UnrestrictedQtn", "UnRestrictedQtnInformation.txt");
    add("RestrictedQtn", "RestrictedQtnInformation.txt");
    add("RecombinationQtn", "RecombinationQtnInformation.txt");
    const std::string path = on.folder + "NbOfQtnMutationsAndSnp.txt";
    double2 expected = {double(on.sets["UnrestrictedQtn"].size()),
                        std::count(on.mutation.begin(), on.mutation.end(), 1.0) + 0.0};
    for (int64 e = 1; e <= r.nchips; ++e)
        expected.push_back(double(on.sets[numbered("Chip", e, "")].size()));
    const numberline counts = r.files.read(path).numbers(1);
    for (std::size_t k = 0; k < expected.size(); ++k)
        r.told().near({path, 1}, "QTN, mutations and SNP", expected[k],
                      counts(static_cast<int64>(k + 1)), 0);
}

// ------------------------------------------------------------------------ the drop

// What editing makes of a parent's strands for the gametes of a generation, and who carries a
// drive.
struct editing {
    std::map<std::tuple<int64, int64, int64>, std::map<int64, int64>>
        alleles; // generation, parent, chromosome: site, allele
    std::set<std::tuple<int64, int64, int64>> drives; // individual, site, side
    bool drive = false;
};

editing readediting(run &r)
{
    editing edits;
    const std::vector<genomesite> qtn = r.sitesof(r.selectedset);
    for (int64 g = r.nburnin + 1; g <= r.ngenerations; ++g) {
        const std::string path =
            numbered("Selection/SelectionFolder", g - r.nburnin, "/GeneEditingInformation.txt");
        if (!r.files.there(path)) continue;
        const textfile file = r.files.read(path);
        for (int64 k = 2; k <= file.size(); ++k) {
            const numberline line = file.numbers(k);
            const int64 parent = line.whole(1), q = line.whole(2), aim = line.whole(4);
            if (!r.told().holds(parent >= r.first(g - 1) && parent <= r.end(g - 1) && q >= 1 &&
                                    q <= std::ssize(qtn) && (aim == 0 || aim == 2),
                                {path, k}, "a candidate, a QTN, and 0 or 2 as aim"))
                continue;
            const genomesite &at = qtn[static_cast<std::size_t>(q - 1)];
            r.told().equal({path, k}, "genotype found", at.genotype(parent), line.whole(3));
            edits.alleles[{g, parent, at.h}][at.site] = aim / 2;
        }
    }
    edits.drive = r.spec.word("GeneDriveOnOff") == "on";
    if (r.files.there("SimulatedData/GeneDriveQtnPresence.txt")) {
        const textfile file = r.files.read("SimulatedData/GeneDriveQtnPresence.txt");
        for (int64 k = 2; k <= file.size(); ++k) {
            const numberline line = file.numbers(k);
            edits.drives.insert({line.whole(1), line.whole(2), line.whole(3)});
        }
    }
    return edits;
}

struct gameteline {
    int64 strand = 1;
    std::vector<int64> crossings; // last site before each
};

// Lines 2i - 1 and 2i are the gametes of individual i.
std::vector<gameteline> readtracking(run &r, const chromosome &on, const std::string &path)
{
    std::vector<gameteline> lines;
    const textfile file = r.files.read(path);
    if (!r.told().equal({path}, "lines", 2 * r.nindiv, file.size())) return lines;
    for (int64 k = 1; k <= file.size(); ++k) {
        const place where{path, k};
        const numberline line = file.numbers(k);
        gameteline gamete{line.whole(2), {}};
        r.told().equal(where, "individual", (k + 1) / 2, line.whole(1));
        r.told().holds(gamete.strand == 1 || gamete.strand == 2, where, "first strand 1 or 2");
        r.told().equal(where, "crossings in the line", line.whole(3), line.size() - 3);
        int64 block = -1;
        for (int64 c = 4; c <= line.size(); ++c) {
            const int64 site = line.whole(c);
            if (!r.told().holds(site >= 1 && site <= on.nsites && blockof(site) > block, where,
                                "crossings rise, one in a block"))
                continue;
            block = blockof(site);
            gamete.crossings.push_back(site);
        }
        lines.push_back(gamete);
    }
    return lines;
}

// The gamete that a line makes of two strands, block by block.
std::vector<int64> cross(const gameteline &line, const int64 *one, const int64 *two, int64 nblocks)
{
    const int64 *strands[] = {one, two};
    int64 now = line.strand == 2;
    std::size_t c = 0;
    std::vector<int64> gamete;
    for (int64 b = 0; b < nblocks; ++b) {
        if (c == line.crossings.size() || blockof(line.crossings[c]) != b) {
            gamete.push_back(strands[now][b]);
            continue;
        }
        const int64 behind =
            bitof(line.crossings[c++]) - 1; // sites of the block behind the crossing
        gamete.push_back((strands[now][b] & ~behind) | (strands[1 - now][b] & behind));
        now = 1 - now;
    }
    return gamete;
}

struct drop {
    run &r;
    int64 h;
    const chromosome &on;
    const editing &edits;
    std::vector<gameteline> tracking;
    std::map<int64, numberline> base; // founder haplotypes of an individual's sides
    std::map<std::pair<int64, int64>, std::vector<int64>> mutations; // individual, side: sites
    int64 lastbase = 0; // first individual of the last generation with an unknown parent
};

// The parent's two strands as it passes them on; none where its founder haplotypes aren't on file.
std::vector<int64> parentstrands(const drop &d, int64 i, int64 side)
{
    const int64 n = d.on.nblocks, parent = d.r.of(i).parent[side];
    std::vector<int64> strands;
    if (parent == 0) {
        const auto found = d.base.find(i);
        if (found == d.base.end()) return strands;
        for (int64 k = 2 * side; k <= 2 * side + 1; ++k) {
            const int64 haplotype = found->second.whole(k);
            if (haplotype < 1 || haplotype * n > std::ssize(d.on.founders)) return {};
            strands.insert(strands.end(), d.on.founder(haplotype), d.on.founder(haplotype) + n);
        }
        return strands;
    }
    strands.assign(d.on.strand(parent, 1), d.on.strand(parent, 1) + 2 * n);
    if (const auto found = d.edits.alleles.find({d.r.of(i).generation, parent, d.h});
        found != d.edits.alleles.end())
        for (const auto &[site, allele] : found->second)
            for (int64 *strand : {strands.data(), strands.data() + n})
                strand[blockof(site)] = allele ? strand[blockof(site)] | bitof(site)
                                               : strand[blockof(site)] & ~bitof(site);
    return strands;
}

// A drive on the other gamete has converted this site. Flags of an earlier run are gone.
bool converted(const drop &d, int64 i, int64 side, int64 site)
{
    if (d.r.of(i).generation <= d.r.nburnin || !d.edits.drive) return false;
    if (alleleof(d.on.strand(i, 1), site) != alleleof(d.on.strand(i, 2), site)) return false;
    const std::vector<int64> &qtn = d.on.sets.at(d.r.selectedset);
    if (!std::binary_search(qtn.begin(), qtn.end(), site)) return false;
    if (d.r.of(i).generation < d.r.firstgeneration) {
        d.r.told().skip("drives of earlier runs", "the file of drives is that of the last run");
        return true;
    }
    return d.edits.drives.contains({i, site, side}) && d.edits.drives.contains({i, site, 3 - side});
}

void checkgamete(const drop &d, int64 i, int64 side)
{
    run &r = d.r;
    const individual &one = r.of(i);
    const std::string path = numbered(d.on.folder + "GenomeGeneration", one.generation, ".txt");
    const std::size_t at = static_cast<std::size_t>(2 * (i - 1) + side - 1);
    std::vector<int64> expected;
    if (side == 2 && r.doubledhaploids.contains(one.generation)) {
        r.told().holds(d.tracking[at].crossings == d.tracking[at - 1].crossings,
                       {d.on.folder + "RecombinationTracking.txt", 2 * i},
                       "a doubled haploid repeats its gamete");
        expected.assign(d.on.strand(i, 1), d.on.strand(i, 2));
    } else {
        if (r.merged && one.path.empty())
            return r.told().skip("the drop of merged individuals",
                                 "their parents aren't in the folder");
        const std::vector<int64> strands = parentstrands(d, i, side);
        if (strands.empty()) {
            if (i < d.lastbase)
                return r.told().skip("the drop of the first individuals with unknown parents",
                                     "a later generation has such ones, and the file holds its "
                                     "founder haplotypes alone");
            r.told().holds(false,
                           {d.on.folder + "BaseIndividualGameteTracking.txt", i, "individual"},
                           "founder haplotypes of an unknown parent");
            return;
        }
        expected =
            cross(d.tracking[at], strands.data(), strands.data() + d.on.nblocks, d.on.nblocks);
        if (const auto found = d.mutations.find({i, side}); found != d.mutations.end())
            for (const int64 site : found->second)
                expected[static_cast<std::size_t>(blockof(site))] |= bitof(site);
    }
    int64 wrong = 0;
    for (int64 b = 0; b < d.on.nblocks; ++b) {
        if (expected[static_cast<std::size_t>(b)] == d.on.strand(i, side)[b]) continue;
        for (int64 s = 60 * b + 1; s <= 60 * b + 60 && wrong == 0; ++s)
            if (alleleof(expected.data(), s) != alleleof(d.on.strand(i, side), s) &&
                !converted(d, i, side, s))
                wrong = s;
    }
    const place where{path, i, "individual"};
    if (wrong == 0)
        r.told().holds(true, where, "");
    else
        r.told().equal(where,
                       "gamete " + std::to_string(side) + ", allele at site " +
                           std::to_string(wrong) + " by the drop",
                       alleleof(expected.data(), wrong), alleleof(d.on.strand(i, side), wrong));
}

// Carriers are marked; where a mutation arises twice behind a merge the map tells no carrier.
void readmutations(drop &d)
{
    const std::string path = d.on.folder + "MutDeNovoInfo.txt";
    const textfile file = d.r.files.read(path),
                   map = d.r.files.read(d.on.folder + "PhysicalMapIncluded.txt");
    std::set<int64> sites;
    for (int64 k = 1; k <= file.size(); ++k) {
        const numberline line = file.numbers(k);
        const int64 site = line.whole(5);
        if (!d.r.told().holds(site >= 1 && site <= d.on.nsites &&
                                  d.on.mutation[static_cast<std::size_t>(site)] == 1,
                              {path, k}, "a mutation site"))
            continue;
        sites.insert(site);
        d.r.told().equal({path, k}, "slot", map.numbers(site).whole(2), line.whole(1));
        if (!d.r.merged)
            d.r.told().equal({path, k}, "carrier, by the map of included sites",
                             map.numbers(site).whole(5), line.whole(2));
        d.mutations[{line.whole(2), line.whole(3)}].push_back(site);
    }
    d.r.told().equal({path}, "mutation sites",
                     std::count(d.on.mutation.begin(), d.on.mutation.end(), 1.0),
                     std::ssize(sites));
}

// counts gets the crossings of each gamete.
void checkdrop(run &r, int64 h, const editing &edits, std::vector<int64> &counts)
{
    const chromosome &on = r.chromosomes[static_cast<std::size_t>(h)];
    drop d{r,  h,  on, edits, readtracking(r, on, on.folder + "RecombinationTracking.txt"),
           {}, {}, 0};
    if (d.tracking.empty()) return;
    const textfile base = r.files.read(on.folder + "BaseIndividualGameteTracking.txt");
    for (int64 k = 1; k <= base.size(); ++k) d.base[base.numbers(k).whole(1)] = base.numbers(k);
    for (int64 i = 1; i <= r.nindiv; ++i)
        if (r.of(i).parent[1] == 0 || r.of(i).parent[2] == 0)
            d.lastbase = r.first(r.of(i).generation);
    readmutations(d);
    int64 highest = 1; // of the generations that the last run made
    for (int64 i = 1; i <= r.nindiv; ++i)
        for (const int64 side : {1, 2}) {
            checkgamete(d, i, side);
            const gameteline &line = d.tracking[static_cast<std::size_t>(2 * (i - 1) + side - 1)];
            counts[static_cast<std::size_t>(2 * (i - 1) + side - 1)] += std::ssize(line.crossings);
            if (!line.crossings.empty() && r.of(i).generation >= r.firstgeneration)
                highest = std::max(highest, line.crossings.back());
        }
    // A run that begins in selection generations goes on from what it finds, also from crossings of
    // individuals that it makes anew.
    const std::string path = "SimulatedData/GlobalRecombLocationMax.txt";
    const numberline line = r.files.read(path).numbers(h);
    r.told().equal({path, h}, "chromosome", h, line.whole(1));
    if (!r.merged && r.firstgeneration <= r.nburnin)
        r.told().equal({path, h}, "highest crossing", highest, line.whole(2));
    else if (!r.merged)
        r.told().holds(line(2) >= double(highest), {path, h}, "not below the highest crossing");
}

// ------------------------------------------------------------------------ what is cut from genomes

void checkmarkers(run &r, int64 h, int64 g)
{
    const chromosome &on = r.chromosomes[static_cast<std::size_t>(h)];
    const int64 n = r.size(g), before = r.first(g) - 1;
    for (const auto &[name, sites] : on.sets) {
        const int64 nsites = std::ssize(sites);
        const std::string stem = on.folder + name;
        const auto allele = [&](int64 i, int64 side, int64 k) {
            return alleleof(on.strand(before + i, side), sites[static_cast<std::size_t>(k - 1)]);
        };
        r.files.allelesholds(
            numbered(stem + "PhaseGeneration", g, ".txt"), 0, 2 * n, nsites,
            [&](int64 line) { return before + (line + 1) / 2; },
            [&](int64 line, int64 k) { return allele((line + 1) / 2, 2 - line % 2, k); });
        r.files.allelesholds(
            numbered(stem + "GenotypeGeneration", g, ".txt"), 0, n, nsites,
            [&](int64 line) { return before + line; },
            [&](int64 line, int64 k) { return allele(line, 1, k) + allele(line, 2, k); });
        if (name.starts_with("Chip")) continue;
        if (r.merged && g == 1) {
            r.told().skip("allele frequencies of generation 1",
                          "a merge counts them among all merged individuals");
            continue;
        }
        r.files.tableholds(numbered(stem + "AlleleFreqGeneration", g, ".txt"), 0, nsites,
                           "number, site, allele frequency", [&](int64 k, double2 &expected) {
                               double count = 0;
                               for (int64 i = 1; i <= n; ++i)
                                   count += allele(i, 1, k) + allele(i, 2, k);
                               expected = {double(k),
                                           double(sites[static_cast<std::size_t>(k - 1)]),
                                           count / (2.0 * double(n))};
                           });
    }
}

void checksequencerecords(run &r, int64 h, int64 g)
{
    const chromosome &on = r.chromosomes[static_cast<std::size_t>(h)];
    for (const int64 persides : {1, 2}) {
        const std::string path = numbered(
            on.folder + (persides == 1 ? "SequenceGenotypeGeneration" : "SequencePhaseGeneration"),
            g, ".bin");
        if (!r.files.there(path)) continue;
        const std::vector<int64> items = r.files.records(path, 1 + on.nsites);
        if (!r.told().equal({path}, "records", persides * r.size(g),
                            std::ssize(items) / (1 + on.nsites)))
            continue;
        const int64 *item = items.data();
        for (int64 k = 0; k < persides * r.size(g); ++k) {
            const int64 i = r.first(g) + k / persides, side = 1 + k % 2;
            int64 wrong = *item++ == i ? 0 : on.nsites + 1;
            for (int64 s = 1; s <= on.nsites; ++s, ++item)
                if (*item != (persides == 2
                                  ? alleleof(on.strand(i, side), s)
                                  : alleleof(on.strand(i, 1), s) + alleleof(on.strand(i, 2), s)))
                    wrong = s;
            r.told().equal({path, k + 1, "record"}, "site that differs from the genome", 0, wrong);
        }
    }
}

// Phases and genotypes of sites of the whole genome, all individuals; without genomes, that the
// genotypes are sums of the phases.
void checkallindividuals(run &r, const std::string &stem, int64 ntitles,
                         const std::vector<genomesite> &sites)
{
    const int64 n = std::ssize(sites);
    const auto at = [&](int64 k) -> const genomesite & {
        return sites[static_cast<std::size_t>(k - 1)];
    };
    if (r.hasgenomes()) {
        r.files.allelesholds(
            stem + "Phase.txt", ntitles, 2 * r.nindiv, n, [](int64 line) { return (line + 1) / 2; },
            [&](int64 line, int64 k) { return at(k).allele((line + 1) / 2, 2 - line % 2); });
        r.files.allelesholds(
            stem + "Genotype.txt", ntitles, r.nindiv, n, [](int64 line) { return line; },
            [&](int64 line, int64 k) { return at(k).genotype(line); });
        return;
    }
    const textfile phases = r.files.read(stem + "Phase.txt");
    if (!r.told().equal({stem + "Phase.txt"}, "lines", ntitles + 2 * r.nindiv, phases.size()))
        return;
    const auto allele = [&](int64 i, int64 side, int64 k) {
        const std::string_view line = phases.line(ntitles + 2 * i - 2 + side);
        const std::size_t column = static_cast<std::size_t>(19 + 2 * k);
        return column < line.size() ? line[column] - '0' : -9;
    };
    r.files.allelesholds(
        stem + "Genotype.txt", ntitles, r.nindiv, (std::ssize(phases.line(ntitles + 1)) - 20) / 2,
        [](int64 line) { return line; },
        [&](int64 line, int64 k) { return allele(line, 1, k) + allele(line, 2, k); });
}

void checkwholegenome(run &r)
{
    for (int64 e = 1; e <= r.nchips; ++e) {
        const std::string name = numbered("Chip", e, "");
        const std::vector<genomesite> sites = r.sitesof(name);
        checkallindividuals(r, "SimulatedData/AllIndividualsSnpChips/" + name, 0, sites);
        if (!r.hasgenomes()) continue;
        r.files.tableholds("SimulatedData/" + name + "SnpInformation.txt", 1, std::ssize(sites),
                           "number, chromosome, site, frequency, position",
                           [&](int64 k, double2 &expected) {
                               const genomesite &at = sites[static_cast<std::size_t>(k - 1)];
                               const std::size_t s = static_cast<std::size_t>(at.site);
                               expected = {double(k), double(at.h), double(at.site),
                                           r.merged ? any : at.on->maf[s], at.on->position[s]};
                           });
    }
    if (!r.files.there("SimulatedData/FullSequencePhase.txt")) return;
    std::vector<genomesite> sites;
    for (int64 h = 1; h <= r.nchrom; ++h)
        for (int64 s = 1; s <= r.chromosomes[static_cast<std::size_t>(h)].nsites; ++s)
            sites.push_back({&r.chromosomes[static_cast<std::size_t>(h)], h, s});
    checkallindividuals(r, "SimulatedData/FullSequence", 1, sites);
    const std::string path = "SimulatedData/FullSequencePhysicalMapIncluded.txt";
    if (r.hasgenomes() && r.files.there(path) && r.files.read(path).size() > 0)
        r.files.tableholds(path, 0, std::ssize(sites), "chromosome, site, position",
                           [&](int64 k, double2 &expected) {
                               const genomesite &at = sites[static_cast<std::size_t>(k - 1)];
                               expected = {double(at.h), double(at.site),
                                           at.on->position[static_cast<std::size_t>(at.site)]};
                           });
}
} // namespace

void checkgenomes(run &r)
{
    while (std::filesystem::is_directory(r.files.folder +
                                         numbered("/Chromosomes/Chromosome", r.nchrom + 1, "")))
        ++r.nchrom;
    r.chromosomes.resize(static_cast<std::size_t>(r.nchrom) + 1);
    if (!r.hasgenomes())
        r.told().skip("sites, founders and genomes", "the run has removed the folder Chromosomes");
    for (int64 h = 1; h <= r.nchrom; ++h) {
        chromosome &on = r.chromosomes[static_cast<std::size_t>(h)];
        on.folder = numbered("Chromosomes/Chromosome", h, "/");
        readsites(r, on);
        readfounders(r, on);
        readgenomes(r, on);
        checkfrequencies(r, on);
        readsets(r, h);
    }
    const editing edits = r.hasgenomes() ? readediting(r) : editing{};
    std::vector<int64> counts(static_cast<std::size_t>(2 * r.nindiv), 0);
    for (int64 h = 1; h <= r.nchrom; ++h) {
        checkdrop(r, h, edits, counts);
        for (int64 g = 1; g <= r.ngenerations; ++g) {
            checkmarkers(r, h, g);
            checksequencerecords(r, h, g);
        }
    }
    if (r.hasgenomes())
        r.files.tableholds("SimulatedData/RecombinationCount.txt", 0, r.nindiv, "crossings",
                           [&](int64 i, double2 &expected) {
                               expected = {double(i),
                                           double(counts[static_cast<std::size_t>(2 * i - 2)]),
                                           double(counts[static_cast<std::size_t>(2 * i - 1)])};
                           });
    const std::string path = "SimulatedData/NbOfSegSitesPerChrom.txt";
    for (int64 h = 1; h <= r.nchrom; ++h) {
        const numberline line = r.files.read(path).numbers(h + 1);
        r.told().equal({path, h + 1}, "included sites",
                       r.chromosomes[static_cast<std::size_t>(h)].nsites, line.whole(3));
        r.told().holds(line(2) >= line(3), {path, h + 1}, "included sites are some of all");
    }
    checkwholegenome(r);
}
} // namespace checkrun
