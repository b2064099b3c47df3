#include "selection/nextparents.h"
#include "selection/pedigreeimport.h"
#include "selection/population.h"
#include "testsupport.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace
{
const double notanumber = std::numeric_limits<double>::quiet_NaN();
const double infinite = std::numeric_limits<double>::infinity();

class NextParents : public infolder
{
  protected:
    state s;
};
} // namespace

// Generation 1 has 4 individuals, so the males of generation 2 are rows 5, 7, 9, ...; equal values
// go to the earlier row, and what is not finite or too low is never taken.
TEST_F(NextParents, TruncationRanksWithinASexAndGivesTheRestToTheBest)
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

TEST_F(NextParents, MoreParentsThanProgenyLeavesTheBestWithOneEach)
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

TEST_F(NextParents, PlantsRegardlessOfGender)
{
    makepopulation(s, 2, {4, 6, 40});
    s.pop.animbreedonoff = false;
    s.pop.plantbreedonoff = true;
    settest(s, 2, {1, 6, 5, 4, 3, 2});
    s.pop.nselfedparinthisgen(2) = 2;
    selectnextparentstruncat(s, 3, 1, 2);
    EXPECT_EQ(siresof(s, 3).front(), 6);
    EXPECT_EQ(siresof(s, 3).back(), 7);

    // Crossed at random: both calls, then no individual is both parents of another.
    s.pop.nselfedparinthisgen(2) = 0;
    s.pop.nrandparinthisgen(2) = 3;
    s.editing.geneditonoff = true;
    s.edits.indivtobeedited.allocate(4); // more than are chosen: nobody on the last place
    selectnextparentstruncat(s, 3, 1, 3);
    EXPECT_EQ(s.edits.indivtobeedited(4), 0);
    selectnextparentstruncat(s, 3, 2, 3);
    std::vector<int64> sires = siresof(s, 3), dams = damsof(s, 3);
    for (std::size_t r = 0; r < sires.size(); ++r) EXPECT_NE(sires[r], dams[r]) << r;
    EXPECT_FALSE(std::is_sorted(sires.begin(), sires.end())); // dealt anew
    sires.insert(sires.end(), dams.begin(), dams.end());
    EXPECT_EQ(std::set<int64>(sires.begin(), sires.end()), (std::set<int64>{6, 7, 8}));

    s.pop.nrandparinthisgen(2) = 1;
    const outcome single = runbody([&] { selectnextparentstruncat(s, 3, 1, 1); });
    EXPECT_EQ(single.code(), 110021);
    EXPECT_EQ(single.output,
              "ERROR: Random mating needs at least two parents for generation    2\n");
}

TEST_F(NextParents, NoParentsAskedForStopsBeforeAnyDivision)
{
    makepopulation(s, 2, {4, 6, 4});
    settest(s, 2, {1, 2, 3, 4, 5, 6});
    const outcome sires = runbody([&] { selectnextparentstruncat(s, 3, 1, 0); });
    EXPECT_EQ(sires.code(), 110023);
    EXPECT_EQ(sires.output, "ERROR: Not enough sires for generation    2\n");
    EXPECT_EQ(runbody([&] { selectnextparentstruncat(s, 3, 2, 0); }).code(), 110024);
    s.pop.plantbreedonoff = true;
    EXPECT_EQ(runbody([&] { selectnextparentstruncat(s, 3, 1, 0); }).code(), 110019);
    EXPECT_EQ(runbody([&] { selectnextparentstruncat(s, 3, 2, 0); }).code(), 110020);
}

TEST_F(NextParents, ImportTakesParentsOfAnyEarlierGeneration)
{
    makepopulation(s, 2, {4, 6, 3});
    settest(s, 2, {0, 0, 0, 0, 0, 0});
    const std::string file = "Selection/SelectionFolder1/ExternalPedigree.txt";
    writefile(file, "101 1 10\n102,5,5 surplus\n 103\t9 4\n104 1 1\n");
    const outcome import = runbody([&] { importexternalpedforcurrentselgen(s, 1, 3); });
    EXPECT_EQ(import.output, " External pedigree successfully imported\n");
    EXPECT_EQ(siresof(s, 3), (std::vector<int64>{1, 5, 9}));
    EXPECT_EQ(damsof(s, 3), (std::vector<int64>{10, 5, 4}));
    EXPECT_EQ(s.pedi.ped(12).newid, 102);
    EXPECT_EQ(s.pedi.ped(12).oldglobalid, 102);
    EXPECT_EQ(s.pedi.ped(12).generation, 3);
    EXPECT_EQ(s.pedi.ped(12).path, folder);

    const std::string message = " ERROR: ExternalPedigree.txt must name two parents of earlier "
                                "generations for individual 12\n";
    for (const char *second :
         {"2 0 3", "2 3 11", "2 -1 3"}) { // unknown, of this generation, nobody
        writefile(file, std::string("1 1 2\n") + second + "\n3 1 2\n");
        const outcome bad = runbody([&] { importexternalpedforcurrentselgen(s, 1, 3); });
        EXPECT_EQ(bad.code(), 110015) << second;
        EXPECT_EQ(bad.output, message);
    }
    writefile(file, "1 1 2\n");
    EXPECT_EQ(runbody([&] { importexternalpedforcurrentselgen(s, 1, 3); }).code(), -2);

    s.run.importstage = 1;
    EXPECT_EQ(
        runbody([&] { importexternalpedforcurrentselgen(s, 1, 3); }).output,
        "  You must now create an external pedigree file for the current selection generation\n"
        "  Name this file ExternalPedigree.txt and store it in the current selection folder\n");
}
