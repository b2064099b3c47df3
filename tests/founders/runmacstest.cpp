#include "founders/runmacs.h"
#include "founders/extractsegsites.h"
#include "founders/presets.h"
#include "testsupport.h"

namespace
{
class founderpresets : public infolder
{
};
class macsstage : public infolder
{
};

state internalstate(const std::string &pophistory)
{
    state s;
    foundersettings &f = s.founders;
    f.pophistorymacs = pophistory;
    f.internaleffecpopsize = f.internalchrlenbasesmacs = f.internalmutationratemacs = true;
    f.internalmorgansmacs = f.internalmorganssolvanto = true;
    return s;
}

// Executables that leave traces: macs repeats its arguments, with the seed and the number of
// sites of its chromosome; the formatter takes the number of sites from there.
void writefakeprograms(const std::string &seed, const std::string &nsites)
{
    writefile("macs", "#!/bin/sh\nprintf 'COMMAND:\\t%s\\nSEED:\\t%s\\n" + nsites + "\\n' \"$*\" " +
                          seed + "\necho trouble >&2\n");
    writefile("Vintrecaskelle", "#!/bin/sh\necho \"$1\" > argument.txt\n"
                                "sed -n 3p output.txt > SegSites.txt\n");
    runcommand("chmod +x macs Vintrecaskelle; mkdir -p Chromosomes/Chromosome1 "
               "Chromosomes/Chromosome2");
}
} // namespace

// All numbers worked out by hand: t = 4 Ne k / length, r = 4 Ne Morgans / length.
TEST_F(founderpresets, settleallvalues)
{
    struct expected {
        const char *name;
        int64 ne, length;
        double morgans, k;
        const char *text; // up to the options
        std::size_t nchanges;
        const char *lastchange;
    };
    const expected table[] = {
        {"internaltest", 100, 100000000, 1.0, 2.5, "100000000 -t   0.10E-04 -r   0.40E-05 ", 0, ""},
        {"InternalCattle", 100, 100000000, 1.0, 2.5,
         "100000000 -t   0.10E-04 -r   0.40E-05 -eN    0.06    2.0 -eN    0.13    3.0 ", 31,
         " -eN 2000.00  800.0 -eN 2500.00 1000.0"},
        {"internalrabbit of ours", 100, 159000000, 1.3600000143051147, 1.74,
         "159000000 -t   0.44E-05 -r   0.34E-05 -eN 0.05    1.25 ", 19, " -eN 5.00 1000.00"},
        {"internalmaize", 100, 200000000, 2.0, 2.5,
         "200000000 -t   0.50E-05 -r   0.40E-05 -eN 0.03   1 ", 15, " -eN 4.00  80 -eN 5.00 100"},
        {"internalmaizelandrace", 100, 200000000, 2.0, 2.5,
         "200000000 -t   0.50E-05 -r   0.40E-05 -eN  0.03    1 ", 28, " -eN 30.00 2000"},
        {"internalwheat", 50, 800000000, 1.4299999475479126, 1.6,
         "800000000 -t   0.40E-06 -r   0.36E-06 -eN   0.03   1 ", 26, " -eN 500.00 640"},
    };
    for (const expected &e : table) {
        SCOPED_TRACE(e.name);
        state s = internalstate(e.name);
        std::string text;
        EXPECT_EQ(runbody([&] { initmacscases(s, text); }).output, "");
        EXPECT_EQ(s.founders.effecpopsize, e.ne);
        EXPECT_EQ(s.founders.chrlengthbasesmacs, e.length);
        EXPECT_EQ(s.founders.morgans, e.morgans);
        EXPECT_EQ(s.founders.morgansmacs, e.morgans);
        // Two roundings to single precision at most away from the exact quotient.
        const double exact = e.k / static_cast<double>(e.length);
        EXPECT_NEAR(s.founders.mutationratemacs, exact, exact * 1.8e-7);
        EXPECT_EQ(s.founders.mutationratemacs,
                  static_cast<double>(static_cast<float>(s.founders.mutationratemacs)));
        EXPECT_TRUE(text.starts_with(e.text)) << text;
        EXPECT_TRUE(text.ends_with(e.lastchange)) << text;
        std::size_t nchanges = 0;
        double lasttime = 0;
        const std::vector<std::string> words = wordsof(text);
        for (std::size_t i = 5; i + 2 < words.size(); i += 3, ++nchanges) {
            EXPECT_EQ(words[i], "-eN");
            EXPECT_GT(std::stod(words[i + 1]), lasttime); // times rise
            lasttime = std::stod(words[i + 1]);
        }
        EXPECT_EQ(nchanges, e.nchanges);
    }
}

