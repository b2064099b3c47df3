// specvalues.h - the ways in which a key takes its values, and how it fails.
//
// A key's handler finds the values of its record in `second`, by position from 1. It stops with
// the key's own message and code when a value that it needs is missing or can't be read, when a
// count is negative or beyond any use, when a variance, rate or length is negative, and when the
// arrays that it fills don't exist yet because a key they depend on has not been read.
#pragma once

#include "spec/explanations.h"
#include "spec/specreader.h"

#include <limits>
#include <string>
#include <string_view>

// Largest numbers taken: what is above is a slip of the pen, and would only ask for memory that
// no machine has.
constexpr int64 maxgenerations = 100000; // burn-in or selection
constexpr int64 maxchips = 10000;
constexpr int64 maxtraits = 1000;
constexpr int64 maxchromosomes = 100000;
constexpr int64 maxcount = 1000000000;
constexpr double maxreal = std::numeric_limits<double>::max();

// Prints the key's message and stops with its code,
// behind an explanation on standard error (explanations.h). The key at hand fails by
// its value i, where 0 is the whole record; others by their (lower-case) name, behind the last
// record.
[[noreturn]] void failkey(const specreader &r, int64 i, std::string_view reason = "");
[[noreturn]] void failkey(const specreader &r, std::string_view name, std::string_view reason = "");

// Value i of the record as it stands; a failure if the record has fewer values.
const std::string &valuetext(const specreader &r, int64 i);
// The same, but an empty value fails too.
const std::string &valueword(const specreader &r, int64 i);
// Whether the lower-cased first word of value 1 is the given one.
bool valueis(const specreader &r, std::string_view word);
int64 valueinteger(const specreader &r, int64 i, int64 lowest = 0, int64 highest = maxcount);
double valuereal(const specreader &r, int64 i, double lowest = -maxreal);
// Tolerant forms: a value that can't be read leaves the variable and gives false. A missing value
// and a number out of bounds fail all the same.
bool tryinteger(const specreader &r, int64 i, int64 &variable, int64 lowest = 0,
                int64 highest = maxcount);
bool tryreal(const specreader &r, int64 i, double &variable, double lowest = -maxreal);
// A failure unless the record has exactly n values.
void needcount(const specreader &r, int64 n);
// A text that reaches paths or shell commands: a failure unless it is made of letters, digits and
// . _ - / + = @ : , alone.
const std::string &valuepath(const specreader &r, int64 i);

// Whether the arrays of the generations exist; if not, the key at hand is kept as one that came
// too early, and has nothing to do.
bool hasgenerations(specreader &r);
