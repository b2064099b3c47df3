// Merges of small whole runs, read again by plain means: every record of a merged folder is that of
// its source under the new number, and runs that go on from it drop the genomes that it holds.
#include "haplotypes/slowdrop.h"
#include "merge/mergefrequencies.h"
#include "wholeruns/runsupport.h"
#include "words.h"

#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <set>

namespace fs = std::filesystem;

namespace
{
// The files of a run folder, whatever the system's own routines make of them.
class folderreader
{
  public:
    explicit folderreader(const std::string &folder) : path(folder + "/")
    {
        for (const auto &row : numbertable(path + "SimulatedData/NbOfIndivInEachGen.txt", 1))
            last.push_back(last.back() + static_cast<int64>(row[1]));
    }
    int64 ngenerations() const { return static_cast<int64>(last.size()) - 1; }
    int64 count() const { return last.back(); }
    int64 lastofgen(int64 g) const { return last[static_cast<std::size_t>(g)]; }
    int64 sizeofgen(int64 g) const { return lastofgen(g) - lastofgen(g - 1); }
    int64 generation(int64 id) const
    {
        int64 g = 1;
        while (lastofgen(g) < id) ++g;
        return g;
    }
    // Line n of a file, from 1.
    const std::string &line(const std::string &file, int64 n)
    {
        return lines(file)[static_cast<std::size_t>(n - 1)];
    }
    const std::vector<std::string> &lines(const std::string &file)
    {
        if (!texts.contains(file)) texts[file] = readlines(path + file);
        return texts[file];
    }
    std::string alleles(const std::string &chromosome, int64 id, int64 side)
    {
        const int64 g = generation(id), n = sizeofgen(g);
        const std::string file = chromosome + "GenomeGeneration" + std::to_string(g) + ".txt";
        if (!genomes.contains(file)) genomes[file] = readfile(path + file);
        const std::string &bytes = genomes[file];
        const auto nblock = (static_cast<int64>(bytes.size()) - 8) / (16 * n);
        std::vector<int64> blocks;
        for (int64 b = 0; b < nblock; ++b) {
            const int64 cell = ((side - 1) * nblock + b) * n + id - lastofgen(g - 1) - 1;
            std::memcpy(&blocks.emplace_back(), bytes.data() + 4 + 8 * cell, 8);
        }
        return unpacked(blocks);
    }
    // Sire and dam; a row of four columns has none.
    std::vector<int64> parents(int64 id)
    {
        const auto row = wordsof(line("SimulatedData/Pedigree.txt", id + 1));
        if (row.size() == 4) return {0, 0};
        return {std::stoll(row[3]), std::stoll(row[4])};
    }

  private:
    std::string path;
    std::vector<int64> last{0};
    std::map<std::string, std::vector<std::string>> texts;
    std::map<std::string, std::string> genomes;
};

// An individual of a source folder.
struct origin {
    std::shared_ptr<folderreader> from;
    int64 id;
};

// A file with records of individuals: the number stands up to column numberend, and what a merge
// keeps behind column from.
struct recordedfile {
    std::string file;
    int64 titlelines, linesperindiv;
    std::size_t numberend = 20, from = 20;
};

const std::string data = "SimulatedData/";
const std::vector<recordedfile> wholerunfiles{
    {data + "PedigreeTbvTdvTpv.txt", 1, 1, 20, 40},
    {data + "PedigreeTbvRecombination.txt", 1, 1, 20, 40},
    {data + "Gender.txt", 1, 1, 40, 40},
    {data + "UnrestrictedQtnIndivGenotypes.txt", 0, 1},
    {data + "RestrictedQtnIndivGenotypes.txt", 0, 1},
    {data + "RecombinationQtnIndivGenotypes.txt", 0, 1},
    {data + "AllIndividualsSnpChips/Chip1Phase.txt", 0, 2},
    {data + "AllIndividualsSnpChips/Chip2Phase.txt", 0, 2},
    {data + "AllIndividualsSnpChips/Chip1Genotype.txt", 0, 1},
    {data + "AllIndividualsSnpChips/Chip2Genotype.txt", 0, 1},
    {data + "FullSequencePhase.txt", 1, 2},
    {data + "FullSequenceGenotype.txt", 1, 1}};

const std::vector<std::string> chromosomes{"Chromosomes/Chromosome1/", "Chromosomes/Chromosome2/"};

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
    void makebase();
    std::vector<origin> listed; // the individuals of the base
};

