// state.h - the state of a simulation: one record of small records, one for each subject.
//
// Every routine of the system takes the state as its first argument, so that a test can hold
// several simulations. Lifetimes:
//   Run    settings: made by readinparameters, and constant behind it;
//   Stage  made when a stage begins and freed when it ends (arrayscope.h). A later stage fills its
//          arrays again from the files. The pedigree, and the numbers of sites, QTN and SNP per
//          chromosome, are read once for all stages behind them (solvanto.cpp).
// Units: positions relative to the chromosome (0 to 1); lengths in Morgans; frequencies 0 to 1.
#pragma once

#include "arrays.h"
#include "driveflags.h"
#include "filemarks.h"
#include "files.h"
#include "genomes.h"
#include "pedigreeline.h"
#include "progress.h"
#include "randomnumbers.h"
#include "runoptions.h"
#include "shell.h"

#include <array>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

// What a run merges: individuals listed by their numbers, whole folders, or nothing.
enum class mergekind { none, ids, directories, unknown };

// Run control. Set by the seed and the reader.
struct runcontrol {
    int64 specstartgen = 0, specendgen = 0; // first and last generation of this run
    bool genflexibilityonoff = false;       // a run may cover only part of the generations
    bool selflexibilityonoff = false; // a selection generation may take its pedigree from outside
    int64 importstage = 2;            // 1: stop after the breeding values; 2: import and go on
    int64 importextpedforthisgen = 0; // the generation with the external pedigree
    mergekind merging = mergekind::unknown;
    std::string mergetypes; // the word that tells it
    std::string mergefiles; // list of runs to merge
    int64 numberofmergeruns = 0;
    bool keepchromonoff = true; // the folder Chromosomes stays after the last generation
    bool fullseqoutonoff = false, zipsequenceonoff = false; // sequence output wanted; compressed
};

// Where the pedigree comes from: made by the run, or a file of the user's.
enum class pedigreesource { unset, internal, file };

// Population, generations and where the pedigree comes from. Lifetime: Run.
struct populationsettings {
    int64 ngen = 0;                // burn-in generations
    int64 ngensel = -1;            // selection generations; -1 until read
    int64 nindivp = 0;             // all individuals of all generations
    array1<int64> nindivinthisgen; // (0 to ngen+ngensel), entry 0 stays 0
    array1<int64> cumindivnbtogen; // (0 to ngen+ngensel): individuals up to and in the generation
    // (ngen+ngensel-1, at least 1): parents chosen from generation g to breed g+1
    array1<int64> nsireinthisgen, ndaminthisgen, nrandparinthisgen, nselfedparinthisgen;
    array1<int64> createdhinthisgen; // (ngen+ngensel) 1: doubled haploids; only if ngendh > 0
    int64 ngendh = 0;
    bool animbreedonoff = false, plantbreedonoff = false;
    std::string gendermatters;   // as the specification has it
    bool plantsbygender = false; // it says yes: plant matings respect gender
    pedigreesource pedigreefrom = pedigreesource::unset;
    std::string pedigreefile;
};

// Rows of the table that this run has written, and where the first of them lies in the file.
struct filedpedigree {
    int64 first = 0, last = 0;
    int64 offset = 0;
};

// Pedigree. Lifetime: Stage.
struct pedigreedata {
    array1<pedigreeline> ped;                   // (nindivp) row k is individual k
    array1<int64> globalgender;                 // (nindivp) 1 male, 2 female
    array1<int64> nmalinthisgen, nfeminthisgen; // (ngen+ngensel) males and females
    // As in the population settings, until the files of earlier generations or a merge tell other
    // sizes.
    array1<int64> nindivinthisgen, cumindivnbtogen; // (0 to ngen+ngensel)
    filedpedigree filed;
};

