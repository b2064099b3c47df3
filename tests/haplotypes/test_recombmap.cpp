#include "haplotypes/recombmap.h"
#include "openstate.h"

#include "testsupport.h"

// A chromosome of 5 blocks, site l at l / 300: block j ends at position j / 5.
class recombmap : public infolder
{
  protected:
    static constexpr int64 nblock = 5;
    void SetUp() override
    {
        infolder::SetUp();
        textline map;
        for (int64 l = 1; l <= 60 * nblock; ++l) {
            puti(map, l, 10);
            puti(map, l, 10);
            putf(map, static_cast<double>(l) / 300, 20, 10);
            map += "         0         0\n";
        }
        writefile("Chromosomes/Chromosome2/PhysicalMapIncluded.txt", map);
        s.founders.recombhotspotsonoff = true;
        s.haplo.nblock = nblock;
        s.haplo.recombfactperblock.allocate(nblock, -1);
    }
    outcome read(const std::string &regions)
    {
        writefile("RecombinationSpecifications/Chromosome2.txt", regions);
        return runbody([&] { setrecombfactors(s, 2); });
    }
    void expectshares(const std::vector<double> &shares)
    {
        for (int64 j = 1; j <= nblock; ++j)
            EXPECT_DOUBLE_EQ(s.haplo.recombfactperblock(j), shares[static_cast<std::size_t>(j - 1)])
                << "block " << j;
    }
    std::vector<std::string> achieved()
    {
        return readlines("RecombinationSpecifications/Chromosome2Achieved.txt");
    }
    openstate s;
};

// By hand. Starts 0, 0.41, 0.5 are first met at sites 1, 123, 150: blocks 1, 3, 3; the third may
// not share block 3 and starts in block 4. Stops 0.41 and 0.5 are met at sites 123 and 150, block
// 3: the first region gets block 2. The second region's stop may lie in block 3 again, since the
// first ended in block 2, and gets max(3, 2) = 3. The last runs to block 5, its stop of exactly 1
// becomes the last site's position (here 1 as well). Proportions 1, 1, 2 are rescaled.
TEST_F(recombmap, regionsarefittedtoblocks)
{
    EXPECT_EQ(read("0 0.41 1\n0.41 0.5 1\n0.5 1.0 2\n").code(), 0);
    expectshares({0.125, 0.125, 0.25, 0.25, 0.25});
    const auto lines = achieved();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0],
              " Start Stop Prop StartBlockWish StartBlockAchieved StopBlockWish StopBlockAchieved");
    EXPECT_EQ(lines[1], "  0.00000000  0.40000000  0.25000000       1       1       3       2");
    EXPECT_EQ(lines[2], "  0.40333333  0.60000000  0.25000000       3       3       3       3");
    EXPECT_EQ(lines[3], "  0.60333333  1.00000000  0.50000000       3       4       5       5");
    // A second reading writes the same file again.
    EXPECT_EQ(read("0 0.41 1\n0.41 0.5 1\n0.5 1.0 2\n").code(), 0);
    EXPECT_EQ(achieved(), lines);
}

// Blocks between regions get nothing; a stop beyond the map is met by no site, which only the last
// region may have: its wish is 0, and it runs to the last block.
TEST_F(recombmap, gapsandlastregion)
{
    EXPECT_EQ(read("0 0.21 0.75\n0.61 1.5 0.25\n").code(), 0);
    expectshares({0.75, 0, 0, 0.125, 0.125});
    EXPECT_EQ(achieved()[2].substr(36), "       4       4       0       5");
}

TEST_F(recombmap, evenshareissingleprecision)
{
    s.founders.recombhotspotsonoff = false;
    setrecombfactors(s, 2);
    expectshares(std::vector<double>(5, static_cast<double>(1.0f / 5.0f)));
}

TEST_F(recombmap, stops)
{
    outcome end = read("0 .1 1\n.1 .2 1\n.2 .3 1\n.3 .4 1\n.4 .5 1\n.5 1 1\n");
    EXPECT_EQ(end.code(), -1);
    EXPECT_EQ(end.output,
              "ERROR: Too many recombination regions (nRecBlock) defined relative to the\n"
              "       internal genome structure (nBlock) (nRecBlock must be <= nBlock)\n"
              "nBlock:            5\nnRecBlock:         6\nnSegSitesPerBlock: 60\n"
              "nSegSites:         300\nSolution:\n"
              " 1. Decrease the number of recombination regions (=decrease nRecBlock)\n"
              " 2. Simulate genome with more segregating sites (=increase nBlock)\n");
    for (const char *unsorted : {"0.5 0.6 1\n0.5 1 1\n", "0 0.6 1\n0.3 0.6 1\n"}) {
        end = read(unsorted);
        EXPECT_EQ(end.code(), 110033);
        EXPECT_EQ(end.output, "ERROR: Variable recombination file should be sorted from start to "
                              "end of chromosome\n");
    }
    // A start behind the last site; a stop behind it; a start crowded out of the last block.
    for (const char *beyond :
         {"0 0.5 1\n1.1 1.2 1\n", "0 1.5 1\n0.5 1.6 1\n", "0.85 0.87 1\n0.9 1 1\n"}) {
        end = read(beyond);
        EXPECT_EQ(end.code(), 110034) << beyond;
        EXPECT_EQ(end.output, " ERROR: Recombination region lies beyond the included sites of "
                              "chromosome 2\n");
    }
    // Regions 1 to 3 and 2 to 5: the overlap belongs to the later one, 1/2/3 + 1/2 remain.
    end = read("0 0.61 0.5\n0.21 1 0.5\n");
    EXPECT_EQ(end.code(), 110035);
    EXPECT_NE(end.output.find("- with    hot/cold-spots:0.66666666666666"), std::string::npos);
    EXPECT_NE(end.output.find("- without hot/cold-spots:1.0\n"), std::string::npos);
}
