// exportsamples.h - who is written.
#pragma once

#include "exportoptions.h"
#include "finishedrun.h"

#include <string>
#include <vector>

// Ascending by their numbers in the pedigree. A plain stop with status 2, or an I/O error, where
// nobody is left or a number is none of the run's.
std::vector<int64> chosenindividuals(const finishedrun &run, const exportoptions &options);

inline std::string samplename(int64 individual)
{
    return "I" + std::to_string(individual);
}
