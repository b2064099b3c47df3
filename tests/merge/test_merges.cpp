// The example of the pages, and the frequencies of a site.
#include "merge/mergefrequencies.h"
#include "wholeruns/runsupport.h"

#include <filesystem>

using merges = wholerun;

// The example that docs/merging.md goes through.
TEST_F(merges, walkthrough)
{
    const commandresult result =
        runcommand(sourcefolder() + "/scripts/workingfolder merging example " + binfolder() +
                   " && cd example && ./runexample >report.txt");
    EXPECT_EQ(result.status, 0) << result.err;
    std::vector<double> sizes;
    for (const auto &row : numbertable("example/SimulatedData/NbOfIndivInEachGen.txt", 1))
        sizes.push_back(row[1]);
    EXPECT_EQ(sizes, (std::vector<double>{80, 200, 200, 100, 100}));
    EXPECT_TRUE(std::filesystem::exists("example/Selection/SelectionFolder4/Ebv.txt"));
}

// 5 of the first allele and 3 of the second: 0.375 in single precision is exact; a third isn't.
TEST(mergefrequencies, ofonesite)
{
    double maf = 0, het = 0, nonzero = 0;
    calcallelefreqmerge({.n0 = 2, .n1 = 1, .n2 = 1}, maf, het, nonzero);
    EXPECT_EQ(maf, 0.375);
    EXPECT_EQ(het, 0.25);
    EXPECT_EQ(nonzero, 0.375);
    const outcome other = runbody(
        [&] { calcallelefreqmerge({.n0 = 1, .n1 = 0, .n2 = 2, .nother = 2}, maf, het, nonzero); });
    EXPECT_EQ(other.output,
              "Error in CalcAlleleFreqMerge case\nError in CalcAlleleFreqMerge case\n");
    EXPECT_EQ(nonzero, 0.66666668653488159);
    EXPECT_EQ(maf, 0.3333333432674408);
    calcallelefreqmerge({.n0 = 7}, maf, het, nonzero);
    EXPECT_EQ(maf, 0);
}
