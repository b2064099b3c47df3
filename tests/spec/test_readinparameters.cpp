#include "spec/readinparameters.h"

#include "specsupport.h"
#include "testsupport.h"

#include <random>

namespace
{
struct reading {
    outcome result;
    runsettings s;
};

reading readspec(const spectext &spec)
{
    reading r;
    spec.write();
    r.result = runbody([&] { r.s = readinparameters(); });
    return r;
}

// The same for a specification that must pass.
reading readpassing(const spectext &spec)
{
    reading r = readspec(spec);
    EXPECT_EQ(r.result.code(), 0) << r.result.output;
    return r;
}

spectext changed(const std::string &changes)
{
    return goodspec().change(changes);
}

// Two traits, with matrix rows that hold commas, tabs, comments between them and spare numbers.
spectext twotraits(const std::string &changes = "")
{
    return changed("NumberOfTraits,2; IndexWeights,0.5,-0.5; TraitHeritability,0.5,0.3; "
                   "TraitGeneticVariance,1,2; -1.0; -1.0; " +
                   changes)
        .replace("GeneticCorrelationMatrix", "GeneticCorrelationMatrix\n1.0 9 9\n#row 2\n0.2,1.0")
        .replace("ResidualCorrelationMatrix", "ResidualCorrelationMatrix\n1.0\n -0.3\t1.5d0 7");
}

class readinparametersspec : public infolder
{
};
} // namespace

TEST_F(readinparametersspec, recordsandkeyforms)
{
    // Blanks and tabs inside keys and numbers, any case, comments, empty records, Windows line
    // ends, no last line end, values too many, a key given twice.
    std::string text =
        changed("NumberOfChromosomes,1")
            .replace("NumberOfHaplotypes", "  Number Of\tHAPLOtypes , 1 000,7")
            .insertbefore("NumberOfTraits", "  # NumberOfTraits ,2\n\n \t\nnumberofchromosomes,3")
            .text();
    text.pop_back();
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
        text.insert(at, "\r");
    runsettings s;
    writefile("SolvantoSpec.txt", text);
    const outcome windows = runbody([&] { s = readinparameters(); });
    ASSERT_EQ(windows.code(), 0) << windows.output;
    EXPECT_EQ(s.founders.nhaps, 1000);
    EXPECT_EQ(s.founders.nchrom, 3);
    EXPECT_EQ(s.founders.genomecompression, 100);

    // Only the first 300 characters of a value count.
    reading r = readspec(changed("PedigreeStatus," + std::string(310, 'p')));
    EXPECT_EQ(r.s.pop.pedigreefile, std::string(300, 'p'));

    // A wrong box number is reported; the next box is compared with the next count.
    r = readpassing(goodspec()
                        .replace("Box 2 - Animal breeding", "BOX 7 - Animal breeding")
                        .replace("Box 11 - Optimal contributions", "box12"));
    EXPECT_EQ(r.result.output,
              "\nERROR - Order of boxes is wrong! Expecting box: 2 and got box: 7\n"
              "Modelling population history using InternalTest\n"
              "ERROR - Order of boxes is wrong! Expecting box: 11 and got box: 12\n");

    // Matrices: the diagonal holds what the file gives. A key between rows is handled, a short row
    // goes on in the next record, and behind the last one a record is unexpected again.
    r = readpassing(twotraits().replace("0.2", "IndexWeights,0.25,0.75\n0.4\n2"));
    EXPECT_EQ(r.s.traits.coraspec(1, 2), 0.4);
    EXPECT_EQ(r.s.traits.coraspec(2, 1), 0.4);
    EXPECT_EQ(r.s.traits.coraspec(2, 2), 2);
    EXPECT_EQ(r.s.traits.core(1, 2), -0.3);
    EXPECT_EQ(r.s.traits.core(2, 2), 1.5);
    EXPECT_EQ(r.s.traits.indexwt(2), 0.75);
}

