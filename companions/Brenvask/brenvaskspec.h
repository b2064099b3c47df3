// brenvaskspec.h - BrenvaskSpec.txt: which relationships to build, from which file.
//
// Lines "key ,value" in any order, keys compared in lower case, all of them there; lines that
// begin with # are headings.
#pragma once

#include "arrays.h"

#include <string>

struct brenvaskspec {
    std::string file;         // where it was read
    std::string genotypefile; // individual and numberofsnp genotypes per line; empty for None
    int64 numberofsnp = 0;
    double diagonalfudgefactor = 0;
    bool useearlierfrequencies = false; // UseAlleleFreqFromAPreviousSelCycleOnOff
    int64 frequencycycle = 1;           // UseAlleleFreqFromThisSelCycle
};

// Stops: an I/O error that names file and line for a line that is no setting, an unknown key, a
// key that comes twice, a value out of range, and for what this program can't do: pedigrees,
// weights, several traits, matrices besides G, outputs besides the full matrix. One that names the
// file and the key for a key that is missing.
brenvaskspec readbrenvaskspec(const std::string &filename);
