#include "Quillomere/quillomere.h"

#include "programinfo.h"
#include "stops.h"

namespace
{
constexpr programinfo info{
    "Quillomere", "genomic prediction", "",
    "Reads QuillomereSpec.txt of the working directory and the files named there. Leaves\n"
    "  Ebv.txt                estimates of the test individuals\n"
    "  SnpSolutions.txt       solutions of the SNP\n"
    "  AlleleFreq.txt         frequencies in training\n"
    "  TbvEbvCorrelation.txt  correlation of true and estimated values\n"
    "Its contract: docs/evaluation-programs.md.\n"};
} // namespace

int main(int argc, char **argv)
{
    int status = 0;
    if (answeredalone(info, argc, argv, status)) return status;
    return runtostop(quillomere);
}
