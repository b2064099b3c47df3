// The distributions of QTN effects that a run leaves against the moments that were asked for.
#include "wholeruns/runsupport.h"

#include <cmath>

class effects : public wholerun
{
};

namespace
{
double meanof(const std::vector<std::vector<double>> &table,
              const std::function<double(const std::vector<double> &)> &value)
{
    double sum = 0;
    for (const auto &row : table) sum += value(row);
    return sum / static_cast<double>(table.size());
}
} // namespace

// Two traits with variances 1 and 2 and correlation 0.5; effects stand behind three columns, the
// normal ones of both traits first. All bounds are 5 standard errors. A sample covariance of n
// pairs has the standard error sqrt((v1 v2 + c^2) / n).
TEST_F(effects, momentsareasaskedfor)
{
    mustrun(smallrun()
                .set("MutationRateMaCS", "External,3e-7")
                .set("NumberGenerationsBurnIn", "1")
                .set("NumberGenerationsSelection", "0")
                .set("NumberOfQtnPerChromosomeNormalDist", "2000")
                .set("NumberOfQtnPerChromosomeGammaDist", "2000")
                .set("ShapeAndScaleOfGammaDistForModel3And4", "0.4,1.66")
                .set("IncludeDominanceEffectsOnOff", "On")
                .set("DominanceDegreeMeanAndVariance", "0.2,0.5")
                .set("NumberOfTraits", "2")
                .set("IndexWeights", "0.5,0.5")
                .set("TraitHeritability", "0.5,0.5")
                .set("TraitGeneticVariance", "1,2")
                .addrow("GeneticCorrelationMatrix", "0.5 1.0")
                .addrow("ResidualCorrelationMatrix", "0.0 1.0"),
            -36);
    const auto additive = numbertable("SimulatedData/UnrestrictedQtnAdditEffects.txt", 1);
    const auto dominance = numbertable("SimulatedData/UnrestrictedQtnDominEffects.txt", 1);
    const double n = static_cast<double>(additive.size());
    ASSERT_EQ(n, 4000);
    const auto covarianceof = [&](std::size_t a, std::size_t b) { // effects are draws / sqrt(n)
        return meanof(additive, [&](const auto &row) { return row[a] * row[b] * n; });
    };
    const double c = 0.5 * std::sqrt(2.0);
    EXPECT_NEAR(covarianceof(3, 3), 1, 5 * std::sqrt(2 / n));
    EXPECT_NEAR(covarianceof(4, 4), 2, 5 * std::sqrt(8 / n));
    EXPECT_NEAR(covarianceof(3, 4), c, 5 * std::sqrt((2 + c * c) / n));

    // Trait 1 under gamma: mean 0 by the signs; sizes with mean k t and variance k t^2 for shape
    // k and scale t, both times 1 / sqrt(n). The fourth central moment is 3 k^2 t^4 + 6 k t^4.
    const double k = 0.4, t = 1.66, variance = k * t * t;
    const auto gamma = [&](const auto &row) { return row[5] * std::sqrt(n); };
    const double size = meanof(additive, [&](const auto &row) { return std::fabs(gamma(row)); });
    EXPECT_NEAR(meanof(additive, gamma), 0, 5 * std::sqrt((variance + k * t * k * t) / n));
    EXPECT_NEAR(size, k * t, 5 * std::sqrt(variance / n));
    EXPECT_NEAR(meanof(additive,
                       [&](const auto &row) { return std::pow(std::fabs(gamma(row)) - size, 2); }),
                variance, 5 * std::sqrt((2 * k * k + 6 * k) * t * t * t * t / n));

    // Degrees of both distributions and traits, the last four columns: mean 0.2, variance 0.5.
    for (std::size_t column = 7; column <= 10; ++column) {
        const double mean = meanof(dominance, [&](const auto &row) { return row[column]; });
        EXPECT_NEAR(mean, 0.2, 5 * std::sqrt(0.5 / n));
        EXPECT_NEAR(
            meanof(dominance, [&](const auto &row) { return std::pow(row[column] - mean, 2); }),
            0.5, 5 * 0.5 * std::sqrt(2 / n));
    }
}
