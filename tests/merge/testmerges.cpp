// What merges are refused for, the example of the pages, and the frequencies of a site.
#include "merge/mergefrequencies.h"
#include "wholeruns/runsupport.h"

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace
{
// 20 individuals in each of six generations; two chips, recombination trait, mutations, sequence.
spectext programme(const std::string &ngen, const std::string &ngensel, const std::string &span)
{
    return smallrun()
        .set("NumberGenerationsBurnIn", ngen)
        .set("NumberGenerationsSelection", ngensel)
        .set("NumberOfSnpChips", "2")
        .set("nSnpPerChipPerChromosme", "20,30")
        .set("NumberOfMutationsPerChr", "12")
        .set("RecombinationOnOff", "On")
        .set("HeritabilityOfRecombination", "0.3")
        .set("NumberOfQtnPerChromForRecombination", "8")
        .set("WriteFullSequenceOutOnOff", "On")
        .set("GenerationFlexibilityOnOff", "On")
        .set("StartStopGeneration", span)
        .moveafter("StartStopGeneration", "GenerationFlexibilityOnOff");
}

spectext merging(const char *type, const char *nfolders, const char *ngen, const char *ngensel)
{
    return programme(ngen, ngensel, "1,1")
        .set("MergeTypes", type)
        .set("NumberOfMergeRuns", nfolders)
        .set("MergeFiles", "list.txt");
}

std::string listline(int64 id, const std::string &folder)
{
    textline line;
    puti(line, id, 30);
    return line + folder + "\n";
}

void addprograms(const std::string &name)
{
    fs::create_directories(name);
    for (const char *program : {"solvanto", "macs", "Vintrecaskelle", "Quillomere"})
        if (!fs::exists(name + "/" + program))
            fs::create_symlink(binfolder() + "/" + program, name + "/" + program);
}
} // namespace

class merges : public wholerun
{
  protected:
    void runin(const std::string &name, const spectext &spec, int64 seed)
    {
        addprograms(name);
        fs::current_path(name);
        mustrun(spec, seed);
        fs::current_path("..");
    }
    void goon(const std::string &from, const std::string &to, const spectext &spec, int64 seed)
    {
        fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
        runin(to, spec, seed);
    }
    void makereplicates()
    {
        runin("burnin", programme("3", "3", "1,3"), -71);
        goon("burnin", "rep1", programme("3", "3", "4,5"), -72);
        goon("burnin", "rep2", programme("3", "3", "4,5"), -73);
    }
};

// Refused before anything in the working folder is replaced.
TEST_F(merges, faultsinlistandfolders)
{
    makereplicates();
    runin("other", programme("3", "3", "1,1").set("NumberOfHaplotypes", "60"), -81);
    fs::copy("burnin", "cut", fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    fs::resize_file("cut/Chromosomes/Chromosome2/GenomeGeneration3.txt", 400);
    fs::copy("rep1", "short", fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    fs::remove("short/SimulatedData/AllIndividualsSnpChips/Chip2Phase.txt");
    addprograms("work");
    fs::current_path("work");
    for (const char *name : {"SimulatedData", "Chromosomes", "Selection"})
        writefile(std::string(name) + "/own.txt", "mine\n");

    const spectext ids = merging("Ids", "1", "3", "3"),
                   folders = merging("Directories", "1", "3", "3");
    const std::string burnin = "../burnin\n";
    struct fault {
        std::string list;
        spectext spec;
        int status;
        std::string message;
    };
    const std::vector<fault> faults{
        {burnin + listline(60, "../burnin") + listline(61, "../burnin"), ids, 2,
         "list.txt: line 3: individual 61 of ../burnin, which holds individuals 1 to 60"},
        {burnin + "60 ../burnin\n", ids, 2, "list.txt: line 2: an individual's number is wanted"},
        {burnin, ids, 2, "names no individual"},
        {burnin + listline(1, "../rep1") + listline(1, "../rep2") + listline(2, "../rep1"), ids, 48,
         "list.txt should hold 1 runs of lines of one folder by NumberOfMergeRuns, and holds 3"},
        {burnin + listline(1, "../none"), ids, 2, "../none: is no folder"},
        {burnin + listline(1, "."), ids, 2, ".: is the working folder"},
        {burnin + listline(1, "../other"), ids, 2, "../other/Chromosomes/Chromosome"},
        {burnin + listline(60, "../cut"), ids, 2,
         "Chromosome2/GenomeGeneration3.txt: does not hold one whole binary record"},
        {burnin + listline(1, "../short"), ids, 2, "Chip2Phase.txt: is missing"},
        {burnin + listline(1, "../rep1"), spectext(ids).set("nSnpPerChipPerChromosme", "20,31"), 2,
         "../burnin/Chromosomes/Chromosome1/: holds 30 SNP of chip 2 where 31 are expected"},
        {burnin + listline(1, "../rep1"), spectext(ids).set("NumberOfChromosomes", "1"), 2,
         "../burnin/Chromosomes/Chromosome2/: is there"},
        {burnin + listline(1, "../rep1"),
         spectext(ids).set("NumberOfQtnPerChromosomeNormalDist", "11"), 2,
         "holds 10 QTN besides mutations where 11 are expected"},
        {burnin + listline(1, "../rep1"), spectext(ids).set("NumberOfMergeRuns", "0"), 47,
         "NumberOfMergeRuns"},
        {burnin, folders, 48, "should hold 2 lines, each with a folder, by NumberOfMergeRuns"},
        {burnin + "../rep1\n", merging("Directories", "1", "3", "1"), 2,
         "holds 5 generations where the specification has 4"},
        {"../rep1\n../rep2\n", folders, 2,
         "../rep2/Chromosomes/Chromosome1/GenomeGeneration4.txt: differs from that of the base"}};
    writefile("SolvantoSpec.txt", ids.text());
    const auto ownfiles = [] {
        filetree tree = readtree();
        std::erase_if(tree, [](const auto &file) {
            return file.first.find("Seed") != std::string::npos || file.first == "list.txt" ||
                   file.first == "SolvantoSpec.txt";
        });
        return tree;
    };
    const filetree was = ownfiles();
    for (const fault &f : faults) {
        writefile("list.txt", f.list);
        const commandresult result = run(f.spec, -82);
        EXPECT_EQ(result.status, f.status) << f.message;
        EXPECT_NE((result.out + result.err).find(f.message), std::string::npos)
            << f.message << "\n"
            << result.out << result.err;
        expectsametree(was, ownfiles());
    }

    // Open files: the soft limit is raised, the hard one tells how many were needed.
    std::string list = burnin;
    for (int k = 0; k < 16; ++k) list += listline(1, k % 2 ? "../rep1" : "../rep2");
    writefile("list.txt", list);
    spectext(ids).set("NumberOfMergeRuns", "16").write();
    writefile("Seed.txt", "-83\n");
    commandresult result = runcommand("ulimit -n 24; ./solvanto");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("the merge needs 33 files open at a time, and the system allows 24"),
              std::string::npos);
    expectsametree(was, ownfiles());
    result = runcommand("ulimit -Sn 24; ./solvanto");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_NE(
        result.out.find("\n\nMerge has been successful! Please re-run Solvanto from generation "
                        "two.\n"),
        std::string::npos);
    EXPECT_FALSE(fs::exists("SimulatedData/own.txt"));
}

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
    EXPECT_TRUE(fs::exists("example/Selection/SelectionFolder4/Ebv.txt"));
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
