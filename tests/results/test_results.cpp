// Chip and sequence files of a chromosome that were changed behind the run that made them.
#include "files.h"
#include "openstate.h"
#include "results/sequence.h"
#include "results/snpchips.h"
#include "testsupport.h"

#include <filesystem>

namespace
{
const std::string chrom = "Chromosomes/Chromosome1/";

// One chromosome of 60 sites, one generation of 3 individuals, a chip with 9 SNP.
class resultfiles : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        std::filesystem::create_directories("SimulatedData/AllIndividualsSnpChips");
        s.founders.nchrom = s.pop.ngen = s.chips.nchip = s.chips.tmpchip = 1;
        s.pop.nindivp = 3;
        s.pedi.nindivinthisgen.allocate({0, 1}, 3);
        s.pedi.cumindivnbtogen.allocate({0, 1});
        s.pedi.cumindivnbtogen(1) = 3;
        s.run.specstartgen = 2; // no folder is made
        s.run.specendgen = 2;
        s.sites.nsegreginclglobal.allocate(1, 60);
        s.loci.nsnponthischipchrom.allocate(1, 1, 9);
        std::string map, information;
        for (int site = 1; site <= 60; ++site) map += std::to_string(site) + " 999 0.5 0 0\n";
        for (int k = 1; k <= 9; ++k)
            information += std::to_string(k) + " " + std::to_string(5 * k) + " 0.25 0.5\n";
        writefile(chrom + "PhysicalMapIncluded.txt", map);
        writefile(chrom + "Chip1SnpInformation.txt", information);
    }
    static std::string row(int i)
    {
        return std::string(19, ' ') + std::to_string(i) + " 0 1 1 0 0 0 1 0 1";
    }
    static std::string reasonof(const std::function<void()> &body)
    {
        const outcome result = runbody(body);
        return result.code() == -2 ? result.stop.reason : "no I/O error";
    }
    openstate s;
};
} // namespace

TEST_F(resultfiles, chiprowsinothercolumns)
{
    const auto gather = [&] { writeoutsnpchips(s, 1, 1); };
    const std::string file = chrom + "Chip1PhaseGeneration1.txt";
    // Tabs, commas, no padding, rows of the usual length and longer ones.
    std::string text = row(1) + "\n" + row(1) + "\r\n" + "2\t0 1 1,0 0 0 1 0 1 ignored\n" + row(2) +
                       "\n" + row(3) + "\n" + row(3) + "\n";
    text[20] = ',';
    writefile(file, text);
    EXPECT_EQ(reasonof(gather), "no I/O error");
    EXPECT_EQ(readfile("SimulatedData/AllIndividualsSnpChips/Chip1Phase.txt"),
              row(1) + "\n" + row(1) + "\n" + row(2) + "\n" + row(2) + "\n" + row(3) + "\n" +
                  row(3) + "\n");

    for (const auto &[change, reason] : std::vector<std::pair<std::string, std::string>>{
             {"", "ends after line 2, more lines are needed"},
             {row(1) + "\n", "line 3: it is the record of individual 1, that of 2 is wanted"},
             {row(2) + "\n" + row(2), "line 4: the file was cut: this line has no line end"},
             {row(2) + "\n" + row(2) + "\n" + row(3) + "\n" + row(3) + "\n" + row(3) + "\n",
              "line 7: the file should have ended before this line"},
             {std::string(19, ' ') + "2 0 0 0 0 0 0 0 0 2\n",
              "line 3: an allele or genotype is out"},
             {std::string(19, ' ') + "2 0 0 0 0 x 0 0 0 0\n",
              "line 3: an integer is wanted, not \"x\""},
             {std::string(19, ' ') + "2 0 0 0 0 0 0 0 00.\n", "line 3: an integer is wanted"}}) {
        writefile(file, row(1) + "\n" + row(1) + "\n" + change);
        const std::string found = reasonof(gather);
        EXPECT_NE(found.find(file), std::string::npos) << found;
        EXPECT_NE(found.find(reason), std::string::npos) << found;
    }
    std::filesystem::remove(file);
    EXPECT_NE(reasonof(gather).find(file), std::string::npos);
}

TEST_F(resultfiles, sequencerecordsthatarebroken)
{
    const std::string file = chrom + "SequencePhaseGeneration1.bin";
    outfile sequence(file);
    for (int64 i = 1; i <= 6; ++i) {
        framewriter record(sequence, 8 * 61);
        std::vector<int64> row(61, i % 2);
        row[0] = (i + 1) / 2; // the individual
        record.put(row.data(), 8 * 61);
        record.finish();
    }
    sequence.close();
    const std::string whole = readfile(file);
    const auto gather = [&] { writeoutsequence(s, 1, 1); };
    EXPECT_EQ(reasonof(gather), "no I/O error");
    for (const auto &[place, reason] : std::vector<std::pair<std::size_t, std::string>>{
             {0, "a binary record has"}, // the leading length
             {4, "the record of individual 3"},
             {4 + 8 * 17, "allele other than"}, // an allele
             {4 + 8 * 17 + 6, "allele other than"},
             {4 + 8 * 59, "allele other than"},
             {4 + 8 * 61, "two lengths"}}) {
        std::string broken = whole;
        broken[place] = 3;
        writefile(file, broken);
        const std::string found = reasonof(gather);
        EXPECT_NE(found.find(file), std::string::npos) << found;
        EXPECT_NE(found.find(reason), std::string::npos) << found;
    }
    writefile(file, whole + "more");
    EXPECT_NE(reasonof(gather).find("goes on where it should end"), std::string::npos);
    writefile(file, whole.substr(0, whole.size() - 100));
    EXPECT_NE(reasonof(gather).find("ends within"), std::string::npos);
}
