// Routines of the values stage one by one.
#include "pedigree/pedigree.h"
#include "sortstat.h"
#include "testsupport.h"
#include "traits/covariances.h"
#include "traits/qtninputs.h"
#include "values/accuracy.h"
#include "values/breedingvalues.h"
#include "values/burninvalues.h"
#include "values/phenotypes.h"
#include "values/qtnsums.h"
#include "values/recombtrait.h"
#include "values/transpose.h"
#include "values/valuearrays.h"

#include <cmath>
#include <filesystem>

namespace
{
class values : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        std::filesystem::create_directories("SimulatedData");
        std::filesystem::create_directories("Selection");
    }
};

// One generation of n individuals, value arrays made, pedigree numbered.
struct onegeneration {
    onegeneration(int64 n, int64 ntraits)
    {
        qtninputs in;
        in.sizes = {n};
        s = in.settings(ntraits);
        s.qtn.ntotqtn = 2;
        makepedigreearrays(s, arrays);
        makevaluearrays(s, arrays);
        for (int64 i = 1; i <= n; ++i) s.pedi.ped(i).newid = i;
        s.values.nindivinsimulrun = n;
    }
    state s;
    arrayscope arrays;
};
} // namespace

// Sizes around the squares of 16 and the tiles of 512.
TEST(qtntables, transposingandsummingintiles)
{
    std::mt19937 draws(7);
    for (const int64 nindiv : {1, 15, 16, 53, 512, 1100}) {
        const int64 nqtn = 37;
        array2<int8> rows(nqtn, nindiv), genos(nindiv, nqtn), back(nqtn, nindiv);
        for (int8 &x : rows) x = static_cast<int8>(draws() % 3);
        transposebytes(rows.data(), nqtn, genos.data(), nindiv, nindiv, nqtn);
        transposebytes(genos.data(), nindiv, back.data(), nqtn, nqtn, nindiv);
        for (int64 k = 1; k <= nindiv; ++k)
            for (int64 q = 1; q <= nqtn; ++q) {
                ASSERT_EQ(genos(k, q), rows(q, k)) << k << " " << q;
                ASSERT_EQ(back(q, k), rows(q, k));
            }
        array1<double> sum(nindiv), effect(nqtn), f(nqtn);
        for (double &e : effect) e = std::uniform_real_distribution<double>(-1, 1)(draws);
        for (double &x : f) x = std::uniform_real_distribution<double>(0, 1)(draws);
        sumoverqtn(genos, nqtn, {sum.data()}, nindiv, [&](int64 q, const double *x, double *sums) {
            adddeviations(sums, x, effect(q), f(q));
        });
        for (int64 k = 1; k <= nindiv; ++k) {
            double plain = 0;
            for (int64 q = 1; q <= nqtn; ++q) plain += effect(q) * (genos(k, q) - 2 * f(q));
            ASSERT_EQ(sum(k), plain) << "not the same bits for individual " << k;
        }
    }
}

// 20,000 individuals, three traits; bounds of 5 standard errors. The sample covariance of n pairs
// has the standard error sqrt((v1 v2 + c^2) / n).
TEST_F(values, residualcovariancesandheritability)
{
    const int64 n = 20000;
    onegeneration generation(n, 3);
    state &s = generation.s;
    for (int64 i = 1; i <= n; ++i)
        for (int64 p = 1; p <= 4; ++p)
            for (int64 j = 1; j <= 3; ++j)
                s.values.tbv(i, p, j) = std::sqrt(static_cast<double>(p)) * gasdev(s.random);
    computevaravardvare(s, 1, n);
    workoutresidualcovariances(s);
    s.traits.cholcove.fill(-1); // taken back from the files
    computetpv(s, 1, 1, n);
    const double count = static_cast<double>(n);
    const auto residual = [&](int64 i, int64 p, int64 j) {
        return s.values.tpv(i, p, j) - s.values.tbv(i, p, j);
    };
    for (int64 p = 1; p <= 4; ++p)
        for (int64 j = 1; j <= 3; ++j) {
            const double h = s.traits.herit(j), ve = s.values.vare(p, j);
            EXPECT_NEAR(s.values.vara(p, j) / (s.values.vara(p, j) + ve), h, 1e-12);
            EXPECT_NEAR(s.values.vara(p, j), static_cast<double>(p),
                        5 * static_cast<double>(p) * std::sqrt(2 / count));
            for (int64 k = 1; k <= j; ++k) {
                double sum = 0;
                for (int64 i = 1; i <= n; ++i) sum += residual(i, p, j) * residual(i, p, k);
                const double vk = s.values.vare(p, k);
                const double wanted = (j == k ? 1.0 : -0.2) * std::sqrt(ve * vk);
                EXPECT_NEAR(sum / count, wanted,
                            5 * std::sqrt((ve * vk + wanted * wanted) / count));
            }
            // Realised heritability: the squared correlation of tbv and tpv, whose standard error
            // is 2 sqrt(h) (1 - h) / sqrt(n).
            double r;
            pearsn(s.values.tbv.column(p, j), s.values.tpv.column(p, j), n, r);
            EXPECT_NEAR(r * r, h, 5 * 2 * std::sqrt(h) * (1 - h) / std::sqrt(count));
        }
}

