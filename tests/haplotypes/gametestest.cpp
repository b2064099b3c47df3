#include "haplotypes/gametes.h"

#include "haplotypes/blocks.h"
#include "slowdrop.h"
#include "testsupport.h"

namespace
{
// A state with one chromosome of nblock blocks and room for one individual.
state gametestate(int64 nblock, double rate, int64 seed)
{
    state s;
    s.random.idum = seed;
    s.haplo.nblock = nblock;
    s.haplo.recombrateperblock.allocate(nblock, rate);
    s.haplo.globalrecomblocationmax.allocate(1, 1);
    s.haplo.recombcount.allocate(1, 2);
    return s;
}
} // namespace

// Gamete after gamete against a drop on plain strings with the same draws, from maps without any
// crossing to one in every block; locations, counts and the stream must agree, too.
TEST(gametes, everysiteagreeswithplainstrings)
{
    constexpr int64 nblock = 25;
    const std::string one = randomalleles(60 * nblock, -7), two = randomalleles(60 * nblock, -8);
    const std::vector<int64> first = packed(one), second = packed(two);
    for (double rate : {0.0, 0.04, 0.5, 1.0, 3.0}) {
        state s = gametestate(nblock, rate, -4242);
        for (int64 j = 1; j <= nblock; ++j) s.haplo.recombrateperblock(j) *= j % 3 == 0 ? 0.5 : 1;
        randomstream slow = s.random;
        array1<int64> locations(nblock, -99);
        std::vector<int64> gamete(nblock);
        int64 total = 0, highest = 1;
        for (int repeat = 0; repeat < 60; ++repeat) {
            const int64 firstpos = repeat % 2 + 1, side = repeat % 3 == 0 ? 2 : 1;
            int64 ncrossings = -1;
            recombinegametes(s, 1, 1, side, {first.data(), second.data()}, firstpos, ncrossings,
                             locations, gamete.data());
            const slowgamete expected =
                makeslowgamete(slow, {one, two}, firstpos, s.haplo.recombrateperblock);
            ASSERT_EQ(unpacked(gamete), expected.alleles) << "rate " << rate;
            ASSERT_EQ(ncrossings, static_cast<int64>(expected.crossings.size()));
            for (int64 c = 1; c <= nblock; ++c)
                ASSERT_EQ(locations(c), c <= ncrossings
                                            ? expected.crossings[static_cast<std::size_t>(c - 1)]
                                            : -99);
            if (ncrossings > 0) highest = std::max(highest, expected.crossings.back());
            total += ncrossings;
        }
        EXPECT_EQ(ran1(s.random), ran1(slow));
        EXPECT_EQ(s.haplo.recombcount(1, 1) + s.haplo.recombcount(1, 2), total);
        EXPECT_EQ(s.haplo.globalrecomblocationmax(1), highest);
        if (rate == 0 || rate == 3) {
            EXPECT_EQ(total, rate == 0 ? 0 : 60 * nblock); // every third block has 1.5
        }
    }
}
