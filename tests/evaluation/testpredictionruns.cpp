#include "evaluation/predictionruns.h"
#include "selection/population.h"
#include "testsupport.h"

#include <filesystem>
#include <sstream>

namespace
{
class PredictionRuns : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        makepopulation(s, 3, {4, 4, 3, 3});
        s.chips.tmpchip = 2;
        s.chips.nsnp = s.chips.nsnpforsel = 2;
        s.qtn.nqtnmodels = 2;
        s.qtn.qtnmodel = 2;
        settest(s, 3, {0, 0, 0});
        selectiondata &sel = s.selection;
        sel.selontbvyes1no0 = 0;
        sel.selmethindicator = 2;
        sel.firsttmptraingen = 2;
        sel.ntrainindiv = 40;
        sel.selectionvaratr.allocate(3, 0.5);
        sel.selectionvararecombtr = 1e-5;
        s.values.vare.allocate(2, 3, 1.25);
        s.values.varerecomb = 0.05;
        sel.estimatedbvtrait.allocate(3, 3);
        sel.estimatedbvrecomb.allocate(3);
        std::filesystem::create_directories("Selection/SelectionFolder1");
    }
    // A program of the user's that notes how it was run.
    void makeprogram(const std::string &name, const std::string &lines)
    {
        writefile(name, "#!/bin/sh\necho run in `pwd | sed 's:.*/::'`\ncat Seed.txt\n" + lines);
        std::filesystem::permissions(name, std::filesystem::perms::owner_all);
    }
    std::vector<double> estimates(int64 t) const
    {
        const double *first = s.selection.estimatedbvtrait.column(t);
        return {first, first + 3};
    }
    state s;
    const std::string f = "Selection/SelectionFolder1/";
};
} // namespace

TEST_F(PredictionRuns, GenomicSpecification)
{
    writequillomerespec(s, 1, 1, 1);
    EXPECT_EQ(readfile(f + "QuillomereSpec.txt"),
              R"( GenotypeTraining      ,TmpChip2GenotypeTrain.txt
 GenotypeTesting       ,TmpChip2GenotypeTest.txt
 PhenotypeTraining     ,SelectionPhenTrain.txt
 TbvTesting            ,SelectionTbvTest.txt
 FixedSnpFile          ,FixedSnp.txt
 nSnp                  , 2
 nAnisTraining         , 40
 nAnisTest             , 3
 nRound                ,1000
 nBurn                 ,0
 VarA                  , 0.5
 VarE                  , 1.25
 NumberOfProcessors    ,1
 ScalingOption         , 2
 MissingGenoCode       ,9
 MarkerSolver          ,Ridge
)");
    s.selection.recombselonoff = true;
    s.selection.selphenstrat = 6;
    s.selection.trainindiv.allocate(5);
    writequillomerespec(s, 1, 1, 2);
    const std::vector<std::string> recomb = readlines(f + "QuillomereSpec.txt");
    EXPECT_EQ(recomb[2], " PhenotypeTraining   ,SelectionPhenRecombTrain.txt");
    EXPECT_EQ(recomb[3], " TbvTesting        ,SelectionTbvRecombZTesting.txt");
    EXPECT_EQ(recomb[6], " nAnisTraining         , 5");
    EXPECT_EQ(recomb[10], " VarA                  , 1e-05");
    EXPECT_EQ(recomb[11], " VarE                  , 0.05");
    s.traits.ntraits = 3;
    writequillomerespec(s, 1, 3, 1);
    const std::vector<std::string> trait = readlines(f + "QuillomereSpec.txt");
    EXPECT_EQ(trait[2], " PhenotypeTraining     ,SelectionPhenTrainTrait3.txt");
    EXPECT_EQ(trait[3], " TbvTesting            ,SelectionTbvTestTrait3.txt");
}

