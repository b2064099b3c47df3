// Regions of QTN. An input is the file of a chromosome.
#include "harness.h"

#include "markers/qtnplacement.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    putfile("QtnSpecifications/Chromosome1.txt", {reinterpret_cast<const char *>(data), size});
    orderly([] {
        constexpr int64 nsites = 240, nqtn = 20;
        smallstate s(smallsettings());
        s.random.idum = -1;
        s.sites.nsegregincl = nsites;
        s.sites.snponarrays.allocate(nsites);
        for (int64 i = 1; i <= nsites; ++i) s.sites.snponarrays(i) = i;
        array1<int8> isqtvpos(nsites);
        getqtvpositions(s, nqtn, 1, isqtvpos, 10, true);
    });
    return 0;
}
