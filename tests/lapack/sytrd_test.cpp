// The reduction to tridiagonal form where it is ours: the blocked reduction
// (panels from latrd, trailing steps from sytd3) on one thread and on a team
// against the unblocked one, on orders around the block size and both
// triangles, real and Hermitian; the team panel and the team rank-2k step
// against one thread, bit for bit; and the public reduction's residual on
// an order above its crossover.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "common/options.h"
#include "lapack/eigen.h"
#include "lapack/householder.h"
#include "lapack/sytrd.h"
#include "support/matrix.h"
#include "support/residual.h"

namespace {

namespace lp = orb::lapack;
using orb::c8;
using orb::Side;
using orb::Uplo;
using orb::test::Matrix;
using orb::test::Random;

template <class T>
using R = orb::test::real_t<T>;

// The conjugate in the double-precision reference type (real: itself).
template <class W>
W cj(W x) {
  if constexpr (std::is_floating_point_v<W>)
    return x;
  else
    return std::conj(x);
}

template <class T>
struct Reduced {
  Matrix<T> a;
  std::vector<R<T>> d, e;
  std::vector<T> tau;
};

// How a reduction is run: the unblocked one, the blocked one with panels of
// nb on `team` threads (every panel that fits), or the public one.
enum class Path { kUnblocked, kBlocked, kPublic };

template <class T>
Reduced<T> reduce(const Matrix<T> &a0, Uplo uplo, Path path, int nb = 1, int team = 1,
                  bool panel_team = true) {
  const int n = a0.rows;
  Reduced<T> r{a0, std::vector<R<T>>(std::max(n, 1)), std::vector<R<T>>(std::max(n, 1)),
               std::vector<T>(std::max(n, 1))};
  if (path == Path::kUnblocked) {
    lp::sytd2(uplo, n, r.a.data(), r.a.ld, r.d.data(), r.e.data(), r.tau.data());
  } else if (path == Path::kBlocked) {
    std::vector<T> w(static_cast<std::size_t>(std::max(n, 1)) * nb);
    lp::sytrd_blocked(uplo, n, nb, 0, r.a.data(), r.a.ld, r.d.data(), r.e.data(), r.tau.data(),
                      w.data(), std::max(n, 1), team, panel_team);
  } else {
    const std::int64_t lwork = lp::sytrd_worksize<T>(uplo, n);
    std::vector<T> w(lwork);
    lp::sytrd(uplo, n, r.a.data(), r.a.ld, r.d.data(), r.e.data(), r.tau.data(), w.data(),
              static_cast<int>(lwork));
  }
  return r;
}

// Q from the reflectors: H(n-2) ... H(0) (upper) or H(0) ... H(n-2)
// (lower), applied to the identity from the left by larf.
template <class T>
Matrix<T> form_q(const Reduced<T> &r, Uplo uplo) {
  const int n = r.a.rows;
  Matrix<T> q(n, n);
  for (int i = 0; i < n; ++i) q(i, i) = T(1);
  std::vector<T> v(n), work(n);
  for (int k = 0; k < n - 1; ++k) {
    const int i = uplo == Uplo::kUpper ? k : n - 2 - k;
    std::fill(v.begin(), v.end(), T(0));
    if (uplo == Uplo::kUpper) {
      v[i] = T(1);
      for (int p = 0; p < i; ++p) v[p] = r.a(p, i + 1);
    } else {
      v[i + 1] = T(1);
      for (int p = i + 2; p < n; ++p) v[p] = r.a(p, i);
    }
    lp::larf(Side::kLeft, n, n, v.data(), 1, r.tau[i], q.data(), q.ld, work.data());
  }
  return q;
}

// max |A Q - Q T| / (n ||A|| eps) and max |Q^H Q - I| / (n eps), A the full
// matrix and T the tridiagonal of d and e.
template <class T>
void expect_reduces(const Matrix<T> &a, const Reduced<T> &r, Uplo uplo) {
  const int n = a.rows;
  if (n == 0) return;
  const Matrix<T> q = form_q(r, uplo);
  const auto aq = orb::test::multiply('N', a, 'N', q);
  double res = 0;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      auto qt = aq(i, j) * 0.0;
      qt += static_cast<decltype(qt)>(q(i, j)) * double(r.d[j]);
      if (j > 0) qt += static_cast<decltype(qt)>(q(i, j - 1)) * double(r.e[j - 1]);
      if (j < n - 1) qt += static_cast<decltype(qt)>(q(i, j + 1)) * double(r.e[j]);
      res = std::max(res, double(std::abs(aq(i, j) - qt)));
    }
  const double eps = orb::test::epsilon<T>();
  EXPECT_LT(res / (n * std::max(orb::test::norm_max(a), 1e-30) * eps), 5.0);
  const auto qq = orb::test::multiply('C', q, 'N', q);
  double orth = 0;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) orth = std::max(orth, std::abs(qq(i, j) - (i == j ? 1.0 : 0.0)));
  EXPECT_LT(orth / (n * eps), 5.0);
}

