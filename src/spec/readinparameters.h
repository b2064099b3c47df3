// readinparameters.h - reads SolvantoSpec.txt, the only description of a simulation.
#pragma once

#include "state.h"

// Reads SolvantoSpec.txt of the working directory from top to bottom into fresh settings (their
// initial values are the defaults of the keys), makes the arrays whose sizes the file decides,
// and judges the settings against each other. Returns only if all checks pass.
//
// A key acts on what has been read so far. The arrays are made by one-shot set-ups, which are
// tested at every record before the record's key is looked at: a key that a set-up depends on
// takes effect with the next record, whatever that is.
//
// Makes (lifetime Run): cumindivnbtogen, nindivinthisgen (0 to ngen+ngensel); nsireinthisgen,
//   ndaminthisgen, nrandparinthisgen, nselfedparinthisgen; createdhinthisgen; nsnpperchipperchrom;
//   indexwt, herit, varaspec, coraspec, core. All entries 0.
// Draws: none.
// Stops: 11 to 1012 for keys, 100000 for a record that is neither key nor matrix row, 100001 to
//   100033 and plain stops for settings that contradict each other; an I/O error if there is no
//   SolvantoSpec.txt.
runsettings readinparameters(const runoptions &options = {});
