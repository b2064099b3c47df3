// allelefrequencies.h - the allele frequencies that genotypes are centred at: those of the genotype
// file, or those of an earlier cycle, so that the relationships of all cycles stand on one base.
//
// GFullMatrixAlleleFreq.txt holds the frequencies of a cycle. The first line is a title, "Locus"
// and the name of the genotype file; then one line per locus, free-form: number, frequency of the
// allele counted, with as many digits as make it exact.
//
// A cycle has one base: the genotype file of the first run in its folder, which is that of its
// candidates. The next runs of the cycle on this file write the frequencies anew (they are the
// same), a run on another file (of the last generation) leaves them alone. A cycle begins with an
// empty folder, so no file of an earlier run of the programme is in the way.
#pragma once

#include "Brenvask/brenvaskspec.h"
#include "Brenvask/genotypefile.h"

struct basefrequencies {
    std::string source; // file that they are of, for messages
    array1<double> freq;
};

// The frequencies to centre at: those of the genotype file, or, where the specification asks for
// those of an earlier cycle k, those stored in ../SelectionFolder<k>/. Those of the genotype file
// are taken there, too, if
//   - this is the folder of cycle k, and the genotype file is the one that gave or gives the
//     frequencies of the cycle,
//   - that folder holds none, or of another number of loci (with a warning).
// What was taken is noted on standard output.
// Stops: an I/O error that names file and line if stored frequencies can't be read.
basefrequencies choosefrequencies(const brenvaskspec &spec, const genotypefile &genotypes);

// Writes the frequencies of the genotype file to the working directory, unless those of another
// genotype file stand there.
void storefrequencies(const genotypefile &genotypes);
