// Pedigree prediction: a textbook example, variances of zero, and refusals.
#include "QuillomereP/quillomerep.h"

#include "quillomerep/pedigreeproblem.h"

#include <filesystem>

namespace
{
class quillomerepinfolder : public infolder
{
};
} // namespace

// Mrode, Linear Models for the Prediction of Animal Breeding Values, Example 3.1 (chapter 3):
// weaning gain of five calves, eight animals, variances 20 and 40, sex as the fixed effect. The
// solutions given there are 4.358 for males and 3.404 for females, and the breeding values below.
// This program fits a mean only; but once the phenotypes are cleared of the solutions for sex, the
// mean that is left is 0 and the breeding values are the same, since the mean lies in the space of
// the two sexes.
TEST_F(quillomerepinfolder, textbookexample)
{
    const double male = 4.358, female = 3.404;
    const pedigree p = {{},
                        {0, 0, 1, -99},
                        {0, 0, 1, -99},
                        {0, 0, 1, -99},
                        {1, 0, 1, 4.5 - male},
                        {3, 2, 1, 2.9 - female},
                        {1, 2, 1, 3.9 - female},
                        {4, 5, 1, 3.5 - male},
                        {3, 6, 1, 5.0 - male}};
    writeproblem(p, 20, 40);
    ASSERT_EQ(runcommand(binfolder() + "/QuillomereP").status, 0);
    // Half a unit of the last decimal of the book, and as much again for the two solutions.
    expectresults({0, 0.098, -0.019, -0.041, -0.009, -0.186, 0.177, -0.249, 0.183}, 0.001);
}

TEST_F(quillomerepinfolder, variancesofzero)
{
    const pedigree p = mixedpedigree(40, 2, true);
    writeproblem(p, 0, 4);
    commandresult result = runcommand(binfolder() + "/QuillomereP");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.out.find("WARNING: StartValuePolygenicVariance is 0"), std::string::npos);
    expectresults(std::vector<double>(p.size(), 0.0), 0);
    writeproblem(mixedpedigree(40, 2, false), 4, 0);
    result = runcommand(binfolder() + "/QuillomereP");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.out.find("WARNING: StartValueResidualVariance 0"), std::string::npos);
}
