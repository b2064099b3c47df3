#include "selection/selectioncycle.h"

#include "cyclefolder.h"
#include "editing/edittargets.h"
#include "editing/genedrive.h"
#include "editing/genomeediting.h"
#include "evaluation/predictionruns.h"
#include "evaluation/selectionchip.h"
#include "evaluation/solutionfiles.h"
#include "evaluation/trainingdata.h"
#include "haplotypes/crossingfiles.h"
#include "haplotypes/droplines.h"
#include "haplotypes/selectiondrop.h"
#include "markers/markgeneration.h"
#include "pedigree/breedingplan.h"
#include "pedigree/pedigreefiles.h"
#include "runplan.h"
#include "selection/coancestryreport.h"
#include "selection/nextparents.h"
#include "selection/optimalcontributions.h"
#include "selection/pedigreeimport.h"
#include "selection/selectionarrays.h"
#include "selection/selectionindex.h"
#include "selection/trainingrange.h"
#include "selection/trainingsets.h"
#include "traits/covariances.h"
#include "traits/effectfiles.h"
#include "values/accuracy.h"
#include "values/breedingvalues.h"
#include "values/burninvalues.h"
#include "values/genicvariances.h"
#include "values/phenotypes.h"
#include "values/qtngenotypes.h"
#include "values/recombtrait.h"
#include "words.h"

#include <algorithm>

