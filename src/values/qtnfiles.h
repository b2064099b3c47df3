// qtnfiles.h - frequencies and effects of the QTN, taken back from the files of the effect stage.
//
// Every generation reads them anew, so effects and reference frequencies are the same, to the ten
// decimals of the files, in every generation and in every run that continues a simulation. The
// arrays exist already; gamma effects are read with nqtngamma > 0. A short file or one that is
// missing is an I/O error.
#pragma once

#include "state.h"

// allqtnfrequnres, allqtnfreqrestr: frequencies of generation 1, from ...QtnInformation.txt.
void readreferencefrequencies(state &s);
// The alpha arrays: from ...QtnAverAlleleSubstEffects.txt with dominonoff, otherwise the additive
// effects of ...QtnAdditEffects.txt take their place.
void readsubstitutioneffects(state &s);
// The domeff arrays, from ...QtnDominEffects.txt.
void readdominanceeffects(state &s);
// allqtnfreqrecomb and addeffrecomb, from RecombinationQtnInformationEffects.txt.
void readrecombinationeffects(state &s);
