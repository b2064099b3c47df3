// slowdrop.h - haplotypes as plain strings of 0 and 1, dropped site by site: the second form of
// the gene drop, with the same draws, against which the packed one is held.
#pragma once

#include "haplotypes/blocks.h"
#include "randomnumbers.h"

#include <string>
#include <utility>
#include <vector>

inline std::string randomalleles(int64 n, int64 seed)
{
    randomstream random;
    random.idum = seed;
    std::string alleles;
    for (int64 i = 0; i < n; ++i) alleles += ran1(random) < 0.5 ? '0' : '1';
    return alleles;
}

inline std::vector<int64> packed(const std::string &alleles)
{
    std::vector<int64> blocks(alleles.size() / 60);
    for (std::size_t s = 0; s < alleles.size(); ++s)
        blocks[s / 60] = 2 * blocks[s / 60] + (alleles[s] - '0');
    return blocks;
}

inline std::string unpacked(const int64 *blocks, int64 nblock)
{
    std::string alleles;
    for (int64 b = 0; b < nblock; ++b)
        for (int p = 59; p >= 0; --p) alleles += static_cast<char>('0' + (blocks[b] >> p) % 2);
    return alleles;
}
inline std::string unpacked(const std::vector<int64> &blocks)
{
    return unpacked(blocks.data(), static_cast<int64>(blocks.size()));
}

struct slowgamete {
    std::string alleles;
    std::vector<int64> crossings;
};

// strands[0] from the parent's sire, strands[1] from its dam.
inline slowgamete makeslowgamete(randomstream &random, const std::vector<std::string> &strands,
                                 int64 firstpos, const array1<double> &rates)
{
    slowgamete gamete;
    std::size_t x = firstpos == 1 ? 0 : 1;
    for (int64 block = 1; block <= rates.size(); ++block) {
        int64 behind = 61; // first position taken from the other strand
        if (!(ran1(random) > rates(block))) {
            std::vector<int64> order(61);
            for (std::size_t i = 1; i <= 60; ++i) order[i] = static_cast<int64>(i);
            for (std::size_t i = 60; i >= 2; --i)
                std::swap(
                    order[i],
                    order[static_cast<std::size_t>(static_cast<double>(i) * ran1(random)) + 1]);
            behind = order[1] + 1;
            gamete.crossings.push_back(60 * (block - 1) + order[1]);
        }
        for (int64 p = 1; p <= 60; ++p) {
            if (p == behind) x = 1 - x;
            gamete.alleles += strands[x][static_cast<std::size_t>(60 * (block - 1) + p - 1)];
        }
        if (behind == 61 && !gamete.crossings.empty() && gamete.crossings.back() == 60 * block)
            x = 1 - x; // a crossing behind the last position of the block
    }
    return gamete;
}
