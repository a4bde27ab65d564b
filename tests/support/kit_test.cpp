// The test kit itself: generated matrices have what they promise, and the
// residual ratios are small for right answers and large for wrong ones.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

#include "support/matrix.h"
#include "support/residual.h"

namespace {

using namespace orb::test;

template <class T>
class Kit : public testing::Test {};
using Types = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(Kit, Types);

template <class W>
W trace(const Matrix<W> &a) {
  W s = 0;
  for (int i = 0; i < a.rows; ++i) s += a(i, i);
  return s;
}

// tr(G), tr(G^2), tr(G^3): for three eigenvalues, they fix all three.
template <class W>
std::vector<double> power_traces(const Matrix<W> &g) {
  const Matrix<W> g2 = multiply('N', g, 'N', g), g3 = multiply('N', g2, 'N', g);
  return {std::real(trace(g)), std::real(trace(g2)), std::real(trace(g3))};
}

std::vector<double> power_sums(const std::vector<double> &x) {
  std::vector<double> s(3, 0.0);
  for (double v : x) s[0] += v, s[1] += v * v, s[2] += v * v * v;
  return s;
}

TYPED_TEST(Kit, PrescribedSingularValues) {
  using T = TypeParam;
  using W = wide_t<T>;
  const std::vector<double> sigma = {3, 1.5, 0.25}, squares = {9, 2.25, 0.0625};
  Random rng(11);
  for (auto [m, n] : {std::pair{3, 3}, {6, 3}, {3, 5}}) {
    Matrix<T> u, v;
    const Matrix<T> a = with_singular_values<T>(m, n, sigma, rng, m + 2, &u, &v);
    ASSERT_EQ(a.ld, m + 2);
    // The spectrum of A^H A (or A A^H), whatever U and V are.
    const Matrix<W> g = m >= n ? multiply('C', a, 'N', a) : multiply('N', a, 'C', a);
    const std::vector<double> got = power_traces(g), want = power_sums(squares);
    for (int p = 0; p < 3; ++p)
      EXPECT_NEAR(got[p], want[p], 50 * epsilon<T>() * want[p]) << m << "x" << n << " p " << p;
    // U and V are orthogonal and are the factors.
    EXPECT_LT(orthogonality(u), 10);
    EXPECT_LT(orthogonality(v), 10);
    Matrix<W> s(m, n);
    for (int i = 0; i < 3; ++i) s(i, i) = sigma[i];
    const Matrix<W> usv =
        multiply('N', multiply('N', converted<W>(u), 'N', s), 'C', converted<W>(v));
    double err = 0;
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < m; ++i) err = std::max(err, std::abs(usv(i, j) - W(a(i, j))));
    EXPECT_LT(err, 20 * epsilon<T>()) << m << "x" << n;
  }
  // 2-norm condition 1e3, singular values geometrically spaced.
  const Matrix<T> c = ill_conditioned<T>(3, 3, 1e3, rng);
  const std::vector<double> got = power_traces(multiply('C', c, 'N', c));
  const std::vector<double> want = power_sums({1, 1e-3, 1e-6});
  for (int p = 0; p < 3; ++p) EXPECT_NEAR(got[p], want[p], 50 * epsilon<T>() * want[p]);
}

TYPED_TEST(Kit, PrescribedEigenvalues) {
  using T = TypeParam;
  using W = wide_t<T>;
  const std::vector<double> lambda = {2, -1, 0.5};
  Random rng(5);
  Matrix<T> q;
  const Matrix<T> a = with_eigenvalues<T>(lambda, rng, 4, &q);
  for (int j = 0; j < 3; ++j)
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(a(i, j), conj_of(a(j, i))) << i << "," << j;
    }
  const std::vector<double> got = power_traces(converted<W>(a)), want = power_sums(lambda);
  for (int p = 0; p < 3; ++p) EXPECT_NEAR(got[p], want[p], 50 * epsilon<T>() * 9) << p;
  EXPECT_LT(orthogonality(q), 10);
  Matrix<W> l(3, 3);
  for (int i = 0; i < 3; ++i) l(i, i) = lambda[i];
  const Matrix<W> qlq = multiply('N', multiply('N', converted<W>(q), 'N', l), 'C', converted<W>(q));
  for (int j = 0; j < 3; ++j)
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(std::abs(qlq(i, j) - W(a(i, j))), 0, 20 * epsilon<T>());
}

