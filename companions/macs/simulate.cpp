#include "macs/simulate.h"

#include "textlayout.h"

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

namespace
{
struct sitewriter {
    outfile &out;
    textline head;
    std::vector<nodeid> stack;
    int64 nsites = 0;

    void write(const marginaltree &tree, double position, double age, nodeid node)
    {
        head = "SITE:\t";
        puti(head, nsites++, 0);
        head += '\t';
        putg(head, position, 15, 12);
        head += '\t';
        putg(head, age, 15, 9);
        head += '\t';
        const auto n = static_cast<std::size_t>(tree.nhaplotypes);
        char *const line = out.reserve(head.size() + n + 1);
        char *const alleles = line + head.size();
        std::memcpy(line, head.data(), head.size());
        std::memset(alleles, '0', n);
        markdescendants(tree, node, alleles, stack);
        alleles[n] = '\n';
        out.commit(head.size() + n + 1);
    }

    // All sites are selected: nothing here chooses among them.
    void close(int64 nhaplotypes)
    {
        if (nsites == 0) return;
        out.write("TOTAL_SAMPLES:\t" + std::to_string(nhaplotypes) + "\nTOTAL_SITES:\t" +
                  std::to_string(nsites) + "\nBEGIN_SELECTED_SITES\n");
        for (int64 i = 0; i < nsites; ++i) {
            head = i > 0 ? "\t" : "";
            puti(head, i, 0);
            out.write(head);
        }
        out.write("\nEND_SELECTED_SITES\n");
    }
};
} // namespace

void writechromosomes(const macsoptions &options, int64 seed, outfile &out)
{
    const sizehistory history(options.sizechanges);
    chromosomerates rates{options.mutationrate * options.length,
                          options.recombinationrate * options.length,
                          ratesfromregions(options.regions)};
    randomstream random(seed);
    marginaltree tree;
    for (int64 i = 1; i <= options.niterations; ++i) {
        sitewriter sites{out, {}, {}, 0};
        int64 nrecombinations = 0, nchanges = 0;
        listeners told;
        told.site = [&](const marginaltree &now, double position, double age, nodeid node) {
            sites.write(now, position, age, node);
        };
        told.recombination = [&](const marginaltree &, double, bool changed) {
            ++nrecombinations;
            nchanges += changed;
        };
        simulatechromosome(tree, static_cast<nodeid>(options.nhaplotypes), rates, history, random,
                           told);
        sites.close(options.nhaplotypes);
        std::fprintf(stderr,
                     "NOTE: %lld sites, %lld recombinations of which %lld changed the tree\n",
                     static_cast<long long>(sites.nsites), static_cast<long long>(nrecombinations),
                     static_cast<long long>(nchanges));
    }
}
} // namespace macs