// Of several generations and folders, one of them twice: 46 individuals.
void merges::makebase()
{
    makereplicates();
    std::string list = "  ../burnin \n";
    const auto take = [&](const std::string &name, std::vector<int64> ids) {
        const auto reader = std::make_shared<folderreader>(name);
        for (const int64 id : ids) {
            listed.push_back({reader, id});
            list += listline(id, "../" + name);
        }
    };
    std::vector<int64> selected;
    for (int64 id = 100; id > 80; --id) selected.push_back(id);
    selected.insert(selected.end(), {3, 70});
    take("rep1", selected);
    selected.push_back(100);
    take("rep2", selected);
    take("burnin", {60});
    writefile("base/list.txt", list);
    runin("base", merging("Ids", "3", "3", "3"), -74);
}

namespace
{
void expectrecords(folderreader &merged, const recordedfile &file, int64 number, int64 record,
                   const origin &source, const recordedfile &sourcefile, int64 sourcerecord)
{
    for (int64 l = 1; l <= file.linesperindiv; ++l) {
        const std::string &is =
            merged.line(file.file, file.titlelines + (record - 1) * file.linesperindiv + l);
        const std::string &was = source.from->line(
            sourcefile.file, file.titlelines + (sourcerecord - 1) * file.linesperindiv + l);
        ASSERT_EQ(std::stoll(is.substr(file.numberend - 10, 10)), number) << file.file;
        ASSERT_EQ(std::stoll(was.substr(file.numberend - 10, 10)), source.id) << sourcefile.file;
        ASSERT_EQ(is.substr(file.from), was.substr(file.from)) << file.file << " " << number;
    }
}

// All records of the merged folder, individual i from origins[i - 1].
void expectmerged(folderreader &merged, const std::vector<origin> &origins)
{
    ASSERT_EQ(merged.count(), static_cast<int64>(origins.size()));
    for (const recordedfile &file : wholerunfiles)
        ASSERT_EQ(static_cast<int64>(merged.lines(file.file).size()),
                  file.titlelines + file.linesperindiv * merged.count())
            << file.file;
    for (int64 i = 1; i <= merged.count(); ++i) {
        const origin &source = origins[static_cast<std::size_t>(i - 1)];
        folderreader &from = *source.from;
        for (const recordedfile &file : wholerunfiles)
            expectrecords(merged, file, i, i, source, file, source.id);
        const std::string counts = data + "RecombinationCount.txt";
        auto is = numbersof(merged.line(counts, i)), was = numbersof(from.line(counts, source.id));
        ASSERT_EQ(is[0], static_cast<double>(i));
        is[0] = was[0];
        ASSERT_EQ(is, was);
        const int64 g = merged.generation(i), oldg = from.generation(source.id);
        for (const std::string &folder : chromosomes) {
            const recordedfile tracking{folder + "RecombinationTracking.txt", 0, 2};
            expectrecords(merged, tracking, i, i, source, tracking, source.id);
            for (const std::string set :
                 {"Chip1", "Chip2", "UnrestrictedQtn", "RestrictedQtn", "RecombinationQtn"})
                for (const int64 n : {1, 2}) {
                    const std::string name =
                        folder + set + (n == 1 ? "Genotype" : "Phase") + "Generation";
                    expectrecords(merged, {name + std::to_string(g) + ".txt", 0, n}, i,
                                  i - merged.lastofgen(g - 1), source,
                                  {name + std::to_string(oldg) + ".txt", 0, n},
                                  source.id - from.lastofgen(oldg - 1));
                }
            for (const int64 side : {1, 2})
                ASSERT_EQ(merged.alleles(folder, i, side), from.alleles(folder, source.id, side));
        }
    }
}

// Frequencies by the genomes themselves: of all individuals in the information files, of each
// generation behind the first in its own.
void expectfrequencies(folderreader &merged)
{
    for (const std::string set : {"Chip1Snp", "Chip2Snp", "UnrestrictedQtn", "RestrictedQtn"}) {
        const bool qtn = set[0] != 'C';
        const std::string information = data + set + "Information.txt";
        std::map<std::string, double> heterozygosity;
        for (std::size_t k = 1; k < merged.lines(information).size(); ++k) {
            const auto row = wordsof(merged.lines(information)[k]);
            const std::string folder = "Chromosomes/Chromosome" + row[1] + "/";
            const std::size_t site = std::stoul(row[2]) - 1;
            const auto genotype = [&](int64 i) {
                return merged.alleles(folder, i, 1)[site] + merged.alleles(folder, i, 2)[site] -
                       2 * '0';
            };
            int64 ones = 0;
            for (int64 i = 1; i <= merged.count(); ++i) {
                ones += genotype(i);
                heterozygosity[row[1]] += genotype(i) == 1;
            }
            const auto n = static_cast<float>(2 * merged.count());
            const double freq = static_cast<float>(ones) / n;
            const double other = (n - static_cast<float>(ones)) / n;
            textline expected;
            putf(expected, std::min(freq, other), 0, 10);
            EXPECT_EQ(row[3], trim(expected)) << set << " " << k;
            expected.clear();
            putf(expected, freq, 0, 10);
            if (qtn) {
                EXPECT_EQ(row[4], trim(expected)) << set << " " << k;
                const auto own = merged.lines(folder + set + "AlleleFreqGeneration1.txt");
                EXPECT_EQ(own.size(), merged.lines(information).size() - 1);
                EXPECT_TRUE(std::any_of(
                    own.begin(), own.begin() + 30,
                    [&](const auto &line) {
                        return wordsof(line) == std::vector<std::string>{row[0], row[2], row[4]};
                    }))
                    << set << " " << k;
            }
        }
        for (const auto &[chrom, sum] : heterozygosity) {
            textline expected;
            putf(expected,
                 sum / static_cast<double>(merged.count()) /
                     static_cast<double>(merged.lines(information).size() - 1),
                 20, 10);
            const std::string name = qtn ? set : set.substr(0, 5);
            EXPECT_NEAR(std::stod(merged.line(
                            "Chromosomes/Chromosome" + chrom + "/" + name + "Summary.txt", 1)),
                        std::stod(expected), 1.01e-10);
        }
        for (int64 g = 2; qtn && g <= merged.ngenerations(); ++g)
            for (const std::string &folder : chromosomes)
                for (const std::string &line : merged.lines(folder + set + "AlleleFreqGeneration" +
                                                            std::to_string(g) + ".txt")) {
                    const auto row = wordsof(line);
                    int64 ones = 0;
                    for (int64 i = merged.lastofgen(g - 1) + 1; i <= merged.lastofgen(g); ++i)
                        for (const int64 side : {1, 2})
                            ones += merged.alleles(folder, i, side)[std::stoul(row[1]) - 1] == '1';
                    EXPECT_NEAR(std::stod(row[2]),
                                static_cast<double>(ones) /
                                    static_cast<double>(2 * merged.sizeofgen(g)),
                                1e-10);
                }
    }
}

// Each gamete from firstgen on follows from the parent's strands, the crossings and the mutations.
// Gives the number of mutated gametes.
int64 expectdrop(folderreader &run, int64 firstgen)
{
    int64 nmutated = 0;
    for (const std::string &folder : chromosomes) {
        std::multimap<std::pair<int64, int64>, std::size_t> mutations; // carrier, gamete: site
        for (const std::string &line : run.lines(folder + "MutDeNovoInfo.txt")) {
            const auto row = numbersof(line);
            mutations.insert({{static_cast<int64>(row[1]), static_cast<int64>(row[2])},
                              static_cast<std::size_t>(row[4]) - 1});
        }
        for (int64 i = run.lastofgen(firstgen - 1) + 1; i <= run.count(); ++i)
            for (const int64 side : {1, 2}) {
                const int64 parent = run.parents(i)[static_cast<std::size_t>(side - 1)];
                EXPECT_EQ(run.generation(parent), run.generation(i) - 1);
                const std::string strands[] = {run.alleles(folder, parent, 1),
                                               run.alleles(folder, parent, 2)};
                const auto tracked =
                    numbersof(run.line(folder + "RecombinationTracking.txt", 2 * (i - 1) + side));
                EXPECT_EQ(tracked[0], static_cast<double>(i));
                std::size_t strand = tracked[1] == 1 ? 0 : 1;
                std::string expected = strands[strand];
                for (std::size_t c = 3; c < tracked.size(); ++c) {
                    const auto site = static_cast<std::size_t>(tracked[c]);
                    strand = 1 - strand;
                    expected.replace(site, std::string::npos, strands[strand], site);
                }
                const auto [first, end] = mutations.equal_range({i, side});
                for (auto m = first; m != end; ++m) expected[m->second] = '1';
                nmutated += std::distance(first, end);
                EXPECT_EQ(run.alleles(folder, i, side), expected) << folder << i << " " << side;
            }
    }
    return nmutated;
}

// Lines of individuals and generations before a run stay as they were.
void expectkept(folderreader &before, folderreader &after)
{
    std::vector<std::string> files{data + "Pedigree.txt", data + "RecombinationCount.txt"};
    for (const recordedfile &file : wholerunfiles) files.push_back(file.file);
    for (const std::string &file : files) {
        const auto &was = before.lines(file), &is = after.lines(file);
        ASSERT_GT(is.size(), was.size()) << file;
        EXPECT_TRUE(std::equal(was.begin(), was.end(), is.begin())) << file;
    }
}
} // namespace