// Gaussian elimination with partial pivoting, as xGETF2 computes it.
template <class T>
std::vector<int> factor(Matrix<T> &a) {
  const int m = a.rows, n = a.cols, k = std::min(m, n);
  std::vector<int> ipiv(k);
  for (int j = 0; j < k; ++j) {
    int p = j;
    for (int i = j + 1; i < m; ++i)
      if (std::abs(a(i, j)) > std::abs(a(p, j))) p = i;
    ipiv[j] = p + 1;
    for (int c = 0; c < n; ++c) std::swap(a(j, c), a(p, c));
    for (int i = j + 1; i < m; ++i) a(i, j) /= a(j, j);
    for (int c = j + 1; c < n; ++c)
      for (int i = j + 1; i < m; ++i) a(i, c) -= a(i, j) * a(j, c);
  }
  return ipiv;
}

TYPED_TEST(Kit, LuResidualSeesAWrongPivot) {
  using T = TypeParam;
  Random rng(3);
  for (auto [m, n] : {std::pair{8, 8}, {9, 5}, {5, 9}}) {
    const Matrix<T> a = random_matrix<T>(m, n, rng, m + 1);
    Matrix<T> lu = a;
    std::vector<int> ipiv = factor(lu);
    int moved = 0;
    for (int i = 0; i < static_cast<int>(ipiv.size()); ++i) moved += ipiv[i] != i + 1;
    ASSERT_GE(moved, 2) << "the interchanges' order is not exercised";
    EXPECT_LT(lu_residual(a, lu, ipiv), 5) << m << "x" << n;
    for (int i : {0, 3}) {
      std::vector<int> wrong = ipiv;
      wrong[i] = wrong[i] == m ? 1 : wrong[i] + 1;
      EXPECT_GT(lu_residual(a, lu, wrong), 1000) << m << "x" << n << " pivot " << i;
    }
    Matrix<T> bad = lu;
    bad(1, 1) += make<T>(0.1);
    EXPECT_GT(lu_residual(a, bad, ipiv), 1000) << m << "x" << n;
  }
}

TYPED_TEST(Kit, OrthogonalityFlagsANonOrthogonalQ) {
  using T = TypeParam;
  Random rng(9);
  Matrix<T> u;
  with_singular_values<T>(7, 7, geometric_values(7, 10), rng, 0, &u);
  Matrix<T> tall(7, 4), wide(4, 7);
  for (int j = 0; j < 4; ++j)
    for (int i = 0; i < 7; ++i) tall(i, j) = u(i, j), wide(j, i) = u(j, i);
  for (Matrix<T> *q : {&u, &tall, &wide}) {
    EXPECT_LT(orthogonality(*q), 5) << q->rows << "x" << q->cols;
    (*q)(2, 3) += make<T>(1e-2, 1e-2);
    EXPECT_GT(orthogonality(*q), 1000) << q->rows << "x" << q->cols;
  }
}

