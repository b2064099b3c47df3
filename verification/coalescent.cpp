// The coalescent against its theory, worked out here by other means, and against another program's
// figures. Seeds are fixed; bounds are five standard errors, which a good program misses with fewer
// than one seed in a million, for each comparison.
#include "macs/simulate.h"

#include "testsupport.h"
#include "textlayout.h"

#include <algorithm>
#include <cmath>
#include <numeric>

using namespace macs;

namespace
{
// Mean and standard error of independent values.
struct sample {
    double n = 0, sum = 0, sumsq = 0;
    void add(double x)
    {
        ++n;
        sum += x;
        sumsq += x * x;
    }
    double mean() const { return sum / n; }
    double variance() const { return (sumsq - sum * sum / n) / (n - 1); }
    double error() const { return std::sqrt(variance() / n); }
};

void expectmean(const sample &s, double expected, const std::string &what)
{
    EXPECT_NEAR(s.mean(), expected, 5 * s.error()) << what;
    EXPECT_LT(s.error(), 0.02 * expected) << what << ": too few to tell";
}

int64 ndescendants(const marginaltree &tree, nodeid node)
{
    std::string alleles(static_cast<std::size_t>(tree.nhaplotypes), '0');
    std::vector<nodeid> stack;
    markdescendants(tree, node, alleles.data(), stack);
    return std::count(alleles.begin(), alleles.end(), '1');
}

struct expectedsites {
    std::vector<double> of; // sites with i derived alleles, i = 1..n-1
    double total = 0, variance = 0;
};

// Without recombination, by the number of lineages k as a death process:
// dP(k)/dtau = -k(k-1)/2 P(k) + (k+1)k/2 P(k+1), and the same for M(k) = E(length so far; k), which
// grows by k P(k) d time as well; d time = size/2 d tau. Then E(length) is the integral of k P(k),
// E(length^2) that of 2 k M(k), and Fu's (1995) chance that one of k lineages has i of n
// descendants is C(n-i-1, k-2)/C(n-1, k-1). Midpoint rule in steps of time, until two are left with
// a chance of 1e-9.
expectedsites expectsites(std::size_t n, double theta, const std::vector<sizechange> &changes)
{
    std::vector<double> p(n + 2, 0.0), m(n + 2, 0.0), lengthwith(n + 2, 0.0);
    p[n] = 1;
    const double step = 5e-4;
    const auto slope = [](const std::vector<double> &at, double k) {
        const auto i = static_cast<std::size_t>(k);
        return -k * (k - 1) / 2 * at[i] + (k + 1) * k / 2 * at[i + 1];
    };
    double squaredlength = 0;
    for (double time = 0; p[1] < 1 - 1e-9; time += step) {
        double size = 1;
        for (const sizechange &c : changes)
            if (time + step / 2 > c.time) size = c.size;
        const double dtau = step * 2 / size;
        std::vector<double> halfp = p, halfm = m;
        for (std::size_t k = 1; k <= n; ++k) {
            const double grown = k > 1 ? static_cast<double>(k) * p[k] : 0;
            halfp[k] += dtau / 2 * slope(p, k);
            halfm[k] += dtau / 2 * slope(m, k) + step / 2 * grown;
        }
        for (std::size_t k = 1; k <= n; ++k) {
            const double grown = k > 1 ? static_cast<double>(k) * step : 0;
            p[k] += dtau * slope(halfp, k);
            m[k] += dtau * slope(halfm, k) + grown * halfp[k];
            lengthwith[k] += grown * halfp[k];
            squaredlength += 2 * grown * halfm[k];
        }
    }
    const auto choose = [](double a, double b) {
        return b > a ? 0
                     : std::exp(std::lgamma(a + 1) - std::lgamma(b + 1) - std::lgamma(a - b + 1));
    };
    expectedsites expected{std::vector<double>(n, 0.0)};
    for (std::size_t k = 2; k <= n; ++k) {
        expected.total += theta * lengthwith[k];
        for (std::size_t i = 1; i < n; ++i)
            expected.of[i] +=
                theta * lengthwith[k] * choose(n - i - 1.0, k - 2.0) / choose(n - 1.0, k - 1.0);
    }
    expected.variance =
        expected.total + theta * theta * squaredlength - expected.total * expected.total;
    return expected;
}
} // namespace

