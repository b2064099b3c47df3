// Runs repeated, killed, continued and cut short: what must come out the same.
#include "wholeruns/runsupport.h"

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

// A run killed at any moment and repeated from SeedOld.txt leaves what an undisturbed run leaves.
TEST_F(reproducibility, killedandrunagain)
{
    mustrun(smallrun(), -7);
    const filetree undisturbed = readtree();
    for (const char *delay : {"0.02", "0.05", "0.1", "0.2", "0.4"}) {
        writefile("Seed.txt", "-7\n");
        // What the run has started ends with it.
        runcommand("./solvanto & sleep " + std::string(delay) + "; kill -9 $!; wait $!");
        if (readfile("Seed.txt") != "-7\n") restoreseed();
        mustrun(smallrun());
        expectsametree(undisturbed, readtree());
    }
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
