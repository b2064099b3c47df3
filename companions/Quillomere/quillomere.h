// quillomere.h - the steps of the program Quillomere: genomic prediction in the working directory.
//
// Reads QuillomereSpec.txt and the files named there. Leaves
//   Ebv.txt                test individual and its estimate, in the order of the test genotypes
//   SnpSolutions.txt       SNP and its solution; 0 for a SNP that is fixed in training
//   AlleleFreq.txt         SNP and its frequency in training, of the SNPs that segregate there
//   TbvEbvCorrelation.txt  correlation of true and estimated values of the test individuals
// in free form, reals with as many digits as make them exact. Results of an earlier evaluation are
// removed first: after a failure there are none, never those of another trait.
#pragma once

void quillomere();
