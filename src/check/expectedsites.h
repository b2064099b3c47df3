// expectedsites.h - how many segregating sites the founders of a chromosome will have, by theory.
//
// Under the coalescent the number of lineages of a sample of n is a death process. On the scale tau
// on which every pair coalesces at rate 1 (Tavare 1984, Theor. Popul. Biol. 26: 119-164)
//     E(lineages) - P(one lineage) = sum over even i of 2 (2i-1) n[i]/n(i) exp(-i(i-1)/2 tau),
// n[i] and n(i) the falling and rising factorials: no term is negative. Its integral over time is
// the expected total length of the tree, in an epoch of constant size a sum of exponentials. Sites
// are expected to be mutation rate x length x that; recombination leaves the mean as it is.
// Units: time in 4 Ne generations, sizes relative to Ne, rates per base times 4 Ne.
#pragma once

#include "state.h"

#include <string>
#include <vector>

// What the coalescent simulator is told for a chromosome.
struct coalescentrun {
    int64 nhaps = 0;
    double length = 0, mutationrate = 0, recombinationrate = 0;
    struct sizechange {
        double time = 0, size = 1; // from time on
    };
    std::vector<sizechange> sizes; // rising
    std::string refused;           // why our simulator would not take it; empty where it would
    bool unknown = false;          // another option tells of a history that isn't understood here
};

// By the parameter text that the simulator gets (founders/presets.h).
coalescentrun parsecoalescent(int64 nhaps, const std::string &macsparams);

// Expected total length of the tree at a place.
double expectedtreelength(int64 nhaps, const std::vector<coalescentrun::sizechange> &sizes);

// Share of the sites of a sample of nhaps that have each number 1 to nhaps - 1 of derived alleles, at
// offset number - 1. By the expected time to the first coalescence among j lineages, j = 2 to nhaps
// (Polanski and Kimmel 2003, Genetics 165: 427-436).
std::vector<double> spectrum(int64 nhaps, const std::vector<coalescentrun::sizechange> &sizes);

// The sites of a chromosome.
struct expectedsites {
    double simulated = 0;      // by the coalescent
    double variation = 0;      // coefficient of variation of that number, rather too high
    double recombinations = 0; // of the coalescent
    double kept = 0;           // behind compression, with the mutations added
    int64 included = 0;        // in whole blocks
    int64 atmost = 0;          // included sites that a run will hardly ever exceed
};
expectedsites expectsites(const state &s, const coalescentrun &run);

// Share of the sites whose minor allele frequency among nbase individuals, who draw their alleles
// from the founders, lies from lowest to highest.
double shareinband(const coalescentrun &run, int64 nbase, double lowest, double highest);
// A number of sites that a share of the included sites will hardly ever exceed.
int64 atmostof(const expectedsites &sites, double share);
