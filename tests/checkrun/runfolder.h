// runfolder.h - what the parts of the check share: sizes, descent, genomes, values of a run folder.
//
// Individuals, generations, chromosomes, sites, traits and QTN models count from 1; side 1 is the
// gamete of the sire, side 2 that of the dam.
#pragma once

#include "checkrun/runfiles.h"

#include <set>

namespace checkrun
{
struct individual {
    int64 generation = 0, parent[3] = {}, gender = 0; // parent of a side; 0 unknown
    std::string path; // of the run that made it; empty where a merge took it
};

struct chromosome {
    std::string folder;
    int64 nsites = 0, nblocks = 0;
    reals position, mutation, maf;           // of a site
    list<int64> founders, genomes;           // haplotype after haplotype, side after side: blocks
    std::map<std::string, list<int64>> sets; // "Chip1", "RestrictedQtn": sites, ascending

    const int64 *strand(int64 i, int64 side) const
    {
        return &genomes((2 * i + side - 3) * nblocks + 1);
    }
    const int64 *founder(int64 k) const { return &founders((k - 1) * nblocks + 1); }
};

// Site 1 of a block of 60 is the bit of weight 2^59.
inline int64 blockof(int64 site)
{
    return (site - 1) / 60;
}
inline int64 bitof(int64 site)
{
    return int64{1} << (59 - (site - 1) % 60);
}
inline int alleleof(const int64 *strand, int64 site)
{
    return (strand[blockof(site)] & bitof(site)) != 0;
}

struct genomesite {
    const chromosome *on;
    int64 h, site; // h: its chromosome
    int allele(int64 i, int64 side) const { return alleleof(on->strand(i, side), site); }
    int genotype(int64 i) const { return allele(i, 1) + allele(i, 2); }
};

struct run {
    run(statements &to, const std::string &folder) : told(to), files{folder, to} {}
    statements &told;
    runfiles files;
    settings spec; // of the last run
    int64 ngenerations = 0, nindiv = 0, nchips = 0, ntraits = 0, nmodels = 0;
    int64 nburnin = 0, firstgeneration = 1; // of the last run
    bool merged = false, dominance = false;
    list<int64> last; // last individual of a generation
    list<individual> individuals;
    std::set<int64> doubledhaploids; // generations
    list<chromosome> chromosomes;    // none if the run has removed them
    std::string selectedset;         // of QTN, that selection follows
    int64 selectedmodel = 1;
    list<numberline> values; // of individuals, as in PedigreeTbvTdvTpv.txt

    // Of individual i; kind 1 breeding value, 2 dominance deviation, 3 phenotype.
    double value(int64 i, int64 kind, int64 model, int64 trait) const
    {
        return values(i)(4 + ((kind - 1) * ntraits + trait - 1) * nmodels + model);
    }
    int64 first(int64 g) const { return g == 1 ? 1 : last(g - 1) + 1; }
    int64 size(int64 g) const { return last(g) - first(g) + 1; }
    // Whether a generation was made behind the last merge, so that its values follow from the
    // files.
    bool ownvalues(int64 g) const;
    // Sites of a set in the order of chromosomes, or on one of them.
    list<genomesite> sitesof(const std::string &set, int64 h = 0) const;
};

// Lines of n individuals from first on and their genotypes at sites, or two lines with their
// alleles; with first 0, of whatever individuals the lines name.
void checkgenotypes(run &r, const std::string &path, int64 ntitles, const list<genomesite> &sites,
                    bool phase, int64 first, int64 n);

std::string numbered(const std::string &before, int64 n, const std::string &behind);
// Values of a generation, as run::value gives them.
reals column(const run &r, int64 g, int64 kind, int64 model, int64 trait);
double mean(const reals &x);
double covariance(const reals &x, const reals &y); // n - 1 below

// The parts of the check, in this order.
void checkpedigree(run &r); // and sizes, genders, settings
void checkgenomes(run &r); // sites, founders, drop, phases, genotypes, frequencies, chips, sequence
void checkvalues(run &r);  // QTN, effects, true values, phenotypes, variances, heritabilities
void checkcycles(run &r);  // what selection cycles were given, and their accuracies
} // namespace checkrun
