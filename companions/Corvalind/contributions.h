// contributions.h - the best contributions at one weight on gain: a convex quadratic program.
//
//     minimise  x'Gx / 2 - weight * gain'x   over x >= 0, with 1 / npools as the sum of each pool
//
// Solved exactly by a primal active-set method: contributions are either free or 0; the free ones
// minimise the objective among themselves, by a Cholesky factor of their relationships, and the set
// changes until no free one is negative and none that is 0 would gain by rising (the method of
// Lawson and Hanson 1974, Solving Least Squares Problems, chapter 23, with the sums beside it).
// The objective falls with every change, so that no set comes twice.
//
// While the free set stays the same, x moves along a line as the weight changes, with
// d gain'x / d weight = slope and x'Gx = constant + slope * weight^2 (Markowitz 1956, Naval Res.
// Logist. Q. 3: 111-133): what steps from weight to weight go by.
#pragma once

#include "Corvalind/candidates.h"

#include <memory>

struct contributions {
    double weight = 0;
    array1<double> x;       // by candidate
    array1<double> product; // Gx
    double xgx = 0;
    double gain = 0;  // gain'x
    double slope = 0; // per unit of weight; 0 where the free set leaves no room
};

struct freefactor;

// The program, and the free set of its last solution, from which the next one starts.
struct contributionprogram {
    const candidates *all = nullptr;
    array1<double> gain;   // by candidate, less the highest of the pool, in standard deviations
    double gainunit = 0;   // that standard deviation; 0 where gains don't differ
    array1<int8> eligible; // 0 for those whose contribution must be 0
    int64 nsolved = 0, nchanges = 0; // programs; changes of the free set, for the report
    std::shared_ptr<freefactor> free;
};

// All candidates are eligible, and free.
contributionprogram makeprogram(const candidates &c);
// Only those with the highest gain of their pool are eligible, and free.
contributionprogram maketopprogram(const contributionprogram &p);

// Solves at a weight, which is per standard deviation of gain, as are gain and slope of the result.
// Multipliers of contributions that are 0 are at least -1e-11 times the mean diagonal plus weight
// times how far the gain is from the highest. Stops: an I/O error naming the relationship file
// where the matrix is not positive semidefinite.
contributions solveprogram(contributionprogram &p, double weight);

// Lets the free set be that of an earlier solution.
void restart(contributionprogram &p, const contributions &from);
