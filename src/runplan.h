// runplan.h - the parts of a run for the line of progress, and what they are expected to cost.
#pragma once

#include "state.h"

// In the order in which a run comes to them.
enum class runpart { founders, packing, burnindrop, burninvalues, cycles, chips, sequence };

// Parts with their work for these settings, in units of a generation of 1,000 individuals dropped
// on one chromosome. Whether the line is shown follows from the options and from where standard
// output and standard error go.
void planprogress(state &s);

// Tells that the part has come to number i of n (from 1, before it is done).
void tellpart(state &s, runpart part, int64 i, int64 n, const std::string &where);
