// The singular value decompositions and the SVD least-squares drivers where
// they are hardest: singular values over sixty decades (the drivers' scaling
// into range), clustered and exactly repeated values, rank-deficient least
// squares with the rank decided by RCOND, NaN input; the bidiagonal
// reduction's team panel against the one-thread panel; and the checks the
// drivers add to the published ones (both JOBU and JOBVT 'O', the shapes
// of xORGBR).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <type_traits>
#include <vector>

#include "lapack/bidiag.h"
#include "orb.h"
#include "support/matrix.h"
#include "support/residual.h"

namespace {

namespace lp = orb::lapack;
using orb::c8;
using orb::test::Matrix;
using orb::test::Random;

template <class T>
using R = orb::test::real_t<T>;

template <class T>
auto *ptr(T *p) {
  if constexpr (std::is_same_v<T, c8>)
    return reinterpret_cast<orb_complex8 *>(p);
  else
    return p;
}

// The decomposition of A by gesvd ('A' jobs) or gesdd (JOBZ 'A') with the
// queried workspace: INFO, and s, U, V^H.
template <class T>
struct Svd {
  int info = 0;
  std::vector<float> s;
  Matrix<T> u, vt;
};

template <class T>
Svd<T> decompose(bool divide, Matrix<T> a, char job = 'A') {
  const int m = a.rows, n = a.cols, mn = std::min(m, n);
  Svd<T> out;
  out.s.assign(mn, 0.0f);
  const int ucols = job == 'A' ? m : mn, vrows = job == 'A' ? n : mn;
  out.u = Matrix<T>(m, std::max(ucols, 1));
  out.vt = Matrix<T>(std::max(vrows, 1), n);
  int lda = a.ld, ldu = out.u.ld, ldvt = out.vt.ld, lwork = -1;
  T query{};
  std::vector<float> rwork(5 * mn * mn + 7 * mn + 2 * std::max(m, n) * mn + 10);
  std::vector<int> iwork(8 * mn + 1);
  const char jobz = job;
  auto call = [&](T *work) {
    if constexpr (std::is_same_v<T, float>) {
      if (divide)
        sgesdd(&jobz, &m, &n, a.data(), &lda, out.s.data(), out.u.data(), &ldu, out.vt.data(),
               &ldvt, work, &lwork, iwork.data(), &out.info, 1);
      else
        sgesvd(&jobz, &jobz, &m, &n, a.data(), &lda, out.s.data(), out.u.data(), &ldu,
               out.vt.data(), &ldvt, work, &lwork, &out.info, 1, 1);
    } else {
      if (divide)
        cgesdd(&jobz, &m, &n, ptr(a.data()), &lda, out.s.data(), ptr(out.u.data()), &ldu,
               ptr(out.vt.data()), &ldvt, ptr(work), &lwork, rwork.data(), iwork.data(), &out.info,
               1);
      else
        cgesvd(&jobz, &jobz, &m, &n, ptr(a.data()), &lda, out.s.data(), ptr(out.u.data()), &ldu,
               ptr(out.vt.data()), &ldvt, ptr(work), &lwork, rwork.data(), &out.info, 1, 1);
    }
  };
  call(&query);
  lwork = static_cast<int>(std::real(query));
  std::vector<T> work(std::max(lwork, 1));
  call(work.data());
  return out;
}

// ||A - U S V^H||_1 / (||A||_1 max(m, n) eps).
template <class T>
double svd_residual(const Matrix<T> &a, const Svd<T> &d) {
  const int m = a.rows, n = a.cols, mn = std::min(m, n);
  Matrix<T> us(m, mn);
  for (int j = 0; j < mn; ++j)
    for (int i = 0; i < m; ++i) us(i, j) = d.u(i, j) * d.s[j];
  Matrix<T> vt(mn, n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < mn; ++i) vt(i, j) = d.vt(i, j);
  auto usv = orb::test::multiply('N', us, 'N', vt);
  auto aw = orb::test::converted<orb::test::wide_t<T>>(a);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) aw(i, j) -= usv(i, j);
  const double na = orb::test::norm_one(a);
  return orb::test::norm_one(aw) /
         (std::max(na, 1e-300) * std::max(m, n) * orb::test::epsilon<T>());
}

// The largest |s_i - sigma_i| / (sigma_1 eps min(m, n)).
double value_error(const std::vector<float> &s, std::vector<double> sigma) {
  std::sort(sigma.begin(), sigma.end(), std::greater<>());
  double worst = 0;
  for (std::size_t i = 0; i < s.size(); ++i)
    worst = std::max(worst, std::abs(s[i] - sigma[i]) / sigma[0]);
  return worst / (std::numeric_limits<float>::epsilon() * static_cast<double>(s.size()));
}

