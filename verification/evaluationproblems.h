// evaluationproblems.h - what the problems of genomic and pedigree prediction share: settings by
// which the system writes their specifications, dense equations solved the plain way, moments.
#pragma once

#include "evaluation/predictionruns.h"
#include "evaluationsupport.h"
#include "openstate.h"
#include "testsupport.h"

#include <cmath>
#include <filesystem>

// One trait and QTN model with these variances; the folder of cycle 1 is made.
inline openstate evaluationstate(double vara, double vare)
{
    std::filesystem::create_directories("Selection/SelectionFolder1");
    openstate s;
    s.traits.ntraits = s.qtn.qtnmodel = 1;
    s.cycle.selectionvaratr.allocate(1, vara);
    s.values.vare.allocate(1, 1, vare);
    return s;
}

// Gauss elimination with row pivoting.
inline std::vector<double> eliminate(densematrix a, std::vector<double> b)
{
    const std::size_t n = b.size();
    for (std::size_t k = 0; k < n; ++k) {
        std::size_t pivot = k;
        for (std::size_t i = k + 1; i < n; ++i)
            if (std::fabs(a[i][k]) > std::fabs(a[pivot][k])) pivot = i;
        std::swap(a[k], a[pivot]);
        std::swap(b[k], b[pivot]);
        for (std::size_t i = k + 1; i < n; ++i) {
            const double factor = a[i][k] / a[k][k];
            for (std::size_t j = k; j < n; ++j) a[i][j] -= factor * a[k][j];
            b[i] -= factor * b[k];
        }
    }
    for (std::size_t k = n; k-- > 0;) {
        for (std::size_t j = k + 1; j < n; ++j) b[k] -= a[k][j] * b[j];
        b[k] /= a[k][k];
    }
    return b;
}

inline double covariance(const std::vector<double> &x, const std::vector<double> &y)
{
    const double n = static_cast<double>(x.size());
    double mx = 0, my = 0, sum = 0;
    for (std::size_t i = 0; i < x.size(); ++i) mx += x[i] / n, my += y[i] / n;
    for (std::size_t i = 0; i < x.size(); ++i) sum += (x[i] - mx) * (y[i] - my);
    return sum / (n - 1);
}
inline double correlation(const std::vector<double> &x, const std::vector<double> &y)
{
    return covariance(x, y) / std::sqrt(covariance(x, x) * covariance(y, y));
}

// Runs a body whose report is of no interest; it must not stop.
inline void runquietly(const std::function<void()> &body)
{
    const outcome result = runbody(body);
    EXPECT_FALSE(result.stoppedearly) << result.stop.reason;
}