TEST_F(founderpresets, keepgivenvalues)
{
    state s = internalstate("internalwheat");
    s.founders.internalchrlenbasesmacs = false;
    s.founders.chrlengthbasesmacs = 100000000;
    s.founders.internalmorganssolvanto = false;
    s.founders.morgans = 0.7;
    std::string text;
    initmacscases(s, text);
    EXPECT_EQ(s.founders.chrlengthbasesmacs, 100000000);
    EXPECT_EQ(s.founders.morgans, 0.7);
    // From the given length: 1.6 in single precision times 1e-8 in single precision.
    EXPECT_EQ(s.founders.mutationratemacs, static_cast<double>(1.6f * 1e-8f));
    EXPECT_TRUE(text.starts_with("100000000 -t   0.32E-05 -r   0.29E-05 -eN")) << text;
}

TEST_F(founderpresets, refusespecieswithouthistory)
{
    for (const std::string name : {"pig", "chicken"}) {
        state s = internalstate("Internal" + name);
        std::string text;
        const outcome result = runbody([&] { initmacscases(s, text); });
        EXPECT_EQ(result.output, "TODO: need to find Ne values in the past for " + name + "!!!\n");
        EXPECT_EQ(result.code(), -1);
        EXPECT_EQ(result.stop.status, 1);
        EXPECT_EQ(s.founders.effecpopsize, name == "pig" ? 100 : 70); // settled before the stop
    }
}

TEST_F(founderpresets, readuserfile)
{
    std::string options;
    for (int i = 1; i <= 40; ++i) options += " -eN  0." + std::to_string(100 + i) + " 2";
    writefile("History.txt", options + "   \r\n-eN 9 9\n");
    state s = internalstate("History.txt");
    s.founders.internalchrlenbasesmacs = false;
    s.founders.chrlengthbasesmacs = 1000000;
    std::string text;
    const outcome result = runbody([&] { initmacscases(s, text); });
    EXPECT_EQ(result.output,
              "WARNING: User specified file with -eN options for MaCs are being read in.\n"
              "Please ensure that the following specfile parameters are set to External:\n"
              "MutationRateMaCS, ChromosomeLengthBasesMaCS, EffectivePopulationSizeBaseMaCs\n"
              "ChromosomeLengthMorgansMaCS, ChromosomeLengthMorgansSolvanto\n \n");
    EXPECT_EQ(text, "1000000 -t   0.00E+00 -r   0.00E+00 " + options);
    EXPECT_EQ(s.founders.effecpopsize, 0);

    writefile("History.txt", "-eN 1 2; rm -r SimulatedData\n");
    const outcome refused = runbody([&] { initmacscases(s, text); });
    EXPECT_EQ(refused.code(), -2);
    EXPECT_NE(refused.stop.reason.find("History.txt: line 1"), std::string::npos);
    s.founders.pophistorymacs = "absent.txt";
    EXPECT_EQ(runbody([&] { initmacscases(s, text); }).code(), -2);
}

