#include "Corvalind/freefactor.h"

#include <Eigen/Cholesky>

#include <cmath>

namespace
{
// One column of the factor behind the row of a leaving member: rotated with the column of the
// leaver's products v, and moved up and left by one.
void rotatecolumn(const double *__restrict from, double *__restrict to, double *__restrict v,
                  int64 n)
{
    const double r = std::hypot(from[0], v[0]), cosine = from[0] / r, sine = v[0] / r;
    to[0] = r;
    for (int64 i = 1; i < n; ++i) {
        const double l = from[i], w = v[i];
        to[i] = cosine * l + sine * w;
        v[i] = cosine * w - sine * l;
    }
}
} // namespace

freefactor makefreefactor(int64 n)
{
    freefactor f;
    f.lower.resize(n, n);
    return f;
}

bool refactor(freefactor &f, const array2<double> &relationship, std::vector<int64> member)
{
    f.member = std::move(member);
    const int64 k = f.size();
    for (int64 j = 0; j < k; ++j) {
        const double *const column = relationship.column(f.member[static_cast<std::size_t>(j)]);
        for (int64 i = j; i < k; ++i)
            f.lower(i, j) = column[f.member[static_cast<std::size_t>(i)] - 1];
    }
    Eigen::Ref<Eigen::MatrixXd> corner = f.lower.topLeftCorner(k, k);
    const Eigen::LLT<Eigen::Ref<Eigen::MatrixXd>, Eigen::Lower> factor(corner); // in place
    return factor.info() == Eigen::Success;
}

bool addmember(freefactor &f, const array2<double> &relationship, int64 i)
{
    const int64 k = f.size();
    const double *const column = relationship.column(i);
    Eigen::VectorXd row(k);
    for (int64 j = 0; j < k; ++j) row(j) = column[f.member[static_cast<std::size_t>(j)] - 1];
    f.lower.topLeftCorner(k, k).triangularView<Eigen::Lower>().solveInPlace(row);
    const double pivot = column[i - 1] - row.squaredNorm();
    if (!(pivot > 0)) return false;
    f.lower.row(k).head(k) = row.transpose();
    f.lower(k, k) = std::sqrt(pivot);
    f.member.push_back(i);
    return true;
}

void dropmember(freefactor &f, int64 at)
{
    const int64 k = f.size(), behind = k - at - 1;
    for (int64 j = 0; j < at; ++j) {
        double *const column = f.lower.col(j).data() + at;
        std::copy(column + 1, column + 1 + behind, column);
    }
    Eigen::VectorXd v = f.lower.col(at).segment(at + 1, behind);
    for (int64 j = at + 1; j < k; ++j)
        rotatecolumn(f.lower.col(j).data() + j, f.lower.col(j - 1).data() + j - 1,
                     v.data() + j - at - 1, k - j);
    f.member.erase(f.member.begin() + at);
}

void solveinplace(const freefactor &f, Eigen::MatrixXd &b)
{
    const auto lower = f.lower.topLeftCorner(f.size(), f.size()).triangularView<Eigen::Lower>();
    lower.solveInPlace(b);
    lower.transpose().solveInPlace(b);
}
