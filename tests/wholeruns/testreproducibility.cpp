// Runs repeated, killed, continued and cut short: what must come out the same.
#include "wholeruns/runsupport.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

class reproducibility : public wholerun
{
  protected:
    // Puts the seed back that the last run began with.
    void restoreseed()
    {
        fs::copy_file("SeedOld.txt", "Seed.txt", fs::copy_options::overwrite_existing);
    }
};

namespace
{
spectext withsequence()
{
    return smallrun().set("WriteFullSequenceOutOnOff", "On");
}
} // namespace

TEST_F(reproducibility, sameseedsamebytes)
{
    mustrun(withsequence(), -42);
    const filetree first = readtree();
    restoreseed();
    mustrun(withsequence());
    expectsametree(first, readtree());
    mustrun(withsequence()); // the next run goes on with the stream: another replicate
    EXPECT_NE(first.at("SimulatedData/RecombinationCount.txt"),
              readfile("SimulatedData/RecombinationCount.txt"));
}

// A run killed at any moment and repeated from SeedOld.txt leaves what an undisturbed run leaves.
TEST_F(reproducibility, killedandrunagain)
{
    mustrun(smallrun(), -7);
    const filetree undisturbed = readtree();
    for (const char *delay : {"0.02", "0.05", "0.1", "0.2", "0.4"}) {
        writefile("Seed.txt", "-7\n");
        runcommand("./solvanto & sleep " + std::string(delay) + "; kill -9 $!; wait $!");
        if (readfile("Seed.txt") != "-7\n") restoreseed();
        mustrun(smallrun());
        expectsametree(undisturbed, readtree());
    }
}

// The same programme at once and in three runs: files of the same shape, each run keeps what the
// one before wrote.
TEST_F(reproducibility, continuedrunskeepearliergenerations)
{
    const auto span = [](const char *generations) {
        return withsequence()
            .set("NumberGenerationsBurnIn", "3")
            .set("NumberGenerationsSelection", "3")
            .set("GenerationFlexibilityOnOff", "On")
            .set("StartStopGeneration", generations);
    };
    mustrun(span("1,6"), -11);
    filetree atonce = readtree();
    mustrun(span("1,2"), -11);
    const filetree first = readtree();
    mustrun(span("3,4"));
    const filetree second = readtree();
    mustrun(span("5,6"));
    const filetree third = readtree();

    // Files that grow: the later content begins with the earlier one.
    for (const char *path :
         {"SimulatedData/Pedigree.txt", "SimulatedData/Gender.txt",
          "SimulatedData/NbOfIndivInEachGen.txt", "SimulatedData/PedigreeTbvTdvTpv.txt",
          "SimulatedData/GeneticMeansPerGeneration.txt",
          "SimulatedData/TotalGenicAndGeneticVariancesPerGeneration.txt",
          "SimulatedData/UnrestrictedQtnIndivGenotypes.txt", "SimulatedData/RecombinationCount.txt",
          "SimulatedData/FullSequencePhase.txt", "SimulatedData/FullSequenceGenotype.txt",
          "SimulatedData/AllIndividualsSnpChips/Chip1Phase.txt",
          "SimulatedData/AllIndividualsSnpChips/Chip1Genotype.txt",
          "Chromosomes/Chromosome1/RecombinationTracking.txt"}) {
        EXPECT_EQ(second.at(path).rfind(first.at(path), 0), 0u) << path;
        EXPECT_EQ(third.at(path).rfind(second.at(path), 0), 0u) << path;
    }
    // What belongs to a generation or to the start stays to the byte.
    for (const auto &[path, content] : first) {
        const bool bygeneration = path.find("Generation1.") != std::string::npos ||
                                  path.find("Generation2.") != std::string::npos;
        const bool effects = path.find("Effects.txt") != std::string::npos ||
                             path.find("VarianceComponents") != std::string::npos;
        if (bygeneration || effects) {
            EXPECT_EQ(third.at(path), content) << path;
        }
    }
    // The same files with as many lines as the run at once left.
    for (const auto &[path, content] : atonce) {
        ASSERT_TRUE(third.contains(path)) << path;
        if (path.ends_with(".txt") && path.find("Genome") == std::string::npos &&
            path.find("Blocks") == std::string::npos) {
            EXPECT_EQ(std::count(content.begin(), content.end(), '\n'),
                      std::count(third.at(path).begin(), third.at(path).end(), '\n'))
                << path;
        }
    }
    // A run started again at generation 4 replaces it and everything behind it.
    mustrun(span("4,6"));
    const filetree again = readtree();
    const std::string table = "SimulatedData/PedigreeTbvTdvTpv.txt";
    const std::size_t kept = 1 + 3 * 20; // title and three generations of 20
    const auto linesof = [](const std::string &text, std::size_t n) {
        std::size_t at = 0;
        for (std::size_t i = 0; i < n; ++i) at = text.find('\n', at) + 1;
        return text.substr(0, at);
    };
    EXPECT_EQ(linesof(again.at(table), kept), linesof(third.at(table), kept));
    EXPECT_NE(again.at(table), third.at(table));
    EXPECT_EQ(again.at(table).size(), third.at(table).size());
}

TEST_F(reproducibility, drivewithouteditingdoesnothing)
{
    mustrun(smallrun(), -81);
    filetree without = readtree();
    mustrun(smallrun().set("GeneDriveOnOff", "On"), -81);
    filetree with = readtree();
    EXPECT_EQ(with["SimulatedData/GeneDriveQtnPresence.txt"],
              "        IndividualID        QtnWithGeneDrive        PhaseWithGeneDrive\n");
    with.erase("SimulatedData/GeneDriveQtnPresence.txt");
    with.erase("SolvantoSpec.txt");
    without.erase("SolvantoSpec.txt");
    expectsametree(without, with);
}
