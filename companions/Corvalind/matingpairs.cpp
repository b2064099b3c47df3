#include "Corvalind/matingpairs.h"

#include <algorithm>
#include <cmath>

namespace
{
// Relationships of those who mate, by their order among them from offset 0.
struct matetable {
    std::vector<int64> candidate;
    std::size_t n = 0;
    std::vector<double> relationship; // (n, n)
    std::vector<int64> count;         // (n, n), symmetric: matings of the pair
    double again = 0;                 // what mating a pair again costs
    std::size_t at(std::size_t a, std::size_t b) const { return a * n + b; }
};

struct mates {
    std::size_t a = 0, b = 0; // entries of the table; with sexes a is the male
};

matetable maketable(const candidates &c, const matingnumbers &plan)
{
    matetable t;
    for (int64 i = 1; i <= c.n; ++i)
        if (plan.number(i) > 0) t.candidate.push_back(i);
    t.n = t.candidate.size();
    t.relationship.resize(t.n * t.n);
    t.count.assign(t.n * t.n, 0);
    double n = 0, sum = 0, sumsq = 0;
    for (std::size_t a = 0; a < t.n; ++a)
        for (std::size_t b = 0; b < t.n; ++b) {
            const int64 i = t.candidate[a], j = t.candidate[b];
            const double g = c.relationship(i, j);
            t.relationship[t.at(a, b)] = g;
            if (i == j || (c.npools == 2 && c.pool(i) == c.pool(j))) continue;
            n += 1, sum += g, sumsq += g * g;
        }
    if (n > 0) t.again = std::sqrt(std::max(sumsq / n - sum / n * (sum / n), 0.0)) / 2;
    // Dearer than all matings of others together can be: it is done only where it has to be.
    double largest = c.meandiagonal;
    for (const double g : t.relationship) largest = std::max(largest, std::fabs(g));
    for (std::size_t a = 0; a < t.n; ++a) t.relationship[t.at(a, a)] += 1e6 * largest;
    return t;
}

// Each entry of the table as often as its number says, in pool q.
std::vector<std::size_t> placesof(const candidates &c, const matingnumbers &plan,
                                  const matetable &t, int64 q)
{
    std::vector<std::size_t> places;
    for (std::size_t a = 0; a < t.n; ++a)
        if (c.pool(t.candidate[a]) == q)
            places.insert(places.end(), static_cast<std::size_t>(plan.number(t.candidate[a])), a);
    return places;
}

void shuffle(std::vector<std::size_t> &list, std::mt19937_64 &random)
{
    for (std::size_t k = list.size(); k > 1; --k) std::swap(list[k - 1], list[random() % k]);
}

// With sexes: females in random order beside the males. Without: the first half of the places
// beside the second half; a candidate that fills at most half of the places meets itself nowhere.
std::vector<mates> firstpairing(const candidates &c, const matingnumbers &plan, const matetable &t,
                                std::mt19937_64 &random)
{
    std::vector<std::size_t> left = placesof(c, plan, t, 1), right;
    if (c.npools == 2) {
        right = placesof(c, plan, t, 2);
        shuffle(right, random);
    } else {
        const auto half = left.begin() + static_cast<std::ptrdiff_t>(left.size() / 2);
        right.assign(half, left.end());
        left.erase(half, left.end());
    }
    std::vector<mates> pairs;
    for (std::size_t k = 0; k < left.size(); ++k) pairs.push_back({left[k], right[k]});
    return pairs;
}

void addcount(matetable &t, const mates &m, int64 change)
{
    t.count[t.at(m.a, m.b)] += change;
    if (m.a != m.b) t.count[t.at(m.b, m.a)] += change;
}

// Cost of making a mating beside those that there are.
double cost(const matetable &t, const mates &m)
{
    return t.relationship[t.at(m.a, m.b)] + t.again * static_cast<double>(t.count[t.at(m.a, m.b)]);
}

// Cost of making two matings; of two that are the same the second one is made again.
double costoftwo(const matetable &t, const mates &one, const mates &two)
{
    const bool same = (one.a == two.a && one.b == two.b) || (one.a == two.b && one.b == two.a);
    return cost(t, one) + cost(t, two) + (same ? t.again : 0);
}

struct swap {
    std::size_t partner = 0;
    mates one, two;
    double cost = 0;
};

// The best way for mating k to exchange mates with one of the partners behind it, cyclically, from
// a distance on. The cost is that of the matings as they are if there is nothing better. The two
// matings that are exchanged are out of the counts while their cost is asked for.
swap bestswap(const candidates &c, matetable &t, const std::vector<mates> &pairs, std::size_t k,
              std::size_t distance, std::size_t npartners, double negligible)
{
    swap best;
    double lowest = -negligible;
    const mates one = pairs[k];
    addcount(t, one, -1);
    for (std::size_t step = 0; step < npartners; ++step) {
        const std::size_t l = (k + 1 + (distance + step) % (pairs.size() - 1)) % pairs.size();
        const mates two = pairs[l];
        addcount(t, two, -1);
        const double now = costoftwo(t, one, two);
        const auto consider = [&](const mates &x, const mates &y) {
            const double change = costoftwo(t, x, y) - now;
            if (change < lowest) {
                lowest = change;
                best = {l, x, y, change};
            }
        };
        consider({one.a, two.b}, {two.a, one.b});
        if (c.npools == 1) consider({one.a, two.a}, {one.b, two.b});
        addcount(t, two, 1);
    }
    addcount(t, one, 1);
    return best;
}

// Swaps until a round over all partners has found nothing. Gives the number of swaps.
int64 improve(const candidates &c, matetable &t, std::vector<mates> &pairs, int64 npartners,
              int64 nrounds, std::mt19937_64 &random)
{
    if (pairs.size() < 2 || npartners < 1) return 0;
    const std::size_t others = pairs.size() - 1;
    const std::size_t width =
        static_cast<std::size_t>(std::min(npartners, static_cast<int64>(others)));
    int64 nswaps = 0;
    std::size_t distance = 0, idle = 0; // partners tried since the last swap
    for (int64 round = 1; round <= nrounds && idle < others; ++round) {
        if (round == 1) distance = random() % others;
        const int64 before = nswaps;
        for (std::size_t k = 0; k < pairs.size(); ++k) {
            const swap found = bestswap(c, t, pairs, k, distance, width, 1e-12 * c.meandiagonal);
            if (!(found.cost < 0)) continue;
            addcount(t, pairs[k], -1);
            addcount(t, pairs[found.partner], -1);
            pairs[k] = found.one;
            pairs[found.partner] = found.two;
            addcount(t, pairs[k], 1);
            addcount(t, pairs[found.partner], 1);
            ++nswaps;
        }
        idle = nswaps > before ? 0 : idle + width;
        distance = (distance + width) % others;
    }
    return nswaps;
}

matingpairs inorder(const candidates &c, const matetable &t, const std::vector<mates> &pairs)
{
    std::vector<std::pair<int64, int64>> list;
    for (const mates &m : pairs) {
        std::pair<int64, int64> mating{t.candidate[m.a], t.candidate[m.b]};
        if (c.npools == 1 && mating.first > mating.second) std::swap(mating.first, mating.second);
        list.push_back(mating);
    }
    std::sort(list.begin(), list.end());
    matingpairs result;
    const int64 n = static_cast<int64>(list.size());
    result.male.allocate(n);
    result.female.allocate(n);
    int64 alike = 0;
    for (int64 k = 1; k <= n; ++k) {
        const auto &[male, female] = list[static_cast<std::size_t>(k - 1)];
        result.male(k) = male;
        result.female(k) = female;
        result.relationship += c.relationship(male, female) / static_cast<double>(n);
        result.nselfed += male == female;
        const bool again =
            k > 1 && list[static_cast<std::size_t>(k - 2)] == std::pair(male, female);
        alike = again ? alike + 1 : 1;
        result.mostalike = std::max(result.mostalike, alike);
    }
    return result;
}
} // namespace

matingpairs pairmates(const candidates &c, const matingnumbers &plan, int64 npartners,
                      int64 nrounds, std::mt19937_64 &random)
{
    matetable t = maketable(c, plan);
    std::vector<mates> pairs = firstpairing(c, plan, t, random);
    for (const mates &m : pairs) addcount(t, m, 1);
    const int64 nswaps = improve(c, t, pairs, npartners, nrounds, random);
    matingpairs result = inorder(c, t, pairs);
    result.nswaps = nswaps;
    return result;
}
