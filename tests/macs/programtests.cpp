// The program macs: layouts, refusals, seeds.
#include "macs/seed.h"

#include "testsupport.h"
#include "textlayout.h"

#include <filesystem>
#include <map>
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

// The number in a field that is right-aligned in 15 columns or wider.
double fieldnumber(const std::string &field)
{
    EXPECT_GE(field.size(), 15u) << field;
    const std::string digits = field.substr(field.find_first_not_of(' '));
    EXPECT_EQ(digits.find_first_not_of("0123456789.e+-"), std::string::npos) << field;
    double value = -1;
    EXPECT_TRUE(readreal(digits, value)) << field;
    return value;
}

// Checks one chromosome's lines from at on; gives its number of sites, and moves at behind them.
std::size_t checkchromosome(const std::vector<std::string> &lines, std::size_t &at,
                            std::size_t nhaplotypes)
{
    std::size_t nsites = 0;
    double last = 0;
    std::string indices;
    for (; at < lines.size() && lines[at].starts_with("SITE:\t"); ++at, ++nsites) {
        std::vector<std::string> fields;
        std::istringstream in(lines[at]);
        for (std::string field; std::getline(in, field, '\t');) fields.push_back(field);
        EXPECT_EQ(fields.size(), 5u) << lines[at];
        if (fields.size() != 5) break;
        EXPECT_EQ(fields[1], std::to_string(nsites));
        const double position = fieldnumber(fields[2]);
        EXPECT_TRUE(position >= last && position <= 1);
        last = position;
        EXPECT_GT(fieldnumber(fields[3]), 0);
        EXPECT_EQ(fields[4].size(), nhaplotypes);
        EXPECT_EQ(fields[4].find_first_not_of("01"), std::string::npos);
        EXPECT_NE(fields[4].find('0'), std::string::npos);
        EXPECT_NE(fields[4].find('1'), std::string::npos);
        indices += (nsites > 0 ? "\t" : "") + std::to_string(nsites);
    }
    const std::vector<std::string> closing = {
        "TOTAL_SAMPLES:\t" + std::to_string(nhaplotypes), "TOTAL_SITES:\t" + std::to_string(nsites),
        "BEGIN_SELECTED_SITES", indices, "END_SELECTED_SITES"};
    if (at + 5 <= lines.size())
        EXPECT_EQ(std::vector<std::string>(lines.begin() + static_cast<std::ptrdiff_t>(at),
                                           lines.begin() + static_cast<std::ptrdiff_t>(at + 5)),
                  closing);
    else
        ADD_FAILURE() << "closing lines are missing behind line " << at;
    at += 5;
    return nsites;
}

std::string seedline(const std::string &folder, const std::string &options = "")
{
    const commandresult run =
        runcommand("cd " + folder + " && " + program + " 4 1000 -t 1e-3 " + options);
    EXPECT_EQ(run.status, 0) << run.err;
    return linesof(run.out).at(1);
}
} // namespace

TEST_F(macsprogram, layoutsofstandardoutput)
{
    // Two chromosomes in one output, blanks of the command line run together.
    const commandresult run = runcommand(
        program + " 10  1000000 -t   0.16E-04 -r   0.40E-05 -eN    0.06    2.0 -h 1 -i 2  -s 8");
    ASSERT_EQ(run.status, 0) << run.err;
    const std::vector<std::string> lines = linesof(run.out);
    EXPECT_EQ(lines[0], "COMMAND:\t" + program +
                            " 10 1000000 -t 0.16E-04 -r 0.40E-05 -eN 0.06 2.0 -h 1 -i 2 -s 8");
    EXPECT_EQ(lines[1], "SEED:\t8");
    std::size_t at = 2;
    EXPECT_GT(checkchromosome(lines, at, 10), 5u);
    EXPECT_GT(checkchromosome(lines, at, 10), 5u);
    EXPECT_EQ(at, lines.size());
    EXPECT_EQ(run.out.back(), '\n');

    // No site: two lines in all.
    const commandresult none = runcommand(program + " 10  1000 -t 0 -r   0.40E-05 -s 6");
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.out, "COMMAND:\t" + program + " 10 1000 -t 0 -r 0.40E-05 -s 6\nSEED:\t6\n");

    // Notes stay few however many recombinations there are.
    const commandresult many = runcommand(program + " 3 1e7 -t 0 -r 1e-3 -s 6");
    EXPECT_LT(linesof(many.err).size(), 10u);
}

