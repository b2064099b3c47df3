// The output of the coalescent simulator. An input is output.txt for four haplotypes.
#include "harness.h"

#include "Vintrecaskelle/coalescentoutput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    putfile("output.txt", {reinterpret_cast<const char *>(data), size});
    orderly([] {
        sitestore store(4);
        std::vector<int64> selected;
        readcoalescentoutput("output.txt", store, selected);
    });
    return 0;
}
