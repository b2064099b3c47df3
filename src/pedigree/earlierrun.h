// earlierrun.h - the results of an earlier run in the working directory.
#pragma once

#include "runoptions.h"

// Warns of results that a new simulation is about to remove: how old, how many generations.
void warnofearlierrun(const runoptions &options);