template <class T>
Matrix<T> test_matrix(int n, std::uint64_t seed) {
  Random rng(seed);
  return orb::test::symmetric_matrix<T>(n, true, rng);
}

template <class T>
void check_blocked_against_unblocked(int nb) {
  for (const Uplo uplo : {Uplo::kUpper, Uplo::kLower})
    for (const int n : {1, 2, nb - 1, nb, nb + 1, 3 * nb + 5, 300}) {
      SCOPED_TRACE(testing::Message() << (uplo == Uplo::kUpper ? "upper" : "lower") << " n " << n);
      const Matrix<T> a = test_matrix<T>(n, 100 + n);
      const Reduced<T> one = reduce(a, uplo, Path::kUnblocked);
      const Reduced<T> blocked = reduce(a, uplo, Path::kBlocked, nb, 1);
      const Reduced<T> team = reduce(a, uplo, Path::kBlocked, nb, 2);
      const Reduced<T> region = reduce(a, uplo, Path::kBlocked, nb, 2, false);
      expect_reduces(a, one, uplo);
      expect_reduces(a, blocked, uplo);
      // The teams (per panel, or one region for the whole loop) give the
      // one thread's bits.
      EXPECT_TRUE(orb::test::same_bits(team.a, blocked.a));
      EXPECT_TRUE(team.d == blocked.d && team.e == blocked.e && team.tau == blocked.tau);
      EXPECT_TRUE(orb::test::same_bits(region.a, blocked.a));
      EXPECT_TRUE(region.d == blocked.d && region.e == blocked.e && region.tau == blocked.tau);
      // The same reflectors as the unblocked reduction, up to rounding, in
      // the first panel: further on, the tridiagonal's entries are as
      // sensitive as the Lanczos process's (and as the residuals show, both
      // reductions are equally good there).
      const double tol =
          20 * double(std::max(n, 1)) * orb::test::epsilon<T>() * orb::test::norm_max(a);
      const int first = std::min(n, nb + 1);
      for (int k = 0; k < first; ++k) {
        const int i = uplo == Uplo::kUpper ? n - 1 - k : k;
        EXPECT_NEAR(blocked.d[i], one.d[i], tol) << i;
        if (uplo == Uplo::kUpper && i > 0) {
          EXPECT_NEAR(blocked.e[i - 1], one.e[i - 1], tol) << i;
        }
        if (uplo == Uplo::kLower && i + 1 < n) {
          EXPECT_NEAR(blocked.e[i], one.e[i], tol) << i;
        }
      }
    }
}

TEST(TridiagonalReduction, BlockedAgreesWithUnblockedReal) {
  check_blocked_against_unblocked<float>(32);
  check_blocked_against_unblocked<float>(5);
}

TEST(TridiagonalReduction, BlockedAgreesWithUnblockedHermitian) {
  check_blocked_against_unblocked<c8>(32);
  check_blocked_against_unblocked<c8>(5);
}

