// The effect stage: covariances, correlated effects, classes.
#include "openstate.h"
#include "randomnumbers.h"
#include "testsupport.h"
#include "traits/covariances.h"
#include "traits/effectarrays.h"
#include "traits/effectdistributions.h"
#include "traits/qtnclasses.h"
#include "traits/traitsettings.h"

#include <cmath>
#include <filesystem>

namespace
{
class effectstage : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        std::filesystem::create_directories("SimulatedData");
    }
};
} // namespace

// Covariances [[4, 2], [2, 10]]: factor 2, 1, 3 by hand. The diagonal of the correlations takes
// part: 1.25 x 8 = 10.
TEST_F(effectstage, choleskyfactors)
{
    openstate s = statewithtraits(2);
    s.traits.varaspec(1) = 4;
    s.traits.varaspec(2) = 8;
    s.traits.coraspec(2, 2) = 1.25;
    s.traits.coraspec(1, 2) = s.traits.coraspec(2, 1) = 2 / std::sqrt(32.0);
    workoutgeneticcovariances(s);
    EXPECT_DOUBLE_EQ(s.values.covaspec(2, 2), 10);
    EXPECT_DOUBLE_EQ(s.values.cholcovaspec(1, 1), 2);
    EXPECT_DOUBLE_EQ(s.values.cholcovaspec(2, 1), 1);
    EXPECT_DOUBLE_EQ(s.values.cholcovaspec(2, 2), 3);
    EXPECT_EQ(s.values.cholcovaspec(1, 2), s.values.covaspec(1, 2));

    s.qtn.nqtnmodels = 2;
    s.values.vare.allocate(2, 2, 1.0);
    s.values.vare(2, 1) = s.values.vare(2, 2) = 6.25;
    s.traits.core(1, 2) = s.traits.core(2, 1) = 0.6;
    workoutresidualcovariances(s);
    EXPECT_EQ(readfile("SimulatedData/TraitVarianceComponentsResidualCholQtnModel1.txt"),
              " 1.0\n 0.6 0.8\n");
    EXPECT_EQ(readfile("SimulatedData/TraitVarianceComponentsResidualCholQtnModel2.txt"),
              " 2.5\n 1.5 2.0\n");
    EXPECT_FALSE(
        std::filesystem::exists("SimulatedData/TraitVarianceComponentsResidualCholQtnModel3.txt"));

    s.traits.coraspec.fill(0);
    outcome stop = runbody([&] { workoutgeneticcovariances(s); });
    EXPECT_EQ(stop.code(), 11000);
    EXPECT_EQ(stop.output, "Cholesky Decomposition failed: Genetic correlation matrix specified is "
                           "not positive definite. Please check specfile.\n");
    s.values.vare(2, 2) = 0;
    stop = runbody([&] { workoutresidualcovariances(s); });
    EXPECT_EQ(stop.code(), 11000);
    EXPECT_EQ(stop.output, "Cholesky Decomposition failed: Residual correlation matrix specified "
                           "is not positive definite. Please check specfile.\n");
}

// Three traits' draws by hand, each followed by one that only gammas need: their sum goes through
// the traits in order, to the last bit.
TEST_F(effectstage, correlatedeffects)
{
    openstate s = statewithtraits(3);
    s.qtn.nqtngamma = 0;
    s.loci.ntotqtn = s.loci.ntotqtngamma = 256; // a scale of 1/16
    arrayscope arrays;
    makeeffectarrays(s, arrays);
    workoutgeneticcovariances(s);
    randomstream draws = s.random;
    simuladditiveeffects(s, qtnset::unrestricted);
    for (int64 q = 1; q <= 256; ++q) {
        double parts[3];
        for (int64 j = 1; j <= 3; gasdev(draws), ++j)
            parts[j - 1] = s.values.cholcovaspec(3, j) * (gasdev(draws) / 16);
        ASSERT_EQ(s.loci.model(1).addeff(q, 3), (parts[0] + parts[1]) + parts[2]);
    }
}

// 100 QTN of equal variance under model 1: the 1 percent class is held by one QTN, since its limit
// is the single-precision number just below 0.01, while those of 0.05 and 0.1 lie just above what
// 5 and 10 QTN hold (25 and 50 of them add up to a little more than their share in double
// precision). Model 2 has one QTN with 0.6 of the variance; model 3 no variance at all; model 4
// has 32 equal QTN, whose shares are exact: a quarter is not yet more than a quarter.
TEST_F(effectstage, classesofqtn)
{
    openstate s = statewithtraits(1);
    s.loci.ntotqtn = s.loci.ntotqtngamma = 100;
    arrayscope arrays;
    makeeffectarrays(s, arrays);
    for (const qtnset set : traitsets) s.loci.sets[set].referencefreq.fill(0.5);
    s.loci.model(1).addeff.fill(0.25);
    s.loci.model(2).addeff.fill(1.0);
    s.loci.model(2).addeff(17, 1) = -std::sqrt(99 * 1.5);
    for (int64 q = 1; q <= 32; ++q) s.loci.model(4).addeff(3 * q, 1) = 0.5;
    const outcome result = runbody([&] { classifyqtns(s); });
    const auto lines = readlines("SimulatedData/ProportionOfVariationExplainedByNumberOfQtn.txt");
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_EQ(lines[0].size(), 138U);
    EXPECT_EQ(lines[1], "                   1                1.00                   1           "
                        "        1                   0                   1");
    const std::vector<std::vector<double>> wanted = {{1, 1, 1, 1, 0, 1},
                                                     {1, 5, 6, 1, 0, 2},
                                                     {1, 10, 11, 1, 0, 4},
                                                     {1, 25, 25, 1, 0, 9},
                                                     {1, 50, 50, 1, 0, 17}};
    for (std::size_t a = 0; a < 5; ++a) EXPECT_EQ(numbersof(lines[a + 1]), wanted[a]);
    EXPECT_EQ(result.output.substr(0, 11), "  Trait  1\n");
    EXPECT_NE(
        result.output.find("\n 50 Percent          50             1                   0       "
                           "             17\n      \n"),
        std::string::npos);
}
