#include "check/machinespeed.h"

#include "randomnumbers.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char **environ;

namespace
{
using clock = std::chrono::steady_clock;

template <class Work> double seconds(const Work &work)
{
    const auto begin = clock::now();
    work();
    return std::chrono::duration<double>(clock::now() - begin).count();
}

// Of five trials the second quickest, by unit: what else runs at present counts, a pause doesn't.
template <class Work> double secondoffive(double nunits, const Work &work)
{
    double trials[5];
    for (double &trial : trials) trial = seconds(work);
    std::nth_element(trials, trials + 1, trials + 5);
    return trials[1] / nunits;
}

double measuredraws()
{
    constexpr int ndraws = 200000;
    randomstream stream = firststream(-1);
    double sum = 0;
    const double result = secondoffive(ndraws, [&] {
        for (int k = 0; k < ndraws; ++k) sum += ran1(stream);
    });
    return sum < 0 ? 0 : result; // the sum keeps the draws from being left out
}

// A file in memory costs what the system's cache of files costs a run.
double measurewrites()
{
    constexpr std::size_t nbytes = 8 << 20, piece = 1 << 20;
    const std::vector<char> text(piece, '0');
    return secondoffive(nbytes, [&] {
        const int file = memfd_create("solvanto", MFD_CLOEXEC);
        if (file < 0) return;
        for (std::size_t done = 0; done < nbytes; done += piece)
            if (write(file, text.data(), piece) < 0) break;
        close(file);
    });
}

double measurestarts()
{
    char name[] = "true";
    char *const arguments[] = {name, nullptr};
    return secondoffive(1, [&] {
        pid_t child = 0;
        if (posix_spawn(&child, "/bin/true", nullptr, nullptr, arguments, environ) == 0)
            waitpid(child, nullptr, 0);
    });
}
} // namespace

machinespeed measuremachine()
{
    return {measuredraws(), measurewrites(), measurestarts()};
}
