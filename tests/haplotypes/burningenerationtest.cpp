#include "haplotypes/burningeneration.h"

#include "haplotypes/droplines.h"
#include "haplotypes/genomefiles.h"
#include "slowdrop.h"
#include "testsupport.h"

#include <array>
#include <filesystem>
#include <map>

namespace
{
// Sire and dam of each individual, generation by generation.
using pedigreetext = std::vector<std::vector<std::pair<int64, int64>>>;

// What the plain drop leaves of one chromosome.
struct slowchromosome {
    std::map<int64, std::array<std::string, 2>> genomes; // by individual, from 1
    std::vector<std::vector<double>> tracking, base;
};
} // namespace

// A small simulation of one or two chromosomes of 3 blocks, dropped twice: packed, and on strings.
class burningeneration : public infolder
{
  protected:
    static constexpr int64 nblock = 3, nhaplos = 7, nchrom = 2;
    state s;
    std::vector<std::string> founders[nchrom];

    void build(const pedigreetext &pedigree)
    {
        const int64 ngen = static_cast<int64>(pedigree.size());
        s.random.idum = -20031;
        s.founders.nchrom = nchrom;
        s.founders.morgans = 1.3;
        s.sites.nsegregincl = 60 * nblock;
        s.sites.nhaplos = nhaplos;
        s.haplo.nblock = nblock;
        s.pop.ngen = ngen;
        s.pop.nindivinthisgen.allocate({0, ngen});
        s.pop.cumindivnbtogen.allocate({0, ngen});
        s.pop.createdhinthisgen.allocate(ngen);
        for (int64 g = 1; g <= ngen; ++g) {
            const auto &rows = pedigree[static_cast<std::size_t>(g - 1)];
            s.pop.nindivinthisgen(g) = static_cast<int64>(rows.size());
            s.pop.cumindivnbtogen(g) = s.pop.cumindivnbtogen(g - 1) + s.pop.nindivinthisgen(g);
        }
        s.pop.nindivp = s.pop.cumindivnbtogen(ngen);
        s.pedi.ped.allocate(s.pop.nindivp);
        int64 id = 0;
        for (const auto &rows : pedigree) {
            for (const auto &[sire, dam] : rows) {
                ++id;
                s.pedi.ped(id).newid = id;
                s.pedi.ped(id).newsire = sire;
                s.pedi.ped(id).newdam = dam;
            }
        }
        s.haplo.recombcount.allocate(s.pop.nindivp, 2);
        s.haplo.globalrecomblocationmax.allocate(nchrom, 1);
        s.haplo.recombfactperblock.allocate(nblock);
        s.haplo.recombrateperblock.allocate(nblock);
        s.chips.minorallelefreq.allocate(60 * nblock);
        s.sites.nmutinclglobal.allocate(nchrom);
        s.sites.denovoinfo.allocate(nchrom, 4, 5);
        s.sites.indivmutindicator.allocate(nchrom, s.pop.nindivp);
        std::filesystem::create_directories("SimulatedData");
        for (int64 chrom = 1; chrom <= nchrom; ++chrom) makefounders(chrom);
    }

    void makefounders(int64 chrom)
    {
        std::filesystem::create_directories(chromfolder(chrom));
        haplotypestore h;
        h.allocate(nhaplos, nblock);
        auto &strings = founders[chrom - 1];
        for (int64 i = 1; i <= nhaplos; ++i) {
            strings.push_back(randomalleles(60 * nblock, -100 * chrom - i));
            strings.back()[70] = '1'; // site 71 is fixed
            const std::vector<int64> blocks = packed(strings.back());
            std::copy(blocks.begin(), blocks.end(), h.haplotype(i));
        }
        writehaplotypes(chromfolder(chrom) + "MacsHaplotypesInBlocks.txt", h);
    }

    void addmutation(int64 chrom, int64 carrier, int64 gamete, int64 site)
    {
        const int64 j = ++s.sites.nmutinclglobal(chrom);
        const int64 row[5] = {site, carrier, gamete, site / 60 + 1, site};
        for (int64 f = 1; f <= 5; ++f) s.sites.denovoinfo(chrom, j, f) = row[f - 1];
        s.sites.indivmutindicator(chrom, carrier) = 1;
    }

