// The bidiagonal divide and conquer: singular values and vectors against
// the matrix (residual, orthogonality, order) around and far beyond the leaf
// size, on graded, clustered, repeated and singular bidiagonals; the values
// alone against the values with vectors; and the least-squares solve
// against the minimum-norm solution from the full decomposition.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <vector>

#include "lapack/divide.h"
#include "lapack/lasd.h"
#include "lapack/oracle.h"
#include "support/matrix.h"

namespace {

using orb::c16;
using orb::c8;
using orb::CompQ;
using orb::Uplo;
using orb::test::Random;

template <class T>
using R = orb::real_t<T>;

constexpr int kSizes[] = {1, 2, 24, 25, 26, 60, 200};

enum class Kind { kRandom, kGraded, kClustered, kRepeated, kZeroDiagonal, kSplit, kHuge, kTiny };
constexpr Kind kKinds[] = {Kind::kRandom,       Kind::kGraded, Kind::kClustered, Kind::kRepeated,
                           Kind::kZeroDiagonal, Kind::kSplit,  Kind::kHuge,      Kind::kTiny};

// A bidiagonal of the given kind: d then e (n - 1 elements).
template <class Rl>
void make_bidiagonal(Kind kind, int n, Random &rng, std::vector<Rl> &d, std::vector<Rl> &e) {
  d.assign(n, 0);
  e.assign(std::max(n - 1, 0), 0);
  // float's range allows 1e-30 .. 1e30; double's goes further.
  const double decades = sizeof(Rl) == 4 ? 30 : 150;
  for (int i = 0; i < n; ++i) {
    const double t = n > 1 ? static_cast<double>(i) / (n - 1) : 0.5;
    switch (kind) {
      case Kind::kRandom:
        d[i] = static_cast<Rl>(rng.uniform());
        if (i + 1 < n) e[i] = static_cast<Rl>(rng.uniform());
        break;
      case Kind::kGraded:
        d[i] = static_cast<Rl>(std::pow(10.0, decades * (1 - 2 * t)) * (1 + rng.uniform() / 4));
        if (i + 1 < n) e[i] = static_cast<Rl>(d[i] * rng.uniform() / 2);
        break;
      case Kind::kClustered:
        d[i] = static_cast<Rl>(1 + 1e-6 * rng.uniform());
        if (i + 1 < n) e[i] = static_cast<Rl>(1e-7 * rng.uniform());
        break;
      case Kind::kRepeated:  // blocks of equal values split by zeros
        d[i] = static_cast<Rl>(i % 3 == 0 ? 2 : -2);
        if (i + 1 < n) e[i] = 0;
        break;
      case Kind::kZeroDiagonal:
        d[i] = i % 7 == 3 ? Rl(0) : static_cast<Rl>(rng.uniform());
        if (i + 1 < n) e[i] = static_cast<Rl>(rng.uniform());
        break;
      case Kind::kSplit:  // pieces of 5, 30, ... rows and the last row alone
        d[i] = static_cast<Rl>(rng.uniform());
        if (i + 1 < n)
          e[i] = (i == 4 || i == 35 || i == n - 2) ? Rl(0) : static_cast<Rl>(rng.uniform());
        break;
      case Kind::kHuge:  // near overflow: the scaling must keep it finite
      case Kind::kTiny:  // small, a few decades above underflow (closer, the
                         // QR iteration's leaves lose accuracy, as published)
      {
        const double decades =
            kind == Kind::kHuge ? (sizeof(Rl) == 4 ? 37 : 305) : (sizeof(Rl) == 4 ? -33 : -300);
        const double scale = std::pow(10.0, decades);
        d[i] = static_cast<Rl>(scale * rng.uniform());
        if (i + 1 < n) e[i] = static_cast<Rl>(scale * rng.uniform());
        break;
      }
    }
  }
}

// max |B - U S VT| / (n max|B| eps), max |I - U^T U| / (n eps) and the same
// for VT, the products in double.
template <class Rl>
struct Check {
  double residual = 0, orth_u = 0, orth_vt = 0;
};
template <class Rl>
Check<Rl> check_svd(Uplo uplo, int n, const std::vector<Rl> &d0, const std::vector<Rl> &e0,
                    const std::vector<Rl> &s, const std::vector<Rl> &u, const std::vector<Rl> &vt) {
  const double eps = std::numeric_limits<Rl>::epsilon();
  Check<Rl> c;
  double bnorm = 0;
  for (int i = 0; i < n; ++i) bnorm = std::max(bnorm, std::abs(double(d0[i])));
  for (int i = 0; i + 1 < n; ++i) bnorm = std::max(bnorm, std::abs(double(e0[i])));
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      double b = i == j ? d0[i] : 0;
      if (uplo == Uplo::kUpper && j == i + 1) b = e0[i];
      if (uplo == Uplo::kLower && i == j + 1) b = e0[j];
      double usv = 0, uu = 0, vv = 0;
      for (int k = 0; k < n; ++k) {
        usv += double(u[i + k * n]) * s[k] * vt[k + j * n];
        uu += double(u[k + i * n]) * u[k + j * n];
        vv += double(vt[i + k * n]) * vt[j + k * n];
      }
      const double id = i == j ? 1 : 0;
      c.residual = std::max(c.residual, std::abs(b - usv));
      c.orth_u = std::max(c.orth_u, std::abs(id - uu));
      c.orth_vt = std::max(c.orth_vt, std::abs(id - vv));
    }
  c.residual = bnorm > 0 ? c.residual / (n * bnorm * eps) : c.residual;
  c.orth_u /= n * eps;
  c.orth_vt /= n * eps;
  return c;
}

