// Keys of boxes 5 to 7: chromosomes and the coalescent simulator, SNP chips, QTN.
#include "spec/speciestable.h"
#include "spec/specvalues.h"
#include "textlayout.h"
#include "words.h"

namespace
{
constexpr int64 maxbases = 1000000000000; // of a chromosome

// A word, and a number behind it unless the word is Internal: then the preset of the population
// fills the number in later, and whatever stands behind the word is ignored.
bool isinternal(const specreader &r)
{
    return valueis(r, "internal");
}

void readinternalorreal(specreader &r, bool &internal, double &value)
{
    internal = isinternal(r);
    value = internal ? 0.0 : valuereal(r, 2, 0);
}

void readinternalorinteger(specreader &r, bool &internal, int64 &value, int64 highest)
{
    internal = isinternal(r);
    value = internal ? 0 : valueinteger(r, 2, 0, highest);
}

// Chromosome length in Morgans of a population history.
double presetmorgans(specreader &r)
{
    if (const speciesrow *species = findspecies(r.s.founders.pophistorymacs))
        return species->morgans;
    printline("Please check specfile, ChromosomeLengthMorgansSolvanto not set properly");
    r.morgansatfault = r.line;
    return 0;
}

void readusesnpchip(specreader &r)
{
    chipsettings &chips = r.s.chips;
    chips.usesnpchiponoff = !valueis(r, "off");
    if (chips.usesnpchiponoff) return;
    printline(" NOTE: A single chip with one locus will still be created");
    chips.nchip = 1;
    chips.minsnpfreq = 0;
    chips.maxsnpfreq = 1;
    chips.nestedonoff = true;
    chips.tmpchip = 1;
    r.b6 = true;
}

// One number for each chip, read across the values in order: empty ones are passed over, and the
// first that can't be read, or the end of the list, leaves the other chips as they were.
void readsnpperchip(specreader &r)
{
    array1<int64> &nsnp = r.s.chips.nsnpperchipperchrom;
    if (!r.b6) valuetext(r, 1);
    if (!r.b3) failkey(r, 0, "NumberOfSnpChips must stand above it, with a line between");
    if (r.b6) {
        nsnp.fill(1);
        return;
    }
    int64 chip = 1;
    for (int64 i = 1; i <= static_cast<int64>(r.second.size()) && chip <= nsnp.upper(); ++i) {
        if (valuetext(r, i).empty()) continue;
        if (!tryinteger(r, i, nsnp(chip))) break;
        ++chip;
    }
    if (chip <= nsnp.upper())
        warnhere(r, "numbers for " + numbertext(chip - 1) + " of " + numbertext(nsnp.upper()) +
                        " chips could be read: the others get no SNP");
    else
        warnofsurplus(r, nsnp.upper(), "one for each chip");
}

void readtworeals(specreader &r, double &one, double &two)
{
    needcount(r, 2);
    one = valuereal(r, 1);
    two = valuereal(r, 2);
}

const speckey keys[] = {
    // Box 5
    {"numberofchromosomes", 51, "NumberOfChromosomes not set properly",
     [](specreader &r) { r.s.founders.nchrom = valueinteger(r, 1, 0, maxchromosomes); }},
    {"chromosomelengthmorgansmacs", 52, "ChromosomeLengthMorgansMaCS not set properly",
     [](specreader &r) {
         readinternalorreal(r, r.s.founders.internalmorgansmacs, r.s.founders.morgansmacs);
     }},
    {"chromosomelengthmorganssolvanto", 53, "ChromosomeLengthMorgansSolvanto not set properly",
     [](specreader &r) {
         foundersettings &f = r.s.founders;
         readinternalorreal(r, f.internalmorganssolvanto, f.morgans);
         if (f.internalmorganssolvanto) f.morgans = presetmorgans(r);
     }},
    {"numberofhaplotypes", 54, "numberofhaplotypes not set properly",
     [](specreader &r) { r.s.founders.nhaps = valueinteger(r, 1); }},
    {"populationhistorymacs", 55, "PopulationHistoryMaCS not set properly",
     [](specreader &r) {
         r.s.founders.pophistorymacs = valuepath(r, 1);
         printline("Modelling population history using " + r.s.founders.pophistorymacs);
         if (tlc(r.s.founders.pophistorymacs).starts_with("internal") &&
             !findspecies(r.s.founders.pophistorymacs))
             warnhere(r, r.s.founders.pophistorymacs +
                             " is none of the presets; it is taken for the name of a file");
     }},
    {"recombinationhotspotsonoff", 56, "recombinationhotspotsonoff not set properly",
     [](specreader &r) { r.s.founders.recombhotspotsonoff = !valueis(r, "off"); }},
    {"chromosomelengthbasesmacs", 57, "ChromosomeLengthBasesMaCS not set properly",
     [](specreader &r) {
         readinternalorinteger(r, r.s.founders.internalchrlenbasesmacs,
                               r.s.founders.chrlengthbasesmacs, maxbases);
     }},
    {"mutationratemacs", 58, "MutationRateMaCS not set properly",
     [](specreader &r) {
         readinternalorreal(r, r.s.founders.internalmutationratemacs,
                            r.s.founders.mutationratemacs);
     }},
    {"effectivepopulationsizebasemacs", 59, "EffectivePopulationSizeBaseMaCs not set properly",
     [](specreader &r) {
         readinternalorinteger(r, r.s.founders.internaleffecpopsize, r.s.founders.effecpopsize,
                               maxcount);
     }},
    // Box 6
    {"usesnpchiponoff", 61, "usesnpchiponoff not set properly", readusesnpchip},
    {"numberofsnpchips", 62, "NumberOfSnpChips not set properly",
     [](specreader &r) {
         if (r.b6) return;
         int64 n = r.s.chips.nchip;
         tryinteger(r, 1, n, 0, maxchips);
         if (r.b3 && n > r.s.chips.nsnpperchipperchrom.upper())
             failkey(r, 1, "it is more than an earlier line asked for: give this key once");
         r.s.chips.nchip = n;
     }},
    {"nsnpperchipperchromosme", 63, "nSnpPerChipPerChromosme not set properly", readsnpperchip},
    {"minmaxallelefreqforsnp", 64, "minmaxallelefreqforsnp not set properly",
     [](specreader &r) {
         needcount(r, 2);
         if (!r.b6) readtworeals(r, r.s.chips.minsnpfreq, r.s.chips.maxsnpfreq);
     }},
    {"snpchipincludesqtnyesnorandom", 65, "snpchipincludesqtnyesnorandom not set properly",
     [](specreader &r) {
         if (valueis(r, "yes")) r.s.chips.snpchipinclqtn = 1;
         if (valueis(r, "no")) r.s.chips.snpchipinclqtn = 2;
         if (valueis(r, "random")) r.s.chips.snpchipinclqtn = 3;
     }},
    {"snpchipsarenestedyesno", 66, "snpchipsarenestedyesno not set properly",
     [](specreader &r) {
         if (r.b6) return;
         r.nestedchips = valueword(r, 1);
         r.s.chips.nestedonoff = valueis(r, "yes");
     }},
    {"idofchipusedforselection", 67, "idofchipusedforselection not set properly",
     [](specreader &r) {
         if (!r.b6) r.s.chips.tmpchip = valueinteger(r, 1);
     }},
    // Box 7
    {"numberofqtnperchromosomenormaldist", 71,
     "numberofqtnperchromosomenormaldist not set properly",
     [](specreader &r) { r.s.qtn.nqtnperchrom = valueinteger(r, 1); }},
    {"numberofqtnperchromosomegammadist", 72, "numberofqtnperchromosomegammadist not set properly",
     [](specreader &r) { r.s.qtn.nqtngammaperchrom = valueinteger(r, 1); }},
    {"numberofmutationsperchr", 73, "numberofmutationsperchr not set properly",
     [](specreader &r) { r.s.founders.ndenovomutperchr = valueinteger(r, 1); }},
    {"mutationalvarianceproportion", 74, "mutationalvarianceproportion not set properly",
     [](specreader &r) { r.s.qtn.varamutprop = valuereal(r, 1, 0); }},
    {"minmaxallelefreqformodel2and4", 75, "minmaxallelefreqformodel2and4 not set properly",
     [](specreader &r) { readtworeals(r, r.s.qtn.minqtnfreq, r.s.qtn.maxqtnfreq); }},
    {"shapeandscaleofgammadistformodel3and4", 76,
     "shapeandscaleofgammadistformodel3and4 not set properly",
     [](specreader &r) { readtworeals(r, r.s.qtn.shapeparam, r.s.qtn.scaleparam); }},
    {"includedominanceeffectsonoff", 77, "includedominanceeffectsonoff not set properly",
     [](specreader &r) { r.s.qtn.dominonoff = valueis(r, "on"); }},
    {"dominancedegreemeanandvariance", 78, "DominanceDegreeMeanAndVariance not set properly",
     [](specreader &r) {
         needcount(r, 2);
         tryreal(r, 1, r.s.qtn.domdegmean);
         tryreal(r, 2, r.s.qtn.domdegvar, 0);
     }},
    {"qtnclustersonoff", 79, "QtnClustersOnOff not set properly",
     [](specreader &r) { r.s.qtn.qtnclustersonoff = !valueis(r, "off"); }},
};
} // namespace

std::span<const speckey> keysgenome()
{
    return keys;
}
