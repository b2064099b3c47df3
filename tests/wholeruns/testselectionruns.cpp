// Whole breeding programmes of every kind: descent and parents from the files they leave.
#include "wholeruns/runsupport.h"

#include <algorithm>
#include <cmath>
#include <set>

class selectionruns : public wholerun
{
  protected:
    // Every allele of the first chip comes from the parent on its side; doubled haploids have two
    // gametes alike.
    void checkdescent(const std::set<int> &doubledhaploids = {});
    // The sires of a generation are the best of their gender by true value, most progeny first.
    void checksiresarethebest(int gen);
};

void selectionruns::checkdescent(const std::set<int> &doubledhaploids)
{
    const auto pedigree = readlines("SimulatedData/Pedigree.txt");
    const auto phases = readlines("SimulatedData/AllIndividualsSnpChips/Chip1Phase.txt");
    ASSERT_EQ(phases.size(), 2 * (pedigree.size() - 1));
    const auto alleles = [&](std::size_t individual, std::size_t side) {
        return phases[2 * (individual - 1) + side].substr(20);
    };
    int64 wrong = 0, known = 0;
    for (std::size_t i = 1; i < pedigree.size(); ++i) {
        const auto row = wordsof(pedigree[i].substr(0, 100));
        const bool dh = doubledhaploids.contains(std::stoi(row[0]));
        if (dh) {
            EXPECT_EQ(alleles(i, 0), alleles(i, 1));
        }
        for (std::size_t side = 0; side < 2; ++side) {
            const std::size_t parent = std::stoul(row[dh ? 3 : 3 + side]);
            if (parent == 0) continue;
            ++known;
            const std::string own = alleles(i, side), first = alleles(parent, 0),
                              second = alleles(parent, 1);
            for (std::size_t site = 0; site < own.size(); ++site)
                wrong += own[site] != first[site] && own[site] != second[site];
        }
    }
    EXPECT_GT(known, 0);
    EXPECT_EQ(wrong, 0);
}

void selectionruns::checksiresarethebest(int gen)
{
    const auto values = numbertable("SimulatedData/PedigreeTbvTdvTpv.txt", 1);
    const auto genders = numbertable("SimulatedData/Gender.txt", 1);
    std::set<double> sires;
    double worstsire = 1e300, bestother = -1e300;
    for (const auto &row : values)
        if (row[0] == gen) sires.insert(row[2]);
    for (const double sire : sires)
        worstsire = std::min(worstsire, values[static_cast<std::size_t>(sire) - 1][4]);
    for (std::size_t i = 0; i < values.size(); ++i)
        if (values[i][0] == gen - 1 && genders[i][2] == 1 && !sires.contains(values[i][1]))
            bestother = std::max(bestother, values[i][4]);
    EXPECT_EQ(sires.size(), 4u);
    EXPECT_GE(worstsire, bestother);
}

TEST_F(selectionruns, animalsontruevalues)
{
    mustrun(smallrun().set("WriteFullSequenceOutOnOff", "On"), -31);
    checkdescent();
    checksiresarethebest(4);
    checksiresarethebest(5);
    // The sequence holds the chip's sites: genotypes are sums of the phases, everywhere.
    const auto phases = readlines("SimulatedData/FullSequencePhase.txt");
    const auto genotypes = readlines("SimulatedData/FullSequenceGenotype.txt");
    ASSERT_EQ(phases.size(), 2 * genotypes.size() - 1);
    int64 wrong = 0;
    for (std::size_t i = 1; i < genotypes.size(); ++i)
        for (std::size_t at = 21; at < genotypes[i].size(); at += 2)
            wrong +=
                genotypes[i][at] - '0' != phases[2 * i - 1][at] - '0' + phases[2 * i][at] - '0';
    EXPECT_EQ(wrong, 0);
}

// The best plants are selfed, crossed at random, or made doubled haploids of.
TEST_F(selectionruns, plantschemes)
{
    mustrun(smallrun()
                .set("AnimalBreedingOnOff", "Off")
                .set("PlantBreedingOnOff", "On")
                .set("NumberGenerationsBurnIn", "4")
                .set("NumberGenerationsSelection", "3")
                .set("PerformMatingsConsideringTheGenderYesNo", "No")
                .set("NumberOfMaleParentsInEachGeneration", "List,0,0,4,0,0,4")
                .set("NumberOfFemaleParentsInEachGeneration", "Constant,0")
                .set("NumberOfParentsRegardlessTheGenderInEachGen", "List,8,0,0,6,0,0")
                .set("NumberOfSelfedParentsInEachGeneration", "List,0,5,0,0,5,0")
                .set("NumberOfGenerationsIncludingDoubledHaploids", "2")
                .set("CreateDoubledHaploidsInTheseGenerations", "4,7")
                .set("SelectionMethod", "Pheno"),
            -32);
    checkdescent({4, 7});
    for (const std::string &line : readlines("SimulatedData/Pedigree.txt")) {
        const auto row = wordsof(line);
        if (row[0] == "2" || row[0] == "5") {
            EXPECT_NE(row[3], row[4]) << line;
        } // crosses
        if (row[0] == "3" || row[0] == "6") {
            EXPECT_EQ(row[3], row[4]) << line;
        } // selfed
    }
}

