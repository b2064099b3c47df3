// Sorting and statistics: against the library and against definitions.
#include "sortstat.h"

#include "testsupport.h"

#include <algorithm>
#include <cmath>
#include <random>

TEST(sortstat, sortsagreewiththelibrary)
{
    std::mt19937_64 source(1);
    for (const int n : {0, 1, 2, 3, 10, 1000}) {
        std::vector<int64> a(n);
        std::vector<double> b(n);
        std::vector<group> c(n);
        for (int i = 0; i < n; ++i) {
            a[i] = static_cast<int64>(source() % 50);
            b[i] = std::normal_distribution<>()(source);
            c[i] = {i, static_cast<float>(source() % 7)};
        }
        auto sorteda = a;
        auto sortedb = b;
        auto sortedc = c;
        hpsort(n, sorteda.data());
        hpsortreal(n, sortedb.data());
        qsort(sortedc.data(), n);
        std::sort(a.begin(), a.end());
        std::sort(b.begin(), b.end());
        EXPECT_EQ(sorteda, a);
        EXPECT_EQ(sortedb, b);
        EXPECT_TRUE(
            std::is_sorted(sortedc.begin(), sortedc.end(),
                           [](const group &x, const group &y) { return x.value < y.value; }));
        std::vector<bool> seen(n, false); // every record is still there, with its value
        for (const group &record : sortedc) {
            EXPECT_EQ(record.value, c[record.order].value);
            seen[record.order] = true;
        }
        EXPECT_EQ(std::count(seen.begin(), seen.end(), false), 0);
    }
}

TEST(sortstat, moments)
{
    // 2, 4, 4, 6: mean 4, deviations -2, 0, 0, 2; variance 8/3, third moment 0, fourth 32.
    const double data[] = {2, 4, 4, 6};
    double ave, adev, sdev, var, skew, curt;
    moment(data, 4, ave, adev, sdev, var, skew, curt);
    EXPECT_EQ(ave, 4);
    EXPECT_EQ(adev, 1);
    EXPECT_DOUBLE_EQ(var, 8.0 / 3);
    EXPECT_DOUBLE_EQ(sdev, std::sqrt(8.0 / 3));
    EXPECT_EQ(skew, 0);
    EXPECT_DOUBLE_EQ(curt, 32 / (4 * 64.0 / 9) - 3);
    // 2^53 + 0, 2, 2: their mean is no number of this precision, and their squares lose them all.
    const double far[] = {9007199254740992, 9007199254740994, 9007199254740994};
    moment(far, 3, ave, adev, sdev, var, skew, curt);
    EXPECT_DOUBLE_EQ(var, 4.0 / 3);
    const double constant[] = {3, 3, 3};
    moment(constant, 3, ave, adev, sdev, var, skew, curt);
    EXPECT_EQ(var, 0);
    EXPECT_EQ(skew, 0);
    EXPECT_EQ(curt, 0);
    EXPECT_EQ(runbody([&] { moment(data, 1, ave, adev, sdev, var, skew, curt); }).code(), 110003);
    const float single[] = {1, 2};
    float ave4, adev4, sdev4, var4, skew4, curt4;
    momentr4(single, 2, ave4, adev4, sdev4, var4, skew4, curt4);
    EXPECT_EQ(var4, 0.5f);
    EXPECT_EQ(runbody([&] { momentr4(single, 1, ave4, adev4, sdev4, var4, skew4, curt4); }).code(),
              140001);
}

TEST(sortstat, correlation)
{
    const double x[] = {1, 2, 3, 4}, y[] = {2, 4, 6, 8}, z[] = {1, -1, -1, 1}, c[] = {5, 5, 5, 5};
    double r;
    pearsn(x, y, 4, r);
    EXPECT_DOUBLE_EQ(r, 1);
    pearsn(x, z, 4, r);
    EXPECT_DOUBLE_EQ(r, 0);
    pearsn(x, c, 4, r);
    EXPECT_EQ(r, 0);
}

TEST(sortstat, choleskyfactor)
{
    // L = (2; 1 3; -1 0.5 1.5), first index fastest; A = L L'.
    const double l[3][3] = {{2, 0, 0}, {1, 3, 0}, {-1, 0.5, 1.5}};
    std::vector<double> a(12, 99), p(3);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            a[i + 4 * j] = 0; // leading dimension 4
            for (int k = 0; k < 3; ++k) a[i + 4 * j] += l[i][k] * l[j][k];
        }
    bool notposdefin;
    choldc(a.data(), 3, 4, p.data(), notposdefin);
    EXPECT_FALSE(notposdefin);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j <= i; ++j) EXPECT_DOUBLE_EQ(a[i + 4 * j], l[i][j]);
    EXPECT_EQ(a[0 + 4 * 1], 2); // the upper triangle stays
    std::vector<double> singular{1, 1, 1, 1};
    choldc(singular.data(), 2, 2, p.data(), notposdefin);
    EXPECT_TRUE(notposdefin);
}

TEST(sortstat, singleprecisionsteps)
{
    EXPECT_EQ(singlequotient(1, 3), static_cast<double>(1.0f / 3.0f));
    EXPECT_EQ(singlesqrt(2), static_cast<double>(std::sqrt(2.0f)));
    EXPECT_NE(singlequotient(1, 3), 1.0 / 3);
}
