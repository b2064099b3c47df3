// runfolder.h - what the parts of the check share: sizes, descent, and the genomes of a run folder.
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
    std::vector<double> position, mutation, maf; // of a site, from 1
    std::vector<int64> founders;                 // haplotype after haplotype, each nblocks
    std::vector<int64> genomes; // individual after individual, side after side, each nblocks
    std::map<std::string, std::vector<int64>> sets; // "Chip1", "RestrictedQtn": sites, ascending

    const int64 *strand(int64 i, int64 side) const
    {
        return genomes.data() + (2 * (i - 1) + side - 1) * nblocks;
    }
    int64 *strand(int64 i, int64 side)
    {
        return genomes.data() + (2 * (i - 1) + side - 1) * nblocks;
    }
    const int64 *founder(int64 haplotype) const
    {
        return founders.data() + (haplotype - 1) * nblocks;
    }
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

// One site of the whole genome, in the order of chromosomes.
struct genomesite {
    const chromosome *on;
    int64 h, site;
    int allele(int64 i, int64 side) const { return alleleof(on->strand(i, side), site); }
    int genotype(int64 i) const { return allele(i, 1) + allele(i, 2); }
};

struct run {
    run(statements &to, const std::string &folder) : files{folder, to} {}
    runfiles files;
    settings spec;
    int64 ngenerations = 0, nindiv = 0, nchrom = 0, nchips = 0, ntraits = 0, nmodels = 0;
    int64 nburnin = 0, firstgeneration = 1; // of the last run
    bool merged = false, dominance = false;
    std::vector<int64> last;             // last individual of a generation, [0] = 0
    std::vector<individual> individuals; // [0] unused
    std::set<int64> doubledhaploids;     // generations
    std::vector<chromosome> chromosomes; // [0] unused; without genomes if their folder is gone
    std::string selectedset;             // that selection follows
    int64 selectedmodel = 1;
    // Values in PedigreeTbvTdvTpv.txt: kind 1 tbv, 2 tdv, 3 tpv.
    std::vector<std::vector<double>> values; // [individual][4 + ...]
    double value(int64 i, int64 kind, int64 model, int64 trait) const
    {
        return values[static_cast<std::size_t>(i)][static_cast<std::size_t>(
            4 + (kind - 1) * ntraits * nmodels + (trait - 1) * nmodels + model - 1)];
    }

    int64 first(int64 g) const { return last[static_cast<std::size_t>(g - 1)] + 1; }
    int64 end(int64 g) const { return last[static_cast<std::size_t>(g)]; }
    int64 size(int64 g) const { return end(g) - first(g) + 1; }
    const individual &of(int64 i) const { return individuals[static_cast<std::size_t>(i)]; }
    bool hasgenomes() const { return nchrom > 0; }
    // Whether a generation was made behind the last merge, so that its values follow from the
    // files.
    bool ownvalues(int64 g) const;
    // Sites of a set on all chromosomes.
    std::vector<genomesite> sitesof(const std::string &set) const;
    statements &told() const { return files.told; }
};

double mean(const std::vector<double> &x);
double covariance(const std::vector<double> &x, const std::vector<double> &y); // n - 1 below

// The parts of the check, in this order; each reads what it needs.
void checkpedigree(run &r); // and sizes, genders, settings
void checkgenomes(run &r); // sites, founders, drop, phases, genotypes, frequencies, chips, sequence
void checkvalues(run &r);  // QTN, effects, true values, phenotypes, variances, heritabilities
void checkcycles(run &r);  // what selection cycles were given, and their accuracies
} // namespace checkrun
