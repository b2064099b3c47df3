// freefactor.h - the Cholesky factor of the relationships among some of the candidates, changed as
// candidates come and go: each change costs the square of their number, a new factor the cube.
#pragma once

#include "arrays.h"

#include <Eigen/Core>

#include <vector>

struct freefactor {
    std::vector<int64> member; // candidates in the order of the rows, from offset 0
    Eigen::MatrixXd lower; // its leading member.size() rows and columns; above the diagonal: any
    int64 size() const { return static_cast<int64>(member.size()); }
};

// Room for n candidates; there are none yet.
freefactor makefreefactor(int64 n);
// The factor for these members anew. False where their relationships are not positive definite.
bool refactor(freefactor &f, const array2<double> &relationship, std::vector<int64> member);
// Candidate i becomes the last member. False as above; the members are then those before.
bool addmember(freefactor &f, const array2<double> &relationship, int64 i);
// The member at that offset leaves, those behind it move up.
void dropmember(freefactor &f, int64 at);
// Columns of b, a row per member: b = (inverse of the relationships) b.
void solveinplace(const freefactor &f, Eigen::MatrixXd &b);
