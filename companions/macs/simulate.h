// simulate.h - one chromosome from its start to its end, and its account on standard output.
//
// Positions are fractions of the chromosome, ages in 4N0 generations. Rates are for the
// whole chromosome and per unit of branch length, that is 4N0 times the events per generation.
#pragma once

#include "macs/marginaltree.h"
#include "macs/options.h"
#include "macs/recombinationrates.h"

#include "files.h"

#include <functional>

namespace macs
{
// What is told while a chromosome is made, in rising order of position. Either may be empty.
struct listeners {
    // A mutation on the branch above a node of the tree in force.
    std::function<void(const marginaltree &tree, double position, double age, nodeid node)> site;
    // A recombination, called when the tree has changed or proved unchanged.
    std::function<void(const marginaltree &tree, double position, bool changed)> recombination;
};

struct chromosomerates {
    double mutation = 0, recombination = 0;
    recombinationrates along;
};

// Makes the tree at the chromosome's start and walks to its end.
// Draws, from one recombination to the next: one exponential for the distance; one for the distance
// of each mutation and one for its place on the tree; then those of the recombination.
void simulatechromosome(marginaltree &tree, nodeid nhaplotypes, chromosomerates &rates,
                        const sizehistory &history, randomstream &random, const listeners &told);

// All chromosomes of the options, written as they arise in the layout of siteoutput.h. Notes on
// standard error count what was met.
void writechromosomes(const macsoptions &options, int64 seed, outfile &out);
} // namespace macs
