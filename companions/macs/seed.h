// seed.h - where the seed comes from when none is given.
//
// A simulation's working folder holds Seed.txt, and each chromosome is made two folders below it.
// The first word of that file and the name of the current folder are mixed into the seed: a
// repeated run gets the same chromosomes, and no two chromosomes of a run are alike even when they
// start in the same second. Without that file the system's random source gives the seed.
#pragma once

#include "arrays.h"

#include <string_view>

namespace macs
{
// The seed that a run's seed and a folder's name make, from 1 to 2^62.
int64 mixedseed(std::string_view runseed, std::string_view foldername);
// The same for all chromosomes of a run, by a name that tells what it is for. Stops: an I/O error
// when there is no ../../Seed.txt, too.
int64 seedofrun(std::string_view name);
// The seed by the rule above. Stops: an I/O error when ../../Seed.txt can't be read or holds
// no integer.
int64 defaultseed();
} // namespace macs