namespace
{
// ------------------------------------------------------------------------ one trait

// Writes the genotypes of the training and test individuals. Generations of which nothing is asked
// are left closed.
void writechipdata(state &s, int64 selectioncycle, int64 currentgen)
{
    const selectionsettings &sel = s.selection;
    const cycledata &cycle = s.cycle;
    selectionchipfiles files = openchipfiles(s, selectioncycle);
    for (int64 m = 1; m <= currentgen - 1; ++m) {
        const bool train =
            sel.selontbvyes1no0 == 0 && m >= cycle.firsttmptraingen && m <= cycle.lasttmptraingen;
        const bool test = m == currentgen - 1;
        if (!train && !test) continue;
        const int64 startindiv = firstindivofgen(s, m), endindiv = lastindivofgen(s, m);
        generationphases phases = openphases(s, m);
        if (train) writetrainingchip(s, files, phases, startindiv, endindiv);
        if (test) writetestchip(s, files, phases, startindiv, endindiv);
    }
    closechipfiles(files);
}

// Starting value of the prediction: the variance of true values, under prediction by pedigree of
// the pedigree's first generation.
void computetrainingvariance(state &s, int64 selectedtrait)
{
    const selectionsettings &sel = s.selection;
    const cycledata &cycle = s.cycle;
    if (sel.selmethindicator == 2) {
        computetrainingvara(s, selectedtrait, cycle.starttrainindiv, cycle.endtrainindiv);
        return;
    }
    const int64 pedtmpfirstgen = firstpedigreegen(s);
    computetrainingvara(s, selectedtrait, firstindivofgen(s, pedtmpfirstgen),
                        lastindivofgen(s, pedtmpfirstgen));
}

// The run for the recombination trait comes first: the trait's results stay under the common names.
void runprediction(state &s, int64 selectioncycle, int64 selectedtrait, int64 nquillomererun)
{
    computetrainingvariance(s, selectedtrait);
    writefixedsnp(s, selectioncycle);
    readvare(s);
    const bool bypedigree = s.selection.selmethindicator == 1;
    for (int64 runid = nquillomererun; runid >= 1; --runid) {
        if (bypedigree) writequillomerepspec(s, selectioncycle, selectedtrait, runid);
        writequillomerespec(s, selectioncycle, selectedtrait, runid);
        if (bypedigree)
            runquillomerep(s, selectioncycle, selectedtrait, runid);
        else
            runquillomere(s, selectioncycle, selectedtrait, runid);
    }
}

void estimatevalues(state &s, int64 selectioncycle, int64 selectedtrait)
{
    const int64 nquillomererun = s.selection.recombselonoff && selectedtrait == 1 ? 2 : 1;
    if (aresolutionsinforce(s, selectioncycle)) {
        if (istrainingfixed(s, selectioncycle))
            copytrainingdata(s, selectioncycle, selectedtrait);
        else
            importtrainingdata(s, selectioncycle);
        for (int64 runid = 1; runid <= nquillomererun; ++runid)
            scalegenottestingdata(s, selectioncycle, runid);
    } else {
        runprediction(s, selectioncycle, selectedtrait, nquillomererun);
    }
    if (s.selection.selmethindicator == 1)
        readquillomerepebvs(s, selectioncycle, selectedtrait);
    else
        computereadebv(s, selectioncycle, selectedtrait);
}

// Selection on true values or phenotypes has no prediction: the candidates rank by what is known of
// them. After the last generation there are as many estimates as candidates of the cycle before:
// the first of both are taken.
void takeknownvalues(state &s, int64 selectioncycle, int64 selectedtrait)
{
    cycledata &cycle = s.cycle;
    const int64 first = cycle.starttestindiv;
    const auto take = [&](const double *from, double *to, int64 nto) {
        std::copy_n(from + first - 1, std::min(cycle.ntestindiv, nto), to);
    };
    const int64 nestimates = cycle.estimatedbvtrait.extent1().size();
    double *const estimates = cycle.estimatedbvtrait.column(selectedtrait);
    if (s.selection.selontbvyes1no0 == 1) {
        take(s.values.tbv.column(s.qtn.qtnmodel, selectedtrait), estimates, nestimates);
        if (s.selection.recombselonoff)
            take(s.values.tbvrecombz.data(), cycle.estimatedbvrecomb.data(),
                 cycle.estimatedbvrecomb.size());
    }
    if (s.selection.selmethindicator == 3 && selectioncycle != s.pop.ngensel + s.pop.ngen)
        take(s.values.tpv.column(s.qtn.qtnmodel, selectedtrait), estimates, nestimates);
}

// The part of selection is as long as its cycles have traits to evaluate and chromosomes to drop.
void tellstep(state &s, int64 currentgen, int64 step, const std::string &where)
{
    const int64 first = std::max(s.run.specstartgen, s.pop.ngen + 1);
    const int64 nsteps = s.traits.ntraits + s.founders.nchrom;
    tellpart(s, runpart::cycles, (currentgen - first) * nsteps + step,
             (s.run.specendgen - first + 1) * nsteps,
             "cycle " + numbertext(currentgen - s.pop.ngen) + ", " + where);
}

void evaluatetrait(state &s, outfile &accuracyfile, int64 selectioncycle, int64 currentgen,
                   int64 selectedtrait)
{
    tellstep(s, currentgen, selectedtrait, "trait " + numbertext(selectedtrait));
    const bool predicted = s.selection.selontbvyes1no0 == 0;
    determinetrainandtestdatasetsforselection(s, selectioncycle, selectedtrait);
    s.cycle.fixedsnp.fill(0);
    // Without training data the file of the candidates is the same for all traits.
    if (predicted || selectedtrait == 1) writechipdata(s, selectioncycle, currentgen);
    if (predicted) estimatevalues(s, selectioncycle, selectedtrait);
    takeknownvalues(s, selectioncycle, selectedtrait);
    if (!accuracyfile.isopen()) accuracyfile = openaccuracyfile(selectioncycle);
    computebvaccuracyandmoments(s, accuracyfile, selectedtrait);
}

// The file is opened with the first report, behind whatever a trait's evaluation stops at.
void evaluatecandidates(state &s, int64 selectioncycle, int64 currentgen)
{
    outfile accuracyfile;
    for (int64 t = 1; t <= s.traits.ntraits; ++t)
        evaluatetrait(s, accuracyfile, selectioncycle, currentgen, t);
    accuracyfile.close();
}

// ------------------------------------------------------------------------ one cycle

void choosebytruncation(state &s, int64 currentgen)
{
    chooseparentsof(s, currentgen, selectnextparentstruncat);
    if (s.editing.geneditonoff) {
        runge(s, currentgen - s.pop.ngen, currentgen);
        editgenome(s, currentgen - s.pop.ngen, currentgen);
    }
}

void chooseparents(state &s, int64 selectioncycle, int64 currentgen)
{
    if (s.selection.optcontribselonoff)
        selectbyoptimcontrib(s, selectioncycle, currentgen);
    else
        choosebytruncation(s, currentgen);
}

void makegeneration(state &s, int64 currentgen, int64 startindiv, int64 endindiv)
{
    writegeneration(s, currentgen);
    dropsteps steps{markgeneration};
    if (s.editing.genedriveonoff) {
        steps.followgamete = definegenedriveinheritance;
        steps.finishzygotes = drivezygotes;
    }
    tellstep(s, currentgen, s.traits.ntraits + 1, "gene drop");
    performgenedropselection(s, currentgen, startindiv, endindiv, steps);
    compileqtngenotypes(s, currentgen, startindiv);
    computetbv(s, startindiv, endindiv);
    if (s.qtn.dominonoff) computetdv(s, startindiv, endindiv);
    computetotalgenicvariances(s, currentgen);
    if (s.selection.recombselonoff) computetbvrecomb(s, currentgen, startindiv, endindiv);
    computetpv(s, currentgen, startindiv, endindiv);
    if (s.selection.computeavercoancestryyes1no0 == 1)
        computecoancestry(s, currentgen - s.pop.ngen, currentgen, s.cycle.starttestindiv,
                          s.cycle.endtestindiv);
}

// Accuracy and moments of the generation that no cycle will judge any more.
void reportlastgeneration(state &s, int64 selectioncycle, int64 currentgen)
{
    cycledata &cycle = s.cycle;
    cycle.starttestindiv = firstindivofgen(s, currentgen);
    cycle.endtestindiv = lastindivofgen(s, currentgen);
    cycle.ntestindiv = s.pedi.nindivinthisgen(currentgen);
    textline line;
    puta(line, "  Last Generation", 17);
    puti(line, currentgen, 4);
    printline(line);
    outfile accuracyfile = openaccuracyfile(selectioncycle + 1);
    for (int64 t = 1; t <= s.traits.ntraits; ++t) {
        takeknownvalues(s, selectioncycle + 1, t);
        computebvaccuracyandmoments(s, accuracyfile, t);
    }
    accuracyfile.close();
}

// False where the stage ends here, so that the user can write the pedigree of currentgen.
bool runcycle(state &s, int64 currentgen, int64 endgen)
{
    const int64 selectioncycle = currentgen - s.pop.ngen;
    const bool imported = s.run.selflexibilityonoff && s.run.importextpedforthisgen == currentgen;
    computedescriptvariablesforselection(s, selectioncycle, currentgen);
    arrayscope arrays;
    makecyclearrays(s, currentgen, arrays);
    if (imported && s.run.importstage == 2)
        importexternalpedforcurrentselgen(s, selectioncycle, currentgen);
    evaluatecandidates(s, selectioncycle, currentgen);
    computeselectionindex(s, selectioncycle, currentgen);
    if (imported && s.run.importstage == 1) {
        importexternalpedforcurrentselgen(s, selectioncycle, currentgen);
        return false;
    }
    const int64 startindiv = s.cycle.endtestindiv + 1;
    const int64 endindiv = startindiv + s.pedi.nindivinthisgen(currentgen) - 1;
    if (imported)
        printline("");
    else
        chooseparents(s, selectioncycle, currentgen);
    makegeneration(s, currentgen, startindiv, endindiv);
    if (currentgen == endgen) reportlastgeneration(s, selectioncycle, currentgen);
    if (s.editing.genedriveonoff && currentgen == endgen) writegenedriveinformation(s, currentgen);
    printline("");
    return true;
}
} // namespace

