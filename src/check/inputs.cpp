#include "check/inputs.h"

#include "check/companions.h"
#include "check/earlierfiles.h"
#include "check/rungenerations.h"
#include "cyclefolder.h"
#include "editing/genomeediting.h"
#include "evaluation/solutionfiles.h"
#include "evaluation/trainingdata.h"
#include "founders/presets.h"
#include "founders/runmacs.h"
#include "founders/sitenumbers.h"
#include "founders/stores.h"
#include "haplotypes/burningeneration.h"
#include "markers/qtnplacement.h"
#include "merge/startmerge.h"
#include "pedigree/breedingplan.h"
#include "pedigree/earlierrun.h"
#include "pedigree/matings.h"
#include "pedigree/parentnumbers.h"
#include "pedigree/pedigree.h"
#include "pedigree/pedigreereadermaker.h"
#include "selection/pedigreeimport.h"
#include "selection/trainingrange.h"
#include "spec/inputfiles.h"
#include "tidy/leavings.h"
#include "traits/covariances.h"
#include "words.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace
{
// Notes a companion that is missing as a failure of the run, which ends a strict one. Gives what is
// to be done about it, nothing if it is there.
std::string notemissing(state &s, const std::string &program)
{
    for (const missingcompanion &missing : missingcompanions(s)) {
        if (missing.program != program) continue;
        notefailure(s.failures, program + ": " + adviceon(missing));
        return adviceon(missing);
    }
    return "";
}

// A companion without which a run ends with an I/O error where its results are read.
void stopwithout(state &s, const std::string &program)
{
    if (const std::string advice = notemissing(s, program); !advice.empty())
        ioerror(program, advice);
}

// ------------------------------------------------------- founders

void stopifrefused(const state &s, const coalescentrun &run)
{
    if (run.refused.empty() || !isours("macs")) return;
    ioerror(s.founders.pophistorymacs, "macs would refuse what it is told: " + run.refused);
}

// What the run will find in SegSites.txt and make of it, as it is expected.
void setexpectedsites(state &s, const expectedsites &expected)
{
    s.sites.nsegregincl = int64{1} << 62; // for the time being all numbers will do
    const double share =
        expected.kept > 0 ? static_cast<double>(expected.included) / expected.kept : 0;
    for (int64 h = 1; h <= s.founders.nchrom; ++h) {
        s.sites.nsegreginclglobal(h) = expected.included;
        s.sites.nmutinclglobal(h) =
            std::llround(share * static_cast<double>(s.founders.ndenovomutperchr));
        setsitenumbers(s, h);
    }
    computetotals(s);
}

int64 mostsnpofchips(const state &s)
{
    int64 most = 0;
    for (int64 chip = 1; chip <= s.chips.nchip; ++chip)
        most = std::max(most, s.loci.nsnponthischipchrom(chip, 1));
    return most;
}

// Base individuals, by whose frequencies sites are taken.
int64 nbaseindiv(const state &s)
{
    return std::count_if(
        s.pedi.ped.begin(), s.pedi.ped.begin() + lastindivofgen(s, 1),
        [](const pedigreeline &row) { return row.newsire == 0 && row.newdam == 0; });
}

// Sites of a chromosome in a band of frequencies: how many are expected, and hardly ever exceeded.
struct bandsites {
    int64 expected = 0, atmost = 0;
};
bandsites sitesinband(const state &s, const runfacts &facts, double lowest, double highest)
{
    const double share = shareinband(facts.coalescent, nbaseindiv(s), lowest, highest);
    return {std::llround(share * static_cast<double>(facts.sites.included)),
            atmostof(facts.sites, share)};
}

// Too few for what is wanted of a band: a stop where they hardly ever are enough, a warning where
// they mostly aren't.
void compareband(const state &s, const bandsites &sites, int64 wanted, const std::string &what,
                 int64 code)
{
    const std::string expectation = numbertext(wanted) + " sites of a chromosome within the " +
                                    "allele frequencies of " + what + " are wanted, and about " +
                                    numbertext(sites.expected) + " are expected to be there";
    if (wanted > sites.atmost) {
        printline("ERROR: " + expectation);
        stopwithcode(code);
    }
    if (wanted > sites.expected) warn(s.options, "", 0, expectation);
}

// Stops where even more sites than a run is likely to have are too few.
void stopiffewsites(state &s, const runfacts &facts)
{
    const expectedsites &expected = facts.sites;
    s.sites.nsegregincl = expected.atmost;
    setsitenumbers(s, 1);
    s.haplo.nblock = expected.atmost / lociperblock;
    checkblocknumber(s);
    compareband(s, sitesinband(s, facts, s.chips.minsnpfreq, s.chips.maxsnpfreq), mostsnpofchips(s),
                "the SNP chips", 110013);
    if (s.chips.snpchipinclqtn == 2 &&
        mostsnpofchips(s) + s.loci.nqtnonthischrom(1) > expected.atmost) {
        printline("ERROR: Not enough sites for the SNP of the chips and other QTN");
        stopwithcode(110028);
    }
    compareband(s, sitesinband(s, facts, s.qtn.minqtnfreq, s.qtn.maxqtnfreq),
                s.loci.nqtnonthischrom(1) - s.sites.nmutinclglobal(1), "the restricted QTN",
                110026);
    if (!s.qtn.qtnclustersonoff) return;
    array1<int8> isqtvpos(expected.atmost);
    for (int64 h = 1; h <= s.founders.nchrom; ++h)
        getqtvpositions(s, s.loci.nqtnonthischrom(h), h, isqtvpos, 0, true);
}

void warniffewsites(const state &s, const expectedsites &expected)
{
    const int64 most = std::max(mostsnpofchips(s), s.loci.nqtnonthischrom(1));
    if (most > expected.included)
        warn(s.options, "", 0,
             numbertext(most) +
                 " sites of a chromosome are wanted for a chip or the QTN, and "
                 "about " +
                 numbertext(expected.included) + " are expected to be there");
}

void judgesites(state &s, const runfacts &facts, faultlist &faults)
{
    setexpectedsites(s, facts.sites);
    if (facts.macsparams.empty() || facts.coalescent.unknown) return;
    const randomstream before = s.random; // the draws for clusters are not the run's
    if (faults.judge([&] { stopiffewsites(s, facts); }))
        warniffewsites(s, facts.sites);
    else
        printline("  About " + numbertext(facts.sites.included) +
                  " sites are expected on a chromosome, and more than " +
                  numbertext(facts.sites.atmost) + " hardly ever");
    s.random = before;
}

void judgefounders(state &s, runfacts &facts, faultlist &faults)
{
    if (!faults.judge([&] { initmacscases(s, facts.macsparams); })) facts.macsparams.clear();
    for (int64 h = 1; h <= s.founders.nchrom && s.founders.recombhotspotsonoff; ++h)
        if (!faults.judge([&] { regionsformacs(h); })) break;
    faults.judge([&] { stopwithout(s, "macs"); });
    if (!facts.macsparams.empty()) {
        facts.coalescent = parsecoalescent(s.founders.nhaps, facts.macsparams);
        faults.judge([&] { stopifrefused(s, facts.coalescent); });
        facts.sites = expectsites(s, facts.coalescent);
    }
    faults.judge([&] { stopwithout(s, "Vintrecaskelle"); });
    judgesites(s, facts, faults);
}

// ------------------------------------------------------- burn-in

// Variances need two individuals in each generation.
void stopifalone(const state &s, int64 gen)
{
    if (s.pedi.nindivinthisgen(gen) > 1) return;
    printline("ERROR: There are fewer than two individuals in generation " + numbertext(gen));
    stopwithcode(110003);
}

void checkeffects(state &s)
{
    arrayscope arrays;
    for (array2<double> *matrix : {&s.values.covaspec, &s.values.cholcovaspec})
        arrays.make(*matrix, s.traits.ntraits, s.traits.ntraits);
    workoutgeneticcovariances(s);
    randomstream aside = s.random;
    if (s.qtn.nqtngamma > 0) random_gamma(aside, s.qtn.shapeparam, s.qtn.scaleparam, true);
    const selectionsettings &sel = s.selection;
    if (sel.recombselonoff && sel.recombdistrib == effectdistribution::gamma)
        random_gamma(aside, sel.shaperecomb, sel.scalerecomb, true);
}

void checkburninvalues(const state &s)
{
    const generationspan span = burningenerations(s);
    for (int64 gen = span.first; gen <= span.last; ++gen) {
        stopifalone(s, gen);
        if (gen == 1) checkresidualcovariances(s.traits);
    }
}

void checkburninparents(const state &s)
{
    const generationspan span = burningenerations(s);
    for (int64 gen = span.first; gen <= span.last; ++gen)
        checkparents(s, firstindivofgen(s, gen), lastindivofgen(s, gen));
}

// ------------------------------------------------------- cycles

// Individuals that the training files name twice, or that don't exist when the cycle begins, leave
// them with fewer records than the prediction program is told of.
void checktrainindiv(const state &s, int64 gen)
{
    if (s.selection.selphenstrat != 6 || s.selection.selmethindicator != 2) return;
    std::set<int64> seen;
    for (const int64 row : s.cycle.trainindiv) {
        if (row > lastindivofgen(s, gen - 1))
            ioerror(trainindivfile, "individual " + numbertext(row) +
                                        " can't train: it is of a later generation than " +
                                        numbertext(gen - 1));
        if (!seen.insert(row).second)
            ioerror(trainindivfile, "names individual " + numbertext(row) + " twice");
    }
}

// Where the files of a training lie that this cycle takes over: the working folder, or that of an
// earlier cycle; empty where the same run makes them before.
std::string trainingfolder(const state &s, int64 cycle)
{
    if (!istrainingfixed(s, cycle)) return "./";
    const int64 from = s.selection.fixedtrainselcycle;
    const std::string folder = cyclefolder(from);
    const int64 firstcycle = cyclegenerations(s).first - s.pop.ngen;
    if (from == cycle || s.run.specstartgen == 1) {
        if (from < cycle) return "";
        ioerror(folder, "holds no training for cycle " + numbertext(cycle) +
                            ": UseTrainingDataFromGeneration must name a generation before it");
    }
    return from >= firstcycle && from < cycle ? "" : folder;
}

void checksolutions(state &s, int64 cycle)
{
    const std::string folder = trainingfolder(s, cycle);
    if (folder.empty()) return;
    for (const std::string &name : trainingfiles(s, 1))
        if (!pathexists(folder + name))
            notefailure(s.failures, folder + name + ": is missing, and can't be copied");
    arrayscope arrays;
    arrays.make(s.cycle.fixedsnp, s.loci.nsnpforsel);
    readfixedsnp(s, folder);
    layoutscaledfields(s, folder);
    if (s.selection.selmethindicator == 1) return;
    for (int64 t = 1; t <= s.traits.ntraits; ++t) readsolutions(s, folder + solutionsfile(s, t));
    if (s.selection.recombselonoff) readsolutions(s, folder + recombsolutions);
}

void checkprediction(state &s, int64 gen)
{
    if (aresolutionsinforce(s, gen - s.pop.ngen)) return checksolutions(s, gen - s.pop.ngen);
    checktrainindiv(s, gen);
    if (s.selection.selmethindicator == 2) stopwithout(s, "Quillomere");
    if (s.selection.selmethindicator == 1) notemissing(s, "QuillomereP");
}

void checkimport(state &s, int64 gen)
{
    const std::string path = importedpedigree(gen - s.pop.ngen);
    if (s.run.specstartgen == 1)
        ioerror(path, "can't be imported by a run that begins with generation 1, which removes the "
                      "folder Selection");
    readexternalpedigree(s, gen - s.pop.ngen, gen);
}

void checkchosenparents(const state &s, int64 gen)
{
    const breedingplan plan = planofgeneration(s, gen);
    const auto check = [&](int64 gender, int64 n) {
        checkparentsavailable(s, gender, gen, n, n);
        if (israndommated(s, gen) && std::min(n, s.pedi.nindivinthisgen(gen)) < 2)
            stopforrandommating(gen - 1);
    };
    check(1, plan.nsires);
    if (plan.dams == damside::chosen) check(2, plan.ndams);
    if (!s.editing.geneditonoff) return;
    checkeditednumber(s, gen - 1);
    readqtnforge(s);
}

void checkmatings(state &s, int64 gen)
{
    if (isimported(s, gen)) return;
    if (!s.selection.optcontribselonoff) return checkchosenparents(s, gen);
    stopwithout(s, "Brenvask");
    stopwithout(s, "Corvalind");
}

// False at the first fault: those of later cycles are most likely the same.
bool judgecycle(state &s, int64 gen, runfacts &facts, faultlist &faults)
{
    const std::size_t nbefore = faults.stops.size();
    if (!faults.judge([&] { setcyclesets(s, gen); })) return false;
    const bool specified = s.selection.selphenstrat == 6;
    facts.cycles.push_back({gen, s.cycle.firsttmptraingen, s.cycle.lasttmptraingen,
                            specified ? s.cycle.trainindiv.size() : s.cycle.ntrainindiv,
                            s.cycle.ntestindiv});
    if (isimported(s, gen) && s.run.importstage == 2) faults.judge([&] { checkimport(s, gen); });
    if (s.run.specstartgen > 1) faults.judge([&] { checkearliercycle(s, gen); });
    if (s.selection.selontbvyes1no0 == 0) faults.judge([&] { checkprediction(s, gen); });
    faults.judge([&] { stopifalone(s, gen - 1); });
    if (gen <= lastgenerationmade(s)) {
        faults.judge([&] { checkmatings(s, gen); });
        faults.judge([&] { stopifalone(s, gen); });
        if (s.selection.computeavercoancestryyes1no0 == 1)
            faults.judge([&] { stopwithout(s, "Brenvask"); });
    }
    return faults.stops.size() == nbefore;
}

void judgecycles(state &s, runfacts &facts, faultlist &faults)
{
    const generationspan cycles = cyclegenerations(s);
    for (int64 gen = cycles.first; gen <= cycles.last; ++gen)
        if (!judgecycle(s, gen, facts, faults)) break;
}

// ------------------------------------------------------- runs that go on

void judgeearlierruns(state &s, faultlist &faults)
{
    if (!faults.judge([&] { readearlierstores(s); }) ||
        !faults.judge([&] { readearlierpedigree(s); }))
        return;
    faults.judge([&] { checkearlierdrops(s); });
    faults.judge([&] { checkearliervalues(s); });
    faults.judge([&] { checkearlierindividuals(s); });
}
} // namespace

