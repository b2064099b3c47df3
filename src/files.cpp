#include "files.h"

#include "shell.h"
#include "stops.h"

#include <bit>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace
{
constexpr std::size_t buffersize = 1 << 20;
// Full buffers are written up to a multiple of this offset in the file: pieces that end within a
// page cost the system up to half as much again.
constexpr std::size_t alignment = 1 << 16;

int openchecked(const std::string &path, int flags)
{
    int descriptor;
    do descriptor = ::open(path.c_str(), flags | O_CLOEXEC, 0666);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0)
        ioerrno(path, (flags & O_ACCMODE) == O_RDONLY ? "can't open for reading"
                                                      : "can't open for writing");
    return descriptor;
}

// Opens a file to be written on. One whose records are to be kept must be there: made empty here it
// would stand in the way of its compressed form.
int opentoextend(const std::string &path, int64 nkept)
{
    if (nkept == 0) return openchecked(path, O_RDWR | O_CREAT);
    if (!pathexists(path) && pathexists(path + ".gz"))
        ioerror(path, "was compressed by an earlier run: uncompress " + path +
                          ".gz to go on from a generation behind the first");
    return openchecked(path, O_RDWR);
}

// Bytes read, 0 at the end of the file.
std::size_t readchecked(int descriptor, const std::string &path, char *bytes, std::size_t n)
{
    ssize_t got;
    do got = ::read(descriptor, bytes, n);
    while (got < 0 && errno == EINTR);
    if (got < 0) ioerrno(path, "can't read");
    return static_cast<std::size_t>(got);
}

// Offset behind the first n line ends of an open file.
off_t offsetbehindlines(int descriptor, const std::string &path, int64 n)
{
    std::vector<char> chunk(buffersize);
    off_t offset = 0;
    int64 found = 0;
    while (found < n) {
        const std::size_t got = readchecked(descriptor, path, chunk.data(), chunk.size());
        if (got == 0)
            ioerror(path, "holds " + std::to_string(found) + " lines where " + std::to_string(n) +
                              " of earlier generations are needed");
        const char *p = chunk.data();
        const char *const end = p + got;
        while (found < n) {
            const void *lineend = std::memchr(p, '\n', static_cast<std::size_t>(end - p));
            if (!lineend) break;
            p = static_cast<const char *>(lineend) + 1;
            ++found;
        }
        offset += found < n ? static_cast<off_t>(got) : static_cast<off_t>(p - chunk.data());
    }
    return offset;
}

void cutandseek(int descriptor, const std::string &path, off_t offset)
{
    if (::ftruncate(descriptor, offset) != 0) ioerrno(path, "can't cut");
    if (::lseek(descriptor, offset, SEEK_SET) < 0) ioerrno(path, "can't seek");
}
} // namespace

// ---------------------------------------------------------------------------- outfile

outfile::outfile(outfile &&other) noexcept
{
    *this = std::move(other);
}

outfile &outfile::operator=(outfile &&other) noexcept
{
    std::swap(descriptor, other.descriptor);
    std::swap(name, other.name);
    std::swap(buffer, other.buffer);
    std::swap(used, other.used);
    std::swap(misalignment, other.misalignment);
    return *this;
}

outfile::~outfile()
{
    if (descriptor < 0) return;
    const char *p = buffer.data();
    while (used > 0) {
        const ssize_t n = ::write(descriptor, p, used);
        if (n <= 0) break;
        p += n;
        used -= static_cast<std::size_t>(n);
    }
    ::close(descriptor);
}

void outfile::open(const std::string &filename)
{
    if (isopen()) close();
    name = filename;
    descriptor = openchecked(name, O_WRONLY | O_CREAT | O_TRUNC);
    buffer.resize(buffersize);
    used = misalignment = 0;
}

void outfile::openstandardoutput()
{
    if (isopen()) close();
    name = "standard output";
    descriptor = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) ioerrno(name, "can't open for writing");
    buffer.resize(buffersize);
    used = misalignment = 0;
}

void outfile::openandkeep(const std::string &filename, int64 nlines)
{
    if (isopen()) close();
    name = filename;
    descriptor = opentoextend(name, nlines);
    buffer.resize(buffersize);
    used = 0;
    const off_t offset = offsetbehindlines(descriptor, name, nlines);
    cutandseek(descriptor, name, offset);
    misalignment = static_cast<std::size_t>(offset) % alignment;
}

