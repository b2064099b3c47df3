// rungenerations.h - which generations a run makes.
#pragma once

#include "state.h"

#include <algorithm>

// Whether the matings of a generation come from a file of the user's in the folder of its cycle.
inline bool isimported(const state &s, int64 gen)
{
    return s.run.selflexibilityonoff && s.run.importextpedforthisgen == gen && gen > s.pop.ngen;
}

// First and last generation whose cycle of selection this run begins; none where last lies below
// first.
inline generationspan cyclegenerations(const state &s)
{
    const int64 first = std::max(s.run.specstartgen, s.pop.ngen + 1);
    const int64 import = s.run.importextpedforthisgen;
    const bool halts = s.run.importstage == 1 && isimported(s, import) && import >= first;
    return {first, halts ? std::min(s.run.specendgen, import) : s.run.specendgen};
}

// Last generation that this run makes: one that is to be imported is only prepared at stage 1.
inline int64 lastgenerationmade(const state &s)
{
    const int64 last = cyclegenerations(s).last;
    return isimported(s, last) && s.run.importstage == 1 ? last - 1 : s.run.specendgen;
}
