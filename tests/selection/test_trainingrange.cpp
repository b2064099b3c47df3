#include "openstate.h"
#include "selection/population.h"
#include "selection/trainingrange.h"
#include "testsupport.h"

namespace
{
class trainingrange : public infolder
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
    openstate s;
};
} // namespace

TEST_F(trainingrange, everystrategyineverygeneration)
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