TEST_F(macsprogram, positionsaredistinctandofmanydigits)
{
    const commandresult run = runcommand(program + " 4 100000000 -t 1e-4 -r 1e-5 -s 5");
    const std::vector<std::string> lines = linesof(run.out);
    std::map<std::string, int> seen;
    std::size_t longest = 0;
    for (const std::string &line : lines)
        if (line.starts_with("SITE:")) {
            const std::string position = wordsof(line)[2];
            ++seen[position];
            longest = std::max(longest, position.size());
        }
    ASSERT_GT(seen.size(), 10000u); // 18,333 expected
    EXPECT_GE(longest, 14u);
    // Of n places on 10^12 some n^2/2 10^-12 = 0.0002 pairs coincide.
    for (const auto &[position, ntimes] : seen) EXPECT_EQ(ntimes, 1) << position;
}

// The same bytes from every build: the draws, their order and the layouts stay. When one of
// them changes on purpose, this line is taken from the program anew.
TEST_F(macsprogram, sameseedsamesites)
{
    const std::string command = program + " 6 1e6 -t 1e-5 -r 4e-6 -eN 0.1 3 -s ";
    const commandresult run = runcommand(command + "20");
    EXPECT_EQ(run.out, runcommand(command + "20").out);
    EXPECT_NE(linesof(run.out).at(2), linesof(runcommand(command + "21").out).at(2));
    EXPECT_EQ(linesof(run.out).at(2), "SITE:\t0\t0.0411191820659\t    0.332548766\t011110");
}

TEST_F(macsprogram, refusalsareclear)
{
    writefile("order", "0.5 0.6 3\n0.1 0.2 2\n");
    writefile("overlap", "0.1 0.3 3\n\n0.2 0.4 2\n");
    writefile("outside", "0.1 1.3 3\n");
    writefile("flat", "0.1 0.1 3\n");
    writefile("negative", "0.1 0.2 -3\n");
    writefile("two", "0.1 0.2\n");
    writefile("stars", "  0.40000000  0.40010000************\n");
    writefile("empty", "\n");
    const std::string good = "10 1000 -t 1e-3 -r 1e-3 ";
    const std::vector<std::pair<std::string, std::string>> refusals = {
        {"", "N, the number of haplotypes, is missing"},
        {"1 1000 -t 1e-3", "must be 2 or more"},
        {"ten 1000 -t 1e-3", "not \"ten\""},
        {"2.5 1000 -t 1e-3", "not \"2.5\""},
        {"10 -t 1e-3", "not \"-t\""},
        {"10 0 -t 1e-3", "must be positive"},
        {"10 1000", "-t is missing"},
        {"10 1000 -t", "mutation rate of -t is missing"},
        {"10 1000 -t fast", "not \"fast\""},
        {"10 1000 -t nan", "not \"nan\""},
        {"10 1000 -t 1e-3x", "not \"1e-3x\""},
        {"10 1000 -t -1e-3", "must not be negative"},
        {"10 1000 -t 1e-3 -t 1e-3", "-t is given twice"},
        {good + "-eN 0.5", "size of -eN is missing"},
        {good + "-eN 0.5 0", "size of -eN must be positive"},
        {good + "-eN 0.5 2 -eN 0.50 3", "at one time"},
        {good + "-s 1.5", "not \"1.5\""},
        {good + "-h 2", "-h"},
        {good + "-i 0", "1 or more"},
        {good + "-q 3", "\"-q\" is no option"},
        {good + "-T", "trees"},
        {good + "-F frequencies.txt 0", "ascertainment"},
        {good + "-G 2", "growth"},
        {good + "-I 2 5 5 1", "several populations"},
        {good + "-em 1 1 2 3", "migration"},
        {good + "-c 1 2", "gene conversion"},
        {good + "-R absent", "absent: can't open"},
        {good + "-R order", "line 2: regions must stand in rising order"},
        {good + "-R overlap", "line 3: regions must stand in rising order"},
        {good + "-R outside", "from 0 to 1"},
        {good + "-R flat", "stop behind its start"},
        {good + "-R negative", "must not be negative"},
        {good + "-R two", "three numbers"},
        {good + "-R stars", "************"},
        {good + "-R empty", "holds no region"},
    };
    for (const auto &[options, message] : refusals) {
        const commandresult run = runcommand(program + " " + options);
        EXPECT_NE(run.status, 0) << options;
        EXPECT_NE(run.err.find(message), std::string::npos) << options << " got " << run.err;
        EXPECT_TRUE(run.out.starts_with("COMMAND:\t")) << options;
        EXPECT_EQ(run.out.find("SEED:"), std::string::npos) << options;
    }
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
    EXPECT_NE(fixed.err, runcommand(program + " 10 1000000 -t 0.16E-04 -r 0.40E-05 -s 4").err);
}

