#include "selection/trainingsets.h"

#include "cyclefolder.h"
#include "evaluation/predictionruns.h"
#include "evaluation/valuefiles.h"
#include "folders.h"
#include "textlayout.h"
#include "values/phenotypes.h"
#include "values/recombtrait.h"

#include <algorithm>
#include <cmath>
#include <vector>

void readtruevalues(state &s, int64 lastindiv)
{
    const int64 nmodels = s.qtn.nqtnmodels, ntraits = s.traits.ntraits;
    const int64 n = nmodels * ntraits;
    std::vector<double> values(static_cast<std::size_t>(3 * n));
    // The rows of earlier cycles are as they were read then.
    int64 &nread = s.values.nrowsread;
    infile in(valuetable, author::system);
    const int64 behind = s.marks->behind(valuetable, 1 + nread);
    if (behind > 0)
        in.skipto(behind, 1 + nread);
    else
        in.skiprecords(1 + nread);
    for (int64 i = nread + 1; i <= lastindiv; nread = i++) {
        in.record();
        in.skipwords(1);
        in.identifier(s.pedi.ped(i).newid, "individual");
        in.skipwords(2);
        in.anyreals(values.data(), 3 * n);
        const double *value = values.data();
        for (array3<double> *block : {&s.values.tbv, &s.values.tdv, &s.values.tpv})
            for (int64 t = 1; t <= ntraits; ++t)
                for (int64 p = 1; p <= nmodels; ++p) (*block)(i, p, t) = *value++;
    }
}

void readrecombination(state &s, int64 lastindiv)
{
    s.haplo.recombcount.fill(0);
    s.values.recombperindperchr.fill(0);
    infile in(recombinationtable, author::system);
    in.skiprecords(1);
    for (int64 i = 1; i <= lastindiv; ++i) {
        double values[2];
        in.record();
        in.skipwords(1);
        in.identifier(s.pedi.ped(i).newid, "individual");
        in.skipwords(2);
        in.anyreals(values, 2);
        s.values.tbvrecombz(i) = values[0];
        s.values.recombperindperchr(i) = values[1];
        for (int64 side = 1; side <= 2; ++side) s.haplo.recombcount(i, side) = in.integer();
    }
}

