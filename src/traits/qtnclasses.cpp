#include "traits/qtnclasses.h"

#include "files.h"
#include "sortstat.h"
#include "textlayout.h"

#include <array>
#include <string>

namespace
{
constexpr int nclasses = 5;
using classcounts = std::array<int64, nclasses>;

// The first three in single precision by design: a share at the limit decides by it.
const std::array<double, nclasses> classthresh = {single(0.01), single(0.05), single(0.10), 0.25,
                                                  0.50};
const char *const classlabels[nclasses] = {"  1 Percent", "  5 Percent", " 10 Percent",
                                           " 25 Percent", " 50 Percent"};

// How many of the n variances, sorted ascending, from the largest downward, exceed each share.
classcounts countlargest(const double *sorted, int64 n, double total)
{
    classcounts counts{};
    for (std::size_t a = 0; a < nclasses; ++a) {
        double share = 0;
        for (int64 k = n - 1; k >= 0; --k) {
            share += sorted[k] / total;
            if (share > classthresh[a]) {
                counts[a] = n - k;
                break;
            }
        }
    }
    return counts;
}

// The number of QTN in each class. Sums from the smallest variance upward.
classcounts classify(array1<double> &variances)
{
    const int64 n = variances.size();
    hpsortreal(n, variances.data());
    double total = 0;
    for (const double variance : variances) total += variance;
    return countlargest(variances.data(), n, total);
}

classcounts classifymodel(state &s, int64 p, int64 j)
{
    const qtnmodeldata &model = s.loci.model(p);
    const array1<double> &freq = s.loci.sets[model.set].referencefreq;
    const array2<double> &effects = s.qtn.dominonoff ? model.alpha : model.addeff;
    array1<double> variances(s.loci.ntotqtn);
    for (int64 q = 1; q <= s.loci.ntotqtn; ++q)
        variances(q) = locusgenicvariance(freq(q), effects(q, j));
    return classify(variances);
}

void putclassrow(textline &line, double fraction, const array1<classcounts> &counts, std::size_t a)
{
    putf(line, 100 * fraction, 20, 2);
    for (const classcounts &c : counts) puti(line, c[a], 20);
}

void printclasses(const state &s, int64 j, const array1<classcounts> &counts)
{
    textline line;
    puta(line, " Trait", 7);
    puti(line, j, 3);
    printline(line);
    line.clear();
    puta(line,
         "  Number of QTN explaining 1, 5, 10, 25 and 50% of the total genic variance of QTN "
         "effects for each QTN",
         103);
    printline(line);
    printfree(s.qtn.nqtngamma > 0
                  ? "         NormalUnrestr   NormalRestr        GammaUnrestr        GammaFreqRestr"
                  : "         NormalUnrestr   NormalRestr");
    const int64 widths[] = {12, 14, 20, 22};
    for (std::size_t a = 0; a < nclasses; ++a) {
        line.clear();
        puta(line, classlabels[a], 11);
        for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) puti(line, counts(p)[a], widths[p - 1]);
        printline(line);
    }
    printfree("     ");
}

void classifyrecombination(const state &s)
{
    const array1<double> &freq = s.loci.sets[qtnset::recombination].referencefreq;
    outfile out("./SimulatedData/ProportionOfVariationExplainedByNumberOfQtnRecombination.txt");
    textline line;
    puta(line, "         PercentVarExplained      nQtnRecomb", 44);
    out.writeline(line);
    array1<double> variances(s.loci.ntotqtnrecomb);
    for (int64 q = 1; q <= s.loci.ntotqtnrecomb; ++q)
        variances(q) = locusgenicvariance(freq(q), s.loci.addeffrecomb(q));
    const array1<classcounts> counts(1, classify(variances));
    for (std::size_t a = 0; a < nclasses; ++a) {
        putclassrow(line, classthresh[a], counts, a);
        out.writeline(line);
    }
    out.close();
}
} // namespace

void classifyqtns(state &s)
{
    outfile out("./SimulatedData/ProportionOfVariationExplainedByNumberOfQtn.txt");
    textline line;
    const bool withgamma = s.qtn.nqtngamma > 0;
    puta(line,
         std::string("          Trait      PercentVarExplained       nQtnNormalUnrestr         "
                     "nQtnNormalRestr") +
             (withgamma ? "         nQtnGammaUnrestr           nQtnGammaRestr" : ""),
         withgamma ? 138 : 88);
    out.writeline(line);
    array1<classcounts> counts(s.qtn.nqtnmodels);
    for (int64 j = 1; j <= s.traits.ntraits; ++j) {
        for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) counts(p) = classifymodel(s, p, j);
        for (std::size_t a = 0; a < nclasses; ++a) {
            puti(line, j, 20);
            putclassrow(line, classthresh[a], counts, a);
            out.writeline(line);
        }
        printclasses(s, j, counts);
    }
    out.close();
    if (s.selection.recombselonoff) classifyrecombination(s);
}
