// Recombination regions: of a user, for the coalescent and for the gene drops, and those that macs gets.
// An input is two files.
#include "harness.h"

#include "founders/runmacs.h"
#include "founders/stores.h"
#include "haplotypes/recombmap.h"
#include "macs/recombinationrates.h"

namespace
{
constexpr int64 nblocks = 4;

bool writemap()
{
    std::string map;
    for (int64 i = 1; i <= 60 * nblocks; ++i)
        map += std::to_string(i) + " " + std::to_string(i) + " " +
               std::to_string(static_cast<double>(i) / (60.0 * nblocks)) + " 0 0\n";
    putfile(includedmapfile(1), map);
    return true;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto parts = partsof(data, size, 2);
    static const bool mapstands = writemap();
    if (!mapstands) return 0;
    putfile("RecombinationSpecifications/Chromosome1.txt", parts[0]);
    putfile("Hotspots.txt", parts[1]);
    orderly([] { readrecombspecformacs(1); });
    orderly([] {
        smallstate s(smallsettings());
        s.haplo.nblock = nblocks;
        s.haplo.recombfactperblock.allocate(nblocks);
        readrecombspec(s, 1);
    });
    orderly([] { macs::ratesfromregions(macs::readregions("Hotspots.txt")); });
    return 0;
}
