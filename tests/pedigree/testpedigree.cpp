// The pedigree table and its files.
#include "pedigree/pedigree.h"
#include "shell.h"
#include "testsupport.h"

#include <filesystem>

namespace
{
class pedigreefiles : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        std::filesystem::create_directory("SimulatedData");
    }
    // Generations of 2, 3 and 2 individuals; the run covers first to last.
    void setuprun(state &s, int64 first, int64 last)
    {
        s.pop.ngen = 2;
        s.pop.ngensel = 1;
        s.pop.nindivinthisgen.allocate({0, 3});
        s.pop.cumindivnbtogen.allocate({0, 3});
        const int64 sizes[] = {0, 2, 3, 2};
        for (int64 j = 1; j <= 3; ++j) {
            s.pop.nindivinthisgen(j) = sizes[j];
            s.pop.cumindivnbtogen(j) = s.pop.cumindivnbtogen(j - 1) + sizes[j];
        }
        s.pop.nindivp = 7;
        s.run.specstartgen = first;
        s.run.specendgen = last;
        s.pedi.pedigreestatus = "Internal";
        s.pedi.ped.allocate(7);
        s.pedi.globalgender.allocate(7);
        s.pop.nmalinthisgen.allocate(3);
        s.pop.nfeminthisgen.allocate(3);
    }
};
} // namespace

TEST_F(pedigreefiles, rowsAreFilledOnce)
{
    pedigreeline row;
    initline(row, 17, 1, 0, 3, 1, "/first");
    initline(row, 18, 2, 5, 6, 2, "/second");
    int64 id, sire, dam;
    getidsiredamfromline(row, id, sire, dam);
    EXPECT_EQ(id, 1);
    EXPECT_EQ(sire, 0);
    EXPECT_EQ(dam, 3);
    EXPECT_EQ(getsiredambyindex(row, 1), 1);
    EXPECT_EQ(getsiredambyindex(row, 2), 0);
    EXPECT_EQ(getsiredambyindex(row, 3), 3);
    EXPECT_EQ(row.oldglobalid, 17);
    EXPECT_EQ(row.path, "/first");
    pedigreeline here;
    initline(here, 1, 1, 0, 0, 1);
    EXPECT_EQ(here.path, workingdirectory());
}

TEST_F(pedigreefiles, lastRowOfAnIdentifierWins)
{
    state s;
    setuprun(s, 1, 3);
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

TEST_F(pedigreefiles, laterRunKeepsEarlierLines)
{
    state s;
    setuprun(s, 1, 3);
    const std::string longpath(600, 'x');
    for (int64 i = 1; i <= 7; ++i)
        initline(s.pedi.ped(i), 100 + i, i, i / 2, i / 3, 1, i == 1 ? longpath : "/a folder");
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

    // The next run covers generation 2 alone: generation 1 stays, generation 3 is dropped.
    s.run.specstartgen = s.run.specendgen = 2;
    for (int64 i = 1; i <= 7; ++i) s.pedi.ped(i).newsire = 99;
    writeoutpedigree(s);
    const std::vector<std::string> after = readlines(pedigreetable);
    ASSERT_EQ(after.size(), 6u);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(after[i], earlier[i]);
    EXPECT_EQ(wordsof(after[3])[3], "99");

    writefile(pedigreetable, earlier[0] + "\nshort\n");
    EXPECT_EQ(runbody([&] { writeoutpedigree(s); }).code(), -2);
}

TEST_F(pedigreefiles, readBackWhatWasWritten)
{
    state s;
    setuprun(s, 1, 3);
    for (int64 i = 1; i <= 7; ++i)
        initline(s.pedi.ped(i), 100 + i, i, i - 1, i - 2, 1, "/a folder");
    writeoutpedigree(s);
    writefile(gendertable, "title\n 1 1 2\n 1 2 1\n 2 3 2\n 2 4 2\n 2 5 1\n 3 6 2\n 3 7 1\n");
    writefile(generationtable, "title\n 1 2 1 1\n 2 3 1 2\n 3 2 1 1\n");

    state t; // reads two generations, and takes the sizes from the file
    setuprun(t, 1, 2);
    t.pop.nindivinthisgen(3) = 4;
    readpedigreegender(t);
    for (int64 i = 1; i <= 5; ++i) {
        const pedigreeline &row = t.pedi.ped(i), &old = s.pedi.ped(i);
        EXPECT_EQ(row.generation, i <= 2 ? 1 : 2);
        EXPECT_EQ(row.oldglobalid, old.oldglobalid);
        EXPECT_EQ(row.newid, old.newid);
        EXPECT_EQ(row.newsire, old.newsire);
        EXPECT_EQ(row.newdam, old.newdam);
        EXPECT_EQ(row.path, "/a folder");
        EXPECT_FALSE(row.initialised);
        EXPECT_EQ(t.pedi.globalgender(i), i == 2 || i == 5 ? 1 : 2);
    }
    EXPECT_EQ(t.pedi.ped(6).newid, 0);
    EXPECT_EQ(t.pop.nmalinthisgen(2), 1);
    EXPECT_EQ(t.pop.nfeminthisgen(2), 2);
    EXPECT_EQ(t.pop.cumindivnbtogen(3), 9);

    t.pedi.pedigreestatus = "animals.txt"; // an external pedigree: genders aren't read
    t.pedi.globalgender.fill(0);
    readpedigreegender(t);
    EXPECT_EQ(t.pedi.globalgender(2), 0);

    writefile(gendertable, "title\n 1 1 2\n");
    t.pedi.pedigreestatus = "internal";
    const outcome cut = runbody([&] { readpedigreegender(t); });
    EXPECT_EQ(cut.code(), -2);
    EXPECT_NE(cut.stop.reason.find(gendertable), std::string::npos);
}
