#include "macs/options.h"

#include "stops.h"
#include "textlayout.h"

#include <cmath>
#include <cstdio>
#include <set>
#include <string_view>

namespace macs
{
std::string usage()
{
    return "Usage: macs N L -t theta [-r rho] [-eN time size]... [-R file] [-s seed] [-h 1] "
           "[-i iterations]\n"
           "  N              number of haplotypes, 2 or more\n"
           "  L              length of the chromosome in bases\n"
           "  -t theta       mutation rate per base, times 4 N0\n"
           "  -r rho         recombination rate per base, times 4 N0 (0)\n"
           "  -eN time size  from time on (in 4 N0 generations back) the population has size "
           "times N0\n"
           "  -R file        regions of other recombination rates: start, stop, ratio; start and "
           "stop from 0 to 1\n"
           "  -s seed        an integer (from ../../Seed.txt and the folder's name, or at random)\n"
           "  -h 1           number of bases over which trees are kept: only 1\n"
           "  -i iterations  number of chromosomes (1)\n";
}

namespace
{
[[noreturn]] void refuse(const std::string &reason)
{
    std::fprintf(stderr, "ERROR: %s\n", reason.c_str());
    std::fputs(usage().c_str(), stdout);
    plainstop(1);
}

// Options that stand for something this program does not simulate or write.
struct unsupported {
    std::string_view option, meaning;
};
constexpr unsupported unsupportedoptions[] = {
    {"-d", "debugging messages"},
    {"-T", "trees"},
    {"-F", "ascertainment by allele frequencies"},
    {"-c", "gene conversion"},
    {"-I", "several populations"},
    {"-n", "sizes of several populations"},
    {"-en", "sizes of several populations"},
    {"-m", "migration"},
    {"-M", "migration"},
    {"-ma", "migration"},
    {"-em", "migration"},
    {"-eM", "migration"},
    {"-ema", "migration"},
    {"-es", "population splits"},
    {"-ej", "population joins"},
    {"-g", "growth"},
    {"-G", "growth"},
    {"-eg", "growth"},
    {"-eG", "growth"},
};

struct wordreader {
    const std::vector<std::string> &words;
    std::size_t at = 0;

    bool ended() const { return at == words.size(); }
    const std::string &next(const std::string &wanted)
    {
        if (ended()) refuse(wanted + " is missing");
        return words[at++];
    }
    int64 integer(const std::string &wanted)
    {
        const std::string &word = next(wanted);
        int64 value = 0;
        if (!readinteger(word, value)) refuse(wanted + " must be an integer, not \"" + word + "\"");
        return value;
    }
    double real(const std::string &wanted)
    {
        const std::string &word = next(wanted);
        double value = 0;
        if (!readreal(word, value) || !std::isfinite(value))
            refuse(wanted + " must be a number, not \"" + word + "\"");
        return value;
    }
    double rate(const std::string &wanted)
    {
        const double value = real(wanted);
        if (value < 0) refuse(wanted + " must not be negative");
        return value;
    }
};

constexpr int64 mosthaplotypes = 100000000; // node numbers have 32 bits

void readsizes(wordreader &in, macsoptions &options)
{
    options.nhaplotypes = in.integer("N, the number of haplotypes,");
    if (options.nhaplotypes < 2) refuse("N, the number of haplotypes, must be 2 or more");
    if (options.nhaplotypes > mosthaplotypes)
        refuse("N, the number of haplotypes, must be " + std::to_string(mosthaplotypes) +
               " or less");
    options.length = in.real("L, the length of the chromosome in bases,");
    if (!(options.length > 0)) refuse("L, the length of the chromosome in bases, must be positive");
}

void readsizechange(wordreader &in, macsoptions &options)
{
    sizechange change;
    change.time = in.rate("the time of -eN");
    change.size = in.real("the size of -eN");
    if (!(change.size > 0)) refuse("the size of -eN must be positive");
    for (const sizechange &other : options.sizechanges)
        if (other.time == change.time)
            refuse("two -eN options change the size at one time, " + in.words[in.at - 2]);
    options.sizechanges.push_back(change);
}

void readoption(wordreader &in, const std::string &option, macsoptions &options)
{
    if (option == "-t") {
        options.mutationrate = in.rate("the mutation rate of -t");
    } else if (option == "-r") {
        options.recombinationrate = in.rate("the recombination rate of -r");
    } else if (option == "-eN") {
        readsizechange(in, options);
    } else if (option == "-R") {
        options.regions = readregions(in.next("the file of -R"));
    } else if (option == "-s") {
        options.seed = in.integer("the seed of -s");
        options.seedgiven = true;
    } else if (option == "-h") {
        if (in.integer("the number of bases of -h") != 1)
            refuse("-h: trees are kept over 1 base, no other number can be had");
    } else if (option == "-i") {
        options.niterations = in.integer("the number of iterations of -i");
        if (options.niterations < 1) refuse("the number of iterations of -i must be 1 or more");
    } else {
        for (const unsupported &u : unsupportedoptions)
            if (option == u.option)
                refuse("option " + option + ": " + std::string(u.meaning) +
                       " can't be had from this program");
        refuse("\"" + option + "\" is no option");
    }
}
} // namespace

macsoptions readoptions(const std::vector<std::string> &words)
{
    macsoptions options;
    wordreader in{words};
    readsizes(in, options);
    std::set<std::string> seen;
    while (!in.ended()) {
        const std::string &option = in.next("an option");
        if (!seen.insert(option).second && option != "-eN") refuse(option + " is given twice");
        readoption(in, option, options);
    }
    if (!seen.contains("-t")) refuse("-t is missing: without a mutation rate no site arises");
    return options;
}
} // namespace macs
