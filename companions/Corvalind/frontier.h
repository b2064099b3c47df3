// frontier.h - the optimum: x'Gx as small as can be, then gain as high as can be with x'Gx at most
// a given difference above that; and the frontier of best contributions that leads there.
#pragma once

#include "Corvalind/contributions.h"

#include <vector>

struct frontierpoint {
    double weight = 0; // x minimises x'Gx / 2 - weight * gain'x, gain in the unit of the file
    double xgx = 0;
    double gain = 0;
};

struct optimum {
    array1<double> x;       // by candidate
    array1<double> product; // Gx
    // The minimum first, the optimum last, and points between by rising gain; both are there also
    // where they are the same.
    std::vector<frontierpoint> frontier;
    double difference = 0;           // of x'Gx from the minimum
    bool reached = false;            // that is the one wanted, within what Solvanto accepts
    int64 nsolved = 0, nchanges = 0; // quadratic programs; changes of the set of contributors
};

// The optimum for a difference of x'Gx, with about npoints points of the frontier between minimum
// and optimum, evenly spread in gain. Where even the highest gain there is needs less of a
// difference it is the optimum, with the smallest x'Gx at that gain.
// Stops: as solveprogram.
optimum findoptimum(const candidates &c, double difference, int64 npoints);
