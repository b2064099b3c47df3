#include "runlock.h"

#include "infile.h"
#include "shell.h"
#include "stops.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>

namespace
{
// The process that holds a lock of the file, as the kernel lists it; empty where it can't be told.
std::string holderof(int descriptor)
{
    constexpr const char *locks = "/proc/locks";
    struct stat file {
    };
    if (fstat(descriptor, &file) != 0 || !pathexists(locks)) return "";
    const std::string inode = ':' + std::to_string(file.st_ino);
    infile in(locks);
    while (in.nextrecord()) {
        // number: FLOCK ADVISORY WRITE process device:inode first last
        std::string words[6];
        for (std::string &word : words) word = in.word();
        if (words[1] == "FLOCK" && words[5].ends_with(inode)) return words[4];
    }
    return "";
}

void warnofnolock(const runoptions &options, const std::string &path, int error)
{
    warn(options, path, 0,
         std::string("can't be locked: ") + std::strerror(error) +
             "; the run goes on, and nothing keeps a second one from working in this folder");
}

// how: LOCK_EX, or LOCK_SH among those who only read.
filedescriptor lockfile(const runoptions &options, const std::string &path, int how)
{
    // Without O_CLOEXEC: the programs that the run starts hold it too.
    filedescriptor lock(open(path.c_str(), O_RDONLY | O_NONBLOCK));
    if (!lock.isopen()) {
        if (errno != ENOENT) warnofnolock(options, path, errno);
        return lock;
    }
    // What a killed run has started ends with it, but a moment later.
    constexpr int ntries = 20;
    for (int k = 1; k <= ntries; ++k) {
        if (flock(lock, how | LOCK_NB) == 0) return lock;
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) {
            warnofnolock(options, path, errno);
            return lock;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    const std::string holder = holderof(lock);
    ioerror(path, "another run works in the folder " + workingdirectory() +
                      (holder.empty() ? "" : ": process " + holder) +
                      "; wait for its end, or use a folder of your own");
}
} // namespace

filedescriptor lockrun(const runoptions &options, const std::string &path)
{
    return lockfile(options, path, LOCK_EX);
}

filedescriptor lockreading(const runoptions &options, const std::string &path)
{
    return lockfile(options, path, LOCK_SH);
}
