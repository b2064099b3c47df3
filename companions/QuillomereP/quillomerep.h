// quillomerep.h - the steps of the program QuillomereP: pedigree prediction in the working
// directory.
//
// Reads DataFormatParameters.txt and the pedigree-phenotype file named there. Leaves
//   ResultAverageEstimatedPolygenicBreedingValues.txt   animal and estimate, in ascending order
// in free form, reals with as many digits as make them exact. The results of an earlier evaluation
// are removed first.
#pragma once

void quillomerep();