// Five traits: a matrix row goes on in a new line behind four numbers.
TEST_F(values, covariancerowsoffourcolumns)
{
    onegeneration generation(6, 5);
    state &s = generation.s;
    for (double &x : s.values.tbv) x = gasdev(s.random);
    computevaravardvare(s, 1, 6);
    const outcome result = runbody([&] { printoutvarcomponents(s); });
    const auto lines = readlines("SimulatedData/TraitVarianceComponentsCovariance.txt");
    EXPECT_EQ(lines.size(), 4U * (1 + 3 * (2 + 10) + 2 * 4));
    EXPECT_EQ(lines[3].size(), 48U);
    EXPECT_EQ(lines[4].size(), 12U);
    EXPECT_EQ(lines[5].size(), 48U);
    EXPECT_EQ(result.output.substr(0, 11), "  Trait  1\n");
    EXPECT_EQ(result.output.find(std::string(35, ' ') +
                                 "NormalUnrestr NormalRestr GammaUnrestr GammaRestr\n"),
              12U);
}

// One recombination QTN of effect 1 at frequency 0.5, genotypes 0, 2, 0, 2: raw values -1 and 1,
// standard deviation sqrt(4/3), so z is -+sqrt(3/4) x sqrt(vararecombt). M C = 2 x 2 = 4 and a
// heritability of 1/3 give vararecombt = (1/3 / 4) / (2/3) = 1/8.
TEST_F(values, recombinationtraitbyhand)
{
    qtninputs in;
    in.sizes = {4, 4};
    state s = in.settings();
    s.selection.recombselonoff = true;
    s.founders.morgans = 2;
    s.values.heritrecomb = 1.0 / 3;
    s.qtn.ntotqtn = 2;
    s.qtn.ntotqtnrecomb = 1;
    s.values.nindivinsimulrun = 4;
    arrayscope arrays;
    makepedigreearrays(s, arrays);
    makevaluearrays(s, arrays);
    makegenotypetables(s, arrays);
    for (int64 i = 1; i <= 8; ++i) s.pedi.ped(i).newid = i;
    writefile("SimulatedData/RecombinationQtnInformationEffects.txt",
              "title\n 1 1 7 0.5 0.5 0.25 1.0\n");
    writefile("SimulatedData/RecombinationCount.txt",
              " 1 2 3\n 2 0 1\n 3 4 4\n 4 5 0\n 5 1 1\n 6 2 2\n 7 3 3\n 8 4 4\n");
    for (int64 k = 1; k <= 4; ++k) s.qtn.allqtngenosrecomb(k, 1) = k % 2 == 0 ? 2 : 0;
    computetbvrecomb(s, 1, 1, 4);
    const double z = std::sqrt(0.75 / 8);
    EXPECT_NEAR(s.values.tbvrecombz(1), -z, 1e-15);
    EXPECT_NEAR(s.values.recombperindperchr(2), 2 * std::exp(z), 1e-14);
    computevaravardvare(s, 1, 4);
    EXPECT_NEAR(s.values.vararecomb, 0.125, 1e-15);
    EXPECT_NEAR(s.values.varerecomb, 0.25, 1e-15);

    // The same genotype for all: no variance, whatever rounding does to the mean.
    s.qtn.allqtnfreqrecomb(1) = 0.1;
    writefile("SimulatedData/RecombinationQtnInformationEffects.txt",
              "title\n 1 1 7 0.1 0.1 0.25 0.7\n");
    s.qtn.allqtngenosrecomb.fill(1);
    computetbvrecomb(s, 2, 5, 8);
    for (int64 i = 5; i <= 8; ++i) {
        EXPECT_EQ(s.values.tbvrecombz(i), 0);
        EXPECT_NEAR(s.values.recombperindperchr(i), 2, 1e-14);
    }
    const auto lines = readlines("SimulatedData/PedigreeTbvRecombination.txt");
    ASSERT_EQ(lines.size(), 9U);
    EXPECT_EQ(lines[0].size(), 140U);
    EXPECT_EQ(lines[1], "         1         1         0         0       -0.3061862178        "
                        "1.4724990078                   2                   3                   5");
    EXPECT_EQ(lines[7], "         2         7         0         0        0.0000000000        "
                        "2.0000000000                   3                   3                   6");
}

