// burninvalues.h - the stage that gives every burn-in generation its values, and the one scaling
// step of the trait model: the residual variance, fixed in generation 1.
#pragma once

#include "state.h"

// The stage. Generations: 1 to ngen, with genflexibilityonoff specstartgen to the lesser of
// specendgen and ngen. Per generation: genotypes, tbv, tdv (dominonoff), genic and genetic
// variances, the recombination trait (recombselonoff), in generation 1 the variance components,
// and phenotypes. Draws: those of computetpv. Stops: 110003 for a generation of fewer than two
// individuals, 11000 for residual covariances that aren't positive definite (a heritability of 1).
void computetbvvaravareandburnintpv(state &s);

// Variance components of the individuals given, generation 1: cova and covd, sample covariances of
// tbv and tdv (divisor n - 1), vara and vard their diagonals, and
// vare(p,j) = ((A + D) - h (A + D)) / h, so that (A + D) / (A + D + E) is the heritability h asked
// for, in this very sample. With recombselonoff also vararecomb and varerecomb = 1 / (M C).
void computevaravardvare(state &s, int64 startindiv, int64 endindiv);

// Reports the components in SimulatedData/TraitVarianceComponents.txt (seven lines per trait;
// line 5 of each is read back in selection), TraitVarianceComponentsCovariance.txt and with
// recombselonoff RecombinationVarianceComponents.txt, and on standard output.
void printoutvarcomponents(state &s);
// Residual variances vare from TraitVarianceComponents.txt, and varerecomb from
// RecombinationVarianceComponents.txt with recombination selection on.
void readvare(state &s);
