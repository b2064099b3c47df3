// The effect stage: draws, covariances, files, classes.
#include "randomnumbers.h"
#include "sortstat.h"
#include "stops.h"
#include "testsupport.h"
#include "traits/covariances.h"
#include "traits/effectarrays.h"
#include "traits/effectdistributions.h"
#include "traits/qtnclasses.h"
#include "traits/qtninputs.h"
#include "traits/simulateqtneffects.h"

#include <cmath>
#include <cstdio>
#include <filesystem>

namespace
{
using effects = std::vector<std::vector<double>>; // [QTN][trait], from 0

std::string field(double x)
{
    char text[64];
    std::snprintf(text, sizeof text, "%20.10f", x);
    return text;
}

// The whole stage once more, written down plainly and drawing from a stream of its own.
struct slowstage {
    effects add[2], gamma[2], degree[2], gammadegree[2];
    std::vector<double> recombination;
    std::vector<bool> hasgamma;

    slowstage(const state &s, const qtninputs &in, int64 nqtn)
    {
        randomstream random = s.random;
        const std::size_t n = static_cast<std::size_t>(nqtn);
        const std::size_t nt = static_cast<std::size_t>(s.traits.ntraits);
        const bool withgamma = s.qtn.nqtngamma > 0;
        const int64 mutations = in.nmutations * s.founders.nchrom;
        std::vector<int64> order(n);
        randomorder(order.data(), nqtn, random);
        hasgamma.assign(n, false);
        for (int64 i = 0; i < s.qtn.nqtngamma + mutations; ++i)
            hasgamma[static_cast<std::size_t>(order[static_cast<std::size_t>(i)] - 1)] = true;

        // The factor of [[v1, c], [c, v2]] written out; one trait uses its first entry alone.
        const double v1 = s.traits.varaspec(1), v2 = nt > 1 ? s.traits.varaspec(2) : 1;
        const double c = nt > 1 ? s.traits.coraspec(2, 1) * std::sqrt(v2 * v1) : 0;
        const double l11 = std::sqrt(v1), l21 = c / l11, l22 = std::sqrt(v2 - l21 * l21);

        const float ng = static_cast<float>(s.qtn.nqtngamma + mutations);
        const double sn = std::sqrt(1.0f / static_cast<float>(nqtn)), sg = std::sqrt(1.0f / ng);
        const double sm = std::sqrt(s.qtn.varamutprop / static_cast<double>(mutations));
        for (int set = 0; set < 2; ++set) {
            const qtnset &d = set == 0 ? in.unrestricted : in.restricted;
            add[set] = gamma[set] = effects(n, std::vector<double>(nt));
            for (std::size_t q = 0; q < n; ++q) {
                const bool mutation = d.mutind[q] != 0;
                double g[2] = {}, r[2] = {};
                for (std::size_t j = 0; j < nt; ++j) {
                    g[j] = gasdev(random) * (mutation ? sm : sn);
                    if (withgamma)
                        r[j] = random_gamma(random, s.qtn.shapeparam, s.qtn.scaleparam, true) *
                               (mutation ? sm : sg);
                    if (gasdev(random) < 0) r[j] = -r[j];
                }
                add[set][q][0] = l11 * g[0];
                if (hasgamma[q]) gamma[set][q][0] = l11 * r[0];
                if (nt > 1) add[set][q][1] = l21 * g[0] + l22 * g[1];
                if (nt > 1 && hasgamma[q]) gamma[set][q][1] = l21 * r[0] + l22 * r[1];
            }
        }
        for (int set = 0; set < 2 && s.qtn.dominonoff; ++set) {
            degree[set] = gammadegree[set] = effects(n, std::vector<double>(nt));
            for (std::size_t q = 0; q < n; ++q)
                for (std::size_t j = 0; j < nt; ++j) {
                    const double sd = std::sqrt(s.qtn.domdegvar);
                    degree[set][q][j] = gasdev(random) * sd + s.qtn.domdegmean;
                    if (withgamma) gammadegree[set][q][j] = gasdev(random) * sd + s.qtn.domdegmean;
                }
        }
        const float nr = static_cast<float>(in.recombination.site.size());
        for (std::size_t q = 0; q < in.recombination.site.size(); ++q) {
            const double root = std::sqrt(nr);
            if (s.selection.recombdistrib == effectdistribution::normal) {
                recombination.push_back(gasdev(random) / root);
                continue;
            }
            const double e =
                random_gamma(random, s.selection.shaperecomb, s.selection.scalerecomb, true) / root;
            recombination.push_back(gasdev(random) < 0 ? -e : e);
        }
        after = random.idum;
    }
    int64 after = 0; // state of the stream behind the last draw
};

std::string blocks(const std::vector<const effects *> &values, std::size_t q)
{
    std::string text;
    for (const effects *e : values)
        for (const double x : (*e)[q]) text += field(x);
    return text;
}

effects product(const effects &degree, const effects &add)
{
    effects d = degree;
    for (std::size_t q = 0; q < d.size(); ++q)
        for (std::size_t j = 0; j < d[q].size(); ++j) d[q][j] = degree[q][j] * std::fabs(add[q][j]);
    return d;
}

effects substitution(const effects &add, const effects &dom, const qtninputs &in, const qtnset &set)
{
    effects a = add;
    for (std::size_t q = 0; q < a.size(); ++q) {
        const double p = in.frequency(set, 0, static_cast<int64>(q));
        for (std::size_t j = 0; j < a[q].size(); ++j)
            a[q][j] = add[q][j] + dom[q][j] * ((1 - p) - p);
    }
    return a;
}

// Values behind the three key columns of each line of an effect file.
std::vector<std::string> valuesof(const std::string &name)
{
    std::vector<std::string> lines = readlines("SimulatedData/" + name);
    lines.erase(lines.begin());
    for (std::string &line : lines) line.erase(0, 30);
    return lines;
}

std::string padded(const std::string &title)
{
    return title + std::string(1000 - title.size(), ' ');
}

class effectstage : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        std::filesystem::create_directories("SimulatedData");
    }
};
} // namespace

