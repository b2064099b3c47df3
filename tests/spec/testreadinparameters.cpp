#include "spec/readinparameters.h"

#include "spec/specreader.h"
#include "specsupport.h"
#include "testsupport.h"
#include "textlayout.h"
#include "words.h"

#include <map>
#include <random>

namespace
{
struct reading {
    outcome result;
    state s;
};

reading readspec(const spectext &spec)
{
    reading r;
    spec.write();
    r.result = runbody([&] { readinparameters(r.s); });
    return r;
}

class readinparametersspec : public infolder
{
};

// A specification that must stop: the change to the good one, the code (-1 plain stop), and
// lines that must stand together in the output.
struct brokenspec {
    spectext spec;
    int64 code;
    std::string lines;
};

void expectstop(const brokenspec &broken)
{
    const reading r = readspec(broken.spec);
    EXPECT_EQ(r.result.code(), broken.code) << r.result.output;
    const std::string &output = r.result.output;
    EXPECT_TRUE(("\n" + output).ends_with("\n" + broken.lines + "\n") ||
                (broken.lines.empty() && broken.code != 0))
        << "code " << broken.code << ", wanted at the end:\n"
        << broken.lines << "\nbut the output is:\n"
        << output;
}

spectext changed(const std::string &key, const std::string &values)
{
    return goodspec().set(key, values);
}

spectext plantspec()
{
    return goodspec().set("AnimalBreedingOnOff", "Off").set("PlantBreedingOnOff", "On");
}

// Two traits, with matrix rows that hold commas, tabs, comments between them and spare numbers.
spectext twotraits()
{
    return goodspec()
        .set("NumberOfTraits", "2")
        .set("IndexWeights", "0.5,-0.5")
        .set("TraitHeritability", "0.5,0.3")
        .set("TraitGeneticVariance", "1,2")
        .remove("1.0")
        .remove("1.0")
        .replace("GeneticCorrelationMatrix", "GeneticCorrelationMatrix\n1.0 9 9\n#row 2\n0.2,1.0")
        .replace("ResidualCorrelationMatrix", "ResidualCorrelationMatrix\n1.0\n -0.3\t1.5d0 7");
}
} // namespace

TEST_F(readinparametersspec, readsthegoodspecification)
{
    const reading r = readspec(goodspec());
    ASSERT_EQ(r.result.code(), 0) << r.result.output;
    EXPECT_EQ(r.result.output, "\nModelling population history using InternalTest\n");
    const state &s = r.s;
    EXPECT_EQ(s.pop.nindivp, 100);
    EXPECT_EQ(s.pop.cumindivnbtogen(0), 0);
    EXPECT_EQ(s.pop.cumindivnbtogen(4), 80);
    EXPECT_EQ(s.pop.nsireinthisgen.upper(), 4);
    EXPECT_EQ(s.pop.ndaminthisgen(4), 10);
    EXPECT_EQ(s.run.specstartgen, 1);
    EXPECT_EQ(s.run.specendgen, 5);
    EXPECT_EQ(s.founders.morgans, 1.0);
    EXPECT_TRUE(s.founders.internalmorgansmacs);
    EXPECT_FALSE(s.founders.internaleffecpopsize);
    EXPECT_EQ(s.founders.mutationratemacs, 2.5e-8);
    EXPECT_EQ(s.chips.nsnpperchipperchrom(1), 20);
    EXPECT_EQ(s.qtn.nqtn, 20);
    EXPECT_EQ(s.qtn.nqtnmodels, 4);
    EXPECT_EQ(s.qtn.qtnmodel, 1);
    EXPECT_EQ(s.selection.selmethindicator, 2);
    EXPECT_EQ(s.selection.selontbvyes1no0, 1);
    EXPECT_EQ(s.selection.addqtntosnpchip, 2);
    // Selection on true values looks at no training data.
    EXPECT_EQ(s.selection.selphenstrat, 0);
    EXPECT_EQ(s.selection.computeavercoancestryyes1no0, -1);
    EXPECT_EQ(s.traits.coraspec(1, 1), 1.0);
    EXPECT_EQ(s.traits.cove.extent1().hi, 4);
    EXPECT_FALSE(s.editing.idofgenomeeditinds.allocated());
    EXPECT_FALSE(s.pop.createdhinthisgen.allocated());
}