// Founders and coalescent simulation. Lifetime: Run.
struct foundersettings {
    int64 nchrom = 0;
    int64 nhaps = 0;            // haplotypes asked of the coalescent simulator
    std::string pophistorymacs; // preset, or name of a file of the user's
    double morgansmacs = 0;     // chromosome length in Morgans as the coalescent sees it
    bool internalmorgansmacs = false;
    double morgans = 0; // chromosome length in Morgans for the gene drop
    bool internalmorganssolvanto = false;
    int64 chrlengthbasesmacs = 0;
    bool internalchrlenbasesmacs = false;
    double mutationratemacs = 0; // per base and generation
    bool internalmutationratemacs = false;
    int64 effecpopsize = 0;
    bool internaleffecpopsize = false;
    bool recombhotspotsonoff = false;
    bool genomecompressiononoff = false;
    double genomecompression = 0; // percentage: chance that a simulated site is kept
    int64 ndenovomutperchr = 0;   // mutations added on each chromosome
};

// A de novo mutation: its slot, the individual that it arises in and the gamete of it (1 or 2),
// block and included site. The block of a site that is a multiple of 60 stands one too high, as in
// the file.
struct denovomutation {
    int64 slot = 0, carrier = 0, gamete = 0, block = 0, site = 0;
};

// Segregating sites. Lifetime: scalars while a chromosome is handled, arrays Stage.
struct segregatingsites {
    int64 nsegreg = 0, nsegregtmp = 0;               // sites with and without mutations
    int64 nsegregcomp = 0, nsegregtmpcomp = 0;       // the same after compression
    int64 nmut = 0;                                  // mutations added on the chromosome
    int64 nsegregincl = 0;                           // included sites: nblock x 60
    array1<int64> nsegreginclglobal, nmutinclglobal; // (nchrom)
    int64 nindivpinit = 0;                           // individuals counted in the mutation store
    array1<double> allphysicalmap;                   // (nsegreg)
    array1<double> allphysicalmapcomp;               // (nsegregcomp)
    array1<double> inclphysicalmap;                  // (nsegregincl)
    array1<int64> compressindicator;                 // (nsegregtmp) 1: survives compression
    array1<int64> tmpwrk, tmpwrkcomp;                // (nsegreg), (nsegregcomp)
    array1<int64> inclsnpid;                         // (nsegregincl) slot of each included site
    array1<int64> mutindicator, mutsitesid;          // (nsegreg), (ndenovomutperchr)
    array1<int64> inclmutindicator, inclmutindicatorindivid; // (nsegregincl)
    array1<std::vector<denovomutation>> denovoinfo; // (nchrom) the included mutations, by site
    array2<int8> indivmutindicator;                 // (nchrom, nindivp) 1: carries a mutation
    array1<int64> snponarrays;                      // (nsegregincl) sites in random order
    array1<double> minorallelefreq;                 // (nsegregincl)
};

// Haplotypes and recombination. Lifetime: Stage.
struct haplotypedata {
    int64 nblock = 0;                      // blocks of 60 sites on the chromosome at hand
    haplotypestore haplotypes;             // (nhaplos, nblock) founder haplotypes of a chromosome
    genomestore tmpgenome;                 // (n, nblock, 2) the generation at hand
    genomestore oldtmpgenome;              // the same for the parents
    array1<double> recombfactperblock;     // (nblock) share of the chromosome's recombination
    array1<array1<double>> recombfactors;  // (nchrom) recombfactperblock of those met so far
    array1<double> recombrateperblock;     // (nblock) crossing probability for the parent at hand
    array1<int64> globalrecomblocationmax; // (nchrom) highest crossing site met
    array2<int64> recombcount;             // (nindivp, 2) crossings per individual and gamete
};

// SNP chips. Lifetime: Run.
struct chipsettings {
    bool usesnpchiponoff = false;
    int64 nchip = 0;
    array1<int64> nsnpperchipperchrom; // (nchip)
    double minsnpfreq = 0, maxsnpfreq = 0;
    bool nestedonoff = false; // each chip holds the smaller ones
    int64 snpchipinclqtn = 0; // 1 chips include QTN, 2 they don't, 3 at random
    int64 tmpchip = 0;        // the chip used for selection
};

