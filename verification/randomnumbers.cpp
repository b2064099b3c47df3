// The distributions of the random deviates: moments against theory.
#include "randomnumbers.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(randomnumbers, normaldeviates)
{
    randomstream random;
    random.idum = -5;
    // Mean 0 and variance 1: standard errors 1/sqrt(n) and sqrt(2/n), 5 of them allowed.
    const int n = 200000;
    double sum = 0, squares = 0;
    for (int i = 0; i < n; ++i) {
        const double z = gasdev(random);
        sum += z;
        squares += z * z;
    }
    EXPECT_LT(std::abs(sum / n), 5 / std::sqrt(n));
    EXPECT_LT(std::abs(squares / n - 1), 5 * std::sqrt(2.0 / n));
}

// Mean s b and variance s b^2 on both sides of shape 1; standard error of the mean sqrt(s/n) b,
// of the variance below b^2 sqrt((2 s^2 + 6 s) / n); 5 of them allowed.
TEST(randomnumbers, gammadeviates)
{
    randomstream random;
    random.idum = -11;
    for (const double s : {0.4, 2.5, 30.0}) {
        const double b = 1.66;
        const int n = 100000;
        double sum = 0, squares = 0;
        for (int i = 0; i < n; ++i) {
            const double x = random_gamma(random, s, b, true);
            sum += x;
            squares += (x - s * b) * (x - s * b);
        }
        EXPECT_LT(std::abs(sum / n - s * b), 5 * b * std::sqrt(s / n)) << s;
        EXPECT_LT(std::abs(squares / n - s * b * b), 5 * b * b * std::sqrt((2 * s * s + 6 * s) / n))
            << s;
    }
    double sum = 0; // chi-squared: mean ndf, variance 2 ndf
    for (int i = 0; i < 20000; ++i) sum += random_chisq(random, 7, true);
    EXPECT_LT(std::abs(sum / 20000 - 7), 5 * std::sqrt(14.0 / 20000));
    for (const auto &[a, b] : {std::pair{2.0, 5.0}, std::pair{0.5, 0.7}, std::pair{6.0, 1.5}}) {
        double total = 0; // beta: mean a/(a+b), variance below 1/4
        for (int i = 0; i < 20000; ++i) total += random_beta(random, a, b, true);
        EXPECT_LT(std::abs(total / 20000 - a / (a + b)), 5 * 0.5 / std::sqrt(20000.0)) << a;
    }
}
