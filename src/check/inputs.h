// inputs.h - whether a run would get to its end, judged before it: the user's files, the files of
// earlier runs, the numbers of parents, training individuals and sites.
//
// The steps are those of a run, in its order and as far as possible by its own routines, so that
// messages, codes and notes on standard output are the run's. What only the run can know (founders
// that are drawn, values) is taken as it will most likely be, and judged where no draw could help.
// Nothing is written, no seed used up; the random draws of the pedigree are those that the run will
// make.
#pragma once

#include "arrayscope.h"
#include "check/expectedsites.h"
#include "check/faults.h"
#include "merge/mergefolders.h"
#include "state.h"

#include <vector>

// The training data of a cycle.
struct trainingplan {
    int64 gen = 0; // that the cycle makes
    int64 firstgen = 1, lastgen = 0, nindiv = 0;
    int64 ncandidates = 0;
};

// What was found on the way, for the tables and estimates.
struct runfacts {
    std::string macsparams; // of a run that makes founders; empty where it can't be told
    coalescentrun coalescent;
    expectedsites sites;
    std::vector<trainingplan> cycles;          // as far as their ranges can be told
    int64 firstgen = 1, lastgen = 0;           // generations that the run makes
    std::string copiedfolder;                  // of which a merge makes a copy
    std::vector<std::string> selectionfolders; // whose folder Selection it copies
};

// Fills pedigree, numbers of sites and the totals that follow from them, in arrays that live as long
// as the scope.
runfacts judgeinputs(state &s, arrayscope &arrays, faultlist &faults);

// The same for a merge: fills the sizes of the merged generations and the numbers of sites.
runfacts judgemerge(state &s, arrayscope &arrays, faultlist &faults);
