// selectiondrop.h - genomes dropped into a selection generation.
//
// As in the burn-in, but one generation at a time, chromosome by chromosome; every parent is known,
// and each has its own chromosome length in Morgans, recombperindperchr. Files, formats and the
// making of a gamete are those of crossingfiles.h and gametes.h.
#pragma once

#include "haplotypes/droplines.h"
#include "state.h"

// Drops generation currentgen, individuals startindiv to endindiv, on all chromosomes: writes
// GenomeGeneration<currentgen>.txt, extends RecombinationTracking.txt and RecombinationCount.txt,
// and takes the given steps on each chromosome.
// Reads    ped, recombperindperchr, the test set (the generation before); recombcount, which holds
//          all earlier individuals' counts and 0 for the new ones; GenomeGeneration<g>.txt of the
//          generation before, or of the parents' generations where currentgen has its pedigree from
//          outside (importextpedforthisgen); the cycle's edits of parents, with geneditonoff
// Updates  recombcount, globalrecomblocationmax, random, and what the steps update
// Draws, for each chromosome and individual: for the sire's side one for the strand to begin on and
// those of recombinegametes; then the same for the dam's side, unless the generation is of doubled
// haploids.
// Stops: those of readrecombspec.
void performgenedropselection(state &s, int64 currentgen, int64 startindiv, int64 endindiv,
                              const dropsteps &steps);
