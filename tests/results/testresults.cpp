// Whole-genome chip and sequence files, gathered from the files per chromosome and generation.
#include "files.h"
#include "results/sequence.h"
#include "results/snpchips.h"
#include "testsupport.h"

#include <filesystem>

namespace
{
const std::string chips = "SimulatedData/AllIndividualsSnpChips/";

// Two chromosomes of 60 and 120 sites, generations of 3, 2 and 2 individuals, two chips.
class resultfiles : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        std::filesystem::create_directory("SimulatedData");
        s.founders.nchrom = 2;
        s.pop.ngen = 2;
        s.pop.ngensel = 1;
        s.pop.nindivp = 7;
        s.pop.nindivinthisgen.allocate({0, 3});
        s.pop.cumindivnbtogen.allocate({0, 3});
        for (int64 j = 1; j <= 3; ++j) {
            s.pop.nindivinthisgen(j) = j == 1 ? 3 : 2;
            s.pop.cumindivnbtogen(j) = s.pop.cumindivnbtogen(j - 1) + s.pop.nindivinthisgen(j);
        }
        s.chips.nchip = 2;
        s.chips.tmpchip = 1;
        s.run.specstartgen = 1;
        s.run.specendgen = 3;
        for (int64 h = 1; h <= 2; ++h) {
            writefile(chrom(h) + "SegSitesIncluded.txt", " " + std::to_string(60 * h) + "\n");
            writefile(chrom(h) + "NbOfQtnMutationsAndSnp.txt",
                      h == 1 ? " 0 0 5 1\n" : " 0 0 9 1\n");
            writefile(chrom(h) + "MutIndivIndicator.txt", "");
            writefile(chrom(h) + "MutDeNovoInfo.txt", "");
            std::string map;
            for (int64 site = 1; site <= 60 * h; ++site)
                map +=
                    std::to_string(site) + " 999 0." + std::to_string(100 + site) + "0000000 0 0\n";
            writefile(chrom(h) + "PhysicalMapIncluded.txt", map);
            for (int64 e = 1; e <= 2; ++e) {
                std::string information;
                for (int64 k = 1; k <= nsnp(e, h); ++k)
                    information +=
                        std::to_string(k) + " " + std::to_string(10 * k + h) + " 0.25 0.5\n";
                writefile(chrom(h) + "Chip" + std::to_string(e) + "SnpInformation.txt",
                          information);
            }
        }
        makegenerations(1);
    }
    static std::string chrom(int64 h) { return "Chromosomes/Chromosome" + std::to_string(h) + "/"; }
    static int64 nsnp(int64 chip, int64 h) { return chip == 2 ? 1 : h == 1 ? 5 : 9; }
    // The alleles in the files: some mixture of where they stand.
    int allele(int64 i, int64 h, int64 site, int64 gamete) const
    {
        return static_cast<int>((i * 7 + h * 5 + site * site * 3 + gamete * 11 + salt * i * site) %
                                13 % 2);
    }
    std::string alleles(int64 i, int64 h, int64 n, int64 gamete) const
    {
        std::string text;
        for (int64 site = 1; site <= n; ++site)
            text += " " + std::to_string(allele(i, h, site, gamete));
        return text;
    }
    // Files per chromosome; their identifiers are wrong on purpose.
    void makegenerations(int64 newsalt)
    {
        salt = newsalt;
        for (int64 h = 1; h <= 2; ++h)
            for (int64 j = 1; j <= 3; ++j) {
                outfile sequence(chrom(h) + "SequencePhaseGeneration" + std::to_string(j) + ".bin");
                for (int64 e = 1; e <= 2; ++e) {
                    std::string text;
                    for (int64 i = firstindivofgen(s, j); i <= lastindivofgen(s, j); ++i)
                        for (int64 m = 1; m <= 2; ++m)
                            text +=
                                std::string(17, ' ') + "777" + alleles(i, h, nsnp(e, h), m) + "\n";
                    writefile(chrom(h) + "Chip" + std::to_string(e) + "PhaseGeneration" +
                                  std::to_string(j) + ".txt",
                              text);
                }
                for (int64 i = firstindivofgen(s, j); i <= lastindivofgen(s, j); ++i)
                    for (int64 m = 1; m <= 2; ++m) {
                        std::vector<int64> record{777};
                        for (int64 site = 1; site <= 60 * h; ++site)
                            record.push_back(allele(i, h, site, m));
                        writeframed(sequence, record.data(), 8 * static_cast<int64>(record.size()));
                    }
                sequence.close();
            }
    }
    // Lines of individuals first to last as plain loops give them.
    std::string phases(int64 first, int64 last, int64 n1, int64 n2) const
    {
        std::string text;
        for (int64 i = first; i <= last; ++i)
            for (int64 m = 1; m <= 2; ++m)
                text += std::string(19, ' ') + std::to_string(i) + alleles(i, 1, n1, m) +
                        alleles(i, 2, n2, m) + "\n";
        return text;
    }
    std::string genotypes(int64 first, int64 last, int64 n1, int64 n2) const
    {
        std::string text;
        for (int64 i = first; i <= last; ++i) {
            text += std::string(19, ' ') + std::to_string(i);
            for (int64 h = 1; h <= 2; ++h)
                for (int64 site = 1; site <= (h == 1 ? n1 : n2); ++site)
                    text += " " + std::to_string(allele(i, h, site, 1) + allele(i, h, site, 2));
            text += "\n";
        }
        return text;
    }
    state s;
    int64 salt = 1;
};