void outfile::openandkeepfixed(const std::string &filename, int64 nlines, int64 recordlength,
                               int64 headerlength)
{
    if (isopen()) close();
    name = filename;
    const off_t offset = static_cast<off_t>(headerlength + nlines * recordlength);
    descriptor = opentoextend(name, offset);
    buffer.resize(buffersize);
    used = 0;
    if (offset > 0) {
        char last = 0;
        const ssize_t got = ::pread(descriptor, &last, 1, offset - 1);
        if (got < 0) ioerrno(name, "can't read");
        if (got == 0 || last != '\n')
            ioerror(name, "does not hold the " + std::to_string(nlines) +
                              " lines of earlier generations in the expected layout");
    }
    cutandseek(descriptor, name, offset);
    misalignment = static_cast<std::size_t>(offset) % alignment;
}

void outfile::writethrough(const char *bytes, std::size_t n)
{
    misalignment = (misalignment + n) % alignment;
    while (n > 0) {
        const ssize_t written = ::write(descriptor, bytes, n);
        if (written < 0) {
            if (errno == EINTR) continue;
            used = 0; // nothing more can be saved: keep the destructor from trying
            ioerrno(name, "can't write");
        }
        bytes += written;
        n -= static_cast<std::size_t>(written);
    }
}

void outfile::flush()
{
    const std::size_t n = used;
    used = 0;
    writethrough(buffer.data(), n);
}

void outfile::makeroom(std::size_t n)
{
    const std::size_t beyond = (misalignment + used) % alignment; // the last multiple
    if (beyond < used) {
        writethrough(buffer.data(), used - beyond);
        std::memmove(buffer.data(), buffer.data() + used - beyond, beyond);
        used = beyond;
    }
    if (used + n > buffer.size()) buffer.resize(used + n);
}

void outfile::write(std::string_view bytes)
{
    if (bytes.size() >= buffersize) { // large pieces go straight through
        flush();
        writethrough(bytes.data(), bytes.size());
        return;
    }
    std::memcpy(reserve(bytes.size()), bytes.data(), bytes.size());
    commit(bytes.size());
}

void outfile::writeline(textline &line)
{
    line += '\n';
    write(line);
    line.clear();
}

void outfile::writeline(textline &&line)
{
    textline copy = std::move(line);
    writeline(copy);
}

void outfile::writeline(const char *text)
{
    writeline(textline(text));
}

void outfile::close()
{
    if (descriptor < 0) return;
    flush();
    const int closing = std::exchange(descriptor, -1);
    if (::close(closing) != 0 && errno != EINTR) ioerrno(name, "can't close");
}

// ---------------------------------------------------------------------------- infile

infile::infile(infile &&other) noexcept
{
    *this = std::move(other);
}

infile &infile::operator=(infile &&other) noexcept
{
    std::swap(descriptor, other.descriptor);
    std::swap(name, other.name);
    std::swap(buffer, other.buffer); // the heap block moves along, pointers into it stay valid
    std::swap(begin, other.begin);
    std::swap(finish, other.finish);
    std::swap(ended, other.ended);
    std::swap(haslineend, other.haslineend);
    std::swap(nlines, other.nlines);
    std::swap(cursorstart, other.cursorstart);
    std::swap(cursor, other.cursor);
    std::swap(lineend, other.lineend);
    return *this;
}

void infile::open(const std::string &filename)
{
    close();
    name = filename;
    descriptor = openchecked(name, O_RDONLY);
    struct stat status {
    };
    if (::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        ioerrno(name, "can't read");
    }
    buffer.resize(buffersize);
    begin = finish = 0;
    ended = false;
    nlines = 0;
    cursorstart = cursor = lineend = nullptr;
}

void infile::close()
{
    if (descriptor >= 0) ::close(std::exchange(descriptor, -1));
}

