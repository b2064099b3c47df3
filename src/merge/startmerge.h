// startmerge.h - what the setting mergetypes asks for, before anything is simulated.
#pragma once

#include "arrayscope.h"
#include "state.h"

struct mergeplan; // mergefolders.h

// What a merge would do, checked against all folders: the plan, empty where nothing is merged.
// Touches nothing. Makes the arrays of makechromarrays, and leaves the numbers of sites in them.
// Stops: as startmerge, up to the place from which it changes the working folder.
mergeplan planofmerge(state &s, arrayscope &arrays);

// none: prints an empty line and returns, so that the run goes on. ids, directories: the merge, its
// closing message and a plain stop of status 0. A setting that is no merge type (a missing one
// included): a message and a plain stop.
// Stops: those of the merges; 47, 48: no folders, or no list of them, are named.
void startmerge(state &s);
