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

WIDESTREGISTERS void countpairs(const std::uint64_t *pairs, std::size_t n, char *to)
{
    for (std::size_t w = 0; w < n; w += 4) {
        const fourwords one = *reinterpret_cast<const fourwords *>(pairs + w), two = one >> 1;
        const fourwords lower = fourwords{} + 0x5555555555555555;
        const fourwords codes = (~(one | two) & lower) | (~(one & two) & lower) << 1;
        std::memcpy(to + 8 * w, &codes, sizeof codes);
    }
}
