// Genomic prediction: the program against equations set up and solved densely here, both sides of
// the equations, both solvers, and what later evaluations do with the solutions.
#include "Quillomere/snpblup.h"
#include "Quillomere/trainingset.h"

#include "genomicproblem.h"

#include <algorithm>
#include <cmath>

namespace
{
// Ridge regression the plain way: all mixed-model equations, intercept among them, one dense
// system; everything from the rows above, nothing from the program.
struct densesolution {
    std::vector<double> freq, solution, ebv; // solution: 0 for fixed SNPs
};
densesolution solvedensely(const problem &q, double vare)
{
    const std::size_t m = static_cast<std::size_t>(q.nsnp());
    densesolution d;
    std::vector<double> sd(m);
    double nsegregating = 0;
    for (std::size_t j = 0; j < m; ++j) {
        double sum = 0, n = 0;
        for (const auto &row : q.train)
            if (row[j] != 9) sum += row[j], n += 1;
        const double p = sum / (2 * n);
        d.freq.push_back(p);
        sd[j] = std::sqrt(2 * p * (1 - p) + 0.00001);
        nsegregating += segregates(q, j);
    }
    const auto z = [&](const std::vector<int> &row, std::size_t j) {
        return row[j] == 9 ? 0.0 : (row[j] - 2 * d.freq[j]) / sd[j];
    };
    std::vector<std::size_t> used;
    for (std::size_t j = 0; j < m; ++j)
        if (segregates(q, j)) used.push_back(j);
    densematrix lhs(used.size() + 1, std::vector<double>(used.size() + 1, 0.0));
    std::vector<double> rhs(used.size() + 1, 0.0);
    for (std::size_t i = 0; i < q.train.size(); ++i) {
        std::vector<double> x{1.0};
        for (const std::size_t j : used) x.push_back(z(q.train[i], j));
        for (std::size_t r = 0; r < x.size(); ++r) {
            rhs[r] += x[r] * q.phenotype[i];
            for (std::size_t c = 0; c < x.size(); ++c) lhs[r][c] += x[r] * x[c];
        }
    }
    for (std::size_t r = 1; r < lhs.size(); ++r) lhs[r][r] += vare / (q.vara / nsegregating);
    const std::vector<double> x = eliminate(lhs, rhs);
    d.solution.assign(m, 0.0);
    for (std::size_t r = 1; r < x.size(); ++r) d.solution[used[r - 1]] = x[r];
    for (const auto &row : q.test) {
        double sum = 0;
        for (const std::size_t j : used) sum += z(row, j) * d.solution[j];
        d.ebv.push_back(sum);
    }
    return d;
}

void expectcolumn(const std::string &file, int64 firstid, const std::vector<double> &expected,
                  double tolerance)
{
    const std::vector<std::string> lines = readlines(file);
    ASSERT_EQ(lines.size(), expected.size()) << file;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::vector<double> numbers = numbersof(lines[i]);
        ASSERT_EQ(numbers.size(), 2u) << file;
        EXPECT_EQ(numbers[0], static_cast<double>(firstid + static_cast<int64>(i))) << file;
        EXPECT_NEAR(numbers[1], expected[i], tolerance) << file << " line " << i + 1;
    }
}

class genomicprediction : public infolder
{
};
} // namespace

// More SNPs than individuals and the other way round; numbers of SNPs that fill bytes and slabs of
// the store, and that don't.
TEST_F(genomicprediction, filesequaldenseequations)
{
    for (const auto &[ntrain, nsnp] : {std::pair<int64, int64>{23, 87}, {60, 40}, {60, 9}}) {
        const problem q = makeproblem(ntrain, 12, nsnp, 5);
        writeproblem(q);
        const commandresult result = runcommand(binfolder() + "/Quillomere");
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NE(result.out.find("Solving the equations: "), std::string::npos);
        const densesolution d = solvedensely(q, q.vare);
        expectcolumn("Ebv.txt", 501, d.ebv, 1e-8);
        expectcolumn("SnpSolutions.txt", 1, d.solution, 1e-8);
        const std::vector<std::string> solutions = readlines("SnpSolutions.txt");
        EXPECT_EQ(numbersof(solutions[1])[1], 0);
        EXPECT_EQ(numbersof(solutions[4])[1], 0);

        // One frequency per segregating SNP, in order.
        std::size_t line = 0;
        const std::vector<std::string> frequencies = readlines("AlleleFreq.txt");
        for (std::size_t j = 0; j < d.freq.size(); ++j) {
            if (!segregates(q, j)) continue;
            ASSERT_LT(line, frequencies.size());
            EXPECT_EQ(numbersof(frequencies[line])[0], static_cast<double>(j + 1));
            EXPECT_NEAR(numbersof(frequencies[line++])[1], d.freq[j], 1e-15);
        }
        EXPECT_EQ(line, frequencies.size());
        EXPECT_NEAR(numbersof(readlines("TbvEbvCorrelation.txt")[0])[0], correlation(d.ebv, q.tbv),
                    1e-9);

        // A second evaluation leaves the same bytes.
        const std::string ebv = readfile("Ebv.txt"), snps = readfile("SnpSolutions.txt");
        ASSERT_EQ(runcommand(binfolder() + "/Quillomere").status, 0);
        EXPECT_EQ(readfile("Ebv.txt"), ebv);
        EXPECT_EQ(readfile("SnpSolutions.txt"), snps);
    }
}

