// The triangular family's own pieces: the scaled solve where the plain one
// would overflow, the trapezoidal norms and their NaN handling, the blocked
// inverse beyond the crossover, the safe division, and the entries' check
// order. The published contracts are proven by the reference testers.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <type_traits>
#include <vector>

#include "blas/level2/level2.h"
#include "lapack/auxiliary.h"
#include "lapack/names.h"
#include "lapack/oracle.h"
#include "lapack/triangular.h"
#include "orb.h"
#include "support/matrix.h"
#include "support/residual.h"

namespace {

using orb::c16;
using orb::c8;
using orb::Diag;
using orb::Norm;
using orb::Op;
using orb::Uplo;
using orb::test::Matrix;
using orb::test::Random;
using orb::test::Triangle;

template <class T>
using R = orb::real_t<T>;

// Wider than T in range and precision: residuals of solutions near overflow.
template <class T>
using Wide =
    std::conditional_t<orb::is_complex_v<T>,
                       std::complex<std::conditional_t<sizeof(R<T>) == 4, double, long double>>,
                       std::conditional_t<sizeof(T) == 4, double, long double>>;

template <class T>
Wide<T> widen(T x) {
  if constexpr (orb::is_complex_v<T>)
    return {x.real(), x.imag()};
  else
    return x;
}

template <class T>
class TriangularTest : public ::testing::Test {};
using Types = ::testing::Types<float, double, c8, c16>;
TYPED_TEST_SUITE(TriangularTest, Types);

const Op kOps[] = {Op::kNone, Op::kTrans, Op::kConjTrans};
const Uplo kUplos[] = {Uplo::kUpper, Uplo::kLower};
const Diag kDiags[] = {Diag::kNonUnit, Diag::kUnit};

Triangle triangle_of(Uplo uplo) {
  return uplo == Uplo::kUpper ? Triangle::kUpper : Triangle::kLower;
}

// A random n-by-n triangle with `diagonal` on its diagonal and NaN in the
// other triangle, which no routine may read.
template <class T>
Matrix<T> triangle(int n, Uplo uplo, T diagonal, Random &rng) {
  Matrix<T> a = orb::test::random_matrix<T>(n, n, rng, n + 3);
  for (int i = 0; i < n; ++i) a(i, i) = diagonal;
  orb::test::keep_triangle(a, triangle_of(uplo));
  return a;
}

// max_i |op(A) x - s b|_i / (||op(A)||_inf max_i |x_i| n eps), in wide
// arithmetic.
template <class T>
double scaled_residual(Op op, Uplo uplo, Diag diag, const Matrix<T> &a, const std::vector<T> &x,
                       R<T> scale, const std::vector<T> &b) {
  using W = Wide<T>;
  const int n = a.rows;
  const Matrix<T> t = orb::test::triangular_part(a, triangle_of(uplo), diag == Diag::kUnit);
  double worst = 0, anorm = 0, xnorm = 0;
  for (int i = 0; i < n; ++i) {
    W sum = -widen(b[i]) * static_cast<decltype(std::abs(W()))>(scale);
    double row = 0;
    for (int k = 0; k < n; ++k) {
      W e = op == Op::kNone ? widen(t(i, k)) : widen(t(k, i));
      if (op == Op::kConjTrans) e = orb::test::conj_of(e);
      sum += e * widen(x[k]);
      row += static_cast<double>(std::abs(e));
    }
    worst = std::max(worst, static_cast<double>(std::abs(sum)));
    anorm = std::max(anorm, row);
    xnorm = std::max(xnorm, static_cast<double>(std::abs(widen(x[i]))));
  }
  return worst / (anorm * xnorm * n * orb::test::epsilon<T>());
}

// A bidiagonal-dominated triangle whose solution grows by about 8 per
// element: past the overflow threshold after n elements, where the plain
// solve overflows and the scaled one returns a finite x with op(A) x = s b,
// 0 < s < 1. The rest of the triangle is small random noise.
template <class T>
Matrix<T> growing(int n, Uplo uplo, Random &rng) {
  Matrix<T> a = triangle<T>(n, uplo, T(0.125), rng);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i)
      if (i != j && (i < j) == (uplo == Uplo::kUpper))
        a(i, j) = std::abs(i - j) == 1 ? T(-1) : a(i, j) * T(1.0 / 1024);
  return a;
}