TEST_F(readinparametersspec, skippedandtoleratedvalues)
{
    // Skipped keys don't look at their values.
    reading r = readpassing(
        changed("NumberOfMaleParentsInEachGeneration,Constant,bad; "
                "NumberOfGenerationsIncludingDoubledHaploids,x; StartStopGeneration,2; "
                "MergeFiles,bad$name; ShapeAndScaleOfGammaDist,1; NumberOfEditedIndividuals,5; "
                "NumberOfGeneEditsPerIndividual,5"));
    EXPECT_EQ(r.s.pop.ngendh, 0);

    // Chips off fix one chip with one locus, whatever its details say, and a later On changes
    // nothing of that.
    r = readpassing(changed("UseSnpChipOnOff,Off; NumberOfSnpChips,3; MinMaxAlleleFreqForSnp,x,y")
                        .insertbefore("Box 7 - QTN", "UseSnpChipOnOff,On"));
    EXPECT_EQ(r.s.chips.nchip, 1);
    EXPECT_EQ(r.s.chips.maxsnpfreq, 1);
    EXPECT_EQ(r.s.chips.nsnpperchipperchrom(1), 1);
    EXPECT_TRUE(r.s.chips.usesnpchiponoff);

    // Tolerated bad values leave the variable; the list of chips is read as far as it goes.
    r = readpassing(changed("NumberOfSnpChips,4; nSnpPerChipPerChromosme,100,,50,x,7; "
                            "DominanceDegreeMeanAndVariance,x,0.3; "
                            "PercentageDifferenceInbreeding,; KeepChromosomesFolderYesNo,; "
                            "WriteFullSequenceOutOnOff,Perhaps")
                        .insertbefore("Box 2 - Animal breeding", "NumberGenerationsBurnIn,many"));
    EXPECT_EQ(r.s.pop.ngen, 3);
    EXPECT_EQ(r.s.chips.nsnpperchipperchrom(1), 100);
    EXPECT_EQ(r.s.chips.nsnpperchipperchrom(2), 50);
    EXPECT_EQ(r.s.chips.nsnpperchipperchrom(3), 0);
    EXPECT_EQ(r.s.qtn.domdegmean, 0);
    EXPECT_EQ(r.s.qtn.domdegvar, 0.3);
    EXPECT_FALSE(r.s.run.fullseqoutonoff);

    // A length left to a history that stands behind it: founders know it, a run that goes on
    // doesn't.
    spectext behind = changed("ChromosomeLengthMorgansSolvanto,Internal")
                          .movebefore("ChromosomeLengthMorgansSolvanto", "PopulationHistoryMaCS");
    r = readpassing(behind);
    EXPECT_EQ(r.s.founders.morgans, 1);
    r = readpassing(behind.change("GenerationFlexibilityOnOff,On; StartStopGeneration,2,3"));
    EXPECT_EQ(r.s.founders.morgans, 0);
    EXPECT_TRUE(r.result.output.find("ChromosomeLengthMorgansSolvanto not set properly") !=
                std::string::npos);
}

// Broken files end with a stop or are read; never with anything else (sanitizers and the bounds
// checks watch).
TEST_F(readinparametersspec, brokenfilesneverdomoreharmthanastop)
{
    const auto codeof = [](const std::string &text) {
        writefile("SolvantoSpec.txt", text);
        runsettings s;
        return runbody([&] { s = readinparameters(); }).code();
    };
    runsettings none;
    EXPECT_EQ(runbody([&] { none = readinparameters(); }).code(), -2);
    const std::string good = goodspec().text();
    for (std::size_t n = 0; n < good.size(); n += 37) EXPECT_NE(codeof(good.substr(0, n)), -2);
    std::mt19937 random(7);
    const auto draw = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    const std::vector<std::string> values =
        wordsof(",-1 ,0 ,999999999 ,-99999999999999999999 , ,, ,On ,Off ,Internal ,Constant,3 "
                ",List,1,2 ,2");
    int64 nread = 0;
    for (int round = 0; round < 240; ++round) {
        spectext spec = goodspec(); // with lines in another order, or with other values
        for (int k = 0; k < 3; ++k) {
            std::string &line = spec.lines[draw(spec.lines.size())];
            if (round % 3 == 1) std::swap(line, spec.lines[draw(spec.lines.size())]);
            if (round % 3 == 2) line = line.substr(0, line.find(',')) + values[draw(values.size())];
        }
        std::string text = spec.text();
        for (int k = 0; round % 3 == 0 && k < 20; ++k) // or random bytes written over it
            text[draw(text.size())] = static_cast<char>(draw(256));
        const int64 code = codeof(text);
        EXPECT_NE(code, -2) << text;
        if (code == 0) ++nread;
    }
    EXPECT_GT(nread, 20);
    EXPECT_LT(nread, 220);
}
