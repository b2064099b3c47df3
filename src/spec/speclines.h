// speclines.h - the records of SolvantoSpec.txt, and how one is cut into a key and its values.
//
// A record is a key, then zero or more values, each opened by a comma. Blanks and tabs are
// dropped wherever they stand, also inside words and numbers; there is no quoting and no escape.
#pragma once

#include "arrays.h"

#include <string>
#include <string_view>
#include <vector>

// All records of the file, which must exist. Windows line ends and a missing last line end are
// accepted.
std::vector<std::string> readspeclines(const std::string &filename);

// Whether the record holds nothing but blanks and tabs.
bool isemptyrecord(std::string_view line);

// Cuts a record.
//   first   out  text before the first comma, blanks and tabs removed, case kept
//   second  out  the values in order, likewise; empty if the record holds no comma. A comma at
//                the end of the record opens a value that stays empty.
// The key and each value are cut to 300 characters.
void parseline(std::string_view line, std::string &first, std::vector<std::string> &second);

// Reads n reals free-form from records[at], separated by blanks, tabs or commas; a record with
// too few is continued by the next, and the rest of the last one is dropped.
//   at      inout  record to begin with (from 0); on return the last one used
//   values  out    n values
// False if a value can't be read or the records end.
bool readrow(const std::vector<std::string> &records, std::size_t &at, int64 n,
             std::vector<double> &values);
