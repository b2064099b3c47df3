#include "merge/startmerge.h"

#include "stops.h"
#include "textlayout.h"
#include "words.h"

void startmerge(state &s)
{
    const std::string types = parsestringwindows(s.run.mergetypes);
    if (types == "none") {
        printline("");
        return;
    }
    if (types == "ids" || types == "directories") {
        printline("ERROR: Merging runs is not available in this version of Solvanto; "
                  "MergeTypes must be None");
        plainstop();
    }
    printline("MergeTypes is incorrectly set, please check your specfile " + s.run.mergetypes);
    plainstop();
}
