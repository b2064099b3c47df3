// specreader.h - what the reader of SolvantoSpec.txt works with: its own record, the table of
// keys, and the ways in which a key takes its values.
//
// A key's handler finds the values of its record in `second`, by position from 1. It stops with
// the key's own message and code when a value that it needs is missing or can't be read, when a
// count is negative or beyond any use, when a variance, rate or length is negative, and when the
// arrays that it fills don't exist yet because a key they depend on has not been read.
#pragma once

#include "state.h"

#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct specreader;

// A key of the file. Keys are compared in lower case and in full, in the order of the tables.
struct speckey {
    const char *name;    // lower case
    int64 code;          // stop of its failure: the box, then the place in the box
    const char *message; // of its failure; empty for a stop without a message
    void (*handle)(specreader &r);
};

// The words and counters of the reader that the rest of the run doesn't need.
struct specreader {
    explicit specreader(runsettings &settings) : s(settings) {}
    runsettings &s;
    // The record at hand.
    std::string first;
    std::vector<std::string> second;
    const speckey *key = nullptr;
    // Counters.
    int64 ntotqtnrecomb = 0;            // recombination QTN as the key found the chromosomes
    int64 maxedited = 0, maxedits = 0;  // individuals and edits when the edits were set up
    int64 driveindiv = 0, driveqtn = 0; // the same of the drives
    int64 box = 0;                      // box lines met
    int64 incora = 0, incore = 0;       // next row of the genetic and residual matrix; 0 for none
    // One-shot array set-ups that have run: generations, doubled haploids, chips, edits, traits,
    // gene drive.
    bool b1 = false, b2 = false, b3 = false, b4 = false, b5 = false, gdchecker = false;
    bool b6 = false;              // chips are off: the keys of chip details are skipped
    bool b9 = false;              // editing is off: the keys of edit details are skipped
    bool flexibilityread = false; // the key of generation flexibility was met
    // The first key that had to fill arrays of the generations before they were made: refused
    // behind the last record, where a missing number of generations is told first.
    const speckey *tooearly = nullptr;
    // Words that the checks behind the last record turn into numbers.
    std::string animalbreeding, plantbreeding;
    std::string selectionbasedon, qtndistribution, selectionmethod, addqtntochip;
    std::string phenotypingstrategy, fixtraining, computecoancestry;
    std::string nestedchips, recombdistribution, externalsolutions;
    int64 trainingfromgeneration = 0;
};

// The tables, in the order in which a key is looked for.
std::span<const speckey> keyspopulation();           // boxes 1 to 4
std::span<const speckey> keysgenome();               // boxes 5 to 7
std::span<const speckey> keysrecombinationediting(); // boxes 8 and 9
std::span<const speckey> keysselectiontraits();      // boxes 10 to 15

// All keys.
std::vector<speckey> allspeckeys();
// The key of that (lower-case) name; null if there is none.
const speckey *findkey(std::string_view name);

// Largest numbers taken: what is above is a slip of the pen, and would only ask for memory that
// no machine has.
constexpr int64 maxgenerations = 100000; // burn-in or selection
constexpr int64 maxchips = 10000;
constexpr int64 maxtraits = 1000;
constexpr int64 maxchromosomes = 100000;
constexpr int64 maxcount = 1000000000;
constexpr double maxreal = std::numeric_limits<double>::max();

// Prints the key's message and stops with its code.
[[noreturn]] void failkey(const speckey &key);
[[noreturn]] void failkey(const specreader &r);
[[noreturn]] void failkey(std::string_view name);

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
