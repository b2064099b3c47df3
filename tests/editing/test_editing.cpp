#include "editing/edittargets.h"
#include "editing/genedrive.h"
#include "haplotypes/blocks.h"
#include "openstate.h"
#include "selection/population.h"
#include "testsupport.h"

#include <filesystem>
#include <tuple>

namespace
{
// Two chromosomes with two and four QTN, generations of 4, 4 and 2 individuals; generation 3 is
// made from 4 sires.
class editing : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        makepopulation(s, 2, {4, 4, 2});
        s.founders.nchrom = 2;
        s.qtn.nqtn = s.loci.ntotqtn = 6;
        s.loci.nqtnonthischrom.allocate(2, 2);
        s.loci.nqtnonthischrom(2) = 4;
        s.pop.nsireinthisgen(2) = 4;
        s.editing.nindedited = 1;
        for (const char *folderpath : {"SimulatedData", "Chromosomes/Chromosome1",
                                       "Chromosomes/Chromosome2", "Selection/SelectionFolder1"})
            std::filesystem::create_directories(folderpath);
    }
    openstate s;
};
} // namespace

// f (S - E) + E over S, and half of its distance from f, with S = 4: E = 1 moves the frequency by
// (1 - f) / 8, the mean by 2a times that. Gains by hand:
//   QTN  a     f of allele 1   favourable, its f   gain                     new frequency
//   1    0.5   0.2             1, 0.2              2 x 0.5 x 0.1   =  0.1    0.3
//   2   -2.0   0.75            0, 0.25             -4 x 0.09375    = -0.375  0.34375
//   3    0     0.3             0, 0.7              0                         0.7375
//   4    1.0   1               1, 1 (fixed)        0                         1
//   5   -0.4   0.2             0, 0.8              -0.8 x 0.025    = -0.02   0.825
//   6    3.0   0.9             1, 0.9              6 x 0.0125      =  0.075  0.9125
TEST_F(editing, gainsbyhand)
{
    s.qtn.qtnmodel = 4;
    s.qtn.nqtngamma = 2; // the normal effects count all the same
    writefile("SimulatedData/RestrictedQtnAdditEffects.txt",
              "title\n1 1 17 0.5 9\n2 1 60 -2 9\n3 2 4 0 9\n4 2 5 1 -9\n5 2 6 -0.4 9\n6 2 9 3 0\n");
    writefile("Chromosomes/Chromosome1/RestrictedQtnAlleleFreqGeneration2.txt",
              "1 17 0.2\n2 60 0.75\n");
    writefile("Chromosomes/Chromosome2/RestrictedQtnAlleleFreqGeneration2.txt",
              "1 4 0.3\n2 5 1\n3 6 0.2\n4 9 0.9\n");
    runge(s, 1, 3);
    const auto gains = readlines("Selection/SelectionFolder1/QtnGeneticGainAlleleFreqGener3.txt");
    const std::string list =
        "Selection/SelectionFolder1/RestrictedQtnSortedForGeneEditingGener3.txt";
    const std::vector<std::vector<double>> wanted = {
        {1, 1, 17, 1, 0.2, 0.1, 0.3},    {2, 1, 60, 0, 0.25, -0.375, 0.34375},
        {3, 2, 4, 0, 0.7, 0, 0.7375},    {4, 2, 5, 1, 1, 0, 1},
        {5, 2, 6, 0, 0.8, -0.02, 0.825}, {6, 2, 9, 1, 0.9, 0.075, 0.9125}};
    for (std::size_t q = 0; q < 6; ++q) EXPECT_EQ(numbersof(gains[q + 1]), wanted[q]);
    for (array1<int64> *a : {&s.edits.qtnidsortedbyabsval, &s.edits.qtnidsortedbyabsvalchrom,
                             &s.edits.qtnidsortedbyabsvalrecodedid, &s.edits.qtnforgeneditposneg,
                             &s.edits.qtnidsortedbyabsvalmutindivid})
        a->allocate(6);
    readeditlist(s, 1, 3);
    const array1<int64> &ids = s.edits.qtnidsortedbyabsvalrecodedid;
    EXPECT_EQ(ids(1), 2);
    EXPECT_EQ(ids(2), 5);
    EXPECT_EQ(ids(3) + ids(4), 3 + 4); // equal gains, in any order
    EXPECT_EQ(ids(5), 6);
    EXPECT_EQ(ids(6), 1);
    EXPECT_EQ(s.edits.qtnidsortedbyabsval(1), 60);
    EXPECT_EQ(s.edits.qtnidsortedbyabsvalchrom(2), 2);
    EXPECT_EQ(s.edits.qtnforgeneditposneg(5), 1);

    // Without sires: the selfed parents, and where there are none those of either gender. With all
    // of them edited the new frequency is halfway to 1.
    s.pop.nsireinthisgen(2) = 0;
    s.pop.nrandparinthisgen(2) = 1;
    runge(s, 1, 3);
    EXPECT_EQ(numbersof(readlines(list)[1])[7], (1 + 0.25) / 2);
    s.pop.nselfedparinthisgen(2) = 4;
    runge(s, 1, 3);
    EXPECT_EQ(numbersof(readlines(list)[1])[7], 0.34375);
}