TYPED_TEST(TriangularTest, LatrsScalesInsteadOfOverflowing) {
  using T = TypeParam;
  Random rng(5);
  const int n = sizeof(R<T>) == 4 ? 50 : 365;  // 8^n beyond the overflow threshold
  for (Uplo uplo : kUplos)
    for (Op op : kOps) {
      SCOPED_TRACE(testing::Message() << "uplo " << int(uplo) << " op " << int(op));
      const Matrix<T> a = growing<T>(n, uplo, rng);
      std::vector<T> b(n), x(n);
      for (T &v : b) v = T(1) + rng.value<T>() * T(0.25);
      x = b;
      orb::blas::level2::trsv(uplo == Uplo::kUpper, op, false, n, a.data(), a.ld, x.data(), 1);
      bool overflowed = false;
      for (const T &v : x) overflowed = overflowed || !std::isfinite(std::abs(widen(v)));
      ASSERT_TRUE(overflowed);
      std::vector<R<T>> cnorm(n);
      for (bool normin : {false, true}) {
        x = b;
        R<T> scale = -1;
        int info = -1;
        orb::lapack::latrs(uplo, op, Diag::kNonUnit, normin, n, a.data(), a.ld, x.data(), &scale,
                           cnorm.data(), &info);
        EXPECT_EQ(info, 0);
        EXPECT_GT(scale, R<T>(0));
        EXPECT_LT(scale, R<T>(1));
        for (const T &v : x) ASSERT_TRUE(std::isfinite(std::abs(widen(v))));
        EXPECT_LT(scaled_residual(op, uplo, Diag::kNonUnit, a, x, scale, b), 30.0);
      }
    }
}

// A column whose 1-norm overflows (its elements finite), an exactly singular
// triangle, and a NaN: still op(A) x = s b; s = 0 with op(A) x = 0, x != 0
// (and a reciprocal condition number of 0); a NaN that reaches x.
TYPED_TEST(TriangularTest, LatrsOverflowingNormsSingularAndNan) {
  using T = TypeParam;
  Random rng(9);
  const int n = 12, wide = 8;  // column `wide` holds the huge elements
  for (Uplo uplo : kUplos)
    for (Op op : kOps) {
      SCOPED_TRACE(testing::Message() << "uplo " << int(uplo) << " op " << int(op));
      std::vector<T> b(n), x(n);
      for (T &v : b) v = rng.value<T>();
      std::vector<R<T>> cnorm(n);
      R<T> scale = -1;
      int info = -1;

      const int col = uplo == Uplo::kUpper ? wide : n - 1 - wide;
      Matrix<T> huge = triangle<T>(n, uplo, T(1), rng);
      const R<T> big = std::numeric_limits<R<T>>::max() / 3;
      for (int i = 0; i < n; ++i)
        if (i != col && (i < col) == (uplo == Uplo::kUpper)) huge(i, col) = T(i % 2 ? big : -big);
      x = b;
      orb::lapack::latrs(uplo, op, Diag::kUnit, false, n, huge.data(), huge.ld, x.data(), &scale,
                         cnorm.data(), &info);
      for (const T &v : x) ASSERT_TRUE(std::isfinite(std::abs(widen(v))));
      EXPECT_GT(scale, R<T>(0));
      EXPECT_LT(scale, R<T>(1));
      EXPECT_LT(scaled_residual(op, uplo, Diag::kUnit, huge, x, scale, b), 30.0);

      Matrix<T> singular = triangle<T>(n, uplo, T(2), rng);
      singular(n / 2, n / 2) = T(0);
      x = b;
      orb::lapack::latrs(uplo, op, Diag::kNonUnit, false, n, singular.data(), singular.ld, x.data(),
                         &scale, cnorm.data(), &info);
      EXPECT_EQ(scale, R<T>(0));
      double xmax = 0;
      for (const T &v : x) xmax = std::max(xmax, static_cast<double>(std::abs(widen(v))));
      EXPECT_GT(xmax, 0.0);
      EXPECT_LT(scaled_residual(op, uplo, Diag::kNonUnit, singular, x, scale, b), 30.0);
      std::vector<T> work(2 * n);
      std::vector<R<T>> rwork(n);
      std::vector<int> isgn(n);
      EXPECT_EQ(orb::lapack::trcon(Norm::kOne, uplo, Diag::kNonUnit, n, singular.data(),
                                   singular.ld, work.data(), rwork.data(), isgn.data()),
                R<T>(0));

      Matrix<T> with_nan = triangle<T>(n, uplo, T(1), rng);
      with_nan(uplo == Uplo::kUpper ? 0 : n - 1, uplo == Uplo::kUpper ? n - 1 : 0) =
          T(std::numeric_limits<R<T>>::quiet_NaN());
      x = b;
      orb::lapack::latrs(uplo, op, Diag::kUnit, false, n, with_nan.data(), with_nan.ld, x.data(),
                         &scale, cnorm.data(), &info);
      bool any_nan = false;
      for (const T &v : x) any_nan = any_nan || std::isnan(std::abs(widen(v)));
      EXPECT_TRUE(any_nan);
    }
}