// Fixed at 0, fixed at 2, segregating; only the set of qtnmodel is looked at.
TEST_F(values, fixedqtn)
{
    qtninputs in;
    in.sizes = {2, 2};
    state s = in.settings();
    s.qtn.ntotqtn = 3;
    s.qtn.qtnmodel = 4;
    s.values.nindivinsimulrun = 2;
    arrayscope arrays;
    makegenotypetables(s, arrays);
    s.qtn.allqtngenosrestr(1, 2) = s.qtn.allqtngenosrestr(2, 2) = 2;
    s.qtn.allqtngenosrestr(1, 3) = 1;
    writefixedqtn(s, 1);
    s.qtn.qtnmodel = 3;
    writefixedqtn(s, 2);
    const std::string title = "          Generation         GlobalQtnId         FixedYes0No1\n";
    const auto row = [](int g, int q, int segregates) {
        return std::string(19, ' ') + std::to_string(g) + std::string(19, ' ') + std::to_string(q) +
               std::string(19, ' ') + std::to_string(segregates) + "\n";
    };
    const std::string first = title + row(1, 1, 0) + row(1, 2, 0) + row(1, 3, 1);
    EXPECT_EQ(readfile("SimulatedData/FixedQtn.txt"),
              first + row(2, 1, 0) + row(2, 2, 0) + row(2, 3, 0));
}

namespace
{
// Test individuals 3 to 6 of eight, tbv 1, 2, 3, 4 and phenotypes 2, 1, 4, 3 (correlation 0.6) in
// each trait under model 2.
struct candidates : onegeneration {
    explicit candidates(int64 ntraits) : onegeneration(8, ntraits)
    {
        s.qtn.qtnmodel = 2;
        s.pop.ngensel = 3;
        s.selection.starttestindiv = 3;
        s.selection.endtestindiv = 6;
        s.selection.ntestindiv = 4;
        s.selection.estimatedbvtrait.allocate(4, ntraits);
        s.selection.estimatedbvrecomb.allocate(4);
        const double tpv[] = {2, 1, 4, 3};
        for (int64 j = 1; j <= ntraits; ++j)
            for (int64 x = 1; x <= 4; ++x) {
                s.values.tbv(x + 2, 2, j) = static_cast<double>(x);
                s.values.tpv(x + 2, 2, j) = tpv[x - 1];
                s.values.tbvrecombz(x + 2) = 0.1 * static_cast<double>(x);
            }
    }
};
} // namespace

