// speciestable.h - the species whose history, map and rates the program knows.
//
// The reader takes the length of the map from here, the stage of the founders all of it, so that
// a run that goes on and reads only the specification drops genes on the same map.
#pragma once

#include "arrays.h"

#include <string_view>

struct speciesrow {
    const char *name;                   // lower case
    int64 effecpopsize, chrlengthbases; // Ne; bases of a chromosome
    float morgans;    // single-precision constants by design: their widened values reach the files
    float ratefactor; // mutations per chromosome and generation
    const char *additionalmacsparams; // sizes back in time, options for the coalescent simulator
    const char *unusable;             // the message of a species that can't be used, or null
};

// The row that the setting's first word names, in any case of letters; null for a file of the
// user's.
const speciesrow *findspecies(std::string_view pophistorymacs);
