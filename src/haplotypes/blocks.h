// blocks.h - 60 alleles in one integer: packing, unpacking, and the three ways to change a block.
//
// A block is a signed 64-bit integer that holds 60 loci. The allele (0 or 1) at position p of the
// block, p = 1 to 60, has weight 2^(60-p): position 1 is the highest of the 60 bits, position 60
// the lowest. The four top bits are 0, so a block lies between 0 and 2^60 - 1.
//
// Included sites are numbered from 1 in map order: site s is position s - 60 (b - 1) of block
// b = (s - 1) / 60 + 1. Sites 60 and 120 are position 60 of blocks 1 and 2.
//
// Arrays of alleles are given by a pointer to the first of them (offset 0 is position 1). Draws,
// stops: none. Results may be the same variables as the inputs.
#pragma once

#include "genomes.h"

#include <array>
#include <cassert>
#include <cstring>

// Block and position, both from 1, of an included site.
struct siteplace {
    int64 block = 0, position = 0;
};
inline siteplace placeofsite(int64 site)
{
    assert(site >= 1);
    const int64 block = (site - 1) / lociperblock + 1;
    return {block, site - (block - 1) * lociperblock};
}

// The allele at a position.
inline int64 alleleat(int64 blockid, int64 position)
{
    assert(position >= 1 && position <= lociperblock);
    return (blockid >> (lociperblock - position)) & 1;
}
// The allele of an included site of a gamete, given by its first block.
inline int64 alleleatsite(const int64 *gamete, int64 site)
{
    const siteplace place = placeofsite(site);
    return alleleat(gamete[place.block - 1], place.position);
}

// --------------------------------------------------------------- conversions of any length
// Packs nloci alleles (integers of any width, up to 60 of them).
template <class allele>
void blockidentificationnumber(int64 nloci, const allele *blockpermut, int64 &blockid)
{
    int64 packed = 0;
    for (int64 p = 0; p < nloci; ++p) packed = 2 * packed + blockpermut[p];
    blockid = packed;
}

// Unpacks nloci alleles.
template <class allele> void blockpermutation(int64 blockid, int64 nloci, allele *blockpermut)
{
    for (int64 p = 0; p < nloci; ++p)
        blockpermut[p] = static_cast<allele>((blockid >> (nloci - 1 - p)) & 1);
}

// Unpacks the blocks of two gametes and adds them: genotypes 0, 1, 2.
template <class allele>
void indivblockgenotype(int64 nloci, int64 blockid1, int64 blockid2, allele *individualgenotype)
{
    for (int64 p = 0; p < nloci; ++p)
        individualgenotype[p] = static_cast<allele>(((blockid1 >> (nloci - 1 - p)) & 1) +
                                                    ((blockid2 >> (nloci - 1 - p)) & 1));
}

// --------------------------------------------------------------- changes
// Crossing over: the alleles of blockidin1 up to and including position recombloc (1 to nloci),
// those of blockidin2 behind it.
inline void recombination(int64 nloci, int64 blockidin1, int64 blockidin2, int64 recombloc,
                          int64 &blockidout)
{
    assert(recombloc >= 1 && recombloc <= nloci);
    const int64 behind = (int64(1) << (nloci - recombloc)) - 1;
    blockidout = (blockidin1 & ~behind) | (blockidin2 & behind);
}

// Sets the allele at mutationloc to 1, whatever it was.
inline void mutation(int64 nloci, int64 blockidin, int64 mutationloc, int64 &blockidout)
{
    assert(mutationloc >= 1 && mutationloc <= nloci);
    blockidout = blockidin | (int64(1) << (nloci - mutationloc));
}

// Makes an individual homozygous at mutationloc, for allele 1 (posneg = 1) or 0 (posneg = 0); any
// other posneg changes nothing. blockidins, blockidind: its blocks from sire and dam.
inline void genomeedition(int64 nloci, int64 blockidins, int64 blockidind, int64 mutationloc,
                          int64 &blockidouts, int64 &blockidoutd, int64 posneg)
{
    assert(mutationloc >= 1 && mutationloc <= nloci);
    const int64 locus = int64(1) << (nloci - mutationloc);
    const int64 seton = posneg == 1 ? locus : 0;
    const int64 setoff = posneg == 0 ? locus : 0;
    blockidouts = (blockidins | seton) & ~setoff;
    blockidoutd = (blockidind | seton) & ~setoff;
}

