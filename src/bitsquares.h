// bitsquares.h - rows and columns of 64 x 64 bits.
#pragma once

#include <cstddef>
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

// Four squares at once, word r of square q at squares[r][q]. By the widest registers that the
// processor has.
using fourwords = std::uint64_t __attribute__((vector_size(32), aligned(8), may_alias));
void transposefour(fourwords *squares);
// Of n words of pairs of bits, n a multiple of 4, 2k and 2k + 1: bit 2k becomes whether neither of the pair is set, bit
// 2k + 1 whether not both are. 8n bytes to.
void countpairs(const std::uint64_t *pairs, std::size_t n, char *to);
