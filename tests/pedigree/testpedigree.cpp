// The pedigree table and its files.
#include "pedigree/pedigree.h"
#include "selection/population.h"
#include "shell.h"
#include "testsupport.h"

namespace
{
class pedigreefiles : public infolder
{
};

// Generations of 2, 3 and 2 individuals, rows not yet filled; the run covers first to last.
state pedigreestate(int64 first, int64 last)
{
    runcommand("mkdir -p SimulatedData");
    state s;
    makepopulation(s, 2, {2, 3, 2});
    s.run.specstartgen = first;
    s.run.specendgen = last;
    s.pedi.pedigreestatus = "Internal";
    s.pedi.ped.allocate(7);
    return s;
}
} // namespace

TEST_F(pedigreefiles, rowsAreFilledOnce)
{
    pedigreeline row;
    initline(row, 17, 1, 0, 3, 1, "/first");
    initline(row, 18, 2, 5, 6, 2, "/second");
    int64 values[3];
    getidsiredamfromline(row, values[0], values[1], values[2]);
    const int64 wanted[] = {1, 0, 3};
    for (int64 i = 1; i <= 3; ++i) {
        EXPECT_EQ(values[i - 1], wanted[i - 1]);
        EXPECT_EQ(getsiredambyindex(row, i), wanted[i - 1]);
    }
    EXPECT_EQ(row.oldglobalid, 17);
    EXPECT_EQ(row.path, "/first");
    pedigreeline here;
    initline(here, 1, 1, 0, 0, 1);
    EXPECT_EQ(here.path, workingdirectory());
}

TEST_F(pedigreefiles, lastRowOfAnIdentifierWins)
{
    state s = pedigreestate(1, 3);
    pedigreeindex index;
    const int64 ids[] = {40, 50, 40, 0, -3};
    for (int64 i = 1; i <= 5; ++i) {
        initline(s.pedi.ped(i), ids[i - 1], i, 0, 0, 1, "p");
        index.add(s.pedi.ped(i));
    }
    const std::pair<int64, int64> wanted[] = {{40, 3}, {50, 2}, {-3, 5}, {0, 0}, {41, 0}};
    for (const auto &[id, row] : wanted) {
        int64 found = -1;
        getpedigreeposbyid(s, id, found);
        EXPECT_EQ(found, row) << id;
        EXPECT_EQ(index.find(id), row) << id;
    }
}

TEST_F(pedigreefiles, writtenKeptAndReadBack)
{
    state s = pedigreestate(1, 3);
    for (int64 i = 1; i <= 7; ++i)
        initline(s.pedi.ped(i), 100 + i, i, i / 2, i / 3, 1,
                 i == 1 ? std::string(600, 'x') : "/a folder");
    writeoutpedigree(s);
    const std::vector<std::string> earlier = readlines(pedigreetable);
    ASSERT_EQ(earlier.size(), 8u);
    EXPECT_EQ(earlier[0], "          Generation         OldGlobalID               NewId"
                          "             NewSire              NewDam                Path");
    EXPECT_EQ(earlier[1], "                   1                 101                   1"
                          "                   0                   0 " +
                              std::string(512, 'x'));
    EXPECT_EQ(earlier[7], "                   3                 107                   7"
                          "                   3                   2 /a folder" +
                              std::string(503, ' '));

    // Two generations read back, the sizes taken from the file. Genders only of an internal
    // pedigree.
    writefile(gendertable, "title\n 1 1 2\n 1 2 1\n 2 3 2\n 2 4 2\n 2 5 1\n 3 6 2\n 3 7 1\n");
    writefile(generationtable, "title\n 1 2 1 1\n 2 3 1 2\n 3 2 1 1\n");
    for (const char *status : {"Internal", "animals.txt"}) {
        state t = pedigreestate(1, 2);
        t.pop.nindivinthisgen(3) = 4;
        t.pedi.pedigreestatus = status;
        t.pedi.globalgender.fill(0);
        readpedigreegender(t);
        for (int64 i = 1; i <= 5; ++i) {
            const pedigreeline &row = t.pedi.ped(i), &old = s.pedi.ped(i);
            EXPECT_EQ(row.generation, i <= 2 ? 1 : 2);
            EXPECT_EQ(row.oldglobalid, old.oldglobalid);
            EXPECT_EQ(row.newid, old.newid);
            EXPECT_EQ(row.newsire, old.newsire);
            EXPECT_EQ(row.newdam, old.newdam);
            EXPECT_EQ(row.path, old.path);
            EXPECT_FALSE(row.initialised);
            const int64 gender = i == 2 || i == 5 ? 1 : 2;
            EXPECT_EQ(t.pedi.globalgender(i), *status == 'I' ? gender : 0);
        }
        EXPECT_EQ(t.pedi.ped(6).newid, 0);
        EXPECT_EQ(t.pop.nmalinthisgen(2), 1);
        EXPECT_EQ(t.pop.nfeminthisgen(2), 2);
        EXPECT_EQ(t.pop.cumindivnbtogen(3), 9);
    }

    // The next run covers generation 2 alone: generation 1 stays, generation 3 is dropped.
    s.run.specstartgen = s.run.specendgen = 2;
    for (int64 i = 1; i <= 7; ++i) s.pedi.ped(i).newsire = 99;
    writeoutpedigree(s);
    const std::vector<std::string> after = readlines(pedigreetable);
    ASSERT_EQ(after.size(), 6u);
    EXPECT_EQ(after[2], earlier[2]);
    EXPECT_EQ(wordsof(after[3])[3], "99");

    writefile(pedigreetable, earlier[0] + "\nshort\n");
    EXPECT_EQ(runbody([&] { writeoutpedigree(s); }).code(), -2);
    EXPECT_EQ(runbody([&] { readpedigreegender(s); }).code(), -2);
}