// --------------------------------------------------------------- fast expansion of whole blocks
// By tables of eight or four alleles; each writes exactly 60 values or 120 characters. Words are
// laid out for little-endian machines, as the binary files are.
namespace blocktables
{
using word = std::uint64_t;

// Eight alleles as eight bytes, the first allele lowest.
constexpr word allelebytes(unsigned eight)
{
    word bytes = 0;
    for (int p = 0; p < 8; ++p) bytes |= word((eight >> (7 - p)) & 1) << (8 * p);
    return bytes;
}
constexpr auto makebytes()
{
    std::array<word, 256> table{};
    for (unsigned e = 0; e < 256; ++e) table[e] = allelebytes(e);
    return table;
}
// Four alleles as the digits of four columns of two characters: bytes 1, 3, 5, 7.
constexpr word columndigits(unsigned four)
{
    word digits = 0;
    for (int p = 0; p < 4; ++p) digits |= word((four >> (3 - p)) & 1) << (16 * p + 8);
    return digits;
}
struct twowords {
    word first, second;
};
constexpr auto makecolumns()
{
    std::array<twowords, 256> table{};
    for (unsigned e = 0; e < 256; ++e) table[e] = {columndigits(e >> 4), columndigits(e & 15)};
    return table;
}
struct fourintegers {
    int64 allele[4];
};
constexpr auto makeintegers()
{
    std::array<fourintegers, 16> table{};
    for (unsigned e = 0; e < 16; ++e) table[e] = {{e >> 3 & 1, e >> 2 & 1, e >> 1 & 1, e & 1}};
    return table;
}
alignas(64) inline constexpr std::array<word, 256> bytes = makebytes();
alignas(64) inline constexpr std::array<twowords, 256> columns = makecolumns();
alignas(64) inline constexpr std::array<fourintegers, 16> integers = makeintegers();
inline constexpr word fourzeros = 0x3020302030203020ULL; // " 0 0 0 0"

// Alleles 8 i + 1 to 8 i + 8 of a block, i from 0; 57 to 60 for i = 7, in the upper half.
inline unsigned eightalleles(int64 blockid, int i)
{
    assert(blockid >> lociperblock == 0); // -99 stands for a block not made
    return static_cast<unsigned>(static_cast<word>(blockid) << 4 >> (56 - 8 * i)) & 255U;
}
} // namespace blocktables

// Packs 60 alleles of one byte each, 0 or 1.
inline int64 packblock(const int8 *alleles)
{
    using blocktables::word;
    // The multiplication moves the lowest bit of byte i to bit 63 - i; no two terms meet.
    constexpr word gather = 0x8040201008040201ULL;
    word packed = 0;
    for (int i = 0; i < 7; ++i) {
        word eight;
        std::memcpy(&eight, alleles + 8 * i, 8);
        packed = packed << 8 | (eight * gather >> 56);
    }
    std::uint32_t four;
    std::memcpy(&four, alleles + 56, 4);
    return static_cast<int64>(packed << 4 | (four * gather >> 60));
}

// Unpacks a block to 60 alleles.
inline void expandblock(int64 blockid, int8 *alleles)
{
    using namespace blocktables;
    for (int i = 0; i < 7; ++i) std::memcpy(alleles + 8 * i, &bytes[eightalleles(blockid, i)], 8);
    std::memcpy(alleles + 56, &bytes[eightalleles(blockid, 7)], 4);
}
inline void expandblock(int64 blockid, int64 *alleles)
{
    for (int i = 0; i < 15; ++i)
        std::memcpy(alleles + 4 * i, &blocktables::integers[(blockid >> (56 - 4 * i)) & 15], 32);
}

// Unpacks the blocks of both gametes to 60 genotypes.
inline void expandgenotypes(int64 blockid1, int64 blockid2, int8 *genotypes)
{
    using namespace blocktables;
    for (int i = 0; i < 8; ++i) {
        const word eight = bytes[eightalleles(blockid1, i)] + bytes[eightalleles(blockid2, i)];
        std::memcpy(genotypes + 8 * i, &eight, i < 7 ? 8 : 4);
    }
}
inline void expandgenotypes(int64 blockid1, int64 blockid2, int64 *genotypes)
{
    for (int i = 0; i < 15; ++i) {
        const auto &one = blocktables::integers[(blockid1 >> (56 - 4 * i)) & 15];
        const auto &two = blocktables::integers[(blockid2 >> (56 - 4 * i)) & 15];
        for (int p = 0; p < 4; ++p) genotypes[4 * i + p] = one.allele[p] + two.allele[p];
    }
}

// Writes 60 alleles as text, 120 characters: a blank and a digit each. Gives the end of the text.
inline char *putblocktext(char *text, int64 blockid)
{
    using namespace blocktables;
    for (int i = 0; i < 8; ++i) {
        const twowords &digits = columns[eightalleles(blockid, i)];
        const word eight[2] = {fourzeros + digits.first, fourzeros + digits.second};
        std::memcpy(text + 16 * i, eight, i < 7 ? 16 : 8);
    }
    return text + 2 * lociperblock;
}
// The same for the genotypes of two gametes.
inline char *putgenotypetext(char *text, int64 blockid1, int64 blockid2)
{
    using namespace blocktables;
    for (int i = 0; i < 8; ++i) {
        const twowords &one = columns[eightalleles(blockid1, i)];
        const twowords &two = columns[eightalleles(blockid2, i)];
        const word eight[2] = {fourzeros + one.first + two.first,
                               fourzeros + one.second + two.second};
        std::memcpy(text + 16 * i, eight, i < 7 ? 16 : 8);
    }
    return text + 2 * lociperblock;
}
