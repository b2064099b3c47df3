// burnindrop.h - the burn-in stage of the gene drop: chromosome by chromosome, generation by
// generation.
//
// Generation 1 of a chromosome is where its chips and QTN are chosen, and after each generation its
// alleles are extracted: the caller gives the routine that does both. In memory are at most two
// generations of one chromosome; the rest of the pedigree is on disk.
// The pedigree and the stores of the founder sites have been read.
#pragma once

#include "haplotypes/droplines.h"
#include "state.h"

// The stage: generations 1 to ngen, or those of the run with generation flexibility on.
//   finishgeneration  in  called for each generation of each chromosome, when tmpgenome holds it;
//                         for generation 1 with minorallelefreq filled
// Draws: per chromosome and generation those of genedropburninindiv, then those of
// finishgeneration.
// Stops: those of the routines it calls.
void drophaploburninandmakearrays(state &s, generationstep finishgeneration);