TYPED_TEST(Kit, SolveResidualFollowsTheOperator) {
  using T = TypeParam;
  // A = [1 2c; 0 1] with c = i when complex, X = [x 2x], x = (1, 1).
  const T c = kIsComplex<T> ? make<T>(0, 1) : T(1);
  Matrix<T> a(2, 2, 3), x(2, 2);
  a(0, 0) = a(1, 1) = T(1);
  a(0, 1) = T(2) * c;
  for (int i = 0; i < 2; ++i) x(i, 0) = T(1), x(i, 1) = T(2);
  auto rhs = [&](T b0, T b1) {
    Matrix<T> b(2, 2);
    b(0, 0) = b0, b(1, 0) = b1, b(0, 1) = T(2) * b0, b(1, 1) = T(2) * b1;
    return b;
  };
  const Matrix<T> bn = rhs(T(1) + T(2) * c, T(1)), bt = rhs(T(1), T(2) * c + T(1)),
                  bc = rhs(T(1), T(2) * conj_of(c) + T(1));
  EXPECT_EQ(solve_residual('N', a, x, bn), 0);
  EXPECT_EQ(solve_residual('T', a, x, bt), 0);
  EXPECT_EQ(solve_residual('C', a, x, bc), 0);
  EXPECT_GT(solve_residual('T', a, x, bn), 1e5);
  EXPECT_GT(solve_residual('N', a, x, bt), 1e5);
  if (kIsComplex<T>) {
    EXPECT_GT(solve_residual('C', a, x, bt), 1e5);
  }
  // The worst right-hand side counts.
  Matrix<T> off = bn;
  off(1, 1) += T(1);
  EXPECT_GT(solve_residual('N', a, x, off), 1e5);
}

TEST(Kit, BandStorage) {
  Random rng(1);
  const int m = 6, n = 5, kl = 2, ku = 1, extra = 2;
  const Matrix<double> a = band_matrix<double>(m, n, kl, ku, rng);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) EXPECT_EQ(a(i, j) != 0, i - j <= kl && j - i <= ku) << i << j;
  const Matrix<double> ab = to_band_storage(a, kl, ku, extra, 9);
  ASSERT_EQ(ab.rows, extra + kl + ku + 1);
  EXPECT_EQ(ab.ld, 9);
  EXPECT_EQ(ab(extra + ku, 3), a(3, 3));        // the diagonal
  EXPECT_EQ(ab(extra, 1), a(0, 1));             // the superdiagonal
  EXPECT_EQ(ab(ab.rows - 1, 2), a(4, 2));       // the last subdiagonal
  EXPECT_TRUE(std::isnan(ab(0, 4)));            // room for the fill-in
  EXPECT_TRUE(std::isnan(ab(ab.rows - 1, 4)));  // below the matrix
  const Matrix<double> back = from_band_storage(ab, m, kl, ku, extra);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) EXPECT_EQ(back(i, j), a(i, j));
}

TEST(Kit, SymmetricTriangles) {
  using C = std::complex<float>;
  for (Triangle t : {Triangle::kUpper, Triangle::kLower}) {
    Random r1(4), r2(4);
    const Matrix<C> full = symmetric_matrix<C>(5, true, r1);
    const Matrix<C> half = symmetric_matrix<C>(5, true, r2, 7, t);
    for (int j = 0; j < 5; ++j)
      for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(std::isnan(half(i, j).real()), i != j && (i < j) != (t == Triangle::kUpper));
        EXPECT_EQ(full(i, j), std::conj(full(j, i)));
      }
    const Matrix<C> again = full_from_triangle(half, t, true);
    for (int j = 0; j < 5; ++j)
      for (int i = 0; i < 5; ++i) EXPECT_EQ(again(i, j), full(i, j)) << i << "," << j;
  }
}

TEST(Kit, SeedsAndPadding) {
  Random r1(17), r2(17), r3(18);
  const Matrix<float> a = random_matrix<float>(5, 4, r1, 7), b = random_matrix<float>(5, 4, r2, 7);
  const Matrix<float> c = random_matrix<float>(5, 4, r3, 7);
  EXPECT_EQ(a.mem, b.mem);
  EXPECT_NE(a.mem, c.mem);
  Matrix<float> p = a.placed(6, 1);
  EXPECT_EQ(p.data() - p.mem.data(), 1);
  EXPECT_EQ(p(4, 3), a(4, 3));
  EXPECT_EQ(p.padding_changed(), 0);
  p.data()[5] = 0;  // row 5 of column 0, beyond the matrix
  p.mem[0] = 0;     // before it
  EXPECT_EQ(p.padding_changed(), 2);
}

}  // namespace