    void drop(int64 chrom, int64 gen, bool parentsloaded = false)
    {
        s.haplo.tmpgenome.allocate(s.pop.nindivinthisgen(gen), nblock);
        genedropburninindiv(s, chrom, gen, firstindivofgen(s, gen), lastindivofgen(s, gen),
                            parentsloaded);
    }

    // All generations of a chromosome; inmemory: each is handed to the next in oldtmpgenome.
    void dropchromosome(int64 chrom, bool inmemory)
    {
        s.haplo.haplotypes.release();
        for (int64 gen = 1; gen <= s.pop.ngen; ++gen) {
            drop(chrom, gen, inmemory);
            if (inmemory) std::swap(s.haplo.tmpgenome, s.haplo.oldtmpgenome);
        }
    }

    slowchromosome dropslowly(randomstream &random, int64 chrom)
    {
        slowchromosome slow;
        const array1<double> rates(nblock, 1.3 * static_cast<double>(1.0f / 3.0f));
        for (int64 gen = 1; gen <= s.pop.ngen; ++gen) {
            bool firstbase = true;
            const bool dh = s.pop.ngendh > 0 && s.pop.createdhinthisgen(gen) == 1;
            for (int64 i = firstindivofgen(s, gen); i <= lastindivofgen(s, gen); ++i) {
                auto &genome = slow.genomes[i];
                std::vector<double> base = {double(i), -99, -99, -99, -99};
                const int64 parents[2] = {s.pedi.ped(i).newsire, s.pedi.ped(i).newdam};
                for (std::size_t side = 0; side < 2; ++side) {
                    std::vector<std::string> strands;
                    if (dh && side == 1) {
                        slow.tracking.push_back(slow.tracking.back());
                        break;
                    }
                    for (std::size_t strand = 0; strand < 2; ++strand) {
                        if (parents[side] > 0) {
                            strands.push_back(slow.genomes[parents[side]][strand]);
                            continue;
                        }
                        const std::size_t x = static_cast<std::size_t>(nhaplos * ran1(random));
                        strands.push_back(founders[chrom - 1][x]);
                        base[1 + 2 * side + strand] = static_cast<double>(x + 1);
                    }
                    const int64 firstpos = ran1(random) < 0.5 ? 1 : 2;
                    const slowgamete gamete = makeslowgamete(random, strands, firstpos, rates);
                    genome[side] = gamete.alleles;
                    slow.tracking.push_back(
                        {double(i), double(firstpos), double(gamete.crossings.size())});
                    for (int64 site : gamete.crossings)
                        slow.tracking.back().push_back(static_cast<double>(site));
                }
                for (int64 j = 1; j <= s.sites.nmutinclglobal(chrom); ++j) {
                    const std::size_t side =
                        static_cast<std::size_t>(s.sites.denovoinfo(chrom, j, 3) - 1);
                    if (s.sites.denovoinfo(chrom, j, 2) == i && !(dh && side == 1))
                        genome[side]
                              [static_cast<std::size_t>(s.sites.denovoinfo(chrom, j, 5) - 1)] = '1';
                }
                if (dh) genome[1] = genome[0];
                if (parents[0] == 0 || parents[1] == 0) {
                    if (std::exchange(firstbase, false)) slow.base.clear();
                    slow.base.push_back(base);
                }
            }
        }
        return slow;
    }

    // Every site of every individual, every tracking and base line.
    void compare(int64 chrom, const slowchromosome &slow)
    {
        for (int64 gen = 1; gen <= s.pop.ngen; ++gen) {
            genomestore g;
            readgenome(genomefile(chrom, gen), g, s.pop.nindivinthisgen(gen), nblock);
            for (int64 i = firstindivofgen(s, gen); i <= lastindivofgen(s, gen); ++i)
                for (int64 m = 1; m <= 2; ++m)
                    ASSERT_EQ(unpacked(g.gamete(i - firstindivofgen(s, gen) + 1, m), nblock),
                              slow.genomes.at(i)[static_cast<std::size_t>(m - 1)])
                        << "chromosome " << chrom << " individual " << i << " gamete " << m;
        }
        EXPECT_EQ(numbers(chromfolder(chrom) + "RecombinationTracking.txt"), slow.tracking);
        EXPECT_EQ(numbers(chromfolder(chrom) + "BaseIndividualGameteTracking.txt"), slow.base);
    }

