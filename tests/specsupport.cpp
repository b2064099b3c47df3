#include "specsupport.h"

#include "testsupport.h"
#include "words.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace
{
std::vector<std::string> linesof(const std::string &text)
{
    std::istringstream in(text + "\n");
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}
} // namespace

spectext::spectext(const std::string &content) : lines(linesof(content)) {}

// The n lines from line i on (from 0) become the lines of a text.
spectext &spectext::splice(std::size_t i, std::size_t n, const std::string &content)
{
    const auto at = lines.begin() + static_cast<std::ptrdiff_t>(std::min(i, lines.size()));
    const std::vector<std::string> added = linesof(content);
    const auto behind =
        lines.erase(at, at + static_cast<std::ptrdiff_t>(std::min(n, lines.size())));
    lines.insert(behind, added.begin(), added.end());
    return *this;
}

std::size_t spectext::find(const std::string &key) const
{
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (tlc(lines[i].substr(0, lines[i].find(','))) == tlc(key)) return i;
    return lines.size();
}

std::size_t spectext::findpresent(const std::string &key) const
{
    const std::size_t i = find(key);
    if (i == lines.size()) throw std::invalid_argument("no line of the key " + key);
    return i;
}

spectext &spectext::replace(const std::string &key, const std::string &line)
{
    return splice(findpresent(key), 1, line);
}

spectext &spectext::set(const std::string &key, const std::string &values)
{
    const std::size_t i = find(key);
    return splice(i, i < lines.size() ? 1 : 0, key + "," + values);
}

spectext &spectext::remove(const std::string &key)
{
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(findpresent(key)));
    return *this;
}

spectext &spectext::insertbefore(const std::string &key, const std::string &line)
{
    return splice(findpresent(key), 0, line);
}

spectext &spectext::insertafter(const std::string &key, const std::string &line)
{
    return splice(findpresent(key) + 1, 0, line);
}

spectext &spectext::append(const std::string &line)
{
    return splice(lines.size(), 0, line);
}

spectext &spectext::movebefore(const std::string &key, const std::string &other)
{
    const std::string line = lines[findpresent(key)];
    return remove(key).insertbefore(other, line);
}

spectext &spectext::moveafter(const std::string &key, const std::string &other)
{
    const std::string line = lines[findpresent(key)];
    return remove(key).insertafter(other, line);
}

std::string spectext::text() const
{
    std::string all;
    for (const std::string &line : lines) all += line + "\n";
    return all;
}

void spectext::write() const
{
    writefile("SolvantoSpec.txt", text());
}

spectext goodspec()
{
    return spectext(R"(Box 1 - Pedigree
PedigreeStatus,Internal
NumberGenerationsBurnIn,3
NumberGenerationsSelection,2
NumberOfIndividualsInEachGeneration,Constant,20
Box 2 - Animal breeding
AnimalBreedingOnOff,On
NumberOfSiresInEachGeneration,Constant,4
NumberOfDamsInEachGeneration,Constant,10
Box 3 - Plant breeding
PlantBreedingOnOff,Off
PerformMatingsConsideringTheGenderYesNo,No
NumberOfMaleParentsInEachGeneration,Constant,0
NumberOfFemaleParentsInEachGeneration,Constant,0
NumberOfParentsRegardlessTheGenderInEachGen,Constant,0
PerformSelfingInAtLeastOneGenerationYesNo,No
NumberOfSelfedParentsInEachGeneration,Constant,0
NumberOfGenerationsIncludingDoubledHaploids,0
CreateDoubledHaploidsInTheseGenerations,1
Box 4 - Flexibility
GenerationFlexibilityOnOff,Off
StartStopGeneration,1,5
SelectionFlexibilityOnOff,Off
ImportAnExternalPedigreeForThisGeneration,0
ImportStagePut1ToComputeBV2ToContinue,2
MergeTypes,None
NumberOfMergeRuns,0
MergeFiles,None
Box 5 - Chromosomes
NumberOfChromosomes,2
PopulationHistoryMaCS,InternalTest
ChromosomeLengthMorgansMaCS,Internal
ChromosomeLengthMorgansSolvanto,Internal
NumberOfHaplotypes,40
RecombinationHotspotsOnOff,Off
ChromosomeLengthBasesMaCS,Value,10000000
MutationRateMaCS,Value,2.5e-8
EffectivePopulationSizeBaseMaCS,Value,100
Box 6 - SNP chips
UseSnpChipOnOff,On
NumberOfSnpChips,1
nSnpPerChipPerChromosme,20
MinMaxAlleleFreqForSnp,0,1
SnpChipIncludesQtnYesNoRandom,No
SnpChipsAreNestedYesNo,Yes
IdOfChipUsedForSelection,1
Box 7 - QTN
NumberOfQtnPerChromosomeNormalDist,10
NumberOfQtnPerChromosomeGammaDist,10
NumberOfMutationsPerChr,0
MutationalVarianceProportion,0
MinMaxAlleleFreqForModel2And4,0,0.5
ShapeAndScaleOfGammaDistForModel3And4,0.4,1.66
IncludeDominanceEffectsOnOff,Off
DominanceDegreeMeanAndVariance,0.1,0.2
QtnClustersOnOff,Off
Box 8 - Recombination
RecombinationOnOff,Off
HeritabilityOfRecombination,0.2
NumberOfQtnPerChromForRecombination,0
InitialRecombinationIndexWeight,0
NumberGenerationsSelectionOnRecombination,0
LaterGenRecombinationIndexWeight,0
DistributionOfQtnForRecombination,Normal
ShapeAndScaleOfGammaDist,1,1
Box 9 - Gene editing
GeneEditingOnOff,Off
EditTopOrBottom,Top
NumberOfEditedIndividuals,0
NumberOfGeneEditsPerIndividual,0
PerformGEOnUserQtnSelectionYesNo,No
GeneDriveOnOff,Off
Box 10 - Selection
SelectionBasedOnRestrictedOrUnrestrictedQtn,Unrestricted
DistributionOfQtnOfSelectionTraits,Normal
SelectionMethod,Tbv
AddQtnToTheSnpChipYesNo,No
UseExternalSnpSolutionsYesNo,No
SelectionPhenotypingStrategy,AllPhenotypes
FirstAndLastTrainingGenForRandomPhenotypesStrat,1,2
TrainingSetSizeForRandomPhenotypesStrat,20
FixTheTrainingDataAcrossGenerationsOnOff,Off
UseTrainingDataFromGeneration,4
ComputeAverageCoancestryYesNo,No
GenerationsOfPedigreePriorToTraining,1
Box 11 - Optimal contributions
OptimalContributionSelectionOnOff,Off
SizeOfXvectPopulationAndMaxNbOfGenerations,10,100
PercentageDifferenceInbreeding,1
Box 12 - Traits
NumberOfTraits,1
IndexWeights,1
TraitHeritability,0.5
TraitGeneticVariance,1
Box 13 - Correlation matrices
GeneticCorrelationMatrix
1.0
ResidualCorrelationMatrix
1.0
Box 14 - Output
KeepChromosomesFolderYesNo,Yes
WriteFullSequenceOutOnOff,Off
ZipSequenceOutputFilesYesNo,No
Box 15 - Genome compression
GenomeCompressionOnOff,Off
GenomeCompression,100
)");
}
