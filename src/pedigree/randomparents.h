// randomparents.h - parents chosen at random, as in all burn-in generations.
#pragma once

#include "state.h"

// Chooses npargender parents of currentgen at random, without replacement, in the generation
// before, and spreads them over the rows of currentgen. parentgender: 1 sires (newsire, in order of
// choice), 2 dams (newdam, in random order). Plants crossed regardless of gender or selfed are
// chosen of both genders; for plants crossed regardless of gender the call with parentgender 1 sets
// both parents, by random mating. Draws: until npargender distinct parents are found; a random
// order of the rows for gender 2; those of randommating. Stops: those of checkparentsavailable and
// randommating, before the first draw.
void selectnextparentsrandom(state &s, int64 parentgender, int64 currentgen, int64 npargender);

// Chooses the parents of the burn-in generations of this run, but generation 1, by the plan of
// each. Draws: those of selectnextparentsrandom, generation by generation.
void drawburninparents(state &s);
