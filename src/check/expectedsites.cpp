#include "check/expectedsites.h"

#include "founders/simulatedsites.h"
#include "genomes.h"
#include "textlayout.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace
{
// Words of the parameter text, each a number behind an option.
class optionreader
{
  public:
    optionreader(const std::string &text, std::string &whyrefused)
        : words(text), refused(whyrefused)
    {
    }
    bool next(std::string &word) { return static_cast<bool>(words >> word); }
    double number(const std::string &option)
    {
        std::string word;
        double value = 0;
        if ((!next(word) || !readreal(word, value) || !std::isfinite(value)) && refused.empty())
            refused = "a number is wanted behind " + option;
        return value;
    }

  private:
    std::istringstream words;
    std::string &refused;
};

void refuse(coalescentrun &run, const std::string &reason)
{
    if (run.refused.empty()) run.refused = reason;
}

void readoption(coalescentrun &run, optionreader &in, const std::string &option)
{
    if (option == "-eN") {
        coalescentrun::sizechange change;
        change.time = in.number(option);
        change.size = in.number(option);
        if (!(change.size > 0)) refuse(run, "the size of -eN must be positive");
        run.sizes.push_back(change);
    } else if (option == "-t") {
        run.mutationrate = in.number(option);
    } else if (option == "-r") {
        run.recombinationrate = in.number(option);
    } else if (option == "-s" || option == "-h" || option == "-i") {
        in.number(option);
    } else {
        run.unknown = true;
        refuse(run, "\"" + option + "\" is no option of macs");
    }
}
} // namespace

coalescentrun parsecoalescent(int64 nhaps, const std::string &macsparams)
{
    coalescentrun run;
    run.nhaps = nhaps;
    optionreader in(macsparams, run.refused);
    run.length = in.number("the number of haplotypes");
    std::string option;
    while (!run.unknown && in.next(option)) readoption(run, in, option);
    if (nhaps < 2) refuse(run, "NumberOfHaplotypes must be 2 or more");
    if (!(run.length > 0)) refuse(run, "ChromosomeLengthBasesMaCS must be positive");
    std::sort(run.sizes.begin(), run.sizes.end(),
              [](const auto &a, const auto &b) { return a.time < b.time; });
    return run;
}

namespace
{
struct epoch {
    double tau, size; // where it begins
};

std::vector<epoch> epochsof(const std::vector<coalescentrun::sizechange> &sizes)
{
    std::vector<epoch> epochs{{0, 1}};
    double time = 0;
    for (const auto &change : sizes) {
        const epoch &last = epochs.back();
        epochs.push_back({last.tau + 2 * (change.time - time) / last.size, change.size});
        time = change.time;
    }
    return epochs;
}

// Integral of exp(-rate tau) over time, with rate i(i-1)/2: the expected time until two of i lineages
// meet.
double timetofirst(const std::vector<epoch> &epochs, double i)
{
    const double rate = i * (i - 1) / 2;
    double integral = 0;
    for (std::size_t e = 0; e < epochs.size(); ++e) {
        const double end = e + 1 < epochs.size() ? std::exp(-rate * epochs[e + 1].tau) : 0;
        integral += epochs[e].size / 2 * (std::exp(-rate * epochs[e].tau) - end) / rate;
    }
    return integral;
}
} // namespace

double expectedtreelength(int64 nhaps, const std::vector<coalescentrun::sizechange> &sizes)
{
    const std::vector<epoch> epochs = epochsof(sizes);
    const double n = static_cast<double>(nhaps);
    double ratio = 1, length = 0; // ratio: n[i]/n(i)
    for (double i = 1; i <= n; ++i) {
        ratio *= (n - i + 1) / (n + i - 1);
        if (static_cast<int64>(i) % 2 != 0) continue;
        if (ratio * i * n < 1e-12) break; // those that follow add nothing
        length += 2 * (2 * i - 1) * ratio * timetofirst(epochs, i);
    }
    return length;
}

