// Runs whose parents are allocated by optimal contributions: the matings asked for, and average
// coancestry made again from matrices and pedigree.
#include "wholeruns/runsupport.h"

#include <cmath>
#include <filesystem>
#include <fstream>

namespace
{
// Two burn-in generations of 20, three cycles on the criterion, at a difference that is reached.
spectext contributions(const char *method, const char *difference = "0.05")
{
    return smallrun()
        .set("NumberGenerationsBurnIn", "2")
        .set("NumberGenerationsSelection", "3")
        .set("SelectionMethod", method)
        .set("UseExternalSnpSolutionsYesNo", "No")
        .set("AddQtnToTheSnpChipYesNo", "No")
        .set("SelectionPhenotypingStrategy", "AllPhenotypes")
        .set("ComputeAverageCoancestryYesNo", "Yes")
        .set("OptimalContributionSelectionOnOff", "On")
        .insertbefore("NumberOfTraits", "SizeOfXvectPopulationAndMaxNbOfGenerations ,5,100")
        .insertbefore("NumberOfTraits",
                      std::string("PercentageDifferenceInbreeding ,") + difference);
}

std::string infolderof(int cycle)
{
    return "Selection/SelectionFolder" + std::to_string(cycle) + "/";
}

double averagerelationship(const std::vector<std::vector<double>> &g, const std::vector<double> &x)
{
    double sum = 0;
    for (std::size_t i = 0; i < x.size(); ++i)
        for (std::size_t k = 0; k < x.size(); ++k) sum += x[i] * g[i][k + 1] * x[k];
    return sum;
}
} // namespace

class optimalcontributionruns : public wholerun
{
  protected:
    // Generation 2 + cycle has the parents of the mating list, of the right gender if genders
    // matter; gives how many candidates are parents.
    std::size_t checkparents(int cycle, bool gendersmatter);
    // The lines of the cycles, but for matrices that the last generation replaced.
    void checkcoancestry();
    std::vector<std::vector<double>> pedigree()
    {
        std::vector<std::vector<double>> rows;
        for (const std::string &line : readlines("SimulatedData/Pedigree.txt"))
            rows.push_back(numbersof(line.substr(0, 100)));
        return rows; // row i of individual i: the title stands at 0
    }
};

std::size_t optimalcontributionruns::checkparents(int cycle, bool gendersmatter)
{
    const auto matings = numbertable(infolderof(cycle) + "CorvalindResults/MatingListFinal.txt");
    const auto genders = numbertable("SimulatedData/Gender.txt", 1);
    const auto ped = pedigree();
    std::map<double, int> parents;
    EXPECT_EQ(matings.size(), 20u);
    for (std::size_t r = 0; r < matings.size(); ++r) {
        const auto &row = ped[static_cast<std::size_t>(20 * (cycle + 1)) + r + 1];
        for (std::size_t side = 0; side < 2; ++side) {
            EXPECT_EQ(row[3 + side], 20 * cycle + matings[r][side]);
            ++parents[row[3 + side]];
            if (gendersmatter) {
                EXPECT_EQ(genders[static_cast<std::size_t>(row[3 + side]) - 1][2], side + 1.0);
            }
        }
    }
    return parents.size();
}

void optimalcontributionruns::checkcoancestry()
{
    const auto lines = readlines("SimulatedData/AverageCoancestry.txt");
    const auto ped = pedigree();
    ASSERT_EQ(lines.size(), 5u);
    const std::vector<double> equal(20, 1.0 / 20);
    for (int cycle = 1; cycle <= 2; ++cycle) {
        const auto g = numbertable(infolderof(cycle) + "GFullMatrix1-1.txt");
        std::vector<double> shares(20, 0);
        for (int i = 20 * (cycle + 1) + 1; i <= 20 * (cycle + 2); ++i)
            for (const std::size_t side : {3, 4})
                shares[static_cast<std::size_t>(ped[static_cast<std::size_t>(i)][side] -
                                                20 * cycle - 1)] += 1.0 / 40;
        const auto words = wordsof(lines[static_cast<std::size_t>(cycle)]);
        EXPECT_EQ(words[0], std::to_string(cycle + 1));
        EXPECT_EQ(words[1], cycle == 1 ? "-" : std::to_string(cycle - 1));
        EXPECT_NEAR(std::stod(words[2]), averagerelationship(g, equal), 1e-9);
        EXPECT_NEAR(std::stod(words[3]), averagerelationship(g, shares), 1e-9);
    }
    EXPECT_EQ(wordsof(lines[3]).at(1), "2");
    const auto last = wordsof(lines[4]);
    EXPECT_EQ(last[0] + " " + last[1] + " " + last[3], "5 3 -");
    EXPECT_NEAR(std::stod(last[2]),
                averagerelationship(numbertable(infolderof(3) + "GFullMatrix1-1.txt"), equal),
                1e-9);
    EXPECT_NEAR(std::stod(wordsof(lines[1])[2]), 0, 1e-3); // the base of all cycles
    EXPECT_GT(std::stod(last[2]), std::stod(wordsof(lines[2])[2]));
}

