// relationshipruns.h - running the relationship program and the mate-allocation program.
//
// Brenvask builds the genomic relationship matrix of the candidates, Corvalind allocates matings
// from that matrix and the values that rank them. Both are executables in the working directory
// and are run in the folder F of the cycle (companionruns.h), told what to do by specification
// files. k is the selection chip; all lines are free-form but for the headings.
#pragma once

#include "state.h"

#include <string>
#include <string_view>
#include <vector>

// The relationships that Brenvask leaves in F.
constexpr const char *relationshipmatrix = "GFullMatrix1-1.txt";

// Whose allele frequencies the relationships stand on.
enum class relationshipbase {
    present, // those of the genotypes at hand
    first    // those of the first cycle, one base for the relationships of all cycles
};

// BrenvaskSpec.txt in F. genotdata: the genotype file in F; where it is empty the test genotypes
// of the cycle, at the QTN (TmpQtnGenotypeTest.txt) under selection on true values, else on the
// chip (TmpChip<k>GenotypeTest.txt). Prediction by pedigree names no file: Brenvask looks for it.
void writebrenvaskspec(const state &s, int64 selectioncycle, relationshipbase base,
                       std::string_view genotdata);
// Runs Brenvask; leaves GFullMatrix1-1.txt and outBrenvask in F.
void runbrenvask(state &s, int64 selectioncycle);

// CorvalindSpec.txt in F, and GenderTesting.txt, a free-form record for each candidate: row,
// gender. currentgen is the generation to be made: it has as many matings as individuals.
void writecorvalindspec(const state &s, int64 selectioncycle, int64 currentgen);
// Writes Seed.txt in F and runs Corvalind; leaves CorvalindResults and outCorvalind in F.
void runcorvalind(state &s, int64 selectioncycle);

// Average relationships x'Gx of several vectors x, with G of GFullMatrix1-1.txt in F: a free-form
// record for each individual, an identifier and one real for each individual. Sums run along the
// row first, then over the rows. The matrix is read once and never held.
// Stops: an I/O error where the file is missing or too short, or holds more records.
std::vector<double> averagerelationships(int64 selectioncycle,
                                         const std::vector<array1<double>> &vectors);

// What Corvalind left in CorvalindResults. Stops: an I/O error where a file is missing or wrong.
struct frontierends {
    double globalminxax = 0; // smallest x'Gx there is
    double finalxax = 0;     // x'Gx of the solution
};
// The ends of Frontier.txt: a title, then free-form records of an integer, a real, x'Gx, a real
// and a text, the minimum first, the solution last.
frontierends readfrontier(int64 selectioncycle);

struct mating {
    int64 male = 0, female = 0; // places in the test set, from 1
};
// The matings of MatingListFinal.txt, a free-form record of two places for each new individual.
std::vector<mating> readmatinglist(const state &s, int64 selectioncycle, int64 nmatings);