std::string onlyreason(const outcome &result)
{
    return result.code() == -2 ? result.stop.reason : "no I/O error";
}
} // namespace

TEST_F(resultfiles, chipsOfAllGenerations)
{
    const outcome first = runbody([&] { writeoutsnpchips(s, 1, 3); });
    EXPECT_EQ(first.code(), 0);
    EXPECT_EQ(first.output, "");
    EXPECT_EQ(readfile(chips + "Chip1Phase.txt"), phases(1, 7, 5, 9));
    EXPECT_EQ(readfile(chips + "Chip1Genotype.txt"), genotypes(1, 7, 5, 9));
    EXPECT_EQ(readfile(chips + "Chip2Phase.txt"), phases(1, 7, 1, 1));
    EXPECT_EQ(readfile(chips + "Chip2Genotype.txt"), genotypes(1, 7, 1, 1));
    EXPECT_EQ(readfile("SimulatedData/Chip2SnpInformation.txt"),
              "               SnpId             ChromId     SnpSeqIdOnChrom             SnpFreq"
              "   SnpPhysicalPosOnChrom\n"
              "                   1                   1                  11        0.2500000000"
              "        0.5000000000\n"
              "                   2                   2                  12        0.2500000000"
              "        0.5000000000\n");
    EXPECT_EQ(readlines("SimulatedData/Chip1SnpInformation.txt").size(), 15u);
    EXPECT_FALSE(s.chips.nsnponthischipchrom.allocated());

    // A later run keeps generation 1, and drops generation 3, which it doesn't reach.
    const std::string kept = phases(1, 3, 5, 9), keptgenotypes = genotypes(1, 3, 5, 9);
    makegenerations(2);
    s.run.specstartgen = 2;
    EXPECT_EQ(runbody([&] { writeoutsnpchips(s, 2, 2); }).output, ""); // no folder is made
    EXPECT_EQ(readfile(chips + "Chip1Phase.txt"), kept + phases(4, 5, 5, 9));
    EXPECT_EQ(readfile(chips + "Chip1Genotype.txt"), keptgenotypes + genotypes(4, 5, 5, 9));

    // Starting over in a folder that is there already: reported, and written all the same.
    s.run.specstartgen = 1;
    EXPECT_EQ(runbody([&] { writeoutsnpchips(s, 1, 1); }).output,
              "failure : Solvanto : WriteOutSnpChips\n");
    EXPECT_EQ(readfile(chips + "Chip1Phase.txt"), phases(1, 3, 5, 9));
}

TEST_F(resultfiles, chipRowsInOtherColumns)
{
    std::filesystem::create_directories(chips);
    s.run.specstartgen = 2; // no folder is made
    const auto gather = [&] { return runbody([&] { writeoutsnpchips(s, 1, 1); }); };
    const std::string file = chrom(2) + "Chip1PhaseGeneration1.txt";
    std::string text; // tabs, commas, no padding, and one row of the usual length
    for (int64 i = 1; i <= 3; ++i)
        for (int64 m = 1; m <= 2; ++m) {
            std::string row = (i == 1 ? std::string(19, ' ') + "5" : "4\t") + alleles(i, 2, 9, m);
            if (i == 1) row[20] = ',';
            text += row + (i == 2 ? " ignored\n" : "\r\n");
        }
    writefile(file, text);
    EXPECT_EQ(gather().code(), 0);
    EXPECT_EQ(readfile(chips + "Chip1Phase.txt"), phases(1, 3, 5, 9));

    const std::string good = std::string(19, ' ') + "1" + alleles(1, 2, 9, 1) + "\n";
    for (const auto &[change, reason] : std::vector<std::pair<std::string, std::string>>{
             {"", "ends after line 2, more lines are needed"},
             {std::string(19, ' ') + "1 0 0 0 0 0 0 0 0 2\n", "line 3: an allele must be 0 or 1"},
             {std::string(19, ' ') + "1 0 0 0 0 x 0 0 0 0\n",
              "line 3: an integer is wanted, not \"x\""},
             {std::string(19, ' ') + "1 0 0 0 0 0 0 0 00.\n", "line 3: an integer is wanted"}}) {
        writefile(file, good + good + change);
        const std::string found = onlyreason(gather());
        EXPECT_NE(found.find(file), std::string::npos) << found;
        EXPECT_NE(found.find(reason), std::string::npos) << found;
    }
    std::filesystem::remove(file);
    EXPECT_NE(onlyreason(gather()).find(file), std::string::npos);
    makegenerations(1);
    s.chips.nchip = 1; // an earlier run's file of another width is no file to write on
    writefile(chips + "Chip1Phase.txt", phases(1, 3, 5, 1));
    EXPECT_NE(onlyreason(runbody([&] { writeoutsnpchips(s, 2, 3); })).find("Chip1Phase.txt"),
              std::string::npos);
}

