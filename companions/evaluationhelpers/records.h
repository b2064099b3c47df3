// records.h - reading files line by line where each line holds one record, no more and no less.
#pragma once

#include "arrays.h"
#include "files.h"

#include <string>

// To be called when the values of a record are read: an I/O error that names firstline, the line
// on which the record began, if reading ran on into another line or left something behind.
void checkwholeline(const infile &in, int64 firstline, const std::string &wanted);
// An I/O error if another line follows that isn't blank: n records are announced.
void stopifmorelines(infile &in, int64 n);

// Reads the next line of a genotype file: an individual, which is given back, and as many genotypes
// as the array has entries, each 0, 1, 2 or missingcode.
// Stops: an I/O error that names file and line for another value, and for too few or too many.
int64 readgenotypes(infile &in, int64 missingcode, array1<int8> &genotypes);
