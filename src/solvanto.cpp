#include "solvanto.h"

#include "check/companions.h"
#include "folders.h"
#include "founders/extractsegsites.h"
#include "founders/runmacs.h"
#include "founders/stores.h"
#include "haplotypes/burnindrop.h"
#include "haplotypes/founderblocks.h"
#include "markers/markgeneration.h"
#include "merge/startmerge.h"
#include "pedigree/earlierrun.h"
#include "pedigree/pedigree.h"
#include "pedigree/pedigreefiles.h"
#include "pedigree/pedigreereadermaker.h"
#include "repeathint.h"
#include "results/sequence.h"
#include "results/snpchips.h"
#include "runlock.h"
#include "runplan.h"
#include "selection/selectioncycle.h"
#include "shell.h"
#include "spec/readinparameters.h"
#include "spec/specreader.h"
#include "stops.h"
#include "textlayout.h"
#include "tidy/leavings.h"
#include "traits/simulateqtneffects.h"
#include "values/burninvalues.h"
#include "words.h"

#include <ctime>
#include <utility>

void titles()
{
    const std::string margin(30, ' ');
    const auto framed = [&](const char *text, bool trailing) {
        printline(margin + text + (trailing ? margin : ""));
    };
    printline("");
    framed("**********************", true);
    framed("*                    *", true);
    framed("*      Solvanto      *", true);
    framed("*                    *", true);
    framed("**********************", false);
    framed("VERSION:commit-7e40c1d", true);
    printfree(
        "              Software for simulating phenotype, sequence, and SNP data               ");
    printline("");
    printfree("                                    No Liability              ");
    printline("");
}

void makedirectories(state &s)
{
    const char *const routine = "MakeDirectories";
    removefolder("Chromosomes", routine);
    makefolder("Chromosomes", routine, s.failures);
    for (int64 i = 1; i <= s.founders.nchrom; ++i)
        makefolder("Chromosomes/Chromosome" + numbertext(i), routine, s.failures);
    removefolder("SimulatedData", routine);
    makefolder("SimulatedData", "MakeDirectories D", s.failures);
    removefolder("Selection", routine);
    makefolder("Selection", routine, s.failures);
}

namespace
{
void warnofcompanions(const state &s)
{
    for (const missingcompanion &missing : missingcompanions(s))
        warn(s.options, missing.program, 0, adviceon(missing));
}

float cpuseconds()
{
    return static_cast<float>(static_cast<double>(std::clock()) / CLOCKS_PER_SEC);
}

// A merge ends by a stop, and its failures count as well.
struct failuresatend {
    state &s;
    runaccount &account;
    ~failuresatend() { account.failures = std::move(s.failures); }
};

// The line of progress makes room for the message of a stop too.
struct progressend {
    progressline &progress;
    ~progressend() { endprogress(progress); }
};

void printtiming(float seconds)
{
    printline("");
    textline line = "  Time duration of Solvanto = ";
    putf(line, seconds, 20, 4);
    printline(line + " seconds.");
    printline("");
}

// What nothing reads from here on.
void tidyup(const state &s, leavingkind kind)
{
    if (s.options.tidy) removeleavings(s.options, kind);
}

void makefounders(state &s)
{
    runmacs(s);
    extractsegsites(s, packhaplotypes);
    tidyup(s, leavingkind::founders);
}

void tidyupcycle(const state &s)
{
    tidyup(s, leavingkind::cycle);
}

// What the pedigree and the founders left in their files is read once, for all generations.
void simulate(state &s)
{
    const bool newsimulation = s.run.specstartgen == 1;
    const bool burnin = s.run.specstartgen <= s.pop.ngen;
    arrayscope arrays;
    makepedigreearrays(s, arrays);
    readpedigreegender(s);
    if (burnin) drophaploburninandmakearrays(s, markgeneration);
    if (newsimulation) simulateqtneffects(s);
    if (burnin) computetbvvaravareandburnintpv(s);
    if (s.pop.ngensel > 0) drophaploselection(s, tidyupcycle);
}

void writeresults(state &s)
{
    const int64 first = s.run.specstartgen;
    const bool withoutlast = s.run.selflexibilityonoff && s.run.importstage == 1;
    const int64 last = withoutlast ? s.run.specendgen - 1 : s.run.specendgen;
    writeoutsnpchips(s, first, last);
    if (!s.run.fullseqoutonoff) return;
    writeoutsequence(s, first, last);
    // Compression takes the specification's last generation, also when output ends before it.
    if (s.run.zipsequenceonoff) zipsequenceoutputfiles(s, first, s.run.specendgen);
    tidyup(s, leavingkind::results);
}
} // namespace

void solvanto(const runoptions &options, runaccount &account)
{
    const float start = cpuseconds();
    commandsatonce(); // refused before anything is touched
    titles();
    const filedescriptor lock = lockrun(options, specfile);
    for (const char *folder : runfolders) refuselinks(folder);
    randomstream random;
    initiateseed(random, options);
    account.seedtaken = true;
    hintonsignals();
    const runsettings settings = readinparameters(options);
    state s(settings);
    s.random = random;
    s.failures.strict = options.strict;
    const failuresatend toaccount{s, account};
    warnofcompanions(s);
    planprogress(s);
    const progressend atend{s.progress};
    startmerge(s);

    const bool newsimulation = s.run.specstartgen == 1;
    if (newsimulation) {
        warnofearlierrun(options);
        makedirectories(s);
    } else {
        stopifpacked(s);
    }
    pedigreereadermaker(s);
    if (newsimulation) makefounders(s);
    arrayscope arrays;
    makechromarrays(s, arrays);
    readsegsitesdatafromallchrom(s);
    simulate(s);
    writeresults(s);
    if (s.run.specendgen == s.pop.ngensel + s.pop.ngen && !s.run.keepchromonoff)
        runshell("rm -r Chromosomes", "Solvanto: ", s.failures);

    printtiming(cpuseconds() - start);
}
