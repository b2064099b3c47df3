// candidates.h - those whose contributions are optimised: relationships, breeding values, sexes.
//
// Indices: candidates from 1 in the order of the files, which all must list the same individuals
// in the same order. A pool shares a fixed part of all contributions equally: with sexes pool 1 is
// the males, pool 2 the females, and each has 1/2; without them all are pool 1.
#pragma once

#include "Corvalind/corvalindspec.h"

struct candidates {
    int64 n = 0;
    int64 npools = 1;
    array1<int64> indiv;         // identifiers, as the files give them
    array1<int64> pool;          // 1 or 2
    array1<double> gain;         // breeding values
    array2<double> relationship; // (n, n), symmetric
    double meandiagonal = 0;
    std::string relationshipfile; // for messages
};

// Reads the files that the specification names. Where Ebv.txt is named and missing, and
// EBVsReadIn1.txt (place, individual, estimate) is there, that one is taken, with a note.
// A ten-billionth of the mean diagonal is added to the diagonal: individuals whose relationships
// are the same then have one best division of their contributions, and the optimum changes by less
// than a ten-billionth.
// Stops: an I/O error that names file and line for too few or too many records or values, a value
// that is not finite, another individual than in the relationship file, another number of males
// than the specification's; one that names the file for a matrix that is not symmetric.
candidates readcandidates(const corvalindspec &spec);
