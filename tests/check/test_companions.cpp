// Which programs a specification needs, held against the programs that runs start, and which of
// them can't be started.
#include "check/companions.h"

#include "openstate.h"
#include "spec/readinparameters.h"
#include "specsupport.h"
#include "testsupport.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace
{
class companions : public infolder
{
  protected:
    std::string needed(const std::string &changes)
    {
        smallrun().change(changes).write();
        testing::internal::CaptureStdout();
        const runsettings settings = readinparameters();
        testing::internal::GetCapturedStdout();
        std::string names;
        for (const std::string &program : neededcompanions(state(settings))) names += program + " ";
        return names;
    }
};
} // namespace

// smallrun: generations 1 to 3 burn-in, 4 and 5 selection.
TEST_F(companions, followthespecification)
{
    const std::string founders = "macs Vintrecaskelle ", on = "GenerationFlexibilityOnOff,On; ";
    const std::string genomic = "SelectionMethod,GBlup", pedigree = "SelectionMethod,PedigreeBlup";
    const std::string contributions = "; OptimalContributionSelectionOnOff,On";
    const std::string coancestry = "; ComputeAverageCoancestryYesNo,Yes";
    EXPECT_EQ(needed("+#"), founders); // true values
    EXPECT_EQ(needed(genomic), founders + "Quillomere ");
    EXPECT_EQ(needed(pedigree), founders + "QuillomereP ");
    EXPECT_EQ(needed(genomic + contributions), founders + "Quillomere Brenvask Corvalind ");
    EXPECT_EQ(needed(genomic + coancestry), founders + "Quillomere Brenvask ");
    EXPECT_EQ(needed(genomic + "; UseExternalSnpSolutionsYesNo,Yes"), founders);
    // The burn-in alone; then only the cycle that takes the solutions of the first.
    EXPECT_EQ(needed(genomic + "; " + on + "StartStopGeneration,1,3"), founders);
    EXPECT_EQ(needed(genomic + contributions + "; " + on +
                     "StartStopGeneration,5,5; FixTheTrainingDataAcrossGenerationsOnOff,On; "
                     "UseTrainingDataFromGeneration,4"),
              "Brenvask Corvalind ");
    // Generation 4 comes from outside: nobody allocates its matings, and the first stage ends
    // before there is a generation whose parents could be related.
    const std::string imported = genomic + contributions + coancestry + "; " + on +
                                 "StartStopGeneration,4,4; SelectionFlexibilityOnOff,On; "
                                 "ImportAnExternalPedigreeForThisGeneration,4; "
                                 "ImportStagePut1ToComputeBV2ToContinue,";
    EXPECT_EQ(needed(imported + "1"), "Quillomere ");
    EXPECT_EQ(needed(imported + "2"), "Quillomere Brenvask ");
    EXPECT_EQ(needed("MergeTypes,Ids"), "");
}

TEST_F(companions, thatcannotbestarted)
{
    openstate s;
    s.run.merging = mergekind::none;
    s.run.specstartgen = s.run.specendgen = s.pop.ngen = 1;
    const auto reasons = [&] {
        std::string text;
        for (const missingcompanion &m : missingcompanions(s))
            text += m.program + " " + m.reason + "\n";
        return text;
    };
    EXPECT_EQ(reasons(), "macs is missing\nVintrecaskelle is missing\n");
    fs::create_directory("macs");
    writefile("Vintrecaskelle", "");
    EXPECT_EQ(reasons(), "macs is not a file\nVintrecaskelle is not executable\n");
    fs::remove("macs");
    fs::create_symlink("/bin/true", "macs");
    fs::permissions("Vintrecaskelle", fs::perms::owner_all);
    EXPECT_EQ(reasons(), "");
}
