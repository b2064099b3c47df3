// Founders from a user's files. An input is two files: Founders.txt, and the VCF with contig 1, of which
// four haplotypes are taken from 1,000 bases; defects are left out where the first file is empty.
#include "harness.h"

#include "foundersfromvcf/founders.h"

#include <filesystem>

namespace
{
// The program stands in the folder of a chromosome.
void enterchromosome()
{
    const char *folder = "run/Chromosomes/Chromosome1";
    std::filesystem::create_directories(folder);
    std::filesystem::current_path(folder);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    [[maybe_unused]] static const bool entered = (enterchromosome(), true);
    const auto parts = partsof(data, size, 2);
    putfile("../../Founders.txt", parts[0]);
    // The file that it names isn't opened: it may be any.
    orderly([] { readfoundersettings(); });
    putfile("founders.vcf", parts[1]);
    orderly([&] {
        founderfile settings;
        settings.file = "founders.vcf";
        settings.chrom = 1;
        settings.skip = parts[0].empty();
        outfile out("output.txt");
        writefounders(settings, macs::readoptions({"4", "1000", "-t", "0.1"}), 7, out);
    });
    return 0;
}