runfacts judgeinputs(state &s, arrayscope &arrays, faultlist &faults)
{
    runfacts facts;
    makepedigreearrays(s, arrays);
    makechromarrays(s, arrays);
    const bool newsimulation = s.run.specstartgen == 1;
    if (newsimulation)
        warnofearlierrun(s.options);
    else
        faults.judge([&] { stopifpacked(s); });
    faults.judge([&] { makepedigree(s); });
    // As behind the pedigree's way through its file: a row may be filled by an import.
    for (pedigreeline &row : s.pedi.ped) row.initialised = false;
    if (newsimulation)
        judgefounders(s, facts, faults);
    else
        judgeearlierruns(s, faults);
    faults.judge([&] { checkburninparents(s); });
    if (newsimulation) faults.judge([&] { checkeffects(s); });
    faults.judge([&] { checkburninvalues(s); });
    judgecycles(s, facts, faults);
    facts.firstgen = s.run.specstartgen;
    facts.lastgen = lastgenerationmade(s);
    return facts;
}

runfacts judgemerge(state &s, arrayscope &arrays, faultlist &faults)
{
    runfacts facts;
    faults.judge([&] {
        const mergeplan plan = planofmerge(s, arrays);
        facts.copiedfolder = plan.burninfolder;
        if (s.run.merging == mergekind::ids)
            for (const sourcefolder &source : plan.sources)
                facts.selectionfolders.push_back(source.path);
        for (const thing &one : plan.things)
            facts.lastgen = std::max(facts.lastgen, one.newgeneration);
        s.pedi.nindivinthisgen.allocate({0, facts.lastgen});
        s.pedi.cumindivnbtogen.allocate({0, facts.lastgen});
        for (const thing &one : plan.things) ++s.pedi.nindivinthisgen(one.newgeneration);
        for (int64 gen = 1; gen <= facts.lastgen; ++gen)
            s.pedi.cumindivnbtogen(gen) =
                s.pedi.cumindivnbtogen(gen - 1) + s.pedi.nindivinthisgen(gen);
    });
    return facts;
}
