#include "selection/selectionindex.h"

#include "cyclefolder.h"
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
    selectiondata &sel = s.selection;
    const int64 n = sel.endtestindiv - sel.starttestindiv + 1;
    sel.selectionvarate(selectedtrait) =
        varianceorzero(sel.estimatedbvtrait.column(selectedtrait), n);
    if (sel.recombselonoff)
        sel.selectionvararecombte = samplevariance(sel.estimatedbvrecomb.data(), n);
}

void switchrecombweight(state &s, int64 currentgen)
{
    selectiondata &sel = s.selection;
    if (currentgen > sel.ngenselectonrec + s.pop.ngen)
        sel.recombindexwt = sel.recombindexwtlatergen;
}

void addrecombindex(state &s)
{
    selectiondata &sel = s.selection;
    const double sdtrait = std::sqrt(sel.selectionvarate(1));
    const double sdrecomb = std::sqrt(sel.selectionvararecombte);
    for (int64 i = 1; i <= sel.ntestindiv; ++i)
        sel.estimatedbvindex(i) = sel.estimatedbvtrait(i, 1) / sdtrait * (1 - sel.recombindexwt) +
                                  sel.estimatedbvrecomb(i) / sdrecomb * sel.recombindexwt;
}

void addtraittoindex(state &s, int64 t)
{
    selectiondata &sel = s.selection;
    const double sd = std::sqrt(sel.selectionvarate(t));
    for (int64 i = 1; i <= sel.ntestindiv; ++i)
        sel.estimatedbvindex(i) += sel.estimatedbvtrait(i, t) / sd * s.traits.indexwt(t);
}

void writeselectionindex(const state &s, int64 selectioncycle)
{
    outfile out(cyclefolder(selectioncycle) + "SelectionIndex.txt");
    textline line;
    for (int64 i = 1; i <= s.selection.ntestindiv; ++i) {
        puti(line, s.selection.starttestindiv + i - 1, 20);
        putf(line, s.selection.estimatedbvindex(i), 20, 10);
        out.writeline(line);
    }
    out.close();
}
} // namespace

void computetrainingvara(state &s, int64 selectedtrait, int64 firstid, int64 lastid)
{
    selectiondata &sel = s.selection;
    const int64 n = lastid - firstid + 1;
    const double *const tbv = s.values.tbv.column(s.qtn.qtnmodel, selectedtrait);
    sel.selectionvaratr(selectedtrait) = varianceorzero(tbv + firstid - 1, n);
    if (sel.recombselonoff)
        sel.selectionvararecombtr = samplevariance(s.values.tbvrecombz.data() + firstid - 1, n);
}

void computeselectionindex(state &s, int64 selectioncycle, int64 currentgen)
{
    selectiondata &sel = s.selection;
    const bool severaltraits = s.traits.ntraits > 1;
    for (int64 t = 1; t <= s.traits.ntraits; ++t) {
        computetestvara(s, t);
        if (sel.recombselonoff) {
            switchrecombweight(s, currentgen);
            addrecombindex(s);
        }
        if (severaltraits) addtraittoindex(s, t);
    }
    if (sel.recombselonoff || severaltraits) {
        std::copy(sel.estimatedbvindex.begin(), sel.estimatedbvindex.end(),
                  sel.estimatedbv.begin());
        writeselectionindex(s, selectioncycle);
    } else {
        const double *estimates = sel.estimatedbvtrait.column(1);
        std::copy(estimates, estimates + sel.ntestindiv, sel.estimatedbv.begin());
    }
    sel.accuracyfile.close();
}
