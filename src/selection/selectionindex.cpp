#include "selection/selectionindex.h"

#include "evaluation/valuefiles.h"
#include "textlayout.h"

#include <algorithm>
#include <cmath>

namespace
{
double samplevariance(const double *values, int64 n)
{
    double sum = 0;
    for (int64 i = 0; i < n; ++i) sum += values[i];
    const double mean = sum / static_cast<double>(n);
    double squares = 0;
    for (int64 i = 0; i < n; ++i) squares += (values[i] - mean) * (values[i] - mean);
    return squares / static_cast<double>(n - 1);
}

double varianceorzero(const double *values, int64 n)
{
    const double variance = samplevariance(values, n);
    if (variance > static_cast<double>(1.0e-25f)) return variance;
    printline(" WARNING: SelectionVarA smaller than 1E-25, set to 0.0");
    return 0;
}

void computetestvara(state &s, int64 selectedtrait)
{
    const selectionsettings &sel = s.selection;
    cycledata &cycle = s.cycle;
    const int64 n = cycle.endtestindiv - cycle.starttestindiv + 1;
    cycle.selectionvarate(selectedtrait) =
        varianceorzero(cycle.estimatedbvtrait.column(selectedtrait), n);
    if (sel.recombselonoff)
        cycle.selectionvararecombte = samplevariance(cycle.estimatedbvrecomb.data(), n);
}

double recombweight(const state &s, int64 currentgen)
{
    const selectionsettings &sel = s.selection;
    const bool later = currentgen > sel.ngenselectonrec + s.pop.ngen;
    return later ? sel.recombindexwtlatergen : sel.recombindexwt;
}

void addrecombindex(state &s, double weight)
{
    cycledata &cycle = s.cycle;
    const double sdtrait = std::sqrt(cycle.selectionvarate(1));
    const double sdrecomb = std::sqrt(cycle.selectionvararecombte);
    for (int64 i = 1; i <= cycle.ntestindiv; ++i)
        cycle.estimatedbvindex(i) = cycle.estimatedbvtrait(i, 1) / sdtrait * (1 - weight) +
                                    cycle.estimatedbvrecomb(i) / sdrecomb * weight;
}

void addtraittoindex(state &s, int64 t)
{
    cycledata &cycle = s.cycle;
    const double sd = std::sqrt(cycle.selectionvarate(t));
    for (int64 i = 1; i <= cycle.ntestindiv; ++i)
        cycle.estimatedbvindex(i) += cycle.estimatedbvtrait(i, t) / sd * s.traits.indexwt(t);
}

void writeselectionindex(const state &s, int64 selectioncycle)
{
    valuefile out(selectioncycle, selectionindexfile);
    for (int64 i = 1; i <= s.cycle.ntestindiv; ++i)
        out.put(s.cycle.starttestindiv + i - 1, s.cycle.estimatedbvindex(i));
    out.close();
}
} // namespace

void computetrainingvara(state &s, int64 selectedtrait, int64 firstid, int64 lastid)
{
    const selectionsettings &sel = s.selection;
    cycledata &cycle = s.cycle;
    const int64 n = lastid - firstid + 1;
    const double *const tbv = s.values.tbv.column(s.qtn.qtnmodel, selectedtrait);
    cycle.selectionvaratr(selectedtrait) = varianceorzero(tbv + firstid - 1, n);
    if (sel.recombselonoff)
        cycle.selectionvararecombtr = samplevariance(s.values.tbvrecombz.data() + firstid - 1, n);
}

void computeselectionindex(state &s, int64 selectioncycle, int64 currentgen)
{
    const selectionsettings &sel = s.selection;
    cycledata &cycle = s.cycle;
    const bool severaltraits = s.traits.ntraits > 1;
    for (int64 t = 1; t <= s.traits.ntraits; ++t) {
        computetestvara(s, t);
        if (sel.recombselonoff) addrecombindex(s, recombweight(s, currentgen));
        if (severaltraits) addtraittoindex(s, t);
    }
    if (sel.recombselonoff || severaltraits) {
        std::copy(cycle.estimatedbvindex.begin(), cycle.estimatedbvindex.end(),
                  cycle.estimatedbv.begin());
        writeselectionindex(s, selectioncycle);
    } else {
        const double *estimates = cycle.estimatedbvtrait.column(1);
        std::copy(estimates, estimates + cycle.ntestindiv, cycle.estimatedbv.begin());
    }
}
