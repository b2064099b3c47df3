// Layouts: known answers, and the fast fixed-point path against the C library.
#include "textlayout.h"

#include "testsupport.h"
#include "words.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <random>

namespace
{
std::string f(double value, int64 w, int64 d)
{
    textline line;
    putf(line, value, w, d);
    return line;
}
std::string e(double value, int64 w, int64 d)
{
    textline line;
    pute(line, value, w, d);
    return line;
}
std::string i(int64 value, int64 w)
{
    textline line;
    puti(line, value, w);
    return line;
}
} // namespace

TEST(textlayout, columnsofintegersandtexts)
{
    EXPECT_EQ(i(42, 5), "   42");
    EXPECT_EQ(i(-42, 0), "-42");
    EXPECT_EQ(i(123456, 5), "*****");
    EXPECT_EQ(i(std::numeric_limits<int64>::min(), 0), "-9223372036854775808");
    textline line;
    puta(line, "abc", 5);
    puta(line, "abcdef", 4);
    putleft(line, "xy", 4);
    EXPECT_EQ(line, "  abcabcdxy  ");
}

TEST(textlayout, fixedpointknownanswers)
{
    EXPECT_EQ(f(1.5, 8, 2), "    1.50");
    EXPECT_EQ(f(0.125, 6, 2), "  0.12"); // ties to even
    EXPECT_EQ(f(0.375, 6, 2), "  0.38");
    EXPECT_EQ(f(-1e-12, 20, 10), "       -0.0000000000");
    EXPECT_EQ(f(-0.0, 8, 2), "   -0.00");
    EXPECT_EQ(f(123456.0, 6, 2), "******");
    EXPECT_EQ(f(2.5, 4, 0), "  2.");
    EXPECT_EQ(f(std::nan(""), 8, 2), "     NaN");
    EXPECT_EQ(f(-INFINITY, 12, 2), "   -Infinity");
    EXPECT_EQ(f(INFINITY, 4, 2), "****");
    EXPECT_EQ(f(1e300, 310, 2).size(), 310u);
    EXPECT_EQ(f(0.1, 40, 30), "        0.100000000000000005551115123126");
}

// The integer path of Fw.d must round as the C library does, at every size, also near ties:
// n / 1024 has an exact tie at the third decimal and beyond for many n.
TEST(textlayout, fixedpointroundsasthelibrarydoes)
{
    std::mt19937_64 source(7);
    char expected[500];
    const auto compare = [&](double value, int d) {
        std::snprintf(expected, sizeof expected, "%.*f", d, value);
        EXPECT_EQ(f(value, 0, d), expected) << value;
    };
    for (int n = 0; n < 20000; ++n) {
        const double size = std::pow(10.0, std::uniform_real_distribution<>(-40, 12)(source));
        compare(std::uniform_real_distribution<>(-1, 1)(source) * size, 10);
        compare(static_cast<double>(static_cast<int64>(source() % 4096) - 2048) / 1024, 3 + n % 7);
    }
    compare(536870911.99999994, 10);
    compare(536870912.0, 10);
    compare(std::numeric_limits<double>::denorm_min(), 10);
}

TEST(textlayout, exponentform)
{
    EXPECT_EQ(e(1e-5, 10, 2), "  0.10E-04");
    EXPECT_EQ(e(4e-6, 10, 2), "  0.40E-05");
    EXPECT_EQ(e(0.999, 10, 2), "  0.10E+01");
    EXPECT_EQ(e(-250.0, 12, 3), "  -0.250E+03");
    EXPECT_EQ(e(0.0, 10, 2), "  0.00E+00");
    EXPECT_EQ(e(1e-150, 12, 2), "    0.10-149");
}

TEST(textlayout, freeform)
{
    EXPECT_EQ(freeline(1, int64{-20}, "word"), " 1 -20 word");
    EXPECT_EQ(freeline(0.0, 1.0, 0.1, 1e-4, 123456789.5), " 0.0 1.0 0.1 0.0001 123456789.5");
    EXPECT_EQ(freeline(1e-5, 1.5e17, 9.9e-5), " 1e-05 1.5e+17 9.9e-05");
    EXPECT_EQ(freeline(1e15, 9007199254740993.0, 1e16),
              " 1000000000000000.0 9007199254740992.0 1e+16");
    EXPECT_EQ(freeline(std::nan(""), -INFINITY), " NaN -Infinity");
}

TEST(textlayout, numbersread)
{
    int64 n = 0;
    double x = 0;
    EXPECT_TRUE(readinteger("+12", n) && n == 12);
    EXPECT_TRUE(readinteger("-3", n) && n == -3);
    for (const char *bad : {"", "1.0", "1x", "+-1", "99999999999999999999"})
        EXPECT_FALSE(readinteger(bad, n)) << bad;
    EXPECT_TRUE(readreal("1", x) && x == 1);
    EXPECT_TRUE(readreal(".5", x) && x == 0.5);
    EXPECT_TRUE(readreal("-2.5D-3", x) && x == -0.0025);
    EXPECT_TRUE(readreal("1e400", x) && std::isinf(x));
    EXPECT_TRUE(readreal("1e-400", x) && x == 0);
    for (const char *bad : {"", "x", "1.5d3e2", "1 2", "--1"})
        EXPECT_FALSE(readreal(bad, x)) << bad;
}

TEST(words, firstwordsandlowercase)
{
    EXPECT_EQ(parsestringwindows("InternalCattle rest"), "internalcattle");
    EXPECT_EQ(parsestringwindows(" Yes"), "");
    EXPECT_EQ(parsestringwindows(std::string(600, 'A')), std::string(512, 'a'));
    EXPECT_EQ(tlc("  Two WORDS "), "two words");
    EXPECT_EQ(cuttext("abc   ", 300), "abc");
    EXPECT_EQ(cuttext(std::string(400, 'x'), 300).size(), 300u);
    EXPECT_TRUE(isword("OFF", "off"));
}

TEST(textlayout, generalformatisthatofthelibrary)
{
    std::mt19937_64 draw(11);
    std::uniform_real_distribution<double> exponent(-3, 4), digits(0, 1e6);
    for (int i = 0; i < 200000; ++i) {
        double value = std::pow(10, exponent(draw)) * (i % 2 == 0 ? 1 : -1);
        if (i % 3 == 0) value = std::round(digits(draw)) / std::pow(10, i % 7); // short decimals
        if (i % 5 == 0) value = std::nextafter(std::pow(10, i % 5), i); // about to gain a digit
        for (const int d : {3, 4, 10}) {
            textline line;
            putg(line, value, 0, d);
            char text[64];
            *std::to_chars(text, text + 63, value, std::chars_format::general, d).ptr = '\0';
            ASSERT_EQ(line, text) << d;
        }
    }
}
