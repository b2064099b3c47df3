// burnindrop.h - the burn-in stage of the gene drop: chromosome by chromosome, generation by
// generation.
//
// Generation 1 of a chromosome is where its chips and QTN are chosen. After each generation its
// alleles are extracted (extraction.h). In memory are at most two generations of one chromosome;
// the rest of the pedigree is on disk.
//
// Files beside those of burningeneration.h and droplines.h:
//   SimulatedData/GlobalRecombLocationMax.txt  one free-form line per chromosome: chromosome,
//                                              highest crossing site met
#pragma once

#include "state.h"

// The stage: generations 1 to ngen, or those of the run with generation flexibility on.
// Draws: per chromosome and generation those of genedropburninindiv; after generation 1 those of
// createsnpchipsandqtnarrays.
// Stops: those of the routines it calls.
void drophaploburninandmakearrays(state &s);

// Writes the chip, QTN and sequence files of a generation that tmpgenome holds.
void extractgeneration(const state &s, int64 chrom, int64 currentgen, int64 startindiv,
                       int64 endindiv);
