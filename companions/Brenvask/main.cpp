#include "Brenvask/brenvask.h"

#include "programinfo.h"
#include "stops.h"

namespace
{
constexpr programinfo info{
    "Brenvask", "genomic relationships", "",
    "Reads BrenvaskSpec.txt of the working directory and the genotypes named there. Leaves\n"
    "  GFullMatrix1-1.txt         relationships of the candidates\n"
    "  GFullMatrixAlleleFreq.txt  allele frequencies of the cycle\n"};
} // namespace

int main(int argc, char **argv)
{
    int status = 0;
    if (answeredalone(info, argc, argv, status)) return status;
    return runtostop(brenvask);
}
