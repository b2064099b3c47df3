// numberfields.h - quick looks at the bytes of a record: where values begin, and numbers in the
// fixed fields that the system writes.
//
// Readers of records take these where a record has as many bytes left as they look at, and read
// value by value where they don't apply.
#pragma once

#include <bit>
#include <cstdint>
#ifdef __SSE2__
#include <immintrin.h>
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

// What is seen of a field F20.10 at p: where digits, blanks and minus signs stand, and the numbers of
// the eight digits before the last one before the point (columns 2 to 9) and of the last eight.
struct fixedfield {
    unsigned digits, blanks, minus; // a bit for each column; blanks and signs of the first nine
    std::uint64_t integral, tail;
};

inline fixedfield lookatfield(const char *p)
{
    const __m128i nine = _mm_set1_epi8(9), zerochar = _mm_set1_epi8('0');
    const __m128i low = sixteenbytes(p), high = sixteenbytes(p + 4);
    const __m128i lowvalue = _mm_sub_epi8(low, zerochar), highvalue = _mm_sub_epi8(high, zerochar);
    const __m128i lowdigit = _mm_cmpeq_epi8(_mm_min_epu8(lowvalue, nine), lowvalue);
    const __m128i highdigit = _mm_cmpeq_epi8(_mm_min_epu8(highvalue, nine), highvalue);
    fixedfield seen{};
    seen.digits = maskof(lowdigit) | maskof(highdigit) << 4;
    seen.blanks = maskof(_mm_cmpeq_epi8(low, _mm_set1_epi8(' '))) & 0x1ff;
    seen.minus = maskof(_mm_cmpeq_epi8(low, _mm_set1_epi8('-'))) & 0x1ff;
    const __m128i wholepart = _mm_srli_si128(_mm_and_si128(lowvalue, lowdigit), 1);
    const __m128i tailpart = _mm_srli_si128(_mm_and_si128(highvalue, highdigit), 8);
    twiceeightdigits(_mm_unpacklo_epi64(wholepart, tailpart), seen.integral, seen.tail);
    return seen;
}

#define WIDEFIELDS __attribute__((target("avx2")))
// The same, both halves of the field at once; for processors with AVX2.
WIDEFIELDS inline fixedfield lookwideatfield(const char *p)
{
    const __m256i text = _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p))),
        _mm_loadu_si128(reinterpret_cast<const __m128i *>(p + 4)), 1);
    const __m256i value = _mm256_sub_epi8(text, _mm256_set1_epi8('0'));
    const __m256i isdigit = _mm256_cmpeq_epi8(_mm256_min_epu8(value, _mm256_set1_epi8(9)), value);
    const auto found = static_cast<unsigned>(_mm256_movemask_epi8(isdigit));
    const __m256i isblank = _mm256_cmpeq_epi8(text, _mm256_set1_epi8(' '));
    const __m256i isminus = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('-'));
    fixedfield seen{};
    seen.digits = (found & 0xffff) | found >> 16 << 4;
    seen.blanks = static_cast<unsigned>(_mm256_movemask_epi8(isblank)) & 0x1ff;
    seen.minus = static_cast<unsigned>(_mm256_movemask_epi8(isminus)) & 0x1ff;
    // Columns 2 to 9 in one half, 13 to 20 in the other.
    const __m256i places =
        _mm256_setr_epi8(1, 2, 3, 4, 5, 6, 7, 8, -1, -1, -1, -1, -1, -1, -1, -1, 8, 9, 10, 11, 12,
                         13, 14, 15, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m256i eight = _mm256_shuffle_epi8(_mm256_and_si256(value, isdigit), places);
    const __m256i pairs = _mm256_maddubs_epi16(eight, _mm256_set1_epi16(10 | 1 << 8));
    const __m256i fours = _mm256_madd_epi16(pairs, _mm256_set1_epi32(100 | 1 << 16));
    const __m256i eights =
        _mm256_madd_epi16(_mm256_packus_epi32(fours, fours), _mm256_set1_epi32(10000 | 1 << 16));
    seen.integral = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm256_castsi256_si128(eights)));
    seen.tail = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm256_extracti128_si256(eights, 1)));
    return seen;
}

// The value of a field F20.10 at p: blanks, at most one minus sign, digits, the point, ten digits.
// False where the field looks otherwise, or has too many digits for the quick way: an integer below
// 2^53 divided by 10^10 is the double nearest to the decimal text, since both are exact.
// There is one branch only: sign and number of digits can't be foretold.
inline bool valueoffield(const char *p, const fixedfield &seen, double &value)
{
    const unsigned lead = seen.blanks + 1; // the place behind the blanks, which begin the field
    const unsigned wanted =
        0xffe00 - lead - seen.minus; // digits behind that and the sign, no point
    const unsigned amiss = (seen.digits ^ wanted) | (lead & seen.blanks) | (seen.minus & ~lead) |
                           static_cast<unsigned>(p[0] ^ ' ') | static_cast<unsigned>(p[9] ^ '.') |
                           static_cast<unsigned>(seen.integral > 900718);
    if (amiss != 0) return false;
    const auto tenths = static_cast<std::uint64_t>((p[10] - '0') * 10 + (p[11] - '0'));
    const std::uint64_t all = (seen.integral * 100 + tenths) * 100000000 + seen.tail;
    const double size = static_cast<double>(static_cast<std::int64_t>(all)) / 1e10;
    value = std::bit_cast<double>(std::bit_cast<std::uint64_t>(size) |
                                  static_cast<std::uint64_t>(seen.minus != 0) << 63);
    return true;
}

inline bool fixedreal(const char *p, double &value)
{
    return valueoffield(p, lookatfield(p), value);
}

// Values of up to n fields F20.10 from p on, the last of which may end at end; gives how many could be
// read, before one that looks otherwise. The wide form is for processors with AVX2.
inline std::int64_t fixedreals(const char *p, const char *end, double *values, std::int64_t n)
{
    std::int64_t i = 0;
    for (; i < n && end - p >= 20; ++i, p += 20)
        if ((end - p > 20 && !isseparator(p[20])) || !fixedreal(p, values[i])) break;
    return i;
}
WIDEFIELDS inline std::int64_t widefixedreals(const char *p, const char *end, double *values,
                                              std::int64_t n)
{
    std::int64_t i = 0;
    for (; i < n && end - p >= 20; ++i, p += 20)
        if ((end - p > 20 && !isseparator(p[20])) ||
            !valueoffield(p, lookwideatfield(p), values[i]))
            break;
    return i;
}
#undef WIDEFIELDS
#endif
