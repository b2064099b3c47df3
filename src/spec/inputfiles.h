// inputfiles.h - names of the user's files that stand beside the specification.
#pragma once

// Rows of the individuals that train under the strategy of specified individuals (trainingrange.h).
constexpr const char *trainindivfile = "TrainIndiv.txt";
