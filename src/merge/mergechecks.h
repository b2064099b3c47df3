// mergechecks.h - what must hold before a merge replaces anything in the working folder.
//
// Every fault is an I/O error that names the folder, or the file in it, and says what was expected
// and what was found; the working folder is as it was then.
#pragma once

#include "merge/mergefolders.h"
#include "merge/mergerecords.h"

// The folder exists, and isn't the working folder, whose own files a merge replaces.
void checkfolder(const std::string &folder);

// Checks the burn-in folder and all source folders of the plan: they hold the files needed, with
// the numbers of chromosomes, chips, SNP and QTN of the specification, the same sites and traits,
// and records of all individuals that are taken. Fills, for the burn-in folder, the arrays of
// makechromarrays, which the caller has made.
// Reads    the specification's numbers of chromosomes, chips, QTN and traits
void checkmergefolders(state &s, const mergeplan &plan);

// The file holds the records of n individuals, of the layout of that file.
void checkrecords(const individualfile &file, const std::string &path, int64 n);
// It holds one record of the genomes of nindiv individuals.
void checkgenome(const std::string &path, int64 nindiv, int64 nblock);

// Sees to it that the merge can open as many files as it needs at a time: the system's limit is
// raised if need be. I/O error: it can't be. Plain stop: more than the registry has numbers for.
void checkopenfiles(const mergeplan &plan);
