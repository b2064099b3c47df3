// sortstat.h - sorting, moments, correlation, Cholesky factor; and single-precision steps.
//
// Arrays are handed over by a pointer to the entry of index 1. Nothing here keeps state.
#pragma once

#include "arrays.h"

// Ascending order, in place, by heap sort (Williams 1964).
void hpsort(int64 n, int64 *ra);
void hpsortreal(int64 n, double *ra);

// Element of qsort: what is ordered, and by which value (single precision).
struct group {
    int64 order = 0;
    float value = 0;
};
// Ascending order of value, in place. The pivots come from the platform's random source, so a
// sort draws nothing from the run's stream; the order of equal values is not fixed.
void qsort(group *a, int64 na);

// Mean, mean absolute deviation, standard deviation, variance (divisor n - 1, corrected for the
// rounding of the mean), skewness and kurtosis of a sample. Stop 110003 (momentr4: 140001) for
// n < 2.
void moment(const double *data, int64 n, double &ave, double &adev, double &sdev, double &var,
            double &skew, double &curt);
void momentr4(const float *data, int64 n, float &ave, float &adev, float &sdev, float &var,
              float &skew, float &curt);

// Pearson's product-moment correlation. A sample without variation gives 0.
void pearsn(const double *x, const double *y, int64 n, double &r);

// Lower Cholesky factor of a symmetric matrix of order n with leading dimension np, first index
// fastest: left in the lower triangle with its diagonal; the strict upper triangle stays.
// p is work of n entries. notposdefin: the matrix isn't positive definite, a is left half done.
void choldc(double *a, int64 n, int64 np, double *p, bool &notposdefin);

// Single-precision steps: the operands are rounded to single precision, the step is done there,
// and the result is widened. The rounding reaches the files, so it must not be "improved".
double singlequotient(double numerator, double denominator);
double singlesqrt(double value);
inline double single(double value)
{
    return static_cast<double>(static_cast<float>(value));
}
