// matings.h - how chosen parents are spread over the individuals of the next generation. Common
// to the random choice of parents and to truncation selection.
#pragma once

#include "state.h"

// Each parent, in order of choice, gets nmatings / npargender consecutive entries; the remainder
// goes to the first parents, one entry each, behind these.
//   parents     in   (npargender) the parents in order of choice; npargender at least 1
//   matingvec   out  (nmatings) the parent of each new individual
void buildmatingvec(const array1<int64> &parents, int64 npargender, int64 nmatings,
                    array1<int64> &matingvec);

// Random mating regardless of gender: gives each new individual a parent other than its sire.
//   firstrow             row of the first new individual; nmatings rows from there on
//   parentrows           (nmatings) pedigree row of the parent in entry r of the mating vector
//   parentgenderwritten  1: the parent replaces newsire, 2: it becomes newdam
// Draws: one random order of the matings; another one for each collision with the present sire.
// Stops: 110021 if parentrows doesn't hold two different parents.
void randommating(state &s, int64 firstrow, int64 nmatings, const array1<int64> &parentrows,
                  int64 parentgenderwritten);

// Stop 110021: random mating can't work with the parents of this generation.
[[noreturn]] void stopforrandommating(int64 gen);

// Writes the parents of matingvec(1..nmatings), pedigree rows, into the rows from firstrow on: as
// sires in their order, or (parentgender 2) as dams in random order.
// Draws: none for gender 1, randomorder of nmatings for gender 2.
void assignparents(state &s, int64 firstrow, int64 nmatings, const array1<int64> &matingvec,
                   int64 parentgender);
