#include "Corvalind/contributions.h"

#include "Corvalind/freefactor.h"
#include "stops.h"
#include "words.h"

#include <Eigen/LU>

#include <algorithm>
#include <cmath>

namespace
{
constexpr double goodmultiplier = 1e-11, goodresidual = 1e-13, worstresidual = 1e-9;
// Beyond that many leavers at once a new factor is quicker than changing the one there is.
constexpr std::size_t manyleavers = 16;
// Candidates that come in together.
constexpr double entrantshare = 0.2;
constexpr std::size_t mostentrants = 64;

// The free contributions that minimise the objective, whatever their signs.
struct subspacesolution {
    Eigen::VectorXd x, direction; // by member; direction: change of x per unit of weight
    Eigen::Vector2d mu;           // multipliers of the pools' sums
    Eigen::VectorXd product;      // Gx, by candidate from offset 0
    double residual = 0; // largest of Gx - weight * gain - mu over the members, by its size
};

int64 memberat(const freefactor &f, int64 k)
{
    return f.member[static_cast<std::size_t>(k)];
}

// Size of the terms that make up the multiplier of candidate i: what its rounding errors go by.
double sizeofterms(const contributionprogram &p, double weight, int64 i)
{
    return p.all->meandiagonal + weight * std::fabs(p.gain(i));
}

// G x for contributions of the members, four columns at a time.
void multiply(const contributionprogram &p, const Eigen::VectorXd &x, Eigen::VectorXd &product)
{
    const candidates &c = *p.all;
    const auto column = [&](int64 k) {
        return Eigen::Map<const Eigen::VectorXd>(c.relationship.column(memberat(*p.free, k)), c.n);
    };
    product.setZero(c.n);
    int64 k = 0;
    for (; k + 4 <= x.size(); k += 4)
        product += x(k) * column(k) + x(k + 1) * column(k + 1) + x(k + 2) * column(k + 2) +
                   x(k + 3) * column(k + 3);
    for (; k < x.size(); ++k) product += x(k) * column(k);
}

// Sums over the members of each pool; the second is 0 where there is one pool.
Eigen::Vector2d poolsums(const contributionprogram &p, const Eigen::VectorXd &x)
{
    Eigen::Vector2d sums(0, 0);
    for (int64 k = 0; k < x.size(); ++k) sums(p.all->pool(memberat(*p.free, k)) - 1) += x(k);
    return sums;
}

// What the factor gives for all weights: (inverse of G) times the gains and times each pool's ones.
struct basicsolutions {
    Eigen::MatrixXd columns;     // gain, pool 1, pool 2
    Eigen::Matrix2d poolsmatrix; // sums of pool 1 and pool 2's columns, inverted
};

basicsolutions computebasics(const contributionprogram &p)
{
    const freefactor &f = *p.free;
    basicsolutions b;
    b.columns.setZero(f.size(), 1 + p.all->npools);
    for (int64 k = 0; k < f.size(); ++k) {
        b.columns(k, 0) = p.gain(memberat(f, k));
        b.columns(k, p.all->pool(memberat(f, k))) = 1;
    }
    solveinplace(f, b.columns);
    Eigen::Matrix2d sums = Eigen::Matrix2d::Identity();
    for (int64 q = 0; q < p.all->npools; ++q) sums.col(q) = poolsums(p, b.columns.col(q + 1));
    if (p.all->npools == 1) sums(1, 0) = 0;
    b.poolsmatrix = sums.inverse();
    return b;
}

// x += (inverse of G) times rhs, plus what brings the pools' sums to rise by sumrise.
void correct(const contributionprogram &p, const basicsolutions &b, const Eigen::VectorXd &rhs,
             const Eigen::Vector2d &sumrise, subspacesolution &s)
{
    Eigen::MatrixXd rise = rhs;
    solveinplace(*p.free, rise);
    const Eigen::Vector2d mu = b.poolsmatrix * (sumrise - poolsums(p, rise.col(0)));
    s.x += rise.col(0) + b.columns.rightCols(p.all->npools) * mu.head(p.all->npools);
    s.mu += mu;
}

// Solves by the factor, then refines against the equations themselves.
subspacesolution solvesubspace(const contributionprogram &p, double weight)
{
    const freefactor &f = *p.free;
    const candidates &c = *p.all;
    const basicsolutions b = computebasics(p);
    const Eigen::Vector2d sums = c.npools == 1 ? Eigen::Vector2d(1, 0) : Eigen::Vector2d(0.5, 0.5);
    const Eigen::VectorXd ofgain = b.columns.col(0);
    const auto ofpools = b.columns.rightCols(c.npools);
    const Eigen::Vector2d gainsums = poolsums(p, ofgain);
    subspacesolution s;
    s.mu = b.poolsmatrix * (sums - weight * gainsums);
    s.x = weight * ofgain + ofpools * s.mu.head(c.npools);
    s.direction = ofgain - ofpools * (b.poolsmatrix * gainsums).head(c.npools);

    Eigen::VectorXd rhs(f.size());
    for (int round = 0;; ++round) {
        multiply(p, s.x, s.product);
        s.residual = 0;
        for (int64 k = 0; k < f.size(); ++k) {
            const int64 i = memberat(f, k);
            rhs(k) = weight * p.gain(i) + s.mu(c.pool(i) - 1) - s.product(i - 1);
            s.residual = std::max(s.residual, std::fabs(rhs(k)) / sizeofterms(p, weight, i));
        }
        const Eigen::Vector2d sumrise = sums - poolsums(p, s.x);
        if (round == 4 || (s.residual <= goodresidual && sumrise.cwiseAbs().maxCoeff() <= 1e-15))
            break;
        correct(p, b, rhs, sumrise, s);
    }
    return s;
}

[[noreturn]] void complainaboutmatrix(const contributionprogram &p)
{
    ioerror(p.all->relationshipfile, "the matrix is not positive semidefinite: something has to be "
                                     "added to its diagonal");
}

void refactororstop(contributionprogram &p, const std::vector<int64> &member)
{
    if (!refactor(*p.free, p.all->relationship, member)) complainaboutmatrix(p);
}

// The same; a factor worn out by many changes is made anew.
subspacesolution solvefree(contributionprogram &p, double weight)
{
    subspacesolution s = solvesubspace(p, weight);
    if (s.residual <= worstresidual) return s;
    refactororstop(p, p.free->member);
    return solvesubspace(p, weight);
}

// Takes the members with leaves(k) nonzero out of the free set. Gives whether there were any.
bool dropmembers(contributionprogram &p, const std::vector<int8> &leaves)
{
    freefactor &f = *p.free;
    std::vector<int64> staying;
    for (int64 k = 0; k < f.size(); ++k)
        if (!leaves[static_cast<std::size_t>(k)]) staying.push_back(memberat(f, k));
    const std::size_t nleavers = f.member.size() - staying.size();
    p.nchanges += static_cast<int64>(nleavers);
    if (nleavers > manyleavers)
        refactororstop(p, staying);
    else
        for (int64 k = f.size(); k-- > 0;)
            if (leaves[static_cast<std::size_t>(k)]) dropmember(f, k);
    return nleavers > 0;
}

// A first set without negative contributions: all that come out negative are taken out together.
subspacesolution dropnegatives(contributionprogram &p, double weight)
{
    for (;;) {
        subspacesolution s = solvefree(p, weight);
        std::vector<int8> leaves;
        for (const double x : s.x) leaves.push_back(!(x > 0));
        if (!dropmembers(p, leaves)) return s;
    }
}

// The candidates at 0 that would lower the objective by rising, those that would lower it most
// first, down to a share of what the first one does.
std::vector<int64> findentrants(const contributionprogram &p, double weight,
                                const subspacesolution &s, const std::vector<int8> &barred)
{
    const candidates &c = *p.all;
    std::vector<int8> outside(barred.size());
    for (int64 i = 1; i <= c.n; ++i)
        outside[static_cast<std::size_t>(i - 1)] =
            p.eligible(i) && !barred[static_cast<std::size_t>(i - 1)];
    for (const int64 i : p.free->member) outside[static_cast<std::size_t>(i - 1)] = 0;
    std::vector<std::pair<double, int64>> falling;
    for (int64 i = 1; i <= c.n; ++i) {
        const double multiplier = s.product(i - 1) - weight * p.gain(i) - s.mu(c.pool(i) - 1);
        if (outside[static_cast<std::size_t>(i - 1)] &&
            multiplier < -goodmultiplier * sizeofterms(p, weight, i))
            falling.emplace_back(multiplier, i);
    }
    std::sort(falling.begin(), falling.end());
    std::vector<int64> entrants;
    for (const auto &[multiplier, i] : falling)
        if (multiplier <= entrantshare * falling.front().first && entrants.size() < mostentrants)
            entrants.push_back(i);
    return entrants;
}

// From the contributions x of the members towards the minimum among them: those that get to 0 on
// the way leave, and the minimum is sought anew. Members that are at 0 as they start stay if they
// rise.
subspacesolution descend(contributionprogram &p, double weight, Eigen::VectorXd x)
{
    for (;;) {
        subspacesolution s = solvefree(p, weight);
        if (!(s.x.minCoeff() <= 0)) return s;
        double reach = 1; // of the way
        for (int64 k = 0; k < x.size(); ++k)
            if (s.x(k) <= 0 && x(k) < reach * (x(k) - s.x(k))) reach = x(k) / (x(k) - s.x(k));
        std::vector<int8> leaves;
        std::vector<double> left;
        for (int64 k = 0; k < x.size(); ++k) {
            const double there = x(k) + reach * (s.x(k) - x(k));
            leaves.push_back(s.x(k) <= 0 && there <= 1e-15);
            if (!leaves.back()) left.push_back(std::max(there, 0.0));
        }
        dropmembers(p, leaves);
        // Made beside it: a vector that gets another size frees itself first, and again where memory
        // for the new one is missing.
        x = Eigen::VectorXd(
            Eigen::Map<const Eigen::VectorXd>(left.data(), static_cast<int64>(left.size())));
    }
}

// Lets candidates in. False where none of them can rise after all, by rounding; they are then out
// again. Where several come in together the objective falls too: of those that would lower it
// alone some rise in the minimum among all, and where others should fall there they leave again
// before anything moves.
bool enter(contributionprogram &p, double weight, const std::vector<int64> &entrants,
           subspacesolution &s)
{
    for (const int64 i : entrants) {
        if (addmember(*p.free, p.all->relationship, i)) continue;
        std::vector<int64> member = p.free->member;
        member.push_back(i);
        refactororstop(p, member);
    }
    p.nchanges += std::ssize(entrants);
    Eigen::VectorXd x = Eigen::VectorXd::Zero(p.free->size());
    x.head(s.x.size()) = s.x;
    s = descend(p, weight, x);
    const std::vector<int64> &member = p.free->member;
    return std::any_of(entrants.begin(), entrants.end(), [&](int64 i) {
        return std::find(member.begin(), member.end(), i) != member.end();
    });
}

contributions gather(const contributionprogram &p, double weight, const subspacesolution &s)
{
    const freefactor &f = *p.free;
    contributions result;
    result.weight = weight;
    result.x.allocate(p.all->n, 0.0);
    result.product.allocate(p.all->n);
    std::copy(s.product.begin(), s.product.end(), result.product.begin());
    for (int64 k = 0; k < f.size(); ++k) {
        const int64 i = memberat(f, k);
        result.x(i) = s.x(k);
        result.xgx += s.x(k) * s.product(i - 1);
        result.gain += s.x(k) * p.gain(i);
        result.slope += s.direction(k) * p.gain(i);
    }
    return result;
}

// Gains on a scale of their own: less the highest of the pool, in standard deviations. The former
// changes no contribution, and keeps what counts at high weights, small differences between the
// best, from drowning in rounding errors; the latter makes weights comparable.
void scalegains(contributionprogram &p)
{
    const candidates &c = *p.all;
    p.gain = c.gain;
    double sumsq = 0;
    for (int64 q = 1; q <= c.npools; ++q) {
        double sum = 0, n = 0, highest = -HUGE_VAL;
        for (int64 i = 1; i <= c.n; ++i) {
            if (c.pool(i) != q) continue;
            sum += c.gain(i), n += 1;
            highest = std::max(highest, c.gain(i));
        }
        for (int64 i = 1; i <= c.n; ++i) {
            if (c.pool(i) != q) continue;
            p.gain(i) = c.gain(i) - highest;
            sumsq += (c.gain(i) - sum / n) * (c.gain(i) - sum / n);
        }
    }
    p.gainunit = std::sqrt(sumsq / static_cast<double>(c.n));
    for (double &gain : p.gain) gain = p.gainunit > 0 ? gain / p.gainunit : 0;
}

void freeeligible(contributionprogram &p)
{
    std::vector<int64> member;
    for (int64 i = 1; i <= p.all->n; ++i)
        if (p.eligible(i)) member.push_back(i);
    p.free = std::make_shared<freefactor>(makefreefactor(static_cast<int64>(member.size())));
    refactororstop(p, member);
}
} // namespace

