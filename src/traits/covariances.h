// covariances.h - covariances between the traits, and their Cholesky factors.
#pragma once

#include "state.h"

#include <string>

// Factors stand in the lower triangle with the diagonal; the strict upper triangle keeps the
// covariances. Draws: none. Stop 11000 with a message: a matrix isn't positive definite.

// covaspec(j,h) = coraspec(j,h) x sqrt(varaspec(j) x varaspec(h)), and its lower Cholesky factor in
// cholcovaspec. The diagonal of coraspec multiplies like every other entry.
void workoutgeneticcovariances(state &s);

// The same for each QTN model p from core and vare(p,:), in cove and cholcove; each factor is
// written to SimulatedData/TraitVarianceComponentsResidualCholQtnModel<p>.txt, free-form, record j
// with the entries (j,1) to (j,j), in full.
void workoutresidualcovariances(state &s);
// Stops as it would if the genetic variances were those of the specification. Any other, above 0,
// give a matrix that can be factored where this one can.
void checkresidualcovariances(const traitsettings &t);
// Takes the factors back into cholcove, which exists, in a stage that doesn't begin with generation
// 1: the residual variances stay those of generation 1.
void readresidualfactors(state &s);

// Where the residual factor of a model stands.
std::string residualfactorfile(int64 p);
