// effectdistributions.h - the draws of all QTN effects.
//
// The arrays exist, all entries 0. The order of draws decides every later number of a run;
// it stands with each routine. With one trait and L = sqrt(varaspec) a normal effect has variance
// varaspec / ntotqtn; no effect is ever rescaled afterwards.
#pragma once

#include "state.h"

// Additive effects of the models of a set, normal and gamma, correlated between traits by
// L = cholcovaspec: the effect of trait j is the sum over h = 1 to j of L(j,h) x draw(h). The draws
// of de novo mutations are scaled by sqrt(varamutprop / number of mutations) and not by
// 1 / sqrt(QTN). Gamma effects stay 0 where qtngamma isn't 1.
// Draws, for each QTN and within it each trait: gasdev; with nqtngamma > 0 random_gamma; gasdev
// for the sign of the gamma effect, drawn also when there is none. Gamma draws are made at every
// QTN, so the stream doesn't depend on which ones carry a gamma effect.
// Stops: 120001 and 120003 of random_gamma.
void simuladditiveeffects(state &s, qtnset set);

// Dominance degrees and effects of the models of a set: degree = gasdev x sqrt(domdegvar) +
// domdegmean, effect = degree x |additive effect|. Degrees of different traits are independent.
// Draws, for each QTN and within it each trait: gasdev, and with nqtngamma > 0 another gasdev.
void simuldominanceeffects(state &s, qtnset set);

// Average substitution effects of model p, a + d (q - p) with p the frequency of the counted
// allele in generation 1 (Falconer and Mackay 1996). No draws.
void computeaverageallelesubsteffects(state &s, int64 p);

// Effects of the recombination QTN: addeffrecomb. Draws per QTN: gasdev for recombdistrib
// "normal", otherwise random_gamma and a gasdev for its sign.
void simuleffectsforrecombination(state &s);