template <class Rl>
class BdsdcTest : public ::testing::Test {};
using RealTypes = ::testing::Types<float, double>;
TYPED_TEST_SUITE(BdsdcTest, RealTypes);

TYPED_TEST(BdsdcTest, VectorsReproduceTheMatrixAndValuesAloneAgree) {
  using Rl = TypeParam;
  const double eps = std::numeric_limits<Rl>::epsilon();
  Random rng(7);
  for (const int n : kSizes)
    for (const Kind kind : kKinds)
      for (const Uplo uplo : {Uplo::kUpper, Uplo::kLower}) {
        SCOPED_TRACE(testing::Message() << "n " << n << " kind " << static_cast<int>(kind)
                                        << (uplo == Uplo::kUpper ? " upper" : " lower"));
        std::vector<Rl> d0, e0;
        make_bidiagonal(kind, n, rng, d0, e0);
        std::vector<Rl> d = d0, e = e0, u(n * n, Rl(-7)), vt(n * n, Rl(-7));
        e.push_back(0);
        std::vector<Rl> work(3 * n * n + 4 * n);
        std::vector<int> iwork(8 * n);
        ASSERT_EQ(orb::lapack::bdsdc(uplo, CompQ::kInitial, n, d.data(), e.data(), u.data(),
                                     std::max(n, 1), vt.data(), std::max(n, 1), work.data(),
                                     iwork.data()),
                  0);
        for (int i = 0; i < n; ++i) {
          EXPECT_GE(d[i], 0);
          if (i > 0) {
            EXPECT_LE(d[i], d[i - 1]);
          }
        }
        const Check<Rl> c = check_svd(uplo, n, d0, e0, d, u, vt);
        EXPECT_LT(c.residual, 10);
        EXPECT_LT(c.orth_u, 10);
        EXPECT_LT(c.orth_vt, 10);
        // The values alone (QR iteration throughout) agree to the accuracy
        // of the vectors' run: relative for values of order the largest,
        // absolute (eps times the largest) below.
        std::vector<Rl> dn = d0, en = e0;
        en.push_back(0);
        ASSERT_EQ(orb::lapack::bdsdc(uplo, CompQ::kNone, n, dn.data(), en.data(), u.data(), 1,
                                     vt.data(), 1, work.data(), iwork.data()),
                  0);
        for (int i = 0; i < n; ++i)
          EXPECT_LE(std::abs(double(dn[i]) - d[i]), 4 * n * eps * (n > 0 ? double(d[0]) : 0))
              << "value " << i;
        if (kind == Kind::kRandom || kind == Kind::kRepeated || kind == Kind::kClustered) {
          for (int i = 0; i < n && d[i] > d[0] / 4; ++i)
            EXPECT_LE(std::abs(double(dn[i]) - d[i]), 64 * eps * d[i]) << "value " << i;
        }
      }
}

TYPED_TEST(BdsdcTest, NanStopsWithoutHanging) {
  using Rl = TypeParam;
  for (const int n : {10, 60}) {
    Random rng(3);
    std::vector<Rl> d, e;
    make_bidiagonal(Kind::kRandom, n, rng, d, e);
    e.push_back(0);
    d[n / 2] = std::numeric_limits<Rl>::quiet_NaN();
    std::vector<Rl> u(n * n), vt(n * n), work(3 * n * n + 4 * n);
    std::vector<int> iwork(8 * n);
    orb::lapack::bdsdc(Uplo::kUpper, CompQ::kInitial, n, d.data(), e.data(), u.data(), n, vt.data(),
                       n, work.data(), iwork.data());
    SUCCEED();
  }
}