    static std::vector<std::vector<double>> numbers(const std::string &path)
    {
        std::vector<std::vector<double>> rows;
        for (const std::string &line : readlines(path)) rows.push_back(numbersof(line));
        return rows;
    }

    // Both drops of both chromosomes, and the counts over them.
    void dropbothways(bool inmemory)
    {
        randomstream random = s.random;
        std::map<int64, std::array<double, 2>> counts;
        double highest = 1;
        for (int64 chrom = 1; chrom <= nchrom; ++chrom) {
            dropchromosome(chrom, inmemory);
            const slowchromosome slow = dropslowly(random, chrom);
            compare(chrom, slow);
            for (std::size_t t = 0; t < slow.tracking.size(); ++t) {
                const auto &line = slow.tracking[t];
                counts[static_cast<int64>(line[0])][t % 2] += line[2];
                if (chrom == 2 && line[2] > 0) highest = std::max(highest, line.back());
            }
        }
        EXPECT_EQ(ran1(s.random), ran1(random));
        EXPECT_EQ(static_cast<double>(s.haplo.globalrecomblocationmax(2)), highest);
        const auto lines = readlines("SimulatedData/RecombinationCount.txt");
        ASSERT_EQ(static_cast<int64>(lines.size()), s.pop.nindivp);
        for (int64 i = 1; i <= s.pop.nindivp; ++i) {
            // A doubled haploid's gamete counts on both sides.
            EXPECT_EQ(
                lines[static_cast<std::size_t>(i - 1)],
                freeline(i, static_cast<int64>(counts[i][0]), static_cast<int64>(counts[i][1])));
        }
    }

    // Generation 2 selfs and crosses; the third consists of doubled haploids.
    void buildinternal()
    {
        build({{{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}},
               {{1, 2}, {3, 3}, {5, 4}, {1, 1}},
               {{6, 7}, {8, 7}, {9, 6}, {6, 6}, {7, 9}}});
        s.pedi.pedigreestatus = "internal";
    }
};

TEST_F(burningeneration, internalpedigree)
{
    buildinternal();
    s.pop.ngendh = 1;
    s.pop.createdhinthisgen(3) = 1;
    addmutation(1, 7, 2, 120); // passed on from its carrier
    addmutation(1, 10, 1, 1);  // in both gametes of a doubled haploid
    addmutation(1, 11, 2, 61); // overwritten in a doubled haploid
    addmutation(2, 10, 1, 180);
    dropbothways(true);
    EXPECT_EQ(readlines(chromfolder(1) + "BaseIndividualGameteTracking.txt").size(), 5u);
}

// Parents earlier in the same generation and in any earlier one; unknown parents in later
// generations, where one side may be known.
TEST_F(burningeneration, externalpedigree)
{
    build({{{0, 0}, {0, 0}, {1, 2}, {0, 3}},
           {{1, 4}, {5, 5}, {0, 2}},
           {{1, 7}, {8, 3}, {2, 8}},
           {{2, 10}, {3, 0}, {1, 5}, {12, 7}}});
    s.pedi.pedigreestatus = "cows.txt";
    addmutation(2, 12, 1, 60);
    dropbothways(false);
    const auto base = numbers(chromfolder(2) + "BaseIndividualGameteTracking.txt");
    ASSERT_EQ(base.size(), 1u);
    EXPECT_EQ(base[0][1], -99);
    EXPECT_GE(base[0][3], 1);
}