TEST_F(optimalcontributionruns, matingsandcoancestryfollowthefiles)
{
    for (const char *method : {"GBlup", "PedigreeBlup"}) {
        SCOPED_TRACE(method);
        mustrun(contributions(method), -61);
        for (const int cycle : {1, 2, 3}) EXPECT_GT(checkparents(cycle, true), 4u);
        checkcoancestry();
    }
    // True values: relationships at the QTN. Plants: one pool of parents.
    mustrun(contributions("Tbv")
                .set("AnimalBreedingOnOff", "Off")
                .set("PlantBreedingOnOff", "On")
                .set("PerformMatingsConsideringTheGenderYesNo", "No")
                .set("NumberOfMaleParentsInEachGeneration", "Constant,0")
                .set("NumberOfFemaleParentsInEachGeneration", "Constant,0")
                .set("NumberOfParentsRegardlessTheGenderInEachGen", "Constant,8")
                .set("NumberOfSelfedParentsInEachGeneration", "Constant,0"),
            -62);
    for (const int cycle : {1, 2, 3}) EXPECT_GT(checkparents(cycle, false), 3u);
    EXPECT_FALSE(std::ifstream("SimulatedData/AverageCoancestry.txt").is_open());
}

// The table of a simulation in two runs has the lines of both, and what an earlier end of the
// simulation left behind is replaced.
TEST_F(optimalcontributionruns, coancestrygoesonwithacontinuedrun)
{
    const auto part = [](const char *generations) {
        return contributions("GBlup")
            .set("GenerationFlexibilityOnOff", "On")
            .set("StartStopGeneration", generations)
            .moveafter("StartStopGeneration", "GenerationFlexibilityOnOff");
    };
    mustrun(part("1,5"), -63);
    const auto whole = readlines("SimulatedData/AverageCoancestry.txt");
    mustrun(part("5,5"));
    const auto again = readlines("SimulatedData/AverageCoancestry.txt");
    ASSERT_EQ(again.size(), 5u);
    for (const std::size_t kept : {0, 1, 2}) EXPECT_EQ(again[kept], whole[kept]);
    EXPECT_NE(again[4], whole[4]); // other draws
    checkcoancestry();
}

// Twenty candidates can't raise x'Gx by 50: all matings of the best pair fall short of that.
TEST_F(optimalcontributionruns, whatcantbereachedstops)
{
    writefile("Seed.txt", "-64\n");
    const commandresult result = run(contributions("GBlup", "50"));
    EXPECT_EQ(result.status, 110001 % 256);
    EXPECT_NE(result.out.find(" ERROR: The specified PercentageDifferenceInbreeding\n"
                              " has not been reached\n"),
              std::string::npos);
    EXPECT_NE(readfile(infolderof(1) + "outCorvalind").find("NOT REACHED"), std::string::npos);

    // A program that leaves nothing ends the run where its result is read.
    std::filesystem::remove("Corvalind");
    const commandresult without = run(contributions("GBlup"));
    EXPECT_EQ(without.status, 2);
    EXPECT_NE(without.out.find("failure : Solvanto : RunCorvalind\n"), std::string::npos);
    EXPECT_NE(without.err.find("CorvalindResults/Frontier.txt: was not made"), std::string::npos);
}