// ---- the least-squares solve -----------------------------------------------------------

template <class T>
class LalsdTest : public ::testing::Test {};
using AllTypes = ::testing::Types<float, double, c8, c16>;
TYPED_TEST_SUITE(LalsdTest, AllTypes);

// The minimum-norm solution V S^+ U^T b from the full decomposition in
// double, values at or below rcond times the largest dropped.
template <class T>
std::vector<c16> reference_solution(Uplo uplo, int n, int nrhs, const std::vector<R<T>> &d0,
                                    const std::vector<R<T>> &e0, const std::vector<T> &b,
                                    double rcond, int &rank) {
  std::vector<double> d(d0.begin(), d0.end()), e(e0.begin(), e0.end()), u(n * n), vt(n * n),
      work(3 * n * n + 4 * n);
  e.push_back(0);
  std::vector<int> iwork(8 * n);
  orb::lapack::bdsdc(uplo, CompQ::kInitial, n, d.data(), e.data(), u.data(), n, vt.data(), n,
                     work.data(), iwork.data());
  std::vector<c16> x(n * nrhs);
  rank = 0;
  for (int k = 0; k < n; ++k) {
    if (d[k] <= rcond * d[0]) continue;
    ++rank;
    for (int j = 0; j < nrhs; ++j) {
      c16 c = 0;
      for (int i = 0; i < n; ++i) c += u[i + k * n] * c16(b[i + j * n]);
      for (int i = 0; i < n; ++i) x[i + j * n] += vt[k + i * n] * c / d[k];
    }
  }
  return x;
}

TYPED_TEST(LalsdTest, MinimumNormSolutionAgreesWithTheDecomposition) {
  using T = TypeParam;
  using Rl = R<T>;
  const double eps = std::numeric_limits<Rl>::epsilon();
  const int smlsiz = orb::lapack::oracle(orb::lapack::kSubproblem, "SGELSD");
  Random rng(11);
  for (const int n : {1, 2, 10, 25, 26, 60, 130})
    for (const int nrhs : {1, 3})
      for (const Uplo uplo : {Uplo::kUpper, Uplo::kLower})
        for (const int variant : {0, 1, 2}) {
          const bool deficient = variant == 1, split = variant == 2;
          SCOPED_TRACE(testing::Message()
                       << "n " << n << " nrhs " << nrhs << " variant " << variant);
          // Well-conditioned, diagonally dominant; rank deficiency from
          // zeros on the diagonal, each giving one zero singular value;
          // zeros off the diagonal split the problem into a third, the
          // rest but the last row, and the last row alone.
          std::vector<Rl> d0(n), e0(std::max(n - 1, 0));
          for (int i = 0; i < n; ++i)
            d0[i] = static_cast<Rl>((1.5 + rng.uniform() / 2) * (i % 2 ? -1 : 1));
          for (int i = 0; i + 1 < n; ++i) e0[i] = static_cast<Rl>(rng.uniform() / 2);
          if (deficient)
            for (int i = 1; i < n; i += 9) d0[i] = 0;
          if (split && n > 2) e0[n / 3] = e0[n - 2] = 0;
          std::vector<T> b(n * nrhs);
          for (T &v : b) v = rng.value<T>();
          const double rcond = deficient ? 1e-3 : -1;
          int rank_ref;
          const std::vector<c16> x_ref =
              reference_solution<T>(uplo, n, nrhs, d0, e0, b, rcond < 0 ? eps : rcond, rank_ref);
          const int nlvl =
              std::max(0, static_cast<int>(std::log(double(n) / (smlsiz + 1)) / std::log(2.0)) + 1);
          const int rsize =
              9 * n + 2 * n * smlsiz + 8 * n * nlvl + n * nrhs + (smlsiz + 1) * (smlsiz + 1);
          const int csize = 9 * n + 2 * n * smlsiz + 8 * n * nlvl + 3 * smlsiz * nrhs +
                            std::max((smlsiz + 1) * (smlsiz + 1), n * (1 + nrhs) + 2 * nrhs);
          std::vector<T> work(orb::is_complex_v<T> ? n * nrhs : rsize);
          std::vector<Rl> rwork(orb::is_complex_v<T> ? csize : 1);
          std::vector<int> iwork(3 * n * nlvl + 11 * n);
          std::vector<Rl> d = d0, e = e0;
          e.push_back(0);
          std::vector<T> x = b;
          int rank = -1;
          ASSERT_EQ(orb::lapack::lalsd<T>(uplo, smlsiz, n, nrhs, d.data(), e.data(), x.data(),
                                          std::max(n, 1), static_cast<Rl>(rcond), rank, work.data(),
                                          rwork.data(), iwork.data()),
                    0);
          EXPECT_EQ(rank, rank_ref);
          double xnorm = 0, err = 0;
          for (int i = 0; i < n * nrhs; ++i) {
            xnorm = std::max(xnorm, std::abs(x_ref[i]));
            err = std::max(err, std::abs(c16(x[i]) - x_ref[i]));
          }
          EXPECT_LE(err, 50 * std::max(n, 1) * eps * xnorm);
          for (int i = 1; i < n; ++i) EXPECT_LE(d[i], d[i - 1]);
        }
}

