// effectarrays.h - the arrays of QTN effects that several stages make alike, and those of the
// effect stage. All entries 0.
#pragma once

#include "arrayscope.h"
#include "state.h"

// The eight arrays of additive and average substitution effects (ntotqtn, ntraits).
void makeadditivearrays(state &s, arrayscope &arrays);
// The four arrays of dominance effects (ntotqtn, ntraits).
void makedominancearrays(state &s, arrayscope &arrays);

// What the effect stage fills, per QTN and per QTN and trait, when the numbers of QTN are known;
// dominance arrays only with dominonoff, recombination arrays only with recombselonoff.
void makeeffectarrays(state &s, arrayscope &arrays);
