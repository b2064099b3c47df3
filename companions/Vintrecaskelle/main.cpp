// Vintrecaskelle N - turns output.txt of the working directory, the output of the coalescent
// simulator for N haplotypes, into SegSites.txt, PhysicalMapInput.txt and MacsHaplotypes.txt.
// Ends with 0 when all three stand, otherwise with a message on standard error and none of them.
#include "haplotypefiles.h"
#include "programinfo.h"
#include "stops.h"
#include "textlayout.h"

#include <cstdio>

namespace
{
constexpr int64 mosthaplotypes = 1000000000;

constexpr programinfo info{
    "Vintrecaskelle", "founder haplotypes as plain files", "N",
    "Turns output.txt of the working directory, the output of macs for N haplotypes, into\n"
    "SegSites.txt, PhysicalMapInput.txt and MacsHaplotypes.txt.\n"};

void format(int64 nhaplotypes)
{
    removehaplotypefiles(); // those of an earlier run don't belong to this output
    sitestore store(nhaplotypes);
    std::vector<int64> selected;
    readcoalescentoutput("output.txt", store, selected);
    writehaplotypefiles(store, selected);
}
} // namespace

int main(int argc, char **argv)
{
    if (answered(info, argc, argv)) return 0;
    int64 nhaplotypes = 0;
    if (argc != 2 || !readinteger(argv[1], nhaplotypes) || nhaplotypes < 1 ||
        nhaplotypes > mosthaplotypes) {
        std::fprintf(stderr, "ERROR: wanted is the number of haplotypes: Vintrecaskelle N\n"
                             "It reads output.txt of the working directory, the standard output "
                             "of macs.\n");
        return 1;
    }
    return runtostop([&] { format(nhaplotypes); });
}
