// Genotype files of a generation, from the packed genomes.
#include "files.h"
#include "haplotypes/blocks.h"
#include "markers/extraction.h"
#include "markers/sitepicker.h"
#include "openstate.h"
#include "testsupport.h"

#include <filesystem>

namespace
{
class genotypefiles : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        std::filesystem::create_directories(chromosome);
        s.random.idum = -77;
    }
    // nindiv individuals of random alleles; the last one is a doubled haploid.
    void makegenomes(int64 nindiv, int64 nblock)
    {
        s.haplo.tmpgenome.allocate(nindiv, nblock);
        for (int64 k = 1; k <= nindiv; ++k)
            for (int64 b = 1; b <= nblock; ++b)
                for (int64 m = 1; m <= 2; ++m) {
                    int64 block = 0;
                    for (int p = 0; p < 60; ++p) block = 2 * block + (ran1(s.random) < 0.5);
                    s.haplo.tmpgenome(k, b, m) = block;
                }
        for (int64 b = 1; b <= nblock; ++b)
            s.haplo.tmpgenome(nindiv, b, 2) = s.haplo.tmpgenome(nindiv, b, 1);
    }
    // Sites of the chip and of all sets.
    void setnumbers(int64 nsites)
    {
        s.loci.nsnponthischipchrom.allocate(2, 3, nsites);
        s.loci.nqtnonthischrom.allocate(3, nsites);
        s.loci.nqtnrecombonthischrom.allocate(3, nsites);
    }
    // An information file with the sites.
    void writeinformation(const std::string &file, const sitelist &sites)
    {
        std::string text;
        for (std::size_t i = 0; i < sites.size(); ++i)
            text += std::to_string(i + 1) + " " + std::to_string(sites[i]) + " 0.25 0.5 1 3\n";
        writefile(chromosome + file, text);
    }
    int allele(int64 k, int64 site, int64 gamete)
    {
        const int64 b = (site - 1) / 60 + 1, p = site - 60 * (b - 1);
        return static_cast<int>((s.haplo.tmpgenome(k, b, gamete) >> (60 - p)) & 1);
    }
    // The files as plain loops give them, for individuals from 41 on.
    void expectfiles(const std::string &name, int64 gen, const sitelist &sites)
    {
        std::string phases, genotypes;
        for (int64 k = 1; k <= s.haplo.tmpgenome.nindiv(); ++k) {
            std::string id = std::to_string(40 + k);
            id.insert(0, 20 - id.size(), ' ');
            for (int64 m = 1; m <= 2; ++m) {
                phases += id;
                for (const int64 site : sites) phases += " " + std::to_string(allele(k, site, m));
                phases += '\n';
            }
            genotypes += id;
            for (const int64 site : sites)
                genotypes += " " + std::to_string(allele(k, site, 1) + allele(k, site, 2));
            genotypes += '\n';
        }
        const std::string generation = "Generation" + std::to_string(gen) + ".txt";
        EXPECT_TRUE(readfile(chromosome + name + "Phase" + generation) == phases) << name;
        EXPECT_TRUE(readfile(chromosome + name + "Genotype" + generation) == genotypes) << name;
    }
    const std::string chromosome = "Chromosomes/Chromosome3/";
    openstate s;
};
} // namespace

TEST_F(genotypefiles, everysetandeverydensity)
{
    makegenomes(5, 7);
    // Ends of blocks; every 2nd to 17th site; nearly all; all; none.
    std::vector<sitelist> lists = {{1, 60, 61, 120, 121, 419, 420}, {}, {}, {}, {}, {}};
    for (int64 site = 1; site <= 420; ++site) {
        if (site % 2 == 0) lists[1].push_back(site);
        if (site % 17 == 3) lists[2].push_back(site);
        if (site % 11 != 0) lists[3].push_back(site);
        lists[4].push_back(site);
    }
    for (const sitelist &sites : lists) {
        for (const char *file : {"Chip2SnpInformation.txt", "UnRestrictedQtnInformation.txt",
                                 "RestrictedQtnInformation.txt", "RecombinationQtnInformation.txt"})
            writeinformation(file, sites);
        setnumbers(static_cast<int64>(sites.size()));
        s.loci.sitelists.clear();
        fillarray(s, 3, 2, 4, 41, 45);
        for (const qtnset set : qtnsets)
            fillqtn(s, 3, set, set == qtnset::restricted ? 11 : 4, 41, 45);
        expectfiles("Chip2", 4, sites);
        expectfiles("UnrestrictedQtn", 4, sites);
        expectfiles("RestrictedQtn", 11, sites);
        expectfiles("RecombinationQtn", 4, sites);
    }
    for (const std::string &line : readlines(chromosome + "Chip2GenotypeGeneration4.txt"))
        EXPECT_EQ(line.size(), 20u);
}

TEST_F(genotypefiles, sitesarepickedalikebyinstructionandbymoves)
{
    makegenomes(6, 40);
    for (const double share : {0.02, 0.3, 0.9, 1.0}) {
        sitelist sites;
        for (int64 site = 1; site <= 2400; ++site)
            if (ran1(s.random) < share) sites.push_back(site);
        sitepicker quick(sites), plain(sites, false);
        const std::size_t n = 2 * sites.size();
        for (int64 k = 1; k <= 6; ++k) {
            std::string texts[2] = {std::string(3 * n, '?'), std::string(3 * n, '?')};
            for (sitepicker *picker : {&quick, &plain}) {
                char *const to = texts[picker == &plain].data();
                picker->pick(s.haplo.tmpgenome.gamete(k, 1), s.haplo.tmpgenome.gamete(k, 2));
                picker->puttext(to, to + n, to + 2 * n);
            }
            ASSERT_EQ(texts[0], texts[1]) << share;
        }
    }
}

TEST_F(genotypefiles, brokeninformation)
{
    makegenomes(2, 1);
    setnumbers(2);
    const std::string file = chromosome + "RestrictedQtnInformation.txt";
    for (const auto &[text, reason] : std::vector<std::pair<std::string, std::string>>{
             {"1 5 0.1 0.1\n", "ends after line 1"},
             {"1 5 0.1 0.1\n2 5 0.1 0.1\n", "line 2: the sites must ascend"},
             {"1 0 0.1 0.1\n2 5 0.1 0.1\n", "line 1: the sites must ascend"},
             {"1 5 0.1 0.1\n2 61 0.1 0.1\n", "line 2: site 61 is beyond the 60 sites"},
             {"1 five 0.1 0.1\n", "line 1: an integer is wanted"}}) {
        writefile(file, text);
        const outcome bad = runbody([&] { fillqtn(s, 3, qtnset::restricted, 1, 41, 42); });
        EXPECT_EQ(bad.code(), -2);
        EXPECT_NE(bad.stop.reason.find(file + ": " + reason), std::string::npos) << bad.stop.reason;
    }
}
