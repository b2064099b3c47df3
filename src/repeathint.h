// repeathint.h - how to repeat a run that didn't come to its end, on standard error.
#pragma once

// From now on (the run has taken its seed) a signal that ends the program says how to repeat the
// run before it does.
void hintonsignals();

// The same words behind a stop.
void printrepeathint();
