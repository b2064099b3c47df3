#include "Quillomere/snpblup.h"

#include "evaluationhelpers/conjugategradients.h"
#include "evaluationhelpers/progress.h"
#include "stops.h"
#include "words.h"

#define EIGEN_USE_BLAS
#include <Eigen/Cholesky>
#include <Eigen/Core>

extern "C" void openblas_set_num_threads(int n);

namespace
{
constexpr double wantedresidual = 1e-12, goodresidual = 1e-10, worstresidual = 1e-6;

// One side of the equations, (ZZ' or Z'Z) + lambda I.
struct equationsystem {
    const genotypestore &g;
    bool ofindividuals;
    double lambda;
    int64 n; // equations
    array1<double> diagonal;
};

equationsystem makeequations(const genotypestore &g, bool ofindividuals, double lambda)
{
    equationsystem e{g, ofindividuals, lambda, ofindividuals ? g.nindiv : g.nsnp, {}};
    if (ofindividuals) {
        e.diagonal.allocate(e.n);
        individualsquares(g, e.diagonal);
    } else {
        e.diagonal = g.sumsq;
    }
    for (double &d : e.diagonal) d += lambda;
    return e;
}

void multiply(const equationsystem &e, const array1<double> &x, array1<double> &out)
{
    array1<double> between(e.ofindividuals ? e.g.nsnp : e.g.nindiv);
    if (e.ofindividuals) {
        timesztransposed(e.g, x, between);
        timesz(e.g, between, out);
    } else {
        timesz(e.g, x, between);
        timesztransposed(e.g, between, out);
    }
    for (int64 i = 1; i <= e.n; ++i) out(i) += e.lambda * x(i);
}

// The matrix of the equations, lower triangle: sums of products of blocks of columns of Z, or of
// blocks of rows.
Eigen::MatrixXd formequations(const equationsystem &e)
{
    constexpr int64 blocksize = 256;
    const int64 nindiv = e.g.nindiv, nsnp = e.g.nsnp;
    Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(e.n, e.n);
    Eigen::MatrixXd z; // SNPs x individuals
    for (int64 first = 1; first <= (e.ofindividuals ? nsnp : nindiv); first += blocksize) {
        if (e.ofindividuals) {
            const int64 width = std::min(blocksize, nsnp - first + 1);
            z.resize(width, nindiv);
            for (int64 i = 1; i <= nindiv; ++i)
                scaledgenotypes(e.g, i, first, width, z.col(i - 1).data());
            matrix.selfadjointView<Eigen::Lower>().rankUpdate(z.transpose());
        } else {
            const int64 width = std::min(blocksize, nindiv - first + 1);
            z.resize(nsnp, width);
            for (int64 i = 0; i < width; ++i)
                scaledgenotypes(e.g, first + i, 1, nsnp, z.col(i).data());
            matrix.selfadjointView<Eigen::Lower>().rankUpdate(z);
        }
    }
    matrix.diagonal().array() += e.lambda;
    return matrix;
}

// Solves by the Cholesky factor, refined against the equations themselves: the factor serves as
// the preconditioner of a few rounds of conjugate gradients.
convergence solvebycholesky(const equationsystem &e, const array1<double> &rhs, array1<double> &x)
{
    Eigen::MatrixXd matrix = formequations(e);
    const Eigen::LLT<Eigen::Ref<Eigen::MatrixXd>, Eigen::Lower> factor(matrix); // in place
    if (factor.info() != Eigen::Success) return {0, 1};
    const auto product = [&](const array1<double> &in, array1<double> &out) {
        multiply(e, in, out);
    };
    const auto precondition = [&](const array1<double> &in, array1<double> &out) {
        const Eigen::Map<const Eigen::VectorXd> from(in.data(), e.n);
        Eigen::Map<Eigen::VectorXd>(out.data(), e.n) = factor.solve(from);
    };
    return conjugategradients(product, precondition, rhs, x, 20, wantedresidual);
}

convergence solvebyrounds(const equationsystem &e, const array1<double> &rhs, int64 nround,
                          array1<double> &x)
{
    const auto product = [&](const array1<double> &in, array1<double> &out) {
        multiply(e, in, out);
    };
    const auto precondition = [&](const array1<double> &in, array1<double> &out) {
        for (int64 i = 1; i <= e.n; ++i) out(i) = in(i) / e.diagonal(i);
    };
    return conjugategradients(product, precondition, rhs, x, nround, wantedresidual);
}

// Forming the equations takes n^2 x (the other number) operations; about a second's worth is less
// than most iterations need. 1 GiB of equations is the most that is held.
bool quicklyformed(const equationsystem &e)
{
    const double n = static_cast<double>(e.n);
    return n * n * static_cast<double>(e.ofindividuals ? e.g.nsnp : e.g.nindiv) < 2e10;
}
bool fitsinmemory(const equationsystem &e)
{
    return e.n <= 11585;
}

void report(const std::string &what, const convergence &reached)
{
    note(what + ": " + numbertext(reached.nrounds) + " rounds, relative residual " +
         shortnumber(reached.residual));
}

// Conjugate gradients, and the Cholesky factor where they fail.
void solveiteratively(const equationsystem &e, const array1<double> &rhs, int64 nround,
                      const std::string &specfile, array1<double> &x)
{
    convergence reached = solvebyrounds(e, rhs, nround, x);
    report("Conjugate gradients", reached);
    if (reached.residual <= goodresidual) return;
    if (fitsinmemory(e)) {
        note("The rounds do not suffice: going on by Cholesky factor");
        reached = solvebycholesky(e, rhs, x);
        report("Cholesky factor and refinement", reached);
    }
    if (reached.residual <= goodresidual) return;
    if (reached.residual > worstresidual)
        ioerror(specfile, "nRound: " + numbertext(nround) +
                              " rounds leave a relative residual of " +
                              shortnumber(reached.residual) + ", more are needed");
    note("WARNING: the solutions are not exact, relative residual " +
         shortnumber(reached.residual));
}

void solve(const equationsystem &e, const array1<double> &rhs, int64 nround,
           const std::string &specfile, solver way, array1<double> &x)
{
    if (way == solver::conjugategradients || (way == solver::cheaper && !quicklyformed(e))) {
        solveiteratively(e, rhs, nround, specfile, x);
        return;
    }
    const convergence reached = solvebycholesky(e, rhs, x);
    report("Cholesky factor and refinement", reached);
    if (reached.residual > worstresidual)
        ioerror(specfile, "VarE, VarA: the equations can't be solved, relative residual " +
                              shortnumber(reached.residual));
}

double usedresidualvariance(double vara, double vare)
{
    if (vare >= 1e-6 * vara) return vare;
    note("WARNING: VarE " + shortnumber(vare) +
         " is below a millionth of VarA, which is used "
         "instead");
    return 1e-6 * vara;
}
} // namespace

