// Genomic prediction: the program against equations set up and solved densely here, both sides of
// the equations, what later evaluations do with the solutions, statistics, and refusals.
#include "Quillomere/quillomere.h"
#include "Quillomere/snpblup.h"
#include "Quillomere/trainingset.h"

#include "evaluationsupport.h"
#include "testsupport.h"

#include <cmath>
#include <filesystem>
#include <random>

namespace
{
struct problem {
    genotyperows train, test;
    std::vector<double> phenotype, tbv;
    double vara = 2.5, vare = 1.5;
    int64 nsnp() const { return static_cast<int64>(train[0].size()); }
};

// Independent genotypes, 3 % of them missing; SNPs 2 and 5 are fixed in training.
problem makeproblem(int64 ntrain, int64 ntest, int64 nsnp, unsigned seed)
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

std::string valuetext(const std::vector<double> &values, int64 firstid)
{
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        puti(text, firstid + static_cast<int64>(i), 20);
        putf(text, values[i], 20, 10);
        text += '\n';
    }
    return text;
}

bool segregates(const problem &q, std::size_t j)
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
void writespec(const problem &q)
{
    state s = evaluationstate(q.vara, q.vare);
    s.chips.tmpchip = 1;
    s.chips.nsnpforsel = q.nsnp();
    s.selection.ntrainindiv = std::ssize(q.train);
    s.selection.ntestindiv = std::ssize(q.test);
    s.selection.selmethindicator = 2;
    writequillomerespec(s, 1, 1, 1);
    std::filesystem::rename("Selection/SelectionFolder1/QuillomereSpec.txt", "QuillomereSpec.txt");
}

void writeproblem(const problem &q)
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

class quillomereinfolder : public infolder
{
};
} // namespace

// More SNPs than individuals and the other way round; numbers of SNPs that fill bytes and slabs of
// the store, and that don't.
TEST_F(quillomereinfolder, filesequaldenseequations)
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
TEST_F(quillomereinfolder, sidesandsolversagree)
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
TEST_F(quillomereinfolder, solutionsservelaterevaluations)
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
TEST_F(quillomereinfolder, largeequations)
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

// Without additive variance nothing is estimated; without residual variance the phenotypes are
// taken as they are, but for a millionth: training individuals come out at their own phenotype.
TEST_F(quillomereinfolder, variancesofzero)
{
    problem q = makeproblem(23, 12, 87, 21);
    q.vara = 0;
    writeproblem(q);
    commandresult result = runcommand(binfolder() + "/Quillomere");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.out.find("WARNING: VarA is 0"), std::string::npos);
    for (const char *file : {"Ebv.txt", "SnpSolutions.txt"})
        for (const std::string &line : readlines(file)) EXPECT_EQ(numbersof(line)[1], 0);
    EXPECT_EQ(numbersof(readlines("TbvEbvCorrelation.txt")[0])[0], 0);
    EXPECT_EQ(readlines("AlleleFreq.txt").size(), 85u);

    q.vara = 4;
    q.vare = 0;
    q.test = q.train;
    q.tbv = q.phenotype;
    writeproblem(q);
    result = runcommand(binfolder() + "/Quillomere");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.out.find("WARNING: VarE 0"), std::string::npos);
    expectcolumn("Ebv.txt", 501, solvedensely(q, 4e-6).ebv, 1e-6);
    double mean = 0;
    for (const double y : q.phenotype) mean += y / 23;
    for (std::size_t i = 0; i < 23; ++i)
        EXPECT_NEAR(numbersof(readlines("Ebv.txt")[i])[1], q.phenotype[i] - mean, 1e-3);

    // No SNP segregates.
    std::string fixed;
    for (int j = 0; j < 87; ++j) fixed += " 0\n";
    writefile("FixedSnp.txt", fixed);
    ASSERT_EQ(runcommand(binfolder() + "/Quillomere").status, 0);
    EXPECT_EQ(readfile("AlleleFreq.txt"), "");
    for (const std::string &line : readlines("Ebv.txt")) EXPECT_EQ(numbersof(line)[1], 0);
}

