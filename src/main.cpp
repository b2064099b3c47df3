#include "arguments.h"
#include "repeathint.h"
#include "solvanto.h"
#include "stops.h"

int main(int argc, char **argv)
{
    const arguments given = readarguments(argc, argv);
    if (given.action == arguments::actions::done) return given.status;
    bool seedtaken = false;
    const int status = runtostop([&] { solvanto(given.options, seedtaken); });
    if (status != 0 && seedtaken) printrepeathint();
    return status;
}