TEST_F(macsprogram, seedscomefromtherunandthefolder)
{
    for (const char *name : {"1", "2", "11"})
        std::filesystem::create_directories(std::string("Chromosomes/Chromosome") + name);
    writefile("Seed.txt", " -1234\n");
    const std::string first = seedline("Chromosomes/Chromosome1");
    EXPECT_EQ(first, "SEED:\t" + std::to_string(macs::mixedseed("-1234", "Chromosome1")));
    EXPECT_EQ(first, seedline("Chromosomes/Chromosome1"));
    EXPECT_NE(first, seedline("Chromosomes/Chromosome2"));
    EXPECT_NE(first, seedline("Chromosomes/Chromosome11"));
    EXPECT_EQ(seedline("Chromosomes/Chromosome1", "-s -77"), "SEED:\t-77");
    writefile("Seed.txt", "-1235\n");
    EXPECT_NE(first, seedline("Chromosomes/Chromosome1"));

    // The seed shown brings the same chromosome back.
    const std::string command =
        "cd Chromosomes/Chromosome1 && " + program + " 5 1e6 -t 1e-5 -r 1e-5";
    const std::string out = runcommand(command).out;
    const std::string again = runcommand(command + " -s " + wordsof(linesof(out).at(1)).at(1)).out;
    EXPECT_EQ(out.substr(out.find("SEED:")), again.substr(again.find("SEED:")));

    writefile("Seed.txt", "lucky\n");
    EXPECT_NE(runcommand("cd Chromosomes/Chromosome1 && " + program + " 4 1000 -t 1e-3").status, 0);
    std::filesystem::remove("Seed.txt");
    EXPECT_NE(seedline("Chromosomes/Chromosome1"), seedline("Chromosomes/Chromosome1"));
}

// The script that the manual gives for other programs in this one's place.
TEST_F(macsprogram, wrapperofthemanualgivesseeds)
{
    const std::string manual = readfile(sourcefolder() + "/docs/macs.md");
    const std::size_t first = manual.find("#!/bin/sh");
    ASSERT_NE(first, std::string::npos);
    writefile("macs", manual.substr(first, manual.find("```", first) - first));
    writefile("Seed.txt", " 77\n");
    std::filesystem::create_symlink(program, "othermacs");
    std::vector<std::string> seeds;
    for (const std::string place : {"run/a", "run/b", "run/a"}) {
        std::filesystem::create_directories(place);
        const commandresult run = runcommand("cp macs " + place + " && cd " + place +
                                             " && chmod +x macs && ./macs 4 1000 -t 1e-3");
        ASSERT_EQ(run.status, 0) << run.err;
        seeds.push_back(linesof(run.out).at(1));
    }
    EXPECT_NE(seeds[0], seeds[1]);
    EXPECT_EQ(seeds[0], seeds[2]);
}

TEST_F(macsprogram, unwritableoutputisafailure)
{
    for (const char *options : {" 10 1000000 -t 0.16E-04 -s 3", " 10 1000 -t 0 -s 3"})
        for (const char *target : {" >/dev/full", " >&-"}) {
            const commandresult run = runcommand(program + options + target);
            EXPECT_NE(run.status, 0) << options << target;
            EXPECT_NE(run.err.find("standard output"), std::string::npos) << run.err;
        }
}
