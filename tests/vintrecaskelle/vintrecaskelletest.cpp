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

// Refused: a message, a bad status, and not one of the files, also none of an earlier run.
void expectrefused(const std::string &output, const std::string &message,
                   const std::string &argument = "3")
{
    for (const char *name : {"SegSites.txt", "PhysicalMapInput.txt", "MacsHaplotypes.txt"})
        writefile(name, " 1\n");
    writefile("output.txt", output);
    const commandresult result = runformatter(argument);
    EXPECT_NE(result.status, 0) << output;
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
    EXPECT_EQ(runcommand("ls").out, "output.txt\n") << output;
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

// Cut anywhere but behind the "SEED:" line and within the last word, it is a broken run.
TEST_F(formatter, refuseeverycut)
{
    const std::string whole = outputof(3, threesites, {0, 1, 2});
    const std::size_t afterseed = whole.find("SITE:");
    for (std::size_t n = 0; n + 2 <= whole.size(); n += 7)
        if (n != afterseed) expectrefused(whole.substr(0, n), "ERROR: output.txt: ");
    expectrefused(whole.substr(0, whole.find("TOTAL")), "3 sites without the closing block");
}

TEST_F(formatter, refuseforeigninput)
{
    const std::string whole = outputof(3, threesites, {0, 1, 2});
    const auto changed = [&](const std::string &from, const std::string &to) {
        std::string text = whole;
        return text.replace(text.find(from), from.size(), to);
    };
    expectrefused("COMMAND:\t./macs -q 3\nUsage: <samplesize> <region>\n", "\"SEED:\"");
    expectrefused("COMMAND:\t./macs 3\n", "ends after line 1");
    expectrefused(changed("SEED:\t1284", "SEED:\tnone"), "line 2");
    expectrefused(changed("SITE:\t1\t", "SITE:\t2\t"), "site 2 stands where site 1 is due");
    expectrefused(changed("0.00816364108", "0.0000000108"), "before that of the site before");
    expectrefused(changed("0.00816364108", "1.00816364108"), "not between 0 and 1");
    expectrefused(changed("\t111", "\t121"), "one word of 0 and 1");
    expectrefused(changed("\t111", "\t11"), "2 alleles");
    expectrefused(changed("TOTAL_SAMPLES:\t3", "TOTAL_SAMPLES:\t4"), "3 haplotypes");
    expectrefused(changed("TOTAL_SITES:\t3", "TOTAL_SITES:\t2"), "TOTAL_SITES: says 2");
    expectrefused(changed("0\t1\t2\n", "0\t2\t1\n"), "not the next index");
    expectrefused(whole + whole.substr(whole.find("SITE:")), "second chromosome");
    expectrefused(whole, "3 alleles, asked for are 4", "4");
    runcommand("rm output.txt");
    EXPECT_NE(runformatter("3").err.find("output.txt"), std::string::npos);
    for (const char *argument : {"", "0", "-3", "3 3", "three"})
        EXPECT_NE(runformatter(argument).err.find("Vintrecaskelle N"), std::string::npos);
}
