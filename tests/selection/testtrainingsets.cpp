#include "selection/population.h"
#include "selection/trainingrange.h"
#include "selection/trainingsets.h"
#include "testsupport.h"
#include "textlayout.h"

#include <cmath>
#include <filesystem>

namespace
{
// Burn-in generations 1 to 3 of 4 individuals each, and the tables that a run has of them. True
// values are the row, dominance deviations 0.25, phenotypes the row plus a half; trait 2 has a
// hundred times that. Row i has i crossovers from its sire and 1 from its dam.
class TrainingSets : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        makepopulation(s, 3, {4, 4, 4, 4});
        for (array3<double> *values : {&s.values.tbv, &s.values.tdv, &s.values.tpv})
            values->allocate(16, 2, 2);
        s.values.tbvrecombz.allocate(16);
        s.values.recombperindperchr.allocate(16);
        s.haplo.recombcount.allocate(16, 2, 77);
        s.qtn.nqtnmodels = 2;
        s.qtn.qtnmodel = 2;
        s.founders.morgans = 1.5;
        s.traits.ntraits = 2;
        for (int64 i = 5; i <= 12; ++i) { // parents 1 and 2, 5 and 6, of the next generation
            s.pedi.ped(i).newsire = i <= 8 ? 1 : 5;
            s.pedi.ped(i).newdam = i <= 8 ? 2 : 6;
        }
        writetables();
        std::filesystem::create_directories("Selection");
    }

    void writetables()
    {
        std::string table = "title\n", counts, recomb = "title\n";
        for (int64 i = 1; i <= 12; ++i) {
            textline line;
            for (const int64 column : {(i + 3) / 4, i, int64(0), int64(0)}) puti(line, column, 10);
            textline recombline = line;
            for (const double added : {0.0, 0.25, 0.5})  // tbv, tdv, tpv
                for (const double factor : {1.0, 100.0}) // traits
                    for (const double model : {-1000.0, 0.0})
                        putf(line,
                             added == 0.25 ? added
                                           : factor * (static_cast<double>(i) + added) + model,
                             20, 10);
            table += line + "\n";
            counts += freeline(i, i, 1) + "\n";
            putf(recombline, 0.001 * static_cast<double>(i), 20, 10);
            putf(recombline, 1 + 0.1 * static_cast<double>(i), 20, 10);
            for (const int64 count : {i, int64(1), i + 1}) puti(recombline, count, 20);
            recomb += recombline + "\n";
        }
        writefile("SimulatedData/PedigreeTbvTdvTpv.txt", table);
        writefile("SimulatedData/RecombinationCount.txt", counts);
        writefile("SimulatedData/PedigreeTbvRecombination.txt", recomb);
    }

    void run(int64 strategy, int64 selectedtrait = 1)
    {
        s.selection.selphenstrat = strategy;
        runbody([&] {
            if (selectedtrait == 1) computedescriptvariablesforselection(s, 1, 4);
            determinetrainandtestdatasetsforselection(s, 1, selectedtrait);
        });
    }
    // Rows in a file of the cycle.
    std::vector<int64> rowsof(const std::string &name)
    {
        std::vector<int64> rows;
        for (const std::string &line : readlines(f + name))
            rows.push_back(std::stoll(line.substr(0, 20)));
        return rows;
    }
    state s;
    const std::string f = "Selection/SelectionFolder1/";
};
} // namespace

TEST_F(TrainingSets, ValuesComeBackFromTheTables)
{
    s.selection.selontbvyes1no0 = 2;
    s.selection.selmethindicator = 3;
    writefile(f + "leftover.txt", "");
    run(0);
    run(0, 2);
    EXPECT_EQ(s.values.tbv(7, 1, 2), -300);
    EXPECT_EQ(s.values.tbv(12, 2, 1), 12);
    EXPECT_EQ(s.values.tdv(3, 2, 2), 0.25);
    EXPECT_EQ(s.values.tpv(9, 2, 2), 950);
    EXPECT_EQ(s.values.tbv(13, 2, 1), 0); // not made yet
    EXPECT_EQ(s.haplo.recombcount(12, 1), 12);
    EXPECT_EQ(s.haplo.recombcount(12, 2), 1);
    EXPECT_EQ(s.haplo.recombcount(13, 1), 0);
    EXPECT_EQ(s.values.recombperindperchr(16), 1.5);

    EXPECT_EQ(
        readfile(f + "SelectionTbvTestTrait1.txt"),
        "                   9        9.0000000000\n                  10       10.0000000000\n"
        "                  11       11.0000000000\n                  12       12.0000000000\n");
    EXPECT_EQ(readlines(f + "SelectionPhenTestTrait2.txt")[3],
              "                  12     1250.0000000000");
    std::size_t nfiles = 0;
    for (const auto &entry : std::filesystem::directory_iterator(f)) {
        EXPECT_NE(entry.path().filename(), "leftover.txt");
        ++nfiles;
    }
    EXPECT_EQ(nfiles, 4U);
    writefile("SimulatedData/PedigreeTbvTdvTpv.txt", "title\n1 1 0 0 1 2 3 4 5 6 7 8 9 10 11 12\n");
    EXPECT_EQ(runbody([&] { determinetrainandtestdatasetsforselection(s, 1, 1); }).code(), -2);
}

