#include "values/transpose.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace
{
void transposeplain(const int8 *from, int64 fromstride, int8 *to, int64 tostride, int64 nrows,
                    int64 ncols)
{
    for (int64 c = 0; c < ncols; ++c)
        for (int64 r = 0; r < nrows; ++r) to[c * tostride + r] = from[r * fromstride + c];
}

#ifdef __SSE2__
// Interleaving the two halves of the rows four times over exchanges rows and columns.
void transposesquare(const int8 *from, int64 fromstride, int8 *to, int64 tostride)
{
    __m128i a[16], b[16];
    for (int r = 0; r < 16; ++r)
        a[r] = _mm_loadu_si128(reinterpret_cast<const __m128i *>(from + r * fromstride));
    const auto interleave = [](const __m128i *x, __m128i *y) {
        for (int r = 0; r < 8; ++r) {
            y[2 * r] = _mm_unpacklo_epi8(x[r], x[r + 8]);
            y[2 * r + 1] = _mm_unpackhi_epi8(x[r], x[r + 8]);
        }
    };
    interleave(a, b);
    interleave(b, a);
    interleave(a, b);
    interleave(b, a);
    for (int c = 0; c < 16; ++c)
        _mm_storeu_si128(reinterpret_cast<__m128i *>(to + c * tostride), a[c]);
}

// 16 stretches of memory that the next squares need: without this half of the time is waiting.
void fetchahead(const int8 *first, int64 stride, int64 length)
{
    for (int k = 0; k < 16; ++k)
        for (int64 at = 0; at < length; at += 64) __builtin_prefetch(first + k * stride + at);
}
#endif
} // namespace

void transposebytes(const int8 *from, int64 fromstride, int8 *to, int64 tostride, int64 nrows,
                    int64 ncols)
{
    int64 wholerows = 0, wholecols = 0;
#ifdef __SSE2__
    wholerows = nrows / 16 * 16;
    wholecols = ncols / 16 * 16;
    const auto square = [&](int64 r, int64 c) {
        transposesquare(from + r * fromstride + c, fromstride, to + c * tostride + r, tostride);
    };
    // The side whose neighbours lie far apart is walked once only, and fetched ahead.
    if (fromstride > tostride)
        for (int64 r = 0; r < wholerows; r += 16) {
            if (r + 32 <= wholerows) fetchahead(from + (r + 16) * fromstride, fromstride, ncols);
            for (int64 c = 0; c < wholecols; c += 16) square(r, c);
        }
    else
        for (int64 c = 0; c < wholecols; c += 16) {
            if (c + 32 <= wholecols) fetchahead(to + (c + 16) * tostride, tostride, nrows);
            for (int64 r = 0; r < wholerows; r += 16) square(r, c);
        }
#endif
    transposeplain(from + wholecols, fromstride, to + wholecols * tostride, tostride, wholerows,
                   ncols - wholecols);
    transposeplain(from + wholerows * fromstride, fromstride, to + wholerows, tostride,
                   nrows - wholerows, ncols);
}