// For every key: a line without a value, and where a number or word is needed an empty value and
// one that is no number, give the key's message and code.
TEST_F(readinparametersspec, everykeyfailsbyitsownmessageandcode)
{
    // Keys that are skipped in the good specification need a switch; those of plants, the plant
    // one.
    const std::map<std::string, std::pair<std::string, std::string>> switches = {
        {"startstopgeneration", {"GenerationFlexibilityOnOff", "On"}},
        {"importanexternalpedigreeforthisgeneration", {"SelectionFlexibilityOnOff", "On"}},
        {"importstageput1tocomputebv2tocontinue", {"SelectionFlexibilityOnOff", "On"}},
        {"mergefiles", {"NumberOfMergeRuns", "2"}},
        {"createdoubledhaploidsinthesegenerations",
         {"NumberOfGenerationsIncludingDoubledHaploids", "1"}},
        {"shapeandscaleofgammadist", {"DistributionOfQtnForRecombination", "Gamma"}},
        {"numberofeditedindividuals", {"GeneEditingOnOff", "On"}},
        {"numberofgeneeditsperindividual", {"GeneEditingOnOff", "On"}},
        {"performgeonuserqtnselectionyesno", {"GeneEditingOnOff", "On"}},
    };
    for (const speckey &key : allspeckeys()) {
        if (key.code == 131 || key.code == 132) continue; // these take no value
        spectext spec = key.code / 10 == 3 ? plantspec() : goodspec();
        if (const auto it = switches.find(key.name); it != switches.end())
            spec.set(it->second.first, it->second.second);
        expectstop({spec.replace(key.name, key.name), key.code, key.message});
    }
    // What is no number where one is wanted, and what is empty where a number or a word is.
    const auto unreadable = [&](const char *key, const char *values) {
        const speckey *k = findkey(tlc(key));
        ASSERT_NE(k, nullptr) << key;
        spectext spec = k->code / 10 == 3 ? plantspec() : goodspec();
        if (const auto it = switches.find(k->name); it != switches.end())
            spec.set(it->second.first, it->second.second);
        expectstop({spec.set(key, values), k->code, k->message});
    };
    for (const char *key :
         {"NumberGenerationsSelection", "NumberOfGenerationsIncludingDoubledHaploids",
          "CreateDoubledHaploidsInTheseGenerations", "NumberOfMergeRuns", "NumberOfChromosomes",
          "NumberOfHaplotypes", "ImportAnExternalPedigreeForThisGeneration",
          "IdOfChipUsedForSelection", "NumberOfQtnPerChromosomeNormalDist",
          "NumberOfMutationsPerChr", "NumberOfQtnPerChromForRecombination",
          "NumberOfGeneEditsPerIndividual", "TrainingSetSizeForRandomPhenotypesStrat",
          "UseTrainingDataFromGeneration", "GenerationsOfPedigreePriorToTraining",
          "NumberOfTraits"})
        for (const char *values : {"", "x", "1.5", "2#two", "-1", "99999999999999999999"})
            unreadable(key, values);
    for (const char *key : {"MutationalVarianceProportion", "HeritabilityOfRecombination",
                            "InitialRecombinationIndexWeight", "IndexWeights", "TraitHeritability",
                            "GenomeCompression"})
        for (const char *values : {"", "x", "nan", "1e999"}) unreadable(key, values);
    for (const char *key :
         {"PerformSelfingInAtLeastOneGenerationYesNo", "MergeTypes", "SnpChipsAreNestedYesNo",
          "DistributionOfQtnForRecombination", "EditTopOrBottom", "SelectionMethod",
          "ComputeAverageCoancestryYesNo", "ZipSequenceOutputFilesYesNo"})
        unreadable(key, "");
    // Lists and pairs of another length, per-generation lists that end too early.
    unreadable("StartStopGeneration", "2");
    unreadable("StartStopGeneration", "1,2,3");
    unreadable("MinMaxAlleleFreqForSnp", "0.1");
    unreadable("ShapeAndScaleOfGammaDist", "1");
    unreadable("DominanceDegreeMeanAndVariance", "1,2,3");
    unreadable("SizeOfXvectPopulationAndMaxNbOfGenerations", "1");
    unreadable("IndexWeights", "0.5,0.5");
    unreadable("NumberOfIndividualsInEachGeneration", "Variable,1,2,3,4");
    unreadable("NumberOfIndividualsInEachGeneration", "Constant");
    unreadable("NumberOfIndividualsInEachGeneration", "Constant,-5");
    unreadable("NumberOfSiresInEachGeneration", "Constant,many");
    unreadable("NumberOfDamsInEachGeneration", "Variable,1,2,3");
    unreadable("ChromosomeLengthMorgansMaCS", "1.5");
    unreadable("ChromosomeLengthBasesMaCS", "Value,ten");
    unreadable("EffectivePopulationSizeBaseMaCS", "Value,-3");
    unreadable("ChromosomeLengthMorgansSolvanto", "Value,-1");
    unreadable("MutationalVarianceProportion", "-0.1");
    unreadable("DominanceDegreeMeanAndVariance", "0,-1");
    unreadable("TraitGeneticVariance", "-1");
    // What would reach paths and commands.
    unreadable("PedigreeStatus", "my$(reboot).txt");
    unreadable("PopulationHistoryMaCS", "history;ls");
    unreadable("MergeFiles", "list'x");
}

