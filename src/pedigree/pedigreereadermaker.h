// pedigreereadermaker.h - the pedigree stage, part of every run.
//
// Decides the gender of each individual of the generations of this run, takes the pedigree from
// the user's file or makes an internal one, draws the parents of the burn-in generations, and
// writes the three files of pedigree.h. Rows of selection generations of an internal pedigree
// keep parents 0, and get them in their selection cycle.
//
// External file: one individual per line, free-form: identifier, sire, dam. A parent stands on
// an earlier line than its offspring; an identifier that no earlier line gave, such as 0, means
// an unknown parent. Its parents stand in every generation, none are drawn for it, and rows
// beyond the file are founders.
#pragma once

#include "state.h"

// The stage. Nothing stays in memory.
// Draws, in this order: a random order per generation of this run, for the genders; then the
// parents of the burn-in generations of an internal pedigree.
// Stops: 110014 if the size of an earlier generation was changed; those of the routines below.
// An external file with more lines than rows are left is an I/O error.
void pedigreereadermaker(state &s);

// Compares the numbers of parents with the individuals of each generation of this run that
// breeds another one. Prints and stops: 110016 to 110021 for plants, 110022 to 110024 for animals.
void checknbofselectedindiv(state &s);

// Chooses npargender parents of currentgen at random, without replacement, in the generation
// before, and spreads them over the rows of currentgen. parentgender: 1 sires (newsire, in order of
// choice), 2 dams (newdam, in random order). Plants crossed regardless of gender or selfed are
// chosen of both genders; for plants crossed regardless of gender the call with parentgender 1 sets
// both parents, by random mating. Draws: until npargender distinct parents are found; a random
// order of the rows for gender 2; those of randommating. Stops: those of stopiftoofewparents and
// randommating, before the first draw.
void selectnextparentsrandom(state &s, int64 parentgender, int64 currentgen, int64 npargender);

// Whether parents of currentgen are chosen regardless of gender.
bool genderisignored(const state &s, int64 currentgen);

// Ends the run if no parents are asked for, or more than navailable: 110017 selfed plants, 110021
// crossed plants, 110019 and 110020 male and female plants, 110023 and 110024 sires and dams.
void stopiftoofewparents(const state &s, int64 parentgender, int64 currentgen, int64 npargender,
                         int64 navailable);
