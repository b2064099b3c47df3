#include "descriptors.h"

#include "stops.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

void filedescriptor::close()
{
    if (isopen()) ::close(release());
}

filedescriptor openchecked(const std::string &path, int flags)
{
    int descriptor;
    // O_NONBLOCK: a pipe in a file's place doesn't wait for another process.
    do descriptor = ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0666);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0)
        ioerrno(path, (flags & O_ACCMODE) == O_RDONLY ? "can't open for reading"
                                                      : "can't open for writing");
    filedescriptor opened(descriptor);
    struct stat file {
    };
    if (fstat(descriptor, &file) == 0 && (S_ISFIFO(file.st_mode) || S_ISSOCK(file.st_mode)))
        ioerror(path, "is a pipe, and a file is wanted");
    return opened;
}

std::size_t readchecked(int descriptor, const std::string &path, char *bytes, std::size_t n)
{
    ssize_t got;
    do got = ::read(descriptor, bytes, n);
    while (got < 0 && errno == EINTR);
    if (got < 0) ioerrno(path, "can't read");
    return static_cast<std::size_t>(got);
}

int writebytes(int descriptor, const char *bytes, std::size_t n)
{
    while (n > 0) {
        const ssize_t written = ::write(descriptor, bytes, n);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return written < 0 ? errno : ENOSPC;
        bytes += written;
        n -= static_cast<std::size_t>(written);
    }
    return 0;
}
