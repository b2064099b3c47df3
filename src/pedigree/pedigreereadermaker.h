// pedigreereadermaker.h - the pedigree stage, part of every run.
//
// Decides the gender of each individual of the generations of this run, takes the pedigree from
// the user's file or makes an internal one, draws the parents of the burn-in generations, and
// writes the three files of pedigreefiles.h. Rows of selection generations of an internal pedigree
// keep parents 0, and get them in their selection cycle.
//
// External file: one individual per line, free-form: identifier, sire, dam. A parent stands on
// an earlier line than its offspring; an identifier that no earlier line gave, such as 0, means
// an unknown parent. Its parents stand in every generation, none are drawn for it, and rows
// beyond the file are founders.
#pragma once

#include "state.h"

// All of the stage but its files: fills the arrays of makepedigreearrays, which the caller has made.
void makepedigree(state &s);

// The stage. Nothing stays in memory.
// Draws, in this order: a random order per generation of this run, for the genders; then the
// parents of the burn-in generations of an internal pedigree.
// Stops: 110014 if the size of an earlier generation was changed; those of the routines below.
// An external file with more lines than rows are left is an I/O error.
void pedigreereadermaker(state &s);
