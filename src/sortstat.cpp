#include "sortstat.h"

#include "stops.h"

#include <cassert>
#include <cmath>
#include <random>
#include <utility>

namespace
{
template <class T> void heapsort(int64 n, T *array)
{
    if (n < 2) return;
    T *const ra = array - 1; // index from 1
    int64 l = n / 2 + 1, ir = n;
    for (;;) {
        T sifted;
        if (l > 1) {
            sifted = ra[--l];
        } else {
            sifted = ra[ir];
            ra[ir] = ra[1];
            if (--ir == 1) {
                ra[1] = sifted;
                return;
            }
        }
        int64 i = l, j = 2 * l;
        while (j <= ir) {
            if (j < ir && ra[j] < ra[j + 1]) ++j;
            if (!(sifted < ra[j])) break;
            ra[i] = ra[j];
            i = j;
            j = 2 * j;
        }
        ra[i] = sifted;
    }
}

template <class T>
void sampling(const T *data, int64 n, T &ave, T &adev, T &sdev, T &var, T &skew, T &curt,
              int64 code)
{
    if (n <= 1) stopwithcode(code);
    const T count = static_cast<T>(n);
    T sum = 0;
    for (int64 i = 0; i < n; ++i) sum += data[i];
    ave = sum / count;
    T ep = 0;
    adev = var = skew = curt = 0;
    for (int64 i = 0; i < n; ++i) {
        const T s = data[i] - ave;
        ep += s;
        adev += std::fabs(s);
        T p = s * s;
        var += p;
        p *= s;
        skew += p;
        p *= s;
        curt += p;
    }
    adev /= count;
    var = (var - ep * ep / count) / (count - 1);
    sdev = std::sqrt(var);
    if (var != 0) {
        skew /= count * (sdev * sdev * sdev);
        curt = curt / (count * var * var) - 3;
    }
}
} // namespace

void hpsort(int64 n, int64 *ra)
{
    heapsort(n, ra);
}
void hpsortreal(int64 n, double *ra)
{
    heapsort(n, ra);
}

void qsort(group *a, int64 na)
{
    static std::minstd_rand source{std::random_device{}()};
    if (na <= 1) return;
    const double u = std::uniform_real_distribution<double>(0, 1)(source);
    const float pivot = a[static_cast<int64>(u * static_cast<double>(na - 1))].value;
    group *const at = a - 1; // index from 1
    int64 left = 0, right = na + 1;
    while (left < right) {
        do --right;
        while (at[right].value > pivot);
        do ++left;
        while (at[left].value < pivot);
        if (left < right) std::swap(at[left], at[right]);
    }
    const int64 marker = left == right ? left + 1 : left;
    qsort(a, marker - 1);
    qsort(a + marker - 1, na - marker + 1);
}

void moment(const double *data, int64 n, double &ave, double &adev, double &sdev, double &var,
            double &skew, double &curt)
{
    sampling(data, n, ave, adev, sdev, var, skew, curt, 110003);
}

void momentr4(const float *data, int64 n, float &ave, float &adev, float &sdev, float &var,
              float &skew, float &curt)
{
    sampling(data, n, ave, adev, sdev, var, skew, curt, 140001);
}

void pearsn(const double *x, const double *y, int64 n, double &r)
{
    constexpr double tiny = 9.999999682655225e-21; // 1e-20 in single precision
    double ax = 0, ay = 0;
    for (int64 i = 0; i < n; ++i) {
        ax += x[i];
        ay += y[i];
    }
    ax /= static_cast<double>(n);
    ay /= static_cast<double>(n);
    double sxx = 0, syy = 0, sxy = 0;
    for (int64 i = 0; i < n; ++i) {
        const double xt = x[i] - ax, yt = y[i] - ay;
        sxx += xt * xt;
        syy += yt * yt;
        sxy += xt * yt;
    }
    r = sxy / (std::sqrt(sxx * syy) + tiny);
}

void choldc(double *a, int64 n, int64 np, double *p, bool &notposdefin)
{
    assert(n <= np);
    const auto at = [a, np](int64 i, int64 j) -> double & { return a[(i - 1) + (j - 1) * np]; };
    notposdefin = false;
    for (int64 i = 1; i <= n; ++i) {
        for (int64 j = i; j <= n; ++j) {
            double sum = at(i, j);
            for (int64 k = i - 1; k >= 1; --k) sum -= at(i, k) * at(j, k);
            if (i == j) {
                if (sum <= 0) {
                    notposdefin = true;
                    return;
                }
                p[i - 1] = std::sqrt(sum);
            } else {
                at(j, i) = sum / p[i - 1];
            }
        }
    }
    for (int64 i = 1; i <= n; ++i) at(i, i) = p[i - 1];
}

double singlequotient(double numerator, double denominator)
{
    return static_cast<double>(static_cast<float>(numerator) / static_cast<float>(denominator));
}

double singlesqrt(double value)
{
    return static_cast<double>(std::sqrt(static_cast<float>(value)));
}
