// The reader of the specification. An input is SolvantoSpec.txt.
#include "harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    putfile("SolvantoSpec.txt", {reinterpret_cast<const char *>(data), size});
    runoptions quiet;
    quiet.quiet = true;
    orderly([&] { readinparameters(quiet); });
    return 0;
}
