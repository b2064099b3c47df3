#include "QuillomereP/quillomerep.h"

#include "programinfo.h"
#include "stops.h"

namespace
{
constexpr programinfo info{
    "QuillomereP", "pedigree prediction", "",
    "Reads DataFormatParameters.txt of the working directory and the pedigree and phenotypes "
    "named\n"
    "there. Leaves ResultAverageEstimatedPolygenicBreedingValues.txt: animal and estimate.\n"
    "Its contract: docs/evaluation-programs.md.\n"};
} // namespace

int main(int argc, char **argv)
{
    int status = 0;
    if (answeredalone(info, argc, argv, status)) return status;
    return runtostop(quillomerep);
}
