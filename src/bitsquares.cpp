#include "bitsquares.h"

#include <cstddef>
#include <cstring>

// The compiler makes one form for each kind of processor, and the right one is chosen when the
// program starts.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define WIDESTREGISTERS __attribute__((target_clones("avx2", "default")))
#else
#define WIDESTREGISTERS
#endif

WIDESTREGISTERS void transposefour(fourwords *squares)
{
    std::uint64_t mask = 0x00000000ffffffff;
    for (int width = 32; width > 0; width >>= 1, mask ^= mask << width)
        for (int r = 0; r < 64; r = (r + width + 1) & ~width) {
            const fourwords swap = (squares[r] >> width ^ squares[r + width]) & mask;
            squares[r] ^= swap << width;
            squares[r + width] ^= swap;
        }
}

// The bits of the lower halves of words move apart, to every second place (Warren, Hacker's Delight).
#define APART(x)                                                                                   \
    x = (x | x << 16) & 0x0000ffff0000ffff;                                                        \
    x = (x | x << 8) & 0x00ff00ff00ff00ff;                                                         \
    x = (x | x << 4) & 0x0f0f0f0f0f0f0f0f;                                                         \
    x = (x | x << 2) & 0x3333333333333333;                                                         \
    x = (x | x << 1) & 0x5555555555555555

WIDESTREGISTERS void pairbits(const std::uint64_t *one, const std::uint64_t *two, std::size_t n,
                              char *to)
{
    for (std::size_t w = 0; w < n; w += 4, to += 64) {
        const fourwords first = *reinterpret_cast<const fourwords *>(one + w);
        const fourwords second = *reinterpret_cast<const fourwords *>(two + w);
        const fourwords a = ~(first | second), b = ~(first & second);
        fourwords alow = a & 0xffffffff, ahigh = a >> 32, blow = b & 0xffffffff, bhigh = b >> 32;
        APART(alow);
        APART(ahigh);
        APART(blow);
        APART(bhigh);
        const fourwords low = alow | blow << 1, high = ahigh | bhigh << 1;
        const std::uint64_t pairs[8] = {low[0], high[0], low[1], high[1],
                                        low[2], high[2], low[3], high[3]};
        std::memcpy(to, pairs, sizeof pairs);
    }
}
