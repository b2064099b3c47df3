// The burn-in values stage on the files of a small simulation, against plain loops over the files
// that it wrote.
#include "randomnumbers.h"
#include "testsupport.h"
#include "traits/qtninputs.h"
#include "traits/simulateqtneffects.h"
#include "values/burninvalues.h"

#include <cmath>
#include <cstdio>
#include <filesystem>

namespace
{
using numbers = std::vector<double>;

std::string field(double x)
{
    char text[64];
    std::snprintf(text, sizeof text, "%20.10f", x);
    return text;
}

std::string intfield(int64 x, int width)
{
    char text[64];
    std::snprintf(text, sizeof text, "%*ld", width, x);
    return text;
}

// Numbers of all lines behind the title.
std::vector<numbers> tableof(const std::string &name)
{
    std::vector<numbers> rows;
    for (const std::string &line : readlines("SimulatedData/" + name))
        rows.push_back(numbersof(line));
    rows.erase(rows.begin());
    return rows;
}

double variance(const numbers &x)
{
    double mean = 0, sum = 0;
    for (const double v : x) mean += v / static_cast<double>(x.size());
    for (const double v : x) sum += (v - mean) * (v - mean);
    return sum / static_cast<double>(x.size() - 1);
}

class burninstage : public infolder
{
  protected:
    qtninputs in;

    // A state for the inputs, its files written, effects drawn.
    state prepare(bool full)
    {
        std::filesystem::create_directories("SimulatedData");
        in.qtnperchrom = {20, 18};
        state s = in.settings(full ? 2 : 1);
        s.qtn.nqtngamma = full ? 21 : 0;
        s.qtn.nqtnmodels = full ? 4 : 2;
        s.qtn.dominonoff = full;
        s.qtn.domdegmean = 0.3;
        s.qtn.domdegvar = 0.8;
        s.selection.recombselonoff = !full;
        in.write(s);
        EXPECT_EQ(runbody([&] { simulateqtneffects(s); }).code(), 0);
        return s;
    }

    const qtnset &setof(int64 p) const { return p % 2 == 1 ? in.unrestricted : in.restricted; }

    // Column of the values of model p, trait j in a line of an effect file.
    static std::size_t column(const state &s, int64 p, int64 j)
    {
        return static_cast<std::size_t>(3 + (p > 2 ? s.traits.ntraits : 0) + j - 1);
    }

    void checkbreedingvalues(const state &s);
    void checkphenotypes(const state &s, randomstream random);
    void checkvariances(const state &s);
    void checkcomponents(const state &s, const std::string &output);
};

// TBV, to the last digit: file effect x (genotype - 2 x file frequency), QTN in ascending order,
// rounded once. TDV by the three values of the textbook.
void burninstage::checkbreedingvalues(const state &s)
{
    const auto lines = readlines("SimulatedData/PedigreeTbvTdvTpv.txt");
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(1 + in.nindiv()));
    for (int64 j = 1; j <= s.traits.ntraits; ++j)
        for (int64 p = 1; p <= s.qtn.nqtnmodels; ++p) {
            const std::string set = p % 2 == 1 ? "Unrestricted" : "Restricted";
            const auto information = tableof(set + "QtnInformation.txt");
            const auto alpha = tableof(
                set + (s.qtn.dominonoff ? "QtnAverAlleleSubstEffects.txt" : "QtnAdditEffects.txt"));
            const auto dominance =
                s.qtn.dominonoff ? tableof(set + "QtnDominEffects.txt") : std::vector<numbers>();
            const int64 n = s.qtn.nqtnmodels * s.traits.ntraits;
            const std::size_t place =
                static_cast<std::size_t>(40 + 20 * ((j - 1) * s.qtn.nqtnmodels + p - 1));
            for (std::size_t i = 0; i < static_cast<std::size_t>(in.nindiv()); ++i) {
                double tbv = 0, tdv = 0;
                for (std::size_t q = 0; q < information.size(); ++q) {
                    const int x = setof(p).genotypes[i][q];
                    const double f = information[q][4];
                    tbv += alpha[q][column(s, p, j)] * (x - 2 * f);
                    if (!s.qtn.dominonoff) continue;
                    const double d = dominance[q][column(s, p, j)];
                    tdv += x == 0   ? -2 * f * f * d
                           : x == 1 ? 2 * f * (1 - f) * d
                                    : -2 * (1 - f) * (1 - f) * d;
                }
                ASSERT_EQ(lines[i + 1].substr(place, 20), field(tbv)) << i << " " << p << " " << j;
                ASSERT_NEAR(
                    std::stod(lines[i + 1].substr(place + 20 * static_cast<std::size_t>(n), 20)),
                    tdv, 1e-9);
            }
        }
}

