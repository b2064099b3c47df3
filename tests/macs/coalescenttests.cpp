// The coalescent itself: its trees stay whole, and what it makes agrees with coalescent theory,
// worked out here by other means. Seeds are fixed; bounds are five standard errors, which a
// good program misses with fewer than one seed in a million, for each comparison.
#include "macs/simulate.h"

#include "testsupport.h"
#include "words.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <sstream>
#include <utility>

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

// Everything that is kept twice agrees, and all haplotypes hang on the root.
void checktree(const marginaltree &tree)
{
    const nodeid n = tree.nhaplotypes;
    double total = 0;
    for (nodeid i = 0; i < 2 * n - 1; ++i) {
        const nodeid above = tree.parent[i];
        ASSERT_EQ(above == nonode, i == tree.root);
        const double length = tree.lengths.get(static_cast<std::size_t>(i));
        if (above == nonode) {
            ASSERT_EQ(length, 0);
            continue;
        }
        ASSERT_TRUE((tree.child[0][above] == i) != (tree.child[1][above] == i));
        ASSERT_LE(tree.tau[i], tree.tau[above]);
        ASSERT_EQ(length, std::max(0.0, tree.time[above] - tree.time[i]));
        total += length;
    }
    ASSERT_NEAR(totallength(tree), total, 1e-12 * total);
    ASSERT_EQ(tree.coalescenode.size(), static_cast<std::size_t>(n - 1));
    ASSERT_TRUE(std::is_sorted(tree.coalescetau.begin(), tree.coalescetau.end()));
    std::vector<nodeid> nodes = tree.coalescenode;
    for (std::size_t i = 0; i < nodes.size(); ++i)
        ASSERT_EQ(tree.tau[nodes[i]], tree.coalescetau[i]);
    std::sort(nodes.begin(), nodes.end());
    for (nodeid i = 0; i < n - 1; ++i) ASSERT_EQ(nodes[i], n + i);
    ASSERT_EQ(ndescendants(tree, tree.root), n);
}

// E(number of sites with i derived alleles), i = 1..n-1, by the number of lineages as a death
// process: dP(k)/dtau = -k(k-1)/2 P(k) + (k+1)k/2 P(k+1), its expected times in real time by
// d time = size/2 d tau, and Fu's (1995) chance that one of k lineages has i of n descendants,
// C(n-i-1, k-2)/C(n-1, k-1). Steps of time, midpoint rule, until two are left with a chance of
// 1e-9.
std::vector<double> expectedspectrum(std::size_t n, double theta,
                                     const std::vector<sizechange> &changes)
{
    std::vector<double> p(n + 2, 0.0), lengthwith(n + 2, 0.0);
    p[n] = 1;
    const double step = 5e-4;
    auto slope = [&](const std::vector<double> &at, std::size_t k) {
        const double x = static_cast<double>(k);
        return -x * (x - 1) / 2 * at[k] + (x + 1) * x / 2 * at[k + 1];
    };
    for (double time = 0; p[1] < 1 - 1e-9; time += step) {
        double size = 1;
        for (const sizechange &c : changes)
            if (time + step / 2 > c.time) size = c.size;
        const double dtau = step * 2 / size;
        std::vector<double> half = p, whole = p;
        for (std::size_t k = 1; k <= n; ++k) half[k] += dtau / 2 * slope(p, k);
        for (std::size_t k = 1; k <= n; ++k) whole[k] += dtau * slope(half, k);
        for (std::size_t k = 2; k <= n; ++k)
            lengthwith[k] += static_cast<double>(k) * step * half[k];
        p = whole;
    }
    auto choose = [](double a, double b) {
        return b < 0 || b > a
                   ? 0
                   : std::exp(std::lgamma(a + 1) - std::lgamma(b + 1) - std::lgamma(a - b + 1));
    };
    std::vector<double> spectrum(n, 0.0);
    const double m = static_cast<double>(n);
    for (std::size_t i = 1; i < n; ++i)
        for (std::size_t k = 2; k <= n; ++k) {
            const double x = static_cast<double>(k);
            spectrum[i] += theta * lengthwith[k] * choose(m - static_cast<double>(i) - 1, x - 2) /
                           choose(m - 1, x - 1);
        }
    return spectrum;
}

