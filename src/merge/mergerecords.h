// mergerecords.h - the files that hold a record for each individual, and how a merge makes them
// from those of the source folders: records copied with another number.
#pragma once

#include "merge/mergefolders.h"

#include <string>
#include <vector>

// How a record is written in the merged folder.
enum class recordform {
    gender, // 3I20: generation, individual, gender
    counts, // 3I20: individual, two counts, read free-form
    values, // 4I10: generation, individual, sire, dam; then the line behind column 40
    rest    // I20: individual; then the line behind column 20
};

struct individualfile {
    std::string path; // in a run folder; of a file per generation up to the generation's number
    recordform form = recordform::rest;
    int64 titlelines = 0;
    int64 linesperindiv = 1;
    int64 linelength = 0; // bytes, line end included; 0 where lines differ
};

// Numbers of sites, from the stores; the columns of the files follow from them.
// Reads nqtnonthischrom, nqtnrecombonthischrom, nsnponthischipchrom, nsegreginclglobal.

// Files below SimulatedData, of all generations. Those of the recombination trait and of the
// sequence only where the specification has these switched on.
std::vector<individualfile> wholerunfiles(const state &s);
// Files of a chromosome, of all generations.
std::vector<individualfile> chromosomefiles(const state &s, int64 chrom);
// Files of a chromosome, one for each generation.
std::vector<individualfile> generationfiles(const state &s, int64 chrom);
// Name of a file of one generation.
std::string ofgeneration(const individualfile &file, int64 gen);

// Most files that are open at a time: each output with the sources of its records.
int64 filesneeded(const mergeplan &plan);

// Writes all of them in the working folder, which holds copies of the burn-in folder's files by
// now: their titles stay. Records of the files of all generations are found by the individual's
// number in its own folder, those of a generation's by its place there; one that bears another
// number is an I/O error. No line is cut.
void mergerecords(const state &s, const mergeplan &plan);

// Writes the genomes of the chromosome and merged generation, of nblock blocks: one record of the
// individuals in their order.
void mergegenomes(const mergeplan &plan, int64 chrom, int64 newgeneration, int64 nblock);
