// QTN, effects, and what follows from them: true values, phenotypes, variances, heritabilities.
#include "checkrun/runfolder.h"

#include <cmath>

namespace checkrun
{
namespace
{
constexpr const char *valuefile = "SimulatedData/PedigreeTbvTdvTpv.txt";
constexpr double sums = 3e-10; // how far sums of values in ten decimals may be off

// A set of QTN. Effects are [QTN](distribution and trait), the normal ones first; substitution
// effects are the additive ones without dominance.
struct qtnset {
    std::string stem; // "SimulatedData/UnrestrictedQtn"
    int64 n = 0;
    textfile store;  // genotypes of all individuals
    reals frequency; // in generation 1, or among the merged
    list<numberline> additive, dominance, substitution;

    int genotype(int64 i, int64 q) const
    {
        return store.lines(i)[static_cast<std::size_t>(19 + 2 * q)] - '0';
    }
    reals frequencies(const run &r, int64 g) const
    {
        reals f;
        for (int64 q = 1; q <= n; ++q) {
            int64 count = 0;
            for (int64 i = r.first(g); i <= r.last(g); ++i) count += genotype(i, q);
            f.push_back(double(count) / (2.0 * double(r.size(g))));
        }
        return f;
    }
};

// Where the QTN are, their frequencies, and the store of genotypes.
qtnset readqtn(run &r, const std::string &name, const std::string &path)
{
    qtnset set{"SimulatedData/" + name, 0, {}, {}, {}, {}, {}};
    const textfile information = r.files.read(path);
    const list<genomesite> sites = r.sitesof(name);
    const std::string storefile = set.stem + "IndivGenotypes.txt";
    set.store = r.files.read(storefile);
    bool whole = set.store.n() == r.nindiv && (sites.empty() || sites.n() == information.n() - 1);
    for (const std::string_view line : set.store.lines)
        whole = whole && std::ssize(line) == 18 + 2 * information.n();
    if (!r.told.holds(whole, {storefile}, "a genotype for each individual and QTN")) return set;
    if (!sites.empty()) checkgenotypes(r, storefile, 0, sites, false, 1, r.nindiv);
    set.n = information.n() - 1;
    set.frequency = set.frequencies(r, 1);
    for (int64 q = 1; q <= set.n && r.merged; ++q) set.frequency(q) = information(q + 1)(5);
    r.files.table(path, 1, set.n, "QTN, chromosome, site, frequencies, position", [&](int64 q) {
        reals expected(static_cast<std::size_t>(information(q + 1).n()), any);
        expected.resize(std::max<std::size_t>(expected.size(), 7), any);
        expected(1) = double(q);
        expected(5) = set.frequency(q);
        if (sites.empty()) return expected;
        const auto &[on, h, site] = sites(q);
        expected(2) = double(h);
        expected(3) = double(site);
        if (!r.merged) expected(4) = on->maf(site);
        expected(6) = on->position(site);
        if (expected.n() == 8) expected(7) = on->mutation(site);
        return expected;
    });
    return set;
}

// The columns of an effect file behind QTN, chromosome and site.
list<numberline> readeffects(run &r, const qtnset &set, const std::string &what, int64 ncolumns)
{
    const textfile file = r.files.read(set.stem + what);
    list<numberline> effects;
    r.told.is({file.path}, "lines", double(set.n + 1), double(file.n()));
    for (int64 q = 1; q <= set.n; ++q) {
        numberline line = file(q + 1);
        r.told.is({file.path, q + 1}, "QTN", double(q), line(1));
        r.told.is({file.path, q + 1}, "columns", double(3 + ncolumns), double(line.n()));
        line.values.erase(line.values.begin(), line.values.begin() + std::min<int64>(line.n(), 3));
        effects.push_back(line);
    }
    return effects;
}

// Dominance effects are degrees of the additive ones' size; substitution effects a + d (1 - 2 p).
void checkeffects(run &r, qtnset &set)
{
    const int64 n = r.ntraits * (r.nmodels / 2);
    set.additive = set.substitution = readeffects(r, set, "AdditEffects.txt", n);
    if (!r.dominance) return;
    set.dominance = readeffects(r, set, "DominEffects.txt", 2 * n);
    set.substitution = readeffects(r, set, "AverAlleleSubstEffects.txt", n);
    const std::string path = set.stem + "DominEffects.txt",
                      alphafile = set.stem + "AverAlleleSubstEffects.txt";
    for (int64 q = 1; q <= set.n; ++q)
        for (int64 k = 1; k <= n; ++k) {
            const double a = set.additive(q)(k), d = set.dominance(q)(k),
                         degree = set.dominance(q)(n + k);
            r.told.is({path, q + 1}, "dominance effect by its degree", degree * std::fabs(a), d,
                      sums * (1 + std::fabs(degree)));
            const double alpha =
                r.merged ? set.substitution(q)(k) : a + d * (1 - 2 * set.frequency(q));
            r.told.is({alphafile, q + 1}, "substitution effect", alpha, set.substitution(q)(k),
                      sums);
        }
}

// ------------------------------------------------------------------------ values of individuals

void readvalues(run &r)
{
    const std::size_t ncolumns = static_cast<std::size_t>(4 + 3 * r.nmodels * r.ntraits);
    r.files.table(valuefile, 1, r.nindiv, "generation, individual, sire, dam", [&](int64 i) {
        const individual &one = r.individuals(i);
        reals expected = {double(one.generation), double(i), double(one.parent[1]),
                          double(one.parent[2])};
        expected.resize(ncolumns, any);
        return expected;
    });
    const textfile file = r.files.read(valuefile);
    for (int64 i = 1; i <= r.nindiv; ++i) r.values.push_back(file(i + 1));
}

// True breeding values are sums of effect x (genotype - 2 p); dominance deviations by genotype
// -2 p^2 d, 2 p q d, -2 q^2 d. Where a merge has counted frequencies anew, breeding values of
// individuals from one run differ by a constant from what the new ones give.
void checktruevalues(run &r, const qtnset &set, int64 model, int64 trait)
{
    const int64 k = (model - 1) / 2 * r.ntraits + trait;
    const std::string which = numbered(numbered(", model ", model, ", trait "), trait, "");
    std::map<std::string, double> shift; // by the path of the run
    for (int64 i = 1; i <= r.nindiv; ++i) {
        const bool own = r.ownvalues(r.individuals(i).generation);
        if (!own && r.dominance) {
            r.told.leaveout("values of merged individuals", "frequencies of their run are gone");
            continue;
        }
        double tbv = 0, tdv = 0;
        for (int64 q = 1; q <= set.n; ++q) {
            const double g = set.genotype(i, q), p = set.frequency(q);
            const double deviation = g == 0 ? -p * p : g == 1 ? p * (1 - p) : -(1 - p) * (1 - p);
            tbv += set.substitution(q)(k) * (g - 2 * p);
            if (r.dominance) tdv += 2 * deviation * set.dominance(q)(k);
        }
        const double found = r.value(i, 1, model, trait);
        if (!own) tbv += shift.try_emplace(r.individuals(i).path, found - tbv).first->second;
        r.told.is({valuefile, i + 1}, "breeding value" + which, tbv, found, sums);
        r.told.is({valuefile, i + 1}, "dominance deviation" + which, tdv,
                  r.value(i, 2, model, trait), sums);
    }
}

// Residuals: none beyond 7 standard deviations; mean and variance within 6 standard errors and a
// bit for small numbers.
void checkresiduals(run &r, int64 model, int64 trait, double variance)
{
    const double n = double(r.nindiv), sd = std::sqrt(variance);
    const std::string which = numbered(numbered(", model ", model, ", trait "), trait, "");
    double sum = 0, squares = 0;
    for (int64 i = 1; i <= r.nindiv; ++i) {
        const auto value = [&](int64 kind) { return r.value(i, kind, model, trait); };
        const double e = value(3) - value(1) - value(2);
        r.told.is({valuefile, i + 1}, "residual, mean and 7 deviations" + which, 0, e,
                  7 * sd + sums);
        sum += e / n;
        squares += e * e / n;
    }
    r.told.is({valuefile}, "mean residual" + which, 0, sum, 6 * sd / std::sqrt(n) + sums);
    r.told.is({valuefile}, "residual variance" + which, variance, squares,
              6 * variance * (std::sqrt(2 / n) + 1 / n) + sums);
}

// ------------------------------------------------------------------------ variances

double covarianceof(const run &r, int64 g, int64 kind, int64 model, int64 a, int64 b)
{
    return covariance(column(r, g, kind, model, a), column(r, g, kind, model, b));
}

using matrix = list<reals>;

// Residual covariances of a model by their factor.
matrix residualcovariances(run &r, int64 model)
{
    const textfile file = r.files.read(
        numbered("SimulatedData/TraitVarianceComponentsResidualCholQtnModel", model, ".txt"));
    matrix e(static_cast<std::size_t>(r.ntraits), reals(static_cast<std::size_t>(r.ntraits), 0.0));
    for (int64 a = 1; a <= r.ntraits; ++a)
        for (int64 b = 1; b <= r.ntraits; ++b)
            for (int64 c = 1; c <= std::min(a, b); ++c) e(a)(b) += file(a)(c) * file(b)(c);
    return e;
}

// Seven lines per trait: two of headings, then numbers of the models behind a label.
void checkcomponents(run &r, const list<matrix> &residual)
{
    const textfile file = r.files.read("SimulatedData/TraitVarianceComponents.txt");
    if (r.merged)
        r.told.leaveout("variances of generation 1", "a merge keeps the burn-in folder's");
    for (int64 t = 1; t <= r.ntraits; ++t)
        for (int64 p = 1; p <= r.nmodels; ++p) {
            const auto found = [&](int64 line) {
                const numberline row = file(7 * t - 7 + line);
                return row(row.n() - r.nmodels + p);
            };
            const auto check = [&](int64 line, const char *what, double expected,
                                   double tolerance) {
                r.told.is({file.path, 7 * t - 7 + line}, what, expected, found(line), tolerance);
            };
            const double a = found(3), d = found(4), e = found(5), all = a + d + e;
            if (!r.merged)
                check(3, "additive variance", covarianceof(r, 1, 1, p, t, t), sums * (1 + a));
            if (!r.merged)
                check(4, "dominance variance", covarianceof(r, 1, 2, p, t, t), sums * (1 + d));
            check(5, "residual variance, by its factor", residual(p)(t)(t), sums * (1 + e));
            if (all < 1e-6) continue;
            check(6, "narrow-sense heritability", a / all, sums / all + sums);
            check(7, "broad-sense heritability", (a + d) / all, sums / all + sums);
            if (!r.merged && r.firstgeneration == 1)
                check(7, "heritability asked for", r.spec.number("TraitHeritability", t),
                      sums / all + sums);
        }
}

// Additive, dominance and residual covariances and heritabilities, four decimals; the lines of
// numbers behind one another.
void checkcovariances(run &r, const list<matrix> &residual)
{
    const textfile file = r.files.read("SimulatedData/TraitVarianceComponentsCovariance.txt");
    list<std::pair<int64, double>> found; // line, value
    for (int64 k = 1; k <= file.n(); ++k)
        for (const double x : file(k).values)
            if (!std::isnan(x)) found.emplace_back(k, x);
    const int64 n = r.nmodels * r.ntraits * (3 * r.ntraits + 2);
    if (!r.told.is({file.path}, "numbers", double(n), double(found.n())) || r.merged) return;
    int64 at = 0;
    const auto check = [&](const char *what, double expected) {
        ++at;
        r.told.is({file.path, found(at).first}, what, expected, found(at).second, 0.51e-4);
    };
    for (int64 p = 1; p <= r.nmodels; ++p) {
        const auto of = [&](int64 kind, int64 a, int64 b) {
            return kind == 3 ? residual(p)(a)(b) : covarianceof(r, 1, kind, p, a, b);
        };
        for (int64 kind = 1; kind <= 3; ++kind)
            for (int64 a = 1; a <= r.ntraits; ++a)
                for (int64 b = 1; b <= r.ntraits; ++b)
                    check("covariance of generation 1", of(kind, a, b));
        for (const bool broad : {false, true})
            for (int64 t = 1; t <= r.ntraits; ++t) {
                const double genetic = of(1, t, t) + of(2, t, t), all = genetic + of(3, t, t);
                check("heritability", all > 0 ? (broad ? genetic : of(1, t, t)) / all : 0);
            }
    }
}

// Means by generation, model and trait; variances by generation and model: genic ones, sums of
// 2 p q alpha^2 and (2 p q d)^2, and those of the values.
void checkgenerations(run &r, const qtnset &unrestricted, const qtnset &restricted)
{
    const auto own = [&](int64 g) {
        if (!r.ownvalues(g))
            r.told.leaveout("means and variances of merged generations",
                            "a merge takes others, or 0");
        return r.ownvalues(g);
    };
    if (!own(r.ngenerations)) return;
    const int64 nt = r.ntraits, nm = r.nmodels;
    r.files.table(
        "SimulatedData/GeneticMeansPerGeneration.txt", 1, r.ngenerations * nm * nt,
        "mean breeding value",
        [&](int64 line) {
            const int64 t = (line - 1) % nt + 1, p = (line - 1) / nt % nm + 1,
                        g = (line - 1) / nt / nm + 1;
            return reals{double(g), double(p), double(t),
                         own(g) ? mean(column(r, g, 1, p, t)) : any};
        },
        sums);
    const std::string path = "SimulatedData/TotalGenicAndGeneticVariancesPerGeneration.txt";
    const textfile file = r.files.read(path);
    r.files.table(
        path, 1, r.ngenerations * nm, "genic and genetic variances",
        [&](int64 line) {
            const int64 p = (line - 1) % nm + 1, g = (line - 1) / nm + 1;
            reals expected(static_cast<std::size_t>(own(g) ? 2 + 4 * nt : file(line + 1).n()), any);
            expected(1) = double(g);
            expected(2) = double(p);
            if (!own(g)) return expected;
            const qtnset &set = p % 2 == 1 ? unrestricted : restricted;
            const reals f = set.frequencies(r, g);
            for (int64 t = 1; t <= nt; ++t) {
                double *genic[] = {&expected(2 + t), &expected(2 + nt + t)};
                *genic[0] = *genic[1] = 0;
                for (int64 q = 1; q <= set.n; ++q) {
                    const int64 k = (p - 1) / 2 * nt + t;
                    const double pq2 = 2 * f(q) * (1 - f(q)), alpha = set.substitution(q)(k);
                    *genic[0] += pq2 * alpha * alpha;
                    if (r.dominance) *genic[1] += std::pow(pq2 * set.dominance(q)(k), 2);
                }
                for (const int64 kind : {1, 2})
                    expected(2 + (1 + kind) * nt + t) = covarianceof(r, g, kind, p, t, t);
            }
            return expected;
        },
        sums);
}

// ------------------------------------------------------------------------ other traits and tables

// Values are standardised in each generation to the variance of generation 1; the rate follows as
// exp(log(Morgans) + value), the Morgans being those of the first individual.
void checkrecombination(run &r)
{
    const std::string path = "SimulatedData/PedigreeTbvRecombination.txt",
                      effectfile = "SimulatedData/RecombinationQtnInformationEffects.txt";
    if (!r.files.there(path)) return;
    const qtnset set = readqtn(r, "RecombinationQtn", effectfile);
    const textfile file = r.files.read(path),
                   counts = r.files.read("SimulatedData/RecombinationCount.txt"),
                   effects = r.files.read(effectfile),
                   parts = r.files.read("SimulatedData/RecombinationVarianceComponents.txt");
    const auto part = [&](int64 line) { return parts(line)(parts(line).n()); };
    const double va = part(1), ve = part(2), morgans = file(2)(6) / std::exp(file(2)(5));
    r.told.is({parts.path, 3}, "heritability", va / (va + ve), part(3), sums);
    if (!r.chromosomes.empty())
        r.told.is({parts.path, 2}, "residual variance, 1 / Morgans",
                  1 / (morgans * double(r.chromosomes.n())), ve, 10 * sums);
    list<reals> raw(static_cast<std::size_t>(r.ngenerations));
    for (int64 i = 1; i <= r.nindiv; ++i) {
        double sum = 0;
        for (int64 q = 1; q <= set.n; ++q)
            sum += effects(q + 1)(7) * (set.genotype(i, q) - 2 * set.frequency(q));
        raw(r.individuals(i).generation).push_back(sum);
    }
    r.files.table(
        path, 1, r.nindiv, "generation, individual, parents, value, rate, crossings",
        [&](int64 i) {
            const individual &one = r.individuals(i);
            const reals &all = raw(one.generation);
            const double sd = std::sqrt(covariance(all, all)),
                         own = all(i - r.first(one.generation) + 1);
            const double z = sd > 1e-12 ? (own - mean(all)) / sd * std::sqrt(va) : 0;
            const numberline count = counts(i);
            return reals{double(one.generation),
                         double(i),
                         double(one.parent[1]),
                         double(one.parent[2]),
                         r.ownvalues(one.generation) ? z : any,
                         morgans * std::exp(file(i + 1)(5)),
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
    r.files.table(path, 1, r.ngenerations * set.n, "generation, QTN, 0 fixed or 1 segregating",
                  [&](int64 line) {
                      const int64 g = (line - 1) / set.n + 1, q = (line - 1) % set.n + 1;
                      const double f = set.frequencies(r, g)(q);
                      return reals{double(g), double(q), double(f > 0 && f < 1)};
                  });
}
} // namespace

void checkvalues(run &r)
{
    const textfile components = r.files.read("SimulatedData/TraitVarianceComponents.txt");
    r.ntraits = components.n() / 7;
    r.nmodels = components(2).n();
    list<qtnset> sets;
    for (const std::string name : {"UnrestrictedQtn", "RestrictedQtn"}) {
        sets.push_back(readqtn(r, name, "SimulatedData/" + name + "Information.txt"));
        checkeffects(r, sets.back());
    }
    readvalues(r);
    list<matrix> residual;
    for (int64 p = 1; p <= r.nmodels; ++p) {
        residual.push_back(residualcovariances(r, p));
        for (int64 t = 1; t <= r.ntraits; ++t) {
            checktruevalues(r, sets(2 - p % 2), p, t);
            checkresiduals(r, p, t, residual(p)(t)(t));
        }
    }
    checkcomponents(r, residual);
    checkcovariances(r, residual);
    checkgenerations(r, sets(1), sets(2));
    checkrecombination(r);
    checkfixed(r, sets(1 + (r.selectedset == "RestrictedQtn")));
}
} // namespace checkrun
