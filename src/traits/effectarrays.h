// effectarrays.h - the arrays of QTN effects that several stages make alike, and those of the
// effect stage.
#pragma once

#include "state.h"

#include <string_view>

// The eight arrays of additive and average substitution effects (ntotqtn, ntraits).
void allocateadditivearrays(state &s);
void releaseadditivearrays(state &s);
// The four arrays of dominance effects (ntotqtn, ntraits).
void allocatedominancearrays(state &s);
void releasedominancearrays(state &s);

// Arrays of the effect stage. "ChromData": counts and mutations by chromosome, those that
// readsegsitesdatafromallchrom fills; any other word ("SimulData"): everything whose extents that
// reading settles (per QTN, per QTN and trait, variances). Dominance arrays only with dominonoff,
// recombination arrays only with recombselonoff.
void allocatearraysforsimulateqtneffects(state &s, std::string_view part);
// Frees both groups.
void deallocatearraysforsimulateqtneffects(state &s);
