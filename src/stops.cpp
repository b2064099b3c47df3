#include "stops.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

void stopwithcode(int64 code)
{
    std::fflush(stdout);
    stopped stop;
    stop.kind = stopped::kinds::withcode;
    stop.code = code;
    throw stop;
}

void plainstop(int status)
{
    std::fflush(stdout);
    stopped stop;
    stop.status = status;
    throw stop;
}

void ioerror(std::string_view path, std::string_view reason)
{
    std::fflush(stdout);
    stopped stop;
    stop.kind = stopped::kinds::ioerror;
    stop.reason = std::string(path) + ": " + std::string(reason);
    throw stop;
}

void ioerrno(std::string_view path, std::string_view doing)
{
    const int error = errno;
    ioerror(path, std::string(doing) + ": " + std::strerror(error));
}

int reportstop(const stopped &stop)
{
    if (stop.kind == stopped::kinds::ioerror) {
        std::fprintf(stderr, "ERROR: %s\n", stop.reason.c_str());
        return 2;
    }
    if (stop.kind == stopped::kinds::plain) return stop.status;
    std::fprintf(stderr, "STOP %lld\n", static_cast<long long>(stop.code));
    const int status = static_cast<int>(stop.code % 256);
    return status == 0 ? 1 : status;
}

int runtostop(const std::function<void()> &body)
{
    int status = 0;
    try {
        body();
    } catch (const stopped &stop) {
        status = reportstop(stop);
    } catch (const std::bad_alloc &) {
        std::fflush(stdout);
        std::fprintf(stderr, "ERROR: out of memory\n");
        status = 2;
    }
    // Where an earlier write failed, nothing may be left to flush, and errno is of something else.
    const bool failsnow = std::fflush(stdout) != 0;
    const int error = errno;
    if (failsnow || std::ferror(stdout)) {
        std::fprintf(stderr, "ERROR: standard output: %s\n",
                     failsnow ? std::strerror(error) : "could not be written");
        if (status == 0) status = 2;
    }
    return status;
}
