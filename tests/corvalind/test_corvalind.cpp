// Mate allocation: mating plans that add up; the program on files as a cycle leaves them; refusals.
#include "Corvalind/corvalind.h"
#include "Corvalind/matingpairs.h"

#include "corvalind/randomcandidates.h"

#include <cmath>
#include <filesystem>
#include <random>

namespace
{
matingpairs pairsof(const candidates &c, const matingnumbers &plan, int64 npartners, int64 nrounds)
{
    std::mt19937_64 random(5);
    return pairmates(c, plan, npartners, nrounds, random);
}

// Each candidate stands in as many matings as planned, and on the side of its sex.
void expectplanned(const candidates &c, const matingnumbers &plan, const matingpairs &pairs)
{
    array1<int64> places(c.n, 0);
    for (int64 k = 1; k <= pairs.male.size(); ++k) {
        ++places(pairs.male(k));
        ++places(pairs.female(k));
        EXPECT_EQ(c.pool(pairs.male(k)), 1);
        EXPECT_EQ(c.pool(pairs.female(k)), c.npools);
    }
    for (int64 i = 1; i <= c.n; ++i) EXPECT_EQ(places(i), plan.number(i));
}

class corvalindinfolder : public infolder
{
};
} // namespace

TEST(corvalindmatings, addupnearthecontributions)
{
    for (const int64 npools : {1, 2})
        for (const int64 nmatings : {1, 7, 40, 333}) {
            SCOPED_TRACE(testing::Message() << npools << " " << nmatings);
            const candidates c = randomcandidates(60, 40, npools, 0.001, 8);
            const optimum best = findoptimum(c, 0.02, 20);
            const matingnumbers rounded = allocatematings(c, best, nmatings, 0, 0),
                                moved = allocatematings(c, best, nmatings, 400, 500);
            const auto objective = [&](const matingnumbers &plan) {
                const double unit = 1 / (2 * static_cast<double>(nmatings));
                const quadratic value =
                    valueof(c, [&](int64 i) { return unit * static_cast<double>(plan.number(i)); });
                EXPECT_NEAR(value.xgx, plan.xgx, 1e-10);
                EXPECT_NEAR(value.gain, plan.gain, 1e-10);
                return value.xgx / 2 - best.frontier.back().weight * value.gain;
            };
            const double ideal = best.frontier.back().xgx / 2 -
                                 best.frontier.back().weight * best.frontier.back().gain;
            EXPECT_GE(objective(moved), ideal - 1e-10);
            EXPECT_LE(objective(moved), objective(rounded));
            for (const matingnumbers *plan : {&rounded, &moved}) {
                array1<int64> sum(2, 0);
                for (int64 i = 1; i <= c.n; ++i) {
                    sum(c.pool(i)) += plan->number(i);
                    EXPECT_GE(plan->number(i), 0);
                }
                EXPECT_EQ(sum(1), 2 * nmatings / npools);
                EXPECT_EQ(sum(2), npools == 2 ? nmatings : 0);
                const matingpairs pairs = pairsof(c, *plan, 50, 50);
                expectplanned(c, *plan, pairs);
                EXPECT_EQ(pairs.nselfed, 0);
                EXPECT_LE(pairs.relationship, pairsof(c, *plan, 0, 0).relationship);
            }
            for (int64 i = 1; i <= c.n; ++i)
                EXPECT_LT(std::fabs(static_cast<double>(rounded.number(i)) -
                                    2 * static_cast<double>(nmatings) * best.x(i)),
                          1 + 1e-6);
        }
}

// Two families of two males and two females each. All can mate into the other family; without sexes
// nobody is selfed unless it has more than half of all places, and then as rarely as can be.
TEST(corvalindmatings, pairunrelatedmates)
{
    densematrix g(8, std::vector<double>(8, 0.0));
    for (std::size_t i = 0; i < 8; ++i)
        for (std::size_t j = 0; j < 8; ++j)
            g[i][j] = i == j ? 1 : i / 4 == j / 4 ? 0.5 : 0.01 * static_cast<double>(i * j % 3);
    const std::vector<double> gain(8, 1.0);
    matingnumbers plan;
    plan.number.allocate(8, 5);
    const candidates sexes = makecandidates(g, gain, {1, 1, 2, 2, 1, 1, 2, 2});
    const candidates onepool = makecandidates(g, gain, std::vector<int64>(8, 1));
    for (const candidates *c : {&sexes, &onepool}) {
        const matingpairs pairs = pairsof(*c, plan, 100, 100);
        expectplanned(*c, plan, pairs);
        EXPECT_LT(pairs.relationship, 0.02);
        EXPECT_LE(pairs.mostalike, 3); // 20 matings of 8 or 16 unrelated pairs
        EXPECT_EQ(pairs.nselfed, 0);
    }
    for (const int64 ofone : {20, 26, 40}) {
        plan.number.fill(0);
        plan.number(2) = 40 - ofone;
        plan.number(7) = ofone;
        for (const int64 nrounds : {0, 50}) {
            const matingpairs pairs = pairsof(onepool, plan, 50, nrounds);
            expectplanned(onepool, plan, pairs);
            EXPECT_EQ(pairs.nselfed, ofone - 20);
        }
    }
}

