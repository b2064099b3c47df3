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

namespace
{
void writescript(const std::string &path, const std::string &lines)
{
    fs::remove(path); // a link to the program
    writefile(path, "#!/bin/sh\n" + lines);
    fs::permissions(path, fs::perms::owner_exec, fs::perm_options::add);
}

std::string withouttime(const std::string &report)
{
    return report.substr(0, report.find("Time duration"));
}

// The program with so many commands side by side; files that it compressed, which hold a time, are as
// they were.
commandresult runside(const std::string &natonce)
{
    for (const char *folder : {"Chromosomes", "Selection", "SimulatedData"}) fs::remove_all(folder);
    writefile("Seed.txt", "-19\n");
    const commandresult result = runcommand("SOLVANTO_THREADS=" + natonce + " ./solvanto --quiet");
    runcommand("find . -name '*.gz' -exec gunzip {} +");
    return result;
}
} // namespace

// However many programs run at once, a run leaves and tells the same: with recombination regions and
// compression; where regions stop it at the third chromosome; where a formatter fails and talks.
TEST_F(reproducibility, programssidebyside)
{
    const std::string real = fs::canonical("Vintrecaskelle").string();
    smallrun()
        .set("NumberOfChromosomes", "5")
        .set("RecombinationHotspotsOnOff", "On")
        .set("WriteFullSequenceOutOnOff", "On")
        .set("ZipSequenceOutputFilesYesNo", "Yes")
        .write();
    fs::create_directory("RecombinationSpecifications");
    const auto regionsof = [](int chrom, const std::string &lines) {
        writefile("RecombinationSpecifications/Chromosome" + std::to_string(chrom) + ".txt", lines);
    };
    for (int chrom = 1; chrom <= 5; ++chrom) regionsof(chrom, "0 0.4 0.8\n0.5 1 0.2\n");
    regionsof(4, "0 0.4 0.7\n0.5 1 0.2\n");
    const auto expectsame = [](int status) {
        const commandresult one = runside("1");
        const filetree was = readtree();
        EXPECT_EQ(one.status, status) << one.out << one.err;
        for (const char *natonce : {"2", "7"}) {
            const commandresult more = runside(natonce);
            EXPECT_EQ(withouttime(more.out), withouttime(one.out));
            EXPECT_EQ(more.err, one.err);
            EXPECT_EQ(more.status, one.status);
            expectsametree(was, readtree());
        }
        return one;
    };
    EXPECT_NE(expectsame(0).out.find("WARNING: proportion of recombinations"), std::string::npos);
    writescript("Vintrecaskelle", "echo \"formats $(basename \"$PWD\")\"\n"
                                  "[ \"$(basename \"$PWD\")\" != Chromosome2 ] || exit 5\n"
                                  "exec " +
                                      real + " \"$@\"\n");
    const std::string told = expectsame(2).out;
    EXPECT_LT(told.find("formats Chromosome2\nfailure : Solvanto : RunMacsRewrite B"),
              told.find("formats Chromosome3"))
        << told;
    regionsof(3, "0.5 1 0.2\n0 0.4 0.8\n");
    EXPECT_NE(expectsame(110031 % 256).err.find("STOP 110031"), std::string::npos);
}

// A simulator of a user's own may take its seed from the clock, or be no program for company.
TEST_F(reproducibility, othersimulatorsrunalone)
{
    smallrun().set("NumberOfChromosomes", "3").write();
    const std::string real = fs::canonical("macs").string();
    writescript("macs",
                "[ \"$1\" != --version ] || exit 1\necho begins >>../../order.txt\nsleep 0.05\n" +
                    real + " \"$@\" || exit\necho ends >>../../order.txt\n");
    EXPECT_EQ(runside("3").status, 0);
    EXPECT_EQ(readfile("order.txt"), "begins\nends\nbegins\nends\nbegins\nends\n");
}
