// Routines of the values stage one by one.
#include "openstate.h"
#include "pedigree/pedigree.h"
#include "sortstat.h"
#include "testsupport.h"
#include "traits/covariances.h"
#include "traits/traitsettings.h"
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
#include <random>

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
        s = statewithtraits(ntraits, {n});
        s.loci.ntotqtn = 2;
        makepedigreearrays(s, arrays);
        makevaluearrays(s, arrays);
        for (int64 i = 1; i <= n; ++i) s.pedi.ped(i).newid = i;
        s.values.nindivinsimulrun = n;
    }
    openstate s;
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
    openstate &s = generation.s;
    for (int64 i = 1; i <= n; ++i)
        for (int64 p = 1; p <= 4; ++p)
            for (int64 j = 1; j <= 3; ++j)
                s.values.tbv(i, p, j) = std::sqrt(static_cast<double>(p)) * gasdev(s.random);
    computevaravardvare(s, 1, n);
    workoutresidualcovariances(s);
    s.values.cholcove.fill(-1);
    readresidualfactors(s);
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
    // True values are added up before the residual, which large ones would swallow.
    s.values.tbv.fill(1e17);
    s.values.tdv.fill(-1e17);
    randomstream draws = s.random;
    computetpv(s, 1, 1, n);
    EXPECT_EQ(s.values.tpv(1, 1, 1), s.values.cholcove(1, 1, 1) * gasdev(draws));
}

// One recombination QTN of effect 1 at frequency 0.5, genotypes 0, 2, 0, 2: raw values -1 and 1,
// standard deviation sqrt(4/3), so z is -+sqrt(3/4) x sqrt(vararecombt). M C = 2 x 2 = 4 and a
// heritability of 1/3 give vararecombt = (1/3 / 4) / (2/3) = 1/8.
TEST_F(values, recombinationtraitbyhand)
{
    openstate s = statewithtraits(1, {4, 4});
    s.traits.heritrecomb = 1.0 / 3;
    s.selection.recombselonoff = true;
    s.founders.morgans = 2;
    s.loci.ntotqtn = 2;
    s.loci.ntotqtnrecomb = 1;
    s.values.nindivinsimulrun = 4;
    arrayscope arrays;
    makepedigreearrays(s, arrays);
    makevaluearrays(s, arrays);
    makegenotypetables(s, arrays);
    for (int64 i = 1; i <= 8; ++i) s.pedi.ped(i).newid = i;
    qtnsetdata &set = s.loci.sets[qtnset::recombination];
    set.referencefreq(1) = 0.5;
    s.loci.addeffrecomb(1) = 1;
    writefile("SimulatedData/RecombinationCount.txt",
              " 1 2 3\n 2 0 1\n 3 4 4\n 4 5 0\n 5 1 1\n 6 2 2\n 7 3 3\n 8 4 4\n");
    for (int64 k = 1; k <= 4; ++k) set.qtngenos(k, 1) = k % 2 == 0 ? 2 : 0;
    computetbvrecomb(s, 1, 1, 4);
    const double z = std::sqrt(0.75 / 8);
    EXPECT_NEAR(s.values.tbvrecombz(1), -z, 1e-15);
    EXPECT_NEAR(s.values.recombperindperchr(2), 2 * std::exp(z), 1e-14);
    computevaravardvare(s, 1, 4);
    EXPECT_NEAR(s.values.vararecomb, 0.125, 1e-15);
    EXPECT_NEAR(s.values.varerecomb, 0.25, 1e-15);

    // The same genotype for all: no variance, whatever rounding does to the mean.
    set.referencefreq(1) = 0.1;
    s.loci.addeffrecomb(1) = 0.7;
    set.qtngenos.fill(1);
    computetbvrecomb(s, 2, 5, 8);
    for (int64 i = 5; i <= 8; ++i) {
        EXPECT_EQ(s.values.tbvrecombz(i), 0);
        EXPECT_NEAR(s.values.recombperindperchr(i), 2, 1e-14);
    }
}

// Test individuals 3 to 6 of eight, tbv 1, 2, 3, 4 and estimates 2, 1, 4, 3: correlation 0.6,
// variance of tbv 5/3.
TEST_F(values, accuracyofonetrait)
{
    onegeneration generation(8, 1);
    openstate &s = generation.s;
    s.qtn.qtnmodel = 2;
    s.pop.ngensel = 3;
    s.cycle.starttestindiv = 3;
    s.cycle.endtestindiv = 6;
    s.cycle.ntestindiv = 4;
    s.cycle.estimatedbvtrait.allocate(4, 1);
    const double estimates[] = {2, 1, 4, 3};
    for (int64 x = 1; x <= 4; ++x) {
        s.values.tbv(x + 2, 2, 1) = static_cast<double>(x);
        s.cycle.estimatedbvtrait(x, 1) = estimates[x - 1];
    }
    const auto report = [&](int64 cycle) {
        outfile out = openaccuracyfile(cycle);
        runbody([&] { computebvaccuracyandmoments(s, out, 1); });
        out.close();
        return numbersof(readlines("Selection/AccuracyOfBreedingValueSelectionCycle" +
                                   std::to_string(cycle) + ".txt")[1]);
    };
    s.selection.selmethindicator = 3;
    s.selection.selontbvyes1no0 = 2;
    EXPECT_EQ(report(1), (std::vector<double>{0.6, 2.5, 1.66667}));

    // Estimates without variation: 0.
    s.cycle.estimatedbvtrait.fill(1);
    EXPECT_EQ(report(4)[0], 0);

    // After the last generation the test set may be larger or smaller than the estimates: -1, -2,
    // -3 (and 4) with 1, 2, 3 (and 4) give -1 and 7 / sqrt(5 x 29).
    s.selection.selmethindicator = 2;
    s.selection.selontbvyes1no0 = 0;
    for (const int64 n : {3, 6}) {
        s.cycle.estimatedbvtrait.allocate(n, 1);
        for (int64 x = 1; x <= n; ++x)
            s.cycle.estimatedbvtrait(x, 1) = x == 4 ? 4.0 : -static_cast<double>(x);
        EXPECT_NEAR(report(5 + n)[0], n == 3 ? -1 : 7 / std::sqrt(5.0 * 29.0), 5e-6);
    }
    s.cycle.ntestindiv = 1;
    outfile out;
    EXPECT_EQ(runbody([&] { computebvaccuracyandmoments(s, out, 1); }).code(), 110003);
}
