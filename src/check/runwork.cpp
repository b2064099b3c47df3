#include "check/runwork.h"

#include "check/runfiles.h"
#include "cyclefolder.h"
#include "founders/simulatedsites.h"
#include "markers/sitesets.h"
#include "shell.h"

#include <algorithm>

namespace
{
double number(int64 n)
{
    return static_cast<double>(n);
}

bool makesfounders(const state &s)
{
    return s.run.specstartgen == 1 && s.run.merging == mergekind::none;
}

// Normal deviates come in pairs from points in a square that fall into a circle.
constexpr double drawspernormal = 1.2732;

// One for the strand to begin on, one for each block, 59 at a crossing.
double drawsofdrop(const state &s, const runfacts &facts)
{
    double pergamete = 0;
    for (const int64 nsites : s.sites.nsegreginclglobal)
        pergamete += 1 + number(nsites / lociperblock) + 59 * s.founders.morgans;
    double ngametes = 0;
    for (int64 gen = facts.firstgen; gen <= facts.lastgen; ++gen)
        ngametes += 2 * number(s.pedi.nindivinthisgen(gen));
    return ngametes * pergamete;
}

// Compression looks at each site; chips and QTN are taken from random orders of the sites.
double drawsofsites(const state &s, const runfacts &facts)
{
    double draws = 0;
    for (const int64 nsites : s.sites.nsegreginclglobal)
        draws += (compressioninforce(s) ? facts.sites.simulated : 0) +
                 number(nsites) * number(std::ssize(sitesetsinuse(s)));
    return draws;
}

double drawsofvalues(const state &s, const runfacts &facts)
{
    const double ntraits = number(s.traits.ntraits);
    double draws = 0;
    for (int64 gen = facts.firstgen; gen <= facts.lastgen; ++gen)
        draws += number(s.pedi.nindivinthisgen(gen)) * number(s.qtn.nqtnmodels) * ntraits;
    if (makesfounders(s)) draws += 2 * number(s.loci.ntotqtn) * ntraits;
    return drawspernormal * draws;
}

// Each cycle reads the values of all individuals before it, and writes the pedigree anew.
double tablesofcycles(const state &s, const runfacts &facts)
{
    const double row = 614 + 41 + 60 * number(s.qtn.nqtnmodels) * number(s.traits.ntraits);
    double bytes = 0;
    for (const trainingplan &plan : facts.cycles)
        bytes += row * number(lastindivofgen(s, plan.gen - 1));
    return bytes;
}

// A command runs through a shell, which copies or starts one program or some.
double startsofrun(const state &s, const runfacts &facts)
{
    double starts = makesfounders(s) ? 11 * number(s.founders.nchrom) : 0;
    for (const trainingplan &plan : facts.cycles) {
        const bool predicted =
            s.selection.selontbvyes1no0 == 0 && !aresolutionsinforce(s, plan.gen - s.pop.ngen);
        if (predicted) starts += 7 * number(s.traits.ntraits);
        if (s.selection.optcontribselonoff) starts += 14;
    }
    return starts;
}

void addpredictions(const state &s, const runfacts &facts, runwork &work)
{
    const double ntraits = number(s.traits.ntraits), nloci = number(s.loci.nsnpforsel);
    for (const trainingplan &plan : facts.cycles) {
        const double n = number(plan.ncandidates), ntrain = number(plan.nindiv);
        if (s.selection.selontbvyes1no0 == 0 && !aresolutionsinforce(s, plan.gen - s.pop.ngen) &&
            s.selection.selmethindicator == 2) {
            work.predictedcells += ntraits * ntrain * nloci;
            const double direct =
                std::min(ntrain, nloci) * std::min(ntrain, nloci) * std::max(ntrain, nloci);
            // As the prediction program decides: factor, or some hundred rounds.
            work.equationwork += ntraits * (direct < 2e10 ? direct : 100 * ntrain * nloci);
        }
        if (!s.selection.optcontribselonoff) continue;
        const double loci = s.selection.selontbvyes1no0 == 1 ? number(s.loci.ntotqtn) : nloci;
        work.allocationwork += n * n * loci + 10 * n * n * n;
    }
}
} // namespace

runwork workofrun(const state &s, const runfacts &facts)
{
    runwork work;
    const std::vector<runfile> files = filesofrun(s, facts);
    for (const runfile &file : files) {
        work.byteswritten += file.written;
        if (file.atend > 0 && file.atend < file.bytes) work.bytespacked += file.bytes;
    }
    work.starts = startsofrun(s, facts);
    if (s.run.merging != mergekind::none) return work;
    work.draws = drawsofdrop(s, facts) + drawsofsites(s, facts) + drawsofvalues(s, facts);
    if (makesfounders(s)) {
        work.recombinations = number(s.founders.nchrom) * facts.sites.recombinations;
        work.foundercells =
            number(s.founders.nchrom) * number(s.founders.nhaps) * facts.sites.simulated;
    }
    for (int64 gen = facts.firstgen; gen <= facts.lastgen; ++gen)
        work.genotypes += number(s.pedi.nindivinthisgen(gen)) * number(s.loci.ntotqtn) *
                          number(s.qtn.nqtnmodels) * number(s.traits.ntraits);
    work.tablebytes = tablesofcycles(s, facts);
    addpredictions(s, facts, work);
    return work;
}

