// Keys of boxes 10 to 15: selection, optimal contributions, traits, correlation matrices, output
// and genome compression. Most keys of selection only keep their word: the checks behind the last
// record give it its meaning.
#include "spec/specvalues.h"
#include "stops.h"
#include "textlayout.h"
#include "words.h"

namespace
{
void readoptimalcontribution(specreader &r)
{
    r.s.selection.optcontribselonoff = valueis(r, "on");
    if (!r.s.selection.optcontribselonoff) return;
    printline(" BOX 11 - OPTIMAL CONTRIBUTION SELECTION");
    printline(" Paper is currently under review and until such time as it is published we have not "
              "enabled this option");
    if (r.s.editing.geneditonoff) {
        explainkeys(r, {"geneeditingonoff", "optimalcontributionselectiononoff"});
        printline("ERROR: Optimal contribution selection is not compatible with gene editing");
        stopwithcode(100029);
    }
}

// Exactly one real for each trait.
void readpertrait(specreader &r, array1<double> &values, double lowest = -maxreal)
{
    needcount(r, r.s.traits.ntraits);
    for (int64 t = 1; t <= r.s.traits.ntraits; ++t) values(t) = valuereal(r, t, lowest);
}

const speckey keys[] = {
    // Box 10
    {"selectionbasedonrestrictedorunrestrictedqtn", 101,
     "SelectionBasedOnRestrictedOrUnrestrictedQtn not set properly",
     [](specreader &r) {
         if (!valuetext(r, 1).empty()) r.selectionbasedon = valuetext(r, 1);
     }},
    {"distributionofqtnofselectiontraits", 102,
     "DistributionOfQtnOfSelectionTraits not set properly",
     [](specreader &r) { r.qtndistribution = valueword(r, 1); }},
    {"selectionmethod", 103, "SelectionMethod not set properly",
     [](specreader &r) { r.selectionmethod = valueword(r, 1); }},
    {"addqtntothesnpchipyesno", 104, "AddQtnToTheSnpChipYesNo not set properly",
     [](specreader &r) { r.addqtntochip = valueword(r, 1); }},
    {"useexternalsnpsolutionsyesno", 105, "UseExternalSnpSolutionsYesNo not set properly",
     [](specreader &r) {
         r.externalsolutions = valueword(r, 1);
         r.s.selection.externsolonoff = valueis(r, "yes");
     }},
    {"selectionphenotypingstrategy", 106, "SelectionPhenotypingStrategy not set properly",
     [](specreader &r) { r.phenotypingstrategy = valueword(r, 1); }},
    {"firstandlasttraininggenforrandomphenotypesstrat", 107,
     "FirstAndLastTrainingGenForRandomPhenotypesStrat not set properly",
     [](specreader &r) {
         needcount(r, 2);
         r.s.selection.firsttraingenrp = valueinteger(r, 1);
         r.s.selection.lasttraingenrp = valueinteger(r, 2);
     }},
    {"trainingsetsizeforrandomphenotypesstrat", 108, "",
     [](specreader &r) { r.s.selection.ntrainindiv = valueinteger(r, 1); }},
    {"fixthetrainingdataacrossgenerationsonoff", 109, "",
     [](specreader &r) { r.fixtraining = valueword(r, 1); }},
    {"usetrainingdatafromgeneration", 1010, "",
     [](specreader &r) { r.trainingfromgeneration = valueinteger(r, 1); }},
    {"computeaveragecoancestryyesno", 1011, "",
     [](specreader &r) { r.computecoancestry = valueword(r, 1); }},
    {"generationsofpedigreepriortotraining", 1012,
     "GenerationsOfPedigreePriorToTraining not set properly",
     [](specreader &r) { r.s.selection.ngenpedpriortrain = valueinteger(r, 1); }},
    // Box 11
    {"optimalcontributionselectiononoff", 111, "OptimalContributionSelectionOnOff not set properly",
     readoptimalcontribution},
    {"sizeofxvectpopulationandmaxnbofgenerations", 112,
     "SizeOfXvectPopulationAndMaxNbOfGenerations not set properly",
     [](specreader &r) {
         needcount(r, 2);
         r.s.selection.sizeofxvecpopoc = valueinteger(r, 1);
         r.s.selection.maxnbofgenoc = valueinteger(r, 2);
     }},
    {"percentagedifferenceinbreeding", 113, "PercentageDifferenceInbreeding not set properly",
     [](specreader &r) { tryreal(r, 1, r.s.selection.percentdeltaf); }},
    // Box 12
    {"numberoftraits", 121, "NumberOfTraits not set properly",
     [](specreader &r) {
         const int64 n = valueinteger(r, 1, 0, maxtraits);
         if (r.b5 && n > r.s.traits.indexwt.upper())
             failkey(r, 1, "it is more than an earlier line asked for: give this key once");
         r.s.traits.ntraits = n;
     }},
    {"indexweights", 122, "IndexWeights not set properly",
     [](specreader &r) { readpertrait(r, r.s.traits.indexwt); }},
    {"traitheritability", 123, "TraitHeritability not set properly",
     [](specreader &r) { readpertrait(r, r.s.traits.herit); }},
    {"traitgeneticvariance", 124, "TraitGeneticVariance not set properly",
     [](specreader &r) { readpertrait(r, r.s.traits.varaspec, 0); }},
    // Box 13: the rows are the next records that match no key
    {"geneticcorrelationmatrix", 131,
     "error, Genetic Correlation Matrix has not been set correctly",
     [](specreader &r) { r.incora = 1; }},
    {"residualcorrelationmatrix", 132,
     "error, Residual Correlation Matrix has not been set correctly",
     [](specreader &r) { r.incore = 1; }},
    // Box 14
    {"keepchromosomesfolderyesno", 141, "KeepChromosomesFolderYesNo not set properly",
     [](specreader &r) {
         if (!valuetext(r, 1).empty()) r.s.run.keepchromonoff = !valueis(r, "no");
     }},
    {"writefullsequenceoutonoff", 142, "WriteFullSequenceOutOnOff not set properly",
     [](specreader &r) {
         if (valueis(r, "off")) r.s.run.fullseqoutonoff = false;
         if (valueis(r, "on")) r.s.run.fullseqoutonoff = true;
     }},
    {"zipsequenceoutputfilesyesno", 143, "ZipSequenceOutputFilesYesNo not set properly",
     [](specreader &r) {
         valueword(r, 1);
         r.s.run.zipsequenceonoff = valueis(r, "yes");
     }},
    // Box 15
    {"genomecompressiononoff", 151, "GenomeCompressionOnOff not set properly",
     [](specreader &r) { r.s.founders.genomecompressiononoff = !valueis(r, "off"); }},
    {"genomecompression", 152, "GenomeCompression not set properly",
     [](specreader &r) { r.s.founders.genomecompression = valuereal(r, 1); }},
};
} // namespace

std::span<const speckey> keysselectiontraits()
{
    return keys;
}