// TPV from a second stream: generation, model, individual, trait.
void burninstage::checkphenotypes(const state &s, randomstream random)
{
    const auto rows = tableof("PedigreeTbvTdvTpv.txt");
    const int64 nm = s.qtn.nqtnmodels, nt = s.traits.ntraits;
    for (int64 g = 0; g < s.pop.ngen; ++g)
        for (int64 p = 1; p <= nm; ++p) {
            std::vector<numbers> factor;
            for (const auto &line : readlines("SimulatedData/TraitVarianceComponentsResidualChol"
                                              "QtnModel" +
                                              std::to_string(p) + ".txt"))
                factor.push_back(numbersof(line));
            for (int64 i = in.first(g); i < in.first(g + 1); ++i) {
                const numbers &row = rows[static_cast<std::size_t>(i)];
                numbers z;
                for (int64 j = 1; j <= nt; ++j) {
                    z.push_back(gasdev(random));
                    double residual = 0;
                    const std::size_t t = static_cast<std::size_t>(j - 1);
                    for (std::size_t h = 0; h <= t; ++h) residual += factor[t][h] * z[h];
                    const std::size_t k = static_cast<std::size_t>(4 + (j - 1) * nm + p - 1);
                    const std::size_t block = static_cast<std::size_t>(nm * nt);
                    // Three numbers of ten decimals each.
                    ASSERT_NEAR(row[k + 2 * block], row[k] + row[k + block] + residual, 1.51e-10);
                }
            }
        }
    EXPECT_EQ(s.random.idum, random.idum);
}

void burninstage::checkvariances(const state &s)
{
    const auto rows = tableof("TotalGenicAndGeneticVariancesPerGeneration.txt");
    const auto means = tableof("GeneticMeansPerGeneration.txt");
    const auto values = tableof("PedigreeTbvTdvTpv.txt");
    const std::size_t nm = static_cast<std::size_t>(s.qtn.nqtnmodels);
    const std::size_t nt = static_cast<std::size_t>(s.traits.ntraits);
    ASSERT_EQ(rows.size(), nm * in.sizes.size());
    ASSERT_EQ(means.size(), nm * nt * in.sizes.size());
    for (std::size_t g = 0; g < in.sizes.size(); ++g)
        for (std::size_t p = 1; p <= nm; ++p)
            for (std::size_t j = 1; j <= nt; ++j) {
                const int64 model = static_cast<int64>(p), trait = static_cast<int64>(j);
                const std::string set = p % 2 == 1 ? "Unrestricted" : "Restricted";
                const auto alpha = tableof(set + (s.qtn.dominonoff ? "QtnAverAlleleSubstEffects.txt"
                                                                   : "QtnAdditEffects.txt"));
                const auto dominance =
                    s.qtn.dominonoff ? tableof(set + "QtnDominEffects.txt") : alpha;
                double genic = 0, dominancegenic = 0;
                for (std::size_t q = 0; q < alpha.size(); ++q) {
                    const double f =
                        in.frequency(setof(model), static_cast<int64>(g), static_cast<int64>(q));
                    const double a = alpha[q][column(s, model, trait)];
                    const double d = dominance[q][column(s, model, trait)];
                    genic += 2 * f * (1 - f) * a * a;
                    if (s.qtn.dominonoff) dominancegenic += std::pow(2 * f * (1 - f) * d, 2);
                }
                numbers tbv, tdv;
                for (int64 i = in.first(static_cast<int64>(g));
                     i < in.first(static_cast<int64>(g) + 1); ++i) {
                    tbv.push_back(values[static_cast<std::size_t>(i)][4 + (j - 1) * nm + p - 1]);
                    tdv.push_back(
                        values[static_cast<std::size_t>(i)][4 + nt * nm + (j - 1) * nm + p - 1]);
                }
                const numbers &row = rows[g * nm + p - 1];
                EXPECT_EQ(row[0], g + 1.0);
                EXPECT_EQ(row[1], static_cast<double>(p));
                EXPECT_NEAR(row[1 + j], genic, 1e-9);
                EXPECT_NEAR(row[1 + nt + j], dominancegenic, 1e-9);
                EXPECT_NEAR(row[1 + 2 * nt + j], variance(tbv), 1e-9);
                EXPECT_NEAR(row[1 + 3 * nt + j], variance(tdv), 1e-9);
                double mean = 0;
                for (const double x : tbv) mean += x / static_cast<double>(tbv.size());
                const numbers &meansrow = means[(g * nm + p - 1) * nt + j - 1];
                EXPECT_EQ(meansrow[0], g + 1.0);
                EXPECT_EQ(meansrow[1], static_cast<double>(p));
                EXPECT_EQ(meansrow[2], static_cast<double>(j));
                EXPECT_NEAR(meansrow[3], mean, 1e-9);
            }
}

