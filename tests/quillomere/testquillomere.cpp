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

// Everything that can be wrong ends with status 2 and a message that names file and line, and
// leaves no results, not even those of an evaluation before.
TEST_F(quillomereinfolder, refusals)
{
    problem q = makeproblem(6, 3, 7, 2);
    for (auto *rows : {&q.train, &q.test})
        for (auto &row : *rows) std::replace(row.begin(), row.end(), 9, 1);
    q.train[3][0] = 9;
    const std::string train = "TmpChip1GenotypeTrain.txt", test = "TmpChip1GenotypeTest.txt",
                      spec = "QuillomereSpec.txt", phen = "SelectionPhenTrain.txt",
                      tbv = "SelectionTbvTest.txt", fixed = "FixedSnp.txt";
    struct fault {
        std::string file, find, replace, message;
    };
    const std::vector<fault> faults = {
        {spec, "nBurn ", "nBurnt ", "QuillomereSpec.txt: line 10: nBurnt: unknown key"},
        {spec, "VarE   ", "VarA   ", "QuillomereSpec.txt: line 12: key \"VarA\" stands on line 11"},
        {spec, "nRound                ,1000\n", "\n",
         "QuillomereSpec.txt: the key nround is missing"},
        {spec, "nRound                ,", "nRound ", "QuillomereSpec.txt: line 9: a key, a comma"},
        {spec, ",1000", ",0", "QuillomereSpec.txt: line 9: nRound: 0 is below 1"},
        {spec, ",1000", ",1000.5", "QuillomereSpec.txt: line 9: nRound: an integer is wanted"},
        {spec, "VarA                  , 2.5", "VarA ,-1",
         "QuillomereSpec.txt: line 11: VarA: -1 is below 0"},
        {spec, "VarA                  , 2.5", "VarA ,NaN",
         "QuillomereSpec.txt: line 11: VarA: a number"},
        {spec, ", 2\n", ", 1\n", "QuillomereSpec.txt: line 14: ScalingOption: 1 is not known"},
        {spec, ",9", ",1", "QuillomereSpec.txt: line 15: MissingGenoCode: 1 is a genotype"},
        {spec, ",Ridge", ",BayesA", "QuillomereSpec.txt: line 16: MarkerSolver: \"BayesA\""},
        {spec, ",FixedSnp.txt", ",",
         "QuillomereSpec.txt: line 5: FixedSnpFile: the name of a file"},
        {spec, ",FixedSnp.txt", ",None.txt", "None.txt: "},
        {spec, ",9", ",8", "TmpChip1GenotypeTrain.txt: line 4: genotype 9 is neither"},
        {train, " 13", " 99",
         "TmpChip1GenotypeTrain.txt: line 3: genotypes of individual 99, but "
         "record 3 of SelectionPhenTrain.txt is of individual 13"},
        {train, " 14 ", " 14 0 ", "TmpChip1GenotypeTrain.txt: line 4: more values"},
        {train, " 14 ", " 14", "TmpChip1GenotypeTrain.txt: line "},
        {train, "\n", "\n\n", "TmpChip1GenotypeTrain.txt: line 2: "},
        {phen, " 16", " 16 16", "SelectionPhenTrain.txt: line 6: more values"},
        {phen, " 12 ", " 12 x", "SelectionPhenTrain.txt: line 2: a number is wanted"},
        {phen, " 12 ", " 12 NaN\n", "SelectionPhenTrain.txt: line 2: the value is not a finite"},
        {phen, " 11 ", " 10 1.5\n 11 ", "SelectionPhenTrain.txt: line 7: more than the 6 records"},
        {tbv, " 503", " 504", "TmpChip1GenotypeTest.txt: line 3: genotypes of individual 503"},
        {test, " 502", " 502 3", "TmpChip1GenotypeTest.txt: line 2: "},
        {fixed, " 0\n", " 2\n", "FixedSnp.txt: line 1: 0 or 1 is wanted, not 2"},
        {fixed, " 0\n", "", "FixedSnp.txt: ends after line 6"},
    };
    for (const fault &f : faults) {
        writeproblem(q);
        ASSERT_EQ(runbody(quillomere).stoppedearly, false);
        std::string text = readfile(f.file);
        const std::size_t at = text.find(f.find);
        ASSERT_NE(at, std::string::npos) << f.message;
        writefile(f.file, text.replace(at, f.find.size(), f.replace));
        const outcome result = runbody(quillomere);
        EXPECT_EQ(result.code(), -2) << f.message;
        EXPECT_EQ(result.stop.reason.find(f.message), 0u) << result.stop.reason;
        for (const char *file : {"Ebv.txt", "SnpSolutions.txt", "AlleleFreq.txt"})
            EXPECT_FALSE(std::filesystem::exists(file)) << f.message;
    }
    std::filesystem::remove("QuillomereSpec.txt");
    const commandresult result = runcommand(binfolder() + "/Quillomere");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("QuillomereSpec.txt"), std::string::npos);
}