// Every value of every effect file, to the last digit, from a plain second form of the stage:
// order of draws, single-precision scales, correlation of traits, mutations, gamma positions.
TEST_F(effectstage, filesholdtheplaindraws)
{
    for (const bool full : {true, false}) {
        SCOPED_TRACE(full ? "two traits, gamma, dominance, mutations" : "one trait, normal only");
        qtninputs in;
        in.qtnperchrom = {5, 6};
        in.nmutations = full ? 1 : 0;
        state s = in.settings(full ? 2 : 1);
        s.qtn.nqtngamma = full ? 4 : 0;
        s.qtn.nqtnmodels = full ? 4 : 2;
        s.qtn.dominonoff = full;
        s.qtn.domdegmean = 0.3;
        s.qtn.domdegvar = 0.8;
        s.selection.recombselonoff = true;
        if (full) s.selection.recombdistrib = effectdistribution::gamma;
        in.write(s);
        const slowstage slow(s, in, 11);
        const outcome result = runbody([&] { simulateqtneffects(s); });
        ASSERT_EQ(result.code(), 0) << result.stop.reason;
        EXPECT_EQ(s.random.idum, slow.after);
        EXPECT_FALSE(s.qtn.addeffnormalunres.allocated() || s.qtn.nqtnonthischrom.allocated() ||
                     s.qtn.domdeggammarestr.allocated());

        for (int set = 0; set < 2; ++set) {
            const std::string name = set == 0 ? "Unrestricted" : "Restricted";
            const auto additive = valuesof(name + "QtnAdditEffects.txt");
            ASSERT_EQ(additive.size(), 11U);
            if (!full) {
                EXPECT_FALSE(
                    std::filesystem::exists("SimulatedData/" + name + "QtnDominEffects.txt"));
                for (std::size_t q = 0; q < 11; ++q)
                    EXPECT_EQ(additive[q], blocks({&slow.add[set]}, q));
                continue;
            }
            const effects dom = product(slow.degree[set], slow.add[set]);
            const effects domgamma = product(slow.gammadegree[set], slow.gamma[set]);
            const qtnset &d = set == 0 ? in.unrestricted : in.restricted;
            const effects alpha = substitution(slow.add[set], dom, in, d);
            const effects alphagamma = substitution(slow.gamma[set], domgamma, in, d);
            const auto dominance = valuesof(name + "QtnDominEffects.txt");
            const auto average = valuesof(name + "QtnAverAlleleSubstEffects.txt");
            ASSERT_EQ(dominance.size(), 11U);
            ASSERT_EQ(average.size(), 11U);
            for (std::size_t q = 0; q < 11; ++q) {
                SCOPED_TRACE(q);
                EXPECT_EQ(additive[q], blocks({&slow.add[set], &slow.gamma[set]}, q));
                EXPECT_EQ(dominance[q],
                          blocks({&dom, &domgamma, &slow.degree[set], &slow.gammadegree[set]}, q));
                EXPECT_EQ(average[q], blocks({&alpha, &alphagamma}, q));
                if (!slow.hasgamma[q]) {
                    EXPECT_EQ(additive[q].substr(40), field(0) + field(0));
                }
            }
        }
        const auto recombination =
            readlines("SimulatedData/RecombinationQtnInformationEffects.txt");
        ASSERT_EQ(recombination.size(), 6U);
        for (std::size_t q = 0; q < 5; ++q)
            EXPECT_EQ(recombination[q + 1].substr(90), field(slow.recombination[q]));
        std::filesystem::remove_all("SimulatedData");
        std::filesystem::create_directories("SimulatedData");
    }
}