void burninstage::checkcomponents(const state &s, const std::string &output)
{
    const auto lines = readlines("SimulatedData/TraitVarianceComponents.txt");
    const auto generations = tableof("TotalGenicAndGeneticVariancesPerGeneration.txt");
    const std::size_t nt = static_cast<std::size_t>(s.traits.ntraits);
    const std::size_t nm = static_cast<std::size_t>(s.qtn.nqtnmodels);
    ASSERT_EQ(lines.size(), 7 * nt);
    for (std::size_t j = 1; j <= nt; ++j) {
        const std::string *const block = &lines[7 * (j - 1)];
        const double h = s.traits.herit(static_cast<int64>(j));
        EXPECT_EQ(block[0], "Variance components for trait " + std::to_string(j));
        EXPECT_EQ(block[1], std::string(40, ' ') + "NormalModelUnres    NormalModelRestr" +
                                (nm == 4 ? "   GammaModelUnrestr     GammaModelRestr" : ""));
        EXPECT_EQ(block[4].substr(0, 36), "VarE" + std::string(32, ' '));
        EXPECT_EQ(block[5].substr(0, 36), "Simulated narrow-sense heritability ");
        EXPECT_EQ(block[6].substr(0, 36), "Simulated broad-sense heritability  ");
        std::string printed;
        for (std::size_t p = 1; p <= nm; ++p) {
            const auto value = [&](int row) {
                return std::stod(block[row].substr(16 + 20 * p, 20));
            };
            const double a = value(2), d = value(3), e = value(4);
            EXPECT_NEAR(a, generations[p - 1][1 + 2 * nt + j], 1e-9);
            EXPECT_NEAR(d, generations[p - 1][1 + 3 * nt + j], 1e-9);
            EXPECT_NEAR(e, (a + d) * (1 - h) / h, 1e-8);
            EXPECT_NEAR(value(5), a / (a + d + e), 1e-8);
            EXPECT_EQ(block[6].substr(16 + 20 * p, 20), field(h));
            char text[20];
            std::snprintf(text, sizeof text, "%12.4f", e);
            printed += text;
        }
        EXPECT_NE(output.find("\n  VarE                               " + printed + "\n"),
                  std::string::npos);
    }
    // Model 2 of the covariance file, one row per trait in each matrix.
    const auto covariances = readlines("SimulatedData/TraitVarianceComponentsCovariance.txt");
    const std::size_t size = 1 + 3 * (2 + nt) + 2 * 3;
    ASSERT_EQ(covariances.size(), nm * size);
    const std::string *const block = &covariances[size];
    EXPECT_EQ(block[0], " QTN model    NormalRestr");
    EXPECT_EQ(block[1], " ");
    EXPECT_EQ(block[2], " Additive genetic co-variance ");
    EXPECT_EQ(block[4 + nt], " Dominance genetic co-variance");
    EXPECT_EQ(block[6 + 2 * nt], " Residual co-variance         ");
    EXPECT_EQ(block[8 + 3 * nt], " Heritability (narrow-sense)  ");
    EXPECT_EQ(block[11 + 3 * nt - 1], " ");
    EXPECT_EQ(block[11 + 3 * nt], " Heritability (broad-sense)   ");
    if (nt == 2) { // residual correlation -0.2
        const numbers first = numbersof(block[7 + 2 * nt]), second = numbersof(block[8 + 2 * nt]);
        EXPECT_NEAR(first[1] / std::sqrt(first[0] * second[1]), -0.2, 2e-3);
        EXPECT_EQ(first[1], second[0]);
    }
}
} // namespace

