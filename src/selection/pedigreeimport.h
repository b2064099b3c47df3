// pedigreeimport.h - a selection generation whose matings the user decides.
//
// One run works out the estimates of that generation's cycle and stops; the user writes
// ExternalPedigree.txt into the folder of the cycle; a second run takes the parents from there.
#pragma once

#include "state.h"

#include <string>

// ExternalPedigree.txt of a cycle.
std::string importedpedigree(int64 selectioncycle);
// Reads it, see below.
void readexternalpedigree(state &s, int64 selectioncycle, int64 currentgen);

// importstage 1: prints what the user has to do. The caller releases the cycle's arrays and leaves
//                the cycles.
// importstage 2: reads ExternalPedigree.txt, one record for each individual of currentgen in row
//                order, free-form: identifier, sire, dam; the parents are pedigree rows of earlier
//                generations. The rows of currentgen, behind the test set, take identifier and
//                parents from it.
// Draws: none.
// Stops: 110015 a parent that is unknown or not of an earlier generation; an I/O error for a
//        missing file or too few records. Surplus records are ignored.
void importexternalpedforcurrentselgen(state &s, int64 selectioncycle, int64 currentgen);
