// randomcandidates.h - candidates with relationships and gains, given or drawn, and the value of
// their contributions.
#pragma once

#include "Corvalind/candidates.h"
#include "evaluationsupport.h"
#include "testsupport.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

inline candidates makecandidates(const densematrix &g, const std::vector<double> &gain,
                                 const std::vector<int64> &pool)
{
    candidates c;
    c.n = std::ssize(gain);
    for (array1<int64> *a : {&c.indiv, &c.pool}) a->allocate(c.n);
    c.gain.allocate(c.n);
    c.relationship.allocate(c.n, c.n);
    for (int64 i = 1; i <= c.n; ++i) {
        const std::size_t at = static_cast<std::size_t>(i - 1);
        c.indiv(i) = 100 + i;
        c.pool(i) = pool[at];
        c.npools = std::max(c.npools, pool[at]);
        c.gain(i) = gain[at];
        for (int64 j = 1; j <= c.n; ++j)
            c.relationship(j, i) = g[at][static_cast<std::size_t>(j - 1)];
        c.meandiagonal += c.relationship(i, i) / static_cast<double>(c.n);
    }
    return c;
}

// Relationships from genotypes at nsnp loci, centred, so that about half of them are negative, and
// of rank nsnp but for what is added to the diagonal. Every third candidate copies the one before
// it; gains are rounded, so that some are tied, and the best ones differ by next to nothing.
inline candidates randomcandidates(std::size_t n, std::size_t nsnp, int64 npools, double diagonal,
                                   unsigned seed)
{
    std::mt19937_64 random(seed);
    std::normal_distribution<double> normal;
    densematrix z(n, std::vector<double>(nsnp)), g(n, std::vector<double>(n));
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < nsnp; ++j)
            z[i][j] = i % 3 == 2 ? z[i - 1][j] : static_cast<double>(random() % 3) - 1;
    std::vector<double> gain;
    std::vector<int64> pool;
    for (std::size_t i = 0; i < n; ++i) {
        gain.push_back(i % 7 == 4 ? 6 + 1e-8 * static_cast<double>(i)
                                  : std::round(20 * normal(random)) / 10);
        pool.push_back(npools == 2 && random() % 3 > 0 && i > 0 ? 2 : 1);
        for (std::size_t k = 0; k < n; ++k) {
            for (std::size_t j = 0; j < nsnp; ++j) g[i][k] += z[i][j] * z[k][j] * 1.5;
            g[i][k] = g[i][k] / static_cast<double>(nsnp) + (i == k ? diagonal : 0);
        }
    }
    return makecandidates(g, gain, pool);
}

struct quadratic {
    double xgx = 0, gain = 0;
};
inline quadratic valueof(const candidates &c, const std::function<double(int64)> &x)
{
    quadratic value;
    for (int64 i = 1; i <= c.n; ++i) {
        value.gain += x(i) * c.gain(i);
        for (int64 j = 1; j <= c.n; ++j) value.xgx += x(i) * x(j) * c.relationship(i, j);
    }
    return value;
}
