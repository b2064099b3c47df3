#include "textlayout.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace
{
void pad(textline &line, int64 n)
{
    if (n > 0) line.append(static_cast<std::size_t>(n), ' ');
}

// A number in its field: right-aligned, asterisks when too long. w = 0 takes it as it is.
void putfield(textline &line, std::string_view digits, int64 w)
{
    const int64 length = static_cast<int64>(digits.size());
    if (w > 0 && length > w) {
        line.append(static_cast<std::size_t>(w), '*');
        return;
    }
    pad(line, w - length);
    line.append(digits);
}

bool putnotfinite(textline &line, double value, int64 w)
{
    if (std::isfinite(value)) return false;
    putfield(line, std::isnan(value) ? "NaN" : value > 0 ? "Infinity" : "-Infinity", w);
    return true;
}

constexpr std::uint64_t powersoften[] = {1ULL,         10ULL,         100ULL,        1000ULL,
                                         10000ULL,     100000ULL,     1000000ULL,    10000000ULL,
                                         100000000ULL, 1000000000ULL, 10000000000ULL};

// value x 10^d as an integer, rounded exactly (ties to even). Works on the 53-bit significand
// in 128-bit integers, for |value| < 2^29 and d <= 10: the commonest case, F20.10, needs
// about a fifth of the time of the general conversion. False when out of that range.
bool scaledinteger(double value, int64 d, std::uint64_t &scaled)
{
    if (!(value < 536870912.0) || d > 10) return false;
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    const int biased = static_cast<int>(bits >> 52 & 0x7ff);
    const std::uint64_t significand = (bits & 0xfffffffffffffULL) | (biased ? 1ULL << 52 : 0);
    const int shift = 1075 - (biased ? biased : 1); // value = significand / 2^shift
    if (shift <= 0) return false;
    unsigned __int128 product = static_cast<unsigned __int128>(significand) * powersoften[d];
    if (shift > 120) { // below 2^-33 of a last decimal: 0
        scaled = 0;
        return true;
    }
    const unsigned __int128 one = 1;
    const unsigned __int128 rest = product & ((one << shift) - 1);
    const unsigned __int128 half = one << (shift - 1);
    scaled = static_cast<std::uint64_t>(product >> shift);
    if (rest > half || (rest == half && (scaled & 1))) ++scaled;
    return true;
}

struct digitpairs {
    char text[200];
    constexpr digitpairs() : text()
    {
        for (int i = 0; i < 100; ++i) {
            text[2 * i] = static_cast<char>('0' + i / 10);
            text[2 * i + 1] = static_cast<char>('0' + i % 10);
        }
    }
};
constexpr digitpairs pairs;

// The digits of value, ending before end; gives the first.
char *digitsbefore(char *end, std::uint64_t value)
{
    while (value >= 100) {
        end -= 2;
        std::memcpy(end, pairs.text + 2 * (value % 100), 2);
        value /= 100;
    }
    if (value >= 10) {
        end -= 2;
        std::memcpy(end, pairs.text + 2 * value, 2);
    } else {
        *--end = static_cast<char>('0' + value);
    }
    return end;
}

// scaled / 10^d in a field of w. withpoint: even where there are no decimals.
void putdecimals(textline &line, std::uint64_t scaled, int64 d, bool isnegative, int64 w,
                 bool withpoint = false)
{
    char digits[48];
    char *const end = digits + sizeof digits;
    char *first = end;
    if (d > 0) {
        first = digitsbefore(end, scaled % powersoften[d]);
        while (end - first < d) *--first = '0';
    }
    if (d > 0 || withpoint) *--first = '.';
    first = digitsbefore(first, scaled / powersoften[d]);
    if (isnegative) *--first = '-';
    putfield(line, {first, static_cast<std::size_t>(end - first)}, w);
}
} // namespace

void puta(textline &line, std::string_view text, int64 w)
{
    text = text.substr(0, static_cast<std::size_t>(w));
    pad(line, w - static_cast<int64>(text.size()));
    line.append(text);
}

void putleft(textline &line, std::string_view text, int64 w)
{
    text = text.substr(0, static_cast<std::size_t>(w));
    line.append(text);
    pad(line, w - static_cast<int64>(text.size()));
}

void puti(textline &line, int64 value, int64 w)
{
    char digits[24];
    char *const end = digits + sizeof digits;
    const std::uint64_t magnitude =
        value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    char *first = digitsbefore(end, magnitude);
    if (value < 0) *--first = '-';
    putfield(line, {first, static_cast<std::size_t>(end - first)}, w);
}

void putf(textline &line, double value, int64 w, int64 d)
{
    if (putnotfinite(line, value, w)) return;
    std::uint64_t scaled;
    if (scaledinteger(std::fabs(value), d, scaled)) {
        putdecimals(line, scaled, d, std::signbit(value), w, true);
        return;
    }
    char digits[400];
    const auto written = std::to_chars(digits, digits + sizeof digits, value,
                                       std::chars_format::fixed, static_cast<int>(d));
    char *end = written.ptr;
    if (d == 0) *end++ = '.';
    putfield(line, {digits, static_cast<std::size_t>(end - digits)}, w);
}

