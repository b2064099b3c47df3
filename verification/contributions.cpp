// Optimal contributions: the conditions that make an optimum on random problems, closed forms, the
// frontier.
#include "Corvalind/frontier.h"

#include "corvalind/randomcandidates.h"

namespace
{
// Feasible; and with multipliers mu of the pools' sums Gx - weight * gain - mu is 0 for all who
// contribute and not below 0 for others (Karush, Kuhn and Tucker). With x'Gx on its bound that
// makes x the optimum, since the problem is convex.
void expectoptimal(const candidates &c, const optimum &best)
{
    const double weight = best.frontier.back().weight;
    const double top = *std::max_element(c.gain.begin(), c.gain.end());
    array1<double> sum(2, 0.0), mu(2, 0.0), reduced(c.n, 0.0);
    for (int64 i = 1; i <= c.n; ++i) {
        EXPECT_GE(best.x(i), 0);
        for (int64 j = 1; j <= c.n; ++j) reduced(i) += c.relationship(i, j) * best.x(j);
        reduced(i) -= weight * (c.gain(i) - top); // weights may be large
        sum(c.pool(i)) += best.x(i);
        mu(c.pool(i)) += best.x(i) * reduced(i) * static_cast<double>(c.npools);
    }
    for (int64 q = 1; q <= c.npools; ++q)
        EXPECT_NEAR(sum(q), 1.0 / static_cast<double>(c.npools), 1e-12);
    for (int64 i = 1; i <= c.n; ++i) {
        EXPECT_GE(reduced(i) - mu(c.pool(i)), -1e-8) << i;
        if (best.x(i) > 0) {
            EXPECT_LE(reduced(i) - mu(c.pool(i)), 1e-8) << i;
        }
    }
    const quadratic value = valueof(c, [&](int64 i) { return best.x(i); });
    EXPECT_NEAR(value.xgx, best.frontier.back().xgx, 1e-10);
    EXPECT_NEAR(value.gain, best.frontier.back().gain, 1e-10);
}

// Gain rises with x'Gx, by less and less.
void expectconcave(const std::vector<frontierpoint> &f)
{
    for (std::size_t k = 1; k < f.size(); ++k) {
        EXPECT_GT(f[k].xgx, f[k - 1].xgx);
        EXPECT_GT(f[k].gain, f[k - 1].gain);
        if (k < 2) continue;
        const auto slope = [&](std::size_t i) {
            return (f[i].gain - f[i - 1].gain) / (f[i].xgx - f[i - 1].xgx);
        };
        EXPECT_LE(slope(k), slope(k - 1) * (1 + 1e-6)) << k;
    }
}
} // namespace

// Full rank and nearly none, clones, tied gains, one pool and two, from 1 candidate on.
TEST(contributions, meetsitsconditions)
{
    for (const int64 npools : {1, 2})
        for (const double diagonal : {0.001, 1e-10})
            for (const auto &[n, nsnp] : {std::pair{2, 5}, {3, 40}, {30, 6}, {60, 200}, {150, 90}})
                for (const double difference : {0.0, 0.003, 0.05, 0.3}) {
                    SCOPED_TRACE(testing::Message() << npools << " " << n << " " << difference);
                    const candidates c =
                        randomcandidates(static_cast<std::size_t>(n),
                                         static_cast<std::size_t>(nsnp), npools, diagonal, 3);
                    const optimum best = findoptimum(c, difference, 20);
                    expectoptimal(c, best);
                    if (best.reached) {
                        EXPECT_NEAR(best.difference, difference, 1e-9);
                    } else { // every contributor has the highest gain of its pool
                        EXPECT_LT(best.difference, difference);
                        for (int64 i = 1; i <= c.n; ++i)
                            for (int64 j = 1; j <= c.n; ++j) {
                                if (best.x(i) > 0 && c.pool(i) == c.pool(j)) {
                                    EXPECT_GE(c.gain(i), c.gain(j));
                                }
                            }
                    }
                    if (difference > 0 && best.difference > 1e-6) expectconcave(best.frontier);
                }
    const optimum alone = findoptimum(randomcandidates(1, 4, 1, 0.001, 1), 0.01, 20);
    EXPECT_EQ(alone.x(1), 1);
    EXPECT_FALSE(alone.reached);
    EXPECT_EQ(alone.frontier.size(), 2u);
}

// Two families of k, unrelated, members related by r, the second better by d: with t for the second
// in all, x'Gx = c (t^2 + (1 - t)^2), c = (1 + (k - 1) r) / k, has its minimum c / 2 at t = 1/2,
// and the difference 2 c (t - 1/2)^2. All of t = 1 needs c / 2.
TEST(contributions, twofamiliesinclosedform)
{
    const std::size_t k = 7;
    const double r = 0.4, d = 3, c2 = (1 + (k - 1.0) * r) / k;
    densematrix g(2 * k, std::vector<double>(2 * k, 0.0));
    for (std::size_t i = 0; i < 2 * k; ++i)
        for (std::size_t j = 0; j < 2 * k; ++j)
            if (i / k == j / k) g[i][j] = i == j ? 1 : r;
    std::vector<double> gain(2 * k, 10.0);
    for (std::size_t i = k; i < 2 * k; ++i) gain[i] += d;
    const std::vector<int64> onepool(2 * k, 1);
    const candidates c = makecandidates(g, gain, onepool);
    for (const double difference : {0.01, 0.1, c2 / 2 - 1e-6}) {
        const optimum best = findoptimum(c, difference, 20);
        const double t = 0.5 + std::sqrt(difference / (2 * c2));
        EXPECT_TRUE(best.reached);
        EXPECT_NEAR(best.frontier.front().xgx, c2 / 2, 1e-12);
        EXPECT_NEAR(best.frontier.front().gain, 10 + d / 2, 1e-12);
        EXPECT_NEAR(best.frontier.back().gain, 10 + t * d, 1e-9);
        EXPECT_EQ(best.frontier.size(), 22u);
        expectconcave(best.frontier);
        for (int64 i = 1; i <= c.n; ++i) EXPECT_NEAR(best.x(i), (i > 7 ? t : 1 - t) / k, 1e-9);
    }
    const optimum all = findoptimum(c, c2 / 2 + 0.001, 20);
    EXPECT_FALSE(all.reached);
    EXPECT_NEAR(all.difference, c2 / 2, 1e-12);
    EXPECT_NEAR(all.frontier.back().gain, 10 + d, 1e-12);

    // The same gain for all: nothing to win, and said so.
    const optimum equal =
        findoptimum(makecandidates(g, std::vector<double>(2 * k, -4.5), onepool), 0.01, 20);
    EXPECT_FALSE(equal.reached);
    EXPECT_EQ(equal.difference, 0);
    EXPECT_EQ(equal.frontier.size(), 2u);
}
