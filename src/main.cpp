#include "arguments.h"
#include "repeathint.h"
#include "solvanto.h"
#include "stops.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>

namespace
{
// A file of the run must not get the number of a standard stream that is closed.
void openstandardstreams()
{
    for (int stream = 0; stream <= 2; ++stream)
        if (fcntl(stream, F_GETFD) == -1) open("/dev/null", O_RDWR);
}

int tellfailures(const commandfailures &failures)
{
    if (failures.count == 0) return 0;
    std::fprintf(stderr,
                 "ERROR: the run came to its end, but %lld commands or programs failed; the first: "
                 "%s\n",
                 static_cast<long long>(failures.count), failures.first.c_str());
    return 3;
}
} // namespace

int main(int argc, char **argv)
{
    openstandardstreams();
    std::signal(SIGXFSZ, SIG_IGN); // a file beyond its limit is an error of its write
    runaccount account;
    arguments given;
    int status = runtostop([&] {
        given = readarguments(argc, argv);
        if (given.action == arguments::actions::run) solvanto(given.options, account);
    });
    if (given.action == arguments::actions::done) return given.status;
    if (status == 0) status = tellfailures(account.failures);
    if (status != 0 && account.seedtaken) printrepeathint();
    return status;
}