template <class T>
void expect_good(const Matrix<T> &a, const std::vector<double> &sigma, bool divide,
                 const char *what) {
  const Svd<T> d = decompose(divide, a);
  SCOPED_TRACE(std::string(what) + (divide ? " (divide and conquer)" : " (QR iteration)"));
  ASSERT_EQ(d.info, 0);
  EXPECT_TRUE(std::is_sorted(d.s.rbegin(), d.s.rend()));
  EXPECT_LT(value_error(d.s, sigma), 30.0);
  EXPECT_LT(svd_residual(a, d), 30.0);
  EXPECT_LT(orb::test::orthogonality(d.u), 30.0);
  EXPECT_LT(orb::test::orthogonality(d.vt), 30.0);
}

template <class T>
class SvdDrivers : public ::testing::Test {};
using Scalars = ::testing::Types<float, c8>;
TYPED_TEST_SUITE(SvdDrivers, Scalars);

// Values from 1e30 down to 1e-30, and matrices whose largest entries lie
// outside the range the reduction runs in (both ways): the drivers scale
// A into it and the values back.
TYPED_TEST(SvdDrivers, WideRangesOfValues) {
  using T = TypeParam;
  Random rng(71);
  for (const auto &[m, n] : {std::pair{40, 40}, std::pair{70, 30}, std::pair{30, 70}}) {
    const int mn = std::min(m, n);
    for (const double top : {1e30, 1e-25, 1.0}) {
      std::vector<double> sigma = orb::test::geometric_values(mn, top == 1.0 ? 1e30 : 1e6);
      for (double &s : sigma) s *= top;
      if (top == 1.0)  // 1 .. 1e-30, then all scaled by 1e15: 1e15 .. 1e-15
        for (double &s : sigma) s *= 1e15;
      const Matrix<T> a = orb::test::with_singular_values<T>(m, n, sigma, rng);
      for (const bool divide : {false, true}) expect_good(a, sigma, divide, "wide range");
    }
  }
}

// Clusters and exact repeats: a value of multiplicity eight, two values
// 1 ulp apart, a zero of multiplicity five.
TYPED_TEST(SvdDrivers, ClusteredAndRepeatedValues) {
  using T = TypeParam;
  Random rng(72);
  const int n = 60;
  std::vector<double> sigma(n);
  for (int i = 0; i < n; ++i) sigma[i] = 1.0 + 0.01 * i;
  for (int i = 10; i < 18; ++i) sigma[i] = 2.5;
  sigma[20] = 1.0;
  sigma[21] = 1.0 + std::numeric_limits<float>::epsilon();
  for (int i = 40; i < 45; ++i) sigma[i] = 0.0;
  for (const auto &[m, nn] : {std::pair{n, n}, std::pair{n + 40, n}, std::pair{n, 2 * n}}) {
    const Matrix<T> a = orb::test::with_singular_values<T>(m, nn, sigma, rng);
    for (const bool divide : {false, true}) expect_good(a, sigma, divide, "clusters");
  }
}

// Every job of gesdd and gesvd on a tall and a wide matrix gives the same
// values as the 'A' job.
TYPED_TEST(SvdDrivers, JobsAgree) {
  using T = TypeParam;
  Random rng(73);
  for (const auto &[m, n] : {std::pair{50, 20}, std::pair{20, 50}, std::pair{90, 20}}) {
    const Matrix<T> a = orb::test::random_matrix<T>(m, n, rng);
    for (const bool divide : {false, true}) {
      const Svd<T> all = decompose(divide, a, 'A');
      for (const char job : {'S', 'N'}) {
        const Svd<T> d = decompose(divide, a, job);
        ASSERT_EQ(d.info, 0);
        for (std::size_t i = 0; i < d.s.size(); ++i)
          EXPECT_NEAR(d.s[i], all.s[i], 20 * std::numeric_limits<float>::epsilon() * all.s[0]);
        if (job == 'S') EXPECT_LT(svd_residual(a, d), 30.0);
      }
    }
  }
}

// A NaN anywhere: the drivers return (gesdd with INFO = -4, the others
// with garbage in their outputs or a positive INFO) rather than hang.
TYPED_TEST(SvdDrivers, NanInputReturns) {
  using T = TypeParam;
  Random rng(74);
  Matrix<T> a = orb::test::random_matrix<T>(30, 20, rng);
  a(7, 3) = T(std::numeric_limits<float>::quiet_NaN());
  EXPECT_EQ(decompose(true, a).info, -4);
  const Svd<T> d = decompose(false, a);
  EXPECT_GE(d.info, 0);
}

// ---- least squares ---------------------------------------------------------------------

