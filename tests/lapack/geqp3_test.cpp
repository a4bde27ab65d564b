// The pivoted QR's fixed columns (a non-zero JPVT entry; the reference
// testers leave every column free): they come first, in their order, and
// A P = Q R holds; with the free columns' pivots in the blocked and the
// unblocked stages alike.
#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <vector>

#include "lapack/geqp3.h"
#include "lapack/householder.h"
#include "support/matrix.h"
#include "support/residual.h"

namespace {

namespace lp = orb::lapack;
using orb::test::Matrix;
using orb::test::Random;

// ||A P - Q R|| / (||A|| max(m, n) eps), Q R formed by applying the
// reflectors to R.
template <class T>
double qrp_residual(const Matrix<T> &a, const Matrix<T> &f, const std::vector<int> &jpvt,
                    const std::vector<T> &tau) {
  const int m = a.rows, n = a.cols, k = std::min(m, n);
  Matrix<T> qr(m, n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i <= std::min(j, m - 1); ++i) qr(i, j) = f(i, j);
  std::vector<T> v(m), work(n);
  for (int i = k - 1; i >= 0; --i) {
    v[0] = T(1);
    for (int r = i + 1; r < m; ++r) v[r - i] = f(r, i);
    lp::larf(orb::Side::kLeft, m - i, n, v.data(), 1, tau[i], &qr(i, 0), qr.ld, work.data());
  }
  Matrix<T> diff(m, n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) diff(i, j) = qr(i, j) - a(i, jpvt[j] - 1);
  return orb::test::norm_one(diff) /
         (std::max(orb::test::norm_one(a), 1e-300) * std::max(m, n) * orb::test::epsilon<T>());
}

template <class T>
void fixed_columns(int m, int n, const std::vector<int> &fixed) {
  Random rng(m * 17 + n);
  const Matrix<T> a = orb::test::random_matrix<T>(m, n, rng);
  Matrix<T> f = a;
  std::vector<int> jpvt(n, 0);
  for (int j : fixed) jpvt[j] = 1;
  std::vector<T> tau(std::max(1, std::min(m, n)));
  const int lwork = static_cast<int>(lp::geqp3_worksize<T>(m, n));
  std::vector<T> work(std::max(lwork, 1));
  std::vector<orb::real_t<T>> rwork(2 * n + 1);
  lp::geqp3<T>(m, n, f.data(), f.ld, jpvt.data(), tau.data(), work.data(), lwork, rwork.data());
  for (std::size_t i = 0; i < fixed.size(); ++i) EXPECT_EQ(jpvt[i], fixed[i] + 1);
  std::vector<int> seen(jpvt);
  std::sort(seen.begin(), seen.end());
  for (int j = 0; j < n; ++j) EXPECT_EQ(seen[j], j + 1);
  EXPECT_LT(qrp_residual(a, f, jpvt, tau), 10.0) << m << "x" << n;
  // The free part of R's diagonal does not grow.
  const int first = static_cast<int>(fixed.size());
  for (int i = first; i + 1 < std::min(m, n); ++i)
    EXPECT_GE(std::abs(f(i, i)) * (1 + 1e-3), std::abs(f(i + 1, i + 1))) << i;
}

TEST(Geqp3, FixedColumnsFirstThenPivoted) {
  // Small (unblocked), and large enough for blocks of pivot steps; more
  // fixed columns than rows.
  fixed_columns<float>(40, 30, {3, 17, 29});
  fixed_columns<float>(150, 120, {0, 1, 60, 119});
  fixed_columns<float>(5, 12, {2, 4, 6, 8, 10, 11});
  fixed_columns<double>(150, 120, {5, 99});
  fixed_columns<std::complex<float>>(130, 100, {7, 50});
  fixed_columns<std::complex<double>>(20, 33, {32});
}

}  // namespace
