// specreader.h - what the reader of SolvantoSpec.txt works with: its own record, and the table of
// keys.
#pragma once

#include "state.h"

#include <map>
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

constexpr const char *specfile = "SolvantoSpec.txt";

// Where a key stood last.
struct keyplace {
    int64 line = 0; // from 1
    std::string record;
};

// The words and counters of the reader that the rest of the run doesn't need.
struct specreader {
    explicit specreader(runsettings &settings) : s(settings) {}
    runsettings &s;
    // The record at hand.
    std::string first;
    std::vector<std::string> second;
    const speckey *key = nullptr;
    int64 line = 0;                             // its number, from 1
    std::string_view record;                    // its text
    std::map<const speckey *, keyplace> places; // of the keys met so far
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
    int64 morgansatfault = 0;     // line of a map length that no preset could tell; 0 for none
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
