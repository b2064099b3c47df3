// What a run is refused for, by message and exit status, before any work is done.
#include "wholeruns/runsupport.h"

#include <filesystem>

class refusals : public wholerun
{
};

TEST_F(refusals, wrongmergetypes)
{
    for (const spectext &spec :
         {smallrun().set("MergeTypes", "Both"), smallrun().remove("MergeTypes")}) {
        const commandresult result = run(spec, -1);
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.out.find("MergeTypes is incorrectly set, please check your specfile"),
                  std::string::npos)
            << result.out;
        EXPECT_FALSE(std::filesystem::exists("SimulatedData"));
    }
}

TEST_F(refusals, missinginputs)
{
    smallrun().write();
    commandresult result = runcommand("./solvanto");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("Seed.txt"), std::string::npos);

    std::filesystem::remove("SolvantoSpec.txt");
    writefile("Seed.txt", "-9\n");
    result = runcommand("./solvanto");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("SolvantoSpec.txt"), std::string::npos);
    EXPECT_EQ(readfile("SeedOld.txt"), " -9\n"); // the seed has been replaced by then
    EXPECT_NE(readfile("Seed.txt"), " -9\n");

    // No coalescent simulator: the failure lines, then the read of what it should have left.
    std::filesystem::remove("macs");
    result = run(smallrun(), -9);
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.out.find("failure : Solvanto : RunMacs A\n"), std::string::npos);
    EXPECT_NE(result.out.find("failure : Solvanto : RunMacsRewrite A\n"), std::string::npos);
    EXPECT_NE(result.err.find("SegSites.txt"), std::string::npos);

    const commandresult stop = run(smallrun().set("IndexWeights", "0.9"), -9);
    EXPECT_EQ(stop.status, 100033 % 256);
    EXPECT_NE(stop.err.find("STOP 100033\n"), std::string::npos);
}
