#include "QuillomereP/inbreeding.h"

#include <unordered_map>
#include <vector>

namespace
{
constexpr int64 nlanes = 8;
constexpr double unknown = -1; // coefficients lie between 0 and 1

// The animals that are parents, numbered by themselves: all ancestors of anyone are among them.
struct parentpedigree {
    int64 n = 0;
    array1<int64> sire, dam; // among parents, 0 unknown
    array1<int8> doubledhaploid;
    array1<double> f;      // inbreeding coefficient
    array1<double> d;      // Mendelian sampling variance
    array1<int64> indexof; // by animal: its index among parents, 0 for others
};

parentpedigree extractparents(const phenotypedpedigree &p)
{
    parentpedigree a;
    a.indexof.allocate(p.n, 0);
    for (int64 i = 1; i <= p.n; ++i)
        for (const int64 parent : {p.sire(i), p.dam(i)})
            if (parent > 0) a.indexof(parent) = 1;
    for (int64 &index : a.indexof)
        if (index) index = ++a.n;
    a.sire.allocate(a.n, 0);
    a.dam.allocate(a.n, 0);
    a.doubledhaploid.allocate(a.n, 0);
    a.f.allocate(a.n, unknown);
    a.d.allocate(a.n, 0.0);
    for (int64 i = 1; i <= p.n; ++i) {
        const int64 k = a.indexof(i);
        if (k == 0) continue;
        if (p.sire(i) > 0) a.sire(k) = a.indexof(p.sire(i));
        if (p.dam(i) > 0) a.dam(k) = a.indexof(p.dam(i));
        a.doubledhaploid(k) = p.doubledhaploid(i);
    }
    return a;
}

double mendelianvariance(bool doubledhaploid, int64 sire, int64 dam, const array1<double> &f)
{
    if (doubledhaploid) return sire > 0 ? 1 - f(sire) : 2;
    double d = 1;
    if (sire > 0) d -= 0.25 * (1 + f(sire));
    if (dam > 0) d -= 0.25 * (1 + f(dam));
    return d;
}

// Parents whose rows of T are traced together, and those who wait for the coefficient of a sib.
struct batch {
    std::vector<int64> traced;
    std::vector<std::pair<int64, int64>> waiting; // parent, the one of traced it follows
};

// Work of the tracing: eight lanes for each parent, all 0 before and after, and whether any of them
// has been touched. Tracing goes from young to old, and no row is needed any more when it has come
// further back than the greatest distance between an animal and a parent of it: few rows serve all
// parents in turn. With generations that follow each other they stay in the inner caches. A row for
// each of 200,000 parents mated at random took twice as long.
struct tracingrows {
    int64 distance = 0;        // the greatest between a parent and a parent of it
    int64 mask = 0;            // number of rows - 1, a power of two less 1
    std::vector<double> lanes; // nlanes for each row
    std::vector<char> touched;
    double *of(int64 parent) { return lanes.data() + (parent & mask) * nlanes; }
    char &touch(int64 parent) { return touched[static_cast<std::size_t>(parent & mask)]; }
};

tracingrows makerows(const parentpedigree &a)
{
    tracingrows rows;
    for (int64 j = 1; j <= a.n; ++j)
        for (const int64 parent : {a.sire(j), a.dam(j)})
            if (parent > 0) rows.distance = std::max(rows.distance, j - parent);
    // The members of a batch lie apart by up to that distance, too.
    int64 nrows = 1;
    while (nrows <= 2 * rows.distance) nrows *= 2;
    rows.mask = nrows - 1;
    rows.lanes.assign(static_cast<std::size_t>(nrows * nlanes), 0.0);
    rows.touched.assign(static_cast<std::size_t>(nrows), 0);
    return rows;
}

// The row of parent j hands half of itself to each of its parents and adds its share to the
// diagonals, in copies that share no memory with other rows: that lets the lanes go side by side.
void passonrow(const parentpedigree &a, int64 j, tracingrows &rows, double *diagonal)
{
    double part[nlanes], sum[nlanes];
    double *const row = rows.of(j);
    for (int64 lane = 0; lane < nlanes; ++lane) part[lane] = row[lane];
    for (int64 lane = 0; lane < nlanes; ++lane) row[lane] = 0;
    for (const int64 parent : {a.sire(j), a.dam(j)}) {
        if (parent == 0) continue;
        rows.touch(parent) = 1;
        double *const upper = rows.of(parent);
        for (int64 lane = 0; lane < nlanes; ++lane) sum[lane] = upper[lane] + 0.5 * part[lane];
        for (int64 lane = 0; lane < nlanes; ++lane) upper[lane] = sum[lane];
    }
    const double d = a.d(j);
    for (int64 lane = 0; lane < nlanes; ++lane) diagonal[lane] += part[lane] * part[lane] * d;
}

// Coefficients of all in the batch.
void trace(parentpedigree &a, batch &b, tracingrows &rows)
{
    double diagonal[nlanes] = {};
    int64 youngest = 0;
    for (std::size_t lane = 0; lane < b.traced.size(); ++lane) {
        const int64 k = b.traced[lane];
        for (const int64 parent : {a.sire(k), a.dam(k)}) {
            rows.of(parent)[lane] += 0.5;
            rows.touch(parent) = 1;
            youngest = std::max(youngest, parent);
        }
        diagonal[lane] = a.d(k);
    }
    for (int64 j = youngest; j >= 1; --j) {
        char &touched = rows.touch(j);
        if (!touched) continue; // an ancestor of none
        touched = 0;
        passonrow(a, j, rows, diagonal);
    }
    for (std::size_t lane = 0; lane < b.traced.size(); ++lane)
        a.f(b.traced[lane]) = diagonal[lane] - 1;
    for (const auto &[k, sib] : b.waiting) a.f(k) = a.f(sib);
    b = {};
}

// Goes through the parents from old to young. A parent joins the batch unless it descends from
// one that is in it: the coefficients of its own parents must be known. It begins another batch,
// too, if it lies too far from the first one for the rows that there are.
void computecoefficients(parentpedigree &a)
{
    tracingrows rows = makerows(a);
    std::unordered_map<std::uint64_t, int64> firstofpair;
    batch b;
    for (int64 k = 1; k <= a.n; ++k) {
        const int64 sire = a.sire(k), dam = a.dam(k);
        if ((sire > 0 && a.f(sire) == unknown) || (dam > 0 && a.f(dam) == unknown) ||
            (!b.traced.empty() && k - b.traced.front() > rows.distance))
            trace(a, b, rows);
        a.d(k) = mendelianvariance(a.doubledhaploid(k), sire, dam, a.f);
        if (a.doubledhaploid(k) || sire == 0 || dam == 0) {
            a.f(k) = a.doubledhaploid(k) ? 1 : 0;
            continue;
        }
        const std::uint64_t pair = static_cast<std::uint64_t>(std::min(sire, dam)) << 32 |
                                   static_cast<std::uint64_t>(std::max(sire, dam));
        const auto [found, isnew] = firstofpair.try_emplace(pair, k);
        if (isnew)
            b.traced.push_back(k);
        else if (a.f(found->second) == unknown)
            b.waiting.push_back({k, found->second});
        else
            a.f(k) = a.f(found->second);
        if (static_cast<int64>(b.traced.size()) == nlanes) trace(a, b, rows);
    }
    trace(a, b, rows);
}
} // namespace

array1<double> mendelianvariances(const phenotypedpedigree &p, double &meaninbreeding)
{
    parentpedigree a = extractparents(p);
    computecoefficients(a);
    meaninbreeding = 0;
    for (const double f : a.f) meaninbreeding += f;
    if (a.n > 0) meaninbreeding /= static_cast<double>(a.n);

    array1<double> d(p.n);
    for (int64 i = 1; i <= p.n; ++i) {
        const int64 sire = p.sire(i) > 0 ? a.indexof(p.sire(i)) : 0;
        const int64 dam = p.dam(i) > 0 ? a.indexof(p.dam(i)) : 0;
        d(i) = mendelianvariance(p.doubledhaploid(i), sire, dam, a.f);
    }
    return d;
}
