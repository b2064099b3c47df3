// trainingdata.h - what a prediction needs beyond genotypes and phenotypes.
//
// F is the folder of the cycle, k the selection chip, t the trait. Loci as in selectionchip.h.
#pragma once

#include "state.h"

// Names of the QTN genotypes in F.
constexpr const char *testqtngenotypes = "TmpQtnGenotypeTest.txt";
constexpr const char *lastqtngenotypes = "TmpQtnGenotypeLastGeneration.txt";

// The fields of the scaled values of all loci, F40.30 for each of the genotypes 0, 1, 2 and missing,
// by the fixed loci in fixedsnp and the allele frequencies in the folder, see below.
textline layoutscaledfields(const state &s, const std::string &folder);

// Brings the test genotypes to the scale on which the solutions were estimated: centred by 2p and
// divided by sqrt(2p(1-p) + 0.00001), in single precision; p from AlleleFreqTrain.txt, which has
// one record for each locus with 1 in FixedSnp.txt and is not needed without such a locus; the
// other loci are 0. A genotype outside 0 to 2 is missing and taken as 2p. Writes
// TmpChip<k>GenotypeTestScaled.txt (runid 1) or TmpChip<k>GenotypeTestScaledRecomb.txt (2) in F:
// I20, then F40.30 for each locus. Leaves the values of FixedSnp.txt in fixedsnp. Stops: an I/O
// error for a missing or short file. Cost: a locus has four values at most, laid out once; a
// genotype is one copy of 40 bytes.
void scalegenottestingdata(state &s, int64 selectioncycle, int64 runid);

// Genotypes at the QTN of the selection model for the individuals of generation testgen, whose
// first row is tmpstarttestindiv: TmpQtnGenotypeTest.txt in F, or TmpQtnGenotypeLastGeneration.txt
// if the generation is the one that the cycle makes (I20, then I2 for each QTN).
void writetestingqtngenotypes(state &s, int64 selectioncycle, int64 testgen,
                              int64 tmpstarttestindiv);