// Counts beyond any use, and keys that come before their arrays exist.
TEST_F(readinparametersspec, noarrayismissed)
{
    expectstop({changed("NumberGenerationsBurnIn", "-3"), 12,
                "NumberGenerationsBurnIn not set properly in spec file"});
    expectstop({changed("NumberGenerationsBurnIn", "4000000000000000000"), 12,
                "NumberGenerationsBurnIn not set properly in spec file"});
    expectstop({changed("NumberOfSnpChips", "-1"), 62, "NumberOfSnpChips not set properly"});
    expectstop({changed("NumberOfTraits", "90000"), 121, "NumberOfTraits not set properly"});
    expectstop(
        {goodspec().movebefore("NumberOfIndividualsInEachGeneration", "NumberGenerationsBurnIn"),
         14, "NumberOfIndividualsInEachGeneration not set properly"});
    expectstop({goodspec()
                    .movebefore("AnimalBreedingOnOff", "NumberGenerationsSelection")
                    .movebefore("NumberOfSiresInEachGeneration", "NumberGenerationsSelection"),
                22, "NumberOfSiresInEachGeneration not set properly"});
    expectstop({goodspec().movebefore("nSnpPerChipPerChromosme", "NumberOfSnpChips"), 63,
                "nSnpPerChipPerChromosme not set properly"});
    expectstop({goodspec().movebefore("IndexWeights", "NumberOfTraits"), 122,
                "IndexWeights not set properly"});
    expectstop({goodspec().movebefore("GenerationFlexibilityOnOff", "PedigreeStatus"), 41,
                "GenerationFlexibilityOnOff not set properly"});
    expectstop({changed("GeneDriveOnOff", "On").movebefore("GeneDriveOnOff", "PedigreeStatus"), 96,
                "GeneDriveOnOff not set properly"});
    // On the last record a set-up doesn't run.
    expectstop({goodspec().remove("GeneDriveOnOff").append("GeneDriveOnOff,On"), 96,
                "GeneDriveOnOff not set properly"});
    // Arrays keep the size they were made with, so a later larger number has no room.
    expectstop({goodspec().append("NumberGenerationsSelection,3"), 13,
                "NumberGenerationsSelection not set properly in spec file"});
    expectstop({goodspec().append("NumberOfSnpChips,2"), 62, "NumberOfSnpChips not set properly"});
    expectstop({goodspec().append("NumberOfTraits,2"), 121, "NumberOfTraits not set properly"});
    expectstop({plantspec()
                    .set("NumberOfGenerationsIncludingDoubledHaploids", "1")
                    .set("CreateDoubledHaploidsInTheseGenerations", "6"),
                39, "error, CreateDoubledHaploidsInTheseGenerations has to be set before this"});
    // Settings that would lead a stage outside its arrays.
    expectstop({changed("IdOfChipUsedForSelection", "3").set("NumberOfSnpChips", "2"), 67,
                "idofchipusedforselection not set properly"});
    expectstop({changed("NumberOfQtnPerChromosomeGammaDist", "0")
                    .set("DistributionOfQtnOfSelectionTraits", "Gamma"),
                102, "DistributionOfQtnOfSelectionTraits not set properly"});
    expectstop({changed("RecombinationOnOff", "On"), 83,
                "NumberOfQtnPerChromForRecombination not set properly"});
    for (const char *range : {"1,6", "0,3", "3,2"})
        expectstop({changed("GenerationFlexibilityOnOff", "On").set("StartStopGeneration", range),
                    42, "StartStopGeneration not set properly"});
}