// The minimum-norm solution by gelss or gelsd: INFO and RANK.
template <class T>
int least_squares(bool divide, Matrix<T> &a, Matrix<T> &b, float rcond, int &rank,
                  std::vector<float> &s) {
  const int m = a.rows, n = a.cols, nrhs = b.cols, mn = std::min(m, n);
  s.assign(mn, 0.0f);
  int lda = a.ld, ldb = b.ld, lwork = -1, info = 0;
  T query{};
  std::vector<int> iwork(1);
  std::vector<float> rwork(1);
  auto call = [&](T *work) {
    if constexpr (std::is_same_v<T, float>) {
      if (divide)
        sgelsd(&m, &n, &nrhs, a.data(), &lda, b.data(), &ldb, s.data(), &rcond, &rank, work, &lwork,
               iwork.data(), &info);
      else
        sgelss(&m, &n, &nrhs, a.data(), &lda, b.data(), &ldb, s.data(), &rcond, &rank, work, &lwork,
               &info);
    } else {
      if (divide)
        cgelsd(&m, &n, &nrhs, ptr(a.data()), &lda, ptr(b.data()), &ldb, s.data(), &rcond, &rank,
               ptr(work), &lwork, rwork.data(), iwork.data(), &info);
      else
        cgelss(&m, &n, &nrhs, ptr(a.data()), &lda, ptr(b.data()), &ldb, s.data(), &rcond, &rank,
               ptr(work), &lwork, rwork.data(), &info);
    }
  };
  call(&query);
  iwork.assign(std::max(iwork[0], 1) + 8 * mn, 0);
  rwork.assign(static_cast<std::size_t>(std::max(rwork[0], 1.0f)) + 5 * mn, 0.0f);
  lwork = static_cast<int>(std::real(query));
  std::vector<T> work(std::max(lwork, 1));
  call(work.data());
  return info;
}

// A of rank r (the other values 1e-9 of the largest) and RCOND 1e-5: rank
// r, and X = V_r S_r^-1 U_r^H B, the minimum-norm solution, to the accuracy
// the conditioning of the kept part allows.
TYPED_TEST(SvdDrivers, RankDeficientLeastSquares) {
  using T = TypeParam;
  using W = orb::test::wide_t<T>;
  Random rng(75);
  for (const auto &[m, n] : {std::pair{60, 40}, std::pair{40, 60}, std::pair{200, 30},
                             std::pair{30, 200}, std::pair{90, 90}}) {
    const int mn = std::min(m, n), r = mn - 7, nrhs = 3;
    std::vector<double> sigma(mn);
    for (int i = 0; i < mn; ++i) sigma[i] = i < r ? 1.0 / (1 + i % 5) : 1e-9;
    Matrix<T> u, v;
    const Matrix<T> a0 = orb::test::with_singular_values<T>(m, n, sigma, rng, 0, &u, &v);
    const Matrix<T> b0 = orb::test::random_matrix<T>(m, nrhs, rng);
    // The reference in double: V_r S_r^-1 U_r^H B.
    auto uhb = orb::test::multiply('C', u, 'N', b0);
    Matrix<W> y(n, nrhs);
    for (int j = 0; j < nrhs; ++j)
      for (int i = 0; i < r; ++i) y(i, j) = uhb(i, j) / sigma[i];
    auto vw = orb::test::converted<W>(v);
    auto x_ref = orb::test::multiply('N', vw, 'N', y);
    for (const bool divide : {false, true}) {
      SCOPED_TRACE(divide ? "gelsd" : "gelss");
      Matrix<T> a = a0;
      Matrix<T> b(std::max(m, n), nrhs);
      for (int j = 0; j < nrhs; ++j)
        for (int i = 0; i < m; ++i) b(i, j) = b0(i, j);
      int rank = -1;
      std::vector<float> s;
      ASSERT_EQ(least_squares(divide, a, b, 1e-5f, rank, s), 0);
      EXPECT_EQ(rank, r);
      double err = 0, ref = 0;
      for (int j = 0; j < nrhs; ++j)
        for (int i = 0; i < n; ++i) {
          err = std::max(err, std::abs(static_cast<W>(b(i, j)) - x_ref(i, j)));
          ref = std::max(ref, std::abs(x_ref(i, j)));
        }
      EXPECT_LT(err / ref, 2e-4);
    }
  }
}

