// conjugategradients.h - preconditioned conjugate gradients for symmetric positive definite
// equations (Hestenes and Stiefel 1952, J. Res. Nat. Bur. Standards 49: 409-436).
#pragma once

#include "arrays.h"

#include <functional>

// out = (something linear and symmetric) times in; both of the size of the equations.
using linearmap = std::function<void(const array1<double> &in, array1<double> &out)>;

struct convergence {
    int64 nrounds = 0;
    double residual = 0; // |b - A x| / |b|, computed from the equations, not carried along
};

// Solves A x = b by at most nroundmax rounds, beginning with x as it is handed over.
//   multiply       A times a vector
//   precondition   an approximation of the inverse of A times a vector
//   tolerance      wanted |b - A x| / |b|
// The residual carried through the rounds drifts away from that of the equations: once the former
// is small enough the latter is computed, and the iteration starts again from there if need be.
convergence conjugategradients(const linearmap &multiply, const linearmap &precondition,
                               const array1<double> &b, array1<double> &x, int64 nroundmax,
                               double tolerance);
