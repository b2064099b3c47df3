// The readers of pedigree prediction. An input is two files: DataFormatParameters.txt, and the pedigree with
// phenotypes.
#include "harness.h"

#include "QuillomereP/dataformat.h"
#include "QuillomereP/phenotypedpedigree.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto parts = partsof(data, size, 2);
    putfile("DataFormatParameters.txt", parts[0]);
    putfile("PedPhen.txt", parts[1]);
    orderly([] { readdataformat("DataFormatParameters.txt"); });
    orderly([] { readphenotypedpedigree("PedPhen.txt", -99); });
    return 0;
}
