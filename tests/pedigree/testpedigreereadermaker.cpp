// What the pedigree stage is refused for.
#include "pedigree/matings.h"
#include "pedigree/pedigreefiles.h"
#include "pedigree/pedigreereadermaker.h"
#include "selection/population.h"
#include "testsupport.h"

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
    s.pop.pedigreefrom = pedigreesource::internal;
}

void makeplants(state &s, const char *gendermatters)
{
    s.pop.animbreedonoff = false;
    s.pop.plantbreedonoff = true;
    s.pop.plantsbygender = std::string_view(gendermatters) == "yes";
}

} // namespace

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
    EXPECT_EQ(wordsof(readlines(gendertable)[1])[2], "2");

    state u; // last burn-in generation: a note only
    setsizes(u, {4, 4}, 1);
    makeplants(u, "no");
    EXPECT_EQ(runbody([&] { pedigreereadermaker(u); }).output,
              "  NOTE: Numbers of parents in generation    1 have not been provided\n\n");
    EXPECT_EQ(readlines(pedigreetable).size(), 9u);

    state v; // parents of truncation that are all the same
    setsizes(v, {2, 3}, 1);
    const array1<int64> parentrows(3, 2);
    EXPECT_EQ(runbody([&] { randommating(v, 3, 3, parentrows, 1); }).output,
              "ERROR: Random mating needs at least two parents for generation    1\n");
}
