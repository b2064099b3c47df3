// Replicates: seeds by scripts/seed give runs that vary as independent ones, the seeds that runs
// leave don't.
#include "wholeruns/runsupport.h"

#include <set>

namespace
{
int64 seedof(int64 studyseed, int64 replicate)
{
    const commandresult printed =
        runcommand(sourcefolder() + "/scripts/seed " + std::to_string(studyseed) + " " +
                   std::to_string(replicate));
    EXPECT_EQ(printed.status, 0) << printed.err;
    return std::stoll(printed.out);
}

// The formula of the script's header.
std::uint64_t mix(std::uint64_t z)
{
    z = (z ^ z >> 30) * 0xbf58476d1ce4e5b9;
    z = (z ^ z >> 27) * 0x94d049bb133111eb;
    return z ^ z >> 31;
}

int64 formulaseed(int64 studyseed, int64 replicate)
{
    constexpr std::uint64_t golden = 0x9e3779b97f4a7c15;
    const auto study = static_cast<std::uint64_t>(studyseed);
    const auto number = static_cast<std::uint64_t>(replicate);
    return -static_cast<int64>(2 + mix(mix(study + golden) + number * golden) % 2147483645);
}
} // namespace

class seeds : public wholerun
{
  protected:
    static constexpr std::size_t nindiv = 40;
    static constexpr double morgans = 0.8;

    // One generation of burn-in; each run of a replicate then makes the second one anew, so that
    // all have the same founders and the same blocks.
    void makefoundergeneration()
    {
        spec.change("NumberOfChromosomes,1; NumberGenerationsBurnIn,2; "
                    "NumberGenerationsSelection,0; MutationRateMaCS,External,5e-7; "
                    "NumberOfIndividualsInEachGeneration,Constant,40; "
                    "GenerationFlexibilityOnOff,On; StartStopGeneration,1,1");
        spec.set("ChromosomeLengthMorgansSolvanto", "External," + std::to_string(morgans));
        mustrun(spec, -1);
        nblock = numbertable("SimulatedData/NbOfSegSitesPerChrom.txt", 1)[0][2] / 60;
        spec.set("StartStopGeneration", "2,2");
        spec.write();
    }

    // Runs of generation 2, each behind a command that may write Seed.txt; the seeds stand in
    // seeds.txt then. Gives the variance among runs of the crossings in the gametes of generation 2
    // over what it must be: a gamete of M Morgans in n blocks has M (1 - M / n).
    double varianceratio(std::size_t nruns, const std::string &beforerun)
    {
        const commandresult ran = runcommand(
            "rm -f seeds.txt counts.txt; for run in $(seq " + std::to_string(nruns) + "); do " +
            beforerun + " && cat Seed.txt >>seeds.txt && ./solvanto && tail -n " +
            std::to_string(nindiv) +
            " SimulatedData/RecombinationCount.txt >>counts.txt || exit 1; done");
        EXPECT_EQ(ran.status, 0) << ran.err;
        const std::vector<std::vector<double>> lines = numbertable("counts.txt");
        EXPECT_EQ(lines.size(), nruns * nindiv);
        double sum = 0, sumsquares = 0;
        for (std::size_t run = 0; run < nruns; ++run) {
            double count = 0;
            for (std::size_t i = 0; i < nindiv; ++i)
                count += lines.at(run * nindiv + i)[1] + lines.at(run * nindiv + i)[2];
            sum += count;
            sumsquares += count * count;
        }
        const auto n = static_cast<double>(nruns);
        const double expected = 2 * nindiv * morgans * (1 - morgans / nblock);
        return (sumsquares - sum * sum / n) / (n - 1) / expected;
    }

    spectext spec = smallrun();
    double nblock = 0;
};

// Among 100 independent runs the ratio is chi-squared with 99 degrees of freedom over 99: 999 in
// 1,000 lie from 0.597 to 1.535.
TEST_F(seeds, replicatesvaryasindependentruns)
{
    makefoundergeneration();
    const double independent =
        varianceratio(100, sourcefolder() + "/scripts/seed 2026 $run >Seed.txt");
    EXPECT_GT(independent, 0.597);
    EXPECT_LT(independent, 1.535);
    std::set<int64> used;
    for (const std::string &line : readlines("seeds.txt")) {
        used.insert(std::stoll(line));
        EXPECT_EQ(std::stoll(line), formulaseed(2026, std::ssize(used)));
    }
    EXPECT_EQ(used.size(), 100);
    EXPECT_LT(*used.rbegin(), -1);
    EXPECT_GE(*used.begin(), -2147483646);

    // A run that takes the seed that the one before left uses nearly all of its draws once more. Of
    // 50 independent runs all but 5 in 10,000 have more than 0.46.
    EXPECT_LT(varianceratio(50, ":"), 0.46);
}

TEST(seedscript, takeswholenumbersofeitherlength)
{
    for (const int64 studyseed : {0LL, -1LL, 999999999999999999LL, -999999999999999999LL})
        for (const int64 replicate : {1LL, 77LL, 999999999999999999LL})
            EXPECT_EQ(seedof(studyseed, replicate), formulaseed(studyseed, replicate));
    for (const char *wrong :
         {"", "1", "1 0", "1 -1", "x 1", "1 2.5", "1 2 3", "1000000000000000000 1"}) {
        const commandresult refused = runcommand(sourcefolder() + "/scripts/seed " + wrong);
        EXPECT_EQ(refused.status, 1) << wrong;
        EXPECT_EQ(refused.out, "") << wrong;
    }
}