// Individual 9 has sire 5 and dam 6. The flags of a parent whose phases differ show where the
// source changes; by hand, with chromosome 2 holding QTN 4 to 6 at sites 100, 130 and 50.
TEST_F(editing, flagsfollowthegamete)
{
    s.loci.nqtnonthischrom.allocate(2, 3);
    s.editing.genedriveonoff = true;
    s.edits.genedriveqtnpresence.allocate(10, 6);
    s.pedi.ped(9).newsire = 5;
    s.pedi.ped(9).newdam = 6;
    driveflags &flags = s.edits.genedriveqtnpresence;
    for (int64 q = 1; q <= 6; ++q) flags(5, q, 1) = flags(6, q, 2) = 1;
    editdata &edits = s.edits;
    edits.qtnidsortedbyabsval.allocate(6);
    edits.qtnidsortedbyabsvalchrom.allocate(6);
    edits.qtnidsortedbyabsvalrecodedid.allocate(6);
    // In the order of the list: QTN 5, 1, 4, 2, 6, 3.
    const int64 ids[] = {5, 1, 4, 2, 6, 3}, sites[] = {130, 20, 100, 40, 50, 60},
                chroms[] = {2, 1, 2, 1, 2, 1};
    for (int64 j = 1; j <= 6; ++j) {
        edits.qtnidsortedbyabsvalrecodedid(j) = ids[j - 1];
        edits.qtnidsortedbyabsval(j) = sites[j - 1];
        edits.qtnidsortedbyabsvalchrom(j) = chroms[j - 1];
    }
    const auto inherited = [&](int64 side, std::vector<int64> crossings) {
        array1<int64> recomblocation(4, -99);
        std::copy(crossings.begin(), crossings.end(), recomblocation.begin());
        for (int64 q = 1; q <= 6; ++q) flags(9, q, side) = 7;
        definegenedriveinheritance(s, 9, side, 2, recomblocation);
        std::string text;
        for (int64 q = 1; q <= 6; ++q) text += static_cast<char>('0' + flags(9, q, side));
        return text;
    };
    // Chromosome 1 is another call's. No crossing: phase 1 of the parent.
    EXPECT_EQ(inherited(1, {}), "777111");
    EXPECT_EQ(inherited(2, {}), "777000");
    // A crossing moves the place of change only past entries behind the site of entry 1, 130: at
    // 120 none, so it stays at QTN 4, which is phase 2 already.
    EXPECT_EQ(inherited(1, {120}), "777000");
    EXPECT_EQ(inherited(2, {120}), "777111");
    // With entry 1 at site 90: entry 3 (site 100) moves it to QTN 5 and the tracker to entry 5, at
    // site 50; entry 5 isn't behind itself. Next crossing, at 140: entry 1 (90) is behind 50, moves
    // to QTN 6 and entry 6, at 60; entry 3 can move no further than the last QTN.
    edits.qtnidsortedbyabsval(1) = 90;
    EXPECT_EQ(inherited(1, {110}), "777100");
    EXPECT_EQ(inherited(2, {110, 140}), "777001");

    copysireflags(s, 9);
    for (int64 q = 1; q <= 6; ++q) EXPECT_EQ(flags(9, q, 2), flags(9, q, 1));
}

// Sites at the seam of two blocks.
TEST_F(editing, conversioncopiesoneallele)
{
    for (const int64 site : {1, 60, 61, 120})
        for (const int64 phase : {1, 2}) {
            std::vector<int64> fromsire = {0, 0};
            std::vector<int64> fromdam(2, (int64(1) << 60) - 1);
            genedriveedit(phase, fromsire.data(), fromdam.data(), site);
            for (int64 l = 1; l <= 120; ++l) {
                const auto [block, position] = placeofsite(l);
                const auto b = static_cast<std::size_t>(block - 1);
                EXPECT_EQ(alleleat(fromsire[b], position), l == site && phase == 2 ? 1 : 0);
                EXPECT_EQ(alleleat(fromdam[b], position), l == site && phase == 1 ? 0 : 1);
            }
        }
    const outcome bad = runbody([] { genedriveedit(3, nullptr, nullptr, 1); });
    EXPECT_EQ(bad.code(), -1);
    EXPECT_EQ(bad.output, "MAJOR ERROR IN GENE DRIVE\n");
}