// The numbered checks, each by a specification that fails it alone.
TEST_F(readinparametersspec, checksstopbymessageandcode)
{
    const auto estimated = [] { return changed("SelectionMethod", "GBlup"); };
    const std::string multitrait =
        " NOTE: When there is more than one trait, you must specify\n"
        " a heritability, a genetic variance and a weight for each trait, and\n"
        " the genetic and residual correlation matrices must be\n"
        " of dimension nTraits*nTraits\n";
    const std::vector<brokenspec> broken = {
        {changed("NumberGenerationsBurnIn", "0").set("NumberGenerationsSelection", "0"), 100001,
         "ERROR- NumberGenerationsBurnIn and NumberGenerationsSelection can't both be 0"},
        {changed("AnimalBreedingOnOff", "off"), 100002,
         "ERROR: When using an internal pedigree, either AnimalBreedingOnOff or\n"
         "PlantBreedingOnOff must be On."},
        {changed("PlantBreedingOnOff", "ON"), 100003,
         "ERROR: AnimalBreedingOnOff or PlantBreedingOnOff must be Off"},
        {changed("DistributionOfQtnForRecombination", "Uniform"), 100004,
         "ERROR: The recombination distribution is incorrectly set\nShould be Normal or Gamma"},
        {changed("SelectionFlexibilityOnOff", "On")
             .set("ImportStagePut1ToComputeBV2ToContinue", "3"),
         100008,
         "ERROR: ImportStage must be 1 (to stop Solvanto after the\n"
         "computation of BV) or 2 (to import the external pedigree and continue)"},
        {changed("SnpChipIncludesQtnYesNoRandom", "Maybe"), 100009,
         "ERROR: SnpChipIncludesQtn is incorrectly set\nShould be Yes, No or Random"},
        {changed("NumberOfSnpChips", "2").set("SnpChipsAreNestedYesNo", "No"), 100010,
         "ERROR: SNP chips must be nested to allow controlling\n"
         "the inclusion of QTN in the SNP chip(s)\n"
         "SnpChipsAreNestedYesNo should be changed to Yes, or\n"
         "SnpChipIncludesQtnYesNoRandom changed to Random"},
        {changed("NumberOfQtnPerChromosomeNormalDist", "0")
             .set("NumberOfQtnPerChromosomeGammaDist", "0"),
         100011,
         "ERROR: NbOfQtnPerChromNormalDist or NbOfQtnPerChromGammaDist\nmust be greater than zero"},
        {changed("NumberOfQtnPerChromosomeGammaDist", "11"), 100012,
         "ERROR: Number of QTN for Gamma distribution must be less than or equal to that for the "
         "Normal distribution"},
        {changed("NumberOfMutationsPerChr", "1").set("MutationalVarianceProportion", "1.1"), -1,
         "Insert mutations in chromosomes\nERROR: This option is not available at the moment\n"
         " NOTE: Please provide a value for the proportion of mutational in base additive genetic "
         "variance\n"
         "ERROR: The proportion of mutational in base additive genetic variance has to be between "
         "0.0 and 1.0"},
        {changed("NumberGenerationsBurnIn", "0"), -1,
         "ERROR: There must be some burnin generations"},
        {changed("UseExternalSnpSolutionsYesNo", "Perhaps"), 100013,
         "ERROR: UseExternalSnpSolutions must Yes or No"},
        {changed("SelectionBasedOnRestrictedOrUnrestrictedQtn", "Both"), 100014,
         "ERROR: SelectionBasedOnRestrictedOrUnrestrictedQtn or DistributionOfQtnOfSelectionTraits "
         "are incorrectly set\n"
         "Selection should be based on Unrestricted or Restricted QTNs, and QTN distribution "
         "should "
         "be Normal or Gamma"},
        {changed("SelectionMethod", "Pheno").set("RecombinationOnOff", "On"), 100015,
         "ERROR: Phenotypic selection is not compatible\nwith selection for the recombination "
         "rate"},
        {changed("SelectionMethod", "Luck"), 100016, "ERROR: Problem with selection method"},
        {changed("SelectionMethod", "Pheno").set("OptimalContributionSelectionOnOff", "On"), 100028,
         " ERROR: Optimal contribution selection is not compatible with selection based on "
         "phenotypic values"},
        {changed("SelectionMethod", "Pheno").set("ComputeAverageCoancestryYesNo", "Yes"), 100027,
         "ERROR: The option ComputeAverageCoancestryYesNo is not available\n"
         "when selection is based on phenotypes\n"
         "ComputeAverageCoancestryYesNo must be No in that case"},
        {estimated().set("AddQtnToTheSnpChipYesNo", "x"), 100017,
         "ERROR: SelectionChipIncludesQtn is incorrectly set\nShould be Yes or No"},
        {estimated()
             .set("AddQtnToTheSnpChipYesNo", "Yes")
             .set("SnpChipIncludesQtnYesNoRandom", "Yes"),
         100018,
         "ERROR: AddQtnToSnpChip must be 'No' when SnpChipInclQtn is 'Yes'\n"
         "to avoid that the selection chip includes twice the QTN"},
        {estimated().remove("SelectionPhenotypingStrategy"), 100020,
         "ERROR: SelectionPhenotypingStrategy is incorrectly set\n"
         "Should be AllPhenotypes, AllHistoricalPhenotypes, AllMales, PreviousGeneration or "
         "RandomPhenotypes"},
        {estimated()
             .set("SelectionPhenotypingStrategy", "PreviousGeneration")
             .set("NumberGenerationsBurnIn", "1"),
         100021, "ERROR: Number of burn-in generations must be at least 2"},
        {estimated().set("RecombinationOnOff", "On"), 100022,
         "ERROR: SelectionPhenotypingStrategy cannot be AllPhenotypes when selecting for "
         "recombination"},
        {estimated()
             .set("RecombinationOnOff", "On")
             .set("SelectionPhenotypingStrategy", "AllMales")
             .set("NumberGenerationsBurnIn", "1"),
         100023,
         "ERROR: Number of burn-in generations must be at least 2 when selecting \n"
         "for recombination using AllMales as selection strategy"},
        {estimated().set("FirstAndLastTrainingGenForRandomPhenotypesStrat", "3,2"), 100024,
         "ERROR: The first and last training generations for the\n"
         "RandomPhenotypes phenotyping strategy are incorrectly set"},
        {estimated()
             .set("FixTheTrainingDataAcrossGenerationsOnOff", "On")
             .set("UseTrainingDataFromGeneration", "3"),
         100025, "ERROR: The fixed training generation must be a selection generation"},
        {estimated().set("ComputeAverageCoancestryYesNo", "x"), 100026,
         "ERROR: A value must be provided for ComputeAverageCoancestryYesNo"},
        {changed("GeneEditingOnOff", "On").set("OptimalContributionSelectionOnOff", "On"), 100029,
         " BOX 11 - OPTIMAL CONTRIBUTION SELECTION\n"
         " Paper is currently under review and until such time as it is published we have not "
         "enabled this option\n"
         "ERROR: Optimal contribution selection is not compatible with gene editing"},
        {twotraits().set("RecombinationOnOff", "On"), 100030,
         multitrait +
             "ERROR: Multitrait simulation is not allowed when selecting for recombination\n"
             "NumberOfTraits must be 1 in that case"},
        {twotraits().set("GeneEditingOnOff", "On"), 100031,
         multitrait + "ERROR: Multitrait simulation is not allowed when performing gene editing\n"
                      "NumberOfTraits must be 1 in that case"},
        {twotraits().set("UseExternalSnpSolutionsYesNo", "Yes"), 100032,
         multitrait +
             "ERROR: Multitrait simulation is not allowed when using external SNP solutions\n"
             "NumberOfTraits must be 1 in that case"},
        {changed("NumberOfTraits", "10")
             .set("IndexWeights", "0.1,0.1,0.1,0.1,0.1,0.1,0.1,0.1,0.1,0.1")
             .set("TraitHeritability", "1,1,1,1,1,1,1,1,1,1")
             .remove("TraitGeneticVariance")
             .remove("GeneticCorrelationMatrix")
             .remove("ResidualCorrelationMatrix")
             .remove("1.0")
             .remove("1.0"),
         100033, multitrait + "ERROR: The absolute sum of IndexWeights must be equal to 1"},
        {goodspec().append("NumberOfTrait,2"), 100000, "Line was unexpected: NumberOfTrait"},
        {changed("RecombinationOnOff", "On").set("HeritabilityOfRecombination", "1"), 82,
         "HeritabilityOfRecombination not set properly"},
        {changed("TraitHeritability", "0"), 123, "TraitHeritability not set properly"},
        // Keys that no check names, in the order in which they are missed.
        {goodspec().remove("PedigreeStatus").remove("NumberOfChromosomes"), 11,
         "Pedigreestatus not set properly in spec file"},
        {goodspec().remove("NumberGenerationsBurnIn").remove("NumberGenerationsSelection"), 12,
         "NumberGenerationsBurnIn not set properly in spec file"},
        {plantspec()
             .remove("NumberGenerationsSelection")
             .set("NumberOfGenerationsIncludingDoubledHaploids", "1")
             .set("GeneDriveOnOff", "On"),
         13, "NumberGenerationsSelection not set properly in spec file"},
        {goodspec().remove("NumberOfIndividualsInEachGeneration"), 14,
         "NumberOfIndividualsInEachGeneration not set properly"},
        {goodspec().remove("NumberOfChromosomes"), 51, "NumberOfChromosomes not set properly"},
        {goodspec().remove("GenerationFlexibilityOnOff"), 41,
         "GenerationFlexibilityOnOff not set properly"},
        {changed("GenerationFlexibilityOnOff", "On").remove("StartStopGeneration"), 42,
         "StartStopGeneration not set properly"},
    };
    for (const brokenspec &b : broken) expectstop(b);
}

