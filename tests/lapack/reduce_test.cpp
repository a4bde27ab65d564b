// The parts of the reductions the reference testers do not reach at their
// orders: the blocked QL factor (orgql, from order 128), the blocked
// reduction of the generalized problem (sygst, from order 64), and the
// band reduction updating a given Q (sbtrd with kUpdate).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <random>
#include <type_traits>
#include <vector>

#include "common/options.h"
#include "lapack/eigen.h"
#include "lapack/qr.h"

namespace {

namespace lp = orb::lapack;
using orb::CompQ;
using orb::Uplo;
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

template <class T>
T narrow(zd x) {
  if constexpr (std::is_same_v<T, c8>)
    return T(static_cast<float>(x.real()), static_cast<float>(x.imag()));
  else
    return static_cast<float>(x.real());
}

template <class T>
class Reduce : public ::testing::Test {};
using Types = ::testing::Types<float, c8>;
TYPED_TEST_SUITE(Reduce, Types);

// The blocked QL factor against the one-reflector-at-a-time code, and
// orthonormal columns.
TYPED_TEST(Reduce, BlockedQlFactorMatchesUnblocked) {
  using T = TypeParam;
  std::mt19937 gen(11);
  const int m = 230, n = 200, k = 200, lda = m;
  std::vector<T> a(static_cast<std::size_t>(lda) * n), tau(k);
  for (T &x : a) x = draw<T>(gen);
  for (int i = 0; i < k; ++i) {
    // Reflector i ends with its unit at row m - k + i of column n - k + i.
    const int col = n - k + i, unit = m - k + i;
    double norm2 = 1;
    for (int l = 0; l < unit; ++l) norm2 += std::norm(wide(a[l + col * lda]));
    tau[i] = T(static_cast<float>(2 / norm2));
  }
  std::vector<T> blocked = a, unblocked = a, work(static_cast<std::size_t>(n) * 64);
  lp::orgql(m, n, k, blocked.data(), lda, tau.data(), work.data(), static_cast<int>(work.size()));
  lp::org2l(m, n, k, unblocked.data(), lda, tau.data(), work.data());
  double diff = 0;
  for (std::size_t i = 0; i < a.size(); ++i)
    diff = std::max(diff, std::abs(wide(blocked[i]) - wide(unblocked[i])));
  EXPECT_LT(diff, 1e-5);
  double orth = 0;
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      zd s = 0;
      for (int l = 0; l < m; ++l)
        s += std::conj(wide(blocked[l + i * lda])) * wide(blocked[l + j * lda]);
      orth = std::max(orth, std::abs(s - zd(i == j ? 1 : 0)));
    }
  EXPECT_LT(orth, 1e-5);
}

// The blocked reduction of A against B = U^H U (L L^H), checked in double:
// itype 1 by U^H C U = A (L C L^H = A), itypes 2 and 3 by C = U A U^H
// (L^H A L).
TYPED_TEST(Reduce, BlockedGeneralizedReduction) {
  using T = TypeParam;
  std::mt19937 gen(5);
  const int n = 150, ld = n + 3;
  for (int itype = 1; itype <= 3; ++itype) {
    for (Uplo uplo : {Uplo::kUpper, Uplo::kLower}) {
      const bool upper = uplo == Uplo::kUpper;
      // A Hermitian, the factor triangular with a real diagonal in [1, 2].
      std::vector<zd> af(n * n), f(n * n);
      std::vector<T> a(static_cast<std::size_t>(ld) * n), b(static_cast<std::size_t>(ld) * n);
      for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i) {
          T x = draw<T>(gen);
          if (i == j) x = T(std::real(x));
          af[i + j * n] = wide(x);
          af[j + i * n] = std::conj(wide(x));
          const T y = i == j ? T(1.5f + 0.5f * std::real(draw<T>(gen))) : T(0.1f) * draw<T>(gen);
          // f holds the upper factor U (upper) or L^H (lower): op(B's factor).
          f[i + j * n] = wide(y);
        }
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
          const bool stored = upper ? i <= j : i >= j;
          if (!stored) continue;
          a[i + j * ld] = narrow<T>(af[i + j * n]);
          // B's factor: U itself, or L = U^H stored below.
          b[i + j * ld] = narrow<T>(upper ? f[i + j * n] : std::conj(f[j + i * n]));
        }
      lp::sygst(itype, uplo, n, a.data(), ld, b.data(), ld);
      // C in full from the stored triangle.
      std::vector<zd> c(n * n);
      for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
          const bool stored = upper ? i <= j : i >= j;
          c[i + j * n] = stored ? wide(a[i + j * ld]) : std::conj(wide(a[j + i * ld]));
        }
      // With W = U (upper) or L^H (lower) as f: itype 1 has W^H C W = A;
      // itypes 2 and 3 have C = W A W^H.
      const std::vector<zd> &x = itype == 1 ? c : af;
      std::vector<zd> t(n * n, 0), r(n * n, 0);
      for (int j = 0; j < n; ++j)  // t = x W (itype 1) or x W^H
        for (int l = 0; l < n; ++l) {
          const zd w = itype == 1 ? f[l + j * n] : std::conj(f[j + l * n]);
          if (w == zd(0)) continue;
          for (int i = 0; i < n; ++i) t[i + j * n] += x[i + l * n] * w;
        }
      for (int j = 0; j < n; ++j)  // r = W^H t (itype 1) or W t
        for (int l = 0; l < n; ++l) {
          const zd tl = t[l + j * n];
          for (int i = 0; i < n; ++i) {
            const zd w = itype == 1 ? std::conj(f[l + i * n]) : f[i + l * n];
            r[i + j * n] += w * tl;
          }
        }
      const std::vector<zd> &want = itype == 1 ? af : c;
      double err = 0, scale = 0;
      for (int i = 0; i < n * n; ++i) {
        err = std::max(err, std::abs(r[i] - want[i]));
        scale = std::max(scale, std::abs(want[i]));
      }
      EXPECT_LT(err, 1e-5 * n * scale) << "itype " << itype << (upper ? " upper" : " lower");
    }
  }
}

// Updating the identity gives the Q that forming it gives, and the same
// tridiagonal.
TYPED_TEST(Reduce, BandReductionUpdateMatchesFormed) {
  using T = TypeParam;
  using R = float;
  std::mt19937 gen(9);
  const int n = 40;
  for (int kd : {2, 5}) {
    for (Uplo uplo : {Uplo::kUpper, Uplo::kLower}) {
      const int ldab = kd + 2;
      std::vector<T> ab(static_cast<std::size_t>(ldab) * n);
      for (T &x : ab) x = draw<T>(gen);
      std::vector<T> ab2 = ab, q1(n * n), q2(n * n, T(0)), work(n);
      for (int i = 0; i < n; ++i) q2[i + i * n] = T(1);
      std::vector<R> d1(n), e1(n - 1), d2(n), e2(n - 1);
      lp::sbtrd(CompQ::kInitial, uplo, n, kd, ab.data(), ldab, d1.data(), e1.data(), q1.data(), n,
                work.data());
      lp::sbtrd(CompQ::kUpdate, uplo, n, kd, ab2.data(), ldab, d2.data(), e2.data(), q2.data(), n,
                work.data());
      EXPECT_EQ(d1, d2);
      EXPECT_EQ(e1, e2);
      int differ = 0;
      for (int i = 0; i < n * n; ++i) differ += q1[i] != q2[i];
      EXPECT_EQ(differ, 0) << "kd " << kd;
    }
  }
}

}  // namespace