contributionprogram makeprogram(const candidates &c)
{
    contributionprogram p;
    p.all = &c;
    scalegains(p);
    p.eligible.allocate(c.n, 1);
    freeeligible(p);
    return p;
}

contributionprogram maketopprogram(const contributionprogram &p)
{
    contributionprogram top;
    top.all = p.all;
    top.gain = p.gain;
    top.gainunit = p.gainunit;
    top.eligible.allocate(p.all->n, 0);
    for (int64 i = 1; i <= p.all->n; ++i) top.eligible(i) = p.gain(i) == 0;
    freeeligible(top);
    return top;
}

contributions solveprogram(contributionprogram &p, double weight)
{
    const int64 nchangemax = p.nchanges + 100 * p.all->n + 1000;
    std::vector<int8> barred(static_cast<std::size_t>(p.all->n), 0);
    subspacesolution s = dropnegatives(p, weight);
    for (;;) {
        const std::vector<int64> entrants = findentrants(p, weight, s, barred);
        if (entrants.empty()) break;
        if (p.nchanges > nchangemax)
            ioerror(p.all->relationshipfile,
                    "no optimum was found in " + numbertext(p.nchanges) +
                        " changes of the set of contributors: the matrix is too close to one that "
                        "is not positive semidefinite");
        const bool progress = enter(p, weight, entrants, s);
        if (progress) {
            std::fill(barred.begin(), barred.end(), int8{0});
            continue;
        }
        for (std::size_t k = entrants.size() > 1; k < entrants.size(); ++k) // then the first alone
            barred[static_cast<std::size_t>(entrants[k] - 1)] = 1;
    }
    ++p.nsolved;
    return gather(p, weight, s);
}

void restart(contributionprogram &p, const contributions &from)
{
    std::vector<int64> member;
    for (int64 i = 1; i <= p.all->n; ++i)
        if (from.x(i) > 0) member.push_back(i);
    refactororstop(p, member);
}
