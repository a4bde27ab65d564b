// The tridiagonal eigensolvers where the reference testers do not look:
// the QL/QR iteration's batches of sweeps and lasr3 team against the
// sweep-by-sweep serial bits, bisection asked for given indices or a
// given interval on spectra whose eigenvalues agree to working precision,
// and inverse iteration's orthogonality inside a tight cluster.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <utility>
#include <vector>

#include "lapack/eigen.h"
#include "lapack/rotations.h"
#include "lapack/tridiag.h"
#include "orb.h"
#include "support/matrix.h"

namespace {

namespace lp = orb::lapack;
using orb::CompQ;
using orb::Range;
using orb::test::Matrix;
using orb::test::Random;
using orb::test::same_bits;

template <class T>
using R = orb::test::real_t<T>;

// ---- the QL/QR iteration's batches and team -------------------------------------------

enum class Kind { kRandom, kGraded, kWilkinson };

template <class R>
void tridiagonal(Kind kind, int n, Random &rng, std::vector<R> &d, std::vector<R> &e) {
  d.assign(n, R(0));
  e.assign(std::max(n - 1, 1), R(0));
  for (int i = 0; i < n; ++i) {
    switch (kind) {
      case Kind::kRandom:
        d[i] = R(rng.uniform());
        if (i + 1 < n) e[i] = R(rng.uniform());
        break;
      case Kind::kGraded:  // both ends small against the middle, so both QL and QR run
        d[i] = R(std::pow(10.0, -6.0 * std::abs(2.0 * i / std::max(n - 1, 1) - 1.0)) *
                 (1 + rng.uniform()));
        if (i + 1 < n) e[i] = R(std::sqrt(std::abs(double(d[i]))) * rng.uniform());
        break;
      case Kind::kWilkinson:
        d[i] = R(std::abs((n - 1) / 2.0 - i));
        if (i + 1 < n) e[i] = R(1);
        break;
    }
  }
}

template <class T>
struct QlRun {
  int info;
  std::vector<R<T>> d;
  Matrix<T> z;
};

template <class T>
QlRun<T> run_steqr(CompQ compz, Kind kind, int n, int batch, int threads) {
  Random rng(7 + n);
  QlRun<T> r;
  std::vector<R<T>> e;
  tridiagonal(kind, n, rng, r.d, e);
  r.z = compz == CompQ::kUpdate ? orb::test::random_matrix<T>(n, n, rng, n + 3)
                                : Matrix<T>(n, n, n + 3);
  std::vector<R<T>> work(std::max(1, 2 * n - 2));
  r.info = lp::steqr_batched<T>(compz, n, r.d.data(), e.data(), r.z.data(), r.z.ld, work.data(),
                                batch, threads);
  return r;
}

template <class T>
void steqr_batches_and_teams_match() {
  for (CompQ compz : {CompQ::kInitial, CompQ::kUpdate})
    for (Kind kind : {Kind::kRandom, Kind::kGraded, Kind::kWilkinson})
      for (int n : {1, 2, 5, 40, 100}) {
        const QlRun<T> one = run_steqr<T>(compz, kind, n, 1, 1);
        ASSERT_EQ(one.info, 0);
        for (int i = 0; i + 1 < n; ++i) ASSERT_LE(one.d[i], one.d[i + 1]);
        for (auto [batch, threads] : {std::pair{3, 1}, {32, 1}, {1, 2}, {32, 2}}) {
          const QlRun<T> b = run_steqr<T>(compz, kind, n, batch, threads);
          if (n == 100) {
            EXPECT_EQ(lp::lasr3_last_team(), threads);
          }
          EXPECT_EQ(b.info, 0);
          EXPECT_EQ(one.d, b.d);
          EXPECT_TRUE(same_bits(one.z, b.z))
              << "n " << n << " batch " << batch << " threads " << threads;
        }
      }
}

TEST(Steqr, BatchesAndTeamsGiveTheSweepBySweepBitsReal) {
  steqr_batches_and_teams_match<float>();
  steqr_batches_and_teams_match<double>();
}

TEST(Steqr, BatchesAndTeamsGiveTheSweepBySweepBitsComplex) {
  steqr_batches_and_teams_match<std::complex<float>>();
}

// The values alone are those of the iteration with vectors, and the
// vectors are orthonormal eigenvectors.
TEST(Steqr, VectorsDiagonalizeTheMatrix) {
  const int n = 60;
  Random rng(3);
  std::vector<double> d0, e0;
  tridiagonal(Kind::kWilkinson, n, rng, d0, e0);
  std::vector<double> d = d0, e = e0, work(2 * n);
  Matrix<double> z(n, n);
  ASSERT_EQ(lp::steqr<double>(CompQ::kInitial, n, d.data(), e.data(), z.data(), z.ld, work.data()),
            0);
  const double eps = std::numeric_limits<double>::epsilon();
  double worst_res = 0, worst_orth = 0;
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < n; ++i) {
      double tz = d0[i] * z(i, j) - d[j] * z(i, j);
      if (i > 0) tz += e0[i - 1] * z(i - 1, j);
      if (i + 1 < n) tz += e0[i] * z(i + 1, j);
      worst_res = std::max(worst_res, std::abs(tz));
    }
    for (int k = 0; k < n; ++k) {
      double dot = 0;
      for (int i = 0; i < n; ++i) dot += z(i, j) * z(i, k);
      worst_orth = std::max(worst_orth, std::abs(dot - (j == k ? 1.0 : 0.0)));
    }
  }
  EXPECT_LT(worst_res, 10 * n * eps * 30);
  EXPECT_LT(worst_orth, 10 * n * eps);
}