TEST_F(readinparametersspec, setsnumbersfromwords)
{
    reading r = readspec(twotraits());
    ASSERT_EQ(r.result.code(), 0) << r.result.output;
    EXPECT_EQ(r.s.traits.coraspec(1, 1), 1.0);
    EXPECT_EQ(r.s.traits.coraspec(1, 2), 0.2);
    EXPECT_EQ(r.s.traits.coraspec(2, 1), 0.2);
    EXPECT_EQ(r.s.traits.core(1, 2), -0.3);
    EXPECT_EQ(r.s.traits.core(2, 2), 1.5); // the diagonal holds what the file gives

    const char *const bases[] = {"Unrestricted", "Restricted"}, *const forms[] = {"Normal",
                                                                                  "GAMMA"};
    for (int64 model = 1; model <= 4; ++model) {
        r = readspec(changed("SelectionBasedOnRestrictedOrUnrestrictedQtn", bases[(model - 1) % 2])
                         .set("DistributionOfQtnOfSelectionTraits", forms[(model - 1) / 2]));
        EXPECT_EQ(r.s.qtn.qtnmodel, model);
    }
    const char *const strategies[] = {"AllPhenotypes",      "AllHistoricalPhenotypes",
                                      "PreviousGeneration", "AllMales",
                                      "RandomPhenotypes",   "SpecifiedIndiv"};
    for (int64 strategy = 1; strategy <= 6; ++strategy) {
        r = readspec(changed("SelectionMethod", "PedigreeBlup")
                         .set("SelectionPhenotypingStrategy", strategies[strategy - 1])
                         .set("FixTheTrainingDataAcrossGenerationsOnOff", "On")
                         .set("UseTrainingDataFromGeneration", "5")
                         .set("ComputeAverageCoancestryYesNo", "Yes"));
        ASSERT_EQ(r.result.code(), 0) << r.result.output;
        EXPECT_EQ(r.s.selection.selphenstrat, strategy);
        EXPECT_EQ(r.s.selection.selmethindicator, 1);
        EXPECT_EQ(r.s.selection.selontbvyes1no0, 0);
        EXPECT_EQ(r.s.selection.fixedtrainselcycle, 2);
        EXPECT_EQ(r.s.selection.computeavercoancestryyes1no0, 1);
    }
    // External solutions need no phenotyping strategy; QTN both in the chip and added are noted.
    r = readspec(changed("SelectionMethod", "GBlup")
                     .set("UseExternalSnpSolutionsYesNo", "Yes")
                     .set("SnpChipIncludesQtnYesNoRandom", "Random")
                     .set("AddQtnToTheSnpChipYesNo", "Yes")
                     .remove("SelectionPhenotypingStrategy"));
    EXPECT_EQ(r.result.code(), 0);
    EXPECT_TRUE(
        r.result.output.ends_with(" NOTE: Selection chip might include some QTN twice\n"
                                  "  NOTE: EBV will be computed using external SNP solutions\n"
                                  "  Please provide the required files in the Solvanto "
                                  "directory\n"));
    // Burn-in alone looks at no word of selection, and phenotypes leave the switch at 2.
    r = readspec(changed("NumberGenerationsSelection", "0").set("SelectionMethod", "Luck"));
    EXPECT_EQ(r.result.code(), 0);
    EXPECT_EQ(r.s.qtn.qtnmodel, 0);
    EXPECT_EQ(r.s.run.specendgen, 3);
    r = readspec(changed("SelectionMethod", "Pheno").set("NumberOfQtnPerChromosomeGammaDist", "0"));
    EXPECT_EQ(r.s.selection.selmethindicator, 3);
    EXPECT_EQ(r.s.selection.selontbvyes1no0, 2);
    EXPECT_EQ(r.s.qtn.nqtnmodels, 2);
    EXPECT_EQ(r.s.traits.cholcove.extent1().hi, 4);
    // Lengths of the presets are single-precision constants.
    r = readspec(changed("PopulationHistoryMaCS", "InternalPig"));
    EXPECT_EQ(r.s.founders.morgans, 1.7100000381469727);
    r = readspec(goodspec().movebefore("ChromosomeLengthMorgansSolvanto", "PopulationHistoryMaCS"));
    EXPECT_EQ(r.s.founders.morgans, 0);
    EXPECT_EQ(r.result.output,
              "\nPlease check specfile, ChromosomeLengthMorgansSolvanto not set properly\n"
              "Modelling population history using InternalTest\n");
}

