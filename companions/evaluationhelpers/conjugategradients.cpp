#include "evaluationhelpers/conjugategradients.h"

#include <cmath>

namespace
{
double dot(const array1<double> &x, const array1<double> &y)
{
    double sum = 0;
    for (int64 i = 1; i <= x.size(); ++i) sum += x(i) * y(i);
    return sum;
}

// r = b - A x
void computeresidual(const linearmap &multiply, const array1<double> &b, const array1<double> &x,
                     array1<double> &r)
{
    multiply(x, r);
    for (int64 i = 1; i <= b.size(); ++i) r(i) = b(i) - r(i);
}

// Rounds from x with its residual r until the residual carried along falls below limit.
void iterate(const linearmap &multiply, const linearmap &precondition, array1<double> &x,
             array1<double> &r, double limit, int64 nroundmax, int64 &nrounds)
{
    const int64 n = x.size();
    array1<double> z(n), p(n), q(n);
    precondition(r, z);
    p = z;
    double rz = dot(r, z);
    while (nrounds < nroundmax && rz > 0) {
        multiply(p, q);
        ++nrounds;
        const double pq = dot(p, q);
        if (!(pq > 0)) return; // rounding has used up what the direction had to give
        const double alpha = rz / pq;
        for (int64 i = 1; i <= n; ++i) x(i) += alpha * p(i);
        for (int64 i = 1; i <= n; ++i) r(i) -= alpha * q(i);
        if (std::sqrt(dot(r, r)) <= limit) return;
        precondition(r, z);
        const double rznew = dot(r, z);
        const double beta = rznew / rz;
        rz = rznew;
        for (int64 i = 1; i <= n; ++i) p(i) = z(i) + beta * p(i);
    }
}
} // namespace

convergence conjugategradients(const linearmap &multiply, const linearmap &precondition,
                               const array1<double> &b, array1<double> &x, int64 nroundmax,
                               double tolerance)
{
    convergence result;
    const double size = std::sqrt(dot(b, b));
    if (size == 0) {
        x.fill(0);
        return result;
    }
    array1<double> r(b.size());
    computeresidual(multiply, b, x, r);
    result.residual = std::sqrt(dot(r, r)) / size;
    while (result.residual > tolerance && result.nrounds < nroundmax) {
        const double before = result.residual;
        iterate(multiply, precondition, x, r, 0.5 * tolerance * size, nroundmax, result.nrounds);
        computeresidual(multiply, b, x, r);
        result.residual = std::sqrt(dot(r, r)) / size;
        if (!(result.residual < 0.5 * before)) break; // all that double precision can give
    }
    return result;
}
