// selectionarrays.h - the arrays of the selection phase.
//
//   "ChromPedi"  once: pedigree, genders, counts by chromosome, mutation store
//   "QtnTbvGEd"  once, when the stores are read: variances, effects and frequencies of the QTN,
//                values (0), crossovers, the sorted QTN of gene editing
//   "Selection"  for each cycle: one individual's alleles on the selection chip (-99), estimates
//                and their variances (0), genotype tables of the generation to be made;
//                nindivinsimulrun becomes its size
// Modes are compared without regard to case. currentgen matters for "Selection" alone.
#pragma once

#include "state.h"

#include <string_view>

void allocatearraysfordrophaploselection(state &s, int64 currentgen, std::string_view data);
// Frees what the same mode made; "Selection" also what the cycle made elsewhere: the training
// phenotypes and individuals, and the genders of the test set.
void deallocatearraysfordrophaploselection(state &s, int64 currentgen, std::string_view data);