TEST_F(readinparametersspec, recordsandkeyforms)
{
    // Blanks and tabs inside keys and numbers, any case, comments, empty records, Windows line
    // ends, no last line end, values too many, a key given twice.
    spectext spec = goodspec();
    spec.replace("NumberOfHaplotypes", "  Number Of\tHAPLOtypes , 1 000,7")
        .insertbefore("NumberOfTraits", "  # NumberOfTraits ,2\n\n \t\nNumberOfTraits,1")
        .set("NumberOfChromosomes", "1")
        .insertafter("NumberOfChromosomes", "numberofchromosomes,3");
    std::string text = spec.text();
    text.pop_back();
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
        text.insert(at, "\r");
    state s;
    writefile("SolvantoSpec.txt", text);
    const outcome windows = runbody([&] { readinparameters(s); });
    ASSERT_EQ(windows.code(), 0) << windows.output;
    EXPECT_EQ(s.founders.nhaps, 1000);
    EXPECT_EQ(s.founders.nchrom, 3);
    EXPECT_EQ(s.founders.genomecompression, 100);

    // Only the first 300 characters of a value count.
    reading r = readspec(changed("PedigreeStatus", std::string(310, 'p')));
    EXPECT_EQ(r.s.pedi.pedigreefile, std::string(300, 'p'));

    // A wrong box number is reported; the next box is compared with the next count.
    r = readspec(goodspec()
                     .replace("Box 2 - Animal breeding", "BOX 7 - Animal breeding")
                     .replace("Box 11 - Optimal contributions", "box12"));
    EXPECT_EQ(r.result.code(), 0);
    EXPECT_EQ(r.result.output,
              "\nERROR - Order of boxes is wrong! Expecting box: 2 and got box: 7\n"
              "Modelling population history using InternalTest\n"
              "ERROR - Order of boxes is wrong! Expecting box: 11 and got box: 12\n");

    // Rows: a key between them is handled, a short one goes on in the next record, and behind the
    // last one a record is unexpected again.
    r = readspec(twotraits().replace("0.2", "IndexWeights,0.25,0.75\n0.4\n2"));
    EXPECT_EQ(r.result.code(), 0) << r.result.output;
    EXPECT_EQ(r.s.traits.coraspec(1, 2), 0.4);
    EXPECT_EQ(r.s.traits.coraspec(2, 2), 2);
    EXPECT_EQ(r.s.traits.indexwt(2), 0.75);
    expectstop({twotraits().replace("KeepChromosomesFolderYesNo", "0.1,0.2"), 100000,
                "Line was unexpected: 0.1"});
    expectstop({twotraits().replace("1.0", "x1,0"), 132,
                "error, Residual Correlation Matrix has not been set correctly"});
}