TEST_F(TrainingSets, WhoIsPhenotypedUnderEachStrategy)
{
    s.selection.selontbvyes1no0 = 0;
    s.selection.selmethindicator = 2;
    writefile("TrainIndiv.txt", "10\n2\n");
    const std::vector<int64> wanted[] = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12},
                                         {1, 2, 3, 4, 5, 6, 7, 8},
                                         {5, 6, 7, 8},
                                         {1, 3, 5, 7, 9, 11}};
    for (int64 strategy = 1; strategy <= 4; ++strategy) {
        run(strategy);
        EXPECT_EQ(rowsof("SelectionPhenTrainTrait1.txt"), wanted[strategy - 1]) << strategy;
        EXPECT_EQ(readfile(f + "PedigreeBlupTrain1.txt"), "");
    }
    run(6);
    EXPECT_EQ(rowsof("SelectionPhenTrainTrait1.txt"), (std::vector<int64>{2, 10}));
    run(6, 2);
    EXPECT_EQ(readlines(f + "SelectionPhenTrainTrait2.txt")[1],
              "                  10     1050.0000000000");
}

TEST_F(TrainingSets, RandomPhenotypesAreDrawnForEveryTrait)
{
    selectiondata &sel = s.selection;
    sel.selontbvyes1no0 = 0;
    sel.selmethindicator = 2;
    sel.firsttraingenrp = 2;
    sel.lasttraingenrp = 3;
    sel.ntrainindiv = 3;
    randomstream reference = s.random;
    for (int64 trait = 1; trait <= 2; ++trait) {
        int64 order[8];
        randomorder(order, 8, reference);
        std::vector<int64> wanted = {order[0] + 4, order[1] + 4, order[2] + 4};
        std::sort(wanted.begin(), wanted.end());
        run(5, trait);
        EXPECT_EQ(rowsof("SelectionPhenTrainTrait" + std::to_string(trait) + ".txt"), wanted);
    }
    sel.ntrainindiv = 8; // all of them: the draw is made all the same
    int64 order[8];
    randomorder(order, 8, reference);
    run(5);
    EXPECT_EQ(rowsof("SelectionPhenTrainTrait1.txt").size(), 8U);
    EXPECT_EQ(ran1(s.random), ran1(reference));
}

TEST_F(TrainingSets, RecombinationTraitHasLogCounts)
{
    s.selection.selontbvyes1no0 = 0;
    s.selection.selmethindicator = 2;
    s.selection.recombselonoff = true;
    s.traits.ntraits = 1;
    std::string table = "title\n";
    for (int i = 1; i <= 12; ++i) table += " 1 1 0 0 0 1 0 0 0 2\n";
    writefile("SimulatedData/PedigreeTbvTdvTpv.txt", table);
    run(2);
    EXPECT_EQ(s.values.recombperindperchr(12), 2.2);
    EXPECT_EQ(s.values.recombperindperchr(13), 0);
    EXPECT_EQ(readlines(f + "SelectionTbvRecombZTesting.txt")[0],
              "                   9        0.0090000000");
    const std::vector<std::string> lines = readlines(f + "SelectionPhenRecombTrain.txt");
    ASSERT_EQ(lines.size(), 8U);
    // Row 3 has 4 crossovers: log(4.0001) = 1.386319361, in single precision.
    EXPECT_NEAR(numbersof(lines[2])[1], std::log(4.0001), 1e-7);
    EXPECT_EQ(s.selection.phenvalrecombtrain(3), static_cast<double>(std::log(4.0f + 0.0001f)));
    run(4); // all males, two generations back
    EXPECT_EQ(rowsof("SelectionPhenRecombTrain.txt"), (std::vector<int64>{1, 3, 5, 7}));
}

// Training generation 3 with one generation of pedigree before it: rows 5 to 12 become 1 to 8.
TEST_F(TrainingSets, TrainingPedigreeIsRenumbered)
{
    s.selection.selontbvyes1no0 = 0;
    s.selection.selmethindicator = 1;
    s.selection.ngenpedpriortrain = 1;
    s.selection.firsttraingenrp = s.selection.lasttraingenrp = 3;
    s.selection.ntrainindiv = 4;
    run(5);
    std::vector<std::string> lines = readlines(f + "PedigreeBlupTrain1.txt");
    ASSERT_EQ(lines.size(), 8U);
    EXPECT_EQ(lines[0], "         1         0         0         1      -99.0000000000");
    EXPECT_EQ(lines[7], "         8         1         2         1       12.5000000000");
    // From the first generation on: its rows are founders, the test set has no phenotype.
    s.selection.ngenpedpriortrain = 9;
    run(2);
    lines = readlines(f + "PedigreeBlupTrain1.txt");
    ASSERT_EQ(lines.size(), 12U);
    EXPECT_EQ(lines[4], "         5         1         2         1        5.5000000000");
    EXPECT_EQ(lines[11], "        12         5         6         1      -99.0000000000");
    run(0); // solutions from outside: nobody has a phenotype
    lines = readlines(f + "PedigreeBlupTrain1.txt");
    ASSERT_EQ(lines.size(), 12U);
    EXPECT_EQ(lines[4], "         5         1         2         1      -99.0000000000");
    EXPECT_EQ(readfile(f + "SelectionPhenTrainTrait1.txt"), "");
}