// A zero matrix: rank 0 and X = 0; a negative RCOND means machine precision.
TYPED_TEST(SvdDrivers, ZeroMatrixAndDefaultThreshold) {
  using T = TypeParam;
  Random rng(76);
  for (const bool divide : {false, true}) {
    Matrix<T> a(20, 10), b = orb::test::random_matrix<T>(20, 2, rng);
    int rank = -1;
    std::vector<float> s;
    ASSERT_EQ(least_squares(divide, a, b, 0.1f, rank, s), 0);
    EXPECT_EQ(rank, 0);
    EXPECT_EQ(orb::test::norm_max(b), 0.0);
    std::vector<double> sigma = orb::test::geometric_values(10, 1e4);
    Matrix<T> full = orb::test::with_singular_values<T>(20, 10, sigma, rng);
    Matrix<T> rhs = orb::test::random_matrix<T>(20, 2, rng);
    ASSERT_EQ(least_squares(divide, full, rhs, -1.0f, rank, s), 0);
    EXPECT_EQ(rank, 10);
  }
}

// ---- the bidiagonal reduction's team panel ---------------------------------------------

// A panel reduced by teams of 2 and 3 against one thread: the same
// reflectors, d, e, X and Y up to rounding, for both the upper (m >= n)
// and the lower (m < n) bidiagonal.
template <class T>
void check_panel_teams(int m, int n, int nb) {
  Random rng(77);
  const Matrix<T> a0 = orb::test::random_matrix<T>(m, n, rng);
  struct Out {
    Matrix<T> a, x, y;
    std::vector<R<T>> d, e;
    std::vector<T> tq, tp;
  };
  auto run = [&](int team) {
    Out o{a0,
          Matrix<T>(m, nb),
          Matrix<T>(n, nb),
          std::vector<R<T>>(nb),
          std::vector<R<T>>(nb),
          std::vector<T>(nb),
          std::vector<T>(nb)};
    lp::labrd_team(m, n, nb, o.a.data(), o.a.ld, o.d.data(), o.e.data(), o.tq.data(), o.tp.data(),
                   o.x.data(), o.x.ld, o.y.data(), o.y.ld, team);
    return o;
  };
  const Out one = run(1);
  const double tol = 50 * orb::test::epsilon<T>() * std::sqrt(static_cast<double>(m + n));
  auto close = [&](const Matrix<T> &p, const Matrix<T> &q) {
    double diff = 0;
    for (int j = 0; j < p.cols; ++j)
      for (int i = 0; i < p.rows; ++i) diff = std::max(diff, double(std::abs(p(i, j) - q(i, j))));
    return diff / std::max(orb::test::norm_max(q), 1.0);
  };
  for (const int team : {2, 3}) {
    SCOPED_TRACE(team);
    const Out t = run(team);
    EXPECT_LT(close(t.a, one.a), tol);
    EXPECT_LT(close(t.x, one.x), tol);
    EXPECT_LT(close(t.y, one.y), tol);
    for (int i = 0; i < nb; ++i) {
      EXPECT_NEAR(t.d[i], one.d[i], tol * std::abs(one.d[0]));
      EXPECT_NEAR(t.e[i], one.e[i], tol * std::abs(one.d[0]));
      EXPECT_LT(std::abs(t.tq[i] - one.tq[i]), tol);
      EXPECT_LT(std::abs(t.tp[i] - one.tp[i]), tol);
    }
  }
}

TEST(BidiagonalPanel, TeamsAgreeWithOneThread) {
  check_panel_teams<float>(300, 200, 32);
  check_panel_teams<float>(150, 310, 24);
  check_panel_teams<c8>(220, 130, 16);
  check_panel_teams<c8>(90, 200, 16);
  check_panel_teams<double>(64, 65, 64);  // the panel is the whole matrix
}

// ---- the checks the entries add ------------------------------------------------------

TEST(SvdEntries, IllegalArguments) {
  float a[4] = {1, 2, 3, 4}, s[2], u[4], vt[4], work[64];
  int two = 2, one = 1, lwork = 64, info = 0, iwork[16];
  // JOBU and JOBVT both 'O'.
  sgesvd("O", "O", &two, &two, a, &two, s, u, &two, vt, &two, work, &lwork, &info, 1, 1);
  EXPECT_EQ(info, -2);
  // gesdd's JOBZ 'O' with m >= n needs LDVT >= n.
  sgesdd("O", &two, &two, a, &two, s, u, &two, vt, &one, work, &lwork, iwork, &info, 1);
  EXPECT_EQ(info, -10);
  // Q from a reduction of an m x k matrix is m x n with n <= m.
  int three = 3;
  sorgbr("Q", &two, &three, &one, a, &two, work, work + 8, &lwork, &info, 1);
  EXPECT_EQ(info, -3);
  // LDB < max(m, n).
  int rank = 0;
  const float rcond = 0;
  sgelss(&one, &two, &one, a, &one, u, &one, s, &rcond, &rank, work, &lwork, &info);
  EXPECT_EQ(info, -7);
  // A short LWORK.
  int small = 1;
  sgebrd(&two, &two, a, &two, s, s, work, work, work, &small, &info);
  EXPECT_EQ(info, -10);
}

}  // namespace
