// genomeediting.h - which parents are edited, at which QTN, to which allele.
//
// The best male parents are edited before they pass on their gametes; every edit succeeds. What is
// decided here are lists; the gene drop of the same cycle applies them to its working copy of the
// parents' genomes, so the stored genomes and true values of the parents stay as they were.
//
// Files: UserSelectedQtnToBeEdited.txt in the working folder, read free-form: for each QTN in
// global order 1 if it may be edited, anything else if not; wanted unless
// userqtnonoff is off. GeneEditingInformation.txt in the folder of the cycle: a
// title, then one line per edit, 3I20,A10: individual, QTN, genotype found, genotype aimed at.
#pragma once

#include "state.h"

// Male parents of a generation that may be edited: the selfed where there are any, else the sires.
int64 editableparents(const state &s, int64 parentgen);

// Stops where more of them are to be edited than there are: 110010 selfed, 110011 others.
void checkeditednumber(const state &s, int64 parentgen);
// By global number of the QTN: 1 for one that may be edited. Reads UserSelectedQtnToBeEdited.txt
// unless all may.
array1<int64> readqtnforge(const state &s);

// Chooses the edits of the cycle that makes generation currentgen: the nindedited best male
// parents, or selfed parents, in rank order, and for each of them the first ngeneditsperind QTN of
// the sorted list that may be edited and at which it isn't homozygous for the favourable allele. An
// individual that needs fewer edits has empty slots. EditTopOrBottom has no effect.
// Reads    indivtobeedited, the test set; the sorted list of runge and the QTN genotypes of
//          generation currentgen - 1, from their files
// Updates  the list arrays; idofgenomeeditinds, genomeeditqtnpos, genomeeditqtnchrom (0 for an
//          empty slot), genomeeditqtnposneg; with genedriveonoff the flags of what is edited
// Draws: none. Stops: those of checkeditednumber; an I/O error for a file that is missing or too
// short.
void editgenome(state &s, int64 selectioncycle, int64 currentgen);
