// The checker of run folders finds what is wrong: one value damaged at a time.
#include "checkrun/checkrun.h"

#include "testsupport.h"
#include "trees/treecase.h"

#include <cctype>
#include <filesystem>

class checkrunfolders : public infolder
{
};

namespace
{
struct damage {
    std::string file; // below the folder of the run
    std::size_t line; // from 1; 0: the file is binary
    int word;         // from 1; of a binary file the byte, from 0
};

// The first digit of a number becomes the next one; of a byte the lowest bit changes.
void spoil(const damage &d)
{
    std::string content = readfile(d.file);
    std::size_t at = 0;
    if (d.line == 0) {
        at = static_cast<std::size_t>(d.word);
        ASSERT_LT(at, content.size()) << d.file;
        content[at] = static_cast<char>(content[at] ^ 1);
        return writefile(d.file, content);
    }
    for (std::size_t k = 1; k < d.line; ++k) at = content.find('\n', at) + 1;
    for (int k = 1; k <= d.word; ++k) {
        at = content.find_first_not_of(' ', at);
        if (k < d.word) at = content.find(' ', at);
    }
    while (at < content.size() && !std::isdigit(static_cast<unsigned char>(content[at]))) ++at;
    ASSERT_LT(at, content.size()) << d.file;
    content[at] = content[at] == '9' ? '0' : static_cast<char>(content[at] + 1);
    writefile(d.file, content);
}
} // namespace

TEST_F(checkrunfolders, everydamageisfound)
{
    const std::string data = "SimulatedData/", one = "Chromosomes/Chromosome1/",
                      chips = data + "AllIndividualsSnpChips/",
                      cycle = "Selection/SelectionFolder1/";
    const std::vector<std::pair<std::string, std::vector<damage>>> cases = {
        {"animals",
         {{data + "Pedigree.txt", 40, 4},
          {data + "Gender.txt", 9, 3},
          {data + "NbOfIndivInEachGen.txt", 3, 3},
          {data + "RecombinationCount.txt", 30, 2},
          {data + "GlobalRecombLocationMax.txt", 2, 2},
          {data + "NbOfSegSitesPerChrom.txt", 2, 3},
          {one + "PhysicalMapIncluded.txt", 7, 3},
          {one + "MacsHaplotypesIncluded.txt", 3, 11},
          {one + "MacsHaplotypesInBlocks.txt", 0, 100},
          {one + "MinorAlleleFrequency.txt", 30, 2},
          {one + "BaseIndividualGameteTracking.txt", 2, 3},
          {one + "RecombinationTracking.txt", 61, 2},
          {one + "GenomeGeneration1.txt", 0, 44},
          {one + "GenomeGeneration4.txt", 0, 500},
          {one + "Chip2SnpInformation.txt", 5, 4},
          {one + "Chip1Summary.txt", 1, 1},
          {one + "UnRestrictedQtnInformation.txt", 2, 2},
          {one + "NbOfQtnMutationsAndSnp.txt", 1, 1},
          {one + "Chip1PhaseGeneration2.txt", 4, 5},
          {one + "RestrictedQtnGenotypeGeneration3.txt", 5, 6},
          {one + "UnrestrictedQtnAlleleFreqGeneration5.txt", 3, 3},
          {one + "SequencePhaseGeneration2.bin", 0, 44},
          {chips + "Chip3Genotype.txt", 90, 20},
          {data + "Chip1SnpInformation.txt", 4, 5},
          {data + "FullSequenceGenotype.txt", 50, 300},
          {data + "RestrictedQtnInformation.txt", 3, 5},
          {data + "UnrestrictedQtnIndivGenotypes.txt", 20, 8},
          {data + "UnrestrictedQtnAdditEffects.txt", 6, 4},
          {data + "PedigreeTbvTdvTpv.txt", 33, 6},
          {data + "GeneticMeansPerGeneration.txt", 9, 4},
          {data + "TotalGenicAndGeneticVariancesPerGeneration.txt", 5, 3},
          {data + "TotalGenicAndGeneticVariancesPerGeneration.txt", 10, 5},
          {data + "TraitVarianceComponents.txt", 3, 2},
          {data + "TraitVarianceComponents.txt", 7, 5},
          {data + "TraitVarianceComponentsCovariance.txt", 4, 1},
          {data + "TraitVarianceComponentsResidualCholQtnModel2.txt", 1, 1},
          {cycle + "SelectionTbvTest.txt", 3, 2},
          {cycle + "TmpChip2GenotypeTest.txt", 3, 4},
          {"Selection/AccuracyOfBreedingValueSelectionCycle2.txt", 2, 2}}},
        {"plants",
         {{one + "MutDeNovoInfo.txt", 2, 5},
          {data + "RestrictedQtnDominEffects.txt", 3, 4},
          {data + "UnrestrictedQtnAverAlleleSubstEffects.txt", 3, 4},
          {data + "PedigreeTbvTdvTpv.txt", 40, 10},
          {data + "PedigreeTbvTdvTpv.txt", 60, 13},
          {one + "GenomeGeneration7.txt", 0, 200},
          {cycle + "SelectionPhenTest.txt", 5, 2}}},
        {"editing",
         {{cycle + "GeneEditingInformation.txt", 2, 3},
          {cycle + "GeneEditingInformation.txt", 2, 4},
          {data + "FixedQtn.txt", 4, 3}}},
        {"contributions",
         {{cycle + "GenderTesting.txt", 2, 2},
          {cycle + "CorvalindResults/MatingListFinal.txt", 4, 1}}}};
    for (const auto &[name, damages] : cases) {
        SCOPED_TRACE(name);
        std::filesystem::create_directory(name);
        runtreecase(name, binfolder(), folder + "/" + name, [](const treeofrun &) { return true; });
        std::filesystem::current_path(name);
        EXPECT_EQ(checkrunfolder(".").report().find("VIOLATED"), std::string::npos);
        for (const damage &d : damages) {
            const std::string was = readfile(d.file);
            spoil(d);
            EXPECT_GT(checkrunfolder(".").nviolated, 0) << d.file << " " << d.line << " " << d.word;
            writefile(d.file, was);
        }
        std::filesystem::current_path("..");
    }
}
