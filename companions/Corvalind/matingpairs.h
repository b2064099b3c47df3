// matingpairs.h - who mates with whom: pairs for given numbers of matings, with a low average
// relationship of mates.
#pragma once

#include "Corvalind/matingnumbers.h"

#include <random>

struct matingpairs {
    // By mating, in the order of the offspring: by male, then by female. Where sexes don't matter
    // the male is the one of the two that stands first among the candidates.
    array1<int64> male, female;
    double relationship = 0; // average over the matings, of the mates
    int64 nselfed = 0;       // matings of a candidate with itself
    int64 mostalike = 0;     // matings of the pair that mates most often
    int64 nswaps = 0;        // of mates between two matings
};

// Starts from a pairing with as few matings of a candidate with itself as can be, none unless it
// stands in more than half of all places. Then pairs of matings swap mates where that lowers the
// sum of the relationships of mates; mating the same pair again counts as half a standard deviation
// of the relationships for each time before, so that matings don't pile up on a few pairs.
// A round goes through all matings, each of which tries at most npartners others; there are at
// most nrounds, and fewer where none finds anything better.
// Draws: a random order of the females, where sexes matter; one number where the search starts.
matingpairs pairmates(const candidates &c, const matingnumbers &plan, int64 npartners,
                      int64 nrounds, std::mt19937_64 &random);
