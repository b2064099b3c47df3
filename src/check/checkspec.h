// checkspec.h - solvanto --check: what a run would do, without doing it.
#pragma once

#include "runoptions.h"

// Reads and judges the specification, Seed.txt, the user's files, those of earlier runs and the
// programs that the run needs; prints its generations, chips, QTN and cycles, and what it will take.
// Starts no program but for its --version, writes nothing, leaves the seed as it is.
// Ends with a stop of the run's own exit status where the run would not get to its end; all stops
// that were found stand on standard error, the run's own first.
void checkspec(const runoptions &options);
