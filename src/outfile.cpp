#include "outfile.h"

#include "shell.h"
#include "stops.h"
#include "writebehind.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace
{
// Full buffers are written up to a multiple of this offset in the file: pieces that end within a
// page cost the system up to half as much again.
constexpr std::size_t alignment = 1 << 16;

// Opens a file to be written on. One whose records are to be kept must be there: made empty here it
// would stand in the way of its compressed form.
filedescriptor opentoextend(const std::string &path, int64 nkept, int flags = O_RDWR)
{
    if (nkept == 0) return openchecked(path, O_RDWR | O_CREAT);
    if (!pathexists(path) && pathexists(path + ".gz"))
        ioerror(path, "was compressed by an earlier run: uncompress " + path +
                          ".gz to go on from a generation behind the first");
    return openchecked(path, flags);
}

// Offset behind the first n line ends of an open file. starts: where its last records begin.
struct recordstarts {
    int64 nrecords = 1;
    off_t first = 0, last = 0;
};
off_t offsetbehindlines(int descriptor, const std::string &path, int64 n, recordstarts &starts)
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
            if (found == n - starts.nrecords) starts.first = offset + (p - chunk.data());
            if (found == n - 1) starts.last = offset + (p - chunk.data());
        }
        offset += found < n ? static_cast<off_t>(got) : static_cast<off_t>(p - chunk.data());
    }
    return offset;
}
// Record n of an open file, which begins at an offset, must be the one expected.
void checkkeptrecord(int descriptor, const std::string &path, int64 n, off_t start,
                     const keptrecords &wanted)
{
    constexpr std::size_t longest = 200; // the first words lie within
    char text[longest];
    const ssize_t got = ::pread(descriptor, text, longest, start);
    if (got < 0) ioerrno(path, "can't read");
    std::string_view rest(text, static_cast<std::size_t>(got));
    rest = rest.substr(0, rest.find('\n'));
    for (const int64 wantednumber : wanted.numbers) {
        rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
        const std::string_view word = rest.substr(0, rest.find(' '));
        rest.remove_prefix(word.size());
        int64 number = 0;
        if (wantednumber != 0 && (!readinteger(word, number) || number != wantednumber))
            ioerror(path, "line " + std::to_string(n) + ": it is the record of \"" +
                              std::string(word) + "\", that of " + std::to_string(wantednumber) +
                              " is wanted, the last of earlier generations");
    }
}

// Offset behind the first n lines of an open file, the last of which must be those expected there.
off_t offsetbehindkept(int descriptor, const std::string &path, int64 nlines,
                       const keptrecords &last)
{
    recordstarts starts{last.nrecords};
    const off_t offset = offsetbehindlines(descriptor, path, nlines, starts);
    if (nlines > 0) {
        checkkeptrecord(descriptor, path, nlines - last.nrecords + 1, starts.first, last);
        checkkeptrecord(descriptor, path, nlines, starts.last, last);
    }
    return offset;
}
} // namespace

namespace
{
// The line end before the place from which a file of fixed lines goes on.
void checklineend(int descriptor, const std::string &name, int64 nlines, off_t offset)
{
    if (offset == 0) return;
    char last = 0;
    const ssize_t got = ::pread(descriptor, &last, 1, offset - 1);
    if (got < 0) ioerrno(name, "can't read");
    if (got == 0 || last != '\n')
        ioerror(name, "does not hold the " + std::to_string(nlines) +
                          " lines of earlier generations in the expected layout");
}
} // namespace

outfile::outfile() = default;

outfile::outfile(const std::string &filename)
{
    open(filename);
}

outfile::outfile(outfile &&other) noexcept
{
    *this = std::move(other);
}

outfile &outfile::operator=(outfile &&other) noexcept
{
    std::swap(descriptor, other.descriptor);
    std::swap(name, other.name);
    std::swap(buffer, other.buffer);
    std::swap(behind, other.behind);
    std::swap(nfull, other.nfull);
    std::swap(used, other.used);
    std::swap(start, other.start);
    std::swap(nwritten, other.nwritten);
    std::swap(marks, other.marks);
    std::swap(nrecords, other.nrecords);
    return *this;
}

outfile::~outfile()
{
    if (isopen() && (!behind || behind->wait() == 0)) writebytes(descriptor, buffer.data(), used);
    behind.reset(); // before the file is closed
}

// Closes the file before, and has all ready for one that is to be opened.
void outfile::beginfile(const std::string &filename)
{
    close();
    name = filename;
    buffer.resize(buffersize);
    used = 0;
    start = nwritten = 0;
    nfull = 0;
    marks = nullptr;
}

