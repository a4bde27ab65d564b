// The complex Hessenberg QR where the reference testers do not reach: the
// multishift code with aggressive early deflation at orders 100 to 500, with
// the optimal workspace and with the least one (which shrinks the deflation
// window and the shift count), on an active block inside a larger matrix,
// and the eigenvalues alone against those of the Schur form.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <vector>

#include "lapack/nonsym.h"
#include "support/matrix.h"

namespace {

namespace lp = orb::lapack;
using orb::c8;
using orb::CompQ;
using orb::test::Matrix;
using orb::test::Random;
using cd = std::complex<double>;

constexpr double kEps = std::numeric_limits<float>::epsilon();

// An upper Hessenberg matrix: random entries, or graded down the diagonal
// (eigenvalues of widely different sizes deflate at different times).
Matrix<c8> hessenberg(int n, bool graded, Random &rng) {
  Matrix<c8> h(n, n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      if (i > j + 1) continue;
      const double scale = graded ? std::pow(10.0, -4.0 * std::max(i, j) / n) : 1.0;
      h(i, j) = c8(float(scale * rng.uniform()), float(scale * rng.uniform()));
    }
  return h;
}

double fro(const std::vector<cd> &a) {
  double s = 0;
  for (const cd &x : a) s += std::norm(x);
  return std::sqrt(s);
}

// ||Z T Z^H - H||_F / (n ||H||_F eps) and ||Z^H Z - I||_F / (n eps).
void check_schur(const Matrix<c8> &h, const Matrix<c8> &t, const Matrix<c8> &z, double *resid,
                 double *orth) {
  const int n = h.rows;
  std::vector<cd> zt(static_cast<std::size_t>(n) * n, 0.0), r(zt.size(), 0.0), o(zt.size(), 0.0);
  for (int j = 0; j < n; ++j)
    for (int k = 0; k <= j; ++k) {
      const cd tkj = cd(t(k, j));
      for (int i = 0; i < n; ++i) zt[i + std::size_t(j) * n] += cd(z(i, k)) * tkj;
    }
  for (int j = 0; j < n; ++j)
    for (int k = 0; k < n; ++k) {
      const cd zjk = std::conj(cd(z(j, k)));
      for (int i = 0; i < n; ++i) r[i + std::size_t(j) * n] += zt[i + std::size_t(k) * n] * zjk;
    }
  std::vector<cd> hd(r.size());
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      hd[i + std::size_t(j) * n] = cd(h(i, j));
      r[i + std::size_t(j) * n] -= cd(h(i, j));
    }
  *resid = fro(r) / (n * fro(hd) * kEps);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      cd s = i == j ? -1.0 : 0.0;
      for (int k = 0; k < n; ++k) s += std::conj(cd(z(k, i))) * cd(z(k, j));
      o[i + std::size_t(j) * n] = s;
    }
  *orth = fro(o) / (n * kEps);
}

// Every eigenvalue of `a` has one of `b` within tol (a greedy matching).
bool same_spectrum(std::vector<c8> a, std::vector<c8> b, double tol) {
  for (const c8 &x : a) {
    auto best = std::min_element(b.begin(), b.end(), [&](const c8 &p, const c8 &q) {
      return std::abs(cd(p) - cd(x)) < std::abs(cd(q) - cd(x));
    });
    if (best == b.end() || std::abs(cd(*best) - cd(x)) > tol) return false;
    b.erase(best);
  }
  return true;
}

struct Case {
  int n;
  bool graded;
  bool least_work;
};

class MultishiftQr : public ::testing::TestWithParam<Case> {};

TEST_P(MultishiftQr, SchurFormAndEigenvalues) {
  const Case c = GetParam();
  const int n = c.n;
  Random rng(1000 + n + (c.graded ? 1 : 0));
  const Matrix<c8> h = hessenberg(n, c.graded, rng);
  const int lwork = c.least_work ? n : int(lp::hseqr_worksize<c8>(true, CompQ::kInitial, n, 1, n));
  std::vector<c8> work(std::max(lwork, 1)), w(n), w_only(n);

  Matrix<c8> t = h, z(n, n);
  ASSERT_EQ(lp::hseqr<c8>(true, CompQ::kInitial, n, 1, n, t.data(), t.ld, nullptr, nullptr,
                          w.data(), z.data(), z.ld, work.data(), lwork),
            0);
  for (int j = 0; j < n; ++j) {
    for (int i = j + 1; i < n; ++i) ASSERT_EQ(t(i, j), c8(0)) << i << "," << j;
    EXPECT_EQ(w[j], t(j, j));
  }
  double resid, orth;
  check_schur(h, t, z, &resid, &orth);
  EXPECT_LT(resid, 10.0);
  EXPECT_LT(orth, 10.0);

  Matrix<c8> e = h;
  ASSERT_EQ(lp::hseqr<c8>(false, CompQ::kNone, n, 1, n, e.data(), e.ld, nullptr, nullptr,
                          w_only.data(), nullptr, 1, work.data(), lwork),
            0);
  double hnorm = 0;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) hnorm = std::max(hnorm, std::abs(cd(h(i, j))));
  // Well separated random eigenvalues agree to a small multiple of eps ||H||.
  EXPECT_TRUE(same_spectrum(w, w_only, 100.0 * n * kEps * hnorm));
}

INSTANTIATE_TEST_SUITE_P(Orders, MultishiftQr,
                         ::testing::Values(Case{100, false, false}, Case{100, false, true},
                                           Case{180, true, false}, Case{250, false, true},
                                           Case{500, false, false}));

// An active block ilo..ihi inside a larger matrix, Z updated: the rows and
// columns outside the block see only the transformations that touch them.
TEST(MultishiftQr, ActiveBlockUpdatesZ) {
  const int n = 160, ilo = 11, ihi = 150;
  Random rng(77);
  Matrix<c8> h = hessenberg(n, false, rng);
  // Triangular outside the block, as balancing leaves a matrix.
  for (int i = 1; i < n; ++i)
    if (i < ilo || i >= ihi) h(i, i - 1) = c8(0);
  const int lwork = int(lp::hseqr_worksize<c8>(true, CompQ::kUpdate, n, ilo, ihi));
  std::vector<c8> work(lwork), w(n);
  Matrix<c8> t = h, z(n, n);
  for (int i = 0; i < n; ++i) z(i, i) = c8(1);
  ASSERT_EQ(lp::hseqr<c8>(true, CompQ::kUpdate, n, ilo, ihi, t.data(), t.ld, nullptr, nullptr,
                          w.data(), z.data(), z.ld, work.data(), lwork),
            0);
  for (int i = 0; i < n; ++i) {
    if (i + 1 < ilo || i + 1 > ihi) {
      EXPECT_EQ(w[i], h(i, i));
      for (int j = 0; j < n; ++j) EXPECT_EQ(z(i, j), c8(i == j ? 1 : 0));
    }
  }
  // Outside the block the triangle is untouched; inside it is triangular.
  for (int j = 0; j < n; ++j)
    for (int i = j + 1; i < n; ++i) EXPECT_EQ(t(i, j), c8(0));
  double resid, orth;
  check_schur(h, t, z, &resid, &orth);
  EXPECT_LT(resid, 10.0);
  EXPECT_LT(orth, 10.0);
}

}  // namespace
