// Whole runs with gene editing and gene drive, from the files they leave: what is edited, and every
// QTN allele of the selection generations, made again one by one.
#include "wholeruns/runsupport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <map>
#include <set>

namespace
{
using numbers = std::vector<std::vector<double>>;

std::string fields(std::initializer_list<int> values, int width)
{
    std::string line;
    for (const int value : values) {
        const std::string text = std::to_string(value);
        line += std::string(static_cast<std::size_t>(width) - text.size(), ' ') + text;
    }
    return line;
}

// Runs of two chromosomes with three burn-in generations.
struct checkedrun {
    std::string set = "Unrestricted";
    int first = 4, last = 5; // selection generations of the run
    int nindedited = 2, nedits = 3;
    bool drive = false;
    std::set<int> allowed; // QTN; empty for all
    std::set<int> doubledhaploids;

    std::map<int, numbers> phases; // by generation: two rows per individual, QTN of all chromosomes
    numbers values, effects;       // pedigree and values; QTN, chromosome, site, effects
    std::array<numbers, 2> tracking, mutations; // by chromosome
    std::map<std::pair<int, int>, int> edits;   // of a generation: aimed allele by parent and QTN
    std::set<std::pair<int, int>> carriers;     // individual, QTN

    void check();

  private:
    std::string chromosome(int h) const
    {
        return "Chromosomes/Chromosome" + std::to_string(h) + "/";
    }
    std::string generationfile(int h, const char *name, int g) const
    {
        return chromosome(h) + set + name + "Generation" + std::to_string(g) + ".txt";
    }
    std::string cyclefile(int g, const std::string &name) const
    {
        return "Selection/SelectionFolder" + std::to_string(g - 3) + "/" + name;
    }
    std::string listname(int g) const
    {
        return cyclefile(g, set + "QtnSortedForGeneEditingGener" + std::to_string(g) + ".txt");
    }
    std::vector<int> rowsof(int g) const
    {
        std::vector<int> rows;
        for (const auto &row : values)
            if (row[0] == g) rows.push_back(static_cast<int>(row[1]));
        return rows;
    }
    int parent(int i, int side) const
    {
        return static_cast<int>(
            values[static_cast<std::size_t>(i - 1)][2 + static_cast<std::size_t>(side)]);
    }
    int allele(int g, int i, int side, std::size_t q) const
    {
        const int place = i - rowsof(g).front();
        return static_cast<int>(phases.at(g)[static_cast<std::size_t>(2 * place + side)][q]);
    }
    void readfiles();
    void checkchoice(int g);
    int gametesallele(int g, int i, int side, std::size_t q) const;
    void checkalleles(int g);
    void checkfixed();
    void checkflags();
};

void checkedrun::readfiles()
{
    values = numbertable("SimulatedData/PedigreeTbvTdvTpv.txt", 1);
    effects = numbertable("SimulatedData/" + set + "QtnAdditEffects.txt", 1);
    for (int h = 1; h <= 2; ++h) {
        tracking[static_cast<std::size_t>(h - 1)] =
            numbertable(chromosome(h) + "RecombinationTracking.txt");
        mutations[static_cast<std::size_t>(h - 1)] =
            numbertable(chromosome(h) + "MutDeNovoInfo.txt");
    }
    for (int g = 1; g <= last; ++g) {
        phases[g] = numbertable(generationfile(1, "QtnPhase", g));
        const numbers second = numbertable(generationfile(2, "QtnPhase", g));
        for (std::size_t row = 0; row < second.size(); ++row) {
            phases[g][row].erase(phases[g][row].begin());
            phases[g][row].insert(phases[g][row].end(), second[row].begin() + 1, second[row].end());
        }
    }
}

// Sires stand in the rows of their progeny best first.
void checkedrun::checkchoice(int g)
{
    std::vector<int> sires;
    for (const int i : rowsof(g))
        if (sires.empty() || sires.back() != parent(i, 0)) sires.push_back(parent(i, 0));
    std::string wanted =
        "    IdOfGenEditIndiv         GlobalQtnId   ObservedQtnGenotype   AimedQtnGenotype\n";
    edits.clear();
    for (int k = 0; k < nindedited; ++k) {
        const int sire = sires.at(static_cast<std::size_t>(k));
        int n = 0;
        for (const auto &row : numbertable(listname(g), 1)) {
            const int q = static_cast<int>(row[1]), favourable = static_cast<int>(row[4]);
            const std::size_t at = static_cast<std::size_t>(q - 1);
            const int genotype = allele(g - 1, sire, 0, at) + allele(g - 1, sire, 1, at);
            if ((!allowed.empty() && !allowed.contains(q)) || genotype == 2 * favourable ||
                n == nedits)
                continue;
            ++n;
            edits[{sire, q}] = favourable;
            wanted += fields({sire, q, genotype}, 20) + fields({2 * favourable}, 10) + "\n";
        }
    }
    EXPECT_FALSE(edits.empty());
    EXPECT_EQ(readfile(cyclefile(g, "GeneEditingInformation.txt")), wanted);
}

// What the gamete of individual i brings at QTN q (from 0): from the parent's strand, its edit, or
// a de novo mutation.
int checkedrun::gametesallele(int g, int i, int side, std::size_t q) const
{
    const std::size_t h = static_cast<std::size_t>(effects[q][1]) - 1;
    const double site = effects[q][2];
    for (const auto &mutation : mutations[h])
        if (mutation[1] == i && mutation[2] == side + 1 && mutation[4] == site) return 1;
    const auto edit = edits.find({parent(i, side), static_cast<int>(q) + 1});
    if (edit != edits.end()) return edit->second;
    const std::vector<double> &line = tracking[h][static_cast<std::size_t>(2 * (i - 1) + side)];
    int strand = static_cast<int>(line[1]) - 1;
    for (std::size_t c = 3; c < line.size(); ++c)
        if (site > line[c]) strand = 1 - strand;
    return allele(g - 1, parent(i, side), strand, q);
}

void checkedrun::checkalleles(int g)
{
    int64 wrong = 0;
    const bool doubled = doubledhaploids.contains(g);
    if (drive)
        for (const auto &edit : edits) carriers.insert(edit.first);
    for (const int i : rowsof(g))
        for (std::size_t q = 0; q < effects.size(); ++q) {
            const int qtn = static_cast<int>(q) + 1;
            int made[2] = {gametesallele(g, i, 0, q), gametesallele(g, i, doubled ? 0 : 1, q)};
            const bool bysire = carriers.contains({parent(i, 0), qtn});
            const bool bydam = !doubled && carriers.contains({parent(i, 1), qtn});
            if (bysire)
                made[1] = made[0];
            else if (bydam)
                made[0] = made[1];
            if (bysire || bydam) carriers.insert({i, qtn});
            wrong += made[0] != allele(g, i, 0, q) || made[1] != allele(g, i, 1, q);
        }
    EXPECT_EQ(wrong, 0) << "generation " << g;
}

void checkedrun::checkfixed()
{
    std::string wanted = "          Generation         GlobalQtnId         FixedYes0No1\n";
    for (int g = 1; g <= last; ++g)
        for (std::size_t q = 0; q < effects.size(); ++q) {
            std::set<double> met;
            for (const auto &row : phases[g]) met.insert(row[q]);
            wanted += fields({g, static_cast<int>(q) + 1, met.size() == 1 ? 0 : 1}, 20) + "\n";
        }
    EXPECT_EQ(readfile("SimulatedData/FixedQtn.txt"), wanted);
}

void checkedrun::checkflags()
{
    std::string wanted = "        IndividualID        QtnWithGeneDrive        PhaseWithGeneDrive\n";
    const numbers list = numbertable(listname(last), 1);
    for (const auto &individual : values)
        for (const auto &row : list)
            for (int phase = 1; phase <= 2; ++phase) {
                const int i = static_cast<int>(individual[1]), q = static_cast<int>(row[1]);
                if (carriers.contains({i, q}))
                    wanted += fields({i, static_cast<int>(row[3]), phase}, 10) + "\n";
            }
    EXPECT_EQ(readfile("SimulatedData/GeneDriveQtnPresence.txt"), wanted);
}

void checkedrun::check()
{
    readfiles();
    checkfixed();
    for (int g = first; g <= last; ++g) {
        checkchoice(g);
        checkalleles(g);
    }
    if (drive)
        checkflags();
    else
        EXPECT_FALSE(std::filesystem::exists("SimulatedData/GeneDriveQtnPresence.txt"));
}

spectext editedrun()
{
    return smallrun()
        .set("GeneEditingOnOff", "On")
        .set("NumberOfEditedIndividuals", "2")
        .set("NumberOfGeneEditsPerIndividual", "3");
}
} // namespace