// QTN and the distributions of their effects. Lifetime: Run.
struct qtnsettings {
    int64 nqtn = 0, nqtngamma = 0;                 // wanted in all
    int64 nqtnperchrom = 0, nqtngammaperchrom = 0; // per chromosome
    int64 nqtnrecombperchrom = 0;
    bool qtnclustersonoff = false;
    double minqtnfreq = 0, maxqtnfreq = 0;
    double shapeparam = 0, scaleparam = 0;
    bool dominonoff = false;
    double domdegmean = 0, domdegvar = 0;
    double varamutprop = 0;
    int64 qtnmodel = 0;   // 1 NormalUnrestr, 2 NormalRestr, 3 GammaUnrestr, 4 GammaRestr
    int64 nqtnmodels = 4; // 2 if nqtngamma = 0
};

// Traits. Lifetime: Run.
struct traitsettings {
    int64 ntraits = 0;
    array1<double> indexwt, herit, varaspec; // (ntraits)
    array2<double> coraspec, core;           // (ntraits, ntraits)
    double heritrecomb = 0;                  // of the recombination trait
};

// What effects are drawn from.
enum class effectdistribution { normal, gamma };

// The sets of QTN: the trait models stand on the first two, the recombination trait on the third.
enum class qtnset { unrestricted, restricted, recombination };
constexpr qtnset qtnsets[] = {qtnset::unrestricted, qtnset::restricted, qtnset::recombination};
constexpr std::span<const qtnset> traitsets(qtnsets, 2);
// "Unrestricted" and so on, as file names begin.
inline const char *nameofset(qtnset set)
{
    static constexpr const char *names[] = {"Unrestricted", "Restricted", "Recombination"};
    return names[static_cast<int>(set)];
}

// The QTN of a set by their global numbers: through the chromosomes, ascending by site.
struct qtnsetdata {
    array1<int64> qtnid, chromid;   // site on its chromosome; chromosome
    array1<double> maf;             // minor allele frequency
    array1<double> referencefreq;   // of the counted allele in generation 1
    array1<double> currentfreq;     // the same in the generation at hand
    array1<double> pos;             // on its chromosome
    array1<int64> mutind, mutindiv; // 1: a mutation; its carrier
    array2<int8> qtngenos;          // (nindivinsimulrun, QTN) of the generation at hand
};

// A QTN model: effects (QTN of its set, traits). Position q of one set has nothing to do with q of
// another.
struct qtnmodeldata {
    qtnset set;
    effectdistribution distribution;
    const char *name;
    array2<double> addeff{}, domdeg{}, domeff{};
    array2<double> alpha{}; // average effects of allele substitution
};

// Chips and QTN as they were placed. Lifetime: Stage.
struct locusdata {
    array2<int64> nsnponthischipchrom;                    // (nchip, nchrom)
    int64 nsnp = 0, nsnpforsel = 0;                       // on the selection chip; with added QTN
    array1<int64> nqtnonthischrom, nqtnrecombonthischrom; // (nchrom) in a trait set; in the third
    int64 ntotqtn = 0, ntotqtngamma = 0, ntotqtnrecomb = 0;
    array1<int64> qtngamma;      // (ntotqtn) 1: also a gamma effect
    array1<double> addeffrecomb; // (ntotqtnrecomb)
    enumarray<qtnset, qtnsetdata, 3> sets;
    // Included sites of chips and QTN sets by the files that tell them, as far as they were needed.
    // Lifetime: Run.
    std::map<std::string, std::vector<int64>> sitelists;

    const array1<int64> &onthischrom(qtnset set) const
    {
        return set == qtnset::recombination ? nqtnrecombonthischrom : nqtnonthischrom;
    }
    int64 ntot(qtnset set) const { return set == qtnset::recombination ? ntotqtnrecomb : ntotqtn; }

