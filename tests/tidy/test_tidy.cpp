// Freeing the disk: scripts/tidy and solvanto --tidy. That runs go on without what is removed is
// told by the tests tidied.* (tests/trees).
#include "tidy/leavings.h"
#include "wholeruns/runsupport.h"

#include <algorithm>
#include <filesystem>
#include <fnmatch.h>

namespace fs = std::filesystem;

namespace
{
// Names of files that patterns of the table match.
std::vector<std::string> filesof(const filetree &tree, const std::vector<leavingkind> &kinds)
{
    std::vector<std::string> paths;
    for (const auto &[path, content] : tree)
        for (const leaving &row : leavingstable())
            if (std::ranges::count(kinds, row.kind) > 0 &&
                fnmatch(row.pattern.c_str(), path.c_str(), 0) == 0)
                paths.push_back(path);
    return paths;
}

const std::vector<leavingkind> removed = {leavingkind::founders, leavingkind::cycle,
                                          leavingkind::results};

filetree without(filetree tree, const std::vector<leavingkind> &kinds)
{
    for (const std::string &path : filesof(tree, kinds)) tree.erase(path);
    return tree;
}

std::string withouttime(const std::string &report)
{
    return report.substr(0, report.find("Time duration"));
}
} // namespace

class tidying : public wholerun
{
  protected:
    // Genomic prediction and the sequence, up to the first of two selection generations.
    static spectext firstpart()
    {
        return smallrun().change(
            "SelectionMethod,GBlup; SelectionPhenotypingStrategy,AllPhenotypes; "
            "WriteFullSequenceOutOnOff,On; GenerationFlexibilityOnOff,On; StartStopGeneration,1,4");
    }
    static spectext secondpart() { return firstpart().set("StartStopGeneration", "5,5"); }
    static commandresult tidy(const std::string &how)
    {
        return runcommand(sourcefolder() + "/scripts/tidy . --bin " + binfolder() + " " + how);
    }
    static void musttidy(const std::string &how)
    {
        const commandresult result = tidy(how);
        ASSERT_EQ(result.status, 0) << result.err;
    }
};

TEST_F(tidying, alldatasummary)
{
    mustrun(firstpart(), -3);
    const filetree whole = readtree();
    musttidy("--keep all --dry-run");
    musttidy("--keep data --dry-run");
    musttidy("--keep summary --dry-run");
    expectsametree(whole, readtree());

    musttidy("--keep all");
    const filetree tidied = readtree();
    EXPECT_GT(filesof(whole, removed).size(), 20);
    expectsametree(without(whole, removed), tidied);

    musttidy("--keep data");
    const std::vector<std::string> packed = filesof(tidied, {leavingkind::packed});
    EXPECT_GT(packed.size(), 20);
    filetree expected = tidied;
    for (const std::string &path : packed) {
        expected.erase(path);
        EXPECT_EQ(runcommand("gzip -dc " + path + ".gz").out, tidied.at(path)) << path;
        expected[path + ".gz"] = readfile(path + ".gz");
    }
    expectsametree(expected, readtree());

    // A run that goes on is refused before it changes anything but the seed.
    const commandresult refused = run(secondpart(), -4);
    EXPECT_EQ(refused.status, 2);
    EXPECT_NE(refused.err.find("was packed"), std::string::npos) << refused.err;
    musttidy("--unpack");
    for (const char *name : {"Seed.txt", "SeedOld.txt", "SolvantoSpec.txt"})
        writefile(name, tidied.at(name));
    expectsametree(tidied, readtree());

    mustrun(secondpart(), -4);
    const filetree finished = readtree();
    musttidy("--keep summary");
    std::vector<leavingkind> most = removed;
    most.insert(most.end(), {leavingkind::packed, leavingkind::dropped});
    expectsametree(without(finished, most), readtree());
    EXPECT_TRUE(fs::exists("SimulatedData/PedigreeTbvTdvTpv.txt"));
}

TEST_F(tidying, ontheway)
{
    const commandresult plain = run(firstpart(), -3);
    musttidy("--keep all");
    filetree tidied = readtree();
    writefile("Seed.txt", "-3\n");
    const commandresult ontheway = runcommand("./solvanto --tidy");
    EXPECT_EQ(ontheway.status, 0) << ontheway.err;
    EXPECT_EQ(withouttime(ontheway.out), withouttime(plain.out));
    filetree left = readtree();
    for (filetree *tree : {&tidied, &left})
        tree->erase("Selection/SelectionFolder1/outQuillomere"); // seconds
    expectsametree(tidied, left);
}

TEST_F(tidying, unfinishedrunsarerefused)
{
    EXPECT_EQ(tidy("--keep all").status, 1);
    mustrun(firstpart(), -3);
    const commandresult underway = runcommand("flock SolvantoSpec.txt " + sourcefolder() +
                                              "/scripts/tidy . --keep all --bin " + binfolder());
    EXPECT_EQ(underway.status, 1);
    EXPECT_NE(underway.err.find("under way"), std::string::npos) << underway.err;
    const std::string chip = "SimulatedData/AllIndividualsSnpChips/Chip1Genotype.txt";
    const std::string sequence = "SimulatedData/FullSequenceGenotype.txt";
    for (const std::string &damage :
         {"sed -i '$d' " + chip, "sed -i '$d' " + sequence, "rm " + chip, "gzip -k " + chip,
          std::string("touch -d 'next hour' SeedOld.txt"),
          std::string("echo one more >>SimulatedData/PedigreeTbvTdvTpv.txt"),
          std::string("rm SimulatedData/Chip1SnpInformation.txt")}) {
        ASSERT_EQ(
            runcommand("mkdir kept && cp -a SimulatedData SeedOld.txt kept && " + damage).status,
            0);
        const filetree damaged = readtree();
        for (const char *keep : {"--keep all", "--keep summary"})
            EXPECT_EQ(tidy(keep).status, 1) << damage;
        expectsametree(damaged, readtree());
        runcommand("rm -r SimulatedData && mv kept/* . && rmdir kept");
    }
    musttidy("--keep all");
}

TEST(tidylist, standsinthepageforusers)
{
    std::string list;
    for (const std::string &line : readlines(sourcefolder() + "/docs/output-files.md"))
        for (const char *word : {"    remove ", "    pack ", "    drop "})
            if (line.starts_with(word)) list += line.substr(4) + "\n";
    EXPECT_EQ(list, runcommand(binfolder() + "/solvanto --tidylist").out);
}
