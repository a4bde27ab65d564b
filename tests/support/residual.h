// Norms and the residual ratios factorization and solver tests judge by, all
// computed in double precision. A ratio is scaled by the machine epsilon of
// the element type, so a correct result gives a ratio of order 1 (tests
// usually accept up to about 30) and a wrong one a ratio of order 1 / eps.
#pragma once

#include <limits>
#include <vector>

#include "support/matrix.h"

namespace orb::test {

// std::numeric_limits<R>::epsilon() of T's real type R.
template <class T>
double epsilon() {
  return std::numeric_limits<real_t<T>>::epsilon();
}

// Norms of the rows by cols matrix (moduli of complex elements).
template <class T>
double norm_one(const Matrix<T> &a);  // largest column sum
template <class T>
double norm_inf(const Matrix<T> &a);  // largest row sum
template <class T>
double norm_max(const Matrix<T> &a);  // largest element
template <class T>
double norm_frobenius(const Matrix<T> &a);

// ||A - P L U||_1 / (n ||A||_1 eps) for the factors of the m by n matrix A
// as xGETRF leaves them: L unit lower trapezoidal below the diagonal of `lu`,
// U upper trapezoidal on and above it, and row i interchanged with row
// ipiv[i] (1-based) for i = 1, ..., min(m, n) in that order.
template <class T>
double lu_residual(const Matrix<T> &a, const Matrix<T> &lu, const std::vector<int> &ipiv);

// ||I - Q^H Q||_1 / (m eps) for the columns of an m by n matrix with m >= n;
// when m < n, ||I - Q Q^H||_1 / (n eps) for its rows.
template <class T>
double orthogonality(const Matrix<T> &q);

// The largest over the columns x_j of X and b_j of B of
// ||b_j - op(A) x_j||_1 / (||op(A)||_1 ||x_j||_1 eps), trans 'N', 'T' or 'C'.
template <class T>
double solve_residual(char trans, const Matrix<T> &a, const Matrix<T> &x, const Matrix<T> &b);

}  // namespace orb::test
