// Genomic relationships: the program against sums over loci taken one by one here, the base on
// which the cycles of a programme stand, which file is taken.
#include "Brenvask/brenvask.h"
#include "openstate.h"

#include "evaluation/relationshipruns.h"
#include "evaluationsupport.h"
#include "testsupport.h"

#include <filesystem>
#include <random>

namespace
{
namespace fs = std::filesystem;
const std::string testfile = "TmpChip1GenotypeTest.txt",
                  lastfile = "TmpChip1GenotypeLastGeneration.txt",
                  frequencyfile = "GFullMatrixAlleleFreq.txt", result = "GFullMatrix1-1.txt";

// The specification as the system writes it, from the folder of the cycle.
void writespec(const std::string &genotypefile, int64 nsnp,
               relationshipbase base = relationshipbase::present)
{
    openstate s;
    s.loci.nsnpforsel = nsnp;
    s.selection.selontbvyes1no0 = 0;
    s.selection.selmethindicator = genotypefile == "None" ? 1 : 2;
    const fs::path here = fs::current_path();
    fs::current_path("../..");
    writebrenvaskspec(s, here.string().back() - '0', base, genotypefile);
    fs::current_path(here);
}

genotyperows drawgenotypes(std::size_t n, std::size_t nsnp, double missing, unsigned seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> uniform;
    genotyperows rows(n, std::vector<int>(nsnp));
    for (std::size_t j = 0; j < nsnp; ++j) {
        const double p =
            j % 10 == 9 ? j % 20 / 19 : uniform(random); // some fixed for 0, some for 1
        for (auto &row : rows)
            row[j] = uniform(random) < missing ? 9 : (uniform(random) < p) + (uniform(random) < p);
    }
    return rows;
}

std::vector<double> frequencies(const genotyperows &rows)
{
    std::vector<double> p;
    for (std::size_t j = 0; j < rows[0].size(); ++j) {
        double sum = 0, n = 0;
        for (const auto &row : rows)
            if (row[j] != 9) sum += row[j], n += 1;
        p.push_back(n > 0 ? sum / (2 * n) : 0);
    }
    return p;
}

densematrix directly(const genotyperows &rows, const std::vector<double> &p)
{
    double scale = 0;
    for (const double f : p) scale += 2 * f * (1 - f);
    densematrix g(rows.size(), std::vector<double>(rows.size(), 0.0));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t k = 0; k < rows.size(); ++k)
            for (std::size_t j = 0; j < p.size(); ++j)
                if (rows[i][j] != 9 && rows[k][j] != 9)
                    g[i][k] += (rows[i][j] - 2 * p[j]) * (rows[k][j] - 2 * p[j]) / scale;
        g[i][i] += 0.001;
    }
    return g;
}

// Reals with ten decimals are off by at most 5e-11; sums over 2,000 loci by less.
void expectmatrix(const densematrix &expected, int64 firstid)
{
    const std::vector<std::string> lines = readlines(result);
    ASSERT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::vector<double> numbers = numbersof(lines[i]);
        ASSERT_EQ(numbers.size(), expected.size() + 1);
        EXPECT_EQ(numbers[0], static_cast<double>(firstid + static_cast<int64>(i)));
        for (std::size_t k = 0; k < expected.size(); ++k)
            EXPECT_NEAR(numbers[k + 1], expected[i][k], 1e-10) << i << " " << k;
    }
}

// The folder of a cycle, to work in.
void gotocycle(int64 cycle)
{
    const std::string folder = "SelectionFolder" + std::to_string(cycle);
    fs::create_directories("../" + folder);
    fs::current_path("../" + folder);
}

std::string reportof(const std::function<void()> &body)
{
    const outcome report = runbody(body);
    EXPECT_FALSE(report.stoppedearly) << report.stop.reason;
    return report.output;
}

class brenvaskinfolder : public infolder
{
  protected:
    void SetUp() override
    {
        infolder::SetUp();
        fs::create_directories("Selection/SelectionFolder1");
        fs::current_path("Selection/SelectionFolder1");
    }
};
} // namespace