struct spectrumsample {
    sample total;
    sample squares; // of the total's distance from its expected mean: their mean is the variance
    std::vector<sample> of; // by the number of derived alleles
};

spectrumsample simulatespectrum(nodeid n, double theta, double rho,
                                const std::vector<sizechange> &changes, int64 ntimes,
                                double expectedtotal = 0)
{
    spectrumsample result;
    result.of.resize(static_cast<std::size_t>(n));
    const sizehistory history(changes);
    chromosomerates rates{theta, rho, {}};
    randomstream random(7);
    marginaltree tree;
    std::vector<int64> counts;
    listeners told;
    told.site = [&](const marginaltree &now, double, double, nodeid node) {
        ++counts[static_cast<std::size_t>(ndescendants(now, node))];
    };
    for (int64 i = 0; i < ntimes; ++i) {
        counts.assign(static_cast<std::size_t>(n), 0);
        simulatechromosome(tree, n, rates, history, random, told);
        for (std::size_t k = 1; k < counts.size(); ++k)
            result.of[k].add(static_cast<double>(counts[k]));
        const auto total =
            static_cast<double>(std::accumulate(counts.begin(), counts.end(), int64{0}));
        result.total.add(total);
        result.squares.add((total - expectedtotal) * (total - expectedtotal));
    }
    return result;
}
} // namespace

TEST(macscoalescent, treestayswhole)
{
    const sizehistory history({{0.05, 3}, {0.2, 0.1}, {1, 20}});
    randomstream random(3);
    for (const nodeid n : {2, 3, 5, 60}) {
        marginaltree tree;
        buildtree(tree, n, history, random);
        int64 nchanges = 0;
        for (int i = 0; i < 3000; ++i) {
            nchanges += recombine(tree, history, random);
            ASSERT_NO_FATAL_FAILURE(checktree(tree)) << n << " haplotypes, recombination " << i;
        }
        EXPECT_GT(nchanges, 1000);
        EXPECT_LT(nchanges, 3000);
    }
}

TEST(macscoalescent, scalesoftimearetwins)
{
    // By hand: rate 2 up to 0.5, 1 up to 2, then 0.25; taus 1 and 2.5. Order of changes is free.
    const sizehistory history({{2, 8}, {0.5, 2}});
    for (const auto &[time, tau] :
         {std::pair{0.25, 0.5}, {0.5, 1.0}, {1.0, 1.5}, {2.0, 2.5}, {6.0, 3.5}}) {
        EXPECT_DOUBLE_EQ(history.tauattime(time), tau);
        EXPECT_DOUBLE_EQ(history.timeattau(tau), time);
    }
}

// Without recombination and at constant size: E(S) = theta a1, Var(S) = theta a1 + theta^2 a2
// (Watterson 1975), E(sites with i derived) = theta/i.
TEST(macscoalescent, sitesagreewithconstantsize)
{
    const double theta = 5;
    const nodeid n = 10;
    double a1 = 0, a2 = 0;
    for (int i = 1; i < n; ++i) {
        a1 += 1.0 / i;
        a2 += 1.0 / (i * i);
    }
    const spectrumsample found = simulatespectrum(n, theta, 0, {}, 40000, theta * a1);
    for (int i = 1; i < n; ++i)
        expectmean(found.of[static_cast<std::size_t>(i)], theta / i, "sites with " + numbertext(i));
    expectmean(found.total, theta * a1, "sites");
    expectmean(found.squares, theta * a1 + theta * theta * a2, "variance of sites");
}

// Recombination leaves all means as they were: any fault in the choice of the point, the time or
// the lineage draws the trees away from the coalescent's, and the spectrum with them. rho = 20
// and lengths of 3 to 15 give some hundred recombinations a chromosome.
TEST(macscoalescent, spectrumagreeswithsizechangesandrecombination)
{
    const std::vector<sizechange> shrunk = {{0.1, 4}, {0.4, 1.5}, {1, 6}};
    const nodeid n = 8;
    const double theta = 6;
    for (const auto &changes : {std::vector<sizechange>{}, shrunk}) {
        const std::vector<double> expected = expectedspectrum(n, theta, changes);
        for (std::size_t i = 1; i < n && changes.empty(); ++i)
            ASSERT_NEAR(expected[i], theta / static_cast<double>(i), 1e-3);
        for (const double rho : {0.0, 20.0}) {
            const spectrumsample found =
                simulatespectrum(n, theta, rho, changes, rho > 0 ? 8000 : 40000);
            const std::string what = numbertext(static_cast<int64>(changes.size())) +
                                     " size changes, rho " + numbertext(static_cast<int64>(rho));
            for (std::size_t i = 1; i < n; ++i)
                expectmean(found.of[i], expected[i], what + ", sites with " + std::to_string(i));
            expectmean(found.total, std::accumulate(expected.begin(), expected.end(), 0.0), what);
        }
    }
}

