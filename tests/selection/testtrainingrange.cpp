#include "selection/population.h"
#include "selection/trainingrange.h"
#include "testsupport.h"

namespace
{
class TrainingRange : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        makepopulation(s, 3, {5, 4, 3, 6, 7}); // rows 1-5, 6-9, 10-12, 13-18, 19-25
    }
    outcome describe(int64 currentgen)
    {
        return runbody(
            [&] { computedescriptvariablesforselection(s, currentgen - 3, currentgen); });
    }
    // First and last row, first and last generation, number of training individuals.
    std::vector<int64> range() const
    {
        const cycledata &cycle = s.cycle;
        return {cycle.starttrainindiv, cycle.endtrainindiv, cycle.firsttmptraingen,
                cycle.lasttmptraingen, cycle.ntrainindiv};
    }
    state s;
};
} // namespace

TEST_F(TrainingRange, EveryStrategyInEveryGeneration)
{
    const struct {
        int64 strategy, currentgen;
        bool recomb;
        std::vector<int64> wanted;
    } cases[] = {
        {1, 4, false, {1, 12, 1, 3, 12}}, {1, 5, false, {1, 18, 1, 4, 18}},
        {2, 4, false, {1, 9, 1, 2, 9}},   {2, 5, false, {1, 12, 1, 3, 12}},
        {3, 3, false, {1, 5, 1, 1, 5}},   {3, 4, false, {6, 9, 2, 2, 4}},
        {3, 5, false, {10, 12, 3, 3, 3}}, {4, 4, false, {1, 12, 1, 3, 7}},
        {4, 5, false, {1, 18, 1, 4, 10}}, {4, 5, true, {1, 12, 1, 3, 7}},
        {5, 4, false, {6, 12, 2, 3, 6}},  {0, 5, false, {1, 0, 0, 0, 6}},
    };
    s.selection.firsttraingenrp = 2;
    s.selection.lasttraingenrp = 3;
    for (const auto &c : cases) {
        s.selection.selphenstrat = c.strategy;
        s.selection.recombselonoff = c.recomb;
        s.selection.ntrainindiv = 6;
        ASSERT_FALSE(describe(c.currentgen).stoppedearly);
        EXPECT_EQ(range(), c.wanted) << "strategy " << c.strategy << " generation " << c.currentgen;
    }
    EXPECT_EQ(s.cycle.ntrainindivmax, 7);
    EXPECT_EQ(s.cycle.trainindicator.size(), 7);
}

TEST_F(TrainingRange, RandomPhenotypesOutOfReach)
{
    selectionsettings &sel = s.selection;
    sel.selphenstrat = 5;
    sel.firsttraingenrp = 1;
    sel.lasttraingenrp = 4;
    sel.ntrainindiv = 19;
    const outcome toofew = describe(5);
    EXPECT_EQ(toofew.code(), 110004);
    EXPECT_NE(toofew.output.find("ERROR: There is not enough individuals in the pedigree to "
                                 "constitute the training dataset\n"),
              std::string::npos);
    sel.ntrainindiv = 18;
    EXPECT_FALSE(describe(5).stoppedearly);
    const outcome late = describe(4);
    EXPECT_EQ(late.code(), 110006);
    EXPECT_NE(
        late.output.find(" ERROR: The last training generation must be prior or equal to    3\n"
                         "Check parameter FirstAndLastTrainingGenForRandPhenotypingStrat\n"),
        std::string::npos)
        << late.output;
    sel.recombselonoff = true;
    EXPECT_EQ(describe(5).code(), 110005);
    sel.lasttraingenrp = 99; // beyond the run
    EXPECT_EQ(describe(5).code(), 110005);
}

TEST_F(TrainingRange, SpecifiedIndividuals)
{
    s.selection.selphenstrat = 6;
    EXPECT_EQ(describe(5).code(), -2); // no file
    writefile("TrainIndiv.txt", "\n0\n11 surplus\n 7\n11\n,8\nend\n12\n");
    describe(5);
    EXPECT_EQ(range(), (std::vector<int64>{6, 12, 2, 3, 7}));
    EXPECT_EQ(std::vector<int64>(s.cycle.trainindiv.begin(), s.cycle.trainindiv.end()),
              (std::vector<int64>{11, 7, 11, 8}));
    writefile("TrainIndiv.txt",
              "3\n5"); // all in generation 1: the search leaves the end of the run
    describe(5);
    EXPECT_EQ(range(), (std::vector<int64>{1, 25, 1, 5, 25}));

    for (const char *nothing : {"", "0\n", "none\n"}) {
        writefile("TrainIndiv.txt", nothing);
        const outcome stop = describe(5);
        EXPECT_EQ(stop.code(), -1);
        EXPECT_NE(stop.output.find("ERROR: TrainIndiv.txt was either empty or ill-formated and "
                                   "nothing could be read.\n"),
                  std::string::npos);
    }
    writefile("TrainIndiv.txt", "3\n26\n");
    const outcome nobody = describe(5);
    EXPECT_EQ(nobody.code(), -2);
    EXPECT_NE(nobody.stop.reason.find("line 2"), std::string::npos) << nobody.stop.reason;
}
