// numberfields.h - quick looks at the bytes of a record: where values begin, and numbers in the
// fixed fields that the system writes.
//
// Readers of records take these where a record has as many bytes left as they look at, and read
// value by value where they don't apply.
#pragma once

#include <bit>
#include <cstdint>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

inline bool isseparator(char c)
{
    return c == ' ' || c == '\t' || c == ',';
}

#ifdef __SSE2__
inline __m128i sixteenbytes(const char *p)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
}

inline unsigned maskof(__m128i comparison)
{
    return static_cast<unsigned>(_mm_movemask_epi8(comparison));
}

// One bit for each of 64 bytes: a blank, tab or comma.
inline std::uint64_t separatorsof(const char *p)
{
    std::uint64_t mask = 0;
    for (int part = 0; part < 4; ++part) {
        const __m128i x = sixteenbytes(p + 16 * part);
        const __m128i found = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(x, _mm_set1_epi8(' ')),
                                                        _mm_cmpeq_epi8(x, _mm_set1_epi8('\t'))),
                                           _mm_cmpeq_epi8(x, _mm_set1_epi8(',')));
        mask |= static_cast<std::uint64_t>(maskof(found)) << (16 * part);
    }
    return mask;
}

// The two numbers of eight digits each, first digit highest, in 16 bytes of values 0 to 9.
inline void twiceeightdigits(__m128i digits, std::uint64_t &first, std::uint64_t &second)
{
    const __m128i zero = _mm_setzero_si128();
    const __m128i tens = _mm_set1_epi32(10 | 1 << 16), hundreds = _mm_set1_epi32(100 | 1 << 16);
    const __m128i pairs = _mm_packs_epi32(_mm_madd_epi16(_mm_unpacklo_epi8(digits, zero), tens),
                                          _mm_madd_epi16(_mm_unpackhi_epi8(digits, zero), tens));
    const __m128i fours = _mm_madd_epi16(pairs, hundreds);
    const __m128i eights =
        _mm_madd_epi16(_mm_packs_epi32(fours, fours), _mm_set1_epi32(10000 | 1 << 16));
    const std::uint64_t both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
    first = both & 0xffffffff;
    second = both >> 32;
}

// A field F20.10 at p: blanks, at most one minus sign, digits, the point, ten digits. False where
// the field looks otherwise, or has too many digits for the quick way: an integer below 2^53
// divided by 10^10 is the double nearest to the decimal text, since both are exact.
// There is one branch only: sign and number of digits can't be foretold.
inline bool fixedreal(const char *p, double &value)
{
    const __m128i nine = _mm_set1_epi8(9), zerochar = _mm_set1_epi8('0');
    const __m128i low = sixteenbytes(p), high = sixteenbytes(p + 4);
    const __m128i lowvalue = _mm_sub_epi8(low, zerochar), highvalue = _mm_sub_epi8(high, zerochar);
    const __m128i lowdigit = _mm_cmpeq_epi8(_mm_min_epu8(lowvalue, nine), lowvalue);
    const __m128i highdigit = _mm_cmpeq_epi8(_mm_min_epu8(highvalue, nine), highvalue);
    const unsigned digits = maskof(lowdigit) | maskof(highdigit) << 4;
    const unsigned blanks = maskof(_mm_cmpeq_epi8(low, _mm_set1_epi8(' '))) & 0x1ff;
    const unsigned minus = maskof(_mm_cmpeq_epi8(low, _mm_set1_epi8('-'))) & 0x1ff;
    const unsigned lead = blanks + 1; // the place behind the blanks, which begin the field
    const unsigned wanted = 0xffe00 - lead - minus; // digits behind that and the sign, no point

    std::uint64_t integral, tail;
    const __m128i wholepart = _mm_srli_si128(_mm_and_si128(lowvalue, lowdigit), 1);
    const __m128i tailpart = _mm_srli_si128(_mm_and_si128(highvalue, highdigit), 8);
    twiceeightdigits(_mm_unpacklo_epi64(wholepart, tailpart), integral, tail);
    const unsigned amiss = (digits ^ wanted) | (lead & blanks) | (minus & ~lead) |
                           static_cast<unsigned>(p[0] ^ ' ') | static_cast<unsigned>(p[9] ^ '.') |
                           static_cast<unsigned>(integral > 900718);
    if (amiss != 0) return false;
    const auto tenths = static_cast<std::uint64_t>((p[10] - '0') * 10 + (p[11] - '0'));
    const std::uint64_t all = (integral * 100 + tenths) * 100000000 + tail;
    const double size = static_cast<double>(static_cast<std::int64_t>(all)) / 1e10;
    value = std::bit_cast<double>(std::bit_cast<std::uint64_t>(size) |
                                  static_cast<std::uint64_t>(minus != 0) << 63);
    return true;
}
#endif
