#include "results/gathering.h"

#include "allelerows.h"

#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace
{
using word = std::uint64_t;
constexpr word fourzeros = 0x3020302030203020ULL;  // " 0 0 0 0", little-endian
constexpr word allelebits = 0x0100010001000100ULL; // what tells " 1" from " 0"

word load(const char *from)
{
    word value;
    std::memcpy(&value, from, 8);
    return value;
}
void store(char *to, word value)
{
    std::memcpy(to, &value, 8);
}
} // namespace

void openresultfile(outfile &out, const state &s, const std::string &path, int64 firsttmpgen,
                    int64 linesperindiv, int64 nsites, int64 titlelength)
{
    if (firsttmpgen == 1)
        out.open(path);
    else
        out.openandkeepfixed(path, linesperindiv * lastindivofgen(s, firsttmpgen - 1),
                             allelerowlength(nsites), titlelength,
                             {{lastindivofgen(s, firsttmpgen - 1)}, linesperindiv});
}

individualrows::individualrows(outfile &phasefile, outfile &genotypefile, int64 numberofsites)
    : phases(phasefile), genotypes(genotypefile), nsites(numberofsites)
{
}

void individualrows::begin(int64 individual)
{
    id = individual;
    rows[0] = beginallelerows(phases, id, nsites, 2);
    rows[1] = rows[0] + allelerowlength(nsites);
    at = 0;
}

void individualrows::write()
{
    char *const sum = beginallelerows(genotypes, id, nsites);
    std::size_t i = 0;
    // No byte overflows: ' ' + ' ' - ' ' and '1' + '1' - '0' at most.
    for (; i + 8 <= at; i += 8) store(sum + i, load(rows[0] + i) + load(rows[1] + i) - fourzeros);
    for (; i < at; i += 2) {
        sum[i] = ' ';
        sum[i + 1] = static_cast<char>(rows[0][i + 1] + rows[1][i + 1] - '0');
    }
    endallelerows(phases, nsites, 2);
    endallelerows(genotypes, nsites);
}

bool copyalleletext(char *to, const char *from, int64 n)
{
    word wrong = 0;
    int64 i = 0;
    for (; i + 4 <= n; i += 4, from += 8, to += 8) {
        const word four = load(from);
        wrong |= (four ^ fourzeros) & ~allelebits;
        store(to, four);
    }
    for (; i < n; ++i, from += 2, to += 2) {
        wrong |= from[0] != ' ' || (from[1] != '0' && from[1] != '1');
        to[0] = from[0];
        to[1] = from[1];
    }
    return wrong == 0;
}

bool putintegeralleles(char *to, const char *alleles, int64 n)
{
    int64 seen = 0;
    int64 i = 0;
#ifdef __SSE2__
    // Eight integers at a time: the low halves of each, then 16 bits of these.
    const __m128i zeros = _mm_set1_epi16(0x3020);
    __m128i any = _mm_setzero_si128();
    for (; i + 8 <= n; i += 8) {
        const auto *from = reinterpret_cast<const __m128i *>(alleles + 8 * i);
        const __m128i a = _mm_loadu_si128(from), b = _mm_loadu_si128(from + 1);
        const __m128i c = _mm_loadu_si128(from + 2), d = _mm_loadu_si128(from + 3);
        any = _mm_or_si128(any, _mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d)));
        const __m128i ab = _mm_castps_si128(
            _mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), _MM_SHUFFLE(2, 0, 2, 0)));
        const __m128i cd = _mm_castps_si128(
            _mm_shuffle_ps(_mm_castsi128_ps(c), _mm_castsi128_ps(d), _MM_SHUFFLE(2, 0, 2, 0)));
        const __m128i digits = _mm_slli_epi16(_mm_packs_epi32(ab, cd), 8);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(to + 2 * i), _mm_add_epi16(digits, zeros));
    }
    int64 halves[2];
    _mm_storeu_si128(reinterpret_cast<__m128i *>(halves), any);
    seen = halves[0] | halves[1];
#endif
    for (; i < n; ++i) {
        int64 allele;
        std::memcpy(&allele, alleles + 8 * i, 8);
        seen |= allele;
        to[2 * i] = ' ';
        to[2 * i + 1] = static_cast<char>('0' + (allele & 1));
    }
    return (seen & ~int64{1}) == 0;
}