void pute(textline &line, double value, int64 w, int64 d)
{
    if (putnotfinite(line, value, w)) return;
    char digits[64];
    const auto written = std::to_chars(digits, digits + sizeof digits, std::fabs(value),
                                       std::chars_format::scientific, static_cast<int>(d - 1));
    const std::string_view text(digits, static_cast<std::size_t>(written.ptr - digits));
    const std::size_t e = text.find('e');
    std::string mantissa;
    for (const char c : text.substr(0, e))
        if (c != '.') mantissa += c;
    int exponent = 0;
    std::string_view exponenttext = text.substr(e + 1);
    if (exponenttext.front() == '+') exponenttext.remove_prefix(1);
    std::from_chars(exponenttext.data(), exponenttext.data() + exponenttext.size(), exponent);
    if (value != 0) ++exponent;
    std::string result = std::signbit(value) ? "-0." : "0.";
    result += mantissa;
    char tail[16]; // an exponent of three digits drops the letter
    std::snprintf(tail, sizeof tail, std::abs(exponent) < 100 ? "E%c%02d" : "%c%03d",
                  exponent < 0 ? '-' : '+', std::abs(exponent));
    putfield(line, result + tail, w);
}

void putg(textline &line, double value, int64 w, int64 d)
{
    if (putnotfinite(line, value, w)) return;
    const double size = std::fabs(value);
    if (size >= 0.1 && size < 1000 && d >= 4) { // never with an exponent
        const int64 nbefore = size < 1 ? 0 : size < 10 ? 1 : size < 100 ? 2 : 3;
        int64 ndecimals = d - nbefore;
        std::uint64_t scaled;
        if (scaledinteger(size, ndecimals, scaled)) {
            for (; ndecimals > 0 && scaled % 10 == 0; --ndecimals) scaled /= 10;
            putdecimals(line, scaled, ndecimals, std::signbit(value), w);
            return;
        }
    }
    char digits[64];
    const auto written = std::to_chars(digits, digits + sizeof digits, value,
                                       std::chars_format::general, static_cast<int>(d));
    pad(line, w - (written.ptr - digits));
    line.append(digits, written.ptr);
}

char *putalleles(char *to, const int8 *alleles, int64 n)
{
    int64 i = 0;
#ifdef __SSE2__
    const __m128i blanks = _mm_set1_epi8(' '), zeros = _mm_set1_epi8('0');
    for (; i + 16 <= n; i += 16, to += 32) {
        const __m128i digits =
            _mm_add_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(alleles + i)), zeros);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(to), _mm_unpacklo_epi8(blanks, digits));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(to + 16), _mm_unpackhi_epi8(blanks, digits));
    }
#endif
    for (; i < n; ++i) {
        *to++ = ' ';
        *to++ = static_cast<char>('0' + alleles[i]);
    }
    return to;
}

void putalleles(textline &line, const int8 *alleles, int64 n)
{
    const std::size_t start = line.size();
    line.resize(start + 2 * static_cast<std::size_t>(n));
    putalleles(line.data() + start, alleles, n);
}

void putfree(textline &line, std::string_view text)
{
    line += ' ';
    line.append(text);
}

void putfree(textline &line, const char *text)
{
    putfree(line, std::string_view(text));
}

void putfree(textline &line, int64 value)
{
    line += ' ';
    puti(line, value, 0);
}

void putfree(textline &line, int value)
{
    putfree(line, static_cast<int64>(value));
}

void putfree(textline &line, double value)
{
    line += ' ';
    if (putnotfinite(line, value, 0)) return;
    const double size = std::fabs(value);
    const bool fixed = size == 0 || (size >= 1e-4 && size < 1e16);
    char digits[64];
    const auto written =
        std::to_chars(digits, digits + sizeof digits, value,
                      fixed ? std::chars_format::fixed : std::chars_format::scientific);
    const std::string_view text(digits, static_cast<std::size_t>(written.ptr - digits));
    line.append(text);
    if (fixed && text.find('.') == std::string_view::npos) line += ".0";
}

void printline(std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
}

bool readinteger(std::string_view text, int64 &value)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

bool readreal(std::string_view text, double &value)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    const char *const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, value);
    if (read.ec == std::errc() && read.ptr == end) return true;
    if (read.ec == std::errc::result_out_of_range && read.ptr == end) {
        value = std::strtod(std::string(text).c_str(), nullptr); // 0 or an infinity
        return true;
    }
    // A D exponent: the same number with an E.
    const std::size_t d = text.find_first_of("dD");
    if (d == std::string_view::npos || text.find_first_of("eE") != std::string_view::npos)
        return false;
    std::string copy(text);
    copy[d] = 'e';
    return readreal(copy, value);
}
