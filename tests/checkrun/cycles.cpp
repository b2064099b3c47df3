// Selection cycles: what candidates and training individuals are said to be is what they are; edits
// and accuracies follow; relationships and average coancestry are made again.
#include "checkrun/runfolder.h"

#include <cmath>

namespace checkrun
{
namespace
{
using double2 = std::vector<double>;

std::size_t cell(int64 k)
{
    return static_cast<std::size_t>(k);
}

struct cycle {
    int64 number, generation; // of the candidates
    std::string folder;
};

// Behind the values of several traits stands the trait.
std::string oftrait(const run &r, const std::string &stem, int64 t)
{
    return stem + (r.ntraits > 1 ? "Trait" + std::to_string(t) : "") + ".txt";
}

// A file of individuals, whoever they are or the candidates in order, and a value of each.
void checkindividuals(run &r, const std::string &path, const cycle *candidates,
                      const std::string &what, const std::function<double(int64)> &value)
{
    if (!r.files.there(path)) return;
    const textfile file = r.files.read(path);
    if (candidates)
        r.told().equal({path}, "candidates", r.size(candidates->generation), file.size());
    for (int64 k = 1; k <= file.size(); ++k) {
        const numberline line = file.numbers(k);
        const int64 i = line.whole(1);
        if (candidates &&
            !r.told().equal({path, k}, "candidate", r.first(candidates->generation) + k - 1, i))
            continue;
        if (!r.told().holds(i >= 1 && i <= r.nindiv, {path, k}, "an individual of the folder"))
            continue;
        r.told().near({path, k}, what, value(i), line(2), tendecimals);
    }
}

void checkgivenvalues(run &r, const cycle &c)
{
    const int64 p = r.selectedmodel;
    for (int64 t = 1; t <= r.ntraits; ++t) {
        const auto of = [&](int64 kind) {
            return [&r, kind, p, t](int64 i) { return r.value(i, kind, p, t); };
        };
        checkindividuals(r, oftrait(r, c.folder + "SelectionTbvTest", t), &c, "true breeding value",
                         of(1));
        checkindividuals(r, oftrait(r, c.folder + "SelectionPhenTest", t), &c, "phenotype", of(3));
        if (r.spec.word("UseExternalSnpSolutionsYesNo") == "yes")
            r.told().skip("phenotypes of the training individuals", "they come from outside");
        else
            checkindividuals(r, oftrait(r, c.folder + "SelectionPhenTrain", t), nullptr,
                             "phenotype", of(3));
    }
    checkindividuals(r, c.folder + "GenderTesting.txt", &c, "gender",
                     [&](int64 i) { return double(r.of(i).gender); });
    if (!r.files.there("SimulatedData/PedigreeTbvRecombination.txt")) return;
    const textfile values = r.files.read("SimulatedData/PedigreeTbvRecombination.txt");
    checkindividuals(r, c.folder + "SelectionTbvRecombZTesting.txt", &c,
                     "value of the recombination trait",
                     [&](int64 i) { return values.numbers(i + 1)(5); });
    if (r.spec.word("UseExternalSnpSolutionsYesNo") == "yes") return;
    checkindividuals(
        r, c.folder + "SelectionPhenRecombTrain.txt", nullptr, "logarithm of the crossings",
        [&](int64 i) {
            return double(std::log(float(values.numbers(i + 1)(9)) + 0.0001f)); // single precision
        });
}

// The whole training pedigree, which ends with the candidates, numbered from 1.
void checktrainingpedigree(run &r, const cycle &c)
{
    for (int64 t = 1; t <= r.ntraits; ++t) {
        const std::string path = c.folder + "PedigreeBlupTrain" + std::to_string(t) + ".txt";
        if (!r.files.there(path)) continue;
        const int64 n = r.files.read(path).size(), before = r.end(c.generation) - n;
        if (n == 0 || !r.told().holds(before >= 0, {path}, "individuals up to the candidates"))
            continue;
        const textfile file = r.files.read(path);
        r.files.tableholds(
            path, 0, n, "number, sire, dam, code, phenotype", [&](int64 k, double2 &expected) {
                const individual &one = r.of(before + k);
                const double phenotype =
                    file.numbers(k)(5) == -99 ? -99 : r.value(before + k, 3, r.selectedmodel, t);
                expected = {double(k), double(std::max<int64>(one.parent[1] - before, 0)),
                            double(std::max<int64>(one.parent[2] - before, 0)), any, phenotype};
            });
    }
}

// Genotypes and phases at the selection chip, behind which the QTN stand if they are added to it.
void checkgivengenotypes(run &r, const cycle &c)
{
    const auto check = [&](const std::string &path, const std::vector<genomesite> &sites,
                           bool phase) {
        if (!r.files.there(path)) return;
        const textfile file = r.files.read(path);
        const auto individual = [&](int64 line) {
            return numbersof(file.line(line).substr(0, 20)).whole(1);
        };
        for (int64 k = 1; k <= file.size(); ++k)
            if (!r.told().holds(individual(k) >= 1 && individual(k) <= r.nindiv, {path, k},
                                "an individual of the folder"))
                return;
        r.files.allelesholds(path, 0, file.size(), std::ssize(sites), individual,
                             [&, i = int64{0}, at = int64{0}](int64 line, int64 k) mutable {
                                 if (at != line) i = individual(at = line);
                                 const genomesite &site = sites[cell(k - 1)];
                                 return phase ? site.allele(i, 2 - line % 2) : site.genotype(i);
                             });
    };
    const std::vector<genomesite> qtn = r.sitesof(r.selectedset);
    check(c.folder + "TmpQtnGenotypeTest.txt", qtn, false);
    for (int64 e = 1; e <= r.nchips; ++e) {
        const std::string chip = "Chip" + std::to_string(e), stem = c.folder + "Tmp" + chip;
        std::vector<genomesite> sites = r.sitesof(chip);
        if (r.spec.word("AddQtnToTheSnpChipYesNo") == "yes" &&
            r.spec.word("UseSnpChipOnOff") == "on")
            sites.insert(sites.end(), qtn.begin(), qtn.end());
        for (const char *which : {"Test", "Train", "LastGeneration"})
            check(stem + "Genotype" + which + ".txt", sites, false);
        check(stem + "PhaseTrain.txt", sites, true);
    }
}

// Estimates of the candidates as sums of solutions x scaled genotypes, in single precision or in
// double; frequencies stand for the SNP that segregate in training.
void checkestimates(run &r, const cycle &c)
{
    const std::string chip = c.folder + "TmpChip" +
                             (r.nchips > 1 ? r.spec.word("IdOfChipUsedForSelection") : "1") +
                             "GenotypeTest.txt";
    for (int64 t = 1; t <= r.ntraits; ++t) {
        const std::string path = oftrait(r, c.folder + "Ebv", t),
                          solutionfile = oftrait(r, c.folder + "SnpSolutions", t),
                          frequencyfile = c.folder + "AlleleFreqTrain.txt";
        if (!r.files.there(path) || !r.files.there(solutionfile) || !r.files.there(frequencyfile))
            continue;
        const textfile file = r.files.read(path), solutions = r.files.read(solutionfile),
                       frequencies = r.files.read(frequencyfile), genotypes = r.files.read(chip);
        if (!r.told().equal({path}, "lines", genotypes.size(), file.size())) continue;
        for (int64 k = 1; k <= file.size(); ++k) {
            double sum = 0;
            const numberline genotype = genotypes.numbers(k);
            for (int64 j = 1; j <= frequencies.size(); ++j) {
                const numberline at = frequencies.numbers(j);
                const double p = at(2);
                sum += (genotype(at.whole(1) + 1) - 2 * p) / std::sqrt(2 * p * (1 - p) + 0.00001) *
                       solutions.numbers(at.whole(1))(2);
            }
            r.told().near({path, k}, "estimate by the solutions", sum, file.numbers(k)(2),
                          1e-5 * (1 + std::fabs(sum)));
        }
    }
}

// Accuracy, mean and variance of the true values of a generation, five decimals. The accuracies of
// true values, phenotypes and genomic estimates are made again.
void checkaccuracy(run &r, const cycle &c, bool candidates)
{
    const std::string path = "Selection/AccuracyOfBreedingValueSelectionCycle" +
                             std::to_string(c.number) + ".txt",
                      method = r.spec.word("SelectionMethod");
    if (!r.files.there(path)) return;
    const textfile file = r.files.read(path);
    r.told().equal({path}, "lines", 1 + r.ntraits, file.size());
    for (int64 t = 1; t <= r.ntraits; ++t) {
        const numberline line = file.numbers(1 + t);
        const int64 before = r.ntraits > 1; // the trait
        const bool recombination = line.size() - before == 7;
        double2 tbv, criterion;
        const std::string estimatefile = oftrait(r, c.folder + "Ebv", t);
        const textfile estimates =
            candidates && method == "gblup" ? r.files.read(estimatefile) : textfile{};
        for (int64 i = r.first(c.generation); i <= r.end(c.generation); ++i) {
            tbv.push_back(r.value(i, 1, r.selectedmodel, t));
            criterion.push_back(method == "tbv" ? tbv.back()
                                : method == "pheno"
                                    ? r.value(i, 3, r.selectedmodel, t)
                                    : estimates.numbers(i - r.first(c.generation) + 1)(2));
        }
        const place where{path, 1 + t};
        r.told().near(where, "mean true value", mean(tbv), line(before + (recombination ? 3 : 2)),
                      0.51e-5);
        r.told().near(where, "variance of true values", covariance(tbv, tbv),
                      line(before + (recombination ? 6 : 3)), 0.51e-5);
        const double product = covariance(tbv, tbv) * covariance(criterion, criterion);
        if (candidates && product > 1e-12)
            r.told().near(where, "accuracy", covariance(tbv, criterion) / std::sqrt(product),
                          line(before + 1), 0.6e-5);
    }
}

// Relationships by VanRaden's first method, 0.001 added to the diagonal; frequencies are those of
// this cycle or of an earlier one. Gives the individuals that the matrix is of.
int64 checkrelationships(run &r, const cycle &c, std::vector<double2> &g)
{
    const std::string path = c.folder + "GFullMatrix1-1.txt",
                      specfile = c.folder + "BrenvaskSpec.txt";
    if (!r.files.there(path)) return 0;
    settings spec{{{"UseAlleleFreqFromAPreviousSelCycleOnOff", {"Off"}},
                   {"UseAlleleFreqFromThisSelCycle", {"1"}}}};
    for (const std::string_view line : r.files.read(specfile).lines)
        for (const char *key :
             {"UseAlleleFreqFromAPreviousSelCycleOnOff", "UseAlleleFreqFromThisSelCycle"})
            if (line.find(std::string(key) + ' ') != line.npos)
                spec.values[key] = {std::string(line.substr(line.find(',') + 1))};
    const bool earlier =
        spec.values["UseAlleleFreqFromAPreviousSelCycleOnOff"][0].find("On") != std::string::npos;
    const std::string frequencyfile =
        earlier ? "Selection/SelectionFolder" +
                      std::to_string(
                          numbersof(spec.values["UseAlleleFreqFromThisSelCycle"][0]).whole(1)) +
                      "/GFullMatrixAlleleFreq.txt"
                : c.folder + "GFullMatrixAlleleFreq.txt";
    const textfile matrix = r.files.read(path), frequencies = r.files.read(frequencyfile);
    const bool ofqtn =
        frequencies.size() > 0 && frequencies.line(1).find("Qtn") != std::string_view::npos;
    std::vector<genomesite> sites =
        r.sitesof(ofqtn ? r.selectedset
                        : "Chip" + (r.nchips > 1 ? r.spec.word("IdOfChipUsedForSelection") : "1"));
    if (!ofqtn && r.spec.word("AddQtnToTheSnpChipYesNo") == "yes")
        for (const genomesite &at : r.sitesof(r.selectedset)) sites.push_back(at);
    const int64 n = matrix.size(), first = matrix.numbers(1).whole(1);
    if (!r.told().equal({frequencyfile}, "loci", std::ssize(sites), frequencies.size() - 1) ||
        !r.told().holds(first >= 1 && first + n - 1 <= r.nindiv, {path},
                        "individuals of the folder"))
        return 0;
    double scale = 0;
    double2 p;
    for (int64 k = 1; k <= std::ssize(sites); ++k) {
        p.push_back(frequencies.numbers(k + 1)(2));
        scale += 2 * p.back() * (1 - p.back());
    }
    std::vector<double2> z(cell(n));
    for (int64 i = 0; i < n; ++i)
        for (std::size_t k = 0; k < sites.size(); ++k)
            z[cell(i)].push_back(sites[k].genotype(first + i) - 2 * p[k]);
    g.assign(cell(n), double2(cell(n), 0.0));
    r.files.tableholds(
        path, 0, n, "individual, relationships",
        [&](int64 line, double2 &expected) {
            double2 &row = g[cell(line - 1)];
            for (std::size_t j = 0; j < cell(n); ++j)
                for (std::size_t k = 0; k < p.size(); ++k)
                    row[j] += z[cell(line - 1)][k] * z[j][k] / scale;
            row[cell(line - 1)] += 0.001;
            expected = {double(first + line - 1)};
            expected.insert(expected.end(), row.begin(), row.end());
        },
        1e-9);
    return first;
}

// Shares of the candidates among the parents of the next generation, and x'Gx.
double coancestry(run &r, int64 first, const std::vector<double2> &g, bool equal)
{
    double2 x(g.size(), equal ? 1.0 / double(g.size()) : 0.0);
    const int64 next = r.of(first).generation + 1;
    for (int64 i = r.first(next); !equal && i <= r.end(next); ++i)
        for (const int64 side : {1, 2})
            if (const int64 k = r.of(i).parent[side] - first; k >= 0 && k < std::ssize(g))
                x[cell(k)] += 0.5 / double(r.size(next));
    double sum = 0;
    for (std::size_t i = 0; i < g.size(); ++i)
        for (std::size_t j = 0; j < g.size(); ++j) sum += x[i] * g[i][j] * x[j];
    return sum;
}

// The matings are those of the list; the line of the matrix' generation stands on its matrix.
void checkcontributions(run &r, const cycle &c)
{
    std::vector<double2> g;
    const int64 first = checkrelationships(r, c, g), next = c.generation + 1;
    const std::string path = c.folder + "CorvalindResults/MatingListFinal.txt",
                      table = "SimulatedData/AverageCoancestry.txt";
    if (r.files.there(path) && next <= r.ngenerations)
        r.files.tableholds(path, 0, r.size(next),
                           "places of sire and dam of the next generation among the candidates",
                           [&](int64 k, double2 &expected) {
                               const individual &one = r.of(r.first(next) + k - 1);
                               expected = {double(one.parent[1] - r.first(c.generation) + 1),
                                           double(one.parent[2] - r.first(c.generation) + 1)};
                           });
    if (first == 0 || !r.files.there(table)) return;
    const textfile file = r.files.read(table);
    for (int64 k = 2; k <= file.size(); ++k) {
        const numberline line = file.numbers(k);
        if (line.whole(1) != r.of(first).generation) continue;
        r.told().near({table, k}, "average relationship", coancestry(r, first, g, true), line(3),
                      1e-9);
        if (line.whole(1) < r.ngenerations)
            r.told().near({table, k}, "average relationship of the parents",
                          coancestry(r, first, g, false), line(4), 1e-9);
    }
}

// The favourable allele is 1 where the normal effect is above 0; frequencies are the candidates'.
void checkgains(run &r, const cycle &c)
{
    const std::string path =
        c.folder + "QtnGeneticGainAlleleFreqGener" + std::to_string(c.generation + 1) + ".txt";
    if (!r.files.there(path)) return;
    const std::vector<genomesite> sites = r.sitesof(r.selectedset);
    const textfile effects = r.files.read("SimulatedData/" + r.selectedset + "AdditEffects.txt");
    r.files.tableholds(
        path, 1, std::ssize(sites), "QTN, chromosome, site, favourable allele, its frequency",
        [&](int64 q, double2 &expected) {
            const genomesite &at = sites[cell(q - 1)];
            const bool one = effects.numbers(q + 1)(4) > 0;
            double n = 0;
            for (int64 i = r.first(c.generation); i <= r.end(c.generation); ++i)
                n += at.genotype(i);
            const double f = n / (2.0 * double(r.size(c.generation)));
            expected = {double(q), double(at.h), double(at.site), double(one), one ? f : 1 - f,
                        any,       any};
        });
}
} // namespace

void checkcycles(run &r)
{
    if (r.ntraits == 0) return;
    if (r.merged && r.spec.word("MergeTypes") != "none")
        return r.told().skip("selection cycles", "a merge takes their folders from other runs");
    const auto exists = [&](const std::string &file) { return r.files.there("Selection/" + file); };
    for (int64 n = 1;
         exists("AccuracyOfBreedingValueSelectionCycle" + std::to_string(n) + ".txt") ||
         n <= r.ngenerations;
         ++n) {
        const cycle c{n, r.nburnin + n - 1, "Selection/SelectionFolder" + std::to_string(n) + "/"};
        if (c.generation < 1 || c.generation > r.ngenerations) {
            if (exists("SelectionFolder" + std::to_string(n)))
                r.told().skip(c.folder, "the folder doesn't hold its generation");
            continue;
        }
        if (c.generation + 1 < r.firstgeneration) {
            r.told().skip("selection cycles of earlier runs",
                          "the specification is that of the last run");
            continue;
        }
        const bool candidates = exists("SelectionFolder" + std::to_string(n));
        checkaccuracy(r, c, candidates);
        if (!candidates) continue;
        checkgivenvalues(r, c);
        checktrainingpedigree(r, c);
        checkestimates(r, c);
        if (!r.hasgenomes()) continue;
        checkgivengenotypes(r, c);
        checkcontributions(r, c);
        checkgains(r, c);
    }
}
} // namespace checkrun
