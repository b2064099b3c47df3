// pedigreeproblem.h - small problems of pedigree prediction, their files as a cycle leaves them,
// and the file of results.
#pragma once

#include "evaluationproblems.h"
#include "openstate.h"

#include <filesystem>
#include <random>
#include <string>
#include <vector>

inline constexpr const char *resultfile = "ResultAverageEstimatedPolygenicBreedingValues.txt";

struct animal {
    int64 sire = 0, dam = 0, code = 1;
    double phenotype = -99;
};
using pedigree = std::vector<animal>; // entry 0 is unused: animals from 1

// Numbers of the animals: step x index.
inline std::string pedigreetext(const pedigree &p, int64 step = 1)
{
    std::string text;
    for (std::size_t i = 1; i < p.size(); ++i) {
        puti(text, step * static_cast<int64>(i), 10);
        puti(text, step * p[i].sire, 10);
        puti(text, step * p[i].dam, 10);
        puti(text, p[i].code, 10);
        putf(text, p[i].phenotype, 20, 10);
        text += '\n';
    }
    return text;
}

// A pedigree with everything: founders, one unknown parent, crosses of relatives, selfing over
// generations, doubled haploids (with selfed offspring of theirs, crosses among them, and of
// unknown parents), animals without phenotype.
inline pedigree mixedpedigree(int64 n, unsigned seed, bool plants)
{
    std::mt19937_64 random(seed);
    std::normal_distribution<double> normal;
    pedigree p(1);
    for (int64 i = 1; i <= n; ++i) {
        animal next;
        const auto earlier = [&] { // among the last 25
            const int64 first = std::max<int64>(1, i - 25);
            return first + static_cast<int64>(random() % static_cast<std::uint64_t>(i - first));
        };
        if (i > 8) {
            const std::uint64_t kind = random() % 10;
            next.sire = kind == 0 ? 0 : earlier();
            next.dam = kind <= 1 ? 0 : earlier();
            if (plants && kind >= 6) next.dam = next.sire;
            if (plants && kind >= 8) next.code = 2;
        } else if (plants && i == 3) {
            next.code = 2;
        }
        if (random() % 4 != 0) next.phenotype = 50 + 3 * normal(random);
        p.push_back(next);
    }
    return p;
}

inline void writeproblem(const pedigree &p, double vara, double vare, int64 step = 1)
{
    openstate s = evaluationstate(vara, vare);
    writequillomerepspec(s, 1, 1, 1);
    std::filesystem::rename("Selection/SelectionFolder1/DataFormatParameters.txt",
                            "DataFormatParameters.txt");
    writefile("PedigreeBlupTrain1.txt", pedigreetext(p, step));
}

inline void expectresults(const std::vector<double> &expected, double tolerance, int64 step = 1)
{
    const std::vector<std::string> lines = readlines(resultfile);
    ASSERT_EQ(lines.size(), expected.size() - 1);
    for (std::size_t i = 1; i < expected.size(); ++i) {
        const std::vector<double> numbers = numbersof(lines[i - 1]);
        ASSERT_EQ(numbers.size(), 2u);
        EXPECT_EQ(numbers[0], static_cast<double>(step * static_cast<int64>(i)));
        EXPECT_NEAR(numbers[1], expected[i], tolerance) << "animal " << i;
    }
}