TEST_F(PredictionRuns, PedigreeSpecifications)
{
    s.selection.selmethindicator = 1;
    const std::string parameters = R"( Run for Solvanto
 Blup
PedigreeBlupTrain1.txt
 Animal                            ,!P,0,F
 Sire                              ,!P
 Dam                               ,!P
 Id                                ,!I
 Phen                              ,!R
 MissingValue                      ,-99
 nIterations                       ,10000
 nBurnIn                           ,1000
 OutputIterationNumber             ,10
 nBlupIterations                   ,0
 FixedEffects                      ,Mean
 FixedRegression                   ,None
 Yvariable                         ,Phen
 SnpSolver                         ,BayesA
 NumberSnp                         ,0
 TotalGeneticVariance              ,0.30
 StartValueSnpVariance             ,1.00
 StartValuePolygenicVariance       , 0.5
 StartValueResidualVariance        , 1.25
 StartValueGeneticGroupVariance    ,0.0
 PolygenicFixed                    ,No
 ResidualFixed                     ,No
 GeneticGroupVarianceFixed         ,No
 PosteriorMeanOnly         ,No
)";
    writequillomerepspec(s, 1, 1, 1);
    EXPECT_EQ(readfile(f + "DataFormatParameters.txt"), parameters);
    // The lines in which the other file, and the files of run 2, differ.
    const auto differences = [&](const std::string &name) {
        std::vector<std::string> differing;
        std::istringstream usual(parameters);
        for (const std::string &line : readlines(f + name)) {
            std::string wanted;
            std::getline(usual, wanted);
            if (line != wanted) differing.push_back(line);
        }
        EXPECT_EQ(readlines(f + name).size(), 27U);
        return differing;
    };
    writequillomerespec(s, 1, 1, 1);
    const std::vector<std::string> other = {
        " Test",
        " SelectionPhen.txt",
        " Id                            ,!I",
        " Phen                      ,!R",
        " OutputIterationNumber           ,10",
        " StartValueGeneticGroupVariance      ,0.0",
    };
    EXPECT_EQ(differences("QuillomereSpec.txt"), other);
    writequillomerepspec(s, 1, 1, 2);
    EXPECT_EQ(
        differences("DataFormatParameters.txt"),
        (std::vector<std::string>{" SelectionPhenRecomb.txt,TmpChip1GenotypeTrain.txt,XmatFormat",
                                  " PolygenicFixed                    ,Yes"}));
}

// The script, as a program finds it that looks up from its folder, and what it leaves.
TEST_F(PredictionRuns, ScriptsRunTheProgramsAndNameTheirResults)
{
    const std::string keepscript = "cat ../../TmpQuillomere.sh > script.txt\n";
    makeprogram("Quillomere", keepscript + "for n in AlleleFreq SnpSolutions Ebv "
                                           "TbvEbvCorrelation; do echo 1 $n > $n.txt; done\n");
    makeprogram("QuillomereP", keepscript);
    const int64 seed = s.random.idum;
    s.traits.ntraits = 2;
    EXPECT_EQ(runbody([&] { runquillomere(s, 1, 1, 2); }).output, "");
    EXPECT_EQ(readfile(f + "script.txt"), R"( cd ./Selection/SelectionFolder1/
 ./Quillomere > outQuillomere
 cp AlleleFreq.txt AlleleFreqTrain.txt
 rm AlleleFreq.txt
 cp SnpSolutions.txt SnpSolutionsRecomb.txt
 cp Ebv.txt ./EbvRecomb.txt
 cp TbvEbvCorrelation.txt TbvEbvCorrelRecomb.txt
 cp Ebv.txt EbvTrait1.txt
 cp SnpSolutions.txt SnpSolutionsTrait1.txt
 cp TbvEbvCorrelation.txt TbvEbvCorrelationTrait1.txt
 rm -f Ebv.txt SnpSolutions.txt TbvEbvCorrelation.txt
 cd ..
)");
    EXPECT_EQ(s.random.idum, seed);
    EXPECT_EQ(readfile(f + "outQuillomere"), "run in SelectionFolder1\n -4711\n");
    EXPECT_EQ(readfile(f + "EbvTrait1.txt"), "1 Ebv\n");
    EXPECT_FALSE(std::filesystem::exists(f + "Ebv.txt"));
    EXPECT_FALSE(std::filesystem::exists("TmpQuillomere.sh"));
    runquillomerep(s, 1, 2, 1);
    EXPECT_EQ(readfile(f + "script.txt"), R"( cd ./Selection/SelectionFolder1/
 ./QuillomereP > outQuillomere
 mv ResultAverageEstimatedPolygenicBreedingValues.txt EbvTrait2.txt
 cd ..
)");
}