// Titles to the column, keys and information lines, the odd word of one title, and the empty
// files that the stage leaves behind without a recombination trait.
TEST_F(effectstage, titlesandlayouts)
{
    qtninputs in;
    in.nmutations = 1;
    state s = in.settings(2);
    s.qtn.nqtngamma = 3;
    s.qtn.dominonoff = true;
    in.write(s);
    ASSERT_EQ(runbody([&] { simulateqtneffects(s); }).code(), 0);
    EXPECT_EQ(
        readlines("SimulatedData/UnrestrictedQtnAdditEffects.txt")[0],
        padded("GlobalQtnId  ChromId  QtnSeqIdOnChrom AddEffNormUnres1    AddEffNormUnres2    "
               "AddEffGammUnres1    AddEffGammUnres2"));
    EXPECT_EQ(readlines("SimulatedData/RestrictedQtnAverAlleleSubstEffects.txt")[0],
              padded("GlobalQtnId  ChromId  QtnSeqIdOnChrom  AlphaNormRestr1    AlphaNormRestr2    "
                     "AlphaGammRestr1    AlphaGammRestr2"));
    EXPECT_EQ(
        readlines("SimulatedData/RestrictedQtnDominEffects.txt")[0],
        padded("GlobalQtnId  ChromId  QtnSeqIdOnChrom DomEffNormRestr1    DomEffNormRestr2    "
               "DomEffGammRestr1    DomEffGammRestr2    DomDegNormRestr1    "
               "DomDegNormRestr2    DomDegGammRestr1    DomDegGammRestr2"));
    const auto information = readlines("SimulatedData/UnrestrictedQtnInformation.txt");
    EXPECT_EQ(information[0],
              "GlobalQtnId  ChromId QtnSeqIdOnChrom  MinorAlelleFreq  NonZeroAlleleFreq   "
              "QtnPhysicalPosOnChrom  MutIndicator   IndivMutIndicator");
    ASSERT_EQ(information.size(), 8U);
    // The fourth QTN is the first of chromosome 2, and there the mutation of individual 5.
    EXPECT_EQ(information[4], "         4         2         7" + field(in.unrestricted.maf[3]) +
                                  field(in.frequency(in.unrestricted, 0, 3)) +
                                  field(in.unrestricted.position[3]) + std::string(19, ' ') + "1" +
                                  std::string(19, ' ') + "5");
    EXPECT_EQ(readlines("SimulatedData/RestrictedQtnAdditEffects.txt")[4].substr(0, 30),
              "         4         2         7");
    EXPECT_EQ(readfile(chromfolder(2) + "RecombinationQtnInformation.txt"), "");
    EXPECT_EQ(readfile(chromfolder(1) + "RecombinationQtnAlleleFreqGeneration1.txt"), "");

    // Without gamma the blocks go, from titles and lines; thirty traits cut the title alone.
    qtninputs many;
    state t = many.settings(30);
    t.qtn.nqtngamma = 0;
    t.qtn.nqtnmodels = 2;
    t.qtn.dominonoff = true;
    many.write(t);
    ASSERT_EQ(runbody([&] { simulateqtneffects(t); }).code(), 0);
    const auto dominance = readlines("SimulatedData/RestrictedQtnDominEffects.txt");
    EXPECT_EQ(dominance[0].size(), 1000U);
    EXPECT_EQ(dominance[0].substr(0, 75),
              "GobalQtnId  ChromId  QtnSeqIdOnChrom DomEffNormRestr1    DomEffNormRestr2  ");
    EXPECT_NE(dominance[0].find("DomEffNormRestr30    DomDegNormRestr1 "), std::string::npos);
    EXPECT_EQ(dominance[1].size(), 30U + 2 * 30 * 20);
    EXPECT_EQ(readlines("SimulatedData/UnrestrictedQtnDominEffects.txt")[0].substr(0, 12),
              "GlobalQtnId ");
}