// ---- the secular equation ---------------------------------------------------------------

// f(s) = 1 + rho sum z_j^2 / ((d_j - s)(d_j + s)) in long double.
long double secular(const std::vector<double> &d, const std::vector<double> &z, double rho,
                    long double s) {
  long double f = 1;
  for (std::size_t j = 0; j < d.size(); ++j)
    f += rho * static_cast<long double>(z[j]) * z[j] / ((d[j] - s) * (d[j] + s));
  return f;
}

// Root i (1-based) by bisection in long double: f rises from -inf just
// above d_i to +inf just below d_{i+1} (or to 1 beyond d_n).
long double secular_root(const std::vector<double> &d, const std::vector<double> &z, double rho,
                         int i) {
  const int n = static_cast<int>(d.size());
  long double lo = d[i - 1];
  long double hi =
      i < n ? static_cast<long double>(d[i]) : std::sqrt((long double)d[n - 1] * d[n - 1] + rho);
  for (int it = 0; it < 200 && lo < hi; ++it) {
    const long double mid = (lo + hi) / 2;
    if (mid == lo || mid == hi) break;
    (secular(d, z, rho, mid) < 0 ? lo : hi) = mid;
  }
  return (lo + hi) / 2;
}

TEST(SecularEquation, RootsAndDifferencesAgreeWithBisection) {
  Random rng(5);
  for (const int n : {1, 2, 3, 10, 40})
    for (const int shape : {0, 1, 2}) {
      SCOPED_TRACE(testing::Message() << "n " << n << " shape " << shape);
      // Poles from 0 up: spread, in tight pairs, or with small weights
      // (still above what the merge deflates).
      std::vector<double> d(n), z(n);
      double t = 0;
      for (int j = 0; j < n; ++j) {
        d[j] = t;
        t += shape == 1 && j % 2 == 0 ? 1e-9 * (1 + rng.uniform()) : 0.5 + rng.uniform() / 4;
        z[j] = shape == 2 && j % 3 == 1 ? 1e-5 * rng.uniform() : rng.uniform();
      }
      double zn = 0;
      for (double v : z) zn += v * v;
      for (double &v : z) v /= std::sqrt(zn);
      const double rho = 0.7;
      std::vector<double> delta(n), work(n);
      for (int i = 1; i <= n; ++i) {
        double sigma = 0;
        ASSERT_EQ(
            orb::lapack::dc::lasd4(n, i, d.data(), z.data(), delta.data(), rho, sigma, work.data()),
            0)
            << "root " << i;
        const long double ref = secular_root(d, z, rho, i);
        EXPECT_LE(std::abs(sigma - ref), 8 * 2.2e-16 * ref) << "root " << i;
        if (n > 2)
          for (int j = 0; j < n; ++j) {
            // delta_j = d_j - sigma and work_j = d_j + sigma to the root's
            // accuracy.
            const long double gap = d[j] - ref;
            EXPECT_LE(std::abs(delta[j] - gap), 8 * 2.2e-16 * (std::abs(gap) + ref))
                << "root " << i << " pole " << j;
            EXPECT_LE(std::abs(work[j] - (d[j] + ref)), 8 * 2.2e-16 * (d[j] + ref));
          }
      }
    }
}

// ---- workspace and storage --------------------------------------------------------------

// The documented workspace exactly, followed by guards that must survive;
// leading dimensions beyond the order, whose padding must survive too.
template <class Rl>
class WorkspaceTest : public ::testing::Test {};
TYPED_TEST_SUITE(WorkspaceTest, RealTypes);

