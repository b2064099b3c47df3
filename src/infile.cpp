#include "infile.h"

#include "numberfields.h"
#include "stops.h"
#include "textlayout.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

void infile::open(const std::string &filename, author by)
{
    take(openchecked(filename, O_RDONLY), filename, by);
    struct stat status {
    };
    if (::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        ioerrno(name, "can't read");
    }
}

void infile::take(filedescriptor opened, const std::string &filename, author by)
{
    descriptor = std::move(opened);
    name = filename;
    buffer.resize(buffersize);
    begin = finish = 0;
    ended = false;
    writtenby = by;
    nlines = 0;
    cursorstart = cursor = lineend = nullptr;
}

void infile::rewind()
{
    skipto(0, 0);
}

void infile::skipto(int64 offset, int64 n)
{
    if (::lseek(descriptor, offset, SEEK_SET) < 0) ioerrno(name, "can't seek");
    begin = finish = 0;
    ended = false;
    nlines = n;
    cursorstart = cursor = lineend = nullptr;
}

// Reads on behind the unread bytes, which are first moved to the front of the buffer.
bool infile::fill()
{
    if (ended) return false;
    if (begin > 0) {
        std::memmove(buffer.data(), buffer.data() + begin, finish - begin);
        finish -= begin;
        begin = 0;
    }
    if (finish == buffer.size()) buffer.resize(2 * buffer.size(), finish);
    const std::size_t got =
        readchecked(descriptor, name, buffer.data() + finish, buffer.size() - finish);
    finish += got;
    if (got == 0) ended = true;
    return got > 0;
}

bool infile::nextrecord()
{
    haslineend = true;
    std::size_t scanned = 0; // bytes behind begin known to hold no line end
    for (;;) {
        const char *from = buffer.data() + begin + scanned;
        const std::size_t n = finish - begin - scanned;
        const void *found = n > 0 ? std::memchr(from, '\n', n) : nullptr;
        if (found) {
            cursorstart = buffer.data() + begin;
            lineend = static_cast<const char *>(found);
            begin = static_cast<std::size_t>(lineend + 1 - buffer.data());
            break;
        }
        scanned += n;
        if (fill()) continue;
        if (begin == finish) {
            cursorstart = cursor = lineend = nullptr;
            return false;
        }
        cursorstart = buffer.data() + begin; // last line without a line end
        lineend = buffer.data() + finish;
        begin = finish;
        haslineend = false;
        break;
    }
    if (lineend > cursorstart && lineend[-1] == '\r') --lineend;
    cursor = cursorstart;
    ++nlines;
    if (!haslineend && writtenby != author::user)
        complain("the file was cut: this line has no line end");
    return true;
}

void infile::record()
{
    if (!nextrecord())
        ioerror(name, "ends after line " + std::to_string(nlines) + ", more lines are needed");
}

void infile::skiprecords(int64 n)
{
    for (int64 i = 0; i < n; ++i) record();
}

void infile::stopifmore()
{
    while (nextrecord())
        if (line().find_first_not_of(" \t,") != std::string_view::npos)
            complain("the file should have ended before this line");
}

void infile::complain(std::string_view what) const
{
    ioerror(name, "line " + std::to_string(nlines) + ": " + std::string(what));
}

std::string_view infile::nextword()
{
    for (;;) {
        while (cursor != lineend && isseparator(*cursor)) ++cursor;
        if (cursor != lineend) break;
        if (writtenby == author::system && nlines > 0) complain("it has too few values");
        record();
    }
    const char *const first = cursor;
    while (cursor != lineend && !isseparator(*cursor)) ++cursor;
    return {first, static_cast<std::size_t>(cursor - first)};
}

std::string_view infile::word()
{
    return nextword();
}

int64 infile::integer()
{
    const char *p = cursor;
    while (p != lineend && isseparator(*p)) ++p;
    const char *const first = p;
    int64 digits = 0;
    for (; p != lineend && *p >= '0' && *p <= '9' && p - first < 18; ++p)
        digits = 10 * digits + (*p - '0');
    if (p != first && (p == lineend || isseparator(*p))) { // nearly always
        cursor = p;
        return digits;
    }
    const std::string_view text = nextword();
    int64 value = 0;
    if (!readinteger(text, value))
        complain("an integer is wanted, not \"" + std::string(text) + "\"");
    return value;
}

namespace
{
// As many of n reals as stand in fields F20.10 from p on; how many these are.
int64 quickreals([[maybe_unused]] const char *p, [[maybe_unused]] const char *end,
                 [[maybe_unused]] double *values, [[maybe_unused]] int64 n)
{
#ifdef __SSE2__
    static const bool iswide = __builtin_cpu_supports("avx2") != 0;
    return iswide ? widefixedreals(p, end, values, n) : fixedreals(p, end, values, n);
#else
    return 0;
#endif
}
} // namespace

