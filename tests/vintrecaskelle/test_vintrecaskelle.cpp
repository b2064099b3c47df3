#include "testsupport.h"

#include <random>

namespace
{
class formatter : public infolder
{
};

struct simulatedsite {
    std::string position; // as the simulator writes it
    std::string alleles;
};

// An output of the simulator with the selected sites of the closing block.
std::string outputof(std::size_t nhaps, const std::vector<simulatedsite> &sites,
                     const std::vector<std::size_t> &selected)
{
    std::string text = "COMMAND:\t./macs 10 1000 -t 0.1\nSEED:\t1284\n";
    for (std::size_t i = 0; i < sites.size(); ++i)
        text += "SITE:\t" + std::to_string(i) + "\t" + sites[i].position + "\t     1.06386377\t" +
                sites[i].alleles + "\n";
    text += "TOTAL_SAMPLES:\t" + std::to_string(nhaps) + "\nTOTAL_SITES:\t" +
            std::to_string(selected.size()) + "\nBEGIN_SELECTED_SITES\n";
    for (std::size_t i = 0; i < selected.size(); ++i)
        text += (i > 0 ? "\t" : "") + std::to_string(selected[i]);
    return text + "\nEND_SELECTED_SITES\n";
}

commandresult runformatter(const std::string &argument)
{
    return runcommand(binfolder() + "/Vintrecaskelle " + argument);
}

const std::vector<simulatedsite> threesites = {
    {" 8.36780906e-05", "010"}, {"  0.00816364108", "111"}, {"              1", "001"}};
} // namespace

TEST_F(formatter, writeselectedsites)
{
    writefile("output.txt", outputof(3, threesites, {0, 2}));
    const commandresult result = runformatter("3");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_EQ(readfile("SegSites.txt"), " 2\n");
    EXPECT_EQ(readfile("MacsHaplotypes.txt"), " 0 0\n 1 0\n 0 1\n");
    EXPECT_EQ(readfile("PhysicalMapInput.txt"),
              "  0.00008367809060000000\n  1.00000000000000000000\n");

    // No site at all, and none of the sites selected.
    for (const std::string &output :
         {std::string("COMMAND:\t./macs 3 1000 -t 0.1\nSEED:\t6\n"), outputof(3, threesites, {})}) {
        writefile("output.txt", output);
        EXPECT_EQ(runformatter("3").status, 0);
        EXPECT_EQ(readfile("SegSites.txt"), " 0\n");
        EXPECT_EQ(readfile("PhysicalMapInput.txt"), "");
        EXPECT_EQ(readfile("MacsHaplotypes.txt"), "\n\n\n");
    }
}

// Against a plain copy of the characters: numbers of haplotypes and sites around the sizes of
// bytes, words and chunks; trees between the sites.
TEST_F(formatter, transposeexactly)
{
    std::mt19937_64 random(20240521);
    const std::pair<std::size_t, std::size_t> sizes[] = {
        {1, 1}, {7, 65}, {8, 64}, {10, 41}, {64, 4097}, {65, 128}, {200, 9000}, {3000, 33}};
    for (const auto &[nhaps, nsites] : sizes) {
        std::vector<simulatedsite> sites(nsites);
        std::vector<std::size_t> selected;
        for (std::size_t i = 0; i < nsites; ++i) {
            sites[i].position = "  0." + std::to_string(100000 + i);
            for (std::size_t h = 0; h < nhaps; ++h) sites[i].alleles += random() & 1 ? '1' : '0';
            if (nsites < 3 || random() % 8 != 0) selected.push_back(i);
        }
        std::string output = outputof(nhaps, sites, selected);
        output.insert(output.find("SITE:"), "NEWICK_TREE:\t[10](1:0.1,2:0.1);\n");
        writefile("output.txt", output);
        ASSERT_EQ(runformatter(std::to_string(nhaps)).status, 0) << nhaps;
        std::string expected;
        for (std::size_t h = 0; h < nhaps; ++h) {
            for (const std::size_t i : selected) expected += {' ', sites[i].alleles[h]};
            expected += '\n';
        }
        EXPECT_TRUE(readfile("MacsHaplotypes.txt") == expected) << nhaps << " " << nsites;
        EXPECT_EQ(readlines("PhysicalMapInput.txt").size(), selected.size());
    }
}
