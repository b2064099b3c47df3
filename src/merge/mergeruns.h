// mergeruns.h - the merge of single individuals: those named in a list, from any generation of any
// run folder, become generation 1 of a new population in the working folder.
//
// The list: the burn-in folder on its first line, then I30,A: an individual's number and its
// folder, the lines of one folder together. Everything of the burn-in folder that isn't of
// individuals is kept: founders, sites, effects. The individuals keep their genomes, values and
// phenotypes, and have unknown parents; allele frequencies are counted anew.
#pragma once

#include "arrayscope.h"
#include "merge/mergefolders.h"

// The plan, read off the list and checked against all folders: nothing has been touched behind it.
// Makes the arrays of makechromarrays, and leaves the burn-in folder's numbers of sites in them.
mergeplan planofruns(state &s, arrayscope &arrays);

// Reads    numberofmergeruns, and what mergechecks.h names
// Stops: 48 for another number of folders than numberofmergeruns, 900000. A fault in the list or in
// a folder is an I/O error, and leaves the working folder as it was.
void mergeruns(state &s);

// What both merges do once the plan stands, in this order; the pedigree they write themselves.
// Reads the burn-in folder's numbers of sites, as checkmergefolders leaves them.

// The genomes of generation 1.
void makemergedbinary(const state &s, const mergeplan &plan);
// Counts the frequencies of chips and QTN and the sizes of the generations, and what else follows
// from the individuals: highest crossing sites, carriers of mutations, and with geneditonoff the
// fixed QTN. Updates the sizes of the generations in s.
void refreshcounts(state &s, const mergeplan &plan);
// Removes copies of the burn-in folder's files that hold its own individuals where the merge wasn't
// asked for them: a later run can't go on from them.
void removestalecopies(const state &s);
