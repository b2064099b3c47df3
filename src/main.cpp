#include "arguments.h"
#include "solvanto.h"
#include "stops.h"

int main(int argc, char **argv)
{
    const arguments given = readarguments(argc, argv);
    if (given.action == arguments::actions::done) return given.status;
    return runtostop([&] { solvanto(given.options); });
}