// A NaN ends both iterations at their sweep limit with INFO > 0; it does
// not hang them.
TEST(Steqr, NanStopsAtTheIterationLimit) {
  const int n = 12;
  for (int pos : {0, 5, 11}) {
    std::vector<float> d(n, 1.0f), e(n - 1, 0.5f), work(2 * n);
    d[pos] = std::numeric_limits<float>::quiet_NaN();
    std::vector<float> d2 = d, e2 = e;
    Matrix<float> z(n, n);
    EXPECT_GT(lp::steqr<float>(CompQ::kInitial, n, d.data(), e.data(), z.data(), z.ld, work.data()),
              0);
    EXPECT_GT(lp::sterf<float>(n, d2.data(), e2.data()), 0);
  }
}

// ---- bisection ------------------------------------------------------------------------

// Copies of Wilkinson's W21+ glued by off-diagonals `glue`: every
// eigenvalue of W21+ appears `copies` times, equal to working precision
// for a small glue.
std::vector<float> glued_wilkinson(int copies, float glue, std::vector<float> &e) {
  std::vector<float> d;
  e.clear();
  for (int c = 0; c < copies; ++c)
    for (int i = 0; i < 21; ++i) {
      d.push_back(float(std::abs(10 - i)));
      if (c + 1 < copies || i < 20) e.push_back(i < 20 ? 1.0f : glue);
    }
  return d;
}

struct Bisection {
  int info = 0, m = 0, nsplit = 0;
  std::vector<float> w;
  std::vector<int> iblock, isplit;
};

Bisection bisect(Range range, bool by_block, const std::vector<float> &d,
                 const std::vector<float> &e, float vl, float vu, int il, int iu) {
  const int n = static_cast<int>(d.size());
  Bisection b;
  b.w.assign(n, 0);
  b.iblock.assign(n, 0);
  b.isplit.assign(n, 0);
  std::vector<float> work(4 * n);
  std::vector<int> iwork(3 * n);
  b.info = lp::stebz<float>(range, by_block, n, vl, vu, il, iu, 0.0f, d.data(), e.data(), &b.m,
                            &b.nsplit, b.w.data(), b.iblock.data(), b.isplit.data(), work.data(),
                            iwork.data());
  b.w.resize(b.m);
  b.iblock.resize(b.m);
  return b;
}

