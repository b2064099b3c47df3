// The pedigree stage: genders, external and internal pedigrees, parents of the burn-in.
#include "pedigree/matings.h"
#include "pedigree/pedigree.h"
#include "pedigree/pedigreereadermaker.h"
#include "selection/population.h"
#include "testsupport.h"

#include <algorithm>

namespace
{
class pedigreestage : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        runcommand("mkdir SimulatedData");
    }
};

// A run over all generations, the first ngen of them burn-in, without any parents yet.
void setsizes(state &s, const std::vector<int64> &sizes, int64 ngen)
{
    makepopulation(s, ngen, sizes);
    s.run.specstartgen = 1;
    s.run.specendgen = std::ssize(sizes);
    s.pedi.pedigreestatus = "internal";
}

void makeplants(state &s, const char *gendermatters)
{
    s.pop.animbreedonoff = false;
    s.pop.plantbreedonoff = true;
    s.pop.gendermatters = gendermatters;
}

struct individual {
    int64 generation, sire, dam, gender;
    bool operator==(const individual &) const = default;
};
std::ostream &operator<<(std::ostream &out, const individual &i)
{
    return out << freeline(i.generation, i.sire, i.dam, i.gender);
}

// The table as the files hold it; checks numbering and genders on the way.
std::vector<individual> readtable()
{
    std::vector<individual> table;
    const auto pedigree = readlines(pedigreetable), genders = readlines(gendertable);
    EXPECT_EQ(pedigree.size(), genders.size());
    for (std::size_t i = 1; i < pedigree.size(); ++i) {
        const auto row = wordsof(pedigree[i]), gender = wordsof(genders[i]);
        EXPECT_EQ(row[2], std::to_string(i));
        EXPECT_EQ(gender[1], row[2]);
        EXPECT_EQ(gender[0], row[0]);
        table.push_back(
            {std::stoll(row[0]), std::stoll(row[3]), std::stoll(row[4]), std::stoll(gender[2])});
    }
    return table;
}

// The stage once more, slowly: everything in plain lists, with the same draws.
struct slowstage {
    state s; // settings and stream
    std::vector<individual> rows;

    std::vector<int64> permutation(int64 n)
    {
        std::vector<int64> order(n);
        randomorder(order.data(), n, s.random);
        return order;
    }
    void genders()
    {
        for (int64 j = 1; j <= s.run.specendgen; ++j) {
            const std::size_t first = rows.size();
            rows.resize(first + s.pop.nindivinthisgen(j), {j, 0, 0, 0});
            int64 i = 0;
            for (const int64 k : permutation(s.pop.nindivinthisgen(j)))
                rows[first + k - 1].gender = ++i % 2 == 0 ? 1 : 2;
        }
    }
    void parents(int64 gender, int64 gen, int64 npar, bool anygender)
    {
        std::vector<int64> chosen, spread;
        while (std::ssize(chosen) < npar) {
            const double nparents = static_cast<double>(s.pop.nindivinthisgen(gen - 1));
            const int64 row = s.pop.cumindivnbtogen(gen - 2) + int64(ran1(s.random) * nparents) + 1;
            if (!anygender && rows[row - 1].gender != gender) continue;
            if (std::find(chosen.begin(), chosen.end(), row) == chosen.end()) chosen.push_back(row);
        }
        const int64 n = s.pop.nindivinthisgen(gen);
        for (const int64 parent : chosen) spread.insert(spread.end(), n / npar, parent);
        for (int64 k = 0; std::ssize(spread) < n; ++k) spread.push_back(chosen[k]);
        individual *const first = &rows[s.pop.cumindivnbtogen(gen - 1)], *child = first;
        if (gender == 1)
            for (const int64 parent : spread) (child++)->sire = parent;
        else
            for (const int64 k : permutation(n)) (child++)->dam = spread[k - 1];
        if (s.pop.nrandparinthisgen(gen - 1) == 0) return;
        child = first;
        for (const int64 k : permutation(n)) {
            child->dam = spread[k - 1];
            if (child->dam == child->sire)
                for (const int64 other : permutation(n))
                    if (child->dam == child->sire) child->dam = spread[other - 1];
            ++child;
        }
    }
    void damissire(int64 gen)
    {
        for (individual &row : rows)
            if (row.generation == gen) row.dam = row.sire;
    }
};
} // namespace

