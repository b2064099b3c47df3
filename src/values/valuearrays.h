// valuearrays.h - the arrays of the burn-in values stage.
#pragma once

#include "state.h"

#include <string_view>

// "AllGen": what lives for the whole stage - pedigree and genders, counts by chromosome,
// frequencies and effects of the QTN, variances, values (nindivp, nqtnmodels, ntraits) and the
// recombination trait (nindivp); dominance effects only with dominonoff, recombcount and the
// recombination QTN only with recombselonoff. ntotqtn and ntotqtnrecomb are known by now, from the
// gene drop of the same run.
// "PerGen": the genotype tables of nindivinsimulrun individuals. All entries 0.
void allocatearraysforcomputevaravareandtpv(state &s, std::string_view data);
void deallocatearraysforcomputevaravareandtpv(state &s, std::string_view data);

// Variances and covariances of the traits, genic variances by QTN.
void allocatevariances(state &s);
void releasevariances(state &s);
// Values (nindivp, nqtnmodels, ntraits) and those of the recombination trait (nindivp), all 0.
void allocatevalues(state &s);
void releasevalues(state &s);

// Genotype tables (nindivinsimulrun, ntotqtn); the third one only with recombselonoff.
void allocategenotypetables(state &s);
void releasegenotypetables(state &s);