void infile::rewind()
{
    if (::lseek(descriptor, 0, SEEK_SET) < 0) ioerrno(name, "can't rewind");
    begin = finish = 0;
    ended = false;
    nlines = 0;
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
    if (finish == buffer.size()) buffer.resize(2 * buffer.size());
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

void infile::complain(std::string_view what) const
{
    ioerror(name, "line " + std::to_string(nlines) + ": " + std::string(what));
}

namespace
{
inline bool isseparator(char c)
{
    return c == ' ' || c == '\t' || c == ',';
}
} // namespace

std::string_view infile::nextword()
{
    for (;;) {
        while (cursor != lineend && isseparator(*cursor)) ++cursor;
        if (cursor != lineend) break;
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
    const std::string_view text = nextword();
    int64 value = 0;
    if (!readinteger(text, value))
        complain("an integer is wanted, not \"" + std::string(text) + "\"");
    return value;
}

double infile::real()
{
    const std::string_view text = nextword();
    double value = 0;
    if (!readreal(text, value)) complain("a number is wanted, not \"" + std::string(text) + "\"");
    return value;
}

#ifdef __SSE2__
namespace
{
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
} // namespace
#endif

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

void infile::reals(double *values, int64 n)
{
    for (int64 i = 0; i < n; ++i) {
#ifdef __SSE2__
        const auto left = lineend - cursor;
        if (left >= 20 && (left == 20 || cursor[20] == ' ' || isseparator(cursor[20])) &&
            fixedreal(cursor, values[i])) {
            cursor += 20;
            continue;
        }
#endif
        values[i] = real();
    }
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

// ---------------------------------------------------------------------------- recordfile

void recordfile::open(const std::string &filename)
{
    close();
    name = filename;
    descriptor = openchecked(name, O_RDONLY);
    buffer.resize(buffersize / 4);
    starts.assign(1, 0);
    scanned = bufferstart = filled = 0;
    ended = false;
}

void recordfile::close()
{
    if (descriptor >= 0) ::close(std::exchange(descriptor, -1));
}

// Fills the buffer from an offset of the file on, as far as the file goes.
void recordfile::load(int64 offset)
{
    bufferstart = offset;
    filled = 0;
    while (filled < static_cast<int64>(buffer.size())) {
        const ssize_t got =
            ::pread(descriptor, buffer.data() + filled,
                    buffer.size() - static_cast<std::size_t>(filled), offset + filled);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) ioerrno(name, "can't read");
        if (got == 0) break;
        filled += got;
    }
}

void recordfile::findlineends()
{
    load(scanned);
    const char *p = buffer.data();
    const char *const end = p + filled;
    while (const void *found = std::memchr(p, '\n', static_cast<std::size_t>(end - p))) {
        p = static_cast<const char *>(found) + 1;
        starts.push_back(bufferstart + (p - buffer.data()));
    }
    scanned += filled;
    if (filled == static_cast<int64>(buffer.size())) return;
    ended = true;
    if (scanned > starts.back()) starts.push_back(scanned + 1); // as if its line end were there
}

std::string_view recordfile::line(int64 n)
{
    while (static_cast<int64>(starts.size()) <= n && !ended) findlineends();
    if (static_cast<int64>(starts.size()) <= n)
        ioerror(name, "holds " + std::to_string(starts.size() - 1) + " lines where line " +
                          std::to_string(n) + " is needed");
    const int64 start = starts[static_cast<std::size_t>(n - 1)];
    int64 length = starts[static_cast<std::size_t>(n)] - start - 1;
    if (start < bufferstart || start + length > bufferstart + filled) {
        if (length > static_cast<int64>(buffer.size()))
            buffer.resize(static_cast<std::size_t>(length));
        load(start);
        if (filled < length) ioerror(name, "was cut while it was read");
    }
    const char *const text = buffer.data() + (start - bufferstart);
    if (length > 0 && text[length - 1] == '\r') --length;
    return {text, static_cast<std::size_t>(length)};
}

// ---------------------------------------------------------------------------- framed records

framewriter::framewriter(outfile &file, int64 nbytes, int64 limit)
    : out(file), remaining(nbytes), longest(limit)
{
    beginframe();
}

void framewriter::beginframe()
{
    framelength = inframe = remaining < longest ? remaining : longest;
    const std::int32_t mark =
        static_cast<std::int32_t>(remaining > framelength ? -framelength : framelength);
    std::memcpy(out.reserve(4), &mark, 4);
    out.commit(4);
}

void framewriter::endframe()
{
    const std::int32_t mark = static_cast<std::int32_t>(first ? framelength : -framelength);
    std::memcpy(out.reserve(4), &mark, 4);
    out.commit(4);
    first = false;
}

void framewriter::put(const void *bytes, int64 n)
{
    const char *p = static_cast<const char *>(bytes);
    while (n > 0) {
        if (inframe == 0) {
            if (remaining == 0) ioerror(out.path(), "more bytes than the record was begun with");
            endframe();
            beginframe();
        }
        const int64 part = n < inframe ? n : inframe;
        out.write({p, static_cast<std::size_t>(part)});
        p += part;
        n -= part;
        inframe -= part;
        remaining -= part;
    }
}

void framewriter::finish()
{
    if (remaining != 0) ioerror(out.path(), "fewer bytes than the record was begun with");
    endframe();
}

void writeframed(outfile &out, const void *bytes, int64 nbytes)
{
    framewriter record(out, nbytes);
    record.put(bytes, nbytes);
    record.finish();
}

framereader::framereader(framereader &&other) noexcept
{
    *this = std::move(other);
}

framereader &framereader::operator=(framereader &&other) noexcept
{
    std::swap(descriptor, other.descriptor);
    std::swap(name, other.name);
    std::swap(buffer, other.buffer);
    std::swap(at, other.at);
    std::swap(filled, other.filled);
    std::swap(remaining, other.remaining);
    std::swap(inframe, other.inframe);
    std::swap(framelength, other.framelength);
    std::swap(more, other.more);
    std::swap(first, other.first);
    return *this;
}

void framereader::open(const std::string &filename)
{
    close();
    name = filename;
    descriptor = openchecked(name, O_RDONLY);
    buffer.resize(buffersize);
    at = filled = 0;
}

void framereader::close()
{
    if (descriptor >= 0) ::close(std::exchange(descriptor, -1));
}

void framereader::readbytes(char *bytes, std::size_t n)
{
    while (n > 0) {
        if (at == filled) {
            const bool direct = n >= buffer.size();
            const std::size_t got =
                direct ? readchecked(descriptor, name, bytes, n)
                       : readchecked(descriptor, name, buffer.data(), buffer.size());
            if (got == 0) ioerror(name, "ends within a binary record");
            if (direct) {
                bytes += got;
                n -= got;
                continue;
            }
            at = 0;
            filled = got;
        }
        const std::size_t part = n < filled - at ? n : filled - at;
        std::memcpy(bytes, buffer.data() + at, part);
        at += part;
        bytes += part;
        n -= part;
    }
}

std::int32_t framereader::marker()
{
    std::int32_t mark;
    readbytes(reinterpret_cast<char *>(&mark), 4);
    return mark;
}

void framereader::begin(int64 nbytes)
{
    remaining = nbytes;
    first = true;
    const int64 mark = marker();
    more = mark < 0;
    framelength = inframe = mark < 0 ? -mark : mark;
    if (more ? framelength > remaining : framelength != remaining)
        ioerror(name, "a binary record has " + std::to_string(framelength) + " bytes where " +
                          std::to_string(nbytes) + " are expected");
}

void framereader::endframe()
{
    const int64 mark = marker();
    if (mark != (first ? framelength : -framelength))
        ioerror(name, "the two lengths around a binary record differ");
    first = false;
}

void framereader::get(void *bytes, int64 n)
{
    char *p = static_cast<char *>(bytes);
    while (n > 0) {
        if (inframe == 0) {
            if (!more) ioerror(name, "a binary record is too short");
            endframe();
            const int64 mark = marker();
            more = mark < 0;
            framelength = inframe = mark < 0 ? -mark : mark;
            if (inframe == 0 || framelength > remaining) ioerror(name, "a binary record is broken");
        }
        const int64 part = n < inframe ? n : inframe;
        readbytes(p, static_cast<std::size_t>(part));
        p += part;
        n -= part;
        inframe -= part;
        remaining -= part;
    }
}

void framereader::finish()
{
    if (remaining != 0 || inframe != 0 || more)
        ioerror(name, "a binary record is longer than expected");
    endframe();
}

int64 lengthofrecord(const std::string &filename)
{
    const int descriptor = openchecked(filename, O_RDONLY);
    int64 offset = 0, nbytes = 0;
    const auto mark = [&] {
        std::int32_t length = 0;
        const bool got = ::pread(descriptor, &length, 4, offset) == 4;
        offset += 4;
        return static_cast<int64>(got ? length : 0);
    };
    bool sound = true;
    for (bool more = true; more && sound;) {
        const int64 leading = mark(), n = std::abs(leading);
        offset += n;
        nbytes += n;
        sound = std::abs(mark()) == n;
        more = leading < 0;
    }
    struct stat status {
    };
    const bool whole = ::fstat(descriptor, &status) == 0 && status.st_size == offset;
    ::close(descriptor);
    if (!sound || !whole) ioerror(filename, "does not hold one whole binary record");
    return nbytes;
}

bool samecontent(const std::string &filename1, const std::string &filename2)
{
    const int descriptors[2] = {openchecked(filename1, O_RDONLY), openchecked(filename2, O_RDONLY)};
    std::vector<char> chunks[2] = {std::vector<char>(buffersize), std::vector<char>(buffersize)};
    const auto fillchunk = [&](int i) {
        std::size_t n = 0;
        while (n < buffersize) {
            const std::size_t got = readchecked(descriptors[i], i == 0 ? filename1 : filename2,
                                                chunks[i].data() + n, buffersize - n);
            if (got == 0) break;
            n += got;
        }
        return n;
    };
    bool same = true;
    for (std::size_t n = buffersize; same && n == buffersize;) {
        n = fillchunk(0);
        same = fillchunk(1) == n && std::memcmp(chunks[0].data(), chunks[1].data(), n) == 0;
    }
    for (const int descriptor : descriptors) ::close(descriptor);
    return same;
}