TEST_F(readinparametersspec, skippedandtoleratedvalues)
{
    // Skipped keys don't look at their values.
    reading r = readspec(goodspec()
                             .set("NumberOfMaleParentsInEachGeneration", "Constant,bad")
                             .set("NumberOfGenerationsIncludingDoubledHaploids", "x")
                             .set("StartStopGeneration", "2")
                             .set("MergeFiles", "bad$name")
                             .set("ShapeAndScaleOfGammaDist", "1")
                             .set("NumberOfEditedIndividuals", "5")
                             .set("NumberOfGeneEditsPerIndividual", "5"));
    EXPECT_EQ(r.result.code(), 0) << r.result.output;
    EXPECT_EQ(r.s.pop.ngendh, 0);
    EXPECT_EQ(r.s.editing.nindedited, 0);
    EXPECT_FALSE(r.s.editing.idofgenomeeditinds.allocated());

    // Chips off fix one chip with one locus, whatever its details say, and a later On changes
    // nothing of that.
    r = readspec(goodspec()
                     .set("UseSnpChipOnOff", "Off")
                     .set("NumberOfSnpChips", "3")
                     .set("MinMaxAlleleFreqForSnp", "x,y")
                     .insertbefore("Box 7 - QTN", "UseSnpChipOnOff,On"));
    EXPECT_EQ(r.result.code(), 0) << r.result.output;
    EXPECT_EQ(r.s.chips.nchip, 1);
    EXPECT_EQ(r.s.chips.maxsnpfreq, 1);
    EXPECT_EQ(r.s.chips.nsnpperchipperchrom(1), 1);
    EXPECT_TRUE(r.s.chips.usesnpchiponoff);
    expectstop({changed("UseSnpChipOnOff", "Off").set("MinMaxAlleleFreqForSnp", "0.1"), 64,
                "minmaxallelefreqforsnp not set properly"});

    // Tolerated bad values leave the variable; the list of chips is read as far as it goes.
    r = readspec(goodspec()
                     .insertafter("NumberGenerationsBurnIn", "NumberGenerationsBurnIn,many")
                     .set("NumberOfSnpChips", "4")
                     .set("nSnpPerChipPerChromosme", "100,,50,x,7")
                     .set("DominanceDegreeMeanAndVariance", "x,0.3")
                     .set("PercentageDifferenceInbreeding", "")
                     .set("KeepChromosomesFolderYesNo", "")
                     .set("WriteFullSequenceOutOnOff", "Perhaps"));
    EXPECT_EQ(r.result.code(), 0) << r.result.output;
    EXPECT_EQ(r.s.pop.ngen, 3);
    EXPECT_EQ(r.s.chips.nsnpperchipperchrom(1), 100);
    EXPECT_EQ(r.s.chips.nsnpperchipperchrom(2), 50);
    EXPECT_EQ(r.s.chips.nsnpperchipperchrom(3), 0);
    EXPECT_EQ(r.s.qtn.domdegmean, 0);
    EXPECT_EQ(r.s.qtn.domdegvar, 0.3);
    EXPECT_FALSE(r.s.run.fullseqoutonoff);
}

TEST_F(readinparametersspec, schemesandsetups)
{
    reading r = readspec(plantspec()
                             .set("NumberOfSelfedParentsInEachGeneration", ",1,2,3,4")
                             .set("NumberOfParentsRegardlessTheGenderInEachGen", "Variable,4,3,2,1")
                             .set("NumberOfMaleParentsInEachGeneration", "")
                             .set("NumberOfGenerationsIncludingDoubledHaploids", "1")
                             .set("CreateDoubledHaploidsInTheseGenerations", "3,4"));
    EXPECT_EQ(r.result.code(), 0) << r.result.output;
    EXPECT_TRUE(r.result.output.starts_with(
        "\n  NOTE:      4 values must be provided for NumberOfParentsRegardlessTheGenderInEachGen\n"
        "  NOTE:      4 values must be provided for NumberOfSelfedParentsInEachGeneration\n"));
    EXPECT_EQ(r.s.pop.nselfedparinthisgen(4), 4);
    EXPECT_EQ(r.s.pop.nrandparinthisgen(4), 1);
    EXPECT_EQ(r.s.pop.nsireinthisgen(1), 0);
    EXPECT_EQ(r.s.pop.createdhinthisgen.upper(), 5);
    EXPECT_EQ(r.s.pop.createdhinthisgen(3), 1);
    EXPECT_EQ(r.s.pop.createdhinthisgen(4), 0);

    r = readspec(goodspec()
                     .set("NumberOfIndividualsInEachGeneration", "List,10,20,30,40,50")
                     .set("NumberOfSiresInEachGeneration", "")
                     .set("GeneEditingOnOff", "On")
                     .set("NumberOfEditedIndividuals", "3")
                     .set("NumberOfGeneEditsPerIndividual", "2")
                     .set("GeneDriveOnOff", "On"));
    EXPECT_EQ(r.result.code(), 0) << r.result.output;
    EXPECT_TRUE(
        r.result.output.starts_with("\nWARNING - NumberOfSiresInEachGeneration is empty\n"));
    EXPECT_EQ(r.s.pop.cumindivnbtogen(5), 150);
    EXPECT_EQ(r.s.editing.genomeeditqtnpos.extent1().hi, 3);
    EXPECT_EQ(r.s.editing.genomeeditqtnpos.extent2().hi, 2);
    EXPECT_EQ(r.s.editing.genedriveqtnpresence.extent1().hi, 150);
    EXPECT_EQ(r.s.editing.genedriveqtnpresence.extent2().hi, 20);
    EXPECT_EQ(r.s.editing.genedriveqtnpresence.extent3().hi, 2);

    // One generation in all: the arrays of parents have one entry that nothing reads.
    r = readspec(changed("NumberGenerationsBurnIn", "1").set("NumberGenerationsSelection", "0"));
    EXPECT_EQ(r.result.code(), 0) << r.result.output;
    EXPECT_EQ(r.s.pop.nsireinthisgen.upper(), 1);
    EXPECT_EQ(r.s.pop.nsireinthisgen(1), 0);

    // An external pedigree needs no scheme.
    r = readspec(goodspec()
                     .set("PedigreeStatus", "./data/Ped_1.txt")
                     .set("AnimalBreedingOnOff", "Off")
                     .set("GenerationFlexibilityOnOff", "Perhaps")
                     .set("StartStopGeneration", "2,4"));
    EXPECT_EQ(r.result.code(), 0) << r.result.output;
    EXPECT_EQ(r.s.pedi.pedigreefile, "./data/Ped_1.txt");
    EXPECT_EQ(r.s.run.specendgen, 4);
}

