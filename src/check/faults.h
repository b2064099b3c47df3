// faults.h - the stops that a run would come to.
#pragma once

#include "stops.h"

#include <functional>
#include <vector>

// In the order in which the run would meet them: the first is its end.
struct faultlist {
    std::vector<stopped> stops;
    // Takes a step; a stop of it is noted, and its messages stand on standard output. True if there
    // was none.
    bool judge(const std::function<void()> &step)
    {
        try {
            step();
            return true;
        } catch (const stopped &stop) {
            stops.push_back(stop);
            return false;
        }
    }
};
