#include "haplotypes/genomefiles.h"

#include "testsupport.h"

#include <cstring>

using genomefiles = infolder;

namespace
{
// A cell that tells its place.
int64 cell(int64 k, int64 b, int64 m)
{
    return (k * 100000 + b) * 10 + m;
}

genomestore fullgenome(int64 nindiv, int64 nblock)
{
    genomestore g;
    g.allocate(nindiv, nblock);
    for (int64 k = 1; k <= nindiv; ++k)
        for (int64 b = 1; b <= nblock; ++b)
            for (int64 m = 1; m <= 2; ++m) g(k, b, m) = cell(k, b, m);
    return g;
}
} // namespace

// Sizes below, at and above a tile and the width of the buffer, whole frames and sub-records that
// end anywhere within a block.
TEST_F(genomefiles, roundtrips)
{
    const std::vector<std::pair<int64, int64>> sizes = {{1, 1},   {3, 50},    {16, 16}, {17, 33},
                                                        {200, 7}, {70000, 9}, {0, 4},   {5, 0}};
    for (const auto &[nindiv, nblock] : sizes) {
        const genomestore g = fullgenome(nindiv, nblock);
        for (int64 limit : {framelimit, int64(1000003), int64(77)}) {
            if (nindiv > 1000 && limit < 1000) continue;
            writegenome("g", g, limit);
            genomestore back;
            readgenome("g", back, nindiv, nblock);
            ASSERT_EQ(back.nindiv(), nindiv);
            ASSERT_EQ(back.nblock(), nblock);
            const std::size_t nbytes = static_cast<std::size_t>(16 * nindiv * nblock);
            const bool same =
                nbytes == 0 || std::memcmp(back.gamete(1, 1), g.gamete(1, 1), nbytes) == 0;
            ASSERT_TRUE(same) << nindiv << " x " << nblock << " limit " << limit;
        }
        haplotypestore h, hback;
        h.allocate(nindiv, nblock);
        for (int64 i = 1; i <= nindiv; ++i)
            for (int64 b = 1; b <= nblock; ++b) h(i, b) = cell(i, b, 7);
        writehaplotypes("h", h, 100000);
        readhaplotypes("h", hback, nblock);
        for (int64 i = 1; i <= nindiv; ++i)
            for (int64 b = 1; b <= nblock; ++b) ASSERT_EQ(hback(i, b), cell(i, b, 7));
    }
}