TEST_F(resultfiles, sequenceOfAllGenerations)
{
    const std::string title = std::string(47, ' ') + "180\n";
    const auto expectsequence = [&](const std::string &wantedphases, const std::string &wanted) {
        EXPECT_TRUE(readfile("SimulatedData/FullSequencePhase.txt") == title + wantedphases);
        EXPECT_TRUE(readfile("SimulatedData/FullSequenceGenotype.txt") == title + wanted);
    };
    writeoutsequence(s, 1, 3);
    expectsequence(phases(1, 7, 60, 120), genotypes(1, 7, 60, 120));
    const auto map = readlines("SimulatedData/FullSequencePhysicalMapIncluded.txt");
    ASSERT_EQ(map.size(), 180u);
    EXPECT_EQ(map[0], " 1 1 0.101");
    EXPECT_EQ(map[60 + 99], " 2 100 0.2");

    const std::string kept = phases(1, 3, 60, 120), keptgenotypes = genotypes(1, 3, 60, 120);
    makegenerations(2);
    writeoutsequence(s, 2, 2);
    expectsequence(kept + phases(4, 5, 60, 120), keptgenotypes + genotypes(4, 5, 60, 120));
    EXPECT_EQ(readfile("SimulatedData/FullSequencePhysicalMapIncluded.txt"), "");

    const std::string file = chrom(1) + "SequencePhaseGeneration3.bin";
    const std::string whole = readfile(file);
    for (const auto &[place, reason] : std::vector<std::pair<std::size_t, std::string>>{
             {0, "a binary record has"},        // the leading length
             {4 + 8 * 17, "allele other than"}, // an allele
             {4 + 8 * 17 + 6, "allele other than"},
             {4 + 8 * 59, "allele other than"},
             {4 + 8 * 61, "two lengths"}}) {
        std::string broken = whole;
        broken[place] = 3;
        writefile(file, broken);
        const std::string found = onlyreason(runbody([&] { writeoutsequence(s, 3, 3); }));
        EXPECT_NE(found.find(file), std::string::npos) << found;
        EXPECT_NE(found.find(reason), std::string::npos) << found;
    }
    writefile(file, whole.substr(0, whole.size() - 100));
    EXPECT_NE(onlyreason(runbody([&] { writeoutsequence(s, 3, 3); })).find("ends within"),
              std::string::npos);
}

TEST_F(resultfiles, compression)
{
    const auto exists = [](const std::string &path) { return std::filesystem::exists(path); };
    runbody([&] { writeoutsnpchips(s, 1, 3); });
    writeoutsequence(s, 1, 3);
    for (int64 h = 1; h <= 2; ++h)
        for (int64 j = 1; j <= 3; ++j)
            writefile(chrom(h) + "SequenceGenotypeGeneration" + std::to_string(j) + ".bin", "x");
    const std::string phase = chrom(2) + "SequencePhaseGeneration2.bin";
    writefile(phase + ".gz", "old");

    EXPECT_EQ(runbody([&] { zipsequenceoutputfiles(s, 1, 2); }).output, "");
    EXPECT_FALSE(exists(phase));
    EXPECT_EQ(runcommand("gzip -t " + phase + ".gz").status, 0); // the old one was overwritten
    EXPECT_TRUE(exists(chrom(1) + "SequenceGenotypeGeneration1.bin.gz"));
    EXPECT_TRUE(exists(chrom(1) + "SequenceGenotypeGeneration3.bin"));
    EXPECT_TRUE(exists("SimulatedData/FullSequencePhase.txt"));
    EXPECT_TRUE(exists(chips + "Chip1Phase.txt"));

    // The last generation; one file is missing, and all others are compressed.
    std::filesystem::remove(chrom(1) + "SequencePhaseGeneration3.bin");
    const outcome last = runbody([&] { zipsequenceoutputfiles(s, 3, 3); });
    EXPECT_EQ(last.output, "failure : Solvanto : ZipSequenceOutputFiles\n");
    for (const char *name :
         {"FullSequencePhase.txt", "FullSequenceGenotype.txt",
          "FullSequencePhysicalMapIncluded.txt", "AllIndividualsSnpChips/Chip1Phase.txt",
          "AllIndividualsSnpChips/Chip2Genotype.txt"}) {
        EXPECT_FALSE(exists(std::string("SimulatedData/") + name)) << name;
        EXPECT_TRUE(exists(std::string("SimulatedData/") + name + ".gz")) << name;
    }
    EXPECT_TRUE(exists("SimulatedData/Chip1SnpInformation.txt"));
}
