#include "markers/sitepicker.h"

namespace
{
using word = std::uint64_t;

// The six masks of bits to move by 1, 2, 4, 8, 16 and 32 places, by which the bits of a word
// under the mask are gathered at its low end, their order kept (Steele's compress; Warren 2012,
// Hacker's Delight, 2nd edition, section 7-4).
void makemoves(word mask, std::vector<word> &moves)
{
    word below = ~mask << 1; // bits that have an unwanted one to their right
    for (int i = 0; i < 6; ++i) {
        word parity = below;
        for (int shift = 1; shift < 64; shift *= 2) parity ^= parity << shift;
        const word move = parity & mask;
        moves.push_back(move);
        mask = (mask ^ move) | (move >> (1 << i));
        below &= ~parity;
    }
}
} // namespace

sitepicker::sitepicker(const sitelist &sites) : count(static_cast<int64>(sites.size()))
{
    for (const int64 site : sites) {
        const siteplace place = placeofsite(site);
        if (masks.empty() || masks.back().block != place.block - 1) {
            masks.emplace_back();
            masks.back().block = place.block - 1;
        }
        masks.back().mask |= word(1) << (lociperblock - place.position);
        ++masks.back().nwanted;
    }
    for (blockmask &from : masks) {
        from.firststep = moves.size();
        makemoves(from.mask, moves);
    }
}

inline word sitepicker::gather(const blockmask &from, word blockid) const
{
    const word *move = &moves[from.firststep];
    word bits = blockid & from.mask;
    for (int i = 0; i < 6; ++i) {
        const word moving = bits & move[i];
        bits = (bits ^ moving) | (moving >> (1 << i));
    }
    return bits;
}

void sitepicker::pick(const int64 *gamete1, const int64 *gamete2, int64 *picked1,
                      int64 *picked2) const
{
    word filling1 = 0, filling2 = 0; // the blocks being filled, from the right
    int nfilled = 0;
    for (const blockmask &from : masks) {
        const word bits1 = gather(from, static_cast<word>(gamete1[from.block]));
        const word bits2 = gather(from, static_cast<word>(gamete2[from.block]));
        const int over = nfilled + from.nwanted - static_cast<int>(lociperblock);
        if (over < 0) {
            filling1 = filling1 << from.nwanted | bits1;
            filling2 = filling2 << from.nwanted | bits2;
            nfilled += from.nwanted;
        } else { // full: over sites go to the next block
            const int fitting = from.nwanted - over;
            *picked1++ = static_cast<int64>(filling1 << fitting | bits1 >> over);
            *picked2++ = static_cast<int64>(filling2 << fitting | bits2 >> over);
            filling1 = bits1 & ((word(1) << over) - 1);
            filling2 = bits2 & ((word(1) << over) - 1);
            nfilled = over;
        }
    }
    if (nfilled > 0) {
        *picked1 = static_cast<int64>(filling1 << (lociperblock - nfilled));
        *picked2 = static_cast<int64>(filling2 << (lociperblock - nfilled));
    }
}

char *putpickedalleles(char *text, const int64 *picked, int64 n)
{
    for (int64 k = 0; k < n; k += lociperblock)
        putblocktext(text + 2 * k, picked[k / lociperblock]);
    return text + 2 * n;
}

char *putpickedgenotypes(char *text, const int64 *picked1, const int64 *picked2, int64 n)
{
    for (int64 k = 0; k < n; k += lociperblock)
        putgenotypetext(text + 2 * k, picked1[k / lociperblock], picked2[k / lociperblock]);
    return text + 2 * n;
}
