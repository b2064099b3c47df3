// parentnumbers.h - whether there are enough individuals for the parents that are asked for.
#pragma once

#include "state.h"

// Compares the numbers of parents with the individuals of each generation of this run that
// breeds another one. Prints and stops: 110016 to 110021 for plants, 110022 to 110024 for animals.
void checknbofselectedindiv(state &s);

// Ends the run if no parents are asked for, or more than navailable: 110017 selfed plants, 110021
// crossed plants, 110019 and 110020 male and female plants, 110023 and 110024 sires and dams.
void checkparentsavailable(const state &s, int64 parentgender, int64 currentgen, int64 npargender,
                           int64 navailable);