// Indices il..iu give exactly iu - il + 1 values, those of the whole
// spectrum at those places (to the tolerance), however the equal values
// fall at the ends.
void indices_are_exact(const std::vector<float> &d, const std::vector<float> &e, float tol) {
  const int n = static_cast<int>(d.size());
  const Bisection all = bisect(Range::kAll, false, d, e, 0, 0, 0, 0);
  ASSERT_EQ(all.info, 0);
  ASSERT_EQ(all.m, n);
  for (int il = 1; il <= n; il += 3)
    for (int iu : {il, il + 1, il + 4, n}) {
      if (iu > n) continue;
      const Bisection some = bisect(Range::kIndices, false, d, e, 0, 0, il, iu);
      EXPECT_EQ(some.info, 0) << il << ".." << iu;
      ASSERT_EQ(some.m, iu - il + 1) << il << ".." << iu;
      for (int k = 0; k < some.m; ++k) EXPECT_NEAR(some.w[k], all.w[il - 1 + k], tol);
    }
  // An interval between two distinct values holds exactly those counted
  // by the whole spectrum.
  for (int k = 1; k < n; ++k) {
    if (all.w[k] - all.w[k - 1] < 100 * tol) continue;
    const float vl = all.w[0] - 1, vu = 0.5f * (all.w[k - 1] + all.w[k]);
    const Bisection below = bisect(Range::kValues, true, d, e, vl, vu, 0, 0);
    EXPECT_EQ(below.info, 0);
    EXPECT_EQ(below.m, k) << "(" << vl << ", " << vu << "]";
  }
}

TEST(Stebz, IndicesAndIntervalsOnGluedWilkinson) {
  for (float glue : {1e-3f, 1e-7f, 0.0f}) {
    std::vector<float> e;
    const std::vector<float> d = glued_wilkinson(4, glue, e);
    indices_are_exact(d, e, 1e-5f * 11);
  }
}

// 1, 1 + eps, 1 + 2 eps, ...: as many values as asked for, each within
// the relative tolerance (2 ulps) of the requested one; values closer than
// that are not told apart.
TEST(Stebz, IndicesOnValuesOneUlpApart) {
  const int n = 24;
  const float eps = std::numeric_limits<float>::epsilon();
  std::vector<float> d(n), e(n - 1, 0.0f);
  for (int i = 0; i < n; ++i) d[i] = 1.0f + float(n - 1 - i) * eps;  // descending on the diagonal
  const Bisection all = bisect(Range::kAll, false, d, e, 0, 0, 0, 0);
  ASSERT_EQ(all.m, n);
  for (int k = 0; k < n; ++k) EXPECT_EQ(all.w[k], 1.0f + float(k) * eps);
  for (int il = 1; il <= n; il += 5)
    for (int iu = il; iu <= n; iu += 4) {
      const Bisection some = bisect(Range::kIndices, false, d, e, 0, 0, il, iu);
      EXPECT_EQ(some.info, 0);
      ASSERT_EQ(some.m, iu - il + 1) << il << ".." << iu;
      for (int k = 0; k < some.m; ++k)
        EXPECT_NEAR(some.w[k], 1.0f + float(il - 1 + k) * eps, 2.5f * eps) << il << ".." << iu;
    }
}

// ---- inverse iteration ------------------------------------------------------------------

