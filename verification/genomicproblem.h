// genomicproblem.h - small problems of genomic prediction, and their files as a cycle leaves them.
#pragma once

#include "evaluationproblems.h"
#include "openstate.h"

#include <filesystem>
#include <random>
#include <string>
#include <vector>

struct problem {
    genotyperows train, test;
    std::vector<double> phenotype, tbv;
    double vara = 2.5, vare = 1.5;
    int64 nsnp() const { return static_cast<int64>(train[0].size()); }
};

// Independent genotypes, 3 % of them missing; SNPs 2 and 5 are fixed in training.
inline problem makeproblem(int64 ntrain, int64 ntest, int64 nsnp, unsigned seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> uniform;
    std::normal_distribution<double> normal;
    std::vector<double> p;
    for (int64 j = 0; j < nsnp; ++j)
        p.push_back(j == 1 ? 0 : j == 4 ? 1 : 0.05 + 0.9 * uniform(random));
    const auto draw = [&](genotyperows &rows, int64 n) {
        for (int64 i = 0; i < n; ++i) {
            std::vector<int> row;
            for (const double freq : p)
                row.push_back(uniform(random) < 0.03
                                  ? 9
                                  : (uniform(random) < freq) + (uniform(random) < freq));
            rows.push_back(row);
        }
    };
    problem q;
    draw(q.train, ntrain);
    draw(q.test, ntest);
    for (auto &row : q.train) row[1] = 0, row[4] = 2;
    for (int64 i = 0; i < ntrain; ++i) q.phenotype.push_back(30 + 2 * normal(random));
    for (int64 i = 0; i < ntest; ++i) q.tbv.push_back(normal(random));
    return q;
}

inline std::string valuetext(const std::vector<double> &values, int64 firstid)
{
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        puti(text, firstid + static_cast<int64>(i), 20);
        putf(text, values[i], 20, 10);
        text += '\n';
    }
    return text;
}

inline bool segregates(const problem &q, std::size_t j)
{
    bool low = false, high = false;
    for (const auto &row : q.train) {
        if (row[j] == 9) continue;
        low = low || row[j] < 2;
        high = high || row[j] > 0;
    }
    return low && high;
}

// The specification as the system writes it.
inline void writespec(const problem &q)
{
    openstate s = evaluationstate(q.vara, q.vare);
    s.chips.tmpchip = 1;
    s.loci.nsnpforsel = q.nsnp();
    s.cycle.ntrainindiv = std::ssize(q.train);
    s.cycle.ntestindiv = std::ssize(q.test);
    s.selection.selmethindicator = 2;
    writequillomerespec(s, 1, 1, 1);
    std::filesystem::rename("Selection/SelectionFolder1/QuillomereSpec.txt", "QuillomereSpec.txt");
}

inline void writeproblem(const problem &q)
{
    writefile("TmpChip1GenotypeTrain.txt", genotypetext(q.train, 11));
    writefile("TmpChip1GenotypeTest.txt", genotypetext(q.test, 501));
    writefile("SelectionPhenTrain.txt", valuetext(q.phenotype, 11));
    writefile("SelectionTbvTest.txt", valuetext(q.tbv, 501));
    std::string fixed;
    for (std::size_t j = 0; j < static_cast<std::size_t>(q.nsnp()); ++j)
        fixed += segregates(q, j) ? " 1\n" : " 0\n";
    writefile("FixedSnp.txt", fixed);
    writespec(q);
}
