// docs/output-files.md against what runs of every kind leave: no file undocumented, none documented
// that no run writes.
#include "wholeruns/runsupport.h"

#include <filesystem>
#include <regex>
#include <set>

namespace
{
struct documentedfile {
    std::string name;
    std::regex pattern;
};

// The headings of the page: ### `path`, with placeholders such as <g>.
std::vector<documentedfile> documentedfiles()
{
    std::vector<documentedfile> files;
    for (const std::string &line : readlines(sourcefolder() + "/docs/output-files.md")) {
        if (line.rfind("### `", 0) != 0) continue;
        const std::string name = line.substr(5, line.rfind('`') - 5);
        std::string pattern = std::regex_replace(name, std::regex(R"([.])"), R"(\.)");
        pattern = std::regex_replace(pattern, std::regex("<[a-z]>"), "[1-9][0-9]*");
        files.push_back({name, std::regex(pattern + R"((\.gz)?)")});
    }
    return files;
}
} // namespace

class documentation : public wholerun
{
  protected:
    std::set<std::string> seen, undocumented;
    std::vector<documentedfile> documented = documentedfiles();

    // Runs, and notes the files left besides the user's own.
    void runandnote(const spectext &spec, const std::set<std::string> &inputs = {})
    {
        mustrun(spec, -21);
        namespace fs = std::filesystem;
        for (const auto &entry : fs::recursive_directory_iterator(".")) {
            const std::string path = entry.path().lexically_normal().string();
            if (!entry.is_regular_file() || entry.is_symlink() || path == "SolvantoSpec.txt" ||
                inputs.contains(path))
                continue;
            bool known = false;
            for (const documentedfile &file : documented)
                if (std::regex_match(path, file.pattern)) {
                    seen.insert(file.name);
                    known = true;
                }
            if (!known) undocumented.insert(path);
        }
    }
};

TEST_F(documentation, everyfileisdocumented)
{
    runandnote(smallrun()
                   .set("WriteFullSequenceOutOnOff", "On")
                   .set("ZipSequenceOutputFilesYesNo", "Yes")
                   .set("IncludeDominanceEffectsOnOff", "On")
                   .set("NumberOfMutationsPerChr", "2")
                   .set("GeneEditingOnOff", "On")
                   .set("GeneDriveOnOff", "On"));
    writefile("RecombinationSpecifications/Chromosome1.txt", "0 0.5 0.5\n0.5 1 0.5\n");
    writefile("RecombinationSpecifications/Chromosome2.txt", "0 0.5 0.5\n0.5 1 0.5\n");
    const std::set<std::string> inputs{"RecombinationSpecifications/Chromosome1.txt",
                                       "RecombinationSpecifications/Chromosome2.txt"};
    const spectext estimates = smallrun()
                                   .set("SelectionMethod", "GBlup")
                                   .set("UseExternalSnpSolutionsYesNo", "No")
                                   .set("AddQtnToTheSnpChipYesNo", "No")
                                   .set("SelectionPhenotypingStrategy", "AllHistoricalPhenotypes")
                                   .set("ComputeAverageCoancestryYesNo", "No");
    runandnote(spectext(estimates)
                   .set("RecombinationHotspotsOnOff", "On")
                   .set("RecombinationOnOff", "On")
                   .set("HeritabilityOfRecombination", "0.3")
                   .set("NumberOfQtnPerChromForRecombination", "12") // more than QTN of the trait
                   .set("FixTheTrainingDataAcrossGenerationsOnOff", "On")
                   .set("UseTrainingDataFromGeneration", "4"),
               inputs);
    const auto twotraits = [](spectext spec) {
        return spec.set("NumberOfTraits", "2")
            .set("IndexWeights", "0.5,0.5")
            .set("TraitHeritability", "0.3,0.5")
            .set("TraitGeneticVariance", "1,2")
            .insertbefore("ResidualCorrelationMatrix", "0.2,1.0")
            .insertbefore("KeepChromosomesFolderYesNo", "0.2,1.0");
    };
    runandnote(twotraits(estimates), inputs);
    runandnote(twotraits(smallrun()).set("SelectionMethod", "Pheno"), inputs);
    runandnote(smallrun().set("SelectionMethod", "Pheno"), inputs);
    runandnote(spectext(estimates)
                   .set("SelectionMethod", "PedigreeBlup")
                   .set("SelectionBasedOnRestrictedOrUnrestrictedQtn", "Restricted")
                   .set("GeneEditingOnOff", "On"),
               inputs);
    const auto contributions = [](spectext spec) {
        return spec.set("OptimalContributionSelectionOnOff", "On")
            .insertbefore("NumberOfTraits", "SizeOfXvectPopulationAndMaxNbOfGenerations ,5,100")
            .insertbefore("NumberOfTraits", "PercentageDifferenceInbreeding ,0.05");
    };
    runandnote(contributions(spectext(estimates).set("ComputeAverageCoancestryYesNo", "Yes")),
               inputs);
    runandnote(contributions(smallrun()), inputs);

    EXPECT_EQ(undocumented, std::set<std::string>{});
    std::set<std::string> neverseen;
    for (const documentedfile &file : documented)
        if (!seen.contains(file.name)) neverseen.insert(file.name);
    EXPECT_EQ(neverseen, std::set<std::string>{});
}
