#include "Corvalind/matingnumbers.h"

#include <algorithm>
#include <cmath>

namespace
{
// The k entries of a list that come first by order; fewer if it has fewer.
template <class compare>
std::vector<int64> firstones(std::vector<int64> list, int64 k, compare before)
{
    k = std::min(k, static_cast<int64>(list.size()));
    std::partial_sort(list.begin(), list.begin() + k, list.end(), before);
    list.resize(static_cast<std::size_t>(k));
    return list;
}

// Rounds shares of all places down, and gives what is missing to the largest remainders. Remainders
// count to six decimals, so that those that are equal but for rounding errors stay in order.
void roundpool(const candidates &c, const array1<double> &x, int64 q, int64 nplaces, double nall,
               array1<int64> &number)
{
    std::vector<int64> members;
    array1<int64> remainder(c.n, 0); // millionths
    int64 missing = nplaces;
    for (int64 i = 1; i <= c.n; ++i) {
        if (c.pool(i) != q) continue;
        members.push_back(i);
        const double wanted = x(i) * nall;
        number(i) = static_cast<int64>(std::floor(wanted + 1e-7));
        remainder(i) = std::llround((wanted - static_cast<double>(number(i))) * 1e6);
        missing -= number(i);
    }
    std::stable_sort(members.begin(), members.end(),
                     [&](int64 a, int64 b) { return remainder(a) > remainder(b); });
    for (int64 k = 0; k < missing; ++k) ++number(members[static_cast<std::size_t>(k)]);
}

struct move {
    int64 from = 0, to = 0;
    double change = 0; // of the objective
};

// The plan being improved.
struct mover {
    const candidates &c;
    double weight; // on gain
    double unit;   // contribution of one place of a mating
    int64 nmost;   // places that a candidate can fill without being mated with itself
    array1<int64> &number;
    array1<double> product; // Gy
};

// What one place more at candidate i adds to the objective, apart from who gives it.
double taking(const mover &m, int64 i)
{
    return m.product(i) - m.weight * m.c.gain(i) + m.unit / 2 * m.c.relationship(i, i);
}
// The same with the sign turned for one place less.
double giving(const mover &m, int64 i)
{
    return m.product(i) - m.weight * m.c.gain(i) - m.unit / 2 * m.c.relationship(i, i);
}

// The best move within pool q out of width x width; change 0 if none is an improvement.
move bestmove(const mover &m, int64 q, int64 width)
{
    std::vector<int64> givers, takers;
    for (int64 i = 1; i <= m.c.n; ++i) {
        if (m.c.pool(i) != q) continue;
        if (m.number(i) < m.nmost) takers.push_back(i);
        if (m.number(i) > 0) givers.push_back(i);
    }
    array1<double> give(m.c.n, 0.0), take(m.c.n, 0.0);
    for (const int64 i : givers) give(i) = giving(m, i);
    for (const int64 i : takers) take(i) = taking(m, i);
    givers = firstones(givers, width, [&](int64 a, int64 b) {
        return give(a) > give(b) || (give(a) == give(b) && a < b);
    });
    takers = firstones(takers, width, [&](int64 a, int64 b) {
        return take(a) < take(b) || (take(a) == take(b) && a < b);
    });
    move best;
    for (const int64 from : givers)
        for (const int64 to : takers) {
            if (from == to) continue;
            const double change =
                m.unit * (take(to) - give(from) - m.unit * m.c.relationship(from, to));
            if (change < best.change) best = {from, to, change};
        }
    return best;
}

void makemove(mover &m, const move &made)
{
    --m.number(made.from);
    ++m.number(made.to);
    const double *const from = m.c.relationship.column(made.from);
    const double *const to = m.c.relationship.column(made.to);
    for (int64 i = 1; i <= m.c.n; ++i) m.product(i) += m.unit * (to[i - 1] - from[i - 1]);
}

// Gy of the plan.
void computeproduct(mover &m)
{
    m.product.allocate(m.c.n, 0.0);
    for (int64 j = 1; j <= m.c.n; ++j) {
        if (m.number(j) == 0) continue;
        const double share = m.unit * static_cast<double>(m.number(j));
        const double *const column = m.c.relationship.column(j);
        for (int64 i = 1; i <= m.c.n; ++i) m.product(i) += share * column[i - 1];
    }
}
} // namespace

matingnumbers allocatematings(const candidates &c, const optimum &best, int64 nmatings,
                              int64 nplans, int64 ngenerations)
{
    matingnumbers plan;
    plan.number.allocate(c.n, 0);
    const double nall = 2 * static_cast<double>(nmatings);
    for (int64 q = 1; q <= c.npools; ++q)
        roundpool(c, best.x, q, 2 * nmatings / c.npools, nall, plan.number);

    mover m{c, best.frontier.back().weight, 1 / nall, nmatings, plan.number, {}};
    computeproduct(m);
    const int64 width = static_cast<int64>(std::sqrt(static_cast<double>(nplans / c.npools)));
    const double negligible = 1e-13 * c.meandiagonal;
    for (int64 round = 1; round <= ngenerations; ++round) {
        move chosen;
        for (int64 q = 1; q <= c.npools; ++q) {
            const move candidate = bestmove(m, q, width);
            if (candidate.change < chosen.change) chosen = candidate;
        }
        if (chosen.change > -negligible) break;
        makemove(m, chosen);
        ++plan.nmoves;
    }

    computeproduct(m);
    for (int64 i = 1; i <= c.n; ++i) {
        const double y = m.unit * static_cast<double>(plan.number(i));
        plan.xgx += y * m.product(i);
        plan.gain += y * c.gain(i);
    }
    return plan;
}
