#include "merge/startmerge.h"

#include "merge/mergedirectories.h"
#include "merge/mergeruns.h"
#include "stops.h"
#include "textlayout.h"
#include "words.h"

namespace
{
void stopifnolist(const state &s)
{
    if (s.run.numberofmergeruns < 1) {
        printline("ERROR: A merge needs NumberOfMergeRuns, the number of folders to take "
                  "individuals from, to be positive");
        stopwithcode(47);
    }
    if (trim(s.run.mergefiles).empty()) {
        printline("ERROR: A merge needs MergeFiles, the name of the list of folders");
        stopwithcode(48);
    }
}

[[noreturn]] void finish(const char *message)
{
    printline("");
    printline(message);
    plainstop(0);
}

[[noreturn]] void stopforunknown(const state &s)
{
    printline("MergeTypes is incorrectly set, please check your specfile " + s.run.mergetypes);
    plainstop();
}
} // namespace

mergeplan planofmerge(state &s, arrayscope &arrays)
{
    if (s.run.merging == mergekind::none) return {};
    if (s.run.merging == mergekind::unknown) stopforunknown(s);
    stopifnolist(s);
    if (s.run.merging == mergekind::ids) return planofruns(s, arrays);
    array1<pedigreeline> ped;
    return planofdirectories(s, arrays, ped);
}

void startmerge(state &s)
{
    switch (s.run.merging) {
    case mergekind::none:
        printline("");
        return;
    case mergekind::ids:
        stopifnolist(s);
        mergeruns(s);
        finish("Merge has been successful! Please re-run Solvanto from generation two.");
    case mergekind::directories:
        stopifnolist(s);
        mergedirectories(s);
        finish("Merge has been successful! Please run Solvanto from the next generation.");
    case mergekind::unknown:
        stopforunknown(s);
    }
}
