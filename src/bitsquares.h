// bitsquares.h - rows and columns of 64 x 64 bits.
#pragma once

#include <cstdint>

// Bit c of word r and bit r of word c change places. Swaps blocks of half the size each time
// (Warren, Hacker's Delight).
inline void transpose64(std::uint64_t *words)
{
    std::uint64_t mask = 0x00000000ffffffff;
    for (int width = 32; width > 0; width >>= 1, mask ^= mask << width)
        for (int r = 0; r < 64; r = (r + width + 1) & ~width) {
            const std::uint64_t swap = (words[r] >> width ^ words[r + width]) & mask;
            words[r] ^= swap << width;
            words[r + width] ^= swap;
        }
}
