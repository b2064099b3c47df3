// draws.h - the random stream of the coalescent simulator: xoshiro256** (Blackman and Vigna 2021,
// ACM Trans. Math. Softw. 47:36), its state filled from the seed by splitmix64.
//
// The same seed gives the same stream on every machine; nothing here depends on the standard
// library's distributions.
#pragma once

#include "arrays.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace macs
{
// One step of splitmix64: also mixes texts into a seed (seed.cpp).
inline std::uint64_t splitmix(std::uint64_t &state)
{
    std::uint64_t z = (state += 0x9e3779b97f4a7c15ULL);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
    return z ^ (z >> 31);
}

struct randomstream {
    std::uint64_t word[4];

    explicit randomstream(int64 seed)
    {
        std::uint64_t state = static_cast<std::uint64_t>(seed);
        for (std::uint64_t &w : word) w = splitmix(state);
    }
    std::uint64_t next()
    {
        const std::uint64_t result = std::rotl(word[1] * 5, 7) * 9;
        const std::uint64_t t = word[1] << 17;
        word[2] ^= word[0];
        word[3] ^= word[1];
        word[1] ^= word[2];
        word[0] ^= word[3];
        word[2] ^= t;
        word[3] = std::rotl(word[3], 45);
        return result;
    }
    // Uniform on (0, 1), neither end included.
    double uniform() { return (static_cast<double>(next() >> 12) + 0.5) * 0x1p-52; }
    // Exponential with mean 1.
    double exponential() { return -std::log(uniform()); }
    // Uniform on 0..n-1. The multiplication's bias, n in 2^64, is beyond notice.
    std::int32_t below(std::int64_t n)
    {
        return static_cast<std::int32_t>(
            static_cast<unsigned __int128>(next()) * static_cast<std::uint64_t>(n) >> 64);
    }
};
} // namespace macs
