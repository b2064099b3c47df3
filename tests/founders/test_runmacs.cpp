#include "founders/presets.h"
#include "founders/runmacs.h"
#include "openstate.h"
#include "testsupport.h"

namespace
{
class founderpresets : public infolder
{
};
class macsstage : public infolder
{
};

openstate internalstate(const std::string &pophistory)
{
    openstate s;
    foundersettings &f = s.founders;
    f.pophistorymacs = pophistory;
    f.internaleffecpopsize = f.internalchrlenbasesmacs = f.internalmutationratemacs = true;
    f.internalmorgansmacs = f.internalmorganssolvanto = true;
    return s;
}
} // namespace

// All numbers worked out by hand: t = 4 Ne k / length, r = 4 Ne Morgans / length; and the sum of
// the times and sizes of a history, so that no digit can change unnoticed.
TEST_F(founderpresets, settleallvalues)
{
    struct expected {
        const char *name;
        const char *text; // its beginning
        double sum;
    };
    const expected table[] = {
        {"internaltest", "100000000 -t   0.10E-04 -r   0.40E-05 ", 0},
        {"InternalCattle",
         "100000000 -t   0.10E-04 -r   0.40E-05 -eN    0.06    2.0 -eN    0.13    3.0 ", 12338.44},
        {"internalrabbit of ours", "159000000 -t   0.44E-05 -r   0.34E-05 -eN 0.05    1.25 ",
         1202.12},
        {"internalmaize", "200000000 -t   0.50E-05 -r   0.40E-05 -eN 0.03   1 ", 407.78},
        {"internalmaizelandrace", "200000000 -t   0.50E-05 -r   0.40E-05 -eN  0.03    1 ",
         10417.78},
        {"internalwheat", "800000000 -t   0.40E-06 -r   0.36E-06 -eN   0.03   1 ", 5498.78},
    };
    for (const expected &e : table) {
        SCOPED_TRACE(e.name);
        openstate s = internalstate(e.name);
        std::string text;
        EXPECT_EQ(runbody([&] { initmacscases(s, text); }).output, "");
        EXPECT_TRUE(text.starts_with(e.text)) << text;
        const std::vector<std::string> words = wordsof(text);
        double sum = 0;
        for (std::size_t i = 6; i < words.size(); ++i)
            if (words[i] != "-eN") sum += std::stod(words[i]);
        EXPECT_NEAR(sum, e.sum, 1e-6);
    }
    for (const std::string name : {"pig", "chicken"}) { // no history yet
        openstate s = internalstate("Internal" + name);
        std::string text;
        const outcome result = runbody([&] { initmacscases(s, text); });
        EXPECT_EQ(result.output, "TODO: need to find Ne values in the past for " + name + "!!!\n");
        EXPECT_EQ(result.code(), -1);
    }
}

TEST_F(founderpresets, keepgivenvalues)
{
    openstate s = internalstate("internalwheat");
    s.founders.internalchrlenbasesmacs = false;
    s.founders.chrlengthbasesmacs = 100000000;
    std::string text;
    initmacscases(s, text);
    EXPECT_TRUE(text.starts_with("100000000 -t   0.32E-05 -r   0.29E-05 -eN")) << text;
}

TEST_F(founderpresets, readuserfile)
{
    std::string options;
    for (int i = 1; i <= 40; ++i) options += " -eN  0." + std::to_string(100 + i) + " 2";
    writefile("History.txt", options + "   \r\n-eN 9 9\n");
    openstate s = internalstate("History.txt");
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
    EXPECT_EQ(runbody([&] { initmacscases(s, text); }).code(), -2);
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