// Trapezoids of every shape against the norms of the matrix spelled out; a
// NaN in the triangle gives NaN, one outside it (or on a unit diagonal) is
// not read.
TYPED_TEST(TriangularTest, LantrTrapezoidsAndNan) {
  using T = TypeParam;
  Random rng(13);
  const T nan = T(std::numeric_limits<R<T>>::quiet_NaN());
  for (const auto &[m, n] : {std::pair{7, 7}, std::pair{4, 9}, std::pair{9, 4}, std::pair{1, 5}})
    for (Uplo uplo : kUplos)
      for (Diag diag : kDiags) {
        SCOPED_TRACE(testing::Message()
                     << m << "x" << n << " uplo " << int(uplo) << " diag " << int(diag));
        Matrix<T> a = orb::test::random_matrix<T>(m, n, rng, m + 2);
        orb::test::keep_triangle(a, triangle_of(uplo));
        if (diag == Diag::kUnit)
          for (int i = 0; i < std::min(m, n); ++i) a(i, i) = nan;
        const Matrix<T> t = orb::test::triangular_part(a, triangle_of(uplo), diag == Diag::kUnit);
        const std::pair<Norm, double> expected[] = {
            {Norm::kMaxAbs, orb::test::norm_max(t)},
            {Norm::kOne, orb::test::norm_one(t)},
            {Norm::kInfinity, orb::test::norm_inf(t)},
            {Norm::kFrobenius, orb::test::norm_frobenius(t)}};
        std::vector<R<T>> work(m);
        for (const auto &[norm, value] : expected) {
          const double got =
              orb::lapack::lantr(norm, uplo, diag, m, n, a.data(), a.ld, work.data());
          EXPECT_NEAR(got, value, 4 * value * orb::test::epsilon<T>()) << "norm " << int(norm);
        }
        // A NaN in the stored part, off the diagonal.
        Matrix<T> b = a;
        if (uplo == Uplo::kUpper)
          b(0, n - 1) = nan;
        else if (m > 1)
          b(m - 1, 0) = nan;
        else
          continue;
        for (const auto &[norm, value] : expected)
          EXPECT_TRUE(
              std::isnan(orb::lapack::lantr(norm, uplo, diag, m, n, b.data(), b.ld, work.data())))
              << "norm " << int(norm);
      }
}