// More dams than individuals to breed in generation 3.
TEST_F(pedigreestage, animalsFollowTheDraws)
{
    const auto settings = [](state &s) {
        setsizes(s, {9, 10, 3, 4}, 3);
        s.pop.nsireinthisgen(1) = 3;
        s.pop.ndaminthisgen(1) = 5;
        s.pop.nsireinthisgen(2) = 1;
        s.pop.ndaminthisgen(2) = 4;
        s.pop.nsireinthisgen(3) = s.pop.ndaminthisgen(3) = 1;
    };
    slowstage slow;
    settings(slow.s);
    slow.genders();
    for (int64 j = 2; j <= 3; ++j) {
        slow.parents(1, j, slow.s.pop.nsireinthisgen(j - 1), false);
        slow.parents(2, j, slow.s.pop.ndaminthisgen(j - 1), false);
    }
    state s;
    settings(s);
    EXPECT_EQ(runbody([&] { pedigreereadermaker(s); }).output, "\n");
    EXPECT_EQ(readtable(), slow.rows);
    EXPECT_EQ(s.random.idum, slow.s.random.idum);
    EXPECT_EQ(readfile(generationtable),
              " Gen     nIndivInThisGen       nMalInThisGen       nFemInThisGen\n"
              "   1                   9                   4                   5\n"
              "   2                  10                   5                   5\n"
              "   3                   3                   1                   2\n"
              "   4                   4                   2                   2\n");

    // A run over generations 3 and 4 draws those anew, from what stands before.
    state t;
    settings(t);
    t.run.specstartgen = 3;
    t.random.idum = -99;
    runbody([&] { pedigreereadermaker(t); });
    const auto table = readtable();
    ASSERT_EQ(table.size(), 26u);
    EXPECT_TRUE(std::equal(table.begin(), table.begin() + 19, slow.rows.begin()));
    EXPECT_NE(table, slow.rows);
    for (std::size_t i = 19; i < 22; ++i) {
        const individual &sire = table.at(table[i].sire - 1), &dam = table.at(table[i].dam - 1);
        EXPECT_TRUE(sire.generation == 2 && sire.gender == 1);
        EXPECT_TRUE(dam.generation == 2 && dam.gender == 2);
    }

    t.pop.nindivinthisgen(2) = 11;
    const outcome changed = runbody([&] { pedigreereadermaker(t); });
    EXPECT_EQ(changed.code(), 110014);
    EXPECT_EQ(changed.output, "ERROR: The number of individuals in generation   2\n"
                              "must be reset to its initial value\n");
}

TEST_F(pedigreestage, plantsFollowTheDraws)
{
    // Selfing, crossing regardless of gender (few parents, so that collisions come), male and
    // female parents; then the same last step with doubled haploids, and without a mark.
    for (const int64 ngendh : {0, 1, 2}) {
        const auto settings = [&](state &s) {
            setsizes(s, {6, 8, 11, 6}, 4);
            makeplants(s, "no");
            s.pop.nselfedparinthisgen(1) = 3;
            s.pop.nrandparinthisgen(2) = 2;
            s.pop.nsireinthisgen(3) = 2;
            s.pop.ndaminthisgen(3) = 5;
            s.pop.ngendh = ngendh;
            if (ngendh == 0) return;
            s.pop.createdhinthisgen.allocate(4);
            s.pop.createdhinthisgen(ngendh == 1 ? 4 : 1) = 1;
        };
        slowstage slow;
        settings(slow.s);
        slow.genders();
        slow.parents(1, 2, 3, true);
        slow.damissire(2);
        slow.parents(1, 3, 2, true);
        slow.parents(1, 4, 2, false);
        if (ngendh == 0) slow.parents(2, 4, 5, false);
        if (ngendh == 1) slow.damissire(4);
        state s;
        settings(s);
        runbody([&] { pedigreereadermaker(s); });
        const auto table = readtable();
        EXPECT_EQ(table, slow.rows);
        EXPECT_EQ(s.random.idum, slow.s.random.idum);
        for (std::size_t i = 14; i < 25; ++i) EXPECT_NE(table[i].sire, table[i].dam);
        EXPECT_EQ(table[14].sire, table[18].sire); // sires of the crosses stay in blocks
    }
}

