#include "evaluation/trainingdata.h"
#include "selection/population.h"
#include "testsupport.h"

#include <cmath>
#include <filesystem>

namespace
{
class TrainingData : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        makepopulation(s, 3, {2, 2, 3, 3});
        s.founders.nchrom = 2;
        s.chips.tmpchip = 1;
        s.chips.nsnponthischipchrom.allocate(1, 2);
        s.chips.nsnponthischipchrom(1, 1) = 3;
        s.chips.nsnponthischipchrom(1, 2) = 2;
        s.chips.nsnp = s.chips.nsnpforsel = 5;
        s.selection.fixedsnp.allocate(5);
        settest(s, 3, {0, 0, 0});
        std::filesystem::create_directories("Selection/SelectionFolder2");
    }
    state s;
    const std::string f = "Selection/SelectionFolder2/";
};
} // namespace

TEST_F(TrainingData, FixedLociHaveNoneOrAllOfTheAlleles)
{
    const int64 counts[] = {0, 1, 14, 7, 13};
    std::copy(counts, counts + 5, s.selection.fixedsnp.begin());
    s.selection.ntrainindiv = 7;
    writefixedsnp(s, 2);
    EXPECT_EQ(readfile(f + "FixedSnp.txt"), " 0\n 1\n 0\n 1\n 1\n");
    // Specified individuals count as often as they are listed, whatever their range.
    s.selection.selphenstrat = 6;
    s.selection.ntrainindiv = 99;
    s.selection.trainindiv.allocate(7);
    writefixedsnp(s, 2);
    EXPECT_EQ(readfile(f + "FixedSnp.txt"), " 0\n 1\n 0\n 1\n 1\n");
}

TEST_F(TrainingData, ResidualVariancesComeFromTheReports)
{
    s.traits.ntraits = 2;
    s.qtn.nqtnmodels = 2;
    s.values.vare.allocate(2, 2);
    std::string report;
    for (const char *vare : {"1.5 2.5", "3.5        4.5"})
        report += std::string("trait 1\nmodels\nVarA 9 9\nVarD 9 9\n       VarE     ") + vare +
                  "\nheritability 9 9\nheritability 9 9\n";
    writefile("SimulatedData/TraitVarianceComponents.txt", report);
    readvare(s);
    EXPECT_EQ(s.values.vare(1, 1), 1.5);
    EXPECT_EQ(s.values.vare(2, 1), 2.5);
    EXPECT_EQ(s.values.vare(2, 2), 4.5);
    s.selection.recombselonoff = true;
    writefile("SimulatedData/RecombinationVarianceComponents.txt",
              "Additive genetic variance             0.0100000000\n"
              "Residual variance                     0.0500000000\n"
              "Heritability (narrow-sense)           0.1666666667\n");
    readvare(s);
    EXPECT_EQ(s.values.varerecomb, 0.05);
}