    // Model p from 1; the gamma models are in use only with nqtngamma > 0.
    qtnmodeldata &model(int64 p) { return models[static_cast<std::size_t>(p - 1)]; }
    const qtnmodeldata &model(int64 p) const { return models[static_cast<std::size_t>(p - 1)]; }
    std::array<qtnmodeldata, 4> models{
        {{qtnset::unrestricted, effectdistribution::normal, "NormalUnrestr"},
         {qtnset::restricted, effectdistribution::normal, "NormalRestr"},
         {qtnset::unrestricted, effectdistribution::gamma, "GammaUnrestr"},
         {qtnset::restricted, effectdistribution::gamma, "GammaRestr"}}};
};

// Values and variances. Lifetime: Stage.
struct valuedata {
    int64 nindivinsimulrun = 0;   // individuals of the generation at hand
    array3<double> tbv, tdv, tpv; // (nindivp, nqtnmodels, ntraits)
    int64 nrowsread = 0;          // the first ones have the decimals of the table, as read from it
    array1<double> tbvrecomb, tbvrecombz, recombperindperchr; // (nindivp)
    double recombmeanz = 0, recombstddevz = 0;
    array2<double> covaspec, cholcovaspec; // (ntraits, ntraits) genetic
    array3<double> cove, cholcove;         // (nqtnmodels, ntraits, ntraits) residual
    array2<double> vara, vard, vare;       // (nqtnmodels, ntraits)
    array3<double> cova, covd;             // (nqtnmodels, ntraits, ntraits)
    double vararecomb = 0, varerecomb = 0, vararecombt = 0;
};

// Selection. Lifetime: Run.
struct selectionsettings {
    int64 selmethindicator = 0;  // 1 pedigree prediction, 2 genomic prediction, 3 phenotypes
    int64 selontbvyes1no0 = 2;   // 1 true values, 0 estimates, 2 until set and for phenotypes
    int64 addqtntosnpchip = 0;   // 1 QTN are added to the selection chip, 2 not, 0 unset
    bool externsolonoff = false; // SNP solutions come from outside
    int64 selphenstrat = 0;      // 1 to 6, phenotyping strategy
    int64 firsttraingenrp = 0, lasttraingenrp = 0, ntrainindiv = 0;
    bool fixtraindataonoff = false;
    int64 fixedtrainselcycle = 0;
    int64 ngenpedpriortrain = 0;
    int64 computeavercoancestryyes1no0 = -1; // 1 computed, 0 not, -1 unset
    bool optcontribselonoff = false;
    int64 sizeofxvecpopoc = 0, maxnbofgenoc = 0;
    double percentdeltaf = 0;
    bool recombselonoff = false;
    double recombindexwt = 0, recombindexwtlatergen = 0;
    int64 ngenselectonrec = 0;
    effectdistribution recombdistrib = effectdistribution::normal;
    double shaperecomb = 0, scalerecomb = 0;
};

// A selection cycle. Lifetime: Stage.
struct cycledata {
    int64 firsttmptraingen = 0, lasttmptraingen = 0;
    int64 starttrainindiv = 0, endtrainindiv = 0, ntrainindiv = 0, ntrainindivmax = 0;
    int64 starttestindiv = 0, endtestindiv = 0, ntestindiv = 0;
    array1<int64> trainindiv;     // chosen training individuals, specified strategy
    array1<int64> trainindicator; // (ntrainindivmax) 1: in the random training set
    array1<double> phenvaltrain, phenvalrecombtrain; // (endtrainindiv-starttrainindiv+1)
    array1<int64> gender;                            // (ntestindiv)
    array1<double> estimatedbv, estimatedbvindex, estimatedbvrecomb; // (ntestindiv)
    array2<double> estimatedbvtrait;                                 // (ntestindiv, ntraits)
    array1<double> selectionvaratr, selectionvarate;                 // (ntraits)
    double selectionvararecombtr = 0, selectionvararecombte = 0;
    array1<int64> fixedsnp; // (nsnp, or nsnp+ntotqtn when QTN are added)
};

