// benchcorvalind.cpp - optimal contributions and mate allocation at the size of real programmes.
//
//     benchcorvalind          2,000 candidates in one pool; 1,000 males and 1,000 females
//     benchcorvalind N        N candidates, both ways
//     benchcorvalind N FOLDER writes the files of N candidates in one pool there, and runs nothing
//
// Corvalind's processor time (it works on one thread), reading and writing included, against a
// limit of 5 s for 2,000 candidates, which otherwise goes by the cube of their number. Candidates
// come from two generations of 25 sires and 250 dams behind 200 founders, 10 chromosomes of 200
// markers; breeding values are sums of effects of a tenth of the markers, relationships VanRaden's
// first with 0.001 on the diagonal.
#include "files.h"
#include "stops.h"
#include "words.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sys/resource.h>
#include <unistd.h>

namespace
{
using generator = std::mt19937_64;
using haplotypes = std::vector<std::vector<float>>; // two rows for each individual
constexpr std::size_t nchrom = 10, perchrom = 200, nmarkers = nchrom * perchrom;

double uniform(generator &random)
{
    return static_cast<double>(random() >> 11) * 0x1p-53;
}

haplotypes makefounders(generator &random)
{
    haplotypes founders(400, std::vector<float>(nmarkers));
    for (std::size_t j = 0; j < nmarkers; ++j) {
        const double p = 0.05 + 0.9 * uniform(random);
        for (auto &row : founders) row[j] = uniform(random) < p;
    }
    return founders;
}

// Offspring of 25 sires and 250 dams out of all; one crossing over per chromosome on average.
haplotypes makegeneration(generator &random, const haplotypes &from, std::size_t n)
{
    std::vector<std::size_t> sires(25), dams(250);
    for (auto *list : {&sires, &dams})
        for (std::size_t &parent : *list) parent = random() % (from.size() / 2);
    haplotypes children(2 * n, std::vector<float>(nmarkers));
    for (std::size_t i = 0; i < children.size(); ++i) {
        const auto &list = i % 2 == 0 ? sires : dams;
        const std::size_t parent = list[random() % list.size()];
        std::size_t strand = 0;
        for (std::size_t j = 0; j < nmarkers; ++j) {
            if (j % perchrom == 0)
                strand = random() % 2;
            else if (uniform(random) * perchrom < 1)
                strand = 1 - strand;
            children[i][j] = from[2 * parent + strand][j];
        }
    }
    return children;
}

struct population {
    std::size_t n = 0;
    std::vector<float> z; // (n, nmarkers): genotypes less twice the frequency
    std::vector<double> breedingvalue;
    double scale = 0; // 2 sum p (1 - p)
};

population makepopulation(std::size_t n)
{
    generator random(20240517);
    const haplotypes last =
        makegeneration(random, makegeneration(random, makefounders(random), 1000), n);
    population p;
    p.n = n;
    p.z.resize(n * nmarkers);
    p.breedingvalue.resize(n);
    std::normal_distribution<double> normal;
    for (std::size_t j = 0; j < nmarkers; ++j) {
        double sum = 0;
        for (const auto &row : last) sum += row[j];
        const double freq = sum / static_cast<double>(2 * n);
        p.scale += 2 * freq * (1 - freq);
        const double effect = j % 10 == 0 ? normal(random) : 0;
        for (std::size_t i = 0; i < n; ++i) {
            const double genotype = last[2 * i][j] + last[2 * i + 1][j];
            p.z[i * nmarkers + j] = static_cast<float>(genotype - 2 * freq);
            p.breedingvalue[i] += effect * genotype;
        }
    }
    return p;
}

void writerelationships(const population &p)
{
    outfile out("GFullMatrix1-1.txt");
    textline line;
    for (std::size_t i = 0; i < p.n; ++i) {
        putfree(line, static_cast<int64>(1001 + i));
        for (std::size_t k = 0; k < p.n; ++k) {
            const float *const a = p.z.data() + i * nmarkers, *const b = p.z.data() + k * nmarkers;
            float sums[16] = {};
            for (std::size_t j = 0; j < nmarkers; j += 16)
                for (std::size_t lane = 0; lane < 16; ++lane)
                    sums[lane] += a[j + lane] * b[j + lane];
            double sum = 0;
            for (const float part : sums) sum += part;
            putfree(line, sum / p.scale + (i == k ? 0.001 : 0));
        }
        out.writeline(line);
    }
    out.close();
}

void writeinput(const population &p)
{
    writerelationships(p);
    outfile values("Ebv.txt"), genders("GenderTesting.txt"), seed("Seed.txt");
    for (std::size_t i = 0; i < p.n; ++i) {
        values.writeline(freeline(static_cast<int64>(1001 + i), p.breedingvalue[i]));
        genders.writeline(freeline(static_cast<int64>(1001 + i), i % 2 == 0 ? 1 : 2));
    }
    seed.writeline("-1234");
    for (outfile *file : {&values, &genders, &seed}) file->close();
}

void writespec(int64 n, bool sexesmatter)
{
    outfile spec("CorvalindSpec.txt");
    spec.writeline(" RelationshipMatrixFile                  ,GFullMatrix1-1.txt");
    spec.writeline(" BreedingValueFile                       ,Ebv.txt");
    if (sexesmatter) {
        spec.writeline(" PerformMatingsConsideringTheGender      ,Yes");
        spec.writeline(" GenderFile                              ,GenderTesting.txt");
        spec.writeline(freeline("NumberOfMales                           ,", (n + 1) / 2));
        spec.writeline(freeline("NumberOfFemales                         ,", n / 2));
    } else {
        spec.writeline(" PerformMatingsConsideringTheGender      ,No");
        spec.writeline(freeline("NumberOfIndividuals                     ,", n));
    }
    spec.writeline(freeline("NumberOfMatings                         ,", n));
    spec.writeline(" PercentageDifferenceInbreeding           ,0.01");
    spec.writeline(" SizeOfPopulationOfXvectors              ,1000");
    spec.writeline(" MaximumNumberOfGenerations              ,1000");
    spec.close();
}

// Processor time of the program, which works on one thread.
double timeprogram()
{
    const auto used = [] {
        rusage usage{};
        ::getrusage(RUSAGE_CHILDREN, &usage);
        const auto seconds = [](const timeval &time) {
            return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
        };
        return seconds(usage.ru_utime) + seconds(usage.ru_stime);
    };
    std::fflush(stdout);
    const double before = used();
    if (std::system(SOLVANTO_BINFOLDER "/Corvalind >outCorvalind") != 0)
        ioerror("Corvalind", "failed");
    return used() - before;
}

// The report up to the list of contributors.
void showlog()
{
    infile in("outCorvalind");
    while (in.nextrecord() && in.line().find("Contributors:") != 0)
        std::printf("    %.*s\n", static_cast<int>(in.line().size()), in.line().data());
}

void bench(int64 n)
{
    writeinput(makepopulation(static_cast<std::size_t>(n)));
    for (const bool sexesmatter : {false, true}) {
        writespec(n, sexesmatter);
        const double seconds = timeprogram();
        showlog();
        std::printf("Corvalind %.2f s\n", seconds);
        const double size = static_cast<double>(n) / 2000;
        std::printf("corvalind-seconds-of-5-%s-%s ratio %.2f allowed %.2f\n",
                    sexesmatter ? "sexes" : "onepool", numbertext(n).c_str(), seconds / 5,
                    std::max(size * size * size, 0.1));
        std::fflush(stdout);
    }
}
} // namespace

int main(int argc, char **argv)
{
    return runtostop([&] {
        namespace fs = std::filesystem;
        const int64 n = argc > 1 ? std::atoll(argv[1]) : 2000;
        if (argc > 2) {
            fs::current_path(argv[2]);
            writeinput(makepopulation(static_cast<std::size_t>(n)));
            writespec(n, false);
            return;
        }
        const fs::path before = fs::current_path();
        std::string folder = (fs::temp_directory_path() / "benchcorvalindXXXXXX").string();
        if (!::mkdtemp(folder.data())) ioerrno(folder, "can't make");
        fs::current_path(folder);
        bench(n);
        fs::current_path(before);
        fs::remove_all(folder);
    });
}