void printoutselectiondetails(const state &s)
{
    const selectionsettings &sel = s.selection;
    textline line;
    if (sel.selmethindicator == 3) printline(" Selection is performed using phenotypic values");
    if (sel.selmethindicator != 2) return;
    if (sel.selontbvyes1no0 == 0) {
        puta(line, "Selection is performed using chip", 35);
        puti(line, s.chips.tmpchip, 2);
        printline(line);
        line.clear();
        puta(line, "with a total of", 17);
        puti(line, s.loci.nsnp, 10);
        puta(line, areqtnadded(s) ? " SNP and" : " SNP", areqtnadded(s) ? 8 : 4);
        if (areqtnadded(s)) {
            puti(line, s.loci.ntotqtn, 10);
            puta(line, " QTN", 4);
        }
    } else if (sel.recombselonoff) {
        puta(line, " Selection is performed using an index integrating TBV and TBVRecombZ", 69);
    } else {
        puta(line, " Selection is performed using TBV", 34);
    }
    printline(line);
    printline("");
}

void drophaploselection(state &s, void (*behindcycle)(const state &))
{
    if (s.run.specendgen <= s.pop.ngen) return; // nothing of selection belongs to this run
    arrayscope arrays;
    makestagearrays(s, arrays);
    readqtneffects(s);
    readresidualfactors(s);

    int64 startgen = s.pop.ngen + 1, endgen = s.pop.ngen + s.pop.ngensel;
    if (s.run.genflexibilityonoff) {
        startgen = std::max(s.run.specstartgen, startgen);
        endgen = s.run.specendgen;
    }
    printoutselectiondetails(s);
    s.haplo.globalrecomblocationmax = readhighestcrossings(s.founders.nchrom);
    if (!s.selection.recombselonoff) {
        s.values.recombperindperchr.fill(s.founders.morgans);
        readrecombcounts(s, lastindivofgen(s, startgen - 1));
    }
    for (int64 currentgen = startgen; currentgen <= endgen; ++currentgen) {
        const bool made = runcycle(s, currentgen, endgen);
        if (behindcycle) behindcycle(s);
        if (!made) break;
    }
    writehighestcrossings(s.haplo.globalrecomblocationmax, s.founders.nchrom);
}