namespace
{
// Variance of the mean tree length along a chromosome of two haplotypes, 2 times the integral
// of (1-x) Cov(x) over x from 0 to 1. At constant size the length is tau, exponential with mean
// 1. g(tau, x) = E(tau at x | tau at 0) follows dg/dx = rho tau (Kg - g), where K is what one
// recombination makes of tau: the freed lineage starts evenly below tau and meets either of
// two lineages at rate 1 each below tau, and one above, so that the new t has density
// (1 - exp(-2t))/(2 tau) below tau, exp(-(t - tau)) (1 - exp(-2 tau))/(2 tau) above, and t = tau
// has the chance 1/2 - (1 - exp(-2 tau))/(4 tau). On a grid, trapezoidal, by Heun's steps.
double varianceofmeanlength(double rho)
{
    const std::size_t m = 2000, nsteps = 1000;
    const double h = 0.01, dx = 1.0 / static_cast<double>(nsteps);
    std::vector<double> tau(m), g(m), first(m), second(m), middle(m), below(m), above(m);
    for (std::size_t i = 0; i < m; ++i) g[i] = tau[i] = h * static_cast<double>(i);
    auto slope = [&](const std::vector<double> &at, std::vector<double> &result) {
        auto lower = [&](std::size_t i) { return (1 - std::exp(-2 * tau[i])) * at[i]; };
        below[0] = 0;
        for (std::size_t i = 1; i < m; ++i)
            below[i] = below[i - 1] + h / 2 * (lower(i - 1) + lower(i));
        above[m - 1] = at[m - 1] + 1; // beyond the grid g hardly differs from its end
        for (std::size_t i = m - 1; i-- > 0;)
            above[i] = std::exp(-h) * above[i + 1] + h / 2 * (at[i] + std::exp(-h) * at[i + 1]);
        result[0] = 0;
        for (std::size_t i = 1; i < m; ++i) {
            const double reach = (1 - std::exp(-2 * tau[i])) / (2 * tau[i]);
            const double made =
                below[i] / (2 * tau[i]) + reach * above[i] + (0.5 - reach / 2) * at[i];
            result[i] = rho * tau[i] * (made - at[i]);
        }
    };
    auto covariance = [&] {
        double sum = 0;
        for (std::size_t i = 0; i < m; ++i) sum += h * std::exp(-tau[i]) * tau[i] * g[i];
        return sum - 1;
    };
    double integral = 0;
    for (std::size_t step = 0; step <= nsteps; ++step) {
        const double x = dx * static_cast<double>(step);
        integral += (step == 0 ? dx / 2 : dx) * (1 - x) * covariance(); // 0 at the far end
        slope(g, first);
        for (std::size_t i = 0; i < m; ++i) middle[i] = g[i] + dx * first[i];
        slope(middle, second);
        for (std::size_t i = 0; i < m; ++i) g[i] += dx / 2 * (first[i] + second[i]);
    }
    return 2 * integral;
}
} // namespace

// Two haplotypes: Var(S) = theta + theta^2 V(rho), where V tells how fast trees change along the
// chromosome. V(4) is 0.568; were the own branch never rejoined, it would come to some 0.507.
TEST(macscoalescent, treeschangealongthechromosomeastheyshould)
{
    const double theta = 50;
    for (const double rho : {1.0, 4.0}) {
        const spectrumsample found = simulatespectrum(2, theta, rho, {}, 40000, theta);
        expectmean(found.total, theta, "sites");
        expectmean(found.squares, theta + theta * theta * varianceofmeanlength(rho),
                   "variance of sites, rho " + std::to_string(rho));
    }
}

