// Genomic prediction: variances of zero, and refusals.
#include "Quillomere/quillomere.h"

#include "quillomere/genomicproblem.h"

#include <filesystem>

namespace
{
class quillomereinfolder : public infolder
{
};
} // namespace

// Without additive variance nothing is estimated; without residual variance the phenotypes are
// taken as they are, but for a millionth: training individuals come out at their own phenotype.
TEST_F(quillomereinfolder, variancesofzero)
{
    problem q = makeproblem(23, 12, 87, 21);
    q.vara = 0;
    writeproblem(q);
    commandresult result = runcommand(binfolder() + "/Quillomere");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.out.find("WARNING: VarA is 0"), std::string::npos);
    for (const char *file : {"Ebv.txt", "SnpSolutions.txt"})
        for (const std::string &line : readlines(file)) EXPECT_EQ(numbersof(line)[1], 0);
    EXPECT_EQ(numbersof(readlines("TbvEbvCorrelation.txt")[0])[0], 0);
    EXPECT_EQ(readlines("AlleleFreq.txt").size(), 85u);

    q.vara = 4;
    q.vare = 0;
    q.test = q.train;
    q.tbv = q.phenotype;
    writeproblem(q);
    result = runcommand(binfolder() + "/Quillomere");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.out.find("WARNING: VarE 0"), std::string::npos);
    double mean = 0;
    for (const double y : q.phenotype) mean += y / 23;
    for (std::size_t i = 0; i < 23; ++i)
        EXPECT_NEAR(numbersof(readlines("Ebv.txt")[i])[1], q.phenotype[i] - mean, 1e-3);

    // No SNP segregates.
    std::string fixed;
    for (int j = 0; j < 87; ++j) fixed += " 0\n";
    writefile("FixedSnp.txt", fixed);
    ASSERT_EQ(runcommand(binfolder() + "/Quillomere").status, 0);
    EXPECT_EQ(readfile("AlleleFreq.txt"), "");
    for (const std::string &line : readlines("Ebv.txt")) EXPECT_EQ(numbersof(line)[1], 0);
}