// Both sides and both solvers give the same solutions, by either of which the dense ones are met.
TEST_F(genomicprediction, sidesandsolversagree)
{
    for (const auto &[ntrain, nsnp] : {std::pair<int64, int64>{70, 333}, {200, 41}}) {
        const problem q = makeproblem(ntrain, 3, nsnp, 77);
        writeproblem(q);
        const densesolution d = solvedensely(q, q.vare);
        runquietly([&] {
            const quillomerespec spec = readquillomerespec("QuillomereSpec.txt");
            const trainingset training = readtrainingset(spec);
            for (const equations side : {equations::ofsnps, equations::ofindividuals})
                for (const solver way : {solver::cholesky, solver::conjugategradients}) {
                    const snpblup b = solvesnpblup(training.genotypes, training.phenotype, q.vara,
                                                   q.vare, 1000, "spec", side, way);
                    for (int64 j = 1; j <= training.segregating.size(); ++j)
                        EXPECT_NEAR(
                            b.solution(j),
                            d.solution[static_cast<std::size_t>(training.segregating(j) - 1)],
                            1e-8);
                }
        });
    }
}

// Later evaluations scale test genotypes in single precision, with the frequencies as they stand in
// the file, and sum solutions in double: the same estimates to single rounding. Each of the 87
// terms is at most about 2 x 0.3 here, off by some 2^-23 of it.
TEST_F(genomicprediction, solutionsservelaterevaluations)
{
    const problem q = makeproblem(23, 12, 87, 8);
    writeproblem(q);
    ASSERT_EQ(runcommand(binfolder() + "/Quillomere").status, 0);
    const std::vector<std::string> frequencies = readlines("AlleleFreq.txt"),
                                   solutions = readlines("SnpSolutions.txt"),
                                   ebv = readlines("Ebv.txt"), fixed = readlines("FixedSnp.txt");
    for (std::size_t i = 0; i < q.test.size(); ++i) {
        double sum = 0;
        std::size_t next = 0;
        for (std::size_t j = 0; j < fixed.size(); ++j) {
            if (fixed[j] != " 1") continue;
            const float p = static_cast<float>(numbersof(frequencies[next++])[1]);
            float g = static_cast<float>(q.test[i][j]);
            if (g > 2.1f) g = 2 * p;
            const float z = (g - 2 * p) / std::sqrt(2 * p * (1 - p) + 0.00001f);
            sum += static_cast<double>(z) * numbersof(solutions[j])[1];
        }
        EXPECT_NEAR(numbersof(ebv[i])[1], sum, 2e-6);
    }
}

// Equations of some thousand unknowns: by conjugate gradients in the program, and too few rounds
// are made good.
TEST_F(genomicprediction, largeequations)
{
    const problem q = makeproblem(1500, 3, 2100, 3);
    genotypestore g;
    makegenotypestore(g, 1500, 2100);
    std::vector<int8> row(2100);
    for (int64 i = 1; i <= 1500; ++i) {
        std::copy(q.train[static_cast<std::size_t>(i - 1)].begin(),
                  q.train[static_cast<std::size_t>(i - 1)].end(), row.begin());
        packindividual(g, i, row.data());
    }
    computescales(g);
    array1<double> y(1500);
    std::copy(q.phenotype.begin(), q.phenotype.end(), y.begin());

    snpblup enough, toofew;
    const outcome by = runbody([&] {
        enough = solvesnpblup(g, y, 2.5, 1.5, 1000, "spec", equations::cheaper,
                              solver::conjugategradients);
        toofew =
            solvesnpblup(g, y, 2.5, 1.5, 3, "spec", equations::cheaper, solver::conjugategradients);
    });
    EXPECT_FALSE(by.stoppedearly);
    EXPECT_NE(by.output.find("The rounds do not suffice"), std::string::npos);
    for (int64 j = 1; j <= 2100; ++j) EXPECT_NEAR(enough.solution(j), toofew.solution(j), 1e-9);
}
