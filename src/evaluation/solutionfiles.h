// solutionfiles.h - what a genomic training leaves in the folder of its cycle, for other cycles too.
//
//   SnpSolutions[Trait<t>].txt   by the prediction program, for each locus: its number, its solution
//   SnpSolutionsRecomb.txt       the same for the recombination trait
//   AlleleFreqTrain.txt          by the prediction program, for each locus with 1 in FixedSnp.txt:
//                                its number, frequency of allele 1 among the training individuals
//   FixedSnp.txt                 free-form, for each locus: 1 where it segregates among them, else 0
// Loci as in selectionchip.h. All records are free-form.
#pragma once

#include "state.h"

#include <string>

std::string solutionsfile(const state &s, int64 selectedtrait);
constexpr const char *onetraitsolutions = "SnpSolutions.txt";
constexpr const char *recombsolutions = "SnpSolutionsRecomb.txt";
constexpr const char *trainingfrequencies = "AlleleFreqTrain.txt";
constexpr const char *fixedsnpfile = "FixedSnp.txt";

// Writes FixedSnp.txt of the cycle: a locus doesn't segregate where its count in fixedsnp is 0 or
// twice the number of training individuals.
void writefixedsnp(state &s, int64 selectioncycle);
// Reads that of a folder, a name with its slash, into fixedsnp.
// Who made the files of a training: this system's runs, or a user, whose odd records are let pass.
author trainingauthor(const state &s);
void readfixedsnp(state &s, const std::string &folder);
// The solutions of a file, one for each locus.
array1<double> readsolutions(const state &s, const std::string &path);

// Names of the files that such a training is taken over by, of a trait.
std::vector<std::string> trainingfiles(const state &s, int64 selectedtrait);
// Copies the solutions, allele frequencies, fixed loci and training phenotypes of an earlier
// training to the cycle's folder: copytrainingdata from that of cycle fixedtrainselcycle,
// importtrainingdata from the working directory. A copy that fails prints its failure line; the run
// goes on.
void copytrainingdata(state &s, int64 selectioncycle, int64 selectedtrait);
void importtrainingdata(state &s, int64 selectioncycle);
