// What --check expects of disk where a run leaves less than it writes. The examples are compared with
// their runs by scripts/estimates.
#include "wholeruns/runsupport.h"

#include <regex>

namespace
{
class estimates : public wholerun
{
  protected:
    // The number behind a name in the estimates, in MB.
    double expected(const std::string &arguments, const std::string &name)
    {
        const commandresult check = runcommand("./solvanto --quiet --check " + arguments);
        EXPECT_EQ(check.status, 0) << check.err;
        std::smatch found;
        if (!std::regex_search(check.out, found, std::regex(name + " +([0-9.]+) MB"))) return -1;
        return std::stod(found[1]);
    }
};

double megabytes(const std::string &folders)
{
    return std::stod(
               runcommand("du -cb --apparent-size $(find " + folders + " -type f) | tail -n 1")
                   .out) /
           1e6;
}
} // namespace

TEST_F(estimates, countwhatisremoved)
{
    spectext spec = smallrun();
    spec.change("SelectionMethod,GBlup; WriteFullSequenceOutOnOff,On");
    spec.write();
    writefile("Seed.txt", "-71\n");
    const double all = expected("", "Disk"), tidied = expected("--tidy", "Disk");
    ASSERT_EQ(runcommand("./solvanto --quiet --tidy").status, 0);
    const double left = megabytes("Chromosomes Selection SimulatedData");
    EXPECT_GT(all, 1.5 * left);
    EXPECT_LT(tidied, 1.25 * left);
    EXPECT_GT(tidied, left / 1.25);
    spec.change("KeepChromosomesFolderYesNo,No").write();
    EXPECT_EQ(expected("", "Chromosomes"), 0);
}
