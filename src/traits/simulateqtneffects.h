// simulateqtneffects.h - the effect stage: turns the QTN of all chromosomes into a trait model.
//
// Runs once in the life of a simulation, in the run that starts at generation 1, after the burn-in
// gene drop; its results are files only (effectfiles.h, qtnclasses.h).
#pragma once

#include "state.h"

// Gathers the QTN, draws all effects, writes and classifies them, and frees what it made.
// Draws, in order: randomorder for the gamma positions; additive effects of the unrestricted,
// then the restricted set; with dominonoff the dominance degrees of the two sets in that order;
// with recombselonoff the effects of the recombination QTN.
// Stops: 11000 (genetic covariances not positive definite), those of random_gamma.
void simulateqtneffects(state &s);

// Fills the sets from the information files of the chromosomes and the frequency files of
// generation 1 (markers/sitesets.h), and qtngamma: ntotqtngamma random positions, the same for both
// sets and all traits. Without recombselonoff the two files of the recombination set are left
// behind empty. Draws: randomorder of ntotqtn, in every case.
void readqtninformation(state &s);
