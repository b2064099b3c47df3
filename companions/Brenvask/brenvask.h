// brenvask.h - the steps of the program Brenvask: genomic relationships in the working directory.
//
// Reads BrenvaskSpec.txt, the genotype file named there, and the allele frequencies that an
// earlier run left in the folder of another cycle where that is asked for. Leaves
//   GFullMatrix1-1.txt       the relationships (relationshipfile.h)
//   GFullMatrixAlleleFreq.txt the allele frequencies of the cycle (allelefrequencies.h)
// Relationships of an earlier run are removed first: after a failure there are none.
#pragma once

void brenvask();