// At constant size E(S) = theta a1, Var(S) = theta a1 + theta^2 a2 (Watterson 1975), and E(sites
// with i derived) = theta/i. Recombination leaves all means as they were: any fault in the choice
// of the point, the time or the lineage draws the trees away from the coalescent's, and the
// spectrum with them. rho = 20 and lengths of 3 to 15 give some hundred recombinations a
// chromosome.
TEST(coalescent, sitesagreewiththeory)
{
    const std::size_t n = 8;
    const double theta = 6;
    const expectedsites even = expectsites(n, theta, {});
    EXPECT_NEAR(even.of[3], theta / 3, 1e-3);
    EXPECT_NEAR(even.total, theta * 2.592857, 1e-3);
    EXPECT_NEAR(even.variance, theta * 2.592857 + theta * theta * 1.511797, 1e-2);
    for (const auto &changes :
         {std::vector<sizechange>{}, std::vector<sizechange>{{0.1, 4}, {0.4, 1.5}, {1, 6}}}) {
        const expectedsites expected = expectsites(n, theta, changes);
        const sizehistory history(changes);
        for (const double rho : {0.0, 20.0}) {
            SCOPED_TRACE(freeline(static_cast<int64>(changes.size()), rho));
            std::vector<sample> of(n);
            sample total, squares; // squares of the total's distance from its expected mean
            chromosomerates rates{theta, rho, {}};
            randomstream random(7);
            marginaltree tree;
            for (int i = 0; i < (rho > 0 ? 8000 : 40000); ++i) {
                std::vector<double> counts(n, 0.0);
                listeners told;
                told.site = [&](const marginaltree &now, double, double, nodeid node) {
                    ++counts[static_cast<std::size_t>(ndescendants(now, node))];
                };
                simulatechromosome(tree, n, rates, history, random, told);
                for (std::size_t k = 1; k < n; ++k) of[k].add(counts[k]);
                const double sites = std::accumulate(counts.begin(), counts.end(), 0.0);
                total.add(sites);
                squares.add((sites - expected.total) * (sites - expected.total));
            }
            for (std::size_t k = 1; k < n; ++k)
                expectmean(of[k], expected.of[k], "sites with " + std::to_string(k));
            expectmean(total, expected.total, "sites");
            if (rho == 0) expectmean(squares, expected.variance, "variance of sites");
        }
    }
}

// Each region's crossings: rho x ratio x width x E(length), E(length) = a1 = 2.829 for 10
// haplotypes. Of the gap between the regions the ratio is 1, and none falls where it is 0.
TEST(coalescent, crossingsfallwheretheratiossay)
{
    chromosomerates rates{0, 10,
                          ratesfromregions({{0.1, 0.3, 2.75}, {0.3, 0.5, 0}, {0.6, 0.62, 20}})};
    const std::vector<rateregion> expected = {{0, 0.1, 1},   {0.1, 0.3, 2.75}, {0.3, 0.5, 0},
                                              {0.5, 0.6, 1}, {0.6, 0.62, 20},  {0.62, 1, 1}};
    std::vector<sample> found(expected.size());
    const sizehistory history;
    randomstream random(11);
    marginaltree tree;
    for (int i = 0; i < 6000; ++i) {
        std::vector<double> counts(expected.size(), 0.0);
        double last = 0;
        listeners told;
        told.recombination = [&](const marginaltree &, double position, bool) {
            ASSERT_GE(position, last);
            last = position;
            std::size_t r = 0;
            while (position >= expected[r].stop) ++r;
            ++counts[r];
        };
        simulatechromosome(tree, 10, rates, history, random, told);
        for (std::size_t r = 0; r < counts.size(); ++r) found[r].add(counts[r]);
    }
    for (std::size_t r = 0; r < expected.size(); ++r) {
        const rateregion &e = expected[r];
        const double mean = 10 * e.ratio * (e.stop - e.start) * 2.828968;
        if (mean > 0) {
            expectmean(found[r], mean, "region " + std::to_string(r));
        } else {
            EXPECT_EQ(found[r].sum, 0);
        }
    }
}

namespace
{
double sharedfrequency(const std::string &a, const std::string &b)
{
    double both = 0;
    for (std::size_t i = 0; i < a.size(); ++i) both += a[i] == '1' && b[i] == '1';
    return both / static_cast<double>(a.size());
}
} // namespace

// Mean r2 of the pairs of sites whose minor alleles are above 0.1, by distance in steps of rho, one
// value a chromosome. Expected is what another implementation of the same process gives: scrm 1.7.4
// with -l 0, 120,000 chromosomes, standard errors below 0.1 %. Were the freed lineage never to
// rejoin its branch, the first two would come out 2 to 3 % lower.
TEST(coalescent, linkagefallswithdistance)
{
    const double rho = 40, steps[] = {0, 1, 4, 12},
                 expected[] = {0.44529, 0.26468, 0.17329, 0.11792};
    sample linkage[4];
    const sizehistory history({{0.1, 3}, {0.5, 1}, {1.5, 4}});
    chromosomerates rates{10, rho, {}};
    randomstream random(2);
    marginaltree tree;
    std::vector<nodeid> stack;
    for (int i = 0; i < 4000; ++i) {
        std::vector<std::pair<double, std::string>> sites; // position in steps of rho, alleles
        sample here[4];
        listeners told;
        told.site = [&](const marginaltree &now, double position, double, nodeid node) {
            std::string alleles(16, '0');
            markdescendants(now, node, alleles.data(), stack);
            const double q = sharedfrequency(alleles, alleles);
            if (std::min(q, 1 - q) <= 0.1) return;
            for (const auto &[place, other] : sites) {
                std::size_t d = 3;
                while (position * rho - place < steps[d]) --d;
                const double p = sharedfrequency(other, other);
                const double excess = sharedfrequency(other, alleles) - p * q;
                here[d].add(excess * excess / (p * (1 - p) * q * (1 - q)));
            }
            sites.emplace_back(position * rho, alleles);
        };
        simulatechromosome(tree, 16, rates, history, random, told);
        for (std::size_t d = 0; d < 4; ++d)
            if (here[d].n > 0) linkage[d].add(here[d].mean());
    }
    for (std::size_t d = 0; d < 4; ++d)
        expectmean(linkage[d], expected[d], "distance class " + std::to_string(d));
}
