#include "macs/simulate.h"

#include "macs/siteoutput.h"

#include <cstdio>
#include <cstring>

namespace macs
{
void simulatechromosome(marginaltree &tree, nodeid nhaplotypes, chromosomerates &rates,
                        const sizehistory &history, randomstream &random, const listeners &told)
{
    buildtree(tree, nhaplotypes, history, random);
    rates.along.rewind();
    double position = 0;
    while (position < 1) {
        // No rate at all makes the distance infinite, which ends at the chromosome's end too.
        const double next = rates.along.positionbeyond(
            position, random.exponential() / (rates.recombination * totallength(tree)));
        const double mutationrate = rates.mutation * totallength(tree);
        for (;;) {
            position += random.exponential() / mutationrate;
            if (!(position < next)) break;
            const treepoint where = drawpoint(tree, random);
            if (told.site) told.site(tree, position, where.time, where.node);
        }
        position = next;
        if (position >= 1) break;
        const bool changed = recombine(tree, history, random);
        if (told.recombination) told.recombination(tree, position, changed);
    }
}

void writechromosomes(const macsoptions &options, int64 seed, outfile &out)
{
    const sizehistory history(options.sizechanges);
    chromosomerates rates{options.mutationrate * options.length,
                          options.recombinationrate * options.length,
                          ratesfromregions(options.regions)};
    randomstream random(seed);
    marginaltree tree;
    std::vector<nodeid> stack;
    for (int64 i = 1; i <= options.niterations; ++i) {
        sitewriter sites(out, options.nhaplotypes);
        int64 nrecombinations = 0, nchanges = 0;
        listeners told;
        told.site = [&](const marginaltree &now, double position, double age, nodeid node) {
            char *const alleles = sites.begin(position, age);
            std::memset(alleles, '0', static_cast<std::size_t>(options.nhaplotypes));
            markdescendants(now, node, alleles, stack);
            sites.end();
        };
        told.recombination = [&](const marginaltree &, double, bool changed) {
            ++nrecombinations;
            nchanges += changed;
        };
        simulatechromosome(tree, static_cast<nodeid>(options.nhaplotypes), rates, history, random,
                           told);
        sites.close();
        std::fprintf(stderr,
                     "NOTE: %lld sites, %lld recombinations of which %lld changed the tree\n",
                     static_cast<long long>(sites.nwritten()),
                     static_cast<long long>(nrecombinations), static_cast<long long>(nchanges));
    }
}
} // namespace macs
