#include "markers/sitepicker.h"

#include "haplotypes/blocks.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace
{
using word = std::uint64_t;
constexpr int wordsize = 64;

// The six masks of bits to move by 1, 2, 4, 8, 16 and 32 places, by which the bits of a word
// under the mask are gathered at its low end, their order kept (Steele's compress; Warren 2012,
// Hacker's Delight, 2nd edition, section 7-4). Gives the number of masks up to the last that moves
// anything: with most sites of a block wanted, the far moves are empty.
int makemoves(word mask, word *moves)
{
    int nmoves = 0;
    word below = ~mask << 1; // bits that have an unwanted one to their right
    for (int i = 0; i < 6; ++i) {
        word parity = below;
        for (int shift = 1; shift < wordsize; shift *= 2) parity ^= parity << shift;
        moves[i] = parity & mask;
        mask = (mask ^ moves[i]) | (moves[i] >> (1 << i));
        below &= ~parity;
        if (moves[i] != 0) nmoves = i + 1;
    }
    return nmoves;
}

// The instruction for it. Processors that take many cycles for it do better without.
bool haspext()
{
#ifdef __x86_64__
    return __builtin_cpu_supports("bmi2") != 0 && __builtin_cpu_is("znver1") == 0 &&
           __builtin_cpu_is("znver2") == 0;
#else
    return false;
#endif
}

inline word pext([[maybe_unused]] word bits, [[maybe_unused]] word mask)
{
    word gathered = 0;
#ifdef __x86_64__
    asm("pext %2, %1, %0" : "=r"(gathered) : "r"(bits), "r"(mask));
#endif
    return gathered;
}
} // namespace

sitepicker::sitepicker(const sitelist &sites, bool usepextin)
    : picked1(sites.size() / wordsize + 1), picked2(picked1.size()),
      count(static_cast<int64>(sites.size())), usepext(usepextin && haspext())
{
    assert(std::is_sorted(sites.begin(), sites.end()));
    for (const int64 site : sites) {
        const siteplace place = placeofsite(site);
        if (masks.empty() || masks.back().block != place.block - 1) {
            masks.emplace_back();
            masks.back().block = place.block - 1;
        }
        masks.back().mask |= word(1) << (lociperblock - place.position);
        ++masks.back().nwanted;
    }
    for (blockmask &from : masks) from.nmoves = makemoves(from.mask, from.moves);
}

template <bool bypext> inline word sitepicker::gather(const blockmask &from, word blockid)
{
    if constexpr (bypext) return pext(blockid, from.mask);
    word bits = blockid & from.mask;
    for (int i = 0; i < from.nmoves; ++i) {
        const word moving = bits & from.moves[i];
        bits = (bits ^ moving) | (moving >> (1 << i));
    }
    return bits;
}

void sitepicker::pick(const int64 *gamete1, const int64 *gamete2)
{
    usepext ? pickby<true>(gamete1, gamete2) : pickby<false>(gamete1, gamete2);
}

template <bool bypext> void sitepicker::pickby(const int64 *gamete1, const int64 *gamete2)
{
    word *to1 = picked1.data(), *to2 = picked2.data();
    word filling1 = 0, filling2 = 0; // the words being filled, from the right
    int nfilled = 0;
    for (const blockmask &from : masks) {
        const word bits1 = gather<bypext>(from, static_cast<word>(gamete1[from.block]));
        const word bits2 = gather<bypext>(from, static_cast<word>(gamete2[from.block]));
        const int over = nfilled + from.nwanted - wordsize;
        if (over < 0) {
            filling1 = filling1 << from.nwanted | bits1;
            filling2 = filling2 << from.nwanted | bits2;
            nfilled += from.nwanted;
        } else { // full: over sites go to the next word
            const int fitting = from.nwanted - over;
            *to1++ = filling1 << fitting | bits1 >> over;
            *to2++ = filling2 << fitting | bits2 >> over;
            filling1 = bits1 & ((word(1) << over) - 1);
            filling2 = bits2 & ((word(1) << over) - 1);
            nfilled = over;
        }
    }
    if (nfilled > 0) {
        *to1 = filling1 << (wordsize - nfilled);
        *to2 = filling2 << (wordsize - nfilled);
    }
}

namespace
{
constexpr std::size_t wordtext = 2 * wordsize; // characters

// The text of a word of alleles of both gametes, and of the genotypes.
inline void putword(word one, word two, char *alleles1, char *alleles2, char *genotypes)
{
    typedef word columns8 __attribute__((vector_size(16))); // the text of eight alleles
    const columns8 zeros = {blocktables::fourzeros, blocktables::fourzeros};
    for (int i = 0; i < 8; ++i) {
        columns8 first, second;
        std::memcpy(&first, &blocktables::columns[one >> (56 - 8 * i) & 255U], sizeof first);
        std::memcpy(&second, &blocktables::columns[two >> (56 - 8 * i) & 255U], sizeof second);
        first += zeros;
        const columns8 both = first + second;
        second += zeros;
        std::memcpy(alleles1 + 16 * i, &first, sizeof first);
        std::memcpy(alleles2 + 16 * i, &second, sizeof second);
        std::memcpy(genotypes + 16 * i, &both, sizeof both);
    }
}
} // namespace

void sitepicker::puttext(char *alleles1, char *alleles2, char *genotypes) const
{
    const std::size_t nfull = static_cast<std::size_t>(count) / wordsize;
    for (std::size_t w = 0; w < nfull; ++w)
        putword(picked1[w], picked2[w], alleles1 + wordtext * w, alleles2 + wordtext * w,
                genotypes + wordtext * w);
    char last[3][wordtext];
    putword(picked1[nfull], picked2[nfull], last[0], last[1], last[2]);
    const std::size_t rest = 2 * static_cast<std::size_t>(count) - wordtext * nfull;
    std::memcpy(alleles1 + wordtext * nfull, last[0], rest);
    std::memcpy(alleles2 + wordtext * nfull, last[1], rest);
    std::memcpy(genotypes + wordtext * nfull, last[2], rest);
}