TEST_F(pedigreestage, externalPedigreeIsRecoded)
{
    // Line 3 names a sire that comes later; 8 stands twice, and the later row is the parent.
    writefile("animals.txt", "11 0 0 breed A\n8,0,0\n20 30 11\r\n\n30 8 11\n8 20 30\n40 8 20");
    state s;
    setsizes(s, {3, 3, 3}, 3);
    s.pedi.pedigreestatus = s.pedi.pedigreefile = "animals.txt";
    const outcome read = runbody([&] { pedigreereadermaker(s); });
    EXPECT_EQ(read.code(), 0);
    EXPECT_EQ(read.output, "  Pedigree imported for generation   1\n\n");
    const auto table = readtable();
    ASSERT_EQ(table.size(), 9u);
    const int64 sires[] = {0, 0, 0, 2, 3, 5, 0, 0, 0}, dams[] = {0, 0, 1, 1, 4, 3, 0, 0, 0};
    for (int64 i = 0; i < 9; ++i)
        EXPECT_EQ(table[i], (individual{i / 3 + 1, sires[i], dams[i], table[i].gender})) << i + 1;
    const auto lines = readlines(pedigreetable);
    EXPECT_EQ(wordsof(lines[6])[1], "40");
    EXPECT_EQ(wordsof(lines[7])[1], "7");
    slowstage slow; // genders are all that is drawn
    setsizes(slow.s, {3, 3, 3}, 3);
    slow.genders();
    EXPECT_EQ(s.random.idum, slow.s.random.idum);

    // A later run takes parents among the individuals of the earlier one too.
    writefile("more.txt", "50 40 8\n51 50 7\n");
    s.run.specstartgen = 3;
    s.pedi.pedigreestatus = s.pedi.pedigreefile = "more.txt";
    EXPECT_EQ(runbody([&] { pedigreereadermaker(s); }).code(), 0);
    const auto later = readtable();
    EXPECT_EQ(later[6], (individual{3, 6, 5, later[6].gender}));
    EXPECT_EQ(later[7], (individual{3, 7, 0, later[7].gender})); // row 7 is made by this run

    for (const auto &[text, reason] : std::vector<std::pair<std::string, std::string>>{
             {"1 0 0\n2 0 0\n3 0 0\n4 0 0\n", "holds 4 individuals where there is room for 3"},
             {"1 0\n2 0 0\n3 0 0\n", "line 1: an individual, its sire and its dam"},
             {"1 0 cow\n", "line 1: an integer is wanted"}}) {
        writefile("more.txt", text);
        const outcome bad = runbody([&] { pedigreereadermaker(s); });
        EXPECT_EQ(bad.code(), -2);
        EXPECT_NE(bad.stop.reason.find("more.txt"), std::string::npos) << bad.stop.reason;
        EXPECT_NE(bad.stop.reason.find(reason), std::string::npos) << bad.stop.reason;
    }
}