// Gene editing and gene drive. Lifetime: Run.
struct editingsettings {
    bool geneditonoff = false, genedriveonoff = false;
    int64 nindedited = 0, ngeneditsperind = 0;
    bool userqtnonoff = true; // only QTN of the user's list are edited
};

// The edits of a cycle, and the drives of all. Lifetime: Stage.
struct editdata {
    array1<int64> idofgenomeeditinds; // (nindedited)
    array2<int64> genomeeditqtnpos, genomeeditqtnchrom, genomeeditqtnposneg;
    driveflags genedriveqtnpresence; // (all individuals, all QTN, 2)
    array1<int64> indivtobeedited;
    array1<int64> qtnidsortedbyabsval, qtnidsortedbyabsvalchrom, qtnidsortedbyabsvalrecodedid,
        qtnidsortedbyabsvalmutindivid, qtnforgeneditposneg; // (ntotqtn)
};

// What holds for the whole run: made by the reader of the specification (or by a test), and behind
// it only looked at.
struct runsettings {
    runoptions options;
    runcontrol run;
    populationsettings pop;
    foundersettings founders;
    chipsettings chips;
    qtnsettings qtn;
    traitsettings traits;
    selectionsettings selection;
    editingsettings editing;
};

// What the stages make.
struct stagerecords {
    progressline progress;
    commandfailures failures;
    randomstream random;
    // Of the files that are extended; what only writes the state's values keeps them too.
    std::unique_ptr<filemarks> marks = std::make_unique<filemarks>();
    pedigreedata pedi;
    segregatingsites sites;
    haplotypedata haplo;
    locusdata loci;
    valuedata values;
    cycledata cycle;
    editdata edits;
};

// The settings must live as long as the state.
struct state : stagerecords {
    explicit state(const runsettings &settings)

        : options(settings.options), run(settings.run), pop(settings.pop),
          founders(settings.founders), chips(settings.chips), qtn(settings.qtn),
          traits(settings.traits), selection(settings.selection), editing(settings.editing)
    {
        pedi.nindivinthisgen = pop.nindivinthisgen;
        pedi.cumindivnbtogen = pop.cumindivnbtogen;
    }
    state(const state &) = delete;
    state &operator=(const state &) = delete;

    const runoptions &options;
    const runcontrol &run;
    const populationsettings &pop;
    const foundersettings &founders;
    const chipsettings &chips;
    const qtnsettings &qtn;
    const traitsettings &traits;
    const selectionsettings &selection;
    const editingsettings &editing;
};

// First and last individual (pedigree rows) of a generation.
inline int64 firstindivofgen(const state &s, int64 gen)
{
    return s.pedi.cumindivnbtogen(gen - 1) + 1;
}
inline int64 lastindivofgen(const state &s, int64 gen)
{
    return s.pedi.cumindivnbtogen(gen);
}

// First and last burn-in generation that this run works on; none where last lies below first.
struct generationspan {
    int64 first = 1, last = 0;
};
inline generationspan burningenerations(const state &s)
{
    if (!s.run.genflexibilityonoff) return {1, s.pop.ngen};
    return {s.run.specstartgen, s.run.specendgen < s.pop.ngen ? s.run.specendgen : s.pop.ngen};
}

// Folder of a chromosome: "./Chromosomes/Chromosome<h>/", or that of another run.
inline std::string chromfolder(int64 chrom, const std::string &runfolder = ".")
{
    return runfolder + "/Chromosomes/Chromosome" + std::to_string(chrom) + "/";
}

// The sets of this simulation.
inline std::span<const qtnset> setsinuse(const state &s)
{
    return s.selection.recombselonoff ? std::span<const qtnset>(qtnsets) : traitsets;
}

// The set on which the model of selection stands.
inline qtnset setofselection(const state &s)
{
    return s.loci.model(s.qtn.qtnmodel).set;
}
