// valuearrays.h - the arrays of the stages that compute values: burn-in and selection.
#pragma once

#include "arrayscope.h"
#include "state.h"

// What lives for the whole stage, all entries 0: values (nindivp, nqtnmodels, ntraits) and their
// variances, the recombination trait and recombcount (nindivp), frequencies and effects of the QTN;
// dominance effects only with dominonoff, the recombination QTN only with recombselonoff. ntotqtn
// and ntotqtnrecomb are known by now.
void makevaluearrays(state &s, arrayscope &arrays);

// Genotype tables (nindivinsimulrun, ntotqtn); the third one only with recombselonoff.
void makegenotypetables(state &s, arrayscope &arrays);
