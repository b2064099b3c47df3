// predictionruns.h - running the prediction programs, and bringing their estimates back.
//
// Quillomere (genomic prediction) and QuillomereP (prediction by pedigree) are executables in the
// working directory. They are copied to the folder F of the cycle, run there by a script, and told
// what to do by specification files; all else passes through files in F.
// runid 1 is the run for the trait, 2 the one for the recombination trait; run 2 comes first, so
// that the trait's results are left under the common names.
#pragma once

#include "state.h"

#include <string>

// The training pedigree of a trait, in F.
std::string trainingpedigree(int64 selectedtrait);

// DataFormatParameters.txt in F, and QuillomereSpec.txt in F.
void writequillomerepspec(state &s, int64 selectioncycle, int64 selectedtrait, int64 runid);
void writequillomerespec(state &s, int64 selectioncycle, int64 selectedtrait, int64 runid);

// Write Seed.txt in F (idum; the run's own stream stays as it is), copy the program to F, and run
// it by TmpQuillomere.sh, which is removed afterwards. What the program prints lands in
// outQuillomere in F. A failing command prints its failure line, and the run goes on: whether the
// program left results shows when they are read.
void runquillomerep(state &s, int64 selectioncycle, int64 selectedtrait, int64 runid);
void runquillomere(state &s, int64 selectioncycle, int64 selectedtrait, int64 runid);

// Estimates of the test individuals from EbvTrait<t>.txt, where QuillomereP numbers the rows of the
// training pedigree from 1; EBVsReadIn<t>.txt (2I10,F20.8) lists what was taken: place, row,
// estimate. A missing file is made, empty, and leaves the estimates 0, with a warning on standard
// error.
void readquillomerepebvs(state &s, int64 selectioncycle, int64 selectedtrait);

// Estimates of the test individuals, in estimatedbvtrait and, with recombination selection on, in
// estimatedbvrecomb. Where earlier SNP solutions are in force they are the products of scaled test
// genotypes and solutions, and are written to Ebv.txt and EbvRecomb.txt in F (I20,F20.10);
// otherwise they are read from there, with several traits from EbvTrait<t>.txt. Stops: an I/O error
// where a file is missing or too short.
void computereadebv(state &s, int64 selectioncycle, int64 selectedtrait);