TEST_F(pedigreestage, numbersOfParentsAreChecked)
{
    struct wrongnumbers {
        const char *gendermatters; // nullptr: animals
        int64 nsire, ndam, nrand, nselfed;
        std::string message; // up to the generation
        int64 code;
    };
    // The generation at fault is the second: 5 individuals, 2 of them male; 3 come next.
    const std::vector<wrongnumbers> cases = {
        {nullptr, 0, 0, 0, 0, "ERROR: Number of sires and dams must be non-null", 110022},
        {nullptr, 3, 1, 0, 0, "ERROR: Not enough sires", 110023},
        {nullptr, 0, 1, 0, 0, "ERROR: Not enough sires", 110023},
        {nullptr, 2, 4, 0, 0, "ERROR: Not enough dams", 110024},
        {nullptr, 2, 0, 0, 0, "ERROR: Not enough dams", 110024},
        {"no", 0, 0, 0, 6, "ERROR: Not enough plants to be selfed", 110017},
        {"Yes", 3, 1, 0, 0, "ERROR: Not enough male plants", 110019},
        {"no", 0, 1, 0, 0, "ERROR: Not enough male plants", 110019},
        {"Yes", 2, 4, 0, 0, "ERROR: Not enough female plants", 110020},
        {"no", 2, 0, 0, 0, "ERROR: Not enough female plants", 110020},
        {"no", 0, 0, 6, 0, "ERROR: Not enough plants to be crossed", 110021},
        {"yes", 0, 0, 6, 0, "ERROR: Not enough plants to be crossed", 110021},
        {"no", 0, 0, 1, 0, "ERROR: Random mating needs at least two parents", 110021},
        // Texts of another layout: a blank at the end of the message, free-form.
        {"no", 1, 0, 0, 1, "  ERROR: There is a conflict in the number of parents", 110016},
        {"yes", 0, 0, 0, 0, "  ERROR: Number of parents cannot be null", 110018},
    };
    for (const wrongnumbers &wrong : cases) {
        state s;
        setsizes(s, {4, 5, 3}, 3);
        if (wrong.gendermatters) makeplants(s, wrong.gendermatters);
        s.pop.nsireinthisgen(1) = s.pop.ndaminthisgen(1) = 2;
        s.pop.nsireinthisgen(2) = wrong.nsire;
        s.pop.ndaminthisgen(2) = wrong.ndam;
        s.pop.nrandparinthisgen(2) = wrong.nrand;
        s.pop.nselfedparinthisgen(2) = wrong.nselfed;
        const outcome stop = runbody([&] { pedigreereadermaker(s); });
        EXPECT_EQ(stop.code(), wrong.code) << wrong.message;
        EXPECT_EQ(stop.output, wrong.message + " for generation" +
                                   (wrong.code == 110016   ? "     2\n"
                                    : wrong.code == 110018 ? " 2\n"
                                                           : "    2\n"));
    }
}

TEST_F(pedigreestage, limitsOfTheChecks)
{
    state s; // one new individual can't have two parents by random mating
    setsizes(s, {4, 1}, 2);
    makeplants(s, "no");
    s.pop.nrandparinthisgen(1) = 2;
    EXPECT_EQ(runbody([&] { pedigreereadermaker(s); }).code(), 110021);

    state t; // a single individual is female
    setsizes(t, {1, 4}, 2);
    t.pop.nsireinthisgen(1) = t.pop.ndaminthisgen(1) = 1;
    EXPECT_EQ(runbody([&] { pedigreereadermaker(t); }).code(), 110023);
    t.run.specendgen = 1; // nothing is bred, so nothing is checked
    EXPECT_EQ(runbody([&] { pedigreereadermaker(t); }).code(), 0);
    EXPECT_EQ(readtable()[0].gender, 2);

    state u; // last burn-in generation: a note only
    setsizes(u, {4, 4}, 1);
    makeplants(u, "no");
    EXPECT_EQ(runbody([&] { pedigreereadermaker(u); }).output,
              "  NOTE: Numbers of parents in generation    1 have not been provided\n\n");
    EXPECT_EQ(readtable().size(), 8u);

    state v; // parents of truncation that are all the same
    setsizes(v, {2, 3}, 1);
    const array1<int64> parentrows(3, 2);
    EXPECT_EQ(runbody([&] { randommating(v, 3, 3, parentrows, 1); }).output,
              "ERROR: Random mating needs at least two parents for generation    1\n");
}