// In units of what was measured, cpu time in draws. The factors were fitted to the examples and larger
// forms of them, which they keep within a factor of two on quiet and on busy machines;
// scripts/estimates compares.
double expectedseconds(const runwork &work, const machinespeed &speed)
{
    const double atonce = number(commandsatonce());
    const double indraws =
        8e6 + 6 * work.draws + 11.5 * work.bytespacked / atonce + 2.7 * work.tablebytes +
        (200 * work.recombinations + 1.2 * work.foundercells) / atonce + 0.5 * work.genotypes +
        9 * work.predictedcells + 0.017 * work.equationwork + 0.025 * work.allocationwork;
    // A second thread writes long files where there are several processors.
    const double perbyte = atonce > 1 ? 3 : 5;
    return indraws * speed.draw + perbyte * work.byteswritten * speed.byte +
           4 * work.starts * speed.start;
}

// ------------------------------------------------------- memory

namespace
{
// Programs that have read nothing yet, with their libraries, in bytes; of solvanto before it has
// written a file, and behind that.
constexpr double beginning = 6.5e6, emptyown = 9.0e6, emptymacs = 4.1e6, emptyformatter = 4.0e6,
                 emptygenomic = 9.6e6, shell = 2e6, emptypedigree = 4.3e6,
                 emptyrelationships = 8.7e6, emptyallocation = 8.8e6;

// Of all individuals, as long as the run goes.
double lastingmemory(const state &s, const runfacts &facts)
{
    const double values = 24 * number(s.qtn.nqtnmodels) * number(s.traits.ntraits);
    const double drives = s.editing.genedriveonoff ? number(s.loci.ntotqtn) / 4 : 0;
    return number(lastindivofgen(s, facts.lastgen)) *
           (176 + number(s.founders.nchrom) + values + drives);
}

// A chromosome while its founders are packed.
double packingmemory(const state &s, const runfacts &facts)
{
    if (!makesfounders(s)) return 0;
    const double nhaps = number(s.founders.nhaps);
    return 48 * (facts.sites.simulated + number(s.founders.ndenovomutperchr)) +
           nhaps * number(facts.sites.included) / lociperblock * 8;
}

// Two generations on the largest chromosome, and the genotypes of one at the QTN.
double generationmemory(const state &s, const runfacts &facts)
{
    double nblock = 0, nindiv = 0;
    for (const int64 nsites : s.sites.nsegreginclglobal)
        nblock = std::max(nblock, number(nsites / lociperblock));
    for (int64 gen = 1; gen <= facts.lastgen; ++gen)
        nindiv = std::max(nindiv, number(s.pedi.nindivinthisgen(gen)));
    double nqtn = 0;
    for (const qtnset set : setsinuse(s)) nqtn += number(s.loci.ntot(set));
    return 2 * 16 * nindiv * nblock + nindiv * nqtn;
}

// As the program decides between forming its equations and rounds on the genotypes.
double genomicmemory(const state &s, const trainingplan &plan)
{
    const double n = number(plan.nindiv), nloci = number(s.loci.nsnpforsel);
    const double fewer = std::min(n, nloci), more = std::max(n, nloci);
    return emptygenomic + n * nloci / 5 + (fewer * fewer * more < 2e10 ? 8 * fewer * fewer : 0);
}

double cyclememory(const state &s, const trainingplan &plan)
{
    double most = 0;
    const double n = number(plan.ncandidates);
    if (s.selection.selontbvyes1no0 == 0 && !aresolutionsinforce(s, plan.gen - s.pop.ngen))
        most = s.selection.selmethindicator == 1
                   ? emptypedigree + 200 * number(lastindivofgen(s, plan.lastgen))
                   : genomicmemory(s, plan);
    if (s.selection.optcontribselonoff || s.selection.computeavercoancestryyes1no0 == 1)
        most = std::max(most, emptyrelationships + n * number(s.loci.nsnpforsel) / 5 + 4 * n * n +
                                  4096 * n);
    if (s.selection.optcontribselonoff) most = std::max(most, emptyallocation + 20 * n * n);
    return most;
}
} // namespace

memorysize expectedmemory(const state &s, const runfacts &facts)
{
    const double lasting = emptyown + lastingmemory(s, facts);
    // Each stage, alone or with the program that it waits for.
    std::vector<memorysize> stages{{lasting + packingmemory(s, facts), 0},
                                   {lasting + generationmemory(s, facts), 0}};
    if (makesfounders(s)) {
        const double nhaps = number(s.founders.nhaps);
        const double atonce = number(std::min(commandsatonce(), s.founders.nchrom));
        stages.push_back({beginning, atonce * (shell + emptymacs + 140 * nhaps)});
        stages.push_back({beginning, atonce * (shell + emptyformatter +
                                               facts.sites.simulated * (nhaps / 8 + 22))});
    }
    for (const trainingplan &plan : facts.cycles)
        if (const double program = cyclememory(s, plan); program > 0)
            stages.push_back({lasting, shell + program});
    return *std::ranges::max_element(
        stages, {}, [](const memorysize &stage) { return stage.own + stage.program; });
}
