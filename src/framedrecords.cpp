#include "framedrecords.h"

#include "stops.h"

#include <cassert>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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
    assert(n >= 0);
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

void framereader::open(const std::string &filename, std::size_t bytesatatime)
{
    close();
    name = filename;
    descriptor = openchecked(name, O_RDONLY);
    buffer.resize(bytesatatime);
    at = filled = 0;
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

void framereader::nextframe()
{
    if (!more) ioerror(name, "a binary record is too short");
    endframe();
    const int64 mark = marker();
    more = mark < 0;
    framelength = inframe = mark < 0 ? -mark : mark;
    if (inframe == 0 || framelength > remaining) ioerror(name, "a binary record is broken");
}

void framereader::skipbytes(std::size_t n)
{
    const std::size_t buffered = n < filled - at ? n : filled - at;
    at += buffered;
    if (n > buffered && ::lseek(descriptor, static_cast<off_t>(n - buffered), SEEK_CUR) < 0)
        ioerrno(name, "can't go on in the file");
}

void framereader::skip(int64 n)
{
    while (n > 0) {
        if (inframe == 0) nextframe();
        const int64 part = n < inframe ? n : inframe;
        skipbytes(static_cast<std::size_t>(part));
        n -= part;
        inframe -= part;
        remaining -= part;
    }
}

void framereader::get(void *bytes, int64 n)
{
    char *p = static_cast<char *>(bytes);
    while (n > 0) {
        if (inframe == 0) nextframe();
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

void framereader::stopifmore()
{
    char byte;
    if (at < filled || readchecked(descriptor, name, &byte, 1) > 0)
        ioerror(name, "goes on where it should end");
}

int64 framereader::recordlength() const
{
    int64 offset = 0, nbytes = 0;
    const auto mark = [&] {
        std::int32_t length = 0;
        const bool got = ::pread(descriptor, &length, 4, offset) == 4;
        offset += 4;
        return static_cast<int64>(got ? length : 0);
    };
    bool sound = true;
    for (bool goeson = true; goeson && sound;) {
        const int64 leading = mark(), n = std::abs(leading);
        offset += n;
        nbytes += n;
        sound = std::abs(mark()) == n;
        goeson = leading < 0;
    }
    struct stat status {
    };
    const bool whole = ::fstat(descriptor, &status) == 0 && status.st_size == offset;
    if (!sound || !whole) ioerror(name, "does not hold one whole binary record");
    return nbytes;
}
