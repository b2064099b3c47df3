// benchquillomere.cpp - the evaluation programs at the sizes of real evaluations.
//
//     benchquillomere                  2,000 individuals x 10,000 SNPs, pedigree of 200,000
//     benchquillomere full             10,000 individuals x 50,000 SNPs as well (a GB of text)
//     benchquillomere N M              N training individuals x M SNPs
//     benchquillomere pedigree N       a pedigree of N
//
// Genomic: Quillomere's elapsed time against one single-precision ssyrk of the same individuals x
// SNPs by OpenBLAS plus reading the training file once, all on one thread; and its peak memory
// against 4 GiB. The population has families and linkage, since they decide how many rounds the
// solver needs: 25 sires and 250 dams per generation behind 100 founders who are mosaics of 20
// haplotypes. Pedigree: 40 generations of 25 sires and 500 dams, and, at a quarter of the size, of
// all animals mated at random, against a limit of 10 s per 200,000; peak memory against that at
// half the size (linear: 2).
#include "programruns.h"
#include "words.h"

#include <cmath>
#include <cstring>
#include <random>

namespace
{
using haplotypes = std::vector<std::vector<int8>>; // two rows for each individual
using generator = std::mt19937_64;
constexpr int64 nchrom = 10;

int64 below(generator &random, int64 n)
{
    return static_cast<int64>(random() % static_cast<std::uint64_t>(n));
}
double uniform(generator &random)
{
    return static_cast<double>(random() >> 11) * 0x1p-53;
}

haplotypes makefounders(generator &random, int64 nsnp)
{
    haplotypes ancestors(20), founders(200);
    for (auto &row : ancestors) row.resize(static_cast<std::size_t>(nsnp));
    for (std::size_t j = 0; j < static_cast<std::size_t>(nsnp); ++j) {
        const double p = std::pow(std::sin(1.5707963 * uniform(random)), 2); // U-shaped
        for (auto &row : ancestors) row[j] = uniform(random) < p;
    }
    for (auto &row : founders) {
        int64 from = below(random, 20);
        for (std::size_t j = 0; j < static_cast<std::size_t>(nsnp); ++j) {
            if (uniform(random) * static_cast<double>(nsnp) < 200) from = below(random, 20);
            row.push_back(ancestors[static_cast<std::size_t>(from)][j]);
        }
    }
    return founders;
}

// One gamete, with one crossing over per chromosome on average.
void makegamete(generator &random, const haplotypes &parents, int64 parent, int8 *gamete)
{
    const int64 nsnp = static_cast<int64>(parents[0].size()), perchrom = nsnp / nchrom;
    int64 strand = 0, next = 0;
    std::exponential_distribution<double> gap(1.0 / static_cast<double>(perchrom));
    for (int64 j = 0; j < nsnp; ++j) {
        if (j % perchrom == 0) {
            strand = below(random, 2);
            next = j + 1 + static_cast<int64>(gap(random));
        } else if (j == next) {
            strand = 1 - strand;
            next = j + 1 + static_cast<int64>(gap(random));
        }
        gamete[j] =
            parents[static_cast<std::size_t>(2 * parent + strand)][static_cast<std::size_t>(j)];
    }
}

struct parentset {
    std::vector<int64> sires, dams;
};
parentset chooseparents(generator &random, const haplotypes &from)
{
    parentset p;
    const int64 n = static_cast<int64>(from.size()) / 2;
    for (int64 i = 0; i < 25; ++i) p.sires.push_back(below(random, n));
    for (int64 i = 0; i < std::min<int64>(250, n); ++i) p.dams.push_back(below(random, n));
    return p;
}
int64 oneof(generator &random, const std::vector<int64> &list)
{
    return list[static_cast<std::size_t>(below(random, static_cast<int64>(list.size())))];
}

haplotypes makegeneration(generator &random, const haplotypes &from, int64 n)
{
    const parentset p = chooseparents(random, from);
    haplotypes children(static_cast<std::size_t>(2 * n));
    for (std::size_t i = 0; i < children.size(); ++i) {
        children[i].resize(from[0].size());
        makegamete(random, from, oneof(random, i % 2 ? p.dams : p.sires), children[i].data());
    }
    return children;
}

// Input files of n training and n / 5 test individuals; heritability 0.4. The training genotypes
// are left in g (SNPs of an individual contiguous).
void writegenomicinput(int64 n, int64 nsnp, std::vector<int8> &g)
{
    generator random(20240517);
    const haplotypes parents =
        makegeneration(random, makegeneration(random, makefounders(random, nsnp), 500), 500);
    const parentset chosen = chooseparents(random, parents);
    std::vector<int64> qtn(300);
    std::vector<double> effect(300);
    std::normal_distribution<double> normal;
    for (std::size_t q = 0; q < qtn.size(); ++q) {
        qtn[q] = below(random, nsnp);
        effect[q] = normal(random);
    }

    const int64 ntest = n / 5;
    outfile train("TmpChip1GenotypeTrain.txt"), test("TmpChip1GenotypeTest.txt");
    std::vector<double> tbv;
    std::vector<int8> gametes(static_cast<std::size_t>(2 * nsnp)), row(gametes.size() / 2);
    g.clear();
    textline line;
    for (int64 i = 1; i <= n + ntest; ++i) {
        makegamete(random, parents, oneof(random, chosen.sires), gametes.data());
        makegamete(random, parents, oneof(random, chosen.dams), gametes.data() + nsnp);
        for (std::size_t j = 0; j < row.size(); ++j)
            row[j] = static_cast<int8>(gametes[j] + gametes[j + row.size()]);
        double value = 0;
        for (std::size_t q = 0; q < qtn.size(); ++q)
            value += effect[q] * row[static_cast<std::size_t>(qtn[q])];
        tbv.push_back(value);
        puti(line, i, 20);
        putalleles(line, row.data(), nsnp);
        (i <= n ? train : test).writeline(line);
        if (i <= n) g.insert(g.end(), row.begin(), row.end());
    }
    train.close();
    test.close();

    double mean = 0, variance = 0;
    for (const double v : tbv) mean += v / static_cast<double>(tbv.size());
    for (const double v : tbv)
        variance += (v - mean) * (v - mean) / static_cast<double>(tbv.size());
    outfile phenotypes("SelectionPhenTrain.txt"), values("SelectionTbvTest.txt");
    for (int64 i = 1; i <= n + ntest; ++i) {
        const double v = tbv[static_cast<std::size_t>(i - 1)];
        puti(line, i, 20);
        putf(line, i <= n ? v + normal(random) * std::sqrt(1.5 * variance) : v, 20, 10);
        (i <= n ? phenotypes : values).writeline(line);
    }
    phenotypes.close();
    values.close();

    outfile fixed("FixedSnp.txt");
    for (int64 j = 0; j < nsnp; ++j) {
        int64 count = 0;
        for (int64 i = 0; i < n; ++i) count += g[static_cast<std::size_t>(i * nsnp + j)];
        putfree(line, count == 0 || count == 2 * n ? 0 : 1);
        fixed.writeline(line);
    }
    fixed.close();
    outfile spec("QuillomereSpec.txt");
    spec.writeline(" GenotypeTraining      ,TmpChip1GenotypeTrain.txt");
    spec.writeline(" GenotypeTesting       ,TmpChip1GenotypeTest.txt");
    spec.writeline(" PhenotypeTraining     ,SelectionPhenTrain.txt");
    spec.writeline(" TbvTesting            ,SelectionTbvTest.txt");
    spec.writeline(" FixedSnpFile          ,FixedSnp.txt");
    spec.writeline(freeline("nSnp                  ,", nsnp));
    spec.writeline(freeline("nAnisTraining         ,", n));
    spec.writeline(freeline("nAnisTest             ,", ntest));
    spec.writeline(" nRound                ,1000");
    spec.writeline(" nBurn                 ,0");
    spec.writeline(freeline("VarA                  ,", variance));
    spec.writeline(freeline("VarE                  ,", 1.5 * variance));
    spec.writeline(" NumberOfProcessors    ,1");
    spec.writeline(" ScalingOption         ,2");
    spec.writeline(" MissingGenoCode       ,9");
    spec.writeline(" MarkerSolver          ,Ridge");
    spec.close();
}

void benchgenomic(int64 n, int64 nsnp)
{
    double limit = 0;
    {
        std::vector<int8> g;
        writegenomicinput(n, nsnp, g);
        const double syrk = timessyrk(n, nsnp, g),
                     reading = timereading("TmpChip1GenotypeTrain.txt", n, nsnp);
        std::printf("one ssyrk %.2f s, reading the training file %.2f s\n", syrk, reading);
        limit = syrk + reading;
    }
    const usage used = run("Quillomere", "outQuillomere");
    const std::string size = numbertext(n) + "x" + numbertext(nsnp);
    printratio("quillomere-time-" + size, used.seconds / limit, 2);
    printratio("quillomere-memory-of-4GiB-" + size, used.mebibytes / 4096, 1);
}

// 40 generations; nsire 0: all animals are parents.
void writepedigreeinput(int64 n, int64 nsire, int64 ndam)
{
    generator random(7);
    std::normal_distribution<double> normal;
    outfile pedigree("PedigreeBlupTrain1.txt");
    std::vector<double> value{0}; // by animal from 1
    const int64 pergen = n / 40;
    std::vector<int64> sires, dams, all;
    textline line;
    for (int64 i = 1; i <= n; ++i) {
        if ((i - 1) % pergen == 0 && i > 1) {
            sires = dams = all = {};
            for (int64 k = i - pergen; k < i; ++k) all.push_back(k);
            std::shuffle(all.begin(), all.end(), random);
            const auto half = all.begin() + (nsire > 0 ? nsire : pergen / 2);
            sires.assign(all.begin(), half);
            dams.assign(half, nsire > 0 ? half + ndam : all.end());
        }
        const int64 sire = sires.empty() ? 0 : oneof(random, sires);
        const int64 dam = sires.empty() ? 0 : oneof(random, dams);
        const auto at = [&](int64 k) { return value[static_cast<std::size_t>(k)]; };
        value.push_back((at(sire) + at(dam)) / 2 + normal(random) * std::sqrt(sire ? 0.5 : 1));
        for (const int64 number : {i, sire, dam, int64{1}}) puti(line, number, 10);
        putf(line, i + pergen > n ? -99 : 10 + value.back() + normal(random) * 1.5, 20, 10);
        pedigree.writeline(line);
    }
    pedigree.close();
    outfile format("DataFormatParameters.txt");
    for (const char *text :
         {"Benchmark", "Blup", "PedigreeBlupTrain1.txt", "Animal,!P,0,F", "Sire,!P", "Dam,!P",
          "Id,!I", "Phen,!R", "MissingValue,-99", "nIterations,10000",
          "StartValuePolygenicVariance,1.0", "StartValueResidualVariance,2.25"})
        format.writeline(text);
    format.close();
}

usage runpedigree(int64 n, int64 nsire, int64 ndam)
{
    writepedigreeinput(n, nsire, ndam);
    return run("QuillomereP", "outQuillomere");
}

void benchpedigree(int64 n)
{
    const usage half = runpedigree(n / 2, 25, 500);
    const usage used = runpedigree(n, 25, 500);
    const std::string size = numbertext(n);
    printratio("quillomerep-seconds-of-10-" + size, used.seconds / 10, n / 200000.0);
    printratio("quillomerep-memory-of-half-" + size, used.mebibytes / half.mebibytes, 2.2);
    const usage random = runpedigree(n / 4, 0, 0);
    printratio("quillomerep-seconds-of-10-all-parents-" + numbertext(n / 4), random.seconds / 10,
               n / 200000.0);
}
} // namespace

int main(int argc, char **argv)
{
    return runtostop([&] {
        openblas_set_num_threads(1);
        if (argc == 3 && std::strcmp(argv[1], "pedigree") == 0) {
            infreshfolder([&] { benchpedigree(std::atoll(argv[2])); });
            return;
        }
        if (argc == 3) {
            infreshfolder([&] { benchgenomic(std::atoll(argv[1]), std::atoll(argv[2])); });
            return;
        }
        infreshfolder([] { benchgenomic(2000, 10000); });
        infreshfolder([] { benchpedigree(200000); });
        if (argc == 2 && std::strcmp(argv[1], "full") == 0)
            infreshfolder([] { benchgenomic(10000, 50000); });
    });
}
