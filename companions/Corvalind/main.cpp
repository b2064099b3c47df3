#include "Corvalind/corvalind.h"

#include "programinfo.h"
#include "stops.h"

namespace
{
constexpr programinfo info{"Corvalind", "optimal contributions and mate allocation", "",
                           "Reads CorvalindSpec.txt and Seed.txt of the working directory, "
                           "relationships, breeding values\n"
                           "and genders. Leaves in CorvalindResults\n"
                           "  Frontier.txt         points of gain and group coancestry\n"
                           "  MatingListFinal.txt  male and female of each mating\n"};
} // namespace

int main(int argc, char **argv)
{
    int status = 0;
    if (answeredalone(info, argc, argv, status)) return status;
    return runtostop(corvalind);
}
