// genotypefile.h - the genotypes of those who are related: which file they stand in, and reading
// it.
#pragma once

#include "Brenvask/brenvaskspec.h"
#include "evaluationhelpers/genotypestore.h"

#include <string>

struct genotypefile {
    std::string name;
    array1<int64> indiv; // in the order of the file
    genotypestore store;
};

// The file that the specification names. Where it names None, which a run does that selects by
// pedigree prediction, the chip genotypes that stand in the folder: those of the last generation,
// TmpChip<k>GenotypeLastGeneration.txt, if there are any, since a run writes them for nothing else
// than this program and right before it starts it; otherwise those of the candidates,
// TmpChip<k>GenotypeTest.txt. What was taken is noted on standard output.
// Stops: an I/O error if there is none, or if there are files of several chips.
std::string choosegenotypefile(const brenvaskspec &spec);

// Stops: an I/O error that names file and line for a genotype that is neither 0, 1, 2 nor 9
// (missing), and for a line of more or fewer than nsnp; one that names the file if it is empty.
genotypefile readgenotypefile(const std::string &filename, int64 nsnp);
