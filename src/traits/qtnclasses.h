// qtnclasses.h - how few QTN carry how much of the genic variance of generation 1.
#pragma once

#include "state.h"

// Genic variance of a locus with frequency f of the counted allele and substitution effect e.
inline double locusgenicvariance(double f, double e)
{
    return 2 * f * (1 - f) * (e * e);
}

// For each trait and QTN model: the number of QTN, from the largest downward, that together hold
// more than 1, 5, 10, 25 and 50 percent of the total genic variance, 2 p q alpha^2 summed over
// QTN (alpha: the substitution effect with dominonoff, else the additive effect).
// Uses the effects and frequencies in memory.
// Writes SimulatedData/ProportionOfVariationExplainedByNumberOfQtn.txt and the same table on
// standard output; with recombselonoff also the Recombination twin of the file.
// A trait without genic variance counts 0.
void classifyqtns(state &s);
