// A coalescent simulator of one population for founder haplotypes: macs N L -t theta -r rho ...
// Standard output: the command line, the seed, the sites. Standard error: notes and refusals.

#include "macs/seed.h"
#include "macs/simulate.h"

#include "programinfo.h"
#include "stops.h"

#include <cstdio>

namespace
{
void runmacs(const std::vector<std::string> &words)
{
    outfile out;
    out.openstandardoutput();
    textline command = "COMMAND:\t";
    for (std::size_t i = 0; i < words.size(); ++i) command += (i > 0 ? " " : "") + words[i];
    out.writeline(command);
    out.flush(); // it stands there also when the run is refused
    const macs::macsoptions options = macs::readoptions({words.begin() + 1, words.end()});
    const int64 seed = options.seedgiven ? options.seed : macs::defaultseed();
    out.writeline("SEED:\t" + std::to_string(seed));
    macs::writechromosomes(options, seed, out);
    out.close();
    std::fprintf(stderr, "Program is complete\n");
}
} // namespace

int main(int argc, char **argv)
{
    return runtostop([&] { // the text of the usage takes memory, which may be missing
        const std::string details = macs::usage() +
                                    "It writes the sites and haplotypes to standard "
                                    "output; docs/macs.md tells the layout.\n";
        const programinfo info{"macs", "coalescent simulator of founder haplotypes",
                               "N L -t theta [options]", details.c_str()};
        if (!answered(info, argc, argv)) runmacs({argv, argv + argc});
    });
}