// Past the oracle's crossover the inverse is blocked: for random v,
// ||A (X v) - v|| small against ||A|| ||X|| ||v||, at orders just past the
// crossover and past it by a block and a part; the other triangle (and a
// unit diagonal) is never read nor written.
TYPED_TEST(TriangularTest, TrtriBlockedInverse) {
  using T = TypeParam;
  using W = Wide<T>;
  Random rng(17);
  const auto name = orb::lapack::name<T>("TRTRI");
  const int nx = orb::lapack::oracle(orb::lapack::kCrossover, name, 1000);
  const int nb = orb::lapack::oracle(orb::lapack::kBlockSize, name, 1000);
  for (int n : {nx + 1, nx + nb + 5})
    for (Uplo uplo : kUplos)
      for (Diag diag : kDiags) {
        SCOPED_TRACE(testing::Message() << n << " uplo " << int(uplo) << " diag " << int(diag));
        // Off-diagonal elements of order 1 / n keep the inverse of a unit
        // triangle of these orders in range.
        Matrix<T> a = triangle<T>(n, uplo, T(4), rng);
        const Triangle tri = triangle_of(uplo);
        for (int j = 0; j < n; ++j)
          for (int i = 0; i < n; ++i)
            if (i != j && (i < j) == (uplo == Uplo::kUpper)) a(i, j) *= T(2.0 / n);
        Matrix<T> inv = a;
        ASSERT_EQ(orb::lapack::trtri(uplo, diag, n, inv.data(), inv.ld), 0);
        EXPECT_EQ(inv.padding_changed(), 0);
        const bool unit = diag == Diag::kUnit;
        for (int j = 0; j < n; ++j)
          for (int i = 0; i < n; ++i) {
            if (i != j && (i < j) != (uplo == Uplo::kUpper)) {
              ASSERT_TRUE(std::isnan(std::abs(inv(i, j))));
            } else if (i == j && unit) {
              ASSERT_EQ(inv(i, j), a(i, j));
            }
          }
        const Matrix<T> ta = orb::test::triangular_part(a, tri, unit);
        const Matrix<T> tx = orb::test::triangular_part(inv, tri, unit);
        auto times = [n](const Matrix<T> &m, const std::vector<W> &v) {
          std::vector<W> out(n, W(0));
          for (int j = 0; j < n; ++j)
            for (int i = 0; i < n; ++i) out[i] += widen(m(i, j)) * v[j];
          return out;
        };
        std::vector<W> v(n);
        for (W &e : v) e = widen(rng.value<T>());
        const std::vector<W> back = times(ta, times(tx, v));
        double worst = 0, vmax = 0;
        for (int i = 0; i < n; ++i) {
          worst = std::max(worst, static_cast<double>(std::abs(back[i] - v[i])));
          vmax = std::max(vmax, static_cast<double>(std::abs(v[i])));
        }
        const double scale = orb::test::norm_inf(ta) * orb::test::norm_inf(tx) * vmax;
        EXPECT_LT(worst / (scale * n * orb::test::epsilon<T>()), 1.0);
      }
}

// A zero on the diagonal: its index, and A as it was.
TYPED_TEST(TriangularTest, TrtriZeroDiagonal) {
  using T = TypeParam;
  Random rng(19);
  for (int n : {5, 200}) {
    Matrix<T> a = triangle<T>(n, Uplo::kLower, T(3), rng);
    a(n - 2, n - 2) = T(0);
    Matrix<T> copy = a;
    EXPECT_EQ(orb::lapack::trtri(Uplo::kLower, Diag::kNonUnit, n, copy.data(), copy.ld), n - 1);
    for (int j = 0; j < n; ++j)
      for (int i = j; i < n; ++i) EXPECT_EQ(copy(i, j), a(i, j));
    EXPECT_EQ(orb::lapack::trtri(Uplo::kLower, Diag::kUnit, n, copy.data(), copy.ld), 0);
  }
}

