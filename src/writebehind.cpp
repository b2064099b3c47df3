#include "writebehind.h"

#include "descriptors.h"

#include <csignal>

writebehind::writebehind(int descriptor) : file(descriptor)
{
    // Signals are for the thread that runs the programme.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        worker = std::thread([this] { work(); });
    } catch (...) {
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        throw;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

writebehind::~writebehind()
{
    {
        const std::lock_guard lock(guard);
        ended = true;
    }
    changed.notify_all();
    worker.join();
}

int writebehind::exchange(bytebuffer &buffer, std::size_t n, std::size_t ntail)
{
    std::unique_lock lock(guard);
    changed.wait(lock, [&] { return nbytes == 0; });
    if (error != 0) return error;
    other.resize(buffer.size());
    std::memcpy(other.data(), buffer.data() + n, ntail);
    std::swap(buffer, other);
    nbytes = n;
    lock.unlock();
    changed.notify_all();
    return 0;
}

int writebehind::wait()
{
    std::unique_lock lock(guard);
    changed.wait(lock, [&] { return nbytes == 0; });
    return error;
}

void writebehind::work()
{
    std::unique_lock lock(guard);
    for (;;) {
        changed.wait(lock, [&] { return nbytes > 0 || ended; });
        if (nbytes == 0) return;
        lock.unlock(); // the buffer is left alone as long as nbytes is above 0
        const int failed = writebytes(file, other.data(), nbytes);
        lock.lock();
        if (error == 0) error = failed;
        nbytes = 0;
        changed.notify_all();
    }
}
