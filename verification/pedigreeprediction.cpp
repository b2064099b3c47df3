// Pedigree prediction: the program against variances set up and inverted densely here, both
// solvers, and statistics of both evaluation programs on families.
#include "Quillomere/snpblup.h"
#include "QuillomereP/animalmodel.h"
#include "QuillomereP/inbreeding.h"

#include "pedigreeproblem.h"

#include <cmath>

namespace
{
// Relationships by the tabular method, row by row; a doubled haploid repeats one gamete.
densematrix relationships(const pedigree &p)
{
    densematrix a(p.size(), std::vector<double>(p.size(), 0.0));
    for (std::size_t i = 1; i < p.size(); ++i) {
        const std::size_t s = static_cast<std::size_t>(p[i].sire),
                          d = static_cast<std::size_t>(p[i].dam);
        for (std::size_t j = 1; j < i; ++j) a[i][j] = a[j][i] = 0.5 * (a[j][s] + a[j][d]);
        a[i][i] = p[i].code == 2 ? 2 : 1 + 0.5 * (s && d ? a[s][d] : 0);
    }
    return a;
}

// Best linear prediction from the variance of the phenotypes, V = Z A Z' VarA + I VarE, without
// any inverse of A: mu by generalised least squares, then a = A Z' VarA V^-1 (y - mu).
std::vector<double> predictdensely(const pedigree &p, double vara, double vare)
{
    const densematrix a = relationships(p);
    std::vector<std::size_t> observed;
    std::vector<double> y;
    for (std::size_t i = 1; i < p.size(); ++i)
        if (p[i].phenotype != -99) observed.push_back(i), y.push_back(p[i].phenotype);
    densematrix v(y.size(), std::vector<double>(y.size()));
    for (std::size_t r = 0; r < y.size(); ++r)
        for (std::size_t c = 0; c < y.size(); ++c)
            v[r][c] = vara * a[observed[r]][observed[c]] + (r == c ? vare : 0);
    const std::vector<double> vy = eliminate(v, y),
                              vone = eliminate(v, std::vector<double>(y.size(), 1.0));
    double above = 0, below = 0;
    for (std::size_t r = 0; r < y.size(); ++r) above += vy[r], below += vone[r];
    const double mu = above / below;
    std::vector<double> ebv(p.size(), 0.0);
    for (std::size_t i = 1; i < p.size(); ++i)
        for (std::size_t r = 0; r < y.size(); ++r)
            ebv[i] += vara * a[i][observed[r]] * (vy[r] - mu * vone[r]);
    return ebv;
}

phenotypedpedigree datafrom(const pedigree &p)
{
    writefile("pedigree", pedigreetext(p));
    return readphenotypedpedigree("pedigree", -99);
}

class pedigreeprediction : public infolder
{
};
} // namespace

TEST_F(pedigreeprediction, filesequaldenseequations)
{
    for (const bool plants : {false, true})
        for (const int64 step : {1, 3}) {
            const pedigree p = mixedpedigree(120, plants ? 4 : 9, plants);
            writeproblem(p, 6, 4, step);
            const commandresult result = runcommand(binfolder() + "/QuillomereP");
            ASSERT_EQ(result.status, 0) << result.err;
            EXPECT_NE(result.out.find("Forming and solving the equations: "), std::string::npos);
            expectresults(predictdensely(p, 6, 4), 1e-8, step);
        }
}

// A residual variance of 0 is taken as a millionth of the other.
TEST_F(pedigreeprediction, withoutresidualvariance)
{
    const pedigree p = mixedpedigree(40, 2, false);
    writeproblem(p, 4, 0);
    ASSERT_EQ(runcommand(binfolder() + "/QuillomereP").status, 0);
    expectresults(predictdensely(p, 4, 4e-6), 1e-6);
}

