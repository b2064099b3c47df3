// The random stream: against the textbook form by divisions, pairs, permutations, stops.
#include "randomnumbers.h"

#include "textlayout.h"

#include "testsupport.h"

#include <algorithm>
#include <cmath>

namespace
{
// The generator as its definition reads: Schrage's divisions at every step.
struct slowstream {
    int64 idum, iv[33] = {}, iy = 0;
    void step()
    {
        const int64 k = idum / 127773;
        idum = 16807 * (idum - k * 127773) - 2836 * k;
        if (idum < 0) idum += 2147483647;
    }
    double draw()
    {
        if (idum <= 0 || iy == 0) {
            idum = std::max<int64>(-idum, 1);
            for (int j = 40; j >= 1; --j) {
                step();
                if (j <= 32) iv[j] = idum;
            }
            iy = iv[1];
        }
        step();
        const int64 j = 1 + iy / 67108864;
        iy = iv[j];
        iv[j] = idum;
        return std::min(static_cast<double>(iy) * std::pow(2.0, -31), 0.9999998800000043);
    }
};

// Gamma deviates of scale 1 by the exact tests alone, which the quick ones before them must agree
// with: Best's for s > 1, below 1 a power up to 1 - s with an exponential tail behind.
double slowgamma(randomstream &random, double s)
{
    for (;;) {
        const double r = ran1(random), g = r - r * r, a = 1 - s, p = a / (a + s * std::exp(-a));
        if (s > 1) {
            const double f = (r - 0.5) * std::sqrt(3 * s - 0.75) / std::sqrt(g), x = s - 1 + f;
            if (x <= 0) continue;
            const double u = ran1(random), ratio = 64 * g * ((u * g) * (u * g));
            if (std::log(ratio) < 2 * ((s - 1) * std::log(x / (s - 1)) - f)) return x;
        } else {
            const double x = r > p ? a - std::log((1 - r) / (1 - p)) : a * std::pow(r / p, 1 / s);
            const double w = r > p ? a * std::log(x) - a * std::log(a) : x;
            if (-std::log(ran1(random)) > w) return x;
        }
    }
}
} // namespace

class randomnumbers : public infolder
{
};

TEST_F(randomnumbers, drawsarethoseofthedefinition)
{
    for (const int64 seed : {-1LL, -12345LL, 0LL, 77LL, -2147483646LL, -5000000000LL}) {
        randomstream fast;
        fast.idum = seed;
        slowstream slow{seed};
        int differing = 0;
        for (int i = 0; i < 100000; ++i) differing += ran1(fast) != slow.draw();
        EXPECT_EQ(differing, 0) << seed;
        EXPECT_EQ(fast.idum, slow.idum);
    }
}

// The sum of the folded product can reach the modulus only through a state of 0, which the
// recurrence never meets: checked at the two ends of the state's range.
TEST_F(randomnumbers, foldingattheendsoftherange)
{
    for (const int64 start : {int64{1}, int64{2147483646}, int64{2147483645}, int64{127773}}) {
        randomstream random;
        random.idum = start;
        random.iy = 1;
        ran1(random);
        EXPECT_EQ(random.idum, 16807 * start % 2147483647);
    }
}

TEST_F(randomnumbers, seedprotocol)
{
    writefile("Seed.txt", "  -98765 left\n");
    randomstream first;
    initiateseed(first);
    EXPECT_EQ(readfile("SeedOld.txt"), " -98765\n");
    EXPECT_EQ(readfile("Seed.txt"), freeline(first.idum) + "\n");
    EXPECT_LT(first.idum, 0);
    slowstream slow{-98765};
    slow.draw();
    EXPECT_EQ(first.idum, -slow.idum);
    slowstream run{first.idum}; // the run's draws follow from the number left in Seed.txt alone
    for (int i = 0; i < 100; ++i) EXPECT_EQ(ran1(first), run.draw());

    randomstream next; // the next run goes on from there
    initiateseed(next);
    EXPECT_EQ(readfile("SeedOld.txt"), freeline(-slow.idum) + "\n");

    writefile("Seed.txt", "");
    randomstream none;
    EXPECT_EQ(runbody([&] { initiateseed(none); }).code(), -2);
}

TEST_F(randomnumbers, normaldeviatescomeinpairs)
{
    randomstream a, b;
    a.idum = b.idum = -5;
    double u, v, rsq;
    do {
        u = 2 * ran1(b) - 1;
        v = 2 * ran1(b) - 1;
        rsq = u * u + v * v;
    } while (rsq >= 1 || rsq == 0);
    const double fac = std::sqrt(-2 * std::log(rsq) / rsq);
    EXPECT_EQ(gasdev(a), v * fac);
    EXPECT_EQ(gasdev(a), u * fac);
    // A negative state forgets the spare deviate.
    gasdev(a);
    a.iset = 1;
    a.gset = 99;
    a.idum = -5;
    EXPECT_EQ(gasdev(a), v * fac);
}

TEST_F(randomnumbers, permutations)
{
    randomstream a, b;
    a.idum = b.idum = -9;
    array1<int64> order(7);
    randomorder(order, 7, a);
    std::vector<int64> slow{0, 1, 2, 3, 4, 5, 6, 7};
    for (int i = 7; i >= 2; --i)
        std::swap(slow[i], slow[static_cast<std::size_t>(i * ran1(b) + 1)]);
    for (int i = 1; i <= 7; ++i) EXPECT_EQ(order(i), slow[i]);
    const int64 state = a.idum;
    randomorder(order, 1, a);
    randomorder(order, 0, a);
    EXPECT_EQ(a.idum, state); // no draws
    EXPECT_EQ(order(1), 1);
}

TEST_F(randomnumbers, gammadeviatesbytheexacttests)
{
    randomstream fast, slow;
    fast.idum = slow.idum = -17;
    for (const double s : {0.4, 2.5, 0.9, 30.0})
        for (int i = 0; i < 10000; ++i)
            ASSERT_EQ(random_gamma(fast, s, 1, true), slowgamma(slow, s)) << s << " " << i;
}

TEST_F(randomnumbers, stopsofthegammaandbetadeviates)
{
    randomstream random;
    random.idum = -1;
    const auto stopof = [&](double s) {
        return runbody([&] { random_gamma(random, s, 1, true); });
    };
    EXPECT_EQ(stopof(0).code(), 120001);
    EXPECT_EQ(stopof(-1).output, "SHAPE PARAMETER VALUE MUST BE POSITIVE\n");
    EXPECT_EQ(stopof(1).code(), 120001);
    EXPECT_EQ(stopof(1).output, "IMPERMISSIBLE SHAPE PARAMETER VALUE\n");
    EXPECT_EQ(stopof(1e-17).code(), 120003);
    EXPECT_EQ(runbody([&] { random_beta(random, 0, 1, true); }).code(), 130001);
}
