// The tridiagonal divide and conquer: the threaded tree against one thread
// (the same bits) on orders with several levels; residual and orthogonality
// on a glued Wilkinson matrix and on tridiagonals whose merges deflate
// heavily (many equal eigenvalues), with the library's leaf and with leaves
// of one and two rows (every merge then runs the secular equation); and
// Z := Z Q (kUpdate) against the vectors alone (kInitial) followed by the
// product, real and complex.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <limits>
#include <vector>

#include "lapack/eigen.h"
#include "lapack/laed.h"
#include "orb.h"
#include "support/matrix.h"

namespace {

namespace lp = orb::lapack;
namespace dc = orb::lapack::dc;
using orb::c8;
using orb::CompQ;
using orb::test::Random;

struct Tridiagonal {
  std::vector<float> d, e;
};

// Wilkinson's W+ of order 2m+1 glued copies times, joined by off-diagonal
// elements `glue` (its eigenvalues come in close pairs).
Tridiagonal glued_wilkinson(int m, int copies, float glue) {
  Tridiagonal t;
  const int w = 2 * m + 1;
  for (int c = 0; c < copies; ++c) {
    for (int i = 0; i < w; ++i) t.d.push_back(static_cast<float>(std::abs(m - i)));
    for (int i = 0; i + 1 < w; ++i) t.e.push_back(1);
    if (c + 1 < copies) t.e.push_back(glue);
  }
  return t;
}

// Heavy deflation: identical 2 x 2 blocks [1 1; 1 1] joined by tiny
// couplings, so the spectrum is 0 and 2 each n/2 times (nearly), plus a
// random tridiagonal's tail.
Tridiagonal repeated(int n, Random &rng) {
  Tridiagonal t;
  t.d.assign(n, 1);
  t.e.assign(n - 1, 0);
  for (int i = 0; i + 1 < n; ++i) t.e[i] = i % 2 == 0 ? 1.0f : 1e-9f;
  for (int i = 3 * n / 4; i < n; ++i) t.d[i] = static_cast<float>(rng.uniform());
  return t;
}

Tridiagonal random_tridiagonal(int n, Random &rng) {
  Tridiagonal t;
  for (int i = 0; i < n; ++i) t.d.push_back(static_cast<float>(rng.uniform()));
  for (int i = 0; i + 1 < n; ++i) t.e.push_back(static_cast<float>(rng.uniform()));
  return t;
}

// The eigenvectors in Z (n x n) and the eigenvalues lam of (d, e), by the
// tree with the given leaf size (0: stedc itself, compz kInitial).
int solve(const Tridiagonal &t, int leaf, std::vector<float> &lam, std::vector<float> &z) {
  const int n = static_cast<int>(t.d.size());
  lam = t.d;
  std::vector<float> e = t.e;
  e.push_back(0);
  z.assign(static_cast<std::size_t>(n) * n, 0);
  if (leaf == 0) {
    const lp::StedcWork ws = lp::stedc_worksize<float>(CompQ::kInitial, n);
    std::vector<float> work(ws.lwork);
    std::vector<int> iwork(ws.liwork);
    return lp::stedc<float>(CompQ::kInitial, n, lam.data(), e.data(), z.data(), n, work.data(),
                            static_cast<int>(ws.lwork), nullptr, 0, iwork.data(),
                            static_cast<int>(ws.liwork));
  }
  std::vector<float> work(dc::laed0_work(n));
  std::vector<int> iwork(dc::laed0_iwork(n));
  return dc::laed0(n, lam.data(), e.data(), z.data(), n, leaf, work.data(), iwork.data());
}

// max |T z_j - lam_j z_j| / (|T| n eps) and max |Z^T Z - I| / (n eps).
template <class T>
void check(const Tridiagonal &t, const std::vector<float> &lam, const std::vector<T> &z, int ldz,
           const char *what) {
  const int n = static_cast<int>(t.d.size());
  const double eps = std::numeric_limits<float>::epsilon();
  double tnorm = 0;
  for (int i = 0; i < n; ++i)
    tnorm = std::max(tnorm, std::abs(double(t.d[i])) + (i > 0 ? std::abs(double(t.e[i - 1])) : 0) +
                                (i + 1 < n ? std::abs(double(t.e[i])) : 0));
  double res = 0, orth = 0;
  for (int j = 0; j < n; ++j) {
    const T *zj = z.data() + static_cast<std::size_t>(j) * ldz;
    if (j > 0) {
      EXPECT_LE(lam[j - 1], lam[j]) << what;
    }
    for (int i = 0; i < n; ++i) {
      std::complex<double> r =
          std::complex<double>(t.d[i] - double(lam[j])) * std::complex<double>(zj[i]);
      if (i > 0) r += double(t.e[i - 1]) * std::complex<double>(zj[i - 1]);
      if (i + 1 < n) r += double(t.e[i]) * std::complex<double>(zj[i + 1]);
      res = std::max(res, std::abs(r));
    }
    for (int k = 0; k <= j; ++k) {
      const T *zk = z.data() + static_cast<std::size_t>(k) * ldz;
      std::complex<double> s = 0;
      for (int i = 0; i < n; ++i)
        s += std::conj(std::complex<double>(zk[i])) * std::complex<double>(zj[i]);
      orth = std::max(orth, std::abs(s - (k == j ? 1.0 : 0.0)));
    }
  }
  EXPECT_LT(res / (std::max(tnorm, 1e-30) * n * eps), 1.0) << what << " residual, n " << n;
  EXPECT_LT(orth / (n * eps), 1.0) << what << " orthogonality, n " << n;
}

TEST(DivideAndConquer, TwoThreadsGiveTheSameBitsAsOne) {
  Random rng(3);
  for (int n : {300, 1000}) {
    const Tridiagonal t = random_tridiagonal(n, rng);
    for (int leaf : {0, 2}) {
      std::vector<float> lam1, z1, lam2, z2;
      ORB_Set_Num_Threads(1);
      ASSERT_EQ(solve(t, leaf, lam1, z1), 0);
      ORB_Set_Num_Threads(2);
      ASSERT_EQ(solve(t, leaf, lam2, z2), 0);
      ORB_Set_Num_Threads(1);
      EXPECT_EQ(std::memcmp(lam1.data(), lam2.data(), lam1.size() * sizeof(float)), 0)
          << "n " << n << " leaf " << leaf;
      EXPECT_EQ(std::memcmp(z1.data(), z2.data(), z1.size() * sizeof(float)), 0)
          << "n " << n << " leaf " << leaf;
      if (n == 300) check(t, lam2, z2, n, "threaded");
    }
  }
}

// The complex form: the real tree, then the product with Z over the
// library's team.
TEST(DivideAndConquer, ComplexUpdateTwoThreadsGiveTheSameBitsAsOne) {
  Random rng(5);
  const int n = 400;
  const Tridiagonal t = random_tridiagonal(n, rng);
  std::vector<c8> z0(static_cast<std::size_t>(n) * n);
  for (c8 &v : z0) v = rng.value<c8>();
  const lp::StedcWork ws = lp::stedc_worksize<c8>(CompQ::kUpdate, n);
  std::vector<float> lam[2];
  std::vector<c8> z[2];
  for (int threads : {1, 2}) {
    ORB_Set_Num_Threads(threads);
    std::vector<float> &d = lam[threads - 1];
    std::vector<c8> &zz = z[threads - 1];
    d = t.d;
    zz = z0;
    std::vector<float> e = t.e, rwork(ws.lrwork);
    std::vector<c8> work(ws.lwork);
    std::vector<int> iwork(ws.liwork);
    ASSERT_EQ(lp::stedc<c8>(CompQ::kUpdate, n, d.data(), e.data(), zz.data(), n, work.data(),
                            static_cast<int>(ws.lwork), rwork.data(), static_cast<int>(ws.lrwork),
                            iwork.data(), static_cast<int>(ws.liwork)),
              0);
  }
  ORB_Set_Num_Threads(1);
  EXPECT_EQ(std::memcmp(lam[0].data(), lam[1].data(), n * sizeof(float)), 0);
  EXPECT_EQ(std::memcmp(z[0].data(), z[1].data(), z[0].size() * sizeof(c8)), 0);
}

TEST(DivideAndConquer, GluedWilkinsonAndHeavyDeflation) {
  Random rng(7);
  const Tridiagonal cases[] = {glued_wilkinson(10, 12, 1e-5f), glued_wilkinson(3, 40, 1e-3f),
                               repeated(300, rng), repeated(77, rng)};
  for (const Tridiagonal &t : cases) {
    for (int leaf : {0, 1, 2, 25}) {
      std::vector<float> lam, z;
      ASSERT_EQ(solve(t, leaf, lam, z), 0);
      check(t, lam, z, static_cast<int>(t.d.size()), leaf == 0 ? "stedc" : "laed0");
    }
  }
}

// kUpdate from a random Z0 against Z0 times kInitial's vectors.
template <class T>
void update_against_initial(int n, int ldz, Random &rng) {
  Tridiagonal t = random_tridiagonal(n, rng);
  // A split in the middle: two blocks, each solved alone.
  t.e[n / 3] = 0;
  std::vector<T> z0(static_cast<std::size_t>(ldz) * n);
  for (T &v : z0) v = rng.value<T>();

  auto run = [&](CompQ compz, std::vector<float> &lam, std::vector<T> &z) {
    lam = t.d;
    std::vector<float> e = t.e;
    const lp::StedcWork ws = lp::stedc_worksize<T>(compz, n);
    std::vector<T> work(ws.lwork);
    std::vector<float> rwork(ws.lrwork);
    std::vector<int> iwork(ws.liwork);
    return lp::stedc<T>(compz, n, lam.data(), e.data(), z.data(), ldz, work.data(),
                        static_cast<int>(ws.lwork), rwork.data(), static_cast<int>(ws.lrwork),
                        iwork.data(), static_cast<int>(ws.liwork));
  };
  std::vector<float> lam_u, lam_i;
  std::vector<T> zu = z0, zi(z0.size());
  ASSERT_EQ(run(CompQ::kUpdate, lam_u, zu), 0);
  ASSERT_EQ(run(CompQ::kInitial, lam_i, zi), 0);
  check(t, lam_i, zi, ldz, "kInitial");
  double worst = 0, scale = 0;
  for (int j = 0; j < n; ++j) {
    EXPECT_EQ(lam_u[j], lam_i[j]);
    for (int i = 0; i < n; ++i) {
      std::complex<double> s = 0;
      for (int k = 0; k < n; ++k)
        s += std::complex<double>(z0[i + static_cast<std::size_t>(k) * ldz]) *
             std::complex<double>(zi[k + static_cast<std::size_t>(j) * ldz]);
      worst = std::max(
          worst, std::abs(s - std::complex<double>(zu[i + static_cast<std::size_t>(j) * ldz])));
      scale = std::max(scale, std::abs(s));
    }
  }
  EXPECT_LT(worst / (scale * n * std::numeric_limits<float>::epsilon()), 1.0) << "n " << n;
}

TEST(DivideAndConquer, UpdateIsInitialTimesZ) {
  Random rng(11);
  for (int n : {20, 90, 260}) {
    update_against_initial<float>(n, n + 3, rng);
    update_against_initial<c8>(n, n + 1, rng);
  }
}

}  // namespace