TEST_F(merges, individualsofalist)
{
    makebase();
    folderreader base("base");
    expectmerged(base, listed);
    expectfrequencies(base);
    const auto &pedigree = base.lines(data + "Pedigree.txt");
    EXPECT_EQ(pedigree[0],
              "          Generation               Indiv              Father              Mother");
    EXPECT_EQ(pedigree[46], std::string(19, ' ') + "1" + std::string(18, ' ') + "46" +
                                std::string(19, ' ') + "0" + std::string(19, ' ') + "0");
    EXPECT_TRUE(fs::exists("base/Selection/SelectionFolder2")); // of the first source folder

    // Carriers: under 101 they exist in a replicate, so the mutation has arisen; the others follow
    // the merged individuals as they would have followed those of the replicates.
    for (const std::string &chromosome : chromosomes) {
        folderreader burnin("burnin");
        const auto &was = burnin.lines(chromosome + "MutDeNovoInfo.txt");
        const auto &is = base.lines(chromosome + "MutDeNovoInfo.txt");
        for (std::size_t m = 0; m < was.size(); ++m) {
            const auto carrier = static_cast<int64>(numbersof(was[m])[1]);
            int64 expected = carrier > 100 ? 46 + carrier - 100 : 0;
            for (int64 i = 46; i >= 1 && carrier <= 100; --i)
                if (listed[static_cast<std::size_t>(i - 1)].id == carrier) expected = i;
            EXPECT_EQ(numbersof(is[m])[1], static_cast<double>(expected)) << was[m];
        }
    }

    goon("base", "next",
         programme("1", "4", "2,3")
             .set("NumberOfIndividualsInEachGeneration", "List,46,20,24,20,20"),
         -75);
    folderreader next("next");
    EXPECT_EQ(next.count(), 90);
    expectkept(base, next);
    EXPECT_GT(expectdrop(next, 2), 0); // mutations that had yet to arise
}