namespace
{
// Files of a cycle with 12 candidates, rows 101 to 112, as the system lays them out.
void writecycle(bool sexesmatter)
{
    const candidates c = randomcandidates(12, 30, 1, 0.001, 12);
    std::string matrix, values, readin, genders;
    for (int64 i = 1; i <= c.n; ++i) {
        putfree(matrix, c.indiv(i));
        for (int64 j = 1; j <= c.n; ++j) putfree(matrix, c.relationship(j, i));
        puti(values, c.indiv(i), 20);
        putf(values, c.gain(i), 20, 10);
        puti(readin, i, 10);
        puti(readin, c.indiv(i), 10);
        putf(readin, c.gain(i), 20, 8);
        putfree(genders, c.indiv(i));
        putfree(genders, i % 3 == 0 ? 1 : 2);
        for (std::string *text : {&matrix, &values, &readin, &genders}) *text += '\n';
    }
    writefile("GFullMatrix1-1.txt", matrix);
    writefile("Ebv.txt", values);
    writefile("EBVsReadIn1.txt", readin);
    writefile("GenderTesting.txt", genders);
    writefile("Seed.txt", " -4711\n");
    writefile("CorvalindSpec.txt",
              std::string(" RelationshipMatrixFile                  ,GFullMatrix1-1.txt\n"
                          " BreedingValueFile                       ,Ebv.txt\n"
                          " PerformMatingsConsideringTheGender      ,") +
                  (sexesmatter ? "Yes\n"
                                 " GenderFile                              ,GenderTesting.txt\n"
                                 " NumberOfMales                           , 4\n"
                                 " NumberOfFemales                         , 8\n"
                               : "no\n"
                                 " NumberOfIndividuals                     , 12\n") +
                  " NumberOfMatings                         , 25\n"
                  " PercentageDifferenceInbreeding           , 0.01\n"
                  " SizeOfPopulationOfXvectors              , 50\n"
                  " MaximumNumberOfGenerations              , 20\n");
}
const std::string frontierfile = "CorvalindResults/Frontier.txt",
                  matingfile = "CorvalindResults/MatingListFinal.txt";
} // namespace

TEST_F(corvalindinfolder, leavesresultsofacycle)
{
    for (const bool sexesmatter : {true, false}) {
        writecycle(sexesmatter);
        const commandresult result = runcommand(binfolder() + "/Corvalind");
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NE(result.out.find("wanted 0.01: reached"), std::string::npos);
        const std::vector<std::string> frontier = readlines(frontierfile);
        ASSERT_GT(frontier.size(), 15u);
        double first = 0, last = 0;
        for (std::size_t k = 1; k < frontier.size(); ++k) {
            const std::vector<std::string> words = wordsof(frontier[k]);
            ASSERT_EQ(words.size(), 5u);
            EXPECT_EQ(words[0], std::to_string(k));
            last = std::stod(words[2]);
            if (k == 1) first = last;
            EXPECT_EQ(words[4], k == 1                     ? "Minimum"
                                : k + 1 == frontier.size() ? "Solution"
                                                           : "Frontier");
        }
        EXPECT_NEAR(last - first, 0.01, 1e-9);
        const std::vector<std::string> matings = readlines(matingfile);
        ASSERT_EQ(matings.size(), 25u);
        std::vector<double> earlier{0, 0};
        for (const std::string &line : matings) {
            const std::vector<double> pair = numbersof(line);
            ASSERT_EQ(pair.size(), 2u);
            EXPECT_LE(earlier, pair);
            EXPECT_TRUE(pair[0] >= 1 && pair[1] <= 12 && pair[0] != pair[1]) << line;
            EXPECT_TRUE(!sexesmatter || (std::fmod(pair[0], 3) == 0 && std::fmod(pair[1], 3) > 0));
            earlier = pair;
        }

        // With the estimates of pedigree prediction, which leaves no Ebv.txt, the same mates.
        const std::string list = readfile(matingfile);
        std::filesystem::remove("Ebv.txt");
        const commandresult readin = runcommand(binfolder() + "/Corvalind");
        ASSERT_EQ(readin.status, 0) << readin.err;
        EXPECT_NE(readin.out.find("breeding values from EBVsReadIn1.txt"), std::string::npos);
        EXPECT_EQ(readfile(matingfile), list);
    }
    // What can't be reached is said, and results are left.
    writecycle(true);
    std::string spec = readfile("CorvalindSpec.txt");
    writefile("CorvalindSpec.txt", spec.replace(spec.find("0.01"), 4, "10.0"));
    const commandresult result = runcommand(binfolder() + "/Corvalind");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.out.find("wanted 10: NOT REACHED"), std::string::npos);
    EXPECT_EQ(readlines(matingfile).size(), 25u);
}