std::vector<double> spectrum(int64 nhaps, const std::vector<coalescentrun::sizechange> &sizes)
{
    const std::vector<epoch> epochs = epochsof(sizes);
    const double n = static_cast<double>(nhaps);
    std::vector<double> times; // j = 2, 3, ...
    for (double j = 2; j <= n; ++j) times.push_back(timetofirst(epochs, j));
    std::vector<double> shares;
    double sum = 0;
    for (double b = 1; b < n; ++b) {
        double before = 6 / (n + 1), weight = 30 * (n - 2 * b) / ((n + 1) * (n + 2));
        double sites = before * times[0] + (nhaps > 2 ? weight * times[1] : 0);
        for (double j = 2; j <= n - 2; ++j) {
            const double next =
                -(1 + j) * (3 + 2 * j) * (n - j) / (j * (2 * j - 1) * (n + j + 1)) * before +
                (3 + 2 * j) * (n - 2 * b) / (j * (n + j + 1)) * weight;
            before = weight;
            weight = next;
            sites += weight * times[static_cast<std::size_t>(j)];
        }
        shares.push_back(std::max(sites, 0.0));
        sum += shares.back();
    }
    for (double &share : shares) share /= sum;
    return shares;
}

namespace
{
// How much of the variance of a tree's length is left in its average along the chromosome: the
// correlation of two trees at a distance of rho, (rho + 18) / (rho^2 + 13 rho + 18) for a pair of
// lineages (Hudson 1983), averaged over all pairs of places. More lineages, and larger sizes in the
// past, leave less.
double shareofvariance(double rho)
{
    constexpr int nsteps = 2000;
    double sum = 0;
    for (int k = 0; k < nsteps; ++k) {
        const double x = rho * (k + 0.5) / nsteps;
        sum += 2 * (1 - (k + 0.5) / nsteps) * (x + 18) / (x * x + 13 * x + 18) / nsteps;
    }
    return sum;
}

// Squared coefficient of variation of the length of one tree: Watterson's at constant size; with
// another history that of two lineages at constant size, which is more.
double treevariation(const coalescentrun &run)
{
    if (!run.sizes.empty()) return 1;
    double mean = 0, variance = 0;
    for (int64 k = 1; k < run.nhaps; ++k) {
        mean += 1 / static_cast<double>(k);
        variance += 1 / static_cast<double>(k) / static_cast<double>(k);
    }
    return variance / (mean * mean);
}

int64 inwholeblocks(double nsites)
{
    return std::max<int64>(static_cast<int64>(nsites) / lociperblock, 0) * lociperblock;
}
} // namespace

expectedsites expectsites(const state &s, const coalescentrun &run)
{
    expectedsites sites;
    const double treelength = expectedtreelength(run.nhaps, run.sizes);
    sites.simulated = run.mutationrate * run.length * treelength;
    sites.recombinations = run.recombinationrate * run.length * treelength;
    const double mutations = static_cast<double>(s.founders.ndenovomutperchr);
    const double share = compressioninforce(s) ? s.founders.genomecompression / 100 : 1;
    sites.kept = share * sites.simulated + mutations;
    if (sites.simulated > 0)
        sites.variation =
            std::sqrt(treevariation(run) * shareofvariance(run.recombinationrate * run.length) +
                      1 / sites.simulated);
    sites.included = inwholeblocks(sites.kept);
    sites.atmost = inwholeblocks(share * sites.simulated * (1 + 6 * sites.variation) +
                                 6 * std::sqrt(share * sites.simulated + 1) + mutations);
    return sites;
}

double shareinband(const coalescentrun &run, int64 nbase, double lowest, double highest)
{
    if (nbase < 1 || highest < lowest) return 0;
    // Frequencies hardly depend on the size of the sample; a smaller one is quicker.
    const int64 nsample = std::min<int64>(run.nhaps, 200);
    const double ngametes = 2 * static_cast<double>(nbase);
    const std::vector<double> shares = spectrum(nsample, run.sizes);
    double share = 0;
    for (std::size_t b = 1; b <= shares.size(); ++b) {
        const double f = static_cast<double>(b) / static_cast<double>(nsample);
        const double sd = std::sqrt(ngametes * f * (1 - f));
        // Chance of a count of copies up to a number, by the normal distribution.
        const auto upto = [&](double count) {
            return std::erfc((ngametes * f - count - 0.5) / (sd * std::sqrt(2.0))) / 2;
        };
        const double least = std::ceil(lowest * ngametes - 1e-9),
                     most = std::floor(highest * ngametes + 1e-9);
        double inside = upto(most) - upto(least - 1);
        inside += upto(ngametes - least) - upto(ngametes - most - 1);
        if (2 * most >= ngametes) inside -= upto(most) - upto(ngametes - most - 1); // seen twice
        share += shares[b - 1] * std::clamp(inside, 0.0, 1.0);
    }
    return share;
}

int64 atmostof(const expectedsites &sites, double share)
{
    const double mean = share * static_cast<double>(sites.included);
    return static_cast<int64>(mean * (1 + 6 * sites.variation) + 6 * std::sqrt(mean + 1));
}