// Numbers of loci that fill slabs and panels of the program, and that don't; a locus that is
// missing in all; any number of threads.
TEST_F(brenvaskinfolder, relationshipsequaldirectsums)
{
    for (const auto &[n, nsnp, missing] : {std::tuple<std::size_t, std::size_t, double>{1, 9, 0},
                                           {23, 87, 0.1},
                                           {40, 1000, 0},
                                           {17, 2030, 0.03}}) {
        genotyperows rows = drawgenotypes(n, nsnp, missing, 3);
        if (missing > 0)
            for (auto &row : rows) row[4] = 9;
        else
            rows[0][3] = 1; // a single individual needs a locus that segregates
        writefile(testfile, genotypetext(rows, 501));
        writespec(testfile, static_cast<int64>(nsnp));
        const std::string program = binfolder() + "/Brenvask";
        ASSERT_EQ(runcommand(program).status, 0);
        expectmatrix(directly(rows, frequencies(rows)), 501);
        const std::string matrix = readfile(result);
        ASSERT_EQ(runcommand("OPENBLAS_NUM_THREADS=2 " + program).status, 0);
        EXPECT_TRUE(readfile(result) == matrix);
    }
}

// The runs of a programme: in cycle 1 for the parents, for the coancestry, and on a last
// generation; in cycle 2 for the coancestry.
TEST_F(brenvaskinfolder, cyclesstandononebase)
{
    const genotyperows first = drawgenotypes(12, 60, 0.05, 1),
                       last = drawgenotypes(15, 60, 0.05, 2), second = drawgenotypes(9, 60, 0, 4);
    const std::vector<double> base = frequencies(first);
    const std::string stored = "../SelectionFolder1/" + frequencyfile;
    writefile(testfile, genotypetext(first, 1));
    for (const relationshipbase earlier : {relationshipbase::present, relationshipbase::first}) {
        writespec(testfile, 60, earlier);
        const std::string report = reportof(brenvask);
        EXPECT_NE(report.find("Allele frequencies: those of " + testfile), std::string::npos);
        EXPECT_EQ(report.find("this is cycle 1 itself") != std::string::npos,
                  earlier == relationshipbase::first);
        expectmatrix(directly(first, base), 1);
    }
    const std::string frequenciesoffirst = readfile(frequencyfile);

    writefile(lastfile, genotypetext(last, 13));
    writespec(lastfile, 60, relationshipbase::first);
    EXPECT_NE(reportof(brenvask).find("Allele frequencies: those of " + stored), std::string::npos);
    expectmatrix(directly(last, base), 13);
    EXPECT_EQ(readfile(frequencyfile), frequenciesoffirst);

    gotocycle(2);
    writefile(testfile, genotypetext(second, 13));
    writespec(testfile, 60, relationshipbase::first);
    EXPECT_NE(reportof(brenvask).find("Allele frequencies: those of " + stored), std::string::npos);
    expectmatrix(directly(second, base), 13);
    for (std::size_t j = 0; j < 60; ++j) // its own are stored all the same, exactly
        EXPECT_EQ(numbersof(readlines(frequencyfile)[j + 1])[1], frequencies(second)[j]);

    // Other loci, and no frequencies at all: the present file's, said aloud.
    const genotyperows fewer = drawgenotypes(9, 59, 0, 4);
    writefile(testfile, genotypetext(fewer, 13));
    writespec(testfile, 59, relationshipbase::first);
    EXPECT_NE(
        reportof(brenvask).find("WARNING: " + stored + " holds 60 loci, " + testfile + " has 59"),
        std::string::npos);
    expectmatrix(directly(fewer, frequencies(fewer)), 13);
    fs::remove(stored);
    EXPECT_NE(reportof(brenvask).find("WARNING: there is no " + stored), std::string::npos);
    expectmatrix(directly(fewer, frequencies(fewer)), 13);
}

// Under prediction by pedigree no file is named: the candidates', or the last generation's once
// they are there.
TEST_F(brenvaskinfolder, nofilenamed)
{
    const genotyperows test = drawgenotypes(6, 30, 0, 1), last = drawgenotypes(5, 30, 0, 2);
    writefile(testfile, genotypetext(test, 1));
    writefile("TmpChip1GenotypeTestScaled.txt", "");
    writespec("None", 30, relationshipbase::first);
    EXPECT_NE(reportof(brenvask).find("taking " + testfile), std::string::npos);
    expectmatrix(directly(test, frequencies(test)), 1);
    writefile(lastfile, genotypetext(last, 7));
    EXPECT_NE(reportof(brenvask).find("taking " + lastfile), std::string::npos);
    expectmatrix(directly(last, frequencies(test)), 7);
}
