// The Hessenberg reduction at orders the reference testers do not reach:
// the blocked gehrd (panels from order 128 of the active block), with the
// active block strictly inside the matrix, against the one-reflector code
// a minimal workspace selects; and orghr's blocked factor at those orders.
#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <random>
#include <type_traits>
#include <vector>

#include "lapack/nonsym.h"
#include "orb.h"

namespace {

namespace lp = orb::lapack;
using c8 = std::complex<float>;
using zd = std::complex<double>;

template <class T>
T draw(std::mt19937 &gen) {
  std::uniform_real_distribution<float> u(-1.0f, 1.0f);
  if constexpr (std::is_same_v<T, c8>)
    return T(u(gen), u(gen));
  else
    return u(gen);
}

template <class T>
zd wide(T x) {
  return zd(std::real(x), std::imag(x));
}

// A random n-by-n matrix with the shape balancing leaves: upper triangular
// in its first ilo - 1 columns and its last n - ihi rows.
template <class T>
std::vector<T> balanced_shape(int n, int ilo, int ihi, std::mt19937 &gen) {
  std::vector<T> a(static_cast<std::size_t>(n) * n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      const bool outside = i > j && (j < ilo - 1 || i >= ihi);
      a[i + static_cast<std::size_t>(j) * n] = outside ? T(0) : draw<T>(gen);
    }
  return a;
}

struct Case {
  int n, ilo, ihi;
};

template <class T>
class Hessen : public ::testing::Test {};
using Types = ::testing::Types<float, c8>;
TYPED_TEST_SUITE(Hessen, Types);

// gehrd with the optimal workspace (blocked), a narrowed one (blocks of 4)
// and the minimal one (unblocked) gives the same H; orghr's Q is unitary
// and Q^H A Q = H to the precision's few ulps times n.
TYPED_TEST(Hessen, BlockedReductionAndFactor) {
  using T = TypeParam;
  std::mt19937 gen(7);
  for (const Case c : {Case{100, 1, 100}, Case{200, 13, 190}, Case{300, 40, 281}}) {
    const int n = c.n;
    const std::size_t nn = static_cast<std::size_t>(n) * n;
    const std::vector<T> a = balanced_shape<T>(n, c.ilo, c.ihi, gen);
    const std::int64_t best = lp::gehrd_worksize<T>(n, c.ilo, c.ihi);
    std::vector<T> h = a, tau(n), work(static_cast<std::size_t>(best));
    lp::gehrd(n, c.ilo, c.ihi, h.data(), n, tau.data(), work.data(), static_cast<int>(best));

    for (const int lwork : {n * 4 + 65 * 64, n}) {
      std::vector<T> h2 = a, tau2(n), work2(static_cast<std::size_t>(lwork));
      lp::gehrd(n, c.ilo, c.ihi, h2.data(), n, tau2.data(), work2.data(), lwork);
      double diff = 0;
      for (int j = 0; j < n; ++j)
        for (int i = 0; i <= std::min(j + 1, n - 1); ++i)
          diff = std::max(diff, std::abs(wide(h[i + j * n]) - wide(h2[i + j * n])));
      EXPECT_LT(diff, 1e-3) << "n " << n << " lwork " << lwork;
    }

    // Q from the reflectors below the subdiagonal, which then are cleared.
    std::vector<T> q = h;
    const std::int64_t qbest = lp::orghr_worksize<T>(n, c.ilo, c.ihi);
    std::vector<T> qwork(static_cast<std::size_t>(qbest));
    lp::orghr(n, c.ilo, c.ihi, q.data(), n, tau.data(), qwork.data(), static_cast<int>(qbest));
    for (int j = 0; j < n; ++j)
      for (int i = j + 2; i < n; ++i) h[i + static_cast<std::size_t>(j) * n] = T(0);

    // R = Q^H A Q - H and Q^H Q - I, in double.
    std::vector<zd> aq(nn, zd(0));
    for (int j = 0; j < n; ++j)
      for (int l = 0; l < n; ++l) {
        const zd qlj = wide(q[l + static_cast<std::size_t>(j) * n]);
        for (int i = 0; i < n; ++i)
          aq[i + static_cast<std::size_t>(j) * n] += wide(a[i + l * n]) * qlj;
      }
    double resid = 0, orth = 0, anorm = 0;
    for (std::size_t i = 0; i < nn; ++i) anorm = std::max(anorm, std::abs(wide(a[i])));
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < n; ++i) {
        zd r = 0, o = 0;
        for (int l = 0; l < n; ++l) {
          const zd qli = std::conj(wide(q[l + static_cast<std::size_t>(i) * n]));
          r += qli * aq[l + static_cast<std::size_t>(j) * n];
          o += qli * wide(q[l + static_cast<std::size_t>(j) * n]);
        }
        resid = std::max(resid, std::abs(r - wide(h[i + static_cast<std::size_t>(j) * n])));
        orth = std::max(orth, std::abs(o - zd(i == j ? 1 : 0)));
      }
    const double ulp = 1.2e-7;
    EXPECT_LT(resid / (anorm * n * ulp), 10.0) << "n " << n;
    EXPECT_LT(orth / (n * ulp), 10.0) << "n " << n;
    // Q is the identity outside the active block.
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < n; ++i)
        if ((i < c.ilo || i >= c.ihi || j < c.ilo || j >= c.ihi) && i != j) {
          EXPECT_EQ(q[i + static_cast<std::size_t>(j) * n], T(0));
        }
  }
}

// From the panel crossover on, the panel's long product is shared out over
// the team by rows; the reduction keeps the bits of one thread (the same
// call made inside a parallel region, where the panel does not split).
TYPED_TEST(Hessen, SplitPanelGivesTheSerialBits) {
  using T = TypeParam;
  std::mt19937 gen(11);
  const int n = 700;
  const std::vector<T> a = balanced_shape<T>(n, 1, n, gen);
  const std::int64_t best = lp::gehrd_worksize<T>(n, 1, n);
  auto reduce = [&] {
    std::vector<T> h = a, tau(n), work(static_cast<std::size_t>(best));
    lp::gehrd(n, 1, n, h.data(), n, tau.data(), work.data(), static_cast<int>(best));
    h.insert(h.end(), tau.begin(), tau.end());
    return h;
  };
  ORB_Set_Num_Threads(2);
  const std::vector<T> team = reduce();
  std::vector<T> one;
#pragma omp parallel num_threads(2)
  {
#pragma omp master
    one = reduce();
  }
  EXPECT_TRUE(team == one);
}

}  // namespace