// Contradictions that are reported while the run goes on, and the notes of switches.
TEST_F(readinparametersspec, notesthatstopnothing)
{
    const reading r = readspec(goodspec()
                                   .set("PedigreeStatus", "ped.txt")
                                   .set("GenerationFlexibilityOnOff", "On")
                                   .set("StartStopGeneration", "2,4")
                                   .set("SelectionFlexibilityOnOff", "On")
                                   .set("RecombinationOnOff", "On")
                                   .set("NumberOfQtnPerChromForRecombination", "5")
                                   .set("NumberOfMutationsPerChr", "2")
                                   .set("GeneEditingOnOff", "On"));
    EXPECT_EQ(r.result.code(), 0);
    EXPECT_EQ(r.s.selection.recombselonoff, true);
    EXPECT_EQ(r.result.output,
              "\nModelling population history using InternalTest\n BOX 8 - RECOMBINATION\n"
              " Paper is currently under review and until such time as it is published we have not "
              "enabled this option\n"
              "Insert mutations in chromosomes\n"
              "ERROR: This option is not available at the moment\n"
              " NOTE: Please provide a value for the proportion of mutational in base additive "
              "genetic variance\n"
              " NOTE: The proportion of mutational in base additive genetic variance is null\n"
              "ERROR: Gene editing is not allowed with external pedigrees\n"
              " NOTE: When performing gene editing,\n"
              " GeneEditingOnOff must be On from the first burnin generation, and\n"
              " the QTN model used for selection must be the same\n"
              " across all selection generations\n"
              " The QTN model is determined by SelectionBasedOnRestrictedOrUnrestrictedQtn and\n"
              " DistributionOfQtnOfSelectionTraits (see Selection box)\n"
              " ERROR: Gene editing is not compatible with importing\n"
              " external pedigrees for some selection generations\n"
              " NOTE: When writing out the full sequences,\n"
              " WriteFullSequenceOutOnOff must be On from the first burn-in generation\n");
}

// Broken files end with a stop or are read; never with anything else (sanitizers and the bounds
// checks watch).
TEST_F(readinparametersspec, brokenfilesneverdomoreharmthanastop)
{
    const auto tryreading = [](const std::string &text) {
        writefile("SolvantoSpec.txt", text);
        state s;
        return runbody([&] { readinparameters(s); });
    };
    EXPECT_EQ(runbody([] {
                  state s;
                  readinparameters(s);
              }).code(),
              -2);
    EXPECT_EQ(tryreading("").code(), 100004);
    const std::string good = goodspec().text();
    for (std::size_t n = 0; n < good.size(); n += 37) tryreading(good.substr(0, n));
    std::mt19937 random(7);
    const auto draw = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    const std::vector<std::string> values = {
        "-1",       "0",          "999999999", "-99999999999999999999",
        "",         ",",          "On",        "Off",
        "Internal", "Constant,3", "List,1,2",  "2"};
    int64 nread = 0, nstopped = 0;
    for (int round = 0; round < 240; ++round) {
        std::string text;
        if (round % 3 == 0) { // random bytes written over it
            text = good;
            for (int k = 0; k < 20; ++k) text[draw(text.size())] = static_cast<char>(draw(256));
        } else { // lines in another order, or with other values
            spectext spec = goodspec();
            for (int k = 0; k < 3; ++k) {
                std::string &line = spec.lines[draw(spec.lines.size())];
                if (round % 3 == 1)
                    std::swap(line, spec.lines[draw(spec.lines.size())]);
                else
                    line = line.substr(0, line.find(',')) + "," + values[draw(values.size())];
            }
            text = spec.text();
        }
        const outcome result = tryreading(text);
        EXPECT_NE(result.code(), -2) << text;
        ++(result.stoppedearly ? nstopped : nread);
    }
    EXPECT_GT(nread, 20);
    EXPECT_GT(nstopped, 20);
}