double infile::anyreal()
{
    double value = 0;
    if (quickreals(cursor, lineend, &value, 1) == 1) {
        cursor += 20;
        return value;
    }
    const std::string_view text = nextword();
    if (!readreal(text, value)) complain("a number is wanted, not \"" + std::string(text) + "\"");
    return value;
}

double infile::real()
{
    const double value = anyreal();
    if (!std::isfinite(value)) complain("a finite number is wanted");
    return value;
}

double infile::fraction()
{
    const double value = real();
    if (value < 0 || value > 1) complain("a number from 0 to 1 is wanted");
    return value;
}

int64 infile::within(int64 lowest, int64 highest)
{
    const int64 value = integer();
    if (value < lowest || value > highest)
        complain("a number from " + std::to_string(lowest) + " to " + std::to_string(highest) +
                 " is wanted, not " + std::to_string(value));
    return value;
}

void infile::identifier(int64 wanted, const char *what)
{
    const int64 found = integer();
    if (found != wanted)
        complain("it is the record of " + std::string(what) + ' ' + std::to_string(found) +
                 ", that of " + std::to_string(wanted) + " is wanted");
}

void infile::skipwords(int64 n)
{
#ifdef __SSE2__
    if (lineend - cursor >= 64) {
        std::uint64_t separators = separatorsof(cursor);
        std::uint64_t at = 0; // bit from which on the record is unread
        for (; n > 0; --n) {
            const std::uint64_t word = ~separators >> at << at;
            if (word == 0) break;
            const std::uint64_t first = word & (0 - word);
            const std::uint64_t behind = separators & ~(first - 1);
            if (behind == 0) break; // the word goes on beyond the 64 bytes
            at = static_cast<std::uint64_t>(std::countr_zero(behind));
        }
        cursor += at;
    }
#endif
    for (; n > 0; --n) nextword();
}

void infile::anyreals(double *values, int64 n)
{
    for (int64 i = 0; i < n; ++i) {
        const int64 nquick = quickreals(cursor, lineend, values + i, n - i);
        cursor += 20 * nquick;
        i += nquick;
        if (i < n) values[i] = anyreal();
    }
}

void infile::reals(double *values, int64 n)
{
    anyreals(values, n);
    for (int64 i = 0; i < n; ++i)
        if (!std::isfinite(values[i])) complain("finite numbers are wanted");
}

void infile::alleles(int8 *values, int64 n)
{
    int64 i = 0;
    while (i < n) {
        // The layout of all allele files: a blank and a digit, again and again.
        const char *p = cursor;
#ifdef __SSE2__
        const __m128i blankzero = _mm_set1_epi16(0x3020); // "0" above " ", little-endian
        const __m128i limits = _mm_set1_epi16(0x0900);
        while (n - i >= 8 && lineend - p >= 17 && isseparator(p[16])) {
            const __m128i text =
                _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p)), blankzero);
            // All bytes within 0 (blank) or 0 to 9 (digit): nothing saturated away.
            if (_mm_movemask_epi8(
                    _mm_cmpeq_epi8(_mm_subs_epu8(text, limits), _mm_setzero_si128())) != 0xffff)
                break;
            const __m128i digits = _mm_srli_epi16(text, 8);
            _mm_storel_epi64(reinterpret_cast<__m128i *>(values + i),
                             _mm_packus_epi16(digits, digits));
            i += 8;
            p += 16;
        }
#endif
        while (i < n && lineend - p >= 2 && p[0] == ' ' && p[1] >= '0' && p[1] <= '9' &&
               (lineend - p == 2 || isseparator(p[2]))) {
            values[i++] = static_cast<int8>(p[1] - '0');
            p += 2;
        }
        cursor = p;
        if (i == n) return;
        const int64 value = integer(); // anything else, and the end of the record
        if (value < -128 || value > 127) complain("a genotype or allele is out of range");
        values[i++] = static_cast<int8>(value);
    }
}

void infile::alleles(int8 *values, int64 n, int8 highest)
{
    alleles(values, n);
    int64 i = 0;
    unsigned char most = 0; // a negative one counts for more than 127
#ifdef __SSE2__
    __m128i mosts = _mm_setzero_si128();
    for (; i + 16 <= n; i += 16)
        mosts = _mm_max_epu8(mosts, _mm_loadu_si128(reinterpret_cast<const __m128i *>(values + i)));
    unsigned char sixteen[16];
    _mm_storeu_si128(reinterpret_cast<__m128i *>(sixteen), mosts);
    most = *std::max_element(sixteen, sixteen + 16);
#endif
    for (; i < n; ++i) most = std::max(most, static_cast<unsigned char>(values[i]));
    if (most > highest)
        complain("an allele or genotype is out of the range 0 to " + std::to_string(highest));
}