snpblup solvesnpblup(const genotypestore &g, const array1<double> &phenotype, double vara,
                     double vare, int64 nround, const std::string &specfile, equations side,
                     solver way)
{
    snpblup result;
    for (const double y : phenotype) result.mu += y;
    result.mu /= static_cast<double>(phenotype.size());
    result.solution.allocate(g.nsnp, 0.0);
    if (vara == 0) note("WARNING: VarA is 0: all solutions and estimates are 0");
    if (g.nsnp == 0) note("WARNING: no SNP segregates in training: all estimates are 0");
    if (vara == 0 || g.nsnp == 0) return result;

    const double persnp = vara / static_cast<double>(g.nsnp);
    result.lambda = usedresidualvariance(vara, vare) / persnp;
    const bool ofindividuals =
        side == equations::ofindividuals || (side == equations::cheaper && g.nindiv <= g.nsnp);
    const equationsystem e = makeequations(g, ofindividuals, result.lambda);
    note(numbertext(e.n) + " equations, one per " + (ofindividuals ? "individual" : "SNP") +
         ", lambda " + shortnumber(result.lambda) + ", mean " + shortnumber(result.mu));

    array1<double> centred = phenotype;
    for (double &y : centred) y -= result.mu;
    if (ofindividuals) {
        array1<double> a(e.n, 0.0);
        solve(e, centred, nround, specfile, way, a);
        timesztransposed(g, a, result.solution);
    } else {
        array1<double> rhs(e.n);
        timesztransposed(g, centred, rhs);
        solve(e, rhs, nround, specfile, way, result.solution);
    }
    return result;
}

void setprocessors(int64 n)
{
    openblas_set_num_threads(static_cast<int>(n));
}