// Everything that can be wrong ends with status 2 and a message that names file and line, and
// leaves no results, not even those of an evaluation before.
TEST_F(quillomereinfolder, refusals)
{
    problem q = makeproblem(6, 3, 7, 2);
    for (auto *rows : {&q.train, &q.test})
        for (auto &row : *rows) std::replace(row.begin(), row.end(), 9, 1);
    q.train[3][0] = 9;
    const std::string train = "TmpChip1GenotypeTrain.txt", test = "TmpChip1GenotypeTest.txt",
                      spec = "QuillomereSpec.txt", phen = "SelectionPhenTrain.txt",
                      tbv = "SelectionTbvTest.txt", fixed = "FixedSnp.txt";
    struct fault {
        std::string file, find, replace, message;
    };
    const std::vector<fault> faults = {
        {spec, "nBurn ", "nBurnt ", "QuillomereSpec.txt: line 10: nBurnt: unknown key"},
        {spec, "VarE   ", "VarA   ", "QuillomereSpec.txt: line 12: key \"VarA\" stands on line 11"},
        {spec, "nRound                ,1000\n", "\n",
         "QuillomereSpec.txt: the key nround is missing"},
        {spec, "nRound                ,", "nRound ", "QuillomereSpec.txt: line 9: a key, a comma"},
        {spec, ",1000", ",0", "QuillomereSpec.txt: line 9: nRound: 0 is below 1"},
        {spec, ",1000", ",1000.5", "QuillomereSpec.txt: line 9: nRound: an integer is wanted"},
        {spec, "VarA                  , 2.5", "VarA ,-1",
         "QuillomereSpec.txt: line 11: VarA: -1 is below 0"},
        {spec, "VarA                  , 2.5", "VarA ,NaN",
         "QuillomereSpec.txt: line 11: VarA: a number"},
        {spec, ", 2\n", ", 1\n", "QuillomereSpec.txt: line 14: ScalingOption: 1 is not known"},
        {spec, ",9", ",1", "QuillomereSpec.txt: line 15: MissingGenoCode: 1 is a genotype"},
        {spec, ",Ridge", ",BayesA", "QuillomereSpec.txt: line 16: MarkerSolver: \"BayesA\""},
        {spec, ",FixedSnp.txt", ",",
         "QuillomereSpec.txt: line 5: FixedSnpFile: the name of a file"},
        {spec, ",FixedSnp.txt", ",None.txt", "None.txt: "},
        {spec, ",9", ",8", "TmpChip1GenotypeTrain.txt: line 4: genotype 9 is neither"},
        {train, " 13", " 99",
         "TmpChip1GenotypeTrain.txt: line 3: genotypes of individual 99, but "
         "record 3 of SelectionPhenTrain.txt is of individual 13"},
        {train, " 14 ", " 14 0 ", "TmpChip1GenotypeTrain.txt: line 4: more values"},
        {train, " 14 ", " 14", "TmpChip1GenotypeTrain.txt: line "},
        {train, "\n", "\n\n", "TmpChip1GenotypeTrain.txt: line 2: "},
        {phen, " 16", " 16 16", "SelectionPhenTrain.txt: line 6: more values"},
        {phen, " 12 ", " 12 x", "SelectionPhenTrain.txt: line 2: a number is wanted"},
        {phen, " 12 ", " 12 NaN\n", "SelectionPhenTrain.txt: line 2: the value is not a finite"},
        {phen, " 11 ", " 10 1.5\n 11 ", "SelectionPhenTrain.txt: line 7: more than the 6 records"},
        {tbv, " 503", " 504", "TmpChip1GenotypeTest.txt: line 3: genotypes of individual 503"},
        {test, " 502", " 502 3", "TmpChip1GenotypeTest.txt: line 2: "},
        {fixed, " 0\n", " 2\n", "FixedSnp.txt: line 1: 0 or 1 is wanted, not 2"},
        {fixed, " 0\n", "", "FixedSnp.txt: ends after line 6"},
    };
    for (const fault &f : faults) {
        writeproblem(q);
        ASSERT_EQ(runbody(quillomere).stoppedearly, false);
        std::string text = readfile(f.file);
        const std::size_t at = text.find(f.find);
        ASSERT_NE(at, std::string::npos) << f.message;
        writefile(f.file, text.replace(at, f.find.size(), f.replace));
        const outcome result = runbody(quillomere);
        EXPECT_EQ(result.code(), -2) << f.message;
        EXPECT_EQ(result.stop.reason.find(f.message), 0u) << result.stop.reason;
        for (const char *file : {"Ebv.txt", "SnpSolutions.txt", "AlleleFreq.txt"})
            EXPECT_FALSE(std::filesystem::exists(file)) << f.message;
    }
    std::filesystem::remove("QuillomereSpec.txt");
    const commandresult result = runcommand(binfolder() + "/Quillomere");
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("QuillomereSpec.txt"), std::string::npos);
}
