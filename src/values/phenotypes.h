// phenotypes.h - residuals and phenotypes of a generation, and the table of all values.
#pragma once

#include "state.h"

#include <vector>

constexpr const char *valuetable = "./SimulatedData/PedigreeTbvTdvTpv.txt";
constexpr const char *meanstable = "./SimulatedData/GeneticMeansPerGeneration.txt";

// Mean true breeding values as the table has them.
struct meanofgeneration {
    int64 generation = 0, model = 0, trait = 0;
    double meantbv = 0;
};
std::vector<meanofgeneration> readmeans();

// For generation currentgen, individuals startindiv to endindiv, whose tbv and tdv are complete:
// residuals tev from the Cholesky factors cholcove, and tpv = (tbv + tdv) + tev. Each model has
// residuals of its own. Draws: one gasdev for each model, within it each individual, within it each
// trait.
//
// Extends, titles with generation 1 only:
//   SimulatedData/PedigreeTbvTdvTpv.txt          4I10, then F20.10: tbv, tdv, tpv, each for trait 1
//                                                the models, then trait 2 and so on
//   SimulatedData/GeneticMeansPerGeneration.txt  3I20, F20.10: generation, model, trait, mean tbv
void computetpv(state &s, int64 currentgen, int64 startindiv, int64 endindiv);