TEST_F(merges, replicatefolders)
{
    makebase();
    const auto later = [](const std::string &span, const char *method) {
        return programme("2", "3", span)
            .set("NumberOfIndividualsInEachGeneration", "List,46,20,24,20,20")
            .set("SelectionMethod", method)
            .set("UseExternalSnpSolutionsYesNo", "No")
            .set("AddQtnToTheSnpChipYesNo", "No")
            .set("ComputeAverageCoancestryYesNo", "No")
            .set("SelectionPhenotypingStrategy", "AllHistoricalPhenotypes");
    };
    goon("base", "later1", later("2,3", "Tbv"), -76);
    goon("base", "later2", later("2,3", "GBlup"), -77);
    goon("base", "later3", later("2,2", "Tbv"), -78); // one generation less
    writefile("merged/list.txt", "../base\n ../later1  \n../later2\n../later3\n");
    runin("merged", merging("Directories", "3", "2", "1"), -79);

    // Generation by generation, and in it folder by folder.
    std::vector<origin> origins;
    const auto base = std::make_shared<folderreader>("base");
    std::vector<std::shared_ptr<folderreader>> folders;
    for (const char *name : {"later1", "later2", "later3"})
        folders.push_back(std::make_shared<folderreader>(name));
    for (int64 id = 1; id <= 46; ++id) origins.push_back({base, id});
    for (int64 g = 2; g <= 3; ++g)
        for (const auto &replicate : folders)
            for (int64 id = replicate->lastofgen(g - 1) + 1;
                 g <= replicate->ngenerations() && id <= replicate->lastofgen(g); ++id)
                origins.push_back({replicate, id});
    folderreader merged("merged");
    EXPECT_EQ(merged.sizeofgen(2), 60);
    expectmerged(merged, origins);
    expectfrequencies(merged);
    for (int64 i = 47; i <= merged.count(); ++i) {
        const origin &source = origins[static_cast<std::size_t>(i - 1)];
        const std::vector<int64> is = merged.parents(i), was = source.from->parents(source.id);
        for (const std::size_t side : {0u, 1u}) {
            const origin &parent = origins[static_cast<std::size_t>(is[side] - 1)];
            EXPECT_EQ(parent.id, was[side]);
            EXPECT_EQ(parent.from, was[side] <= 46 ? base : source.from);
        }
        const auto values = numbersof(merged.line(data + "PedigreeTbvTdvTpv.txt", i + 1));
        EXPECT_EQ(values[2], static_cast<double>(is[0]));
        EXPECT_EQ(values[3], static_cast<double>(is[1]));
    }
    EXPECT_GT(expectdrop(merged, 2), 0); // each replicate's carriers under their new numbers
    const auto variances =
        numbertable("merged/" + data + "TotalGenicAndGeneticVariancesPerGeneration.txt", 1);
    ASSERT_EQ(variances.size(), 12u);
    EXPECT_GT(variances[0][2], 0);
    EXPECT_EQ(variances[11], (std::vector<double>{3, 4, 0, 0}));

    for (const char *method : {"GBlup", "Tbv"}) {
        const std::string name = std::string("next") + method;
        goon("merged", name,
             later("4,5", method).set("NumberOfIndividualsInEachGeneration", "List,46,60,48,20,24"),
             -80);
        folderreader next(name);
        EXPECT_EQ(next.count(), 198);
        expectkept(merged, next);
        expectdrop(next, 4);
    }
}

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
