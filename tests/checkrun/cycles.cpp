// Selection cycles: what candidates and training individuals are said to be is what they are;
// matings, accuracies and average coancestry follow.
#include "checkrun/runfolder.h"

#include <algorithm>
#include <cmath>

namespace checkrun
{
namespace
{
struct cycle {
    int64 number, generation; // of the candidates
    std::string folder;
};

// Behind the values of several traits stands the trait.
std::string oftrait(const run &r, const std::string &stem, int64 t)
{
    return stem + (r.ntraits > 1 ? numbered("Trait", t, "") : "") + ".txt";
}

// A file of individuals, of the candidates in order or of any, and a value of each.
void checkindividuals(run &r, const std::string &path, const cycle *candidates,
                      const std::string &what, const std::function<double(int64)> &value)
{
    if (!r.files.there(path)) return;
    const textfile file = r.files.read(path);
    r.files.table(path, 0, candidates ? r.size(candidates->generation) : file.n(),
                  "individual, " + what, [&](int64 k) {
                      const int64 i =
                          candidates ? r.first(candidates->generation) + k - 1 : file(k).whole(1);
                      return reals{double(i), i >= 1 && i <= r.nindiv ? value(i) : 1e99};
                  });
}

void checkgivenvalues(run &r, const cycle &c)
{
    const bool outside = r.spec.word("UseExternalSnpSolutionsYesNo") == "yes";
    if (outside) r.told.leaveout("phenotypes of training individuals", "they come from outside");
    for (int64 t = 1; t <= r.ntraits; ++t) {
        const auto check = [&](const char *stem, const cycle *candidates, int64 kind) {
            checkindividuals(r, oftrait(r, c.folder + stem, t), candidates, "value",
                             [&](int64 i) { return r.value(i, kind, r.selectedmodel, t); });
        };
        check("SelectionTbvTest", &c, 1);
        check("SelectionPhenTest", &c, 3);
        if (!outside) check("SelectionPhenTrain", nullptr, 3);
    }
    checkindividuals(r, c.folder + "GenderTesting.txt", &c, "gender",
                     [&](int64 i) { return double(r.individuals(i).gender); });
    if (!r.files.there(c.folder + "SelectionTbvRecombZTesting.txt")) return;
    const textfile values = r.files.read("SimulatedData/PedigreeTbvRecombination.txt");
    checkindividuals(r, c.folder + "SelectionTbvRecombZTesting.txt", &c, "value",
                     [&](int64 i) { return values(i + 1)(5); });
    if (!outside) // logarithms in single precision
        checkindividuals(
            r, c.folder + "SelectionPhenRecombTrain.txt", nullptr, "log of the crossings",
            [&](int64 i) { return double(std::log(float(values(i + 1)(9)) + 0.0001f)); });
}

// The training pedigree, numbered from 1, which ends with the candidates; nothing is known of its
// first generation's parents.
void checktrainingpedigree(run &r, const cycle &c, int64 t)
{
    const std::string path = numbered(c.folder + "PedigreeBlupTrain", t, ".txt");
    if (!r.files.there(path)) return;
    const textfile file = r.files.read(path);
    const int64 before = r.last(c.generation) - file.n();
    if (!r.told.holds(before >= 0, {path}, "individuals up to the candidates")) return;
    r.files.table(path, 0, file.n(), "number, sire, dam, code, phenotype", [&](int64 k) {
        const int64 *parent = r.individuals(before + k).parent;
        const bool known =
            r.individuals(before + k).generation > r.individuals(before + 1).generation;
        const auto number = [&](int64 i) { return double(known * std::max<int64>(i - before, 0)); };
        const double phenotype =
            file(k)(5) == -99 ? -99 : r.value(before + k, 3, r.selectedmodel, t);
        return reals{double(k), number(parent[1]), number(parent[2]), any, phenotype};
    });
}

// Genotypes and phases at the selection chip, behind which the QTN stand if they are added to it.
void checkgivengenotypes(run &r, const cycle &c)
{
    const auto check = [&](const std::string &path, const list<genomesite> &sites) {
        const bool phase = path.find("Phase") != std::string::npos;
        if (r.files.there(path)) checkgenotypes(r, path, 0, sites, phase, 0, 0);
    };
    const list<genomesite> qtn = r.sitesof(r.selectedset);
    check(c.folder + "TmpQtnGenotypeTest.txt", qtn);
    for (int64 e = 1; e <= r.nchips; ++e) {
        const std::string chip = numbered("Chip", e, "");
        list<genomesite> sites = r.sitesof(chip);
        if (r.spec.word("AddQtnToTheSnpChipYesNo") == "yes" &&
            r.spec.word("UseSnpChipOnOff") == "on")
            sites.insert(sites.end(), qtn.begin(), qtn.end());
        for (const char *which :
             {"GenotypeTest", "GenotypeTrain", "GenotypeLastGeneration", "PhaseTrain"})
            check(c.folder + "Tmp" + chip + which + ".txt", sites);
    }
}

// Accuracy, mean and variance of the true values of a generation, five decimals. The accuracies of
// true values, phenotypes and genomic estimates are made again.
void checkaccuracy(run &r, const cycle &c, bool candidates)
{
    const std::string path = numbered("Selection/AccuracyOfBreedingValueSelectionCycle", c.number,
                                      ".txt"),
                      method = r.spec.word("SelectionMethod");
    if (!r.files.there(path)) return;
    const textfile file = r.files.read(path);
    for (int64 t = 1; t <= r.ntraits; ++t) {
        const numberline line = file(1 + t);
        const int64 before = r.ntraits > 1; // the trait
        const bool recombination = line.n() - before == 7;
        const textfile estimates = candidates && method == "gblup"
                                       ? r.files.read(oftrait(r, c.folder + "Ebv", t))
                                       : textfile{};
        const reals tbv = column(r, c.generation, 1, r.selectedmodel, t);
        reals criterion = column(r, c.generation, method == "pheno" ? 3 : 1, r.selectedmodel, t);
        for (int64 k = 1; k <= criterion.n() && method.ends_with("blup"); ++k)
            criterion(k) = estimates(k)(2);
        const place where{path, 1 + t};
        r.told.is(where, "mean true value", mean(tbv), line(before + (recombination ? 3 : 2)),
                  0.51e-5);
        r.told.is(where, "variance of true values", covariance(tbv, tbv),
                  line(before + (recombination ? 6 : 3)), 0.51e-5);
        const double product = covariance(tbv, tbv) * covariance(criterion, criterion);
        if (candidates && product > 1e-12)
            r.told.is(where, "accuracy", covariance(tbv, criterion) / std::sqrt(product),
                      line(before + 1), 0.6e-5);
    }
}

// Matings are those of the list. Average relationships are x'Gx of equal shares and of the shares
// among the parents of the next generation; in the last cycle the matrix is the last generation's.
void checkcontributions(run &r, const cycle &c)
{
    const std::string list = c.folder + "CorvalindResults/MatingListFinal.txt",
                      table = "SimulatedData/AverageCoancestry.txt",
                      matrixfile = c.folder + "GFullMatrix1-1.txt";
    const int64 first = r.first(c.generation), next = c.generation + 1;
    if (r.files.there(list) && next <= r.ngenerations)
        r.files.table(
            list, 0, r.size(next), "places of sire and dam among the candidates", [&](int64 k) {
                const int64 *parent = r.individuals(r.first(next) + k - 1).parent;
                return reals{double(parent[1] - first + 1), double(parent[2] - first + 1)};
            });
    if (!r.files.there(table) || !r.files.there(matrixfile)) return;
    const textfile file = r.files.read(table), matrix = r.files.read(matrixfile);
    for (int64 k = 2; k <= file.n(); ++k) {
        const int64 g = file(k).whole(1), n = matrix.n();
        if (g < 1 || g > r.ngenerations || matrix(1).whole(1) != r.first(g)) continue;
        reals shares(static_cast<std::size_t>(n), 0.0);
        for (int64 i = r.first(g) + r.size(g); g < r.ngenerations && i <= r.last(g + 1); ++i)
            for (const int64 side : {1, 2})
                if (const int64 at = r.individuals(i).parent[side] - r.first(g) + 1;
                    at >= 1 && at <= n)
                    shares(at) += 0.5 / double(r.size(g + 1));
        double equal = 0, chosen = 0;
        for (int64 i = 1; i <= n; ++i) {
            const numberline row = matrix(i);
            for (int64 j = 1; j <= n; ++j) {
                equal += row(1 + j) / double(n * n);
                chosen += shares(i) * row(1 + j) * shares(j);
            }
        }
        r.told.is({table, k}, "average relationship", equal, file(k)(3), 1e-9);
        if (g < r.ngenerations)
            r.told.is({table, k}, "average relationship of parents", chosen, file(k)(4), 1e-9);
    }
}
} // namespace

void checkcycles(run &r)
{
    if (r.merged && r.spec.word("MergeTypes") != "none")
        return r.told.leaveout("selection cycles", "a merge takes their folders from other runs");
    for (int64 g = std::max<int64>(r.nburnin, 1); g <= r.ngenerations; ++g) {
        const int64 number = g - r.nburnin + 1;
        const cycle c{number, g, numbered("Selection/SelectionFolder", number, "/")};
        const bool candidates = r.files.there(c.folder);
        if (g + 1 < r.firstgeneration) {
            if (candidates)
                r.told.leaveout("cycles of earlier runs",
                                "the specification is that of the last run");
            continue;
        }
        checkaccuracy(r, c, candidates);
        if (!candidates) continue;
        checkgivenvalues(r, c);
        for (int64 t = 1; t <= r.ntraits; ++t) checktrainingpedigree(r, c, t);
        if (!r.chromosomes.empty()) checkgivengenotypes(r, c);
        checkcontributions(r, c);
    }
}
} // namespace checkrun
