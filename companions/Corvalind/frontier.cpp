#include "Corvalind/frontier.h"

#include <cmath>

namespace
{
// Differences that count as none, of the mean diagonal. The larger one lets a wanted difference of
// 0 still choose the best gain among contributions that are as good as equal in x'Gx.
constexpr double nodifference = 1e-11, exactly = 1e-12;
// What Solvanto accepts as reached.
constexpr double accepted = 0.0001;

// The highest gain that there is, with the smallest x'Gx, at the smallest weight that leads there.
//   At any weight contributors of pool q have Gx = weight * top + mu. So that no other candidate
//   of the pool would do better, Gx - average of Gx over the pool's contributors must be at least
//   -weight * (top - its gain).
contributions findhighestgain(const contributionprogram &p)
{
    const candidates &c = *p.all;
    contributionprogram top = maketopprogram(p);
    contributions result = solveprogram(top, 0);
    array1<double> average(2, 0.0);
    for (int64 i = 1; i <= c.n; ++i)
        average(c.pool(i)) += result.x(i) * result.product(i) * static_cast<double>(c.npools);
    for (int64 i = 1; i <= c.n; ++i)
        if (p.gain(i) < 0)
            result.weight =
                std::max(result.weight, (average(c.pool(i)) - result.product(i)) / -p.gain(i));
    return result;
}

double middleweight(const contributions &low, const contributions &high)
{
    if (low.weight == 0) return high.weight / 1000;
    if (high.weight > 4 * low.weight) return std::sqrt(low.weight * high.weight);
    return (low.weight + high.weight) / 2;
}

// The weight between two at which x'Gx would be the target if the free set stayed that of either:
// x'Gx = constant + slope * weight^2. A weight well between them where neither tells.
double nextweight(const contributions &low, const contributions &high, double target)
{
    for (const contributions *from : {&low, &high}) {
        const double square =
            from->weight * from->weight + (target - from->xgx) / from->slope; // may not be finite
        const double weight = std::sqrt(square);
        if (weight > low.weight && weight < high.weight) return weight;
    }
    return middleweight(low, high);
}

// The contributions with x'Gx on the target, which lies between the two. Ends since x'Gx rises
// piecewise with the square of the weight: once both are on the target's piece a step is exact.
contributions findtarget(contributionprogram &p, contributions low, contributions high,
                         double target)
{
    const double close = exactly * p.all->meandiagonal;
    for (int round = 1; round <= 500; ++round) {
        // Where steps from one side alone get on slowly, halving brings up the other side.
        const bool slow = round % 8 == 0;
        const double weight = slow ? middleweight(low, high) : nextweight(low, high, target);
        if (!(weight > low.weight && weight < high.weight)) break; // no number between them
        contributions at = solveprogram(p, weight);
        if (std::fabs(at.xgx - target) <= close) return at;
        (at.xgx > target ? high : low) = std::move(at);
    }
    return low;
}

frontierpoint makepoint(const contributionprogram &p, const contributions &from)
{
    frontierpoint point;
    point.weight = p.gainunit > 0 ? from.weight / p.gainunit : 0;
    point.xgx = from.xgx;
    for (int64 i = 1; i <= p.all->n; ++i) point.gain += from.x(i) * p.all->gain(i);
    return point;
}

// Points between the two, with rising weights: each step aims at the next gain, as far as the
// slope of gain where it starts tells.
void addpoints(contributionprogram &p, const contributions &minimum, const contributions &best,
               int64 npoints, std::vector<frontierpoint> &frontier)
{
    restart(p, minimum);
    contributions at = minimum;
    const double spacing = (best.gain - minimum.gain) / static_cast<double>(npoints + 1);
    for (int64 k = 1; k <= npoints; ++k) {
        const double wanted = minimum.gain + static_cast<double>(k) * spacing;
        for (int attempt = 1; attempt <= 4 && at.gain < wanted - spacing / 10; ++attempt) {
            double weight = at.weight + (wanted - at.gain) / at.slope;
            if (!(weight > at.weight && weight < best.weight)) weight = middleweight(at, best);
            at = solveprogram(p, weight);
        }
        const frontierpoint point = makepoint(p, at);
        if (point.gain > frontier.back().gain && point.xgx > frontier.back().xgx &&
            at.gain < best.gain && at.xgx < best.xgx)
            frontier.push_back(point);
    }
}
} // namespace

optimum findoptimum(const candidates &c, double difference, int64 npoints)
{
    contributionprogram p = makeprogram(c);
    const contributions minimum = solveprogram(p, 0);
    contributions best = findhighestgain(p);
    const double target = minimum.xgx + std::max(difference, nodifference * c.meandiagonal);
    if (best.xgx > target) best = findtarget(p, minimum, best, target);

    optimum result;
    result.frontier.push_back(makepoint(p, minimum));
    if (best.gain > minimum.gain) addpoints(p, minimum, best, npoints, result.frontier);
    result.frontier.push_back(makepoint(p, best));
    result.difference = best.xgx - minimum.xgx;
    result.reached = std::fabs(result.difference - difference) < accepted;
    result.x = std::move(best.x);
    result.product = std::move(best.product);
    result.nsolved = p.nsolved;
    result.nchanges = p.nchanges;
    return result;
}
