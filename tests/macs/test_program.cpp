// The program macs: layouts, refusals, seeds.
#include "macs/seed.h"

#include "testsupport.h"

#include <sstream>

namespace
{
const std::string program = binfolder() + "/macs";

class macsprogram : public infolder
{
};

std::vector<std::string> linesof(const std::string &text)
{
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::string seedline(const std::string &folder)
{
    const commandresult run = runcommand("cd " + folder + " && " + program + " 4 1000 -t 1e-3");
    EXPECT_EQ(run.status, 0) << run.err;
    return linesof(run.out).at(1);
}
} // namespace

// Two chromosomes in one output, blanks of the command line run together. The bytes are the same
// from every build: the draws, their order and the layouts stay. When one of them changes on
// purpose, the text is taken from the program anew.
TEST_F(macsprogram, samebytesfromsameseed)
{
    const commandresult run = runcommand("cd " + binfolder() +
                                         " && ./macs 6  1e5 -t   0.12E-04 -r   0.40E-04 "
                                         "-eN    0.10    3.0 -h 1 -i 2  -s 10");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out,
              "COMMAND:\t./macs 6 1e5 -t 0.12E-04 -r 0.40E-04 -eN 0.10 3.0 -h 1 -i 2 -s 10\n"
              "SEED:\t10\n"
              "SITE:\t0\t0.0326387914255\t      1.5663544\t010000\n"
              "SITE:\t1\t  0.25877873182\t     3.38492138\t101111\n"
              "SITE:\t2\t 0.878341906216\t    0.885118453\t010101\n"
              "SITE:\t3\t 0.911423915124\t     0.59163594\t101010\n"
              "TOTAL_SAMPLES:\t6\n"
              "TOTAL_SITES:\t4\n"
              "BEGIN_SELECTED_SITES\n"
              "0\t1\t2\t3\n"
              "END_SELECTED_SITES\n"
              "SITE:\t0\t 0.015197115375\t     3.67166926\t111001\n"
              "SITE:\t1\t 0.322617165455\t     2.18216145\t111001\n"
              "SITE:\t2\t 0.528108940269\t     0.62630342\t111001\n"
              "SITE:\t3\t 0.789247810477\t     1.62844074\t111000\n"
              "TOTAL_SAMPLES:\t6\n"
              "TOTAL_SITES:\t4\n"
              "BEGIN_SELECTED_SITES\n"
              "0\t1\t2\t3\n"
              "END_SELECTED_SITES\n");

    // No site: two lines in all. Notes stay few however many recombinations there are.
    const commandresult none = runcommand(program + " 3  1e7 -t 0 -r   1e-3 -s 6");
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.out, "COMMAND:\t" + program + " 3 1e7 -t 0 -r 1e-3 -s 6\nSEED:\t6\n");
    EXPECT_LT(linesof(none.err).size(), 10u);
}

TEST_F(macsprogram, regionfiles)
{
    // The third field of a fixed layout fills its 12 columns from 100 on.
    writefile("fixed.txt", "  0.40000000  0.40100000100.00000000\n  0.50000000\t0.60000000 2\r\n");
    writefile("free.txt", "0.4 0.401 100\n0.5 0.6 2");
    const std::string command = program + " 10 1000000 -t 0.16E-04 -r 0.40E-05 -s 4 -R ";
    const commandresult fixed = runcommand(command + "fixed.txt");
    const commandresult free = runcommand(command + "free.txt");
    ASSERT_EQ(fixed.status, 0) << fixed.err;
    EXPECT_EQ(fixed.out.substr(fixed.out.find('\n')), free.out.substr(free.out.find('\n')));
    EXPECT_EQ(fixed.err, free.err);
}

TEST_F(macsprogram, seedscomefromtherunandthefolder)
{
    runcommand("mkdir -p Chromosomes/Chromosome1 Chromosomes/Chromosome2 Chromosomes/Chromosome11");
    writefile("Seed.txt", " -1234\n");
    const std::string first = seedline("Chromosomes/Chromosome1");
    EXPECT_EQ(first, "SEED:\t" + std::to_string(macs::mixedseed("-1234", "Chromosome1")));
    EXPECT_EQ(first, seedline("Chromosomes/Chromosome1"));
    EXPECT_NE(first, seedline("Chromosomes/Chromosome2"));
    EXPECT_NE(first, seedline("Chromosomes/Chromosome11"));
    writefile("Seed.txt", "-1235\n");
    EXPECT_NE(first, seedline("Chromosomes/Chromosome1"));

    writefile("Seed.txt", "lucky\n");
    EXPECT_NE(runcommand("cd Chromosomes/Chromosome1 && " + program + " 4 1000 -t 1e-3").status, 0);
    runcommand("rm Seed.txt");
    EXPECT_NE(seedline("Chromosomes/Chromosome1"), seedline("Chromosomes/Chromosome1"));
}

// The script that the manual gives for other programs in this one's place.
TEST_F(macsprogram, wrapperofthemanualgivesseeds)
{
    const std::string manual = readfile(sourcefolder() + "/docs/macs.md");
    const std::size_t first = manual.find("#!/bin/sh");
    writefile("macs", manual.substr(first, manual.find("```", first) - first));
    writefile("Seed.txt", " 77\n");
    runcommand("chmod +x macs; ln -s " + program + " othermacs");
    std::vector<std::string> seeds;
    for (const std::string place : {"run/a", "run/b", "run/a"}) {
        const commandresult run = runcommand("mkdir -p " + place + " && cp macs " + place +
                                             " && cd " + place + " && ./macs 4 1000 -t 1e-3");
        ASSERT_EQ(run.status, 0) << run.err;
        seeds.push_back(linesof(run.out).at(1));
    }
    EXPECT_NE(seeds[0], seeds[1]);
    EXPECT_EQ(seeds[0], seeds[2]);
}
