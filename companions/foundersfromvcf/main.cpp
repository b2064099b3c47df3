// foundersfromvcf N L ...: founder haplotypes from a user's VCF, in the place of the coalescent
// simulator: the same command line, the same output.
#include "founders.h"
#include "macs/seed.h"

#include "programinfo.h"
#include "stops.h"

#include <cstdio>

namespace
{
const programinfo info{
    "foundersfromvcf", "founder haplotypes from a VCF in the place of macs",
    "N L -t theta [options]",
    "It stands in a run's working folder under the name macs, and takes the command line of macs: "
    "N\n"
    "haplotypes, the length L of the chromosome in bases. What else stands there (rates, sizes of\n"
    "the population, regions) is read, and has no effect but for\n"
    "\n"
    "  -s seed   draws the haplotypes, when there are more than N (the run's seed in Seed.txt)\n"
    "\n"
    "In the folder of chromosome h it reads contig h or chr<h> of Founders.vcf.gz or Founders.bcf "
    "of\n"
    "the working folder, or what Founders.txt there names, and writes its phased, biallelic sites\n"
    "to standard output in the layout of macs; docs/founders-from-vcf.md tells the rest.\n"};

// The same on all chromosomes of a run: haplotypes of one founder stay together.
int64 seedofchoice(const macs::macsoptions &options)
{
    return options.seedgiven ? options.seed : macs::seedofrun("founders");
}

void run(const std::vector<std::string> &words)
{
    outfile out;
    out.openstandardoutput();
    textline command = "COMMAND:\t";
    for (std::size_t i = 0; i < words.size(); ++i) command += (i > 0 ? " " : "") + words[i];
    out.writeline(command);
    out.flush(); // it stands there also when the run is refused
    const macs::macsoptions options = macs::readoptions({words.begin() + 1, words.end()});
    if (options.niterations != 1)
        ioerror("-i", "a file holds each chromosome once: one iteration alone can be had");
    const int64 seed = seedofchoice(options);
    out.writeline("SEED:\t" + std::to_string(seed));
    writefounders(readfoundersettings(), options, seed, out);
    out.close();
    std::fprintf(stderr, "Program is complete\n");
}
} // namespace

int main(int argc, char **argv)
{
    if (answered(info, argc, argv)) return 0;
    return runtostop([&] { run({argv, argv + argc}); });
}
