#include "QuillomereP/animalmodel.h"

#include "evaluationhelpers/conjugategradients.h"
#include "evaluationhelpers/progress.h"
#include "stops.h"
#include "words.h"

#include <Eigen/SparseCholesky>
#include <Eigen/SparseCore>
#include <unordered_map>
#include <vector>

namespace
{
constexpr double wantedresidual = 1e-12, goodresidual = 1e-10, worstresidual = 1e-6;
constexpr double nosampling = 1e-9; // Mendelian sampling variances below are rounding

// A linear combination of unknowns: pairs of an equation (from 0) and a factor.
using combination = std::vector<std::pair<int, double>>;
using sparsematrix = Eigen::SparseMatrix<double, Eigen::ColMajor, int>;

// The unknowns: values of animals, each with an equation of its own or as a combination of others.
// The mean comes last.
struct unknowns {
    int n = 0;              // equations, that of the mean included
    std::vector<int> place; // by animal from 1: its equation, -1 if it has none
    std::unordered_map<int64, combination> combined; // animals without an equation
};

void addto(combination &sum, int equation, double factor)
{
    for (auto &[at, value] : sum) {
        if (at != equation) continue;
        value += factor;
        return;
    }
    sum.push_back({equation, factor});
}

// sum += factor * value of the animal
void addanimal(const unknowns &u, int64 animal, double factor, combination &sum)
{
    const int place = u.place[static_cast<std::size_t>(animal)];
    if (place >= 0) {
        addto(sum, place, factor);
        return;
    }
    for (const auto &[at, value] : u.combined.at(animal)) addto(sum, at, factor * value);
}

void addparents(const phenotypedpedigree &p, const unknowns &u, int64 animal, double factor,
                combination &sum)
{
    if (p.sire(animal) > 0) addanimal(u, p.sire(animal), factor, sum);
    if (p.dam(animal) > 0) addanimal(u, p.dam(animal), factor, sum);
}

unknowns numberunknowns(const phenotypedpedigree &p, const array1<double> &d)
{
    unknowns u;
    u.place.assign(static_cast<std::size_t>(p.n) + 1, -1);
    for (int64 i = 1; i <= p.n; ++i) {
        if (d(i) >= nosampling) {
            u.place[static_cast<std::size_t>(i)] = u.n++;
        } else {
            combination sum;
            addparents(p, u, i, 0.5, sum);
            u.combined[i] = sum;
        }
    }
    ++u.n;
    return u;
}

struct equationset {
    sparsematrix matrix; // lower triangle
    array1<double> rhs;
};

// matrix += weight * sum sum', lower triangle
void addproduct(std::vector<Eigen::Triplet<double, int>> &entries, const combination &sum,
                double weight)
{
    for (const auto &[i, x] : sum)
        for (const auto &[j, y] : sum)
            if (i >= j) entries.emplace_back(i, j, weight * x * y);
}

// Both sides of the equations, times VarE.
equationset formequations(const phenotypedpedigree &p, const array1<double> &d, const unknowns &u,
                          double lambda)
{
    equationset e;
    e.rhs.allocate(u.n, 0.0);
    std::vector<Eigen::Triplet<double, int>> entries;
    entries.reserve(static_cast<std::size_t>(6 * p.n + 3 * p.nobserved));
    combination sum;
    for (int64 i = 1; i <= p.n; ++i) {
        const int place = u.place[static_cast<std::size_t>(i)];
        if (place >= 0) {
            sum.assign(1, {place, 1.0});
            addparents(p, u, i, -0.5, sum);
            addproduct(entries, sum, lambda / d(i));
        }
        if (!p.observed(i)) continue;
        sum.assign(1, {u.n - 1, 1.0});
        addanimal(u, i, 1.0, sum);
        addproduct(entries, sum, 1.0);
        for (const auto &[at, factor] : sum) e.rhs(at + 1) += factor * p.phenotype(i);
    }
    e.matrix.resize(u.n, u.n);
    e.matrix.setFromTriplets(entries.begin(), entries.end());
    return e;
}

void multiply(const equationset &e, const array1<double> &x, array1<double> &out)
{
    const Eigen::Map<const Eigen::VectorXd> from(x.data(), x.size());
    Eigen::Map<Eigen::VectorXd>(out.data(), out.size()) =
        e.matrix.selfadjointView<Eigen::Lower>() * from;
}

convergence solvebycholesky(const equationset &e, array1<double> &x)
{
    const Eigen::SimplicialLDLT<sparsematrix, Eigen::Lower> factor(e.matrix);
    if (factor.info() != Eigen::Success) return {0, 1};
    const auto product = [&](const array1<double> &in, array1<double> &out) {
        multiply(e, in, out);
    };
    const auto precondition = [&](const array1<double> &in, array1<double> &out) {
        const Eigen::VectorXd from = Eigen::Map<const Eigen::VectorXd>(in.data(), in.size());
        Eigen::Map<Eigen::VectorXd>(out.data(), out.size()) = factor.solve(from);
    };
    return conjugategradients(product, precondition, e.rhs, x, 20, wantedresidual);
}

convergence solvebyrounds(const equationset &e, int64 nround, array1<double> &x)
{
    const Eigen::VectorXd diagonal = e.matrix.diagonal();
    const auto product = [&](const array1<double> &in, array1<double> &out) {
        multiply(e, in, out);
    };
    const auto precondition = [&](const array1<double> &in, array1<double> &out) {
        for (int64 i = 1; i <= in.size(); ++i) out(i) = in(i) / diagonal(i - 1);
    };
    return conjugategradients(product, precondition, e.rhs, x, nround, wantedresidual);
}

void solve(const equationset &e, int64 nround, const std::string &file, pedigreesolver way,
           array1<double> &x)
{
    const bool bycholesky =
        way == pedigreesolver::cholesky || (way == pedigreesolver::cheaper && e.rhs.size() <= 2001);
    const convergence reached = bycholesky ? solvebycholesky(e, x) : solvebyrounds(e, nround, x);
    note(std::string(bycholesky ? "Cholesky factor and refinement: " : "Conjugate gradients: ") +
         numbertext(reached.nrounds) + " rounds, relative residual " +
         shortnumber(reached.residual));
    if (reached.residual > worstresidual)
        ioerror(file, "nIterations: the equations are not solved, relative residual " +
                          shortnumber(reached.residual) + " after " + numbertext(reached.nrounds) +
                          " rounds");
    if (reached.residual > goodresidual) note("WARNING: the estimates are not exact");
}

double meanphenotype(const phenotypedpedigree &p)
{
    double sum = 0;
    for (int64 i = 1; i <= p.n; ++i)
        if (p.observed(i)) sum += p.phenotype(i);
    return sum / static_cast<double>(p.nobserved);
}
} // namespace

animalmodel solveanimalmodel(const phenotypedpedigree &p, const array1<double> &d, double vara,
                             double vare, int64 nround, const std::string &file, pedigreesolver way)
{
    animalmodel result;
    result.ebv.allocate(p.n, 0.0);
    if (vara == 0) {
        note("WARNING: StartValuePolygenicVariance is 0: all estimates are 0");
        result.mu = meanphenotype(p);
        return result;
    }
    if (vare < 1e-6 * vara) {
        note("WARNING: StartValueResidualVariance " + shortnumber(vare) +
             " is below a millionth of StartValuePolygenicVariance, which is used instead");
        vare = 1e-6 * vara;
    }
    const unknowns u = numberunknowns(p, d);
    const equationset e = formequations(p, d, u, vare / vara);
    array1<double> x(u.n, 0.0);
    solve(e, nround, file, way, x);
    result.mu = x(u.n);
    for (int64 i = 1; i <= p.n; ++i) {
        combination value;
        addanimal(u, i, 1.0, value);
        for (const auto &[at, factor] : value) result.ebv(i) += factor * x(at + 1);
    }
    return result;
}
