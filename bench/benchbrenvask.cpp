// benchbrenvask.cpp - relationships of the candidates of a cycle.
//
//     benchbrenvask           2,000 individuals x 50,000 loci
//     benchbrenvask N M       N individuals x M loci
//
// Brenvask's elapsed time against one single-precision ssyrk of the same individuals x loci by
// OpenBLAS, reading the genotype file once and writing as many relationships, all on one thread and
// measured in the same run. Genotypes are independent: no step depends on what they are.
#include "programruns.h"
#include "words.h"

#include <cmath>
#include <random>

namespace
{
// The genotype file; the genotypes are left in g (loci of an individual contiguous).
void writegenotypes(const std::string &filename, int64 n, int64 nsnp, std::vector<int8> &g)
{
    std::mt19937_64 random(20240517);
    std::vector<std::uint64_t> threshold; // of 32 bits: the frequency
    for (int64 j = 0; j < nsnp; ++j) threshold.push_back(random() >> 32);
    outfile out(filename);
    textline line;
    g.clear();
    std::vector<int8> row(static_cast<std::size_t>(nsnp));
    for (int64 i = 1; i <= n; ++i) {
        for (std::size_t j = 0; j < row.size(); ++j) {
            const std::uint64_t bits = random();
            row[j] = static_cast<int8>((bits >> 32 < threshold[j]) +
                                       ((bits & 0xffffffff) < threshold[j]));
        }
        puti(line, i, 20);
        putalleles(line, row.data(), nsnp);
        out.writeline(line);
        g.insert(g.end(), row.begin(), row.end());
    }
    out.close();
}

void writespec(const std::string &filename, int64 nsnp)
{
    outfile spec("BrenvaskSpec.txt");
    for (const std::string &text :
         {"GenotypeFile," + filename, std::string("PedigreeFile,None"),
          std::string("WeightFile,None"), std::string("NumberOfTraits,1"),
          "NumberOfSnp," + numbertext(nsnp), std::string("InversionOfG,Ordinary"),
          std::string("DiagonalFudgeFactor,0.001"), std::string("MakeG,Yes"),
          std::string("UseAlleleFreqFromAPreviousSelCycleOnOff,Off"),
          std::string("UseAlleleFreqFromThisSelCycle,1"), std::string("VanRadenGFullMat,Yes")})
        spec.writeline(text.c_str());
    for (const char *key : {"MakeGinverse", "MakeA", "MakeAinverse", "MakeH", "MakeHinverse",
                            "VanRadenGIJA", "InverseVanRadenGFullMat", "InverseVanRadenGIJA",
                            "AmatFullMat", "AmatIJA", "InverseAmatFullMat", "InverseAmatIJA",
                            "HmatFullMat", "HmatIJA", "InverseHmatFullMat", "InverseHmatIJA"})
        spec.writeline(std::string(key) + ",No");
    spec.close();
}

// Writing n x n reals with ten decimals.
double timewriting(int64 n)
{
    std::vector<double> row;
    for (int64 k = 0; k < n; ++k) row.push_back(std::sin(static_cast<double>(k)) / 8);
    const auto start = clocktype::now();
    outfile out("Floor.txt");
    textline line;
    for (int64 i = 1; i <= n; ++i) {
        puti(line, i, 20);
        for (const double value : row) putf(line, value, 20, 10);
        out.writeline(line);
    }
    out.close();
    return since(start);
}

void benchrelationships(int64 n, int64 nsnp)
{
    const std::string filename = "TmpChip1GenotypeTest.txt";
    double limit = 0;
    {
        std::vector<int8> g;
        writegenotypes(filename, n, nsnp, g);
        const double syrk = timessyrk(n, nsnp, g), reading = timereading(filename, n, nsnp),
                     writing = timewriting(n);
        std::printf("one ssyrk %.2f s, reading the genotypes %.2f s, writing the relationships "
                    "%.2f s\n",
                    syrk, reading, writing);
        limit = syrk + reading + writing;
    }
    writespec(filename, nsnp);
    const usage used = run("Brenvask", "outBrenvask");
    printratio("brenvask-time-" + numbertext(n) + "x" + numbertext(nsnp), used.seconds / limit, 2);
}
} // namespace

int main(int argc, char **argv)
{
    return runtostop([&] {
        openblas_set_num_threads(1);
        const int64 n = argc == 3 ? std::atoll(argv[1]) : 2000;
        const int64 nsnp = argc == 3 ? std::atoll(argv[2]) : 50000;
        infreshfolder([&] { benchrelationships(n, nsnp); });
    });
}
