#include "traits/covariances.h"

#include "files.h"
#include "sortstat.h"
#include "stops.h"
#include "textlayout.h"
#include "words.h"

#include <cmath>
#include <string>

namespace
{
// Factors the matrix in place; stops with the message when it can't be done.
void factor(array2<double> &matrix, int64 n, const char *which)
{
    array1<double> diagonal(n);
    bool notposdefin = false;
    choldc(matrix.data(), n, n, diagonal.data(), notposdefin);
    if (!notposdefin) return;
    printline(std::string("Cholesky Decomposition failed: ") + which +
              " correlation matrix specified is not positive definite. Please check specfile.");
    stopwithcode(11000);
}

void workoutresidual(state &s, int64 p)
{
    const traitsettings &t = s.traits;
    array2<double> slice(t.ntraits, t.ntraits);
    for (int64 j = 1; j <= t.ntraits; ++j)
        for (int64 h = 1; h <= t.ntraits; ++h) {
            s.values.cove(p, j, h) =
                t.core(j, h) * std::sqrt(s.values.vare(p, j) * s.values.vare(p, h));
            slice(j, h) = s.values.cove(p, j, h);
        }
    factor(slice, t.ntraits, "Residual");
    for (int64 j = 1; j <= t.ntraits; ++j)
        for (int64 h = 1; h <= t.ntraits; ++h) s.values.cholcove(p, j, h) = slice(j, h);
}

void writeresidualfactor(const state &s, int64 p)
{
    outfile out(residualfactorfile(p));
    textline line;
    for (int64 j = 1; j <= s.traits.ntraits; ++j) {
        for (int64 h = 1; h <= j; ++h) putfree(line, s.values.cholcove(p, j, h));
        out.writeline(line);
    }
    out.close();
}
} // namespace

std::string residualfactorfile(int64 p)
{
    return "./SimulatedData/TraitVarianceComponentsResidualCholQtnModel" + numbertext(p) + ".txt";
}

void workoutgeneticcovariances(state &s)
{
    const traitsettings &t = s.traits;
    for (int64 j = 1; j <= t.ntraits; ++j)
        for (int64 h = 1; h <= t.ntraits; ++h) {
            s.values.covaspec(j, h) = t.coraspec(j, h) * std::sqrt(t.varaspec(j) * t.varaspec(h));
            s.values.cholcovaspec(j, h) = s.values.covaspec(j, h);
        }
    factor(s.values.cholcovaspec, t.ntraits, "Genetic");
}

void workoutresidualcovariances(state &s)
{
    for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) {
        workoutresidual(s, p);
        writeresidualfactor(s, p);
    }
}

void checkresidualcovariances(const traitsettings &t)
{
    array2<double> matrix(t.ntraits, t.ntraits);
    const auto variance = [&](int64 j) {
        return (t.varaspec(j) - t.herit(j) * t.varaspec(j)) / t.herit(j);
    };
    for (int64 j = 1; j <= t.ntraits; ++j)
        for (int64 h = 1; h <= t.ntraits; ++h)
            matrix(j, h) = t.core(j, h) * std::sqrt(variance(j) * variance(h));
    factor(matrix, t.ntraits, "Residual");
}

void readresidualfactors(state &s)
{
    for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) {
        infile in(residualfactorfile(p), author::system);
        for (int64 j = 1; j <= s.traits.ntraits; ++j) {
            in.record();
            for (int64 h = 1; h <= j; ++h) s.values.cholcove(p, j, h) = in.anyreal();
        }
        in.stopifmore();
    }
}