TEST_F(burninstage, filesagreewithplainloops)
{
    for (const bool full : {true, false}) {
        SCOPED_TRACE(full ? "two traits, gamma, dominance" : "one trait, normal, recombination");
        in = qtninputs();
        state s = prepare(full);
        const randomstream stream = s.random;
        const outcome result = runbody([&] { computetbvvaravareandburnintpv(s); });
        ASSERT_EQ(result.code(), 0) << result.stop.reason;
        EXPECT_FALSE(s.values.tbv.allocated() || s.pedi.ped.allocated() ||
                     s.qtn.allqtngenosunres.allocated() || s.values.vare.allocated());
        checkbreedingvalues(s);
        checkphenotypes(s, stream);
        checkvariances(s);
        checkcomponents(s, result.output);

        const auto genotypes = readlines("SimulatedData/RestrictedQtnIndivGenotypes.txt");
        ASSERT_EQ(genotypes.size(), static_cast<std::size_t>(in.nindiv()));
        for (std::size_t i = 0; i < genotypes.size(); ++i) {
            std::string line = intfield(static_cast<int64>(i) + 1, 20);
            for (const int x : in.restricted.genotypes[i]) line += " " + std::to_string(x);
            EXPECT_EQ(genotypes[i], line);
        }
        std::filesystem::remove_all("SimulatedData");
    }
}

TEST_F(burninstage, titles)
{
    state s = prepare(true);
    ASSERT_EQ(runbody([&] { computetbvvaravareandburnintpv(s); }).code(), 0);
    const std::string title = readlines("SimulatedData/PedigreeTbvTdvTpv.txt")[0];
    EXPECT_EQ(title.size(), 1000U);
    EXPECT_EQ(title.substr(0, 131),
              "Generation     Indiv    Father    Mother       TBVNormUnres1       TBVNormRestr1    "
              "   TBVGammUnres1       TBVGammaRestr1       TBV");
    EXPECT_NE(title.find("TBVGammaRestr2       TDVNormUnres1       "), std::string::npos);
    EXPECT_NE(title.find("TDVGammaRestr2       TPVNormUnres1       "), std::string::npos);
    const std::string variances =
        readlines("SimulatedData/TotalGenicAndGeneticVariancesPerGeneration.txt")[0];
    const std::string text =
        "Generation  QtnModel     TotalAdditGenicVar1 TotalAdditGenicVar2 TotalDominGenicVar1 "
        "TotalDominGenicVar2 TotalAdditGeneticVar1 TotalAdditGeneticVar2 TotalDominGeneticVar1 "
        "TotalDominGeneticVar2";
    EXPECT_EQ(variances, text + std::string(1500 - text.size(), ' '));
    EXPECT_EQ(readlines("SimulatedData/GeneticMeansPerGeneration.txt")[0],
              "          Generation            QTNmodel              Trait              meanTBV");
    EXPECT_EQ(readlines("SimulatedData/PedigreeTbvTdvTpv.txt")[14].substr(0, 40),
              "         2        14         1         2");
}

TEST_F(burninstage, stops)
{
    state s = prepare(false);
    s.traits.herit(1) = 1;
    outcome stop = runbody([&] { computetbvvaravareandburnintpv(s); });
    EXPECT_EQ(stop.code(), 11000);
    EXPECT_NE(stop.output.find("Residual correlation matrix"), std::string::npos);

    in = qtninputs();
    in.sizes = {6, 1};
    s = prepare(true);
    stop = runbody([&] { computetbvvaravareandburnintpv(s); });
    EXPECT_EQ(stop.code(), 110003);

    std::filesystem::remove("SimulatedData/RestrictedQtnDominEffects.txt");
    stop = runbody([&] { computetbvvaravareandburnintpv(s); });
    EXPECT_EQ(stop.stop.kind, stopped::kinds::ioerror);
    EXPECT_NE(stop.stop.reason.find("RestrictedQtnDominEffects.txt"), std::string::npos);
}
