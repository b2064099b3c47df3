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

// Everything that can be wrong ends with status 2 and a message that names file and line, and
// leaves no results.
TEST_F(quillomerepinfolder, refusals)
{
    const std::string format = "DataFormatParameters.txt", data = "PedigreeBlupTrain1.txt";
    struct fault {
        std::string file, find, replace, message;
    };
    const std::vector<fault> faults = {
        {format, " Blup", " Bayes", "DataFormatParameters.txt: line 2: Blup is wanted"},
        {format, data, "SelectionPhenRecomb.txt,TmpChip1GenotypeTrain.txt,XmatFormat",
         "DataFormatParameters.txt: line 3: the pedigree-phenotype file SelectionPhenRecomb.txt "
         "does not exist"},
        {format, data, " ", "DataFormatParameters.txt: line 3: the name of the pedigree file"},
        {format, "!I", "!R", "DataFormatParameters.txt: line 7: Id: a column of type !i"},
        {format, " Dam ", " Dame ", "DataFormatParameters.txt: line 6: Dame: unknown key"},
        {format, " Dam                               ,!P\n", "",
         "DataFormatParameters.txt: the key dam is missing"},
        {format, " Sire ", " Dam,!P\n Sire ", "DataFormatParameters.txt: line 7: key \"Dam\""},
        {format, "MissingValue                      ,-99", "MissingValue ,none",
         "DataFormatParameters.txt: line 9: MissingValue: a number is wanted"},
        {format, ",Mean", ",Herd", "DataFormatParameters.txt: line 14: FixedEffects: \"Herd\""},
        {format, "NumberSnp                         ,0", "NumberSnp ,5",
         "DataFormatParameters.txt: line 18: NumberSnp: \"5\""},
        {format, "PolygenicFixed                    ,No", "PolygenicFixed ,Maybe",
         "DataFormatParameters.txt: line 24: PolygenicFixed: Yes or No"},
        {format, "ResidualVariance        , 4", "ResidualVariance ,-4",
         "DataFormatParameters.txt: line 22: StartValueResidualVariance: -4.0 is below 0"},
        {data, "         3         0", "         3         7",
         "PedigreeBlupTrain1.txt: line 3: parent 7 does not stand on an earlier line"},
        {data, "         5", "         4",
         "PedigreeBlupTrain1.txt: line 5: animal 4: the numbers must ascend"},
        {data, "         1        2.", "         3        2.",
         "PedigreeBlupTrain1.txt: line 4: code 1 or 2 is wanted, not 3"},
        {data, "         1        2.", "         2        2.",
         "PedigreeBlupTrain1.txt: line 4: a doubled haploid has the same"},
        {data, "       2.5000000000", "", "PedigreeBlupTrain1.txt: line 4: fewer values"},
        {data, "2.5000000000", "2.5 1", "PedigreeBlupTrain1.txt: line 4: more values"},
        {data, "2.5000000000", "2,5x", "PedigreeBlupTrain1.txt: line 4: "},
        {data, "2.5000000000", "Infinity", "PedigreeBlupTrain1.txt: line 4: "},
    };
    const pedigree p = {{}, {}, {}, {}, {1, 2, 1, 2.5}, {3, 2, 1, 3.5}};
    for (const fault &f : faults) {
        writeproblem(p, 6, 4);
        ASSERT_FALSE(runbody(quillomerep).stoppedearly);
        std::string text = readfile(f.file);
        const std::size_t at = text.find(f.find);
        ASSERT_NE(at, std::string::npos) << f.message;
        writefile(f.file, text.replace(at, f.find.size(), f.replace));
        const outcome result = runbody(quillomerep);
        EXPECT_EQ(result.code(), -2) << f.message;
        EXPECT_EQ(result.stop.reason.find(f.message), 0u) << result.stop.reason;
        EXPECT_FALSE(std::filesystem::exists(resultfile)) << f.message;
    }
    writeproblem(p, 6, 4);
    for (const char *content : {"", "1 0 0 1 -99\n"}) {
        writefile(data, content);
        EXPECT_EQ(runbody(quillomerep).stop.reason, data + ": no animal has a phenotype");
    }
    std::filesystem::remove(format);
    const commandresult result = runcommand(binfolder() + "/QuillomereP");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find(format), std::string::npos);
}
