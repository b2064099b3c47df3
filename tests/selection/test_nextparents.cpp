#include "openstate.h"
#include "selection/nextparents.h"
#include "selection/population.h"
#include "testsupport.h"

#include <limits>

namespace
{
const double notanumber = std::numeric_limits<double>::quiet_NaN();
const double infinite = std::numeric_limits<double>::infinity();

class nextparents : public infolder
{
  protected:
    openstate s;
};
} // namespace

// Generation 1 has 4 individuals, so the males of generation 2 are rows 5, 7, 9, ...; equal values
// go to the earlier row, and what is not finite or too low is never taken.
TEST_F(nextparents, truncationrankswithinasexandgivestheresttothebest)
{
    makepopulation(s, 2, {4, 12, 10});
    settest(s, 2, {1.5, 99, 2.5, 99, infinite, 99, 2.5, 99, notanumber, 99, -1.1e16, 99});
    selectnextparentstruncat(s, 3, 1, 3);
    EXPECT_EQ(siresof(s, 3), (std::vector<int64>{7, 7, 7, 11, 11, 11, 5, 5, 5, 7}));
    EXPECT_EQ(damsof(s, 3), std::vector<int64>(10, 0));

    // More parents than candidates: the last one found is entered again. None at all: the first.
    selectnextparentstruncat(s, 3, 1, 5);
    EXPECT_EQ(siresof(s, 3), (std::vector<int64>{7, 7, 11, 11, 5, 5, 5, 5, 5, 5}));
    s.cycle.estimatedbv.fill(-infinite);
    selectnextparentstruncat(s, 3, 1, 2);
    EXPECT_EQ(siresof(s, 3), std::vector<int64>(10, 5));
}

TEST_F(nextparents, moreparentsthanprogenyleavesthebestwithoneeach)
{
    makepopulation(s, 2, {12, 12, 3});
    settest(s, 2, {1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0});
    s.editing.geneditonoff = true;
    s.edits.indivtobeedited.allocate(5);
    selectnextparentstruncat(s, 3, 1, 5);
    EXPECT_EQ(siresof(s, 3), (std::vector<int64>{23, 21, 19}));
    EXPECT_EQ(std::vector<int64>(s.edits.indivtobeedited.begin(), s.edits.indivtobeedited.end()),
              (std::vector<int64>{11, 9, 7, 5, 3})); // places in the test set
}