class editingruns : public wholerun
{
};

// Under each QTN model; with mutations, which are QTN too; with QTN of the user's choice.
TEST_F(editingruns, offspringofeditedsirescarrytheedits)
{
    for (int model = 1; model <= 4; ++model) {
        SCOPED_TRACE(model);
        checkedrun files;
        spectext spec =
            editedrun()
                .set("SelectionBasedOnRestrictedOrUnrestrictedQtn",
                     model % 2 == 1 ? "Unrestricted" : "Restricted")
                .set("DistributionOfQtnOfSelectionTraits", model <= 2 ? "Normal" : "Gamma");
        if (model % 2 == 0) files.set = "Restricted";
        if (model == 1)
            spec.set("NumberOfMutationsPerChr", "2").set("MutationalVarianceProportion", "0.1");
        if (model == 2) {
            spec.set("PerformGEOnUserQtnSelectionYesNo", "Yes");
            files.allowed = {2, 3, 5, 7, 11, 13, 17, 19};
            std::string chosen;
            for (int q = 1; q <= 20; ++q)
                chosen += (files.allowed.contains(q) ? "1"
                           : q == 4                  ? "2"
                                                     : "0") +
                          std::string(q % 7 == 0 ? "\n" : ",");
            writefile("UserSelectedQtnToBeEdited.txt", chosen + "\n");
        }
        mustrun(spec, -50 - model);
        files.check();
    }
    // Nothing but the offspring changes: same draws, same candidates as without editing.
    const std::string genomes = readfile("Chromosomes/Chromosome1/GenomeGeneration3.txt");
    const auto crossings = readlines("Chromosomes/Chromosome2/RecombinationTracking.txt");
    mustrun(editedrun()
                .set("SelectionBasedOnRestrictedOrUnrestrictedQtn", "Restricted")
                .set("DistributionOfQtnOfSelectionTraits", "Gamma")
                .set("GeneEditingOnOff", "Off"),
            -54);
    EXPECT_EQ(readfile("Chromosomes/Chromosome1/GenomeGeneration3.txt"), genomes);
    const auto unedited = readlines("Chromosomes/Chromosome2/RecombinationTracking.txt");
    EXPECT_TRUE(std::equal(crossings.begin(), crossings.begin() + 160, unedited.begin()));
}

