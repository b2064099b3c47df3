// effectdistributions.h - the draws of all QTN effects.
//
// Effect arrays are (ntotqtn, ntraits). The order of draws decides every later number of a run;
// it stands with each routine. With one trait and L = sqrt(varaspec) a normal effect has variance
// varaspec / ntotqtn; no effect is ever rescaled afterwards.
#pragma once

#include "state.h"

// Additive effects of one QTN set, normal and gamma, correlated between traits by
// L = cholcovaspec: the effect of trait j is the sum over h = 1 to j of L(j,h) x draw(h).
//   allqtnmutind   in   (ntotqtn) not 0: a de novo mutation, whose draws are scaled by
//                       sqrt(varamutprop / number of mutations) and not by 1 / sqrt(QTN)
//   addeffnormal   out
//   addeffgamma    out  0 where qtngamma isn't 1
// Draws, for each QTN and within it each trait: gasdev; with nqtngamma > 0 random_gamma; gasdev
// for the sign of the gamma effect, drawn also when there is none. Gamma draws are made at every
// QTN, so the stream doesn't depend on which ones carry a gamma effect.
// Stops: 120001 and 120003 of random_gamma.
void simuladditiveeffects(state &s, const array1<int64> &allqtnmutind, array2<double> &addeffnormal,
                          array2<double> &addeffgamma);

// Dominance degrees and effects of one QTN set: degree = gasdev x sqrt(domdegvar) + domdegmean,
// effect = degree x |additive effect|. Degrees of different traits are independent.
// Draws, for each QTN and within it each trait: gasdev, and with nqtngamma > 0 another gasdev.
void simuldominanceeffects(state &s, const array2<double> &addeffnormal,
                           const array2<double> &addeffgamma, array2<double> &domdegnormal,
                           array2<double> &domdeggamma, array2<double> &domeffnormal,
                           array2<double> &domeffgamma);

// Average substitution effects of one QTN set, a + d (q - p) with p the frequency of the counted
// allele in generation 1 (Falconer and Mackay 1996). No draws.
void computeaverageallelesubsteffects(const state &s, const array1<double> &qtnfreq,
                                      const array2<double> &addeffnormal,
                                      const array2<double> &addeffgamma,
                                      const array2<double> &domeffnormal,
                                      const array2<double> &domeffgamma,
                                      array2<double> &alphanormal, array2<double> &alphagamma);

// Effects of the recombination QTN: addeffrecomb. Draws per QTN: gasdev for recombdistrib
// "normal", otherwise random_gamma and a gasdev for its sign.
void simuleffectsforrecombination(state &s);