// Drops what stands behind the offset.
void outfile::goonfrom(off_t offset)
{
    if (::ftruncate(descriptor, offset) != 0) ioerrno(name, "can't cut");
    if (::lseek(descriptor, offset, SEEK_SET) < 0) ioerrno(name, "can't seek");
    start = offset;
}

void outfile::open(const std::string &filename)
{
    beginfile(filename);
    descriptor = openchecked(name, O_WRONLY | O_CREAT | O_TRUNC);
}

void outfile::openstandardoutput()
{
    beginfile("standard output");
    descriptor = filedescriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0));
    if (!isopen()) ioerrno(name, "can't open for writing");
}

void outfile::openandkeep(const std::string &filename, int64 nlines, keptrecords last,
                          filemarks *known)
{
    beginfile(filename);
    descriptor = opentoextend(name, nlines);
    int64 offset = known ? known->behind(name, nlines) : -1;
    if (offset >= 0)
        checklineend(descriptor, name, nlines, offset);
    else
        offset = offsetbehindkept(descriptor, name, nlines, last);
    goonfrom(offset);
    marks = known;
    nrecords = nlines;
    if (marks) marks->set(name, nlines, offset);
}

void outfile::openover(const std::string &filename, int64 offset)
{
    beginfile(filename);
    descriptor = openchecked(name, O_WRONLY);
    if (::lseek(descriptor, offset, SEEK_SET) < 0) ioerrno(name, "can't seek");
    start = offset;
}

void checkkept(const std::string &filename, int64 nlines, keptrecords last)
{
    if (nlines > 0)
        offsetbehindkept(opentoextend(filename, nlines, O_RDONLY), filename, nlines, last);
}

void checkkeptfixed(const std::string &filename, int64 nlines, int64 recordlength,
                    int64 headerlength)
{
    const off_t offset = static_cast<off_t>(headerlength + nlines * recordlength);
    if (offset > 0)
        checklineend(opentoextend(filename, offset, O_RDONLY), filename, nlines, offset);
}

void outfile::openandkeepfixed(const std::string &filename, int64 nlines, int64 recordlength,
                               int64 headerlength, keptrecords last)
{
    beginfile(filename);
    const off_t offset = static_cast<off_t>(headerlength + nlines * recordlength);
    descriptor = opentoextend(name, offset);
    checklineend(descriptor, name, nlines, offset);
    if (nlines > 0)
        for (const int64 back : {last.nrecords, int64{1}})
            checkkeptrecord(descriptor, name, nlines - back + 1 + (headerlength > 0 ? 1 : 0),
                            offset - static_cast<off_t>(back * recordlength), last);
    goonfrom(offset);
}

// Nothing more can be saved: the destructor doesn't try.
void outfile::failed(int error)
{
    used = 0;
    errno = error;
    ioerrno(name, "can't write");
}

void outfile::countwritten(const char *bytes, std::size_t n)
{
    nwritten += static_cast<int64>(n);
    if (marks) nrecords += std::count(bytes, bytes + n, '\n');
}

void outfile::writethrough(const char *bytes, std::size_t n)
{
    countwritten(bytes, n);
    int error = behind ? behind->wait() : 0;
    if (error == 0) error = writebytes(descriptor, bytes, n);
    if (error != 0) failed(error);
}

void outfile::flush()
{
    const std::size_t n = used;
    used = 0;
    writethrough(buffer.data(), n);
}

// A thread costs less than the second buffer that it writes, and is thought of only then. Where none
// can be had the file does without.
void outfile::beginbehind()
{
    if (++nfull != 2 || commandsatonce() == 1) return;
    try {
        behind = std::make_unique<writebehind>(descriptor);
    } catch (const std::system_error &) {
    }
}

// Writes the first n bytes of the buffer; what stands behind them moves to its front.
void outfile::writefull(std::size_t n)
{
    beginbehind();
    const std::size_t ntail = used - n;
    if (behind) {
        countwritten(buffer.data(), n);
        if (const int error = behind->exchange(buffer, n, ntail)) failed(error);
    } else {
        writethrough(buffer.data(), n);
        std::memmove(buffer.data(), buffer.data() + n, ntail);
    }
    used = ntail;
}

void outfile::makeroom(std::size_t n)
{
    const std::size_t beyond = static_cast<std::size_t>(position()) % alignment;
    if (beyond < used) writefull(used - beyond);
    if (used + n > buffer.size()) buffer.resize(used + n, used);
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
    if (!isopen()) return;
    flush();
    behind.reset();
    if (marks) marks->set(name, nrecords, position());
    if (::close(descriptor.release()) != 0 && errno != EINTR) ioerrno(name, "can't close");
}
