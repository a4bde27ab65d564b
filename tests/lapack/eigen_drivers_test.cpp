// The symmetric and Hermitian eigenvalue drivers at orders the reference
// testers do not reach (their largest is 20): the blocked reduction, MRRR
// and divide and conquer behind the exported entries, every range giving
// the same eigenvalues as the whole spectrum, the dense and band drivers
// agreeing on one matrix; and the queries the drivers with several
// workspace lengths answer through any of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <vector>

#include "orb.h"
#include "support/matrix.h"

namespace {

using orb::test::Random;
using c8 = std::complex<float>;

constexpr int kN = 300;

template <class T>
T conj_of(T x) {
  if constexpr (std::is_same_v<T, float>)
    return x;
  else
    return std::conj(x);
}

template <class T>
std::vector<T> hermitian(int n, Random &rng) {
  std::vector<T> a(std::size_t(n) * n);
  for (int j = 0; j < n; ++j)
    for (int i = j; i < n; ++i) {
      T x = rng.value<T>();
      if (i == j) x = T(std::real(x));
      a[i + std::size_t(j) * n] = x;
      a[j + std::size_t(i) * n] = conj_of(x);
    }
  return a;
}

// max(||A Z - Z W||, ||Z^H Z - I||) / (n eps ||A||) over the m pairs, in double.
template <class T>
double pair_error(const std::vector<T> &a, int n, int m, const float *w, const T *z, int ldz) {
  double anorm = 0, worst = 0;
  for (const T &x : a) anorm = std::max(anorm, double(std::abs(x)));
  for (int k = 0; k < m; ++k) {
    for (int i = 0; i < n; ++i) {
      std::complex<double> s = 0;
      for (int j = 0; j < n; ++j)
        s += std::complex<double>(a[i + std::size_t(j) * n]) *
             std::complex<double>(z[j + std::size_t(k) * ldz]);
      s -= double(w[k]) * std::complex<double>(z[i + std::size_t(k) * ldz]);
      worst = std::max(worst, std::abs(s) / anorm);
    }
    for (int l = 0; l <= k; ++l) {
      std::complex<double> s = 0;
      for (int i = 0; i < n; ++i)
        s += std::conj(std::complex<double>(z[i + std::size_t(l) * ldz])) *
             std::complex<double>(z[i + std::size_t(k) * ldz]);
      worst = std::max(worst, std::abs(s - double(l == k)));
    }
  }
  return worst / (n * double(std::numeric_limits<float>::epsilon()));
}

// The dense MRRR driver with vectors for one range: m and the pairs.
struct Pairs {
  int info = -1, m = 0;
  std::vector<float> w;
  std::vector<float> zr;
  std::vector<c8> zc;
};

template <class T>
Pairs syevr_call(std::vector<T> a, int n, char range, float vl, float vu, int il, int iu) {
  Pairs p;
  p.w.assign(n, 0);
  std::vector<T> z(std::size_t(n) * n);
  std::vector<int> isuppz(2 * std::size_t(n));
  const char jobz = 'V', uplo = 'L';
  const float abstol = 0;
  int lwork = -1, liwork = -1, lrwork = -1, iq = 0;
  T wq = 0;
  float rq = 0;
  if constexpr (std::is_same_v<T, float>) {
    ssyevr(&jobz, &range, &uplo, &n, a.data(), &n, &vl, &vu, &il, &iu, &abstol, &p.m, p.w.data(),
           z.data(), &n, isuppz.data(), &wq, &lwork, &iq, &liwork, &p.info, 1, 1, 1);
    lwork = int(wq), liwork = iq;
    std::vector<float> work(lwork);
    std::vector<int> iwork(liwork);
    ssyevr(&jobz, &range, &uplo, &n, a.data(), &n, &vl, &vu, &il, &iu, &abstol, &p.m, p.w.data(),
           z.data(), &n, isuppz.data(), work.data(), &lwork, iwork.data(), &liwork, &p.info, 1, 1,
           1);
    p.zr = z;
  } else {
    auto *az = reinterpret_cast<orb_complex8 *>(a.data());
    auto *zz = reinterpret_cast<orb_complex8 *>(z.data());
    cheevr(&jobz, &range, &uplo, &n, az, &n, &vl, &vu, &il, &iu, &abstol, &p.m, p.w.data(), zz, &n,
           isuppz.data(), reinterpret_cast<orb_complex8 *>(&wq), &lwork, &rq, &lrwork, &iq, &liwork,
           &p.info, 1, 1, 1);
    lwork = int(std::real(wq)), lrwork = int(rq), liwork = iq;
    std::vector<T> work(lwork);
    std::vector<float> rwork(lrwork);
    std::vector<int> iwork(liwork);
    cheevr(&jobz, &range, &uplo, &n, az, &n, &vl, &vu, &il, &iu, &abstol, &p.m, p.w.data(), zz, &n,
           isuppz.data(), reinterpret_cast<orb_complex8 *>(work.data()), &lwork, rwork.data(),
           &lrwork, iwork.data(), &liwork, &p.info, 1, 1, 1);
    p.zc = z;
  }
  return p;
}

template <class T>
const T *vectors(const Pairs &p) {
  if constexpr (std::is_same_v<T, float>)
    return p.zr.data();
  else
    return p.zc.data();
}

template <class T>
void ranges_agree() {
  Random rng(31);
  const std::vector<T> a = hermitian<T>(kN, rng);
  const Pairs all = syevr_call<T>(a, kN, 'A', 0, 0, 1, kN);
  ASSERT_EQ(all.info, 0);
  ASSERT_EQ(all.m, kN);
  EXPECT_LT(pair_error(a, kN, all.m, all.w.data(), vectors<T>(all), kN), 10);
  EXPECT_TRUE(std::is_sorted(all.w.begin(), all.w.end()));

  const int il = 11, iu = 70;
  const Pairs some = syevr_call<T>(a, kN, 'I', 0, 0, il, iu);
  ASSERT_EQ(some.info, 0);
  ASSERT_EQ(some.m, iu - il + 1);
  const float tol = 50 * kN * std::numeric_limits<float>::epsilon() * std::abs(all.w[kN - 1]);
  for (int k = 0; k < some.m; ++k) EXPECT_NEAR(some.w[k], all.w[il - 1 + k], tol) << k;
  EXPECT_LT(pair_error(a, kN, some.m, some.w.data(), vectors<T>(some), kN), 10);

  const float vl = (all.w[il - 2] + all.w[il - 1]) / 2, vu = (all.w[iu - 1] + all.w[iu]) / 2;
  const Pairs inside = syevr_call<T>(a, kN, 'V', vl, vu, 1, 1);
  ASSERT_EQ(inside.info, 0);
  ASSERT_EQ(inside.m, iu - il + 1);
  for (int k = 0; k < inside.m; ++k) EXPECT_NEAR(inside.w[k], all.w[il - 1 + k], tol) << k;
}

TEST(EigenDrivers, MrrrRangesAgreeReal) {
  ranges_agree<float>();
}
TEST(EigenDrivers, MrrrRangesAgreeComplex) {
  ranges_agree<c8>();
}

// The band drivers (QR, divide and conquer, bisection) against the dense
// MRRR driver on a band matrix held in full.
TEST(EigenDrivers, BandDriversAgreeWithTheDenseOne) {
  const int n = 200, kd = 9, ldab = kd + 1;
  Random rng(5);
  std::vector<float> full(std::size_t(n) * n, 0), band(std::size_t(ldab) * n, 0);
  for (int j = 0; j < n; ++j)
    for (int i = j; i < std::min(n, j + kd + 1); ++i) {
      const float x = rng.value<float>();
      full[i + std::size_t(j) * n] = full[j + std::size_t(i) * n] = x;
      band[i - j + std::size_t(j) * ldab] = x;
    }
  const Pairs dense = syevr_call<float>(full, n, 'A', 0, 0, 1, n);
  ASSERT_EQ(dense.info, 0);
  const float tol = 50 * n * std::numeric_limits<float>::epsilon() * std::abs(dense.w[n - 1]);
  const char jobz = 'V', uplo = 'L', range = 'I';
  std::vector<float> w(n), z(std::size_t(n) * n), q(std::size_t(n) * n);
  int info = -1;
  {
    std::vector<float> ab = band, work(std::max(1, 3 * n - 2));
    ssbev(&jobz, &uplo, &n, &kd, ab.data(), &ldab, w.data(), z.data(), &n, work.data(), &info, 1,
          1);
    ASSERT_EQ(info, 0);
    for (int k = 0; k < n; ++k) EXPECT_NEAR(w[k], dense.w[k], tol) << "sbev " << k;
    EXPECT_LT(pair_error(full, n, n, w.data(), z.data(), n), 10);
  }
  {
    std::vector<float> ab = band;
    float wq;
    int iq, lwork = -1, liwork = -1;
    ssbevd(&jobz, &uplo, &n, &kd, ab.data(), &ldab, w.data(), z.data(), &n, &wq, &lwork, &iq,
           &liwork, &info, 1, 1);
    lwork = int(wq), liwork = iq;
    EXPECT_EQ(lwork, 1 + 5 * n + 2 * n * n);
    EXPECT_EQ(liwork, 3 + 5 * n);
    std::vector<float> work(lwork);
    std::vector<int> iwork(liwork);
    ssbevd(&jobz, &uplo, &n, &kd, ab.data(), &ldab, w.data(), z.data(), &n, work.data(), &lwork,
           iwork.data(), &liwork, &info, 1, 1);
    ASSERT_EQ(info, 0);
    for (int k = 0; k < n; ++k) EXPECT_NEAR(w[k], dense.w[k], tol) << "sbevd " << k;
    EXPECT_LT(pair_error(full, n, n, w.data(), z.data(), n), 10);
  }
  {
    std::vector<float> ab = band, work(7 * n);
    std::vector<int> iwork(5 * n), ifail(n);
    const float vl = 0, vu = 0, abstol = 0;
    const int il = 20, iu = 60;
    int m = 0;
    ssbevx(&jobz, &range, &uplo, &n, &kd, ab.data(), &ldab, q.data(), &n, &vl, &vu, &il, &iu,
           &abstol, &m, w.data(), z.data(), &n, work.data(), iwork.data(), ifail.data(), &info, 1,
           1, 1);
    ASSERT_EQ(info, 0);
    ASSERT_EQ(m, iu - il + 1);
    for (int k = 0; k < m; ++k) EXPECT_NEAR(w[k], dense.w[il - 1 + k], tol) << "sbevx " << k;
    EXPECT_LT(pair_error(full, n, m, w.data(), z.data(), n), 10);
  }
}

// A query through LIWORK alone answers every size and computes nothing; a
// short LWORK outside a query is argument 18.
TEST(EigenDrivers, QueriesThroughAnyWorkspaceLength) {
  int n = 50, m = -7, info = -1, lwork = 0, liwork = -1, iwork = 0, isuppz[2];
  float a[1] = {3}, w = 0, z = 0, work = 0, vl = 0, vu = 0, tol = 0;
  const int il = 1, iu = 1;
  ssyevr("V", "A", "L", &n, a, &n, &vl, &vu, &il, &iu, &tol, &m, &w, &z, &n, isuppz, &work, &lwork,
         &iwork, &liwork, &info, 1, 1, 1);
  EXPECT_EQ(info, 0);
  EXPECT_GE(work, 26.0f * n);
  EXPECT_EQ(iwork, 10 * n);
  EXPECT_EQ(m, -7);
  liwork = 10 * n;
  ssyevr("V", "A", "L", &n, a, &n, &vl, &vu, &il, &iu, &tol, &m, &w, &z, &n, isuppz, &work, &lwork,
         &iwork, &liwork, &info, 1, 1, 1);
  EXPECT_EQ(info, -18);
}

}  // namespace
