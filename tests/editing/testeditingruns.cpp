// What runs with gene editing are refused for, and a drive without edits.
#include "wholeruns/runsupport.h"

namespace
{
spectext editedrun()
{
    return smallrun()
        .set("GeneEditingOnOff", "On")
        .set("NumberOfEditedIndividuals", "2")
        .set("NumberOfGeneEditsPerIndividual", "3");
}
} // namespace

class editingruns : public wholerun
{
};

TEST_F(editingruns, drivewithouteditingdoesnothing)
{
    mustrun(smallrun(), -81);
    filetree without = readtree();
    mustrun(smallrun().set("GeneDriveOnOff", "On"), -81);
    filetree with = readtree();
    EXPECT_EQ(with["SimulatedData/GeneDriveQtnPresence.txt"],
              "        IndividualID        QtnWithGeneDrive        PhaseWithGeneDrive\n");
    with.erase("SimulatedData/GeneDriveQtnPresence.txt");
    with.erase("SolvantoSpec.txt");
    without.erase("SolvantoSpec.txt");
    expectsametree(without, with);
}

TEST_F(editingruns, refusals)
{
    commandresult result = run(editedrun().set("NumberOfEditedIndividuals", "5"), -91);
    EXPECT_EQ(result.status, 110011 % 256);
    EXPECT_NE(result.out.find("ERROR: Number of sires/male parents to be edited is greater than "
                              "the number of sires/male parents\n"),
              std::string::npos);

    const spectext chosen = editedrun().set("PerformGEOnUserQtnSelectionYesNo", "Yes");
    result = run(chosen, -91);
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("UserSelectedQtnToBeEdited.txt"), std::string::npos);
    writefile("UserSelectedQtnToBeEdited.txt", "1 0 1 0 1\n1 1 1 1 1\n1 1 1 1 1 1 1 1 1\n"); // 19
    result = run(chosen, -91);
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("UserSelectedQtnToBeEdited.txt"), std::string::npos);
}
