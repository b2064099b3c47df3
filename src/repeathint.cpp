#include "repeathint.h"

#include <csignal>
#include <initializer_list>
#include <string_view>

#include <unistd.h>

namespace
{
constexpr std::string_view hint =
    "To repeat this run with the same random numbers: cp SeedOld.txt Seed.txt\n";

// Only what a signal handler may do.
void sayandend(int signal)
{
    [[maybe_unused]] ssize_t written = write(STDERR_FILENO, hint.data(), hint.size());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}
} // namespace

void hintonsignals()
{
    // A run in the background of a shell ignores interrupts, and goes on to do so.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGXCPU})
        if (std::signal(signal, sayandend) == SIG_IGN) std::signal(signal, SIG_IGN);
}

void printrepeathint()
{
    [[maybe_unused]] ssize_t written = write(STDERR_FILENO, hint.data(), hint.size());
}