// Each region's crossings: rho x ratio x width x E(length), E(length) = a1 = 2.829 for 10
// haplotypes. Of the gap between the regions the ratio is 1, and none falls where it is 0.
TEST(macscoalescent, crossingsfallwheretheratiossay)
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
// Sites of one chromosome in order, and the mean r2 of their pairs by distance in steps of rho:
// one value a chromosome, from sites whose minor allele is above 0.1.
struct chromosomesites {
    std::vector<double> positions;
    std::vector<std::string> alleles; // of all haplotypes
};
constexpr std::size_t ndistances = 4;
constexpr double distancesteps[ndistances] = {0, 1, 4, 12};

double sharedfrequency(const std::string &a, const std::string &b)
{
    double both = 0;
    for (std::size_t i = 0; i < a.size(); ++i) both += a[i] == '1' && b[i] == '1';
    return both / static_cast<double>(a.size());
}

void addlinkage(const chromosomesites &sites, double rho, std::vector<sample> &linkage)
{
    std::vector<sample> here(ndistances);
    for (std::size_t j = 0; j < sites.positions.size(); ++j) {
        const double q = sharedfrequency(sites.alleles[j], sites.alleles[j]);
        if (std::min(q, 1 - q) <= 0.1) continue;
        for (std::size_t i = 0; i < j; ++i) {
            const double p = sharedfrequency(sites.alleles[i], sites.alleles[i]);
            if (std::min(p, 1 - p) <= 0.1) continue;
            const double distance = (sites.positions[j] - sites.positions[i]) * rho;
            std::size_t d = ndistances - 1;
            while (distance < distancesteps[d]) --d;
            const double excess = sharedfrequency(sites.alleles[i], sites.alleles[j]) - p * q;
            here[d].add(excess * excess / (p * (1 - p) * q * (1 - q)));
        }
    }
    for (std::size_t d = 0; d < ndistances; ++d)
        if (here[d].n > 0) linkage[d].add(here[d].mean());
}

// The output of scrm: a line of positions, then one line of alleles a haplotype.
std::vector<sample> linkageofscrm(const std::string &out, double rho)
{
    std::vector<sample> linkage(ndistances);
    chromosomesites sites;
    std::istringstream in(out + "\n//");
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("//")) addlinkage(std::exchange(sites, {}), rho, linkage);
        if (line.starts_with("positions:")) {
            sites.positions = numbersof(line.substr(10));
            sites.alleles.resize(sites.positions.size());
        } else if (!sites.positions.empty() && line.size() == sites.positions.size()) {
            for (std::size_t i = 0; i < line.size(); ++i) sites.alleles[i] += line[i];
        }
    }
    return linkage;
}
} // namespace

// Linkage by distance as another implementation of the same process makes it: 1,200 chromosomes of
// 16 haplotypes on each side, bounds of 5 standard errors of the difference, each error within 1.5%
// of r2.
TEST(macscoalescent, linkagefallswithdistance)
{
    if (runcommand("command -v scrm").status != 0) GTEST_SKIP() << "scrm is not installed";
    const double rho = 40;
    const std::vector<sample> theirs = linkageofscrm(
        runcommand("scrm 16 1200 -t 10 -r 40 1000000 -l 0 -seed 1 -eN 0.1 3 -eN 0.5 1 -eN 1.5 4")
            .out,
        rho);
    std::vector<sample> ours(ndistances);
    const sizehistory history({{0.1, 3}, {0.5, 1}, {1.5, 4}});
    chromosomerates rates{10, rho, {}};
    randomstream random(2);
    marginaltree tree;
    std::vector<nodeid> stack;
    for (int i = 0; i < 1200; ++i) {
        chromosomesites sites;
        listeners told;
        told.site = [&](const marginaltree &now, double position, double, nodeid node) {
            sites.positions.push_back(position);
            sites.alleles.emplace_back(16, '0');
            markdescendants(now, node, sites.alleles.back().data(), stack);
        };
        simulatechromosome(tree, 16, rates, history, random, told);
        addlinkage(sites, rho, ours);
    }
    for (std::size_t d = 0; d < ndistances; ++d) {
        const double error = std::hypot(ours[d].error(), theirs[d].error());
        EXPECT_NEAR(ours[d].mean(), theirs[d].mean(), 5 * error) << "distance class " << d;
        EXPECT_LT(error, 0.015 * ours[d].mean()) << "distance class " << d;
    }
}