TEST_F(macsstage, buildthecommand)
{
    std::string text;
    calculatemacsparams(text, 100000000, 100, 2.5e-8, 1.0, "");
    EXPECT_EQ(macscommand("cd Chromosomes/Chromosome1", 100, text, false),
              "cd Chromosomes/Chromosome1 && ./macs 100  100000000 -t   0.10E-04 -r   0.40E-05  "
              "1>output.txt 2>debug.txt");
    calculatemacsparams(text, 1000, 25, 2.54e-3, 0.0123, "-eN 1 2  ");
    EXPECT_EQ(text, "1000 -t   0.25E+00 -r   0.12E-02 -eN 1 2");
    EXPECT_EQ(macscommand("cd X", 7, text, true),
              "cd X && ./macs 7  1000 -t   0.25E+00 -r   0.12E-02 -eN 1 2 -R Hotspots.txt "
              "1>output.txt 2>debug.txt");
    // 100 x rate: 0.18500000006 in single precision, below 0.185 in double precision; and
    // 0.10499999626, where double precision gives 0.10500000000000001.
    calculatemacsparams(text, 1000, 25, 0, 1.85, "");
    EXPECT_EQ(text, "1000 -t   0.00E+00 -r   0.19E+00 ");
    calculatemacsparams(text, 1000, 25, 0, 1.05, "");
    EXPECT_EQ(text, "1000 -t   0.00E+00 -r   0.10E+00 ");
}

TEST_F(macsstage, runbothprogramsforeachchromosome)
{
    writefakeprograms("$(basename $PWD | tr -d Chromse)", "60");
    state s = internalstate("internaltest");
    s.founders.nchrom = 2;
    s.founders.nhaps = 14;
    testing::internal::CaptureStderr();
    const outcome result = runbody([&] { runmacs(s); });
    EXPECT_EQ(testing::internal::GetCapturedStderr(), ""); // the seeds differ
    EXPECT_EQ(result.code(), 0);
    EXPECT_EQ(result.output, " Performing MaCS for each chromosome in series\n"
                             " \n Chromosome:  1\n Running Vintrecaskelle\n"
                             " \n Chromosome:  2\n Running Vintrecaskelle\n"
                             " MaCS finished\n     \n");
    const std::string second = "Chromosomes/Chromosome2/";
    EXPECT_EQ(readlines(second + "output.txt")[0],
              "COMMAND:\t14 100000000 -t 0.10E-04 -r 0.40E-05");
    EXPECT_EQ(readfile(second + "debug.txt"), "trouble\n");
    EXPECT_EQ(readfile(second + "argument.txt"), "14\n");
    EXPECT_EQ(readfile(second + "FinishedMacs.txt"), "60\n");
    EXPECT_EQ(readfile(second + "MaCSParametersUsed.txt"),
              " 14  100000000 -t   0.10E-04 -r   0.40E-05 \n");
    EXPECT_NE(runcommand("test -e " + second + "Hotspots.txt").status, 0);
}

TEST_F(macsstage, warnofequalseeds)
{
    const auto warning = [](const std::string &seed, const std::string &nsites) {
        writefakeprograms(seed, nsites);
        state s = internalstate("internaltest");
        s.founders.nchrom = 2;
        s.founders.nhaps = 14;
        testing::internal::CaptureStderr();
        runbody([&] { runmacs(s); });
        return testing::internal::GetCapturedStderr();
    };
    const std::string text = warning("5", "60");
    EXPECT_TRUE(text.starts_with("WARNING: chromosomes 1 and 2 began with the same seed")) << text;
    EXPECT_EQ(warning("5", "0"), "");
}

TEST_F(macsstage, goonafterfailures)
{
    runcommand("mkdir -p Chromosomes/Chromosome1");
    state s = internalstate("internaltest");
    s.founders.nchrom = 1;
    const outcome result = runbody([&] { runmacs(s); });
    EXPECT_EQ(result.code(), 0);
    EXPECT_EQ(result.output, "failure : Solvanto : RunMacs A\nfailure : Solvanto : RunMacs B\n"
                             " Performing MaCS for each chromosome in series\n"
                             " \n Chromosome:  1\nfailure : Solvanto : RunMacsRewrite A\n"
                             " Running Vintrecaskelle\nfailure : Solvanto : RunMacsRewrite B\n"
                             " MaCS finished\n     \n");
}