// Both solvers on the same equations, beyond the size at which the program changes over; and the
// Mendelian sampling variances against the dense relationships: a_ii less what the parents explain.
TEST_F(pedigreeprediction, solversagreeandvariancesareright)
{
    for (const bool plants : {false, true}) {
        const pedigree p = mixedpedigree(700, 31, plants);
        const densematrix a = relationships(p);
        runquietly([&] {
            const phenotypedpedigree data = datafrom(p);
            double meaninbreeding = 0;
            const array1<double> d = mendelianvariances(data, meaninbreeding);
            EXPECT_GT(meaninbreeding, plants ? 0.3 : 0.05);
            for (std::size_t i = 1; i < p.size(); ++i) {
                const std::size_t s = static_cast<std::size_t>(p[i].sire),
                                  m = static_cast<std::size_t>(p[i].dam);
                EXPECT_NEAR(d(static_cast<int64>(i)),
                            a[i][i] - 0.25 * (a[s][s] + a[m][m] + 2 * a[s][m]), 1e-12);
            }
            const animalmodel x =
                solveanimalmodel(data, d, 2, 3, 10000, "f", pedigreesolver::cholesky);
            const animalmodel y =
                solveanimalmodel(data, d, 2, 3, 10000, "f", pedigreesolver::conjugategradients);
            EXPECT_NEAR(x.mu, y.mu, 1e-8);
            for (int64 i = 1; i <= data.n; ++i) EXPECT_NEAR(x.ebv(i), y.ebv(i), 1e-8);
        });
    }
}

// Breeding values by the theory of the model: the regression of true on estimated values is 1. Of
// 400 animals with an accuracy of about 0.7 it has a standard error of about
// sqrt((1 - 0.49) / 0.49 / 400) = 0.05, 0.008 for the mean of 40 populations; allowed are 0.04,
// five of them.
TEST_F(pedigreeprediction, regressionoftrueonestimatedvalues)
{
    std::mt19937_64 random(12);
    std::normal_distribution<double> normal;
    double slope = 0;
    const int nreplicates = 40;
    for (int r = 0; r < nreplicates; ++r) {
        pedigree p(1);
        std::vector<double> value(1, 0.0);
        for (std::size_t i = 1; i <= 400; ++i) {
            animal next;
            if (i > 40) { // 20 sires and 20 dams of the 40 animals before this group of 40
                const std::size_t first = (i - 1) / 40 * 40 - 39;
                next.sire = static_cast<int64>(first + random() % 20);
                next.dam = static_cast<int64>(first + 20 + random() % 20);
            }
            next.phenotype = 0; // to come
            p.push_back(next);
            value.push_back(0);
        }
        runquietly([&] {
            double meaninbreeding = 0;
            const array1<double> d = mendelianvariances(datafrom(p), meaninbreeding);
            for (std::size_t i = 1; i < p.size(); ++i) {
                value[i] = 0.5 * (value[static_cast<std::size_t>(p[i].sire)] +
                                  value[static_cast<std::size_t>(p[i].dam)]) +
                           std::sqrt(d(static_cast<int64>(i))) * normal(random);
                p[i].phenotype = value[i] + std::sqrt(1.5) * normal(random);
            }
            const animalmodel b = solveanimalmodel(datafrom(p), d, 1, 1.5, 10000, "f");
            const std::vector<double> ebv(b.ebv.begin(), b.ebv.end()),
                tbv(value.begin() + 1, value.end());
            slope += covariance(tbv, ebv) / covariance(ebv, ebv) / nreplicates;
        });
    }
    EXPECT_NEAR(slope, 1, 0.04);
}

namespace
{
// 60 full-sib families of 10; genomes of 10 chromosomes x 50 SNPs in full linkage disequilibrium
// within the parents' strands, all with effects, the variance of breeding values of founders 1.
// The first 6 sibs of each family are the training set, the other 4 are to be predicted.
struct families {
    pedigree sibs;                       // parents 1..120 first
    std::vector<std::vector<int8>> geno; // by animal from 1
    std::vector<double> tbv;
};
families makefamilies(std::mt19937_64 &random)
{
    constexpr std::size_t nsnp = 500, nparents = 120;
    std::normal_distribution<double> normal;
    std::vector<double> effect(nsnp);
    for (double &e : effect) e = normal(random) / std::sqrt(nsnp * 0.5); // variance 2pq = 0.5
    std::vector<std::vector<int8>> strands(2 * (nparents + 1));
    for (auto &strand : strands)
        for (std::size_t j = 0; j < nsnp; ++j) strand.push_back(static_cast<int8>(random() & 1));
    families f;
    f.sibs.resize(nparents + 1);
    f.geno.resize(1);
    const auto add = [&](const std::vector<int8> &one, const std::vector<int8> &two) {
        std::vector<int8> g;
        double value = 0;
        for (std::size_t j = 0; j < nsnp; ++j) {
            g.push_back(static_cast<int8>(one[j] + two[j]));
            value += effect[j] * g.back();
        }
        f.geno.push_back(g);
        f.tbv.push_back(value);
    };
    const auto gamete = [&](std::size_t parent) {
        std::vector<int8> g;
        std::size_t side = 0;
        for (std::size_t j = 0; j < nsnp; ++j) {
            if (j % 50 == 0) side = random() & 1;
            if (random() % 50 == 0) side = 1 - side;
            g.push_back(strands[2 * parent + side][j]);
        }
        return g;
    };
    f.tbv.push_back(0);
    for (std::size_t i = 1; i <= nparents; ++i) add(strands[2 * i], strands[2 * i + 1]);
    for (std::size_t k = 0; k < 600; ++k) {
        const std::size_t sire = 2 * (k / 10) + 1, dam = sire + 1;
        add(gamete(sire), gamete(dam));
        animal sib{static_cast<int64>(sire), static_cast<int64>(dam), 1, -99};
        if (k % 10 < 6) sib.phenotype = f.tbv.back() + std::sqrt(1.5) * normal(random);
        f.sibs.push_back(sib);
    }
    return f;
}
} // namespace

