// The readers of genomic relationships. An input is two files: the specification, and genotypes of four SNP.
#include "harness.h"

#include "Brenvask/brenvaskspec.h"
#include "Brenvask/genotypefile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto parts = partsof(data, size, 2);
    putfile("BrenvaskSpec.txt", parts[0]);
    putfile("Genotypes.txt", parts[1]);
    orderly([] { readbrenvaskspec("BrenvaskSpec.txt"); });
    orderly([] { readgenotypefile("Genotypes.txt", 4); });
    return 0;
}
