// benchvalues.cpp - the values of a generation: breeding values against a bare loop of table
// look-ups, and the whole stage against writing its output bytes. Prints, for each comparison,
// "name ratio X.XX allowed Y.YY" (medians of several repetitions) beside the two times.
#include "files.h"
#include "openstate.h"
#include "pedigree/pedigreefiles.h"
#include "stops.h"
#include "traits/simulateqtneffects.h"
#include "values/breedingvalues.h"
#include "values/burninvalues.h"
#include "values/valuearrays.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{
namespace fs = std::filesystem;

constexpr int64 nindiv = 10000, nchrom = 10, nqtn = 2000;

double seconds(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// A stage without its report on standard output.
void quietly(const std::function<void()> &stage)
{
    std::fflush(stdout);
    const int report = dup(STDOUT_FILENO), nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    stage();
    std::fflush(stdout);
    dup2(report, STDOUT_FILENO);
    close(report);
    close(nowhere);
}

// Both sides turn by turn, so that what else the machine does meets both alike.
void compare(const char *name, double allowed, int repetitions, const std::function<void()> &ours,
             const std::function<void()> &bare)
{
    std::vector<double> a, b;
    for (int r = 0; r < repetitions; ++r) {
        b.push_back(seconds(bare));
        a.push_back(seconds(ours));
    }
    std::sort(a.begin(), a.end());
    std::sort(b.begin(), b.end());
    const double x = a[a.size() / 2], y = b[b.size() / 2];
    std::printf("%s ratio %.2f allowed %.2f  (%.1f ms, spread %.1f to %.1f; floor %.1f ms, %.1f to "
                "%.1f)\n",
                name, x / y, allowed, 1e3 * x, 1e3 * a.front(), 1e3 * a.back(), 1e3 * y,
                1e3 * b.front(), 1e3 * b.back());
    std::fflush(stdout);
}

openstate settings()
{
    openstate s;
    s.random.idum = -1;
    s.founders.nchrom = nchrom;
    s.founders.morgans = 1;
    s.run.specstartgen = s.run.specendgen = s.pop.ngen = 1;
    s.pop.ngensel = 0;
    s.pop.nindivp = nindiv;
    s.pedi.nindivinthisgen.allocate({0, 1});
    s.pedi.cumindivnbtogen.allocate({0, 1});
    s.pedi.nindivinthisgen(1) = s.pedi.cumindivnbtogen(1) = nindiv;
    s.pop.pedigreefrom = pedigreesource::internal;
    s.chips.nchip = 1;
    s.qtn.nqtn = s.qtn.nqtngamma = nqtn;
    s.qtn.shapeparam = 0.4;
    s.qtn.scaleparam = 1.66;
    s.traits.ntraits = 1;
    for (array1<double> *a : {&s.traits.herit, &s.traits.varaspec}) a->allocate(1, 0.5);
    for (array2<double> *a :
         {&s.traits.coraspec, &s.traits.core, &s.values.covaspec, &s.values.cholcovaspec})
        a->allocate(1, 1, 1.0);
    for (array3<double> *a : {&s.values.cove, &s.values.cholcove}) a->allocate(4, 1, 1);
    return s;
}

// The files of a simulation whose generation 1 has been dropped, with random genotypes.
void writeinputs(const openstate &s)
{
    std::mt19937 draws(1);
    fs::create_directories("SimulatedData");
    textline line;
    const int64 n = nqtn / nchrom;
    std::vector<int8> row(static_cast<std::size_t>(n));
    for (int64 h = 1; h <= nchrom; ++h) {
        const std::string folder = chromfolder(h);
        fs::create_directories(folder);
        outfile(folder + "SegSitesIncluded.txt").writeline(" 6000");
        outfile(folder + "NbOfQtnMutationsAndSnp.txt").writeline(freeline(n, 0, 10));
        outfile(folder + "MutIndivIndicator.txt").close();
        for (const std::string set : {"Unrestricted", "Restricted"}) {
            outfile information(folder + (set == "Restricted" ? "" : "Un") +
                                "RestrictedQtnInformation.txt");
            outfile frequencies(folder + set + "QtnAlleleFreqGeneration1.txt");
            for (int64 q = 1; q <= n; ++q) {
                information.writeline(freeline(q, 3 * q, 0.25, 0.5, 0, 0));
                frequencies.writeline(freeline(q, 3 * q, 0.5));
            }
            outfile genotypes(folder + set + "QtnGenotypeGeneration1.txt");
            for (int64 i = 1; i <= nindiv; ++i) {
                for (int8 &x : row) {
                    const auto bits = draws();
                    x = static_cast<int8>((bits & 1) + (bits >> 1 & 1));
                }
                puti(line, i, 20);
                putalleles(line, row.data(), n);
                genotypes.writeline(line);
            }
            information.close();
            frequencies.close();
            genotypes.close();
        }
    }
    outfile pedigree(pedigreetable), genders(gendertable), generations(generationtable);
    for (outfile *out : {&pedigree, &genders, &generations}) out->writeline("title");
    generations.writeline(freeline(1, s.pop.nindivp, nindiv / 2, nindiv / 2));
    for (int64 i = 1; i <= nindiv; ++i) {
        for (const int64 key : {int64{1}, i, i, int64{0}, int64{0}}) puti(line, key, 20);
        pedigree.writeline(line += " /run");
        genders.writeline(freeline(1, i, 1 + i % 2));
    }
    for (outfile *out : {&pedigree, &genders, &generations}) out->close();
}

// Four models, each adding a table value per genotype, QTN by QTN, individual by individual.
void barelookups(const array2<int8> *const *genos, array2<double> &sums)
{
    double table[3] = {-0.9, 0.1, 1.1};
    for (int64 p = 1; p <= 4; ++p)
        for (int64 q = 1; q <= nqtn; ++q) {
            table[0] += 1e-6;
            const int8 *const x = genos[p - 1]->column(q);
            double *const sum = sums.column(p);
            for (int64 k = 0; k < nindiv; ++k) sum[k] += table[x[k]];
        }
}

void comparebreedingvalues(openstate &s)
{
    s.values.nindivinsimulrun = nindiv;
    arrayscope arrays;
    makevaluearrays(s, arrays);
    makegenotypetables(s, arrays);
    std::mt19937 draws(2);
    const array2<int8> *genos[4];
    for (int64 p = 1; p <= 4; ++p) genos[p - 1] = &s.loci.sets[s.loci.model(p).set].qtngenos;
    for (const qtnset set : traitsets)
        for (int8 &x : s.loci.sets[set].qtngenos) x = static_cast<int8>(draws() % 3);
    array2<double> sums(nindiv, 4);
    compare(
        "breeding values, 10000 x 2000 x 4 models", 1.5, 7, [&] { computetbv(s, 1, nindiv); },
        [&] { barelookups(genos, sums); });
    volatile double keep = sums(1, 1) + sums(nindiv, 4);
    static_cast<void>(keep);
}

// Output files of the values stage.
std::vector<std::string> outputs()
{
    std::vector<std::string> names = {"UnrestrictedQtnIndivGenotypes.txt",
                                      "RestrictedQtnIndivGenotypes.txt",
                                      "PedigreeTbvTdvTpv.txt",
                                      "GeneticMeansPerGeneration.txt",
                                      "TotalGenicAndGeneticVariancesPerGeneration.txt",
                                      "TraitVarianceComponents.txt",
                                      "TraitVarianceComponentsCovariance.txt"};
    for (int p = 1; p <= 4; ++p)
        names.push_back("TraitVarianceComponentsResidualCholQtnModel" + std::to_string(p) + ".txt");
    return names;
}

void comparestage(openstate &s)
{
    std::size_t bytes = 0;
    const auto names = outputs();
    const auto runstage = [&] { quietly([&] { computetbvvaravareandburnintpv(s); }); };
    runstage(); // the first run makes the files
    for (const auto &name : names) bytes += fs::file_size("SimulatedData/" + name);
    const std::string ready(bytes, '1');
    std::printf("values stage writes %.1f MB\n", 1e-6 * static_cast<double>(bytes));
    compare("values stage of a generation", 4, 5, runstage, [&] {
        std::size_t at = 0;
        for (const auto &name : names) {
            const std::size_t n = fs::file_size("SimulatedData/" + name);
            outfile out("SimulatedData/Ready" + name);
            out.write(std::string_view(ready).substr(at, n));
            out.close();
            at += n;
        }
    });
}
} // namespace

int main()
{
    const fs::path before = fs::current_path();
    std::string pattern = (fs::temp_directory_path() / "solvantobenchXXXXXX").string();
    if (!mkdtemp(pattern.data())) return 1;
    fs::current_path(pattern);
    const int status = runtostop([] {
        openstate s = settings();
        writeinputs(s);
        quietly([&] { simulateqtneffects(s); });
        comparebreedingvalues(s);
        comparestage(s);
    });
    fs::current_path(before);
    fs::remove_all(pattern);
    return status;
}
