// mergedirectories.h - the merge of whole replicate folders: runs that went on from copies of one
// base folder become one run in the working folder, with generations and pedigree.
//
// The list: the base folder on its first line, then a later folder on each line. A later folder
// holds the base folder's individuals as its first; those it added are taken. Individuals are
// numbered generation by generation, and within a generation folder by folder.
#pragma once

#include "arrayscope.h"
#include "merge/mergefolders.h"
#include "pedigreeline.h"

// The plan and the merged pedigree, read off the list and checked against all folders: nothing has
// been touched behind it. Makes the arrays of makechromarrays, and leaves the base folder's numbers
// of sites in them.
mergeplan planofdirectories(state &s, arrayscope &arrays, array1<pedigreeline> &ped);

// Reads    ngen, ngensel, numberofmergeruns, and what mergechecks.h names
// Stops: 48 for another number of folders than numberofmergeruns, 900000. A fault in the list or in
// a folder is an I/O error, and leaves the working folder as it was.
// Variances and means of the generations that the base folder doesn't have are not known: zeros
// stand for them.
void mergedirectories(state &s);

// The folders of the list.
std::vector<std::string> mergereadpaths(const state &s);

// The merged pedigree, in final order, and where each individual comes from.
//   paths  the base folder, then the later ones
//   ped    out  (individuals) numbers and parents are those of the merged population
mergeplan mergepedigree(const state &s, const std::vector<std::string> &paths,
                        array1<pedigreeline> &ped);

// The genomes of all generations.
void makemergedbinarydirectories(const state &s, const mergeplan &plan);