TEST_F(editingruns, drivesconvertandareflagged)
{
    const spectext driven = editedrun()
                                .set("NumberGenerationsSelection", "3")
                                .set("NumberOfMutationsPerChr", "2")
                                .set("MutationalVarianceProportion", "0.1")
                                .set("GeneDriveOnOff", "On");
    mustrun(driven, -61);
    checkedrun files;
    files.drive = true;
    files.last = 6;
    files.check();

    // A run that goes on begins without flags.
    const auto part = [&](const char *generations) {
        return spectext(driven)
            .set("GenerationFlexibilityOnOff", "On")
            .set("StartStopGeneration", generations)
            .moveafter("StartStopGeneration", "GenerationFlexibilityOnOff");
    };
    mustrun(part("1,4"), -62);
    checkedrun upto4;
    upto4.drive = true;
    upto4.last = 4;
    upto4.check();
    mustrun(part("5,6"));
    checkedrun from5;
    from5.drive = true;
    from5.first = 5;
    from5.last = 6;
    from5.check();
}

// The edited parents are selfed, or the male parents of doubled haploids.
TEST_F(editingruns, plants)
{
    const spectext plants =
        editedrun()
            .set("AnimalBreedingOnOff", "Off")
            .set("PlantBreedingOnOff", "On")
            .set("NumberGenerationsSelection", "3")
            .set("PerformMatingsConsideringTheGenderYesNo", "No")
            .set("NumberOfMaleParentsInEachGeneration", "List,0,0,0,5,0")
            .set("NumberOfFemaleParentsInEachGeneration", "List,0,0,0,5,0")
            .set("NumberOfParentsRegardlessTheGenderInEachGen", "List,8,8,0,0,0")
            .set("NumberOfSelfedParentsInEachGeneration", "List,0,0,5,0,5")
            .set("NumberOfGenerationsIncludingDoubledHaploids", "1")
            .set("CreateDoubledHaploidsInTheseGenerations", "5");
    checkedrun files;
    files.last = 6;
    files.doubledhaploids = {5};
    mustrun(plants, -71);
    files.check();
    files.drive = true;
    mustrun(spectext(plants).set("GeneDriveOnOff", "On"), -72);
    files.check();

    const commandresult result = run(spectext(plants).set("NumberOfEditedIndividuals", "6"), -71);
    EXPECT_EQ(result.status, 110010 % 256);
    EXPECT_NE(result.out.find("ERROR: Number of plants to be edited is greater than the number of "
                              "selfed parents\n"),
              std::string::npos);
}

TEST_F(editingruns, drivewithouteditingdoesnothing)
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

TEST_F(editingruns, refusals)
{
    commandresult result = run(editedrun().set("NumberOfEditedIndividuals", "5"), -91);
    EXPECT_EQ(result.status, 110011 % 256);
    EXPECT_NE(result.out.find("ERROR: Number of sires/male parents to be edited is greater than "
                              "the number of sires/male parents\n"),
              std::string::npos);

    const spectext chosen = editedrun().set("PerformGEOnUserQtnSelectionYesNo", "Yes");
    result = run(chosen, -91);
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("UserSelectedQtnToBeEdited.txt"), std::string::npos);
    writefile("UserSelectedQtnToBeEdited.txt", "1 0 1 0 1\n1 1 1 1 1\n1 1 1 1 1 1 1 1 1\n"); // 19
    result = run(chosen, -91);
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("UserSelectedQtnToBeEdited.txt"), std::string::npos);
}
