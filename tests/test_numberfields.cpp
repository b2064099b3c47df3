// Quick ways of reading and writing columns against the plain ones.
#include "files.h"
#include "numberfields.h"
#include "testsupport.h"
#include "textlayout.h"

#include <cmath>
#include <cstring>
#include <random>

namespace
{
class numberfields : public infolder
{
};
} // namespace

TEST_F(numberfields, realsincolumnsarethoseoftheirdecimaltext)
{
    std::mt19937_64 draw(7);
    std::uniform_real_distribution<double> uniform(-1, 1);
    const double scales[] = {1e-9, 1e-3, 1, 30, 4e3, 9.1e5, 9e6};
    std::vector<std::string> words;
    outfile out("values.txt");
    textline line;
    for (int i = 0; i < 3000; ++i) {
        for (int j = 0; j < 7; ++j) {
            const std::size_t start = line.size();
            putf(line, uniform(draw) * scales[(i + j) % 7], 20, 10);
            words.push_back(wordsof(line.substr(start)).front());
        }
        out.writeline(line);
    }
    out.close();
    infile in("values.txt");
    std::size_t k = 0;
    for (int i = 0; i < 3000; ++i) {
        double values[7];
        in.record();
        in.reals(values, 7);
        double narrow[7]; // where it is quick, as everywhere
        const auto nquick =
            fixedreals(in.line().data(), in.line().data() + in.line().size(), narrow, 7);
        ASSERT_EQ(0,
                  std::memcmp(narrow, values, static_cast<std::size_t>(nquick) * sizeof *values));
        for (const double value : values) {
            const double wanted = std::strtod(words[k].c_str(), nullptr);
            ASSERT_EQ(0, std::memcmp(&value, &wanted, sizeof value)) << words[k];
            ++k;
        }
    }
}

TEST_F(numberfields, otherformsofrealsarereadfreeform)
{
    writefile("forms.txt", " 1 2.5,-3d2\n"
                           "       -0.0000000000       -0.1234567891   900719.1234567890\n"
                           "                 NaN           -Infinity-12345678.1234567890\n"
                           "        .5000000000         -.5000000000 1e3\n"
                           "        1.50000000000\n 4\n"
                           "       1-0.0000000000\n");
    infile in("forms.txt");
    double v[3];
    in.record();
    in.anyreals(v, 3);
    EXPECT_EQ(v[0], 1);
    EXPECT_EQ(v[1], 2.5);
    EXPECT_EQ(v[2], -300);
    in.record();
    in.anyreals(v, 3);
    EXPECT_TRUE(v[0] == 0 && std::signbit(v[0]));
    EXPECT_EQ(v[1], -0.1234567891);
    EXPECT_EQ(v[2], 900719.1234567890);
    in.record();
    in.anyreals(v, 1);
    EXPECT_TRUE(std::isnan(v[0]));
    EXPECT_EQ(runbody([&] { in.anyreals(v, 1); }).code(), -2); // two fields grown together
    in.record();
    in.anyreals(v, 3);
    EXPECT_EQ(v[0], 0.5);
    EXPECT_EQ(v[1], -0.5);
    EXPECT_EQ(v[2], 1000);
    in.record();
    in.anyreals(v, 2); // goes on in the next record
    EXPECT_EQ(v[0], 1.5);
    EXPECT_EQ(v[1], 4);
    in.record();
    const outcome broken = runbody([&] { in.anyreals(v, 1); });
    EXPECT_EQ(broken.code(), -2);
    EXPECT_NE(broken.stop.reason.find("line 7"), std::string::npos) << broken.stop.reason;
}

TEST_F(numberfields, allelesarewrittentwocolumnseach)
{
    std::vector<int8> alleles;
    std::string wanted;
    for (int n = 0; n < 70; ++n) {
        textline line = "x";
        putalleles(line, alleles.data(), n);
        ASSERT_EQ(line, "x" + wanted) << n;
        alleles.push_back(static_cast<int8>(n * 7 % 10));
        wanted += ' ';
        wanted += static_cast<char>('0' + n * 7 % 10);
    }
}
