#include "openstate.h"
#include "selection/population.h"
#include "selection/selectionindex.h"
#include "testsupport.h"

#include <cmath>
#include <filesystem>

namespace
{
class selectionindex : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        std::filesystem::create_directories("Selection/SelectionFolder1");
        makepopulation(s, 1, {3, 4, 4});
        settest(s, 2, {0, 0, 0, 0});
        s.cycle.selectionvaratr.allocate(2);
        s.cycle.selectionvarate.allocate(2);
        s.cycle.estimatedbvindex.allocate(4);
        s.cycle.estimatedbvrecomb.allocate(4);
        s.cycle.estimatedbvtrait.allocate(4, 2);
        s.traits.indexwt.allocate(2);
    }
    void setestimates(int64 t, const std::vector<double> &values)
    {
        std::copy(values.begin(), values.end(), s.cycle.estimatedbvtrait.column(t));
    }
    openstate s;
    const std::string file = "Selection/SelectionFolder1/SelectionIndex.txt";
};
} // namespace

// Variances with divisor 3: 1, 2, 3, 4 has 5/3; 10, 10, 10, 14 has mean 11 and (3 + 9) / 3 = 4.
TEST_F(selectionindex, severaltraitsareweightedinunitsoftheirdeviations)
{
    s.traits.ntraits = 2;
    s.traits.indexwt(1) = 0.75;
    s.traits.indexwt(2) = -0.25; // against the trait
    setestimates(1, {1, 2, 3, 4});
    setestimates(2, {10, 10, 10, 14});
    computeselectionindex(s, 1, 3);
    EXPECT_DOUBLE_EQ(s.cycle.selectionvarate(1), 5.0 / 3);
    EXPECT_DOUBLE_EQ(s.cycle.selectionvarate(2), 4);
    for (int64 i = 1; i <= 4; ++i)
        EXPECT_DOUBLE_EQ(s.cycle.estimatedbv(i),
                         0.75 * static_cast<double>(i) / std::sqrt(5.0 / 3) -
                             0.25 * (i == 4 ? 7 : 5));
    // 4 x 0.75 / 1.2909944487 - 0.25 x 7 = 2.3237900077 - 1.75
    EXPECT_EQ(readlines(file)[3], "                   7        0.5737900077");

    // A trait without variation leaves nothing finite.
    setestimates(1, {2, 2, 2, 2});
    s.cycle.estimatedbvindex.fill(0);
    const outcome run = runbody([&] { computeselectionindex(s, 1, 3); });
    EXPECT_EQ(run.output, " WARNING: SelectionVarA smaller than 1E-25, set to 0.0\n");
    EXPECT_EQ(s.cycle.selectionvarate(1), 0);
    EXPECT_FALSE(std::isfinite(s.cycle.estimatedbv(1)));
}

TEST_F(selectionindex, weightofrecombinationchanges)
{
    selectionsettings &sel = s.selection;
    cycledata &cycle = s.cycle;
    sel.recombselonoff = true;
    sel.recombindexwt = 0;
    sel.recombindexwtlatergen = 1;
    sel.ngenselectonrec = 2;
    setestimates(1, {0, 0, 0, 4});        // variance 4
    const double recomb[] = {6, 0, 0, 0}; // variance 9
    std::copy(recomb, recomb + 4, cycle.estimatedbvrecomb.begin());
    computeselectionindex(s, 1, 3); // the last generation of the first weight: ngen + 2
    EXPECT_EQ(cycle.estimatedbv(4), 2);
    EXPECT_EQ(cycle.estimatedbv(1), 0);
    computeselectionindex(s, 1, 4);
    EXPECT_EQ(cycle.estimatedbv(4), 0);
    EXPECT_EQ(cycle.estimatedbv(1), 2);
}
