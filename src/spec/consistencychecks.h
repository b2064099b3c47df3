// consistencychecks.h - the last step of reading the specification: words become numbers, and
// the settings are tested against each other.
#pragma once

#include "spec/specreader.h"

// Runs the tests in their order; a test that fails prints its lines and stops, a note only
// prints. Returns if the run may start.
//
// Sets nqtn, nqtngamma, nqtnmodels, nestedonoff and tmpchip (of a single chip), and with
// selection generations addqtntosnpchip, selmethindicator, selontbvyes1no0, qtnmodel; with
// selection on estimated values also selphenstrat, fixtraindataonoff, fixedtrainselcycle,
// computeavercoancestryyes1no0.
// Stops: 100001 to 100033; plain stops for selection without burn-in and for a mutational
//   variance above 1. Behind them, with the key's own message: 82 and 123 for heritabilities out
//   of range, the codes of keys that no run can do without, and those of settings that would
//   lead the stages outside their arrays.
void checkconsistency(specreader &r);
