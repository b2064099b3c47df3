#include "evaluation/selectionchip.h"
#include "selection/population.h"
#include "testsupport.h"

#include <array>
#include <filesystem>
#include <map>
#include <random>

namespace
{
// Two chromosomes with 21 and 40 markers and 3 and 17 QTN; generations of 5 and 4.
class SelectionChip : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        makepopulation(s, 2, {5, 4, 4});
        s.founders.nchrom = 2;
        s.chips.usesnpchiponoff = true;
        s.chips.tmpchip = 2;
        s.chips.nsnp = 61;
        s.qtn.ntotqtn = 20;
        s.qtn.qtnmodel = 4;
        s.chips.nsnponthischipchrom.allocate(2, 2);
        s.chips.nsnponthischipchrom(2, 1) = 21;
        s.chips.nsnponthischipchrom(2, 2) = 40;
        s.qtn.nqtnonthischrom.allocate(2);
        s.qtn.nqtnonthischrom(1) = 3;
        s.qtn.nqtnonthischrom(2) = 17;
        s.selection.fixedsnp.allocate(81);
        settest(s, 2, {0, 0, 0, 0});
        s.selection.starttrainindiv = 1;
        s.selection.endtrainindiv = 9;
        s.selection.phenvaltrain.allocate(9, 1);
        s.selection.phenvaltrain(3) = s.selection.phenvaltrain(8) = -99;
        std::filesystem::create_directories("Selection/SelectionFolder1");
        makefiles("Chip2", {21, 40});
        makefiles("RestrictedQtn", {3, 17});
    }
    // Random alleles; those of a phase, over both chromosomes, are gathered in alleles.
    void makefiles(const std::string &stem, const std::vector<int> &nsites)
    {
        for (int h = 1; h <= 2; ++h) {
            for (int64 g = 1; g <= 2; ++g) {
                std::string text;
                for (int64 i = firstindivofgen(s, g); i <= lastindivofgen(s, g); ++i) {
                    for (int m = 0; m < 2; ++m) {
                        text += std::to_string(i);
                        for (int j = 0; j < nsites[static_cast<std::size_t>(h - 1)]; ++j) {
                            const int allele = static_cast<int>(draw() % 2);
                            text += " " + std::to_string(allele);
                            alleles[stem][static_cast<std::size_t>(2 * i + m)].push_back(allele);
                        }
                        text += "\n";
                    }
                }
                writefile("Chromosomes/Chromosome" + std::to_string(h) + "/" + stem +
                              "PhaseGeneration" + std::to_string(g) + ".txt",
                          text);
            }
        }
    }
    // Phases 0 and 1 of an individual on the chip, or its genotypes (m = 2).
    std::string row(int64 i, int m, bool qtn) const
    {
        std::string line(20 - std::to_string(i).size(), ' ');
        line += std::to_string(i);
        for (const char *stem : {"Chip2", "RestrictedQtn"}) {
            if (!qtn && stem[0] == 'R') continue;
            const auto &phases = alleles.at(stem);
            const auto &a = phases[static_cast<std::size_t>(2 * i)];
            const auto &b = phases[static_cast<std::size_t>(2 * i + 1)];
            for (std::size_t j = 0; j < a.size(); ++j)
                line += " " + std::to_string(m == 2 ? a[j] + b[j] : m == 1 ? b[j] : a[j]);
        }
        return line + "\n";
    }
    void pass()
    {
        selectionchipfiles files = openchipfiles(s, 1);
        for (int64 g = 1; g <= 2; ++g) {
            generationphases phases = openphases(s, g);
            const int64 first = firstindivofgen(s, g), last = lastindivofgen(s, g);
            if (s.selection.selontbvyes1no0 == 0) writetrainingchip(s, files, phases, first, last);
            if (g == 2) writetestchip(s, files, phases, first, last);
        }
        closechipfiles(files);
    }
    std::string filesof(const std::string &kind) const
    {
        return readfile("Selection/SelectionFolder1/TmpChip2" + kind + ".txt");
    }

    state s;
    std::mt19937 draw{3};
    std::map<std::string, std::array<std::vector<int>, 20>> alleles;
};
} // namespace

TEST_F(SelectionChip, GenomicPredictionGetsThePhenotypedAndCountsTheirAlleles)
{
    for (const bool qtn : {false, true}) {
        s.selection.selontbvyes1no0 = 0;
        s.selection.selmethindicator = 2;
        s.selection.addqtntosnpchip = qtn ? 1 : 2;
        s.selection.fixedsnp.fill(0);
        pass();
        std::string genotypes, phases, test;
        std::vector<int64> counts(81, 0);
        for (int64 i = 1; i <= 9; ++i) {
            if (i > 5) test += row(i, 2, qtn);
            if (i == 3 || i == 8) continue;
            genotypes += row(i, 2, qtn);
            phases += row(i, 0, qtn) + row(i, 1, qtn);
            const std::vector<double> values = numbersof(row(i, 2, qtn));
            for (std::size_t j = 1; j < values.size(); ++j)
                counts[j - 1] += static_cast<int64>(values[j]);
        }
        EXPECT_EQ(filesof("GenotypeTrain"), genotypes);
        EXPECT_EQ(filesof("PhaseTrain"), phases);
        EXPECT_EQ(filesof("GenotypeTest"), test);
        EXPECT_EQ(std::vector<int64>(s.selection.fixedsnp.begin(), s.selection.fixedsnp.end()),
                  counts);
    }
}

TEST_F(SelectionChip, PedigreePredictionGetsEverybodyAndTrueValuesOnlyTheTestSet)
{
    pass(); // selection on true values
    EXPECT_FALSE(std::filesystem::exists("Selection/SelectionFolder1/TmpChip2GenotypeTrain.txt"));
    EXPECT_EQ(filesof("GenotypeTest"),
              row(6, 2, false) + row(7, 2, false) + row(8, 2, false) + row(9, 2, false));

    s.selection.selontbvyes1no0 = 0;
    s.selection.selmethindicator = 1;
    pass();
    EXPECT_EQ(readlines("Selection/SelectionFolder1/TmpChip2GenotypeTrain.txt").size(), 9U);
    EXPECT_EQ(readlines("Selection/SelectionFolder1/TmpChip2PhaseTrain.txt").size(), 18U);
    EXPECT_EQ(s.selection.fixedsnp(1), 0);
}