namespace
{
void makecyclefolder(state &s, int64 selectioncycle)
{
    const std::string folder = cyclefolder(selectioncycle);
    const char *const routine = "DetermineTrainAndTestDatasetsForSelection";
    removefolder(folder, routine);
    makefolder(folder, routine, s.failures);
}

// One record for each test individual.
template <class T>
void writetestfile(const state &s, int64 selectioncycle, const std::string &name, const T &valueof)
{
    valuefile out(selectioncycle, name);
    for (int64 i = s.cycle.starttestindiv; i <= s.cycle.endtestindiv; ++i)
        out.put(s.pedi.ped(i).newid, valueof(i));
    out.close();
}

// One record for each individual of the training range that has a phenotype.
void writetrainfile(const state &s, int64 selectioncycle, const std::string &name,
                    const array1<double> &phenotypes)
{
    valuefile out(selectioncycle, name);
    for (int64 k = 1; k <= phenotypes.size(); ++k)
        if (phenotypes(k) != -99)
            out.put(s.pedi.ped(s.cycle.starttrainindiv + k - 1).newid, phenotypes(k));
    out.close();
}

// Phenotype of the recombination trait: log count of the crossovers seen, in single precision.
double recombphenotype(const state &s, int64 i)
{
    const auto n = static_cast<float>(s.haplo.recombcount(i, 1) + s.haplo.recombcount(i, 2));
    return static_cast<double>(std::log(n + 0.0001f));
}

// Strategy 5: a random subset of the range keeps its phenotypes, drawn anew for every trait.
void drawtrainindicator(state &s)
{
    cycledata &cycle = s.cycle;
    array1<int64> tmpwrk(cycle.ntrainindivmax);
    randomorder(tmpwrk, cycle.ntrainindivmax, s.random);
    cycle.trainindicator.fill(0);
    for (int64 k = 1; k <= cycle.ntrainindiv; ++k) cycle.trainindicator(tmpwrk(k)) = 1;
}

// Whether the individual at place k of the range is phenotyped, under strategies 1 to 5.
bool isphenotyped(const state &s, int64 k)
{
    const selectionsettings &sel = s.selection;
    const cycledata &cycle = s.cycle;
    if (sel.selphenstrat == 4) return s.pedi.globalgender(cycle.starttrainindiv + k - 1) != 2;
    if (sel.selphenstrat == 5) return cycle.trainindicator(k) == 1;
    return true;
}

template <class T> void fillphenotypes(state &s, array1<double> &phenotypes, const T &valueof)
{
    const selectionsettings &sel = s.selection;
    const cycledata &cycle = s.cycle;
    phenotypes.fill(-99);
    if (sel.selphenstrat == 6) {
        for (const int64 r : cycle.trainindiv)
            phenotypes(r - cycle.starttrainindiv + 1) = valueof(r);
        return;
    }
    for (int64 k = 1; k <= phenotypes.size(); ++k)
        if (isphenotyped(s, k)) phenotypes(k) = valueof(cycle.starttrainindiv + k - 1);
}

void filltrainingphenotypes(state &s, int64 selectedtrait)
{
    const selectionsettings &sel = s.selection;
    cycledata &cycle = s.cycle;
    if (selectedtrait == 1) {
        const int64 n = cycle.endtrainindiv - cycle.starttrainindiv + 1;
        cycle.phenvaltrain.allocate(n);
        if (sel.recombselonoff) cycle.phenvalrecombtrain.allocate(n);
    }
    if (sel.selphenstrat == 5) drawtrainindicator(s);
    fillphenotypes(s, cycle.phenvaltrain,
                   [&](int64 i) { return s.values.tpv(i, s.qtn.qtnmodel, selectedtrait); });
    if (sel.recombselonoff)
        fillphenotypes(s, cycle.phenvalrecombtrain, [&](int64 i) { return recombphenotype(s, i); });
}

// The training pedigree: its first generation counts as founders, and its rows are numbered from 1.
void writetrainingpedigree(const state &s, outfile &out, int64 selectioncycle)
{
    const cycledata &cycle = s.cycle;
    const int64 tmpfirstgen = firstpedigreegen(s);
    const int64 pedfirstindiv = firstindivofgen(s, tmpfirstgen);
    const int64 pedfirstgenlastindiv = lastindivofgen(s, tmpfirstgen);
    const int64 tmpendtrainindiv = lastindivofgen(s, s.pop.ngen + selectioncycle - 1);
    textline line;
    for (int64 i = pedfirstindiv; i <= tmpendtrainindiv; ++i) {
        const pedigreeline &row = s.pedi.ped(i);
        const bool known = i > pedfirstgenlastindiv;
        for (const int64 id : {row.newid, known ? row.newsire : 0, known ? row.newdam : 0})
            puti(line, std::max<int64>(id - pedfirstindiv + 1, 0), 10);
        puti(line, 1, 10);
        const bool inrange = i >= cycle.starttrainindiv && i <= cycle.endtrainindiv;
        putf(line, inrange ? cycle.phenvaltrain(i - cycle.starttrainindiv + 1) : -99, 20, 10);
        out.writeline(line);
    }
}

void writetestdata(const state &s, int64 selectioncycle, int64 selectedtrait)
{
    writetestfile(s, selectioncycle, truetestvalues(s, selectedtrait),
                  [&](int64 i) { return s.values.tbv(i, s.qtn.qtnmodel, selectedtrait); });
    if (s.selection.recombselonoff)
        writetestfile(s, selectioncycle, recombtestvalues,
                      [&](int64 i) { return s.values.tbvrecombz(i); });
    if (s.selection.selmethindicator == 3)
        writetestfile(s, selectioncycle, testphenotypes(s, selectedtrait),
                      [&](int64 i) { return s.values.tpv(i, s.qtn.qtnmodel, selectedtrait); });
}

void writetrainingdata(const state &s, int64 selectioncycle, int64 selectedtrait)
{
    writetrainfile(s, selectioncycle, trainingphenotypes(s, selectedtrait), s.cycle.phenvaltrain);
    if (s.selection.recombselonoff)
        writetrainfile(s, selectioncycle, recombtrainingphenotypes, s.cycle.phenvalrecombtrain);
    outfile pedigree(cyclefolder(selectioncycle) + trainingpedigree(selectedtrait));
    if (s.selection.selmethindicator == 1) writetrainingpedigree(s, pedigree, selectioncycle);
    pedigree.close();
}
} // namespace

void determinetrainandtestdatasetsforselection(state &s, int64 selectioncycle, int64 selectedtrait)
{
    if (selectedtrait == 1) {
        makecyclefolder(s, selectioncycle);
        readtruevalues(s, s.cycle.endtestindiv);
        if (s.selection.recombselonoff) readrecombination(s, s.cycle.endtestindiv);
    }
    writetestdata(s, selectioncycle, selectedtrait);
    if (s.selection.selontbvyes1no0 != 0) return;
    filltrainingphenotypes(s, selectedtrait);
    writetrainingdata(s, selectioncycle, selectedtrait);
}