// The vectors of a tight cluster (glued Wilkinson, pairs equal to working
// precision) are orthonormal to O(n eps), and the complex form gives the
// real vectors' bits.
TEST(Stein, ClusterVectorsAreOrthogonal) {
  std::vector<float> e;
  const std::vector<float> d = glued_wilkinson(3, 1e-4f, e);
  const int n = static_cast<int>(d.size());
  const Bisection all = bisect(Range::kAll, true, d, e, 0, 0, 0, 0);
  ASSERT_EQ(all.info, 0);
  const int m = all.m;
  std::vector<int> isplit(all.isplit);
  Matrix<float> z(n, m);
  Matrix<std::complex<float>> zc(n, m);
  std::vector<float> work(5 * n);
  std::vector<int> iwork(n), ifail(m);
  ASSERT_EQ(
      lp::stein<float>(n, d.data(), e.data(), m, all.w.data(), all.iblock.data(), isplit.data(),
                       z.data(), z.ld, work.data(), iwork.data(), ifail.data()),
      0);
  ASSERT_EQ(lp::stein<std::complex<float>>(n, d.data(), e.data(), m, all.w.data(),
                                           all.iblock.data(), isplit.data(), zc.data(), zc.ld,
                                           work.data(), iwork.data(), ifail.data()),
            0);
  const float eps = std::numeric_limits<float>::epsilon();
  float worst = 0;
  for (int j = 0; j < m; ++j)
    for (int k = 0; k <= j; ++k) {
      double dot = 0;
      for (int i = 0; i < n; ++i) dot += double(z(i, j)) * z(i, k);
      worst = std::max(worst, float(std::abs(dot - (j == k ? 1.0 : 0.0))));
    }
  EXPECT_LT(worst, 10 * n * eps);
  for (int j = 0; j < m; ++j)
    for (int i = 0; i < n; ++i) {
      EXPECT_EQ(zc(i, j).real(), z(i, j));
      EXPECT_EQ(zc(i, j).imag(), 0.0f);
    }
}

// ---- the entries' checks where they read arrays or real arguments ---------------------

TEST(TridiagEntries, BisectionAndInverseIterationChecks) {
  float d[4] = {1, 2, 3, 4}, e[3] = {1, 1, 1}, w[4] = {1, 2, 3, 4}, work[20], z[16];
  int iwork[12], iblock[4] = {1, 1, 1, 1}, isplit[4] = {4, 4, 4, 4}, ifail[4], m, nsplit, info;
  const int n = 4;
  auto stebz = [&](char range, float vl, float vu, int il, int iu) {
    const float abstol = 0;
    sstebz(&range, "E", &n, &vl, &vu, &il, &iu, &abstol, d, e, &m, &nsplit, w, iblock, isplit, work,
           iwork, &info, 1, 1);
    return info;
  };
  EXPECT_EQ(stebz('V', 2, 2, 0, 0), -5);  // VL < VU
  EXPECT_EQ(stebz('V', 1, 2, 0, 0), 0);   // IL, IU not looked at
  EXPECT_EQ(stebz('I', 2, 1, 0, 1), -6);  // VL, VU not looked at
  EXPECT_EQ(stebz('I', 0, 0, 5, 5), -6);
  EXPECT_EQ(stebz('I', 0, 0, 3, 2), -7);
  EXPECT_EQ(stebz('I', 0, 0, 2, 5), -7);
  EXPECT_EQ(stebz('I', 0, 0, 2, 3), 0);
  EXPECT_EQ(m, 2);

  // The first pair out of order decides between IBLOCK (-6) and W (-5).
  auto stein = [&](std::vector<int> blocks, std::vector<float> values) {
    const int mm = static_cast<int>(blocks.size()), ldz = 4;
    sstein(&n, d, e, &mm, values.data(), blocks.data(), isplit, z, &ldz, work, iwork, ifail, &info);
    return info;
  };
  EXPECT_EQ(stein({1, 1, 1}, {1, 0, 2}), -5);
  EXPECT_EQ(stein({2, 1, 1}, {1, 2, 0}), -6);
  EXPECT_EQ(stein({1, 1, 0}, {1, 0, 2}), -5);
  EXPECT_EQ(stein({1, 2, 1}, {0, 1, 2}), -6);
  EXPECT_EQ(stein({1, 1, 1, 1, 1}, {0, 1, 2, 3, 4}), -4);  // M > N
}

}  // namespace
