// Crossings of gametes against the map that they follow.
#include "haplotypes/gametes.h"
#include "openstate.h"

#include "haplotypes/blocks.h"

#include <gtest/gtest.h>

namespace
{
// A state with one chromosome of nblock blocks and room for one individual.
openstate gametestate(int64 nblock, double rate, int64 seed)
{
    openstate s;
    s.random.idum = seed;
    s.haplo.nblock = nblock;
    s.haplo.recombrateperblock.allocate(nblock, rate);
    s.haplo.globalrecomblocationmax.allocate(1, 1);
    s.haplo.recombcount.allocate(1, 2);
    return s;
}
} // namespace

// Crossings per gamete, 20 blocks, 1 Morgan: mean 1, variance 1 * (1 - 1/20) = 0.95; over 20,000
// gametes the standard error is 0.0069. Their positions in the block are uniform on 1 to 60: mean
// 30.5, standard deviation 17.32, over about 20,000 crossings a standard error of 0.123. Allowed
// are 5 standard errors of each.
TEST(gametes, crossingsfollowthemap)
{
    constexpr int64 nblock = 20, ngametes = 20000;
    openstate s = gametestate(nblock, 1.0 / nblock, -31415);
    const std::vector<int64> strand(nblock, 0);
    std::vector<int64> gamete(nblock);
    array1<int64> locations(nblock, -99);
    double sum = 0, sumsquares = 0, positions = 0;
    for (int64 g = 0; g < ngametes; ++g) {
        int64 n = 0;
        recombinegametes(s, 1, 1, 1, {strand.data(), strand.data()}, 1, n, locations,
                         gamete.data());
        sum += static_cast<double>(n);
        sumsquares += static_cast<double>(n * n);
        for (int64 c = 1; c <= n; ++c)
            positions += static_cast<double>(placeofsite(locations(c)).position);
    }
    const double mean = sum / ngametes;
    EXPECT_NEAR(mean, 1.0, 0.0345);
    // Variance of the variance of a near-Poisson count: (mu4 - var^2) / n, about 2.9 / n.
    EXPECT_NEAR(sumsquares / ngametes - mean * mean, 0.95, 0.06);
    EXPECT_NEAR(positions / sum, 30.5, 0.62);
}