// Unphenotyped full sibs have one pedigree estimate for all, which genomes tell apart; and genomic
// estimates of individuals outside training are as unbiased as those inside. Over 10 populations of
// 240 predicted sibs with accuracies around 0.5 and 0.6: the standard error of a mean correlation
// is about (1 - 0.3) / sqrt(2400) = 0.014, of a mean regression 1.4 / 49 = 0.03; allowed are 5 of
// them, and a lead of genomes over pedigree, on the same data, of at least 0.05.
TEST_F(pedigreeprediction, genomesbeatpedigreesbeatnothing)
{
    std::mt19937_64 random(4711);
    double bypedigree = 0, bygenome = 0, slopeinside = 0, slopeoutside = 0;
    const int nreplicates = 10;
    for (int r = 0; r < nreplicates; ++r) {
        const families f = makefamilies(random);
        std::vector<double> pedigreeebv, genomeebv, tbv, trainebv, traintbv;
        runquietly([&] {
            const phenotypedpedigree data = datafrom(f.sibs);
            double meaninbreeding = 0;
            const animalmodel a = solveanimalmodel(data, mendelianvariances(data, meaninbreeding),
                                                   1, 1.5, 10000, "f");
            genotypestore g;
            makegenotypestore(g, data.nobserved, 500);
            array1<double> y(data.nobserved);
            int64 n = 0;
            for (int64 i = 1; i <= data.n; ++i) {
                if (!data.observed(i)) continue;
                y(++n) = data.phenotype(i);
                packindividual(g, n, f.geno[static_cast<std::size_t>(i)].data());
            }
            computescales(g);
            const snpblup b = solvesnpblup(g, y, 1, 1.5, 1000, "f");
            for (int64 i = 121; i <= data.n; ++i) {
                const std::size_t at = static_cast<std::size_t>(i);
                double sum = 0;
                for (int64 j = 1; j <= 500; ++j)
                    sum += (f.geno[at][static_cast<std::size_t>(j - 1)] - 2 * g.freq(j)) / g.sd(j) *
                           b.solution(j);
                (data.observed(i) ? trainebv : genomeebv).push_back(sum);
                (data.observed(i) ? traintbv : tbv).push_back(f.tbv[at]);
                if (!data.observed(i)) pedigreeebv.push_back(a.ebv(i));
            }
        });
        bypedigree += correlation(tbv, pedigreeebv) / nreplicates;
        bygenome += correlation(tbv, genomeebv) / nreplicates;
        slopeinside +=
            covariance(traintbv, trainebv) / covariance(trainebv, trainebv) / nreplicates;
        slopeoutside += covariance(tbv, genomeebv) / covariance(genomeebv, genomeebv) / nreplicates;
    }
    EXPECT_GT(bypedigree, 0.07);
    EXPECT_GT(bygenome, bypedigree + 0.05);
    EXPECT_NEAR(slopeinside, 1, 0.15);
    EXPECT_NEAR(slopeoutside, 1, 0.15);
}

// Mrode, Linear Models for the Prediction of Animal Breeding Values, Example 3.1 (chapter 3):
// weaning gain of five calves, eight animals, variances 20 and 40, sex as the fixed effect. The
// solutions given there are 4.358 for males and 3.404 for females, and the breeding values below.
// This program fits a mean only; but once the phenotypes are cleared of the solutions for sex, the
// mean that is left is 0 and the breeding values are the same, since the mean lies in the space of
// the two sexes.
TEST_F(pedigreeprediction, textbookexample)
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