TEST_F(PredictionRuns, MissingProgramOrResultsAreNamed)
{
    EXPECT_EQ(runbody([&] { runquillomerep(s, 1, 1, 0); }).output,
              "Run ID set incorrectly\nfailure : Solvanto : RunQuillomereP A\n");
    const outcome missing = runbody([&] { computereadebv(s, 1, 1); });
    EXPECT_EQ(missing.code(), -2);
    EXPECT_NE(missing.stop.reason.find(f + "Ebv.txt"), std::string::npos) << missing.stop.reason;
    EXPECT_NE(missing.stop.reason.find(f + "outQuillomere"), std::string::npos);
    writefile(f + "Ebv.txt", " 9 0.5\n 10 -0.25\n");
    const outcome tooshort = runbody([&] { computereadebv(s, 1, 1); });
    EXPECT_EQ(tooshort.code(), -2);
    EXPECT_NE(tooshort.stop.reason.find("outQuillomere"), std::string::npos);

    writefile(f + "Ebv.txt", " 9 0.5\n 10 -0.25\n 11,1d1 more\n");
    computereadebv(s, 1, 1);
    EXPECT_EQ(estimates(1), (std::vector<double>{0.5, -0.25, 10}));
    s.traits.ntraits = 2;
    writefile(f + "EbvTrait2.txt", " 1 1\n 2 2\n 3 3\n");
    computereadebv(s, 1, 2);
    EXPECT_EQ(estimates(2), (std::vector<double>{1, 2, 3}));
}

// Training pedigree from generation 2 (row 5) on, test set rows 9 to 11: numbers 5 to 7.
TEST_F(PredictionRuns, PedigreeEstimatesAreTakenBackToTheirRows)
{
    s.selection.selmethindicator = 1;
    makeprogram("QuillomereP", "printf '4 9\\n 5 0.5\\n6 -0.25\\n7 1e1\\n8 7\\n' > "
                               "ResultAverageEstimatedPolygenicBreedingValues.txt\n");
    runquillomerep(s, 1, 1, 1);
    readquillomerepebvs(s, 1, 1);
    EXPECT_EQ(estimates(1), (std::vector<double>{0.5, -0.25, 10}));
    EXPECT_EQ(readfile(f + "EBVsReadIn1.txt"), "         1         9          0.50000000\n"
                                               "         2        10         -0.25000000\n"
                                               "         3        11         10.00000000\n");
    // A record that can't be read ends the reading; without a file all stay 0.
    writefile(f + "EbvTrait2.txt", "5 3\n6 x\n7 4\n");
    readquillomerepebvs(s, 1, 2);
    EXPECT_EQ(estimates(2), (std::vector<double>{3, 0, 0}));
    readquillomerepebvs(s, 1, 3);
    EXPECT_EQ(estimates(3), (std::vector<double>{0, 0, 0}));
    EXPECT_EQ(readfile(f + "EbvTrait3.txt"), "");
}

TEST_F(PredictionRuns, SolutionsAreAppliedByHand)
{
    s.selection.externsolonoff = true;
    s.selection.recombselonoff = true;
    writefile(f + "SnpSolutions.txt", " 1 0.5\n 2 -2\n");
    writefile(f + "SnpSolutionsRecomb.txt", " 1 1\n 2 0\n");
    const std::string scaled = " 9 1.0 0.25\n 10 0.0 -1.5\n 11 2 0\n";
    writefile(f + "TmpChip2GenotypeTestScaled.txt", scaled);
    writefile(f + "TmpChip2GenotypeTestScaledRecomb.txt", scaled);
    computereadebv(s, 1, 1);
    EXPECT_EQ(estimates(1), (std::vector<double>{0, 3, 1}));
    EXPECT_EQ(s.selection.estimatedbvrecomb(3), 2);
    EXPECT_EQ(readlines(f + "Ebv.txt")[1], "                  10        3.0000000000");
    EXPECT_EQ(readlines(f + "EbvRecomb.txt")[2], "                  11        2.0000000000");

    // Fixed training data: solutions of the trait from cycle 2 on, estimates from a run in cycle 1.
    s.selection.externsolonoff = false;
    s.selection.recombselonoff = false;
    s.selection.fixtraindataonoff = true;
    s.traits.ntraits = 2;
    std::filesystem::copy("Selection/SelectionFolder1", "Selection/SelectionFolder2");
    writefile("Selection/SelectionFolder2/SnpSolutionsTrait2.txt", " 1 1\n 2 1\n");
    computereadebv(s, 2, 2);
    EXPECT_EQ(estimates(2), (std::vector<double>{1.25, -1.5, 2}));
    EXPECT_EQ(runbody([&] { computereadebv(s, 1, 2); }).code(), -2); // no EbvTrait2.txt
}
