// startmerge.h - what the setting mergetypes asks for, before anything is simulated.
#pragma once

#include "state.h"

// none: prints an empty line and returns, so that the run goes on. A merge that this version
// can't do, and a setting that is no merge type (a missing one included), print a message and
// make a plain stop.
void startmerge(state &s);
