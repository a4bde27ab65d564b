// The real Hessenberg QR iteration where the reference testers do not
// look: orders in the hundreds (residual, orthogonality, the standardized
// Schur form, the same eigenvalues without the Schur form), a split and
// graded matrix, an active block inside a larger matrix, the cyclic shift
// matrix, on which the ordinary shifts stall and only the exceptional ones
// make progress, and the reordering of the Schur form by adjacent block swaps.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <vector>

#include "lapack/nonsym.h"
#include "lapack/schur_swap.h"
#include "support/matrix.h"

namespace {

namespace lp = orb::lapack;
using orb::CompQ;
using orb::test::Random;

constexpr float kEps = std::numeric_limits<float>::epsilon();

struct Dense {
  int n;
  std::vector<float> a;
  explicit Dense(int order) : n(order), a(static_cast<std::size_t>(order) * order, 0.0f) {}
  float &operator()(int i, int j) { return a[i + static_cast<std::size_t>(j) * n]; }
  float operator()(int i, int j) const { return a[i + static_cast<std::size_t>(j) * n]; }
};

Dense random_hessenberg(int n, Random &rng) {
  Dense h(n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i <= std::min(j + 1, n - 1); ++i) h(i, j) = static_cast<float>(rng.uniform());
  return h;
}

double frobenius(const Dense &m) {
  double s = 0;
  for (float x : m.a) s += double(x) * x;
  return std::sqrt(s);
}

// ||Z T Z^T - H||_F / (n ||H||_F eps) and ||Z^T Z - I||_F / (n eps), in
// double, below the reference testers' threshold.
constexpr double kThreshold = 20;
void check_schur(const Dense &h, const Dense &t, const Dense &z) {
  const int n = h.n;
  std::vector<double> zt(static_cast<std::size_t>(n) * n, 0.0);
  for (int j = 0; j < n; ++j)
    for (int k = 0; k < n; ++k)
      for (int i = 0; i < n; ++i) zt[i + std::size_t(j) * n] += double(z(i, k)) * t(k, j);
  double res = 0, orth = 0;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      double r = -h(i, j), o = (i == j) ? -1.0 : 0.0;
      for (int k = 0; k < n; ++k) {
        r += zt[i + std::size_t(k) * n] * z(j, k);
        o += double(z(k, i)) * z(k, j);
      }
      res += r * r;
      orth += o * o;
    }
  EXPECT_LT(std::sqrt(res) / (n * frobenius(h) * kEps), kThreshold) << "n = " << n;
  EXPECT_LT(std::sqrt(orth) / (n * kEps), kThreshold) << "n = " << n;
}

// T is quasi-triangular, each 2x2 block standardized (equal diagonal,
// off-diagonal entries of opposite signs), and (wr, wi) are its eigenvalues.
void check_standard_form(const Dense &t, const std::vector<float> &wr,
                         const std::vector<float> &wi) {
  const int n = t.n;
  for (int j = 0; j < n; ++j)
    for (int i = j + 2; i < n; ++i) ASSERT_EQ(t(i, j), 0.0f) << i << "," << j;
  for (int j = 0; j + 1 < n; ++j) {
    if (t(j + 1, j) == 0.0f) continue;
    ASSERT_TRUE(j + 2 >= n || t(j + 2, j + 1) == 0.0f) << "adjacent blocks at " << j;
    EXPECT_EQ(t(j, j), t(j + 1, j + 1));
    EXPECT_LT(t(j, j + 1) * t(j + 1, j), 0.0f);
    EXPECT_EQ(wr[j], t(j, j));
    EXPECT_GT(wi[j], 0.0f);
    EXPECT_EQ(wi[j + 1], -wi[j]);
    ++j;
  }
}

std::vector<std::complex<double>> sorted_values(const std::vector<float> &wr,
                                                const std::vector<float> &wi) {
  std::vector<std::complex<double>> w;
  for (std::size_t k = 0; k < wr.size(); ++k) w.emplace_back(wr[k], wi[k]);
  std::sort(w.begin(), w.end(), [](auto a, auto b) {
    return a.real() != b.real() ? a.real() < b.real() : a.imag() < b.imag();
  });
  return w;
}

int run(bool wantt, CompQ compz, int ilo, int ihi, Dense &h, Dense *z, std::vector<float> &wr,
        std::vector<float> &wi) {
  const int n = h.n;
  wr.assign(n, 0.0f);
  wi.assign(n, 0.0f);
  std::vector<float> work(
      static_cast<std::size_t>(lp::hseqr_worksize<float>(wantt, compz, n, ilo, ihi)));
  return lp::hseqr<float>(wantt, compz, n, ilo, ihi, h.a.data(), n, wr.data(), wi.data(), nullptr,
                          z ? z->a.data() : nullptr, n, work.data(), static_cast<int>(work.size()));
}

TEST(Hseqr, SchurFormOfRandomHessenbergMatrices) {
  Random rng(17);
  for (int n : {100, 230, 600}) {
    const Dense h = random_hessenberg(n, rng);
    Dense t = h, z(n);
    std::vector<float> wr, wi, wr2, wi2;
    ASSERT_EQ(run(true, CompQ::kInitial, 1, n, t, &z, wr, wi), 0);
    check_schur(h, t, z);
    check_standard_form(t, wr, wi);

    // Eigenvalues alone: the same spectrum, to a few ulps of ||H||.
    Dense e = h;
    ASSERT_EQ(run(false, CompQ::kNone, 1, n, e, nullptr, wr2, wi2), 0);
    const auto a = sorted_values(wr, wi), b = sorted_values(wr2, wi2);
    double worst = 0;
    for (int k = 0; k < n; ++k) worst = std::max(worst, std::abs(a[k] - b[k]));
    EXPECT_LT(worst, 1e3 * kEps * frobenius(h) / std::sqrt(double(n))) << "n = " << n;
  }
}