// p = 0.5: scale sqrt(0.50001) = 0.7071138522, so 0, 1, 2 become -1.4142, 0 and 1.4142.
// p = 0: scale sqrt(0.00001) = 0.0031622777, so 1 becomes 316.2277.
TEST_F(TrainingData, TestGenotypesAreScaledInSinglePrecision)
{
    writefile(f + "FixedSnp.txt", " 1\n 0\n 1\n 1\n 2\n");
    writefile(f + "AlleleFreqTrain.txt", " 1 0.5\n 3 0.0 more\n 4 0.3\n");
    writefile(f + "TmpChip1GenotypeTest.txt", "                   5 0 2 1 0 1\n"
                                              "                   6 1 2 0 9 1\n"
                                              "                   7 2 1 2 1 -1\n");
    scalegenottestingdata(s, 2, 1, 1);
    const std::vector<std::string> lines = readlines(f + "TmpChip1GenotypeTestScaled.txt");
    ASSERT_EQ(lines.size(), 3U);
    for (const std::string &line : lines) EXPECT_EQ(line.size(), 20U + 5 * 40);
    const auto scaled = [](float p, float genotype) {
        return static_cast<double>((genotype - 2 * p) / std::sqrt(2 * p * (1 - p) + 0.00001f));
    };
    const double wanted[3][5] = {{scaled(0.5f, 0), 0, scaled(0, 1), scaled(0.3f, 0), 0},
                                 {0, 0, 0, 0, 0},
                                 {scaled(0.5f, 2), 0, scaled(0, 2), scaled(0.3f, 1), 0}};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::vector<double> values = numbersof(lines[i]);
        ASSERT_EQ(values.size(), 6U);
        EXPECT_EQ(values[0], static_cast<double>(5 + i));
        for (std::size_t j = 0; j < 5; ++j) EXPECT_EQ(values[j + 1], wanted[i][j]) << i << " " << j;
    }
    EXPECT_NEAR(wanted[0][0], -1.41420, 1e-5);
    EXPECT_NEAR(wanted[0][2], 316.2277, 1e-3);
    EXPECT_EQ(s.selection.fixedsnp(5), 2);

    scalegenottestingdata(s, 2, 1, 2);
    EXPECT_EQ(readfile(f + "TmpChip1GenotypeTestScaledRecomb.txt"),
              readfile(f + "TmpChip1GenotypeTestScaled.txt"));
    writefile(f + "AlleleFreqTrain.txt", " 1 0.5\n");
    EXPECT_EQ(runbody([&] { scalegenottestingdata(s, 2, 1, 1); }).code(), -2);
    std::filesystem::remove(f + "AlleleFreqTrain.txt");
    EXPECT_EQ(runbody([&] { scalegenottestingdata(s, 2, 1, 1); }).code(), -2);
    writefile(f + "FixedSnp.txt", " 0\n 0\n 0\n 0\n 0\n"); // a training by pedigree
    scalegenottestingdata(s, 2, 1, 1);
    EXPECT_EQ(numbersof(readlines(f + "TmpChip1GenotypeTestScaled.txt")[2]),
              (std::vector<double>{7, 0, 0, 0, 0, 0}));
}

TEST_F(TrainingData, EarlierTrainingIsCopiedAndEveryMissingFileReported)
{
    s.traits.ntraits = 2;
    s.selection.fixedtrainselcycle = 1;
    for (const char *name : {"SnpSolutionsTrait2.txt", "AlleleFreqTrain.txt", "FixedSnp.txt"})
        writefile(std::string("Selection/SelectionFolder1/") + name, name);
    const outcome copies = runbody([&] { copytrainingdata(s, 2, 2); });
    EXPECT_EQ(copies.output, "failure : Solvanto : CopyTrainingData\n"); // the phenotypes
    EXPECT_EQ(readfile(f + "SnpSolutionsTrait2.txt"), "SnpSolutionsTrait2.txt");
    EXPECT_EQ(readfile(f + "FixedSnp.txt"), "FixedSnp.txt");

    s.traits.ntraits = 1;
    s.selection.recombselonoff = true;
    for (const char *name : {"SnpSolutions.txt", "AlleleFreqTrain.txt", "FixedSnp.txt",
                             "SelectionPhenTrain.txt", "SnpSolutionsRecomb.txt"})
        writefile(name, std::string("own ") + name);
    const outcome imports = runbody([&] { importtrainingdata(s, 2); });
    EXPECT_EQ(imports.output, "failure : Solvanto : ImportTrainingData\n");
    EXPECT_EQ(readfile(f + "SnpSolutionsRecomb.txt"), "own SnpSolutionsRecomb.txt");
    EXPECT_EQ(readfile(f + "AlleleFreqTrain.txt"), "own AlleleFreqTrain.txt");
}

TEST_F(TrainingData, QtnGenotypesOfTheCandidatesAndOfTheNewGeneration)
{
    s.qtn.ntotqtn = 2;
    s.qtn.qtnmodel = 3;
    std::string genotypes;
    for (int i = 1; i <= 10; ++i)
        genotypes += std::to_string(i) + " " + std::to_string(i % 3) + " 2\n";
    writefile("SimulatedData/UnrestrictedQtnIndivGenotypes.txt", genotypes);
    std::filesystem::create_directories("Selection/SelectionFolder1");
    writetestingqtngenotypes(s, 1, 3, 5);
    writetestingqtngenotypes(s, 1, 4, 8);
    EXPECT_EQ(readfile("Selection/SelectionFolder1/TmpQtnGenotypeTest.txt"),
              "                   5 2 2\n                   6 0 2\n                   7 1 2\n");
    EXPECT_EQ(readlines("Selection/SelectionFolder1/TmpQtnGenotypeLastGeneration.txt")[2],
              "                  10 1 2");
}
