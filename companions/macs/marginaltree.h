// marginaltree.h - the genealogy of the haplotypes at one place of the chromosome, and how it
// changes from one recombination to the next: the sequentially Markov coalescent in the form
// of Marjoram and Wall (2006, BMC Genet. 7:16), in which the freed lineage may rejoin the branch
// that it left.
//
// Indices: nodes from 0. 0..n-1 are the haplotypes, n..2n-2 the coalescences. -1 is no node.
// Units:   as in history.h: time in 4N0 generations, tau on the scale of even coalescence.
//
// The order of coalescences is decided by tau, lengths are measured in time. Coalescences are kept
// in rising order, so that n - i lineages live behind the first i of them. Branch lengths
// stand in a binary tree of sums. Each sum is made of its two halves anew whenever one changes, so
// that rounding never adds up, however long the chromosome.
//
// Cost of a recombination: some 2 log2(2n) steps down and up the tree of sums for each of the at
// most five branches, and a walk over the sorted coalescences. Memory: about 70 bytes a node.
#pragma once

#include "macs/draws.h"
#include "macs/history.h"

#include <cstdint>
#include <vector>

namespace macs
{
using nodeid = std::int32_t;
constexpr nodeid nonode = -1;

// Sums over a row of lengths that change one by one. Entries from 0.
struct sumtree {
    std::size_t nleaves = 0;  // a power of two
    std::vector<double> sums; // sums[1] is the total, sums[nleaves + i] entry i
    void reset(std::size_t nentries);
    void set(std::size_t entry, double value);
    double get(std::size_t entry) const { return sums[nleaves + entry]; }
    double total() const { return sums[1]; }
    // The entry in which a value from 0 to below the total falls; value becomes the distance
    // into it, which rounding may bring up to the entry's own length.
    std::size_t find(double &value) const;
};

struct marginaltree {
    nodeid nhaplotypes = 0;
    nodeid root = nonode;
    std::vector<nodeid> parent;
    std::vector<nodeid> child[2];     // nonode for haplotypes
    std::vector<double> tau, time;    // of the node, 0 for haplotypes
    std::vector<double> coalescetau;  // (n-1) rising
    std::vector<nodeid> coalescenode; // (n-1) in the same order
    sumtree lengths;                  // of the branch above each node, in time; 0 for the root
};

// A place on the branch above a node.
struct treepoint {
    nodeid node = nonode;
    double time = 0;
};

// A new tree, from the standard coalescent.
// Draws: for each of the n-1 coalescences one exponential and two choices of a lineage.
void buildtree(marginaltree &tree, nodeid nhaplotypes, const sizehistory &history,
               randomstream &random);

// Total length of all branches, in time.
inline double totallength(const marginaltree &tree)
{
    return tree.lengths.total();
}

// A place drawn evenly over all branches. Draws: one, seldom more.
treepoint drawpoint(const marginaltree &tree, randomstream &random);

// One recombination: frees the branch above a drawn point and lets it coalesce anew. True if the
// tree has changed, false if the lineage went back to its own branch.
// Draws: the point, one exponential, then the lineage by rejection (two tries on average or fewer).
bool recombine(marginaltree &tree, const sizehistory &history, randomstream &random);

// Sets '1' for each haplotype below the node. alleles holds '0' for all when it is called; stack is
// working memory.
void markdescendants(const marginaltree &tree, nodeid node, char *alleles,
                     std::vector<nodeid> &stack);
} // namespace macs
