// selectioncycle.h - the selection phase of a run, one generation at a time.
//
// A cycle takes the last generation that exists, the test set, evaluates it trait by trait, ranks
// it by the selection index, chooses the parents of the next generation, drops their genomes into
// it and gives it its values. What passes from step to step within a cycle lies in
// ./Selection/SelectionFolder<cycle>/; the rows of the selection generations already stand in the
// pedigree, without parents.
#pragma once

#include "state.h"

// The stage: the cycles of all selection generations of this run. Nothing is done where the run
// ends with the burn-in. With importstage 1 the generation with a pedigree from outside is not
// made: its cycle, and with it the stage, ends when the index is known.
// Draws, in each cycle: training sets (trainingsets.h, for each trait), parents (nextparents.h),
// gametes (selectiondrop.h), residuals (phenotypes.h).
// behindcycle, where there is one, is called behind each cycle.
// Rewrites SimulatedData/GlobalRecombLocationMax.txt at the end: free-form, chromosome and highest
// site before a crossing.
void drophaploselection(state &s, void (*behindcycle)(const state &) = nullptr);

// Tells on standard output what selection is based on.
void printoutselectiondetails(const state &s);
