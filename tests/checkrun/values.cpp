// QTN, effects, and what follows from them: true values, phenotypes, variances, heritabilities.
//
// Effects and frequencies stand in the files with ten decimals, so sums of them are told within
// some 1e-10.
#include "checkrun/runfolder.h"

#include <algorithm>
#include <cmath>

namespace checkrun
{
namespace
{
using double2 = std::vector<double>;
constexpr double sumsoften = 3e-10; // of values with ten decimals

// A set of QTN. Effects are [QTN][distribution, trait], the normal ones first, from 0; substitution
// effects are the additive ones without dominance.
struct qtnset {
    std::string name, stem; // "UnrestrictedQtn", and with the folder
    int64 n = 0;
    textfile store;    // genotypes of all individuals
    double2 frequency; // in generation 1, or among the merged
    std::vector<double2> additive, dominance, substitution;

    int genotype(int64 i, int64 q) const
    {
        return store.line(i)[static_cast<std::size_t>(21 + 2 * q)] - '0';
    }
    std::vector<double> frequencies(const run &r, int64 g) const
    {
        std::vector<double> f;
        for (int64 q = 0; q < n; ++q) {
            int64 sum = 0;
            for (int64 i = r.first(g); i <= r.end(g); ++i) sum += genotype(i, q);
            f.push_back(double(sum) / (2.0 * double(r.size(g))));
        }
        return f;
    }
};

std::size_t cell(int64 k)
{
    return static_cast<std::size_t>(k);
}

// Where the QTN are, their frequencies, and the store of genotypes against the genomes.
qtnset readqtn(run &r, const std::string &name, const std::string &file)
{
    qtnset set{name, "SimulatedData/" + name, 0, {}, {}, {}, {}, {}};
    const std::string path = "SimulatedData/" + file, storepath = set.stem + "IndivGenotypes.txt";
    const textfile information = r.files.read(path);
    set.n = information.size() - 1;
    set.store = r.files.read(storepath);
    bool whole = r.told().equal({storepath}, "lines", r.nindiv, set.store.size()) && set.n > 0;
    for (const std::string_view line : set.store.lines)
        whole = whole && std::ssize(line) == 20 + 2 * set.n;
    if (!r.told().holds(whole, {storepath}, "a genotype for each QTN and individual")) {
        set.n = 0;
        return set;
    }
    const std::vector<genomesite> sites = r.sitesof(name);
    if (r.hasgenomes()) {
        if (!r.told().equal({path}, "QTN of all chromosomes", std::ssize(sites), set.n)) set.n = 0;
        r.files.allelesholds(
            storepath, 0, r.nindiv, set.n, [](int64 line) { return line; },
            [&](int64 line, int64 k) { return sites[cell(k - 1)].genotype(line); });
    }
    if (set.n > 0 && !r.merged) set.frequency = set.frequencies(r, 1);
    r.files.tableholds(path, 1, set.n, "QTN, chromosome, site, frequencies, position",
                       [&](int64 q, double2 &expected) {
                           expected.assign(cell(information.numbers(q + 1).size()), any);
                           expected[0] = double(q);
                           if (!r.merged) expected[4] = set.frequency[cell(q - 1)];
                           if (!r.hasgenomes()) return;
                           const genomesite &at = sites[cell(q - 1)];
                           expected[1] = double(at.h);
                           expected[2] = double(at.site);
                           if (!r.merged) expected[3] = at.on->maf[cell(at.site)];
                           expected[5] = at.on->position[cell(at.site)];
                           if (expected.size() == 8) expected[6] = at.on->mutation[cell(at.site)];
                       });
    if (r.merged) // counted among the merged individuals; the effects' reference all the same
        for (int64 q = 1; q <= set.n; ++q) set.frequency.push_back(information.numbers(q + 1)(5));
    return set;
}

// The columns of an effect file behind QTN, chromosome and site.
std::vector<double2> readeffects(run &r, const qtnset &set, const std::string &what, int64 ncolumns)
{
    std::vector<double2> effects;
    const textfile file = r.files.read(set.stem + what);
    r.told().equal({file.path}, "lines", set.n + 1, file.size());
    for (int64 q = 1; q <= set.n; ++q) {
        const numberline line = q < file.size() ? file.numbers(q + 1) : numberline{};
        r.told().equal({file.path, q + 1}, "QTN", q, line.whole(1));
        r.told().equal({file.path, q + 1}, "columns", 3 + ncolumns, line.size());
        effects.emplace_back();
        for (int64 k = 4; k <= 3 + ncolumns; ++k) effects.back().push_back(line(k));
    }
    return effects;
}

// Dominance effects are degrees of the additive ones' size; substitution effects a + d (1 - 2 p).
void checkeffects(run &r, qtnset &set)
{
    const int64 n = r.ntraits * (r.nmodels / 2); // columns of a block
    set.additive = readeffects(r, set, "AdditEffects.txt", n);
    set.substitution = set.additive;
    if (!r.dominance) return;
    set.dominance = readeffects(r, set, "DominEffects.txt", 2 * n);
    set.substitution = readeffects(r, set, "AverAlleleSubstEffects.txt", n);
    for (int64 q = 0; q < set.n; ++q)
        for (std::size_t k = 0; k < cell(n); ++k) {
            const double a = set.additive[cell(q)][k], d = set.dominance[cell(q)][k],
                         degree = set.dominance[cell(q)][k + cell(n)];
            r.told().near({set.stem + "DominEffects.txt", q + 2},
                          "dominance effect, degree x size of the additive one",
                          degree * std::fabs(a), d, sumsoften * (1 + std::fabs(degree)));
            if (!r.merged)
                r.told().near({set.stem + "AverAlleleSubstEffects.txt", q + 2},
                              "substitution effect, a + d (1 - 2 p)",
                              a + d * (1 - 2 * set.frequency[cell(q)]),
                              set.substitution[cell(q)][k], sumsoften);
        }
}

// ------------------------------------------------------------------------ values of individuals

constexpr const char *valuefile = "SimulatedData/PedigreeTbvTdvTpv.txt";

void readvalues(run &r)
{
    const int64 ncolumns = 4 + 3 * r.nmodels * r.ntraits;
    r.files.tableholds(valuefile, 1, r.nindiv, "generation, individual, sire, dam",
                       [&](int64 i, double2 &expected) {
                           expected.assign(cell(ncolumns), any);
                           const individual &one = r.of(i);
                           expected[0] = double(one.generation);
                           expected[1] = double(i);
                           expected[2] = double(one.parent[1]);
                           expected[3] = double(one.parent[2]);
                       });
    const textfile file = r.files.read(valuefile);
    r.values.assign(cell(r.nindiv) + 1, double2(cell(ncolumns), any));
    for (int64 i = 1; i <= std::min(r.nindiv, file.size() - 1); ++i) {
        r.values[cell(i)] = file.numbers(i + 1).values;
        r.values[cell(i)].resize(cell(ncolumns), any);
    }
}

// True breeding values are sums of effect x (genotype - 2 p); dominance deviations by genotype
// -2 p^2 d, 2 p q d, -2 q^2 d. Where a merge has counted frequencies anew the breeding values of
// individuals from one run differ by a constant from what the new ones give.
void checktruevalues(run &r, const qtnset &set, int64 model, std::size_t block)
{
    std::map<std::string, double> shift;
    for (int64 i = 1; i <= r.nindiv; ++i) {
        const bool own = r.ownvalues(r.of(i).generation);
        if (!own && r.dominance) {
            r.told().skip("values of merged individuals",
                          "with dominance they stand on frequencies that are gone");
            continue;
        }
        for (int64 t = 1; t <= r.ntraits; ++t) {
            const std::size_t k = block * cell(r.ntraits) + cell(t - 1);
            double tbv = 0, tdv = 0;
            for (int64 q = 0; q < set.n; ++q) {
                const double g = set.genotype(i, q), p = set.frequency[cell(q)];
                tbv += set.substitution[cell(q)][k] * (g - 2 * p);
                if (r.dominance)
                    tdv += set.dominance[cell(q)][k] * (g == 0   ? -2 * p * p
                                                        : g == 1 ? 2 * p * (1 - p)
                                                                 : -2 * (1 - p) * (1 - p));
            }
            const place where{valuefile, i + 1};
            const std::string which =
                " of trait " + std::to_string(t) + ", model " + std::to_string(model);
            if (!own)
                tbv += shift.try_emplace(r.of(i).path + which, r.value(i, 1, model, t) - tbv)
                           .first->second;
            r.told().near(where, "breeding value" + which, tbv, r.value(i, 1, model, t), sumsoften);
            r.told().near(where, "dominance deviation" + which, tdv, r.value(i, 2, model, t),
                          sumsoften);
        }
    }
}

// Residuals by the factor of their covariances: none beyond 7 standard deviations; mean and
// variance within 6 standard errors, which a good run misses once in 10^8.
void checkresiduals(run &r, int64 model, const std::vector<double2> &residual)
{
    for (int64 t = 1; t <= r.ntraits; ++t) {
        const double variance = residual[cell(t)][cell(t)], n = double(r.nindiv);
        const std::string which =
            " of residuals, trait " + std::to_string(t) + ", model " + std::to_string(model);
        double sum = 0, squares = 0;
        for (int64 i = 1; i <= r.nindiv; ++i) {
            const double e =
                r.value(i, 3, model, t) - r.value(i, 1, model, t) - r.value(i, 2, model, t);
            r.told().near({valuefile, i + 1}, "size" + which, 0, e,
                          7 * std::sqrt(variance) + tendecimals);
            sum += e;
            squares += e * e;
        }
        r.told().near({valuefile}, "mean" + which, 0, sum / n,
                      6 * std::sqrt(variance / n) + tendecimals);
        r.told().near({valuefile}, "variance" + which, variance, squares / n,
                      6 * variance * std::sqrt(2 / n) + 1.0 / n * variance * 6 + tendecimals);
    }
}

// ------------------------------------------------------------------------ variances

double2 column(const run &r, int64 g, int64 kind, int64 model, int64 trait)
{
    double2 x;
    for (int64 i = r.first(g); i <= r.end(g); ++i) x.push_back(r.value(i, kind, model, trait));
    return x;
}

// Residual covariances of a model, from 1, by their factor.
std::vector<double2> residualcovariances(run &r, int64 model)
{
    const textfile file = r.files.read("SimulatedData/TraitVarianceComponentsResidualCholQtnModel" +
                                       std::to_string(model) + ".txt");
    r.told().equal({file.path}, "lines", r.ntraits, file.size());
    std::vector<double2> e(cell(r.ntraits) + 1, double2(cell(r.ntraits) + 1, 0.0));
    for (int64 a = 1; a <= r.ntraits; ++a)
        for (int64 b = 1; b <= a; ++b)
            for (int64 c = 1; c <= b; ++c)
                e[cell(a)][cell(b)] = e[cell(b)][cell(a)] +=
                    file.numbers(std::min(a, file.size()))(c) *
                    file.numbers(std::min(b, file.size()))(c);
    return e;
}

// Seven lines per trait; the labels before the numbers count as a few columns that are none.
void checkcomponents(run &r, const std::vector<std::vector<double2>> &residual)
{
    const std::string path = "SimulatedData/TraitVarianceComponents.txt";
    const textfile file = r.files.read(path);
    r.told().equal({path}, "lines", 7 * r.ntraits, file.size());
    if (r.merged)
        r.told().skip("genetic variances of generation 1",
                      "a merge keeps those of the burn-in folder");
    for (int64 t = 1; t <= r.ntraits && file.size() == 7 * r.ntraits; ++t) {
        const auto found = [&](int64 line, int64 model) {
            const numberline row = file.numbers(7 * (t - 1) + line);
            return row(row.size() - r.nmodels + model);
        };
        for (int64 p = 1; p <= r.nmodels; ++p) {
            const auto at = [&](int64 line) { return place{path, 7 * (t - 1) + line}; };
            const double a = found(3, p), d = found(4, p), e = found(5, p), all = a + d + e;
            if (!r.merged) {
                const double2 tbv = column(r, 1, 1, p, t), tdv = column(r, 1, 2, p, t);
                r.told().near(at(3), "additive variance of generation 1", covariance(tbv, tbv), a,
                              sumsoften * (1 + a));
                r.told().near(at(4), "dominance variance of generation 1", covariance(tdv, tdv), d,
                              sumsoften * (1 + d));
            }
            r.told().near(at(5), "residual variance, by its factor",
                          residual[cell(p)][cell(t)][cell(t)], e, sumsoften * (1 + e));
            if (all < 1e-6) continue;
            r.told().near(at(6), "narrow-sense heritability", a / all, found(6, p),
                          sumsoften / all + sumsoften);
            r.told().near(at(7), "broad-sense heritability", (a + d) / all, found(7, p),
                          sumsoften / all + sumsoften);
            if (!r.merged && r.firstgeneration == 1)
                r.told().near(at(7), "heritability asked for",
                              r.spec.number("TraitHeritability", cell(t - 1)), found(7, p),
                              sumsoften / all + sumsoften);
        }
    }
}

// Additive, dominance and residual covariances and heritabilities, four decimals. Only the lines
// that are numbers count.
void checkcovariances(run &r, const std::vector<std::vector<double2>> &residual)
{
    const std::string path = "SimulatedData/TraitVarianceComponentsCovariance.txt";
    const textfile file = r.files.read(path);
    std::vector<std::pair<int64, double>> found; // line, value
    for (int64 k = 1; k <= file.size(); ++k)
        for (const double x : file.numbers(k).values)
            if (!std::isnan(x)) found.emplace_back(k, x);
    if (!r.told().equal({path}, "numbers", r.nmodels * r.ntraits * (3 * r.ntraits + 2),
                        std::ssize(found)) ||
        r.merged)
        return;
    std::size_t at = 0;
    const auto check = [&](const char *what, double expected) {
        r.told().near({path, found[at].first}, what, expected, found[at].second, 0.51e-4);
        ++at;
    };
    for (int64 p = 1; p <= r.nmodels; ++p) {
        const auto of = [&](int64 kind, int64 a, int64 b) {
            return covariance(column(r, 1, kind, p, a), column(r, 1, kind, p, b));
        };
        for (int64 kind = 1; kind <= 3; ++kind)
            for (int64 a = 1; a <= r.ntraits; ++a)
                for (int64 b = 1; b <= r.ntraits; ++b)
                    check("covariance of generation 1",
                          kind == 3 ? residual[cell(p)][cell(a)][cell(b)] : of(kind, a, b));
        for (const bool broad : {false, true})
            for (int64 t = 1; t <= r.ntraits; ++t) {
                const double a = of(1, t, t), d = of(2, t, t),
                             e = residual[cell(p)][cell(t)][cell(t)];
                check("heritability", a + d + e > 0 ? (broad ? a + d : a) / (a + d + e) : 0);
            }
    }
}

// One line per generation, model and trait, and one per generation and model. Genic variances are
// sums of 2 p q alpha^2 and (2 p q d)^2.
void checkgenerations(run &r, const std::vector<qtnset> &sets)
{
    const auto skipped = [&](int64 g) {
        if (!r.ownvalues(g))
            r.told().skip("means and variances of merged generations",
                          "they are those of the base folder, or 0");
        return !r.ownvalues(g);
    };
    if (skipped(r.ngenerations)) return;
    const std::string path = "SimulatedData/TotalGenicAndGeneticVariancesPerGeneration.txt";
    std::map<std::pair<int64, const qtnset *>, double2> frequencies;
    r.files.tableholds(
        "SimulatedData/GeneticMeansPerGeneration.txt", 1, r.ngenerations * r.nmodels * r.ntraits,
        "mean breeding value",
        [&](int64 line, double2 &expected) {
            const int64 t = (line - 1) % r.ntraits + 1, p = (line - 1) / r.ntraits % r.nmodels + 1,
                        g = (line - 1) / r.ntraits / r.nmodels + 1;
            expected = {double(g), double(p), double(t),
                        skipped(g) ? any : mean(column(r, g, 1, p, t))};
        },
        sumsoften);
    const textfile file = r.files.read(path);
    r.told().equal({path}, "lines", 1 + r.ngenerations * r.nmodels, file.size());
    for (int64 line = 1; line < file.size(); ++line) {
        const int64 p = (line - 1) % r.nmodels + 1, g = (line - 1) / r.nmodels + 1;
        const numberline found = file.numbers(line + 1);
        r.told().equal({path, line + 1}, "generation", g, found.whole(1));
        r.told().equal({path, line + 1}, "model", p, found.whole(2));
        if (g > r.ngenerations || skipped(g)) continue;
        const qtnset &set = sets[cell(1 - p % 2)];
        double2 &f = frequencies[{g, &set}];
        if (f.empty()) f = set.frequencies(r, g);
        for (int64 t = 1; t <= r.ntraits; ++t) {
            const std::size_t k = cell((p - 1) / 2 * r.ntraits + t - 1);
            const double2 tbv = column(r, g, 1, p, t), tdv = column(r, g, 2, p, t);
            double genic[2] = {};
            for (std::size_t q = 0; q < f.size(); ++q) {
                const double pq2 = 2 * f[q] * (1 - f[q]), alpha = set.substitution[q][k],
                             d = r.dominance ? set.dominance[q][k] : 0;
                genic[0] += pq2 * alpha * alpha;
                genic[1] += pq2 * d * pq2 * d;
            }
            const double expected[] = {genic[0], genic[1], covariance(tbv, tbv),
                                       covariance(tdv, tdv)};
            const char *what[] = {"additive genic variance", "dominance genic variance",
                                  "additive genetic variance", "dominance genetic variance"};
            for (int64 b = 0; b < 4; ++b)
                r.told().near({path, line + 1}, what[b], expected[b],
                              found(3 + b * r.ntraits + t - 1), sumsoften * (1 + expected[b]));
        }
    }
}

// How many of the largest QTN exceed a share of the genic variance of generation 1: with that many
// it does, with one fewer it doesn't.
void checkclasses(run &r, const std::string &path, int64 nbefore, int64 line, int64 columns,
                  const double2 &frequency, const std::function<double(std::size_t)> &effect)
{
    const numberline found = r.files.read(path).numbers(line);
    double2 share;
    for (std::size_t q = 0; q < frequency.size(); ++q)
        share.push_back(2 * frequency[q] * (1 - frequency[q]) * effect(q) * effect(q));
    std::sort(share.rbegin(), share.rend());
    double all = 0, sum = 0;
    for (const double x : share) all += x;
    const double limit = found(nbefore) / 100 * all;
    const int64 n = found.whole(columns);
    const place where{path, line};
    if (all == 0 || !r.told().holds(n >= 1 && n <= std::ssize(share), where, "a number of QTN"))
        return;
    for (int64 q = 1; q < n; ++q) sum += share[cell(q - 1)];
    r.told().holds(sum <= limit + 1e-7 * all && sum + share[cell(n - 1)] > limit - 1e-7 * all,
                   where, "QTN that explain the share");
}

// ------------------------------------------------------------------------ other traits and tables

// Values are standardised in each generation to the variance of generation 1; the rate follows as
// exp(log(Morgans) + value), the Morgans being those of the first individual.
void checkrecombination(run &r, const qtnset &set)
{
    const std::string path = "SimulatedData/PedigreeTbvRecombination.txt",
                      components = "SimulatedData/RecombinationVarianceComponents.txt";
    const textfile file = r.files.read(path), parts = r.files.read(components),
                   counts = r.files.read("SimulatedData/RecombinationCount.txt");
    const textfile effects = r.files.read("SimulatedData/RecombinationQtnInformationEffects.txt");
    if (set.n == 0 || parts.size() != 3 || file.size() < 2) return;
    const auto lastof = [](const numberline &line) { return line(line.size()); };
    const double va = lastof(parts.numbers(1)), ve = lastof(parts.numbers(2));
    const double scale = file.numbers(2)(6) / std::exp(file.numbers(2)(5));
    r.told().near({components, 3}, "heritability", va / (va + ve), lastof(parts.numbers(3)),
                  sumsoften);
    r.told().near({components, 2}, "residual variance, one over the Morgans of the genome",
                  1 / (scale * double(r.nchrom)), ve, r.hasgenomes() ? sumsoften * 10 : 1e9);
    std::vector<double2> value(cell(r.ngenerations) + 1);
    for (int64 i = 1; i <= r.nindiv; ++i) {
        double sum = 0;
        for (int64 q = 0; q < set.n; ++q)
            sum += effects.numbers(q + 2)(7) * (set.genotype(i, q) - 2 * set.frequency[cell(q)]);
        value[cell(r.of(i).generation)].push_back(sum);
    }
    r.files.tableholds(
        path, 1, r.nindiv, "generation, individual, parents, value, rate, crossings",
        [&](int64 i, double2 &expected) {
            const individual &one = r.of(i);
            const double2 &all = value[cell(one.generation)];
            const double sd = std::sqrt(covariance(all, all));
            const double z = sd > 1e-12 ? (all[cell(i - r.first(one.generation))] - mean(all)) /
                                              sd * std::sqrt(va)
                                        : 0;
            const numberline count = counts.numbers(i);
            expected = {double(one.generation),
                        double(i),
                        double(one.parent[1]),
                        double(one.parent[2]),
                        r.ownvalues(one.generation) ? z : any,
                        scale * std::exp(file.numbers(i + 1)(5)),
                        count(2),
                        count(3),
                        count(2) + count(3)};
        },
        1e-9);
}

void checkfixed(run &r, const qtnset &set)
{
    const std::string path = "SimulatedData/FixedQtn.txt";
    if (!r.files.there(path)) return;
    std::vector<double2> frequencies(1);
    for (int64 g = 1; g <= r.ngenerations; ++g) frequencies.push_back(set.frequencies(r, g));
    r.files.tableholds(path, 1, r.ngenerations * set.n, "generation, QTN, 0 fixed or 1 segregating",
                       [&](int64 line, double2 &expected) {
                           const int64 g = (line - 1) / set.n + 1, q = (line - 1) % set.n;
                           const double f = frequencies[cell(g)][cell(q)];
                           expected = {double(g), double(q + 1), f > 0 && f < 1 ? 1.0 : 0.0};
                       });
}
} // namespace

void checkvalues(run &r)
{
    const textfile components = r.files.read("SimulatedData/TraitVarianceComponents.txt");
    r.ntraits = components.size() / 7;
    if (r.ntraits == 0) return r.told().skip("values", "the run has simulated no traits");
    r.nmodels = components.numbers(2).size();
    std::vector<qtnset> sets;
    std::vector<std::vector<double2>> residual(1);
    for (const char *name : {"Unrestricted", "Restricted"}) {
        sets.push_back(
            readqtn(r, std::string(name) + "Qtn", std::string(name) + "QtnInformation.txt"));
        checkeffects(r, sets.back());
    }
    readvalues(r);
    for (int64 p = 1; p <= r.nmodels; ++p) {
        residual.push_back(residualcovariances(r, p));
        checktruevalues(r, sets[cell(1 - p % 2)], p, cell((p - 1) / 2));
        checkresiduals(r, p, residual.back());
    }
    checkcomponents(r, residual);
    checkcovariances(r, residual);
    checkgenerations(r, sets);
    const std::string classes = "SimulatedData/ProportionOfVariationExplainedByNumberOfQtn";
    for (int64 line = 2; line <= 1 + 5 * r.ntraits && !r.merged; ++line)
        for (int64 p = 1; p <= r.nmodels; ++p) {
            const qtnset &set = sets[cell(1 - p % 2)];
            const std::size_t k = cell((p - 1) / 2 * r.ntraits + (line - 2) / 5);
            checkclasses(r, classes + ".txt", 2, line, 2 + p, set.frequency,
                         [&](std::size_t q) { return set.substitution[q][k]; });
        }
    checkfixed(r, sets[r.selectedset == "RestrictedQtn"]);
    if (!r.files.there("SimulatedData/PedigreeTbvRecombination.txt")) return;
    const qtnset recombination =
        readqtn(r, "RecombinationQtn", "RecombinationQtnInformationEffects.txt");
    checkrecombination(r, recombination);
    const textfile effects = r.files.read("SimulatedData/RecombinationQtnInformationEffects.txt");
    for (int64 line = 2; line <= 6 && !r.merged; ++line)
        checkclasses(r, classes + "Recombination.txt", 1, line, 2, recombination.frequency,
                     [&](std::size_t q) { return effects.numbers(static_cast<int64>(q) + 2)(7); });
}
} // namespace checkrun
