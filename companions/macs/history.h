// history.h - the population's size back in time, and the scale on which pairs coalesce evenly.
//
// Units: time t in 4N0 generations, sizes relative to N0. Two lineages coalesce at rate 2/size per
// unit of t. tau is the integral of that rate from the present to t, so that on the scale of tau
// every pair coalesces at rate 1, whatever the sizes. Both scales start at 0 and rise together.
#pragma once

#include "arrays.h"

#include <vector>

namespace macs
{
struct sizechange {
    double time = 0; // 4N0 generations back
    double size = 1; // from then on, relative to N0
};

struct epoch {
    double time = 0, tau = 0; // where it begins
    double pairrate = 2;      // d tau / d t within it: 2/size
};

// Epochs in rising order; the first begins at 0, the last goes on for ever.
struct sizehistory {
    std::vector<epoch> epochs;
    // changes in any order, no two at one time; before the first the size is 1.
    explicit sizehistory(std::vector<sizechange> changes = {});
    double tauattime(double time) const;
    double timeattau(double tau) const;
};
} // namespace macs