// Covariances [[4, 2], [2, 10]]: factor 2, 1, 3 by hand. The diagonal of the correlations takes
// part: 1.25 x 8 = 10.
TEST_F(effectstage, choleskyfactors)
{
    qtninputs in;
    state s = in.settings(2);
    s.traits.varaspec(1) = 4;
    s.traits.varaspec(2) = 8;
    s.traits.coraspec(2, 2) = 1.25;
    s.traits.coraspec(1, 2) = s.traits.coraspec(2, 1) = 2 / std::sqrt(32.0);
    workoutgeneticcovariances(s);
    EXPECT_DOUBLE_EQ(s.traits.covaspec(2, 2), 10);
    EXPECT_DOUBLE_EQ(s.traits.cholcovaspec(1, 1), 2);
    EXPECT_DOUBLE_EQ(s.traits.cholcovaspec(2, 1), 1);
    EXPECT_DOUBLE_EQ(s.traits.cholcovaspec(2, 2), 3);
    EXPECT_EQ(s.traits.cholcovaspec(1, 2), s.traits.covaspec(1, 2));

    s.qtn.nqtnmodels = 2;
    s.values.vare.allocate(2, 2, 1.0);
    s.values.vare(2, 1) = s.values.vare(2, 2) = 6.25;
    s.traits.core(1, 2) = s.traits.core(2, 1) = 0.6;
    workoutresidualcovariances(s);
    EXPECT_EQ(readfile("SimulatedData/TraitVarianceComponentsResidualCholQtnModel1.txt"),
              " 1.0\n 0.6 0.8\n");
    EXPECT_EQ(readfile("SimulatedData/TraitVarianceComponentsResidualCholQtnModel2.txt"),
              " 2.5\n 1.5 2.0\n");
    EXPECT_FALSE(
        std::filesystem::exists("SimulatedData/TraitVarianceComponentsResidualCholQtnModel3.txt"));

    s.traits.coraspec.fill(0);
    outcome stop = runbody([&] { workoutgeneticcovariances(s); });
    EXPECT_EQ(stop.code(), 11000);
    EXPECT_EQ(stop.output, "Cholesky Decomposition failed: Genetic correlation matrix specified is "
                           "not positive definite. Please check specfile.\n");
    s.values.vare(2, 2) = 0;
    stop = runbody([&] { workoutresidualcovariances(s); });
    EXPECT_EQ(stop.code(), 11000);
    EXPECT_EQ(stop.output, "Cholesky Decomposition failed: Residual correlation matrix specified "
                           "is not positive definite. Please check specfile.\n");
}

TEST_F(effectstage, gammashapesthatstop)
{
    qtninputs in;
    for (const double shape : {0.0, 1.0}) {
        state s = in.settings();
        s.qtn.shapeparam = shape;
        in.write(s);
        const outcome stop = runbody([&] { simulateqtneffects(s); });
        EXPECT_EQ(stop.code(), 120001);
        EXPECT_EQ(stop.output, shape == 0 ? "SHAPE PARAMETER VALUE MUST BE POSITIVE\n"
                                          : "IMPERMISSIBLE SHAPE PARAMETER VALUE\n");
    }
}

// 100 QTN of equal variance under model 1: the 1 percent class is held by one QTN, since its limit
// is the single-precision number just below 0.01, while those of 0.05 and 0.1 lie just above what
// 5 and 10 QTN hold (25 and 50 of them add up to a little more than their share in double
// precision). Model 2 has one QTN with 0.6 of the variance; model 3 no variance at all; model 4
// has 32 equal QTN, whose shares are exact: a quarter is not yet more than a quarter.
TEST_F(effectstage, classesofqtn)
{
    qtninputs in;
    state s = in.settings();
    s.qtn.ntotqtn = s.qtn.ntotqtngamma = 100;
    arrayscope arrays;
    makeeffectarrays(s, arrays);
    s.qtn.allqtnfrequnres.fill(0.5);
    s.qtn.allqtnfreqrestr.fill(0.5);
    s.qtn.addeffnormalunres.fill(0.25);
    s.qtn.addeffnormalrestr.fill(1.0);
    s.qtn.addeffnormalrestr(17, 1) = -std::sqrt(99 * 1.5);
    for (int64 q = 1; q <= 32; ++q) s.qtn.addeffgammarestr(3 * q, 1) = 0.5;
    const outcome result = runbody([&] { classifyqtns(s); });
    const auto lines = readlines("SimulatedData/ProportionOfVariationExplainedByNumberOfQtn.txt");
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_EQ(lines[0].size(), 138U);
    EXPECT_EQ(lines[1], "                   1                1.00                   1           "
                        "        1                   0                   1");
    const std::vector<std::vector<double>> wanted = {{1, 1, 1, 1, 0, 1},
                                                     {1, 5, 6, 1, 0, 2},
                                                     {1, 10, 11, 1, 0, 4},
                                                     {1, 25, 25, 1, 0, 9},
                                                     {1, 50, 50, 1, 0, 17}};
    for (std::size_t a = 0; a < 5; ++a) EXPECT_EQ(numbersof(lines[a + 1]), wanted[a]);
    EXPECT_EQ(result.output.substr(0, 11), "  Trait  1\n");
    EXPECT_NE(
        result.output.find("\n 50 Percent          50             1                   0       "
                           "             17\n      \n"),
        std::string::npos);
}
