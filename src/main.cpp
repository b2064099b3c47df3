#include "arguments.h"
#include "check/checkspec.h"
#include "repeathint.h"
#include "solvanto.h"
#include "stops.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <functional>

namespace
{
// A file of the run must not get the number of a standard stream that is closed.
void openstandardstreams()
{
    for (int stream = 0; stream <= 2; ++stream)
        if (fcntl(stream, F_GETFD) == -1) open("/dev/null", O_RDWR);
}

// The status of a run that came to its end; one that stopped keeps its own, and is told what failed
// before.
int tellfailures(const commandfailures &failures, int status)
{
    if (failures.count == 0) return status;
    std::fprintf(stderr, "ERROR: %s%lld commands or programs failed; the first: %s\n",
                 status == 0 ? "the run came to its end, but " : "before that ",
                 static_cast<long long>(failures.count), failures.first.c_str());
    return status == 0 ? 3 : status;
}
} // namespace

int main(int argc, char **argv)
{
    openstandardstreams();
    std::signal(SIGXFSZ, SIG_IGN); // a file beyond its limit is an error of its write
    runaccount account;
    arguments given;
    const auto body = [&] {
        given = readarguments(argc, argv);
        if (given.action == arguments::actions::run) solvanto(given.options, account);
        if (given.action == arguments::actions::check) checkspec(given.options);
    };
    int status = runtostop(std::ref(body)); // itself it would take memory, where no stop is caught
    if (given.action == arguments::actions::done) return given.status;
    if (!given.options.strict) status = tellfailures(account.failures, status);
    if (status != 0 && account.seedtaken) printrepeathint();
    return status;
}