TEST_F(macsstage, writehotspots)
{
    const std::string regions = "RecombinationSpecifications/Chromosome3.txt";
    runcommand("mkdir -p Chromosomes/Chromosome3");
    const auto attempt = [&](const std::string &content) {
        writefile(regions, content);
        return runbody([] { readrecombspecformacs(3); });
    };
    const std::string hotspots = "Chromosomes/Chromosome3/Hotspots.txt";
    outcome result = attempt("0.0 0.25 0.5\n0.25,0.75 0.25\n0.75\t1.0 0.25 remark\n");
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(readfile(hotspots), "  0.00000000  0.25000000  2.00000000\n"
                                  "  0.25000000  0.75000000  0.50000000\n"
                                  "  0.75000000  1.00000000  1.00000000\n");
    const std::string warning = "WARNING: proportion of recombinations over the defined regions "
                                "must sum to 1.0 - rescale\n\n";
    result = attempt("0.0 0.5 0.3\n0.5 1.0 0.1\n");
    EXPECT_EQ(result.output, warning);
    EXPECT_EQ(readfile(hotspots), "  0.00000000  0.50000000  1.50000000\n"
                                  "  0.50000000  1.00000000  0.50000000\n");
    // Ten times 0.1 misses 1 by rounding alone: the test is exact.
    std::string tenths;
    for (int i = 0; i < 10; ++i)
        tenths += std::to_string(i * 0.1) + " " + std::to_string(i * 0.1 + 0.1) + " 0.1\n";
    EXPECT_EQ(attempt(tenths).output, warning);
    EXPECT_EQ(attempt("0.9 0.1 1\n").code(), 0); // a single region in any order

    const std::string error = "ERROR: Variable recombination file should be sorted from start to "
                              "end of chromosome\n";
    for (const char *wrong : {"0.5 0.6 0.5\n0.5 0.7 0.5\n", "0.2 0.6 0.5\n0.3 0.6 0.5\n",
                              "0.4 0.4 1\n", "0.0 0.4 0.5\n0.6 0.6 0.5\n"}) {
        result = attempt(wrong);
        EXPECT_EQ(result.code(), 110031) << wrong;
        EXPECT_EQ(result.output, error);
    }
    EXPECT_EQ(attempt("0.0 0.4\n").code(), -2);
}

// The programs as they are built, from the specification's values to the packed founders: what
// one writes, the next must be able to read.
TEST_F(macsstage, runtherealprograms)
{
    runcommand("cp " + binfolder() + "/macs " + binfolder() + "/Vintrecaskelle . && mkdir -p " +
               "SimulatedData Chromosomes/Chromosome1 Chromosomes/Chromosome2");
    writefile("Seed.txt", "-123456\n");
    for (const char *chrom : {"1", "2"})
        writefile("RecombinationSpecifications/Chromosome" + std::string(chrom) + ".txt",
                  "0 0.5 0.9\n0.5 1 0.1\n");
    state s = internalstate("internalwheat");
    s.founders.internalchrlenbasesmacs = false;
    s.founders.chrlengthbasesmacs = 10000000;
    s.founders.nchrom = 2;
    s.founders.nhaps = 13;
    s.founders.recombhotspotsonoff = true;
    s.random.idum = -5;
    testing::internal::CaptureStderr();
    const outcome result = runbody([&] {
        runmacs(s);
        extractsegsites(s);
    });
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_EQ(result.code(), 0) << result.output << result.stop.reason;
    EXPECT_EQ(result.output.find("failure"), std::string::npos);
    std::string included[2];
    for (const int64 chrom : {1, 2}) {
        const std::string folderofchrom = chromfolder(chrom);
        const std::size_t nsites = std::stoul(readfile(folderofchrom + "SegSites.txt"));
        EXPECT_GT(nsites, 60u);
        EXPECT_EQ(readfile(folderofchrom + "FinishedMacs.txt"),
                  readfile(folderofchrom + "SegSites.txt"));
        EXPECT_EQ(readlines(folderofchrom + "PhysicalMapInput.txt").size(), nsites);
        const std::vector<std::string> lines =
            readlines(folderofchrom + "MacsHaplotypesIncluded.txt");
        ASSERT_EQ(lines.size(), 13u);
        EXPECT_EQ(lines[12].size(), 2 * (nsites / 60 * 60));
        included[chrom - 1] = lines[0].substr(0, 100);
    }
    EXPECT_NE(included[0], included[1]);
}
