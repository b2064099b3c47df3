// corvalind.h - the steps of the program Corvalind: optimal contributions and mate allocation in
// the working directory.
//
// Reads CorvalindSpec.txt, Seed.txt and the files named in the former. Leaves in CorvalindResults,
// which it makes where there is none,
//   Frontier.txt         a title; then point number, weight on gain, x'Gx, gain, kind of point
//                        (Minimum, Frontier, Solution), free-form, exact reals; the minimum of x'Gx
//                        first, the optimum last
//   MatingListFinal.txt  male and female of each mating by their order among the candidates, from
//                        1, free-form; by male, then by female
// Results of an earlier cycle are removed first: after a failure there are none.
#pragma once

void corvalind();
