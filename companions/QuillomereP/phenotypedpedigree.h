// phenotypedpedigree.h - the pedigree-phenotype file.
//
// Lines of animal, sire, dam, a code and the phenotype, free-form. The numbers of the animals
// ascend, and parents stand before their offspring; a parent 0 is unknown. One animal may be both
// parents: selfing. The code is 1, or 2 for a doubled haploid, made from one gamete of its parent,
// which then stands as sire and dam (or both are 0).
#pragma once

#include "arrays.h"

#include <string>

// Indices: animals 1..n in the order of the file.
struct phenotypedpedigree {
    int64 n = 0;
    array1<int64> number;        // as in the file
    array1<int64> sire, dam;     // index of the animal, 0 unknown
    array1<int8> doubledhaploid; // 1 or 0
    array1<double> phenotype;
    array1<int8> observed; // 1 if there is a phenotype, else 0
    int64 nobserved = 0;
};

// Stops: an I/O error that names file and line for a line with too few or too many values, numbers
// that don't ascend, a parent that doesn't stand on an earlier line, another code, a doubled
// haploid with two parents, a phenotype that is not finite; one that names the file if it is empty
// or no animal has a phenotype.
phenotypedpedigree readphenotypedpedigree(const std::string &filename, double missingvalue);
