// trainingsets.h - true values and phenotypes of a selection cycle: read back, and handed on.
//
// Makes the cycle's folder, brings the values of all individuals back from the run's tables (the
// tables' ten decimals count, not what memory held), writes the test files and the training data.
// Indices: entry k of phenvaltrain belongs to row starttrainindiv + k - 1; -99 is a missing value.
// Reads    PedigreeTbvTdvTpv.txt, and PedigreeTbvRecombination.txt with recombination selection on;
//          the training range and the test set
// Updates  rows 1 to endtestindiv of tbv, tdv, tpv and, with recombination selection, tbvrecombz,
//          recombperindperchr and recombcount; phenvaltrain, phenvalrecombtrain (allocated for
//          trait 1) and trainindicator
#pragma once

#include "state.h"

// True values and phenotypes of individuals 1 to lastindiv; and the crossovers of their own gametes,
// with their rates in the gametes that they give. An I/O error where a table has too few records or
// those of others.
void readtruevalues(state &s, int64 lastindiv);
void readrecombination(state &s, int64 lastindiv);

// To be called once for each trait of a cycle, trait 1 first. The tables are read for trait 1; the
// values of all traits come with it.
// Files, in the folder of the cycle (t: trait; the suffix Trait<t> only where there are several):
//   SelectionTbvTest[Trait<t>].txt       I20,F20.10  true value of each test individual
//   SelectionTbvRecombZTesting.txt       I20,F20.10  with recombination selection
//   SelectionPhenTest[Trait<t>].txt      I20,F20.10  phenotypes, under selection on phenotypes
//   SelectionPhenTrain[Trait<t>].txt     I20,F20.10  under selection on estimates: those who have one
//   SelectionPhenRecombTrain.txt         I20,F20.10  log crossover counts, the same
//   PedigreeBlupTrain<t>.txt             4I10,F20.10 animal, sire, dam, 1, phenotype or -99;
//                                        empty unless the prediction is by pedigree
// Draws: for the strategy of random phenotypes one random order of the range, for every trait.
// Stops: an I/O error where a table has too few records. A folder that can't be made prints the
//        failure line of the shell commands.
void determinetrainandtestdatasetsforselection(state &s, int64 selectioncycle, int64 selectedtrait);
