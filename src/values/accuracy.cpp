#include "values/accuracy.h"

#include "files.h"
#include "sortstat.h"
#include "textlayout.h"
#include "words.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace
{
// Mean and sample variance of the test individuals' values, and their correlation with the
// estimates.
struct comparison {
    double accuracy = 0, mean = 0, variance = 0;
};

comparison compare(const double *estimates, int64 nestimates, const std::vector<double> &truth)
{
    const int64 n = static_cast<int64>(truth.size());
    comparison c;
    pearsn(estimates, truth.data(), std::min(nestimates, n), c.accuracy);
    double ave, adev, sdev, skew, curt, sum = 0;
    moment(truth.data(), n, ave, adev, sdev, c.variance, skew, curt);
    for (const double x : truth) sum += x;
    c.mean = sum / static_cast<double>(n);
    return c;
}

// Values of the test individuals, from the first of them.
std::vector<double> testvalues(const state &s, const double *first)
{
    return std::vector<double>(first, first + s.cycle.ntestindiv);
}

double meancrossovers(const state &s, const std::vector<double> &z)
{
    const double maplength = s.founders.morgans * static_cast<double>(s.founders.nchrom);
    double sum = 0;
    for (const double x : z) sum += std::exp(std::log(maplength) + x);
    return sum / static_cast<double>(z.size());
}

textline layout(const char *title, int64 w)
{
    textline line;
    puta(line, title, w);
    return line;
}

textline row(const std::vector<double> &values, int64 w)
{
    textline line;
    for (const double x : values) putf(line, x, w, 5);
    return line;
}

void reportrecombination(outfile &out, const comparison &trait, const comparison &recombination,
                         double crossovers)
{
    const std::vector<double> values = {
        trait.accuracy, recombination.accuracy, trait.mean, recombination.mean, crossovers,
        trait.variance, recombination.variance};
    out.writeline(layout("             EBVacc             EBVaccRec            TBVmean        "
                         "TBVRecombZmean          TmpSummer           TBVvar           "
                         "TBVvarRecomb",
                         141));
    out.writeline(row(values, 20));
    printline(layout("         EBVacc       EBVaccRec       TBVmean   TBVRecombZmean    TmpSummer "
                     "      TBVvar       TBVvarRecomb",
                     107));
    printline(row(values, 15));
}

void reportonetrait(outfile &out, const comparison &trait, bool phenotypes)
{
    const char *const title = phenotypes
                                  ? "           PhenoAcc             TBVmean             TBVvar "
                                  : "             EBVacc             TBVmean             TBVvar ";
    const textline values = row({trait.accuracy, trait.mean, trait.variance}, 20);
    out.writeline(layout(title, 59));
    out.writeline(textline(values));
    printfree(title);
    printline(values);
}

void reportoneofseveral(outfile &out, const comparison &trait, bool phenotypes, int64 selectedtrait)
{
    if (selectedtrait == 1) {
        out.writeline(layout(
            phenotypes ? "     Trait            PhenoAcc             TBVmean              TBVvar"
                       : "     Trait              EBVacc             TBVmean              TBVvar",
            70));
        printfree(phenotypes
                      ? "    Trait            PhenoAcc             TBVmean              TBVvar"
                      : "    Trait              EBVacc             TBVmean              TBVvar");
    }
    textline line;
    puti(line, selectedtrait, 10);
    line += row({trait.accuracy, trait.mean, trait.variance}, 20);
    printline(line);
    out.writeline(line);
}
} // namespace

outfile openaccuracyfile(int64 selectioncycle)
{
    return outfile("./Selection/AccuracyOfBreedingValueSelectionCycle" +
                   numbertext(selectioncycle) + ".txt");
}

void computebvaccuracyandmoments(const state &s, outfile &out, int64 selectedtrait)
{
    const selectionsettings &d = s.selection;
    const cycledata &cycle = s.cycle;

    const double *const tbv = s.values.tbv.column(s.qtn.qtnmodel, selectedtrait);
    const int64 offset = cycle.starttestindiv - 1;
    const std::vector<double> truth = testvalues(s, tbv + offset);
    std::vector<double> z;
    if (d.recombselonoff) z = testvalues(s, s.values.tbvrecombz.data() + offset);

    const comparison trait = compare(cycle.estimatedbvtrait.column(selectedtrait),
                                     cycle.estimatedbvtrait.extent1().size(), truth);
    const bool phenotypes = d.selmethindicator == 3;
    if (d.recombselonoff)
        reportrecombination(
            out, trait, compare(cycle.estimatedbvrecomb.data(), cycle.estimatedbvrecomb.size(), z),
            meancrossovers(s, z));
    else if (s.traits.ntraits == 1)
        reportonetrait(out, trait, phenotypes);
    else
        reportoneofseveral(out, trait, phenotypes, selectedtrait);
    out.flush(); // a stop behind it leaves the lines
}