// An external pedigree feeds the burn-in; parents of the selection generations have the right
// gender.
TEST_F(selectionruns, pedigreefromoutside)
{
    std::string pedigree;
    for (int i = 1; i <= 60; ++i) {
        const int generation = (i - 1) / 20;
        const int sire = generation == 0 ? 0 : 100 + 1 + i % 7,
                  dam = generation == 0 ? 0 : 100 + i - 9;
        pedigree +=
            std::to_string(100 + i) + "," + std::to_string(sire) + "," + std::to_string(dam) + "\n";
    }
    writefile("own.csv", pedigree);
    mustrun(smallrun().set("PedigreeStatus", "own.csv"), -33);
    checkdescent();
    checksiresarethebest(4);
    const auto genders = numbertable("SimulatedData/Gender.txt", 1);
    for (const auto &row : numbertable("SimulatedData/PedigreeTbvTdvTpv.txt", 1)) {
        if (row[0] < 4) continue;
        EXPECT_EQ(genders[static_cast<std::size_t>(row[2]) - 1][2], 1);
        EXPECT_EQ(genders[static_cast<std::size_t>(row[3]) - 1][2], 2);
    }
}

// The user chooses the parents of generation 5 between two runs.
TEST_F(selectionruns, importintwostages)
{
    const auto stage = [](const char *number, const char *generations) {
        return smallrun()
            .set("NumberGenerationsSelection", "3")
            .set("GenerationFlexibilityOnOff", "On")
            .set("StartStopGeneration", generations)
            .set("SelectionFlexibilityOnOff", "On")
            .set("ImportAnExternalPedigreeForThisGeneration", "5")
            .set("ImportStagePut1ToComputeBV2ToContinue", number)
            .moveafter("ImportAnExternalPedigreeForThisGeneration", "SelectionFlexibilityOnOff")
            .moveafter("ImportStagePut1ToComputeBV2ToContinue", "SelectionFlexibilityOnOff")
            .moveafter("StartStopGeneration", "GenerationFlexibilityOnOff");
    };
    mustrun(stage("1", "1,5"), -34);
    EXPECT_EQ(readlines("SimulatedData/AllIndividualsSnpChips/Chip1Genotype.txt").size(), 80u);
    std::string chosen;
    for (int i = 81; i <= 100; ++i)
        chosen += std::to_string(i) + " " + std::to_string(1 + i % 50) + " " +
                  std::to_string(80 - i % 30) + "\n";
    writefile("Selection/SelectionFolder2/ExternalPedigree.txt", chosen);
    mustrun(stage("2", "5,6"));
    checkdescent();
    const auto pedigree = readlines("SimulatedData/Pedigree.txt");
    ASSERT_EQ(pedigree.size(), 121u);
    EXPECT_EQ(wordsof(pedigree[81])[3], "32");
    EXPECT_EQ(wordsof(pedigree[81])[4], "59");

    // A parent of the same generation is refused.
    mustrun(stage("1", "1,5"), -34);
    writefile("Selection/SelectionFolder2/ExternalPedigree.txt", "81 81 5\n" + chosen);
    const commandresult refused = run(stage("2", "5,6"));
    EXPECT_EQ(refused.status, 110015 % 256);
    EXPECT_NE(refused.out.find("ERROR: ExternalPedigree.txt must name two parents of earlier "
                               "generations for individual 81"),
              std::string::npos);
}

// Genomic and pedigree prediction with the companion programs, over the training strategies.
TEST_F(selectionruns, estimatesbyeverystrategy)
{
    int seed = -40;
    for (const char *method : {"GBlup", "PedigreeBlup"}) {
        for (const char *strategy :
             {"AllPhenotypes", "AllHistoricalPhenotypes", "PreviousGeneration", "AllMales",
              "RandomPhenotypes", "SpecifiedIndiv"}) {
            SCOPED_TRACE(std::string(method) + " " + strategy);
            std::string listed;
            for (int i = 3; i <= 55; i += 2) listed += std::to_string(i) + "\n";
            writefile("TrainIndiv.txt", listed);
            mustrun(smallrun()
                        .set("SelectionMethod", method)
                        .set("SelectionPhenotypingStrategy", strategy)
                        .set("UseExternalSnpSolutionsYesNo", "No")
                        .set("AddQtnToTheSnpChipYesNo", "No")
                        .set("FirstAndLastTrainingGenForRandomPhenotypesStrat", "1,2")
                        .set("TrainingSetSizeForRandomPhenotypesStrat", "30")
                        .set("ComputeAverageCoancestryYesNo", "No"),
                    --seed);
            const auto accuracy =
                numbertable("Selection/AccuracyOfBreedingValueSelectionCycle1.txt", 1);
            ASSERT_EQ(accuracy.size(), 1u);
            EXPECT_LT(std::abs(accuracy[0][0]), 1);
            EXPECT_NE(accuracy[0][0], 0);
        }
    }
    checkdescent();
}