TEST(TridiagonalReduction, PublicPathAboveTheCrossover) {
  for (const Uplo uplo : {Uplo::kUpper, Uplo::kLower}) {
    const Matrix<float> a = test_matrix<float>(400, 7);
    expect_reduces(a, reduce(a, uplo, Path::kPublic), uplo);
    const Matrix<c8> b = test_matrix<c8>(260, 8);
    expect_reduces(b, reduce(b, uplo, Path::kPublic), uplo);
  }
}

// The panel of an order with the most product blocks, on 1 to 3 threads.
template <class T>
void check_panel_teams(Uplo uplo, int n, int nb) {
  const Matrix<T> a0 = test_matrix<T>(n, 31);
  struct Out {
    Matrix<T> a, w;
    std::vector<R<T>> e;
    std::vector<T> tau;
  };
  auto run = [&](int team) {
    Out o{a0, Matrix<T>(n, nb), std::vector<R<T>>(n), std::vector<T>(n)};
    lp::latrd_team(uplo, n, nb, o.a.data(), o.a.ld, o.e.data(), o.tau.data(), o.w.data(), o.w.ld,
                   team);
    return o;
  };
  const Out one = run(1);
  for (const int team : {2, 3}) {
    SCOPED_TRACE(team);
    const Out t = run(team);
    EXPECT_TRUE(orb::test::same_bits(t.a, one.a));
    EXPECT_TRUE(orb::test::same_bits(t.w, one.w));
    EXPECT_TRUE(t.e == one.e && t.tau == one.tau);
  }
}

TEST(TridiagonalPanel, TeamsGiveOneThreadsBits) {
  check_panel_teams<float>(Uplo::kLower, 700, 32);
  check_panel_teams<float>(Uplo::kUpper, 700, 32);
  check_panel_teams<c8>(Uplo::kLower, 530, 16);
  check_panel_teams<c8>(Uplo::kUpper, 530, 16);
}

// The rank-2k step on 1 to 3 threads: the same bits, against the update
// formed in double precision, the other triangle untouched.
template <class T>
void check_step_teams(Uplo uplo, int n, int k) {
  Random rng(5);
  const Matrix<T> a0 = orb::test::symmetric_matrix<T>(n, true, rng);
  const Matrix<T> v = orb::test::random_matrix<T>(n, k, rng);
  const Matrix<T> w = orb::test::random_matrix<T>(n, k, rng);
  auto run = [&](int team) {
    Matrix<T> a = a0;
    lp::sytd3_team(uplo, n, k, a.data(), a.ld, v.data(), v.ld, w.data(), w.ld, team);
    return a;
  };
  const Matrix<T> one = run(1);
  for (const int team : {2, 3}) EXPECT_TRUE(orb::test::same_bits(run(team), one)) << team;
  const auto vw = orb::test::multiply('N', v, 'C', w);
  using W = std::decay_t<decltype(vw(0, 0))>;
  const bool upper = uplo == Uplo::kUpper;
  double err = 0;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      const bool stored = upper ? i <= j : i >= j;
      if (!stored) {
        EXPECT_EQ(one(i, j), a0(i, j));
        continue;
      }
      W want = static_cast<W>(a0(i, j)) - vw(i, j) - cj(vw(j, i));
      if (i == j) want = std::real(want);
      err = std::max(err, double(std::abs(static_cast<W>(one(i, j)) - want)));
    }
  EXPECT_LT(err / (k * orb::test::epsilon<T>()), 10.0);
}

TEST(TridiagonalStep, TeamsGiveOneThreadsBits) {
  check_step_teams<float>(Uplo::kLower, 300, 32);
  check_step_teams<float>(Uplo::kUpper, 301, 17);
  check_step_teams<c8>(Uplo::kLower, 257, 16);
  check_step_teams<c8>(Uplo::kUpper, 190, 32);
}

}  // namespace
