#include "spec/consistencychecks.h"

#include "spec/inputfiles.h"
#include "spec/specvalues.h"
#include "stops.h"
#include "textlayout.h"
#include "words.h"

#include <cmath>
#include <initializer_list>

namespace
{
void printlines(std::initializer_list<const char *> lines)
{
    for (const char *line : lines) printline(line);
}

// keys: those whose settings the refusal is about.
[[noreturn]] void refuse(const specreader &r, int64 code,
                         std::initializer_list<std::string_view> keys,
                         std::initializer_list<const char *> lines)
{
    explainkeys(r, keys);
    printlines(lines);
    stopwithcode(code);
}

bool iseither(std::string_view setting, std::string_view one, std::string_view other)
{
    return isword(setting, one) || isword(setting, other);
}

void checkscheme(const specreader &r)
{
    const runsettings &s = r.s;
    if (s.pop.ngensel == 0 && s.pop.ngen == 0)
        refuse(r, 100001, {"numbergenerationsburnin", "numbergenerationsselection"},
               {"ERROR- NumberGenerationsBurnIn and NumberGenerationsSelection can't both be 0"});
    if (s.pop.pedigreefrom == pedigreesource::internal) {
        if (isword(r.animalbreeding, "off") && isword(r.plantbreeding, "off"))
            refuse(r, 100002, {"animalbreedingonoff", "plantbreedingonoff"},
                   {"ERROR: When using an internal pedigree, either AnimalBreedingOnOff or",
                    "PlantBreedingOnOff must be On."});
        if (isword(r.animalbreeding, "on") && isword(r.plantbreeding, "on"))
            refuse(r, 100003, {"animalbreedingonoff", "plantbreedingonoff"},
                   {"ERROR: AnimalBreedingOnOff or PlantBreedingOnOff must be Off"});
    }
    if (!iseither(r.recombdistribution, "normal", "gamma"))
        refuse(r, 100004, {"distributionofqtnforrecombination"},
               {"ERROR: The recombination distribution is incorrectly set",
                "Should be Normal or Gamma"});
    if (s.run.selflexibilityonoff && s.run.importstage != 1 && s.run.importstage != 2)
        refuse(r, 100008, {"importstageput1tocomputebv2tocontinue"},
               {"ERROR: ImportStage must be 1 (to stop Solvanto after the",
                "computation of BV) or 2 (to import the external pedigree and continue)"});
}

void checkchips(const specreader &r)
{
    chipsettings &chips = r.s.chips;
    if (chips.snpchipinclqtn == 0)
        refuse(r, 100009, {"snpchipincludesqtnyesnorandom"},
               {"ERROR: SnpChipIncludesQtn is incorrectly set", "Should be Yes, No or Random"});
    if (chips.nchip == 1) chips.nestedonoff = true;
    if (chips.nchip != 1 && isword(r.nestedchips, "no") && chips.snpchipinclqtn != 3)
        refuse(r, 100010, {"snpchipsarenestedyesno", "snpchipincludesqtnyesnorandom"},
               {"ERROR: SNP chips must be nested to allow controlling",
                "the inclusion of QTN in the SNP chip(s)",
                "SnpChipsAreNestedYesNo should be changed to Yes, or",
                "SnpChipIncludesQtnYesNoRandom changed to Random"});
    if (chips.nchip == 1) chips.tmpchip = 1;
}

void checkmutations(const specreader &r)
{
    const runsettings &s = r.s;
    if (s.founders.ndenovomutperchr <= 0) return;
    printlines({"Insert mutations in chromosomes",
                "ERROR: This option is not available at the moment",
                " NOTE: Please provide a value for the proportion of mutational in base additive "
                "genetic variance"});
    if (s.qtn.varamutprop == 0)
        printline(" NOTE: The proportion of mutational in base additive genetic variance is null");
    if (s.qtn.varamutprop > 1) {
        explainkeys(r, {"mutationalvarianceproportion"});
        printline("ERROR: The proportion of mutational in base additive genetic variance has to be "
                  "between 0.0 and 1.0");
        plainstop();
    }
}

void checkqtn(const specreader &r)
{
    runsettings &s = r.s;
    qtnsettings &qtn = s.qtn;
    if (qtn.nqtnperchrom == 0 && qtn.nqtngammaperchrom == 0)
        refuse(r, 100011,
               {"numberofqtnperchromosomenormaldist", "numberofqtnperchromosomegammadist"},
               {"ERROR: NbOfQtnPerChromNormalDist or NbOfQtnPerChromGammaDist",
                "must be greater than zero"});
    qtn.nqtn = s.founders.nchrom * qtn.nqtnperchrom;
    qtn.nqtngamma = s.founders.nchrom * qtn.nqtngammaperchrom;
    if (qtn.nqtngamma > qtn.nqtn)
        refuse(r, 100012,
               {"numberofqtnperchromosomenormaldist", "numberofqtnperchromosomegammadist"},
               {"ERROR: Number of QTN for Gamma distribution must be less than or equal to "
                "that for the Normal distribution"});
    if (qtn.nqtngamma == 0) qtn.nqtnmodels = 2;
    checkmutations(r);
}

// Notes only: editing goes on.
void checkediting(const runsettings &s)
{
    if (!s.editing.geneditonoff) return;
    if (s.pop.pedigreefrom != pedigreesource::internal)
        printline("ERROR: Gene editing is not allowed with external pedigrees");
    if (s.run.genflexibilityonoff && s.run.specstartgen > 1)
        printlines(
            {" NOTE: When performing gene editing,",
             " GeneEditingOnOff must be On from the first burnin generation, and",
             " the QTN model used for selection must be the same",
             " across all selection generations",
             " The QTN model is determined by SelectionBasedOnRestrictedOrUnrestrictedQtn and",
             " DistributionOfQtnOfSelectionTraits (see Selection box)"});
    if (s.run.selflexibilityonoff)
        printlines({" ERROR: Gene editing is not compatible with importing",
                    " external pedigrees for some selection generations"});
}

void setaddqtntosnpchip(specreader &r)
{
    if (isword(r.addqtntochip, "yes")) r.s.selection.addqtntosnpchip = 1;
    if (isword(r.addqtntochip, "no")) r.s.selection.addqtntosnpchip = 2;
}

void setselectionmethod(specreader &r)
{
    struct method {
        const char *word;
        int64 selmethindicator, selontbvyes1no0;
    };
    constexpr method methods[] = {
        {"pedigreeblup", 1, 0}, {"gblup", 2, 0}, {"tbv", 2, 1}, {"pheno", 3, 2}};
    for (const method &m : methods) {
        if (!isword(r.selectionmethod, m.word)) continue;
        r.s.selection.selmethindicator = m.selmethindicator;
        r.s.selection.selontbvyes1no0 = m.selontbvyes1no0;
    }
}

void setqtnmodel(specreader &r)
{
    const bool restricted = isword(r.selectionbasedon, "restricted");
    const bool gamma = isword(r.qtndistribution, "gamma");
    if ((!restricted && !isword(r.selectionbasedon, "unrestricted")) ||
        (!gamma && !isword(r.qtndistribution, "normal")))
        refuse(
            r, 100014,
            {"selectionbasedonrestrictedorunrestrictedqtn", "distributionofqtnofselectiontraits"},
            {"ERROR: SelectionBasedOnRestrictedOrUnrestrictedQtn or "
             "DistributionOfQtnOfSelectionTraits are incorrectly set",
             "Selection should be based on Unrestricted or Restricted QTNs, and QTN "
             "distribution should be Normal or Gamma"});
    r.s.qtn.qtnmodel = 1 + (restricted ? 1 : 0) + (gamma ? 2 : 0);
}

void checkphenotypicselection(const specreader &r)
{
    const selectionsettings &sel = r.s.selection;
    if (sel.selmethindicator == 3 && sel.recombselonoff)
        refuse(r, 100015, {"selectionmethod", "recombinationonoff"},
               {"ERROR: Phenotypic selection is not compatible",
                "with selection for the recombination rate"});
    if (sel.selmethindicator <= 0)
        refuse(r, 100016, {"selectionmethod"}, {"ERROR: Problem with selection method"});
    if (sel.selmethindicator != 3) return;
    if (sel.optcontribselonoff)
        refuse(r, 100028, {"selectionmethod", "optimalcontributionselectiononoff"},
               {" ERROR: Optimal contribution selection is not compatible with selection "
                "based on phenotypic values"});
    if (isword(r.computecoancestry, "yes"))
        refuse(r, 100027, {"selectionmethod", "computeaveragecoancestryyesno"},
               {"ERROR: The option ComputeAverageCoancestryYesNo is not available",
                "when selection is based on phenotypes",
                "ComputeAverageCoancestryYesNo must be No in that case"});
}

void setphenotypingstrategy(specreader &r)
{
    constexpr const char *strategies[] = {"allphenotypes",      "allhistoricalphenotypes",
                                          "previousgeneration", "allmales",
                                          "randomphenotypes",   "specifiedindiv"};
    int64 &strategy = r.s.selection.selphenstrat;
    for (int64 k = 1; k <= 6; ++k)
        if (isword(r.phenotypingstrategy, strategies[k - 1])) strategy = k;
    if (strategy == 6) {
        printline("NOTE: SelectionPhenotypeStrategy is set to 'SpecifiedIndiv';");
        printline("      this requires IDs specified in '" + std::string(trainindivfile) + "'.");
    }
}

void checkphenotypingstrategy(const specreader &r)
{
    const runsettings &s = r.s;
    const int64 strategy = s.selection.selphenstrat;
    if (strategy == 0)
        refuse(r, 100020, {"selectionphenotypingstrategy"},
               {"ERROR: SelectionPhenotypingStrategy is incorrectly set",
                "Should be AllPhenotypes, AllHistoricalPhenotypes, AllMales, "
                "PreviousGeneration or RandomPhenotypes"});
    if ((strategy == 2 || strategy == 3) && s.pop.ngen == 1)
        refuse(r, 100021, {"numbergenerationsburnin", "selectionphenotypingstrategy"},
               {"ERROR: Number of burn-in generations must be at least 2"});
    if (!s.selection.recombselonoff) return;
    if (strategy == 1)
        refuse(r, 100022, {"selectionphenotypingstrategy", "recombinationonoff"},
               {"ERROR: SelectionPhenotypingStrategy cannot be AllPhenotypes when selecting "
                "for recombination"});
    if (strategy == 4 && s.pop.ngen == 1)
        refuse(r, 100023, {"selectionphenotypingstrategy", "numbergenerationsburnin"},
               {"ERROR: Number of burn-in generations must be at least 2 when selecting ",
                "for recombination using AllMales as selection strategy"});
}

void checkexternalsolutions(const specreader &r, int64 code)
{
    if (!iseither(r.externalsolutions, "yes", "no"))
        refuse(r, code, {"useexternalsnpsolutionsyesno"},
               {"ERROR: UseExternalSnpSolutions must Yes or No"});
}

void settrainingdata(specreader &r)
{
    selectionsettings &sel = r.s.selection;
    if (sel.lasttraingenrp < sel.firsttraingenrp)
        refuse(r, 100024, {"firstandlasttraininggenforrandomphenotypesstrat"},
               {"ERROR: The first and last training generations for the",
                "RandomPhenotypes phenotyping strategy are incorrectly set"});
    sel.fixtraindataonoff = isword(r.fixtraining, "on");
    if (!sel.fixtraindataonoff) return;
    if (r.trainingfromgeneration <= r.s.pop.ngen)
        refuse(r, 100025, {"usetrainingdatafromgeneration"},
               {"ERROR: The fixed training generation must be a selection generation"});
    sel.fixedtrainselcycle = r.trainingfromgeneration - r.s.pop.ngen;
}

void checkestimatedvalues(specreader &r)
{
    runsettings &s = r.s;
    setaddqtntosnpchip(r);
    if (!iseither(r.addqtntochip, "yes", "no"))
        refuse(r, 100017, {"addqtntothesnpchipyesno"},
               {"ERROR: SelectionChipIncludesQtn is incorrectly set", "Should be Yes or No"});
    if (s.chips.snpchipinclqtn == 1 && s.selection.addqtntosnpchip == 1)
        refuse(r, 100018, {"snpchipincludesqtnyesnorandom", "addqtntothesnpchipyesno"},
               {"ERROR: AddQtnToSnpChip must be 'No' when SnpChipInclQtn is 'Yes'",
                "to avoid that the selection chip includes twice the QTN"});
    if (s.chips.snpchipinclqtn == 3 && s.selection.addqtntosnpchip == 1)
        printline(" NOTE: Selection chip might include some QTN twice");
    checkexternalsolutions(r, 100019);
    if (s.selection.externsolonoff) {
        printlines({"  NOTE: EBV will be computed using external SNP solutions",
                    "  Please provide the required files in the Solvanto directory"});
    } else {
        setphenotypingstrategy(r);
        checkphenotypingstrategy(r);
    }
    settrainingdata(r);
    if (isword(r.computecoancestry, "yes")) s.selection.computeavercoancestryyes1no0 = 1;
    if (isword(r.computecoancestry, "no")) s.selection.computeavercoancestryyes1no0 = 0;
    if (s.selection.computeavercoancestryyes1no0 == -1)
        refuse(r, 100026, {"computeaveragecoancestryyesno"},
               {"ERROR: A value must be provided for ComputeAverageCoancestryYesNo"});
}

void checkselection(specreader &r)
{
    if (r.s.pop.ngensel <= 0) return;
    if (r.s.pop.ngen == 0) {
        explainkeys(r, {"numbergenerationsburnin"});
        printline("ERROR: There must be some burnin generations");
        plainstop();
    }
    setaddqtntosnpchip(r);
    setselectionmethod(r);
    checkexternalsolutions(r, 100013);
    setqtnmodel(r);
    checkphenotypicselection(r);
    if (r.s.selection.selontbvyes1no0 == 0) checkestimatedvalues(r);
}

void checktraits(const specreader &r)
{
    const runsettings &s = r.s;
    if (s.traits.ntraits > 1) {
        printlines({" NOTE: When there is more than one trait, you must specify",
                    " a heritability, a genetic variance and a weight for each trait, and",
                    " the genetic and residual correlation matrices must be",
                    " of dimension nTraits*nTraits"});
        constexpr const char *onetrait = "NumberOfTraits must be 1 in that case";
        if (s.selection.recombselonoff)
            refuse(r, 100030, {"numberoftraits", "recombinationonoff"},
                   {"ERROR: Multitrait simulation is not allowed when selecting for "
                    "recombination",
                    onetrait});
        if (s.editing.geneditonoff)
            refuse(r, 100031, {"numberoftraits", "geneeditingonoff"},
                   {"ERROR: Multitrait simulation is not allowed when performing gene editing",
                    onetrait});
        if (s.selection.externsolonoff)
            refuse(r, 100032, {"numberoftraits", "useexternalsnpsolutionsyesno"},
                   {"ERROR: Multitrait simulation is not allowed when using external SNP "
                    "solutions",
                    onetrait});
    }
    double sum = 0;
    for (int64 t = 1; t <= s.traits.ntraits && s.traits.indexwt.allocated(); ++t)
        sum += std::abs(s.traits.indexwt(t));
    // Equality by design: weights of 0.1 ten times don't sum to 1.
    if (sum == 1.0) return;
    explainkeys(
        r, {"indexweights"},
        std::abs(sum - 1) < 1e-12
            ? "the absolute values of the index weights sum to " + realdigits(sum) +
                  ", since their decimals can't be held exactly: write them in another order"
            : "the absolute values of the index weights sum to " + realdigits(sum));
    refuse(r, 100033, {}, {"ERROR: The absolute sum of IndexWeights must be equal to 1"});
}

void notesequences(const runsettings &s)
{
    if (s.run.genflexibilityonoff && s.run.specstartgen > 1)
        printlines({" NOTE: When writing out the full sequences,",
                    " WriteFullSequenceOutOnOff must be On from the first burn-in generation"});
}

// The key of optimal contributions refuses them when editing was switched on before it.
void checkcontributions(const specreader &r)
{
    const runsettings &s = r.s;
    if (s.editing.geneditonoff && s.selection.optcontribselonoff)
        refuse(r, 100029, {"geneeditingonoff", "optimalcontributionselectiononoff"},
               {"ERROR: Optimal contribution selection is not compatible with gene editing"});
}

void checkheritabilities(const specreader &r)
{
    const runsettings &s = r.s;
    const double recomb = s.traits.heritrecomb;
    if (s.selection.recombselonoff && !(recomb >= 0 && recomb < 1))
        failkey(r, "heritabilityofrecombination");
    for (int64 t = 1; t <= s.traits.ntraits; ++t)
        if (!(s.traits.herit(t) > 0 && s.traits.herit(t) <= 1)) failkey(r, "traitheritability");
}

// Keys that no run can do without, missing or standing where they had no effect.
void checkcompulsorykeys(const specreader &r)
{
    const runsettings &s = r.s;
    if (s.pop.pedigreefrom == pedigreesource::unset) failkey(r, "pedigreestatus");
    if (s.pop.ngen == 0) failkey(r, "numbergenerationsburnin");
    if (s.pop.ngensel == -1) failkey(r, "numbergenerationsselection");
    const int64 ngenerations = s.pop.ngen + s.pop.ngensel;
    if (r.tooearly)
        failkey(r, r.tooearly->name,
                "it stands before the numbers of generations, which must be known there");
    if (!r.b1) failkey(r, "numberofindividualsineachgeneration");
    for (int64 g = 1; g <= ngenerations; ++g)
        if (s.pop.nindivinthisgen(g) < 1) failkey(r, "numberofindividualsineachgeneration");
    if (s.pop.nindivp != s.pop.cumindivnbtogen(ngenerations))
        failkey(r, "numberofindividualsineachgeneration");
    if (s.founders.nchrom == 0) failkey(r, "numberofchromosomes");
    const int64 first = s.run.specstartgen, last = s.run.specendgen;
    if (!r.flexibilityread || (!s.run.genflexibilityonoff && last != ngenerations))
        failkey(r, "generationflexibilityonoff");
    if (first < 1 || last < first || last > ngenerations) failkey(r, "startstopgeneration");
}

// Settings by which a stage would reach for what doesn't exist.
void checkreach(const specreader &r)
{
    const runsettings &s = r.s;
    if (s.chips.nchip > 0 && !r.b3) failkey(r, "numberofsnpchips");
    if (s.pop.ngensel > 0) {
        if (s.chips.tmpchip < 1 || s.chips.tmpchip > s.chips.nchip)
            failkey(r, "idofchipusedforselection");
        if (s.qtn.qtnmodel > s.qtn.nqtnmodels) failkey(r, "distributionofqtnofselectiontraits");
        if (s.selection.selphenstrat == 5 && s.selection.firsttraingenrp < 1)
            failkey(r, "firstandlasttraininggenforrandomphenotypesstrat");
    }
    if (s.pop.ngendh > 0 && !r.b2) failkey(r, "numberofgenerationsincludingdoubledhaploids");
    if (s.editing.nindedited > 0 && s.editing.ngeneditsperind > 0 && !r.b4)
        failkey(r, "numberofeditedindividuals");
    if (s.selection.recombselonoff &&
        (r.ntotqtnrecomb == 0 || r.ntotqtnrecomb != s.founders.nchrom * s.qtn.nqtnrecombperchrom))
        failkey(r, "numberofqtnperchromforrecombination");
    if (s.editing.genedriveonoff && (r.driveindiv != s.pop.nindivp || r.driveqtn != s.qtn.nqtn))
        failkey(r, "genedriveonoff");
}
} // namespace

void checkconsistency(specreader &r)
{
    checkscheme(r);
    checkchips(r);
    checkqtn(r);
    checkediting(r.s);
    checkselection(r);
    checktraits(r);
    notesequences(r.s);
    checkcontributions(r);
    checkheritabilities(r);
    checkcompulsorykeys(r);
    checkreach(r);
}
