#include "recordfile.h"

#include "stops.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

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
