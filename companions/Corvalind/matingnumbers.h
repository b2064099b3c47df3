// matingnumbers.h - contributions as whole numbers of matings.
#pragma once

#include "Corvalind/frontier.h"

struct matingnumbers {
    array1<int64> number; // by candidate: in how many places of matings it stands
    double xgx = 0;       // of number / (2 * nmatings)
    double gain = 0;
    int64 nmoves = 0; // matings moved after rounding
};

// Each pool's numbers add up to 2 * nmatings / npools, exactly: with sexes nmatings places for
// males and as many for females, without them both places of all matings.
// First x is rounded by largest remainders. Then matings move from candidate to candidate of the
// same pool while that brings down
//     y'Gy / 2 - weight * gain'y,   y = number / (2 * nmatings),
// which is smallest for x itself: it weighs x'Gx and gain against each other as the optimum does.
// A round, of which there are at most ngenerations, compares at most nplans plans: moves from those
// with most to give to those with most to gain. The best one is made. None takes a candidate beyond
// nmatings places: it would have to be mated with itself.
// Draws: none; of equal candidates the earlier one comes first.
matingnumbers allocatematings(const candidates &c, const optimum &best, int64 nmatings,
                              int64 nplans, int64 ngenerations);