TYPED_TEST(WorkspaceTest, BdsdcStaysInsideItsWorkspaceAndMatrices) {
  using Rl = TypeParam;
  constexpr int kGuard = 64;
  const Rl guard = Rl(-4321.5);
  Random rng(9);
  for (const int n : {26, 60, 200})
    for (const Uplo uplo : {Uplo::kUpper, Uplo::kLower})
      for (const CompQ compq : {CompQ::kNone, CompQ::kInitial}) {
        std::vector<Rl> d, e;
        make_bidiagonal(Kind::kSplit, n, rng, d, e);
        e.push_back(0);
        const bool vec = compq == CompQ::kInitial;
        const int ld = n + 3, wsize = vec ? 3 * n * n + 4 * n : 4 * n;
        std::vector<Rl> work(wsize + kGuard, guard), u(ld * n, guard), vt(ld * n, guard);
        std::vector<int> iwork(8 * n + kGuard, -77);
        ASSERT_EQ(orb::lapack::bdsdc(uplo, compq, n, d.data(), e.data(), u.data(), ld, vt.data(),
                                     ld, work.data(), iwork.data()),
                  0);
        for (int i = 0; i < kGuard; ++i) {
          EXPECT_EQ(work[wsize + i], guard);
          EXPECT_EQ(iwork[8 * n + i], -77);
        }
        for (int j = 0; j < n; ++j)
          for (int i = n; i < ld; ++i) {
            EXPECT_EQ(u[i + j * ld], guard);
            EXPECT_EQ(vt[i + j * ld], guard);
          }
      }
}

template <class T>
class LalsdWorkspaceTest : public ::testing::Test {};
TYPED_TEST_SUITE(LalsdWorkspaceTest, AllTypes);

TYPED_TEST(LalsdWorkspaceTest, StaysInsideItsWorkspaceAndRightHandSides) {
  using T = TypeParam;
  using Rl = R<T>;
  constexpr int kGuard = 64;
  const T guard = T(Rl(-4321.5));
  const int smlsiz = 25;
  Random rng(13);
  for (const int n : {20, 26, 60, 130})
    for (const int nrhs : {1, 4}) {
      std::vector<Rl> d(n), e(n);
      for (int i = 0; i < n; ++i) d[i] = static_cast<Rl>(rng.uniform());
      for (int i = 0; i + 1 < n; ++i) e[i] = i == 40 ? Rl(0) : static_cast<Rl>(rng.uniform());
      const int nlvl =
          std::max(0, static_cast<int>(std::log(double(n) / (smlsiz + 1)) / std::log(2.0)) + 1);
      const int rsize =
          9 * n + 2 * n * smlsiz + 8 * n * nlvl + n * nrhs + (smlsiz + 1) * (smlsiz + 1);
      const int csize = 9 * n + 2 * n * smlsiz + 8 * n * nlvl + 3 * smlsiz * nrhs +
                        std::max((smlsiz + 1) * (smlsiz + 1), n * (1 + nrhs) + 2 * nrhs);
      const int wsize = orb::is_complex_v<T> ? n * nrhs : rsize;
      const int rwsize = orb::is_complex_v<T> ? csize : 0;
      const int isize = 3 * n * nlvl + 11 * n;
      std::vector<T> work(wsize + kGuard, guard);
      std::vector<Rl> rwork(rwsize + kGuard, Rl(-4321.5));
      std::vector<int> iwork(isize + kGuard, -77);
      const int ldb = n + 2;
      std::vector<T> b(ldb * nrhs, guard);
      for (int j = 0; j < nrhs; ++j)
        for (int i = 0; i < n; ++i) b[i + j * ldb] = rng.value<T>();
      int rank = 0;
      ASSERT_EQ(orb::lapack::lalsd<T>(Uplo::kUpper, smlsiz, n, nrhs, d.data(), e.data(), b.data(),
                                      ldb, Rl(-1), rank, work.data(), rwork.data(), iwork.data()),
                0);
      for (int i = 0; i < kGuard; ++i) {
        EXPECT_EQ(work[wsize + i], guard);
        EXPECT_EQ(rwork[rwsize + i], Rl(-4321.5));
        EXPECT_EQ(iwork[isize + i], -77);
      }
      for (int j = 0; j < nrhs; ++j)
        for (int i = n; i < ldb; ++i) EXPECT_EQ(b[i + j * ldb], guard);
    }
}

TEST(DivideOracle, LeafSizeIsTwentyFive) {
  for (const char *name : {"SBDSDC", "DBDSDC", "SGELSD", "CGELSD", "ZGELSD"})
    EXPECT_EQ(orb::lapack::oracle(orb::lapack::kSubproblem, name, " ", 0, 0, 0, 0, 6, 1), 25)
        << name;
}

}  // namespace
