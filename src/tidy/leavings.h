// leavings.h - the table of the files that a run's folder can do without, for solvanto --tidy and
// scripts/tidy. docs/output-files.md holds the same list for users.
#pragma once

#include "state.h"

#include <string>
#include <vector>

enum class leavingkind {
    // What no later step and no later run reads, from a stage on:
    founders, // once the founder haplotypes are packed
    cycle,    // once the cycle has made its generation
    results,  // once the sequence of the whole genome is written
    // Chips, QTN genotypes and sequence: later runs and merges read them as plain text.
    packed,
    // Genomes and what else tells of single sites, gametes or haplotypes.
    dropped
};

struct leaving {
    leavingkind kind = leavingkind::founders;
    std::string pattern; // for the shell, from the working folder; * stands for each number
};

std::vector<leaving> leavingstable();
// The pattern of a path from the working folder.
std::string patternof(const std::string &path);

// Prints the table on standard output, a line for each pattern: remove for the first three kinds,
// pack or drop, a blank, the pattern.
void printleavings();

// Removes the files of a kind, one of the first three, from the working folder. One that can't be
// removed is a warning.
void removeleavings(const runoptions &options, leavingkind kind);

// A run that goes on reads and extends chips and genotypes, and the sequence where it is wanted: one
// that stands there packed (.gz) alone is an I/O error.
void stopifpacked(const state &s);