TEST_F(burningeneration, layouts)
{
    buildinternal();
    s.founders.morgans = 2.9; // crossings in nearly all blocks
    drop(1, 1);
    for (const std::string &line : readlines(chromfolder(1) + "RecombinationTracking.txt")) {
        const std::vector<double> values = numbersof(line);
        textline expected;
        puti(expected, static_cast<int64>(values[0]), 20);
        puti(expected, static_cast<int64>(values[1]), 4);
        puti(expected, static_cast<int64>(values[2]), 10);
        for (std::size_t c = 3; c < values.size(); ++c)
            puti(expected, static_cast<int64>(values[c]), 20);
        EXPECT_EQ(line, expected);
        EXPECT_EQ(values.size(), 3 + static_cast<std::size_t>(values[2]));
    }
    EXPECT_EQ(readlines(chromfolder(1) + "BaseIndividualGameteTracking.txt")[4].size(), 60u);
}

// 300 base individuals, so that byte counters run over without care, and one with known parents.
TEST_F(burningeneration, minorallelefrequencies)
{
    pedigreetext pedigree(1, std::vector<std::pair<int64, int64>>(300));
    pedigree[0].push_back({1, 2});
    build(pedigree);
    drop(1, 1);
    computeminorallelefrequency(s, 1);
    const auto lines = readlines(chromfolder(1) + "MinorAlleleFrequency.txt");
    ASSERT_EQ(lines.size(), 181u);
    EXPECT_EQ(lines[0], "   SegSite     MinorAlleleFreq");
    EXPECT_EQ(lines[71], "        71        0.0000000000");
    std::vector<int64> sums(180);
    for (int64 k = 1; k <= 300; ++k) {
        for (int64 m = 1; m <= 2; ++m) {
            const std::string alleles = unpacked(s.haplo.tmpgenome.gamete(k, m), nblock);
            for (std::size_t site = 0; site < 180; ++site) sums[site] += alleles[site] - '0';
        }
    }
    for (std::size_t site = 1; site <= 180; ++site) {
        const double frequency = static_cast<double>(sums[site - 1]) / 600;
        textline expected;
        puti(expected, static_cast<int64>(site), 10);
        putf(expected, frequency > 0.5 ? 1 - frequency : frequency, 20, 10);
        EXPECT_EQ(lines[site], expected);
    }
}

TEST_F(burningeneration, stops)
{
    buildinternal();
    s.founders.morgans = 3;
    outcome end = runbody([&] { drop(1, 1); });
    EXPECT_EQ(end.code(), 110012);
    EXPECT_EQ(
        end.output,
        " ERROR: There are not enough blocks per chromosome compared to the chromosome length "
        "(Morgans)\n"
        " Increase the number of segregating sites per chromosome (see RunMacs) or,\n"
        " if On, increase the parameter GenomeCompression\n nBlock:3\n Morgans:3.0\n");
    s.founders.morgans = 1;
    s.pedi.ped(3).newsire = 4;
    end = runbody([&] { drop(1, 1); });
    EXPECT_EQ(end.code(), -2);
    EXPECT_NE(end.stop.reason.find("Pedigree.txt: individual 3 has parent 4"), std::string::npos);
    // A generation whose parents are not on file.
    end = runbody([&] { drop(1, 2); });
    EXPECT_EQ(end.code(), -2);
    EXPECT_NE(end.stop.reason.find("GenomeGeneration1.txt"), std::string::npos);
}

// Parents of many generations: only the files that hold one are needed.
TEST_F(burningeneration, genomesofsomeindividuals)
{
    build({{{0, 0}, {0, 0}}, {{1, 2}, {2, 1}}, {{3, 4}, {4, 3}}});
    dropchromosome(1, true);
    genomestore third, some;
    readgenome(genomefile(1, 3), third, 2, nblock);
    std::filesystem::remove(genomefile(1, 2));
    readgenomesof(s, 1, {2, 5, 6}, some);
    ASSERT_EQ(some.nindiv(), 3);
    for (int64 m = 1; m <= 2; ++m) {
        EXPECT_EQ(unpacked(some.gamete(2, m), nblock), unpacked(third.gamete(1, m), nblock));
        EXPECT_EQ(unpacked(some.gamete(3, m), nblock), unpacked(third.gamete(2, m), nblock));
    }
    EXPECT_EQ(parentsbetween(s, 3, 6, 1, 4), (std::vector<int64>{1, 2, 3, 4}));
    EXPECT_EQ(parentsbetween(s, 5, 6, 1, 3), (std::vector<int64>{3}));
}