// x / a where 1 / a overflows or underflows: exact quotients.
TYPED_TEST(TriangularTest, RsclWhereTheReciprocalIsOutOfRange) {
  using T = TypeParam;
  using Real = R<T>;
  const Real tiny = std::numeric_limits<Real>::min() / 64, huge = std::numeric_limits<Real>::max();
  std::vector<T> x = {T(std::numeric_limits<Real>::min() * 3),
                      T(-std::numeric_limits<Real>::min())};
  orb::lapack::rscl(2, tiny, x.data());
  EXPECT_EQ(x[0], T(192));
  EXPECT_EQ(x[1], T(-64));
  x = {T(huge / 2), T(huge / 8)};
  orb::lapack::rscl(2, huge, x.data());
  EXPECT_EQ(x[0], T(Real(0.5)));
  EXPECT_EQ(x[1], T(Real(0.125)));
}

// The entries' checks in the published order, each reported with its
// position; outputs untouched. NORM '1' is the 1-norm.
TEST(TriangularEntries, CheckOrder) {
  float a[4] = {2, 0, 1, 3}, b[4] = {1, 1, 1, 1}, x[4] = {1, 1, 1, 1}, work[12];
  float rcond = -5, ferr[2] = {-5, -5}, berr[2] = {-5, -5};
  orb_complex8 ca[4] = {{2, 0}, {0, 0}, {1, 0}, {3, 0}}, cwork[8];
  int iwork[4], info = 0;
  const int two = 2, one = 1, minus = -1;
  testing::internal::CaptureStdout();
  strtri("U", "X", &two, a, &two, &info, 1, 1);
  EXPECT_EQ(info, -2);
  strtri("L", "N", &two, a, &one, &info, 1, 1);
  EXPECT_EQ(info, -5);
  ctrtrs("U", "N", "N", &two, &minus, ca, &one, ca, &two, &info, 1, 1, 1);
  EXPECT_EQ(info, -5);
  strtrs("U", "T", "U", &two, &one, a, &two, b, &one, &info, 1, 1, 1);
  EXPECT_EQ(info, -9);
  strcon("F", "U", "N", &two, a, &two, &rcond, work, iwork, &info, 1, 1, 1);
  EXPECT_EQ(info, -1);
  ctrcon("I", "U", "N", &two, ca, &one, &rcond, cwork, work, &info, 1, 1, 1);
  EXPECT_EQ(info, -6);
  strrfs("U", "N", "N", &two, &one, a, &two, b, &two, x, &one, ferr, berr, work, iwork, &info, 1, 1,
         1);
  EXPECT_EQ(info, -11);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "ORB ERROR: Parameter 2 was incorrect on entry to STRTRI\n"
            "ORB ERROR: Parameter 5 was incorrect on entry to STRTRI\n"
            "ORB ERROR: Parameter 5 was incorrect on entry to CTRTRS\n"
            "ORB ERROR: Parameter 9 was incorrect on entry to STRTRS\n"
            "ORB ERROR: Parameter 1 was incorrect on entry to STRCON\n"
            "ORB ERROR: Parameter 6 was incorrect on entry to CTRCON\n"
            "ORB ERROR: Parameter 11 was incorrect on entry to STRRFS\n");
  EXPECT_EQ(rcond, -5);
  EXPECT_EQ(ferr[0], -5);
  EXPECT_EQ(a[0], 2);
  EXPECT_EQ(b[0], 1);
  strcon("1", "U", "N", &two, a, &two, &rcond, work, iwork, &info, 1, 1, 1);
  EXPECT_EQ(info, 0);
  EXPECT_FLOAT_EQ(rcond, 0.5f);  // ||A||_1 = 4, ||A^-1||_1 = 1/2
}

}  // namespace