// Variance of 1, 2, 3, 4: 5/3.
TEST_F(values, accuracyofonetrait)
{
    candidates test(1);
    state &s = test.s;
    s.selection.selmethindicator = 3;
    s.selection.selontbvyes1no0 = 2;
    const outcome result = runbody([&] { computebvaccuracyandmoments(s, 1, 1); });
    const std::string title = "           PhenoAcc             TBVmean             TBVvar \n";
    const std::string row = "             0.60000             2.50000             1.66667\n";
    EXPECT_EQ(result.output, " " + title + row);
    EXPECT_EQ(s.selection.estimatedbvtrait(3, 1), 4);
    s.selection.accuracyfile.close();
    EXPECT_EQ(readfile("Selection/AccuracyOfBreedingValueSelectionCycle1.txt"), title + row);

    // Estimates without variation: 0. The cycle of number ngensel + ngen takes no phenotypes.
    s.selection.estimatedbvtrait.fill(1);
    runbody([&] { computebvaccuracyandmoments(s, 4, 1); });
    EXPECT_EQ(numbersof(readlines("Selection/AccuracyOfBreedingValueSelectionCycle4.txt")[1])[0],
              0);

    // After the last generation the test set may be larger or smaller than the estimates.
    s.selection.selmethindicator = 2;
    for (const int64 n : {3, 6}) {
        s.selection.estimatedbvtrait.allocate(n, 1);
        for (int64 x = 1; x <= n; ++x)
            s.selection.estimatedbvtrait(x, 1) = x == 4 ? 4.0 : -static_cast<double>(x);
        s.selection.selontbvyes1no0 = 0;
        runbody([&] { computebvaccuracyandmoments(s, 5 + n, 1); });
        const auto report = readlines("Selection/AccuracyOfBreedingValueSelectionCycle" +
                                      std::to_string(5 + n) + ".txt");
        EXPECT_EQ(report[0], "             EBVacc             TBVmean             TBVvar ");
        const auto found = numbersof(report[1]);
        // -1, -2, -3 (and 4) with 1, 2, 3 (and 4): -1; 7 / sqrt(5 x 29).
        EXPECT_NEAR(found[0], n == 3 ? -1 : 7 / std::sqrt(5.0 * 29.0), 5e-6);
        EXPECT_EQ(found[1], 2.5);
        s.selection.selontbvyes1no0 = 1;
        runbody([&] { computebvaccuracyandmoments(s, 20, 1); });
        EXPECT_EQ(s.selection.estimatedbvtrait(3, 1), 3);
    }
    s.selection.ntestindiv = 1;
    EXPECT_EQ(runbody([&] { computebvaccuracyandmoments(s, 9, 1); }).code(), 110003);
}

TEST_F(values, accuracyofseveraltraitsandrecombination)
{
    candidates test(2);
    state &s = test.s;
    s.selection.selmethindicator = 2;
    s.selection.selontbvyes1no0 = 1;
    const outcome result = runbody([&] {
        computebvaccuracyandmoments(s, 7, 1);
        computebvaccuracyandmoments(s, 7, 2);
    });
    const std::string rows =
        "         1             1.00000             2.50000             1.66667\n"
        "         2             1.00000             2.50000             1.66667\n";
    EXPECT_EQ(readfile("Selection/AccuracyOfBreedingValueSelectionCycle7.txt"),
              "     Trait              EBVacc             TBVmean              TBVvar\n" + rows);
    EXPECT_EQ(result.output,
              "     Trait              EBVacc             TBVmean              TBVvar\n" + rows);

    candidates testwithrate(1);
    state &r = testwithrate.s;
    r.selection.selmethindicator = 2;
    r.selection.selontbvyes1no0 = 1;
    r.selection.recombselonoff = true;
    const outcome recombination = runbody([&] { computebvaccuracyandmoments(r, 8, 1); });
    const auto lines = readlines("Selection/AccuracyOfBreedingValueSelectionCycle8.txt");
    EXPECT_EQ(lines[0].size(), 141U);
    // Mean over x = 1 to 4 of exp(log(1.5 x 2) + 0.1 x) = 3.876192...
    EXPECT_EQ(lines[1], "             1.00000             1.00000             2.50000             "
                        "0.25000             3.87619             1.66667             0.01667");
    EXPECT_EQ(recombination.output.substr(recombination.output.find('\n') + 1),
              "        1.00000        1.00000        2.50000        0.25000        3.87619        "
              "1.66667        0.01667\n");
}