TEST(Hseqr, SplitAndGradedMatrix) {
  // Zero subdiagonal entries split the matrix into independent blocks, each
  // finished on its own; a diagonal similarity grades the entries over
  // several orders of magnitude, which the deflation tests must follow.
  Random rng(41);
  const int n = 320;
  Dense h = random_hessenberg(n, rng);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i <= std::min(j + 1, n - 1); ++i)
      h(i, j) *= static_cast<float>(std::exp2((j - i) / 24.0));
  for (int split : {40, 41, 200}) h(split, split - 1) = 0.0f;
  for (bool wantt : {true, false}) {
    Dense t = h, z(n);
    std::vector<float> wr, wi;
    ASSERT_EQ(
        run(wantt, wantt ? CompQ::kInitial : CompQ::kNone, 1, n, t, wantt ? &z : nullptr, wr, wi),
        0);
    if (!wantt) continue;
    check_schur(h, t, z);
    check_standard_form(t, wr, wi);
    for (int split : {40, 41, 200}) EXPECT_EQ(t(split, split - 1), 0.0f);
  }
}

TEST(Hseqr, ActiveBlockInsideALargerMatrix) {
  // Rows and columns outside ilo..ihi are already triangular: their
  // diagonal entries are eigenvalues, and Z (updated, compz V) keeps the
  // caller's factor there.
  Random rng(5);
  const int n = 120, ilo = 11, ihi = 100;
  Dense h = random_hessenberg(n, rng);
  for (int j = 0; j < n; ++j)
    for (int i = j + 1; i < n; ++i)
      if (j < ilo - 1 || i > ihi - 1) h(i, j) = 0.0f;
  Dense t = h, z(n);
  for (int i = 0; i < n; ++i) z(i, i) = 1.0f;
  std::vector<float> wr, wi;
  ASSERT_EQ(run(true, CompQ::kUpdate, ilo, ihi, t, &z, wr, wi), 0);
  check_schur(h, t, z);
  check_standard_form(t, wr, wi);
  for (int i = 0; i < n; ++i)
    if (i < ilo - 1 || i > ihi - 1) {
      EXPECT_EQ(wr[i], h(i, i));
      EXPECT_EQ(wi[i], 0.0f);
      for (int k = 0; k < n; ++k) EXPECT_EQ(z(k, i), k == i ? 1.0f : 0.0f);
    }
}

TEST(Hseqr, CyclicShiftNeedsExceptionalShifts) {
  // Ones on the subdiagonal and in the corner: a permutation whose
  // eigenvalues are the n-th roots of unity. The standard double shift
  // from the zero trailing 2x2 leaves the matrix unchanged.
  for (int n : {6, 31, 90, 250}) {
    Dense h(n);
    for (int i = 1; i < n; ++i) h(i, i - 1) = 1.0f;
    h(0, n - 1) = 1.0f;
    Dense t = h, z(n);
    std::vector<float> wr, wi;
    ASSERT_EQ(run(true, CompQ::kInitial, 1, n, t, &z, wr, wi), 0) << "n = " << n;
    check_schur(h, t, z);
    check_standard_form(t, wr, wi);
    // The matrix is normal: each eigenvalue is off by no more than the
    // backward error, which grows with the order.
    const double tol = std::max(50, n / 2) * kEps;
    for (int k = 0; k < n; ++k)
      EXPECT_NEAR(std::hypot(double(wr[k]), double(wi[k])), 1.0, tol) << "n = " << n;
  }
}

TEST(SchurSwap, MovesEveryBlockBothWays) {
  // A Schur form with 1x1 and 2x2 blocks; every block moved to the first
  // and to the last position: T stays similar through the accumulated Q,
  // in standard form, and the moved block's eigenvalues arrive where asked.
  Random rng(3);
  const int n = 14;
  Dense h = random_hessenberg(n, rng), t0 = h, z(n);
  std::vector<float> wr, wi;
  ASSERT_EQ(run(true, CompQ::kInitial, 1, n, t0, &z, wr, wi), 0);
  int pairs = 0;
  for (int k = 0; k + 1 < n; ++k) pairs += t0(k + 1, k) != 0.0f;
  ASSERT_GE(pairs, 2);
  for (int first = 1; first <= n; ++first) {
    if (first > 1 && t0(first - 1, first - 2) != 0.0f) continue;  // second row of a block
    for (int target : {1, n}) {
      Dense t = t0, q(n);
      for (int i = 0; i < n; ++i) q(i, i) = 1.0f;
      std::vector<float> work(n);
      int ifst = first, ilst = target;
      ASSERT_EQ(lp::trexc<float>(true, n, t.a.data(), n, q.a.data(), n, &ifst, &ilst, work.data()),
                0);
      check_schur(t0, t, q);
      // The eigenvalues as the standardized blocks give them.
      std::vector<float> wr2(n), wi2(n, 0.0f);
      for (int k = 0; k < n; ++k) {
        wr2[k] = t(k, k);
        if (k + 1 < n && t(k + 1, k) != 0.0f) {
          wr2[k + 1] = t(k + 1, k + 1);
          wi2[k] = std::sqrt(std::abs(t(k, k + 1))) * std::sqrt(std::abs(t(k + 1, k)));
          wi2[k + 1] = -wi2[k];
          ++k;
        }
      }
      check_standard_form(t, wr2, wi2);
      EXPECT_NEAR(t(ilst - 1, ilst - 1), t0(first - 1, first - 1), 1e-4) << first << "->" << target;
    }
  }
}

}  // namespace
