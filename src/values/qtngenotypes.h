// qtngenotypes.h - the QTN genotypes of a generation: one table per QTN set, and the run's files.
#pragma once

#include "state.h"

#include <string>

constexpr const char *fixedqtntable = "./SimulatedData/FixedQtn.txt";
// File of the genotypes of a QTN set.
inline std::string qtngenotypefile(qtnset set)
{
    return std::string("./SimulatedData/") + nameofset(set) + "QtnIndivGenotypes.txt";
}

// Fills qtngenos of the trait sets, and with recombselonoff of the third, for the individuals of
// generation currentgen, from startindiv on, from the genotype files of the chromosomes. Genotype:
// 0, 1 or 2 copies of the allele whose frequency the files give. Extends
// SimulatedData/...QtnIndivGenotypes.txt, which have no title, by a line per individual, (I20,
// nI2); lines of this and later generations that an earlier run wrote are replaced. With
// geneditonoff writefixedqtn follows.
void compileqtngenotypes(state &s, int64 currentgen, int64 startindiv);

// Extends SimulatedData/FixedQtn.txt by a line per QTN of the set of qtnmodel, (3I20): generation,
// QTN, 0 if it is fixed in this generation or 1 if it segregates. Uses the genotype table that
// compileqtngenotypes has just filled.
void writefixedqtn(state &s, int64 currentgen);
