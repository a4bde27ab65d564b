// The Schur form's eigenvectors and Sylvester equation at orders the
// reference testers do not reach (theirs stay below 20): eigenvectors of a
// quasi-triangular matrix with many 2x2 blocks, the back-transformed vectors
// (HOWMNY = 'B', one triangular product) against the triangle's own vectors
// multiplied out; the Sylvester solve and the quasi-triangular solve of the
// condition estimator (laqtr, reached by the testers only through STRSNA)
// scaling their solutions away from overflow; and the eigenvector condition
// numbers against the separation computed densely.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "lapack/laqtr.h"
#include "lapack/nonsym.h"
#include "orb.h"
#include "support/matrix.h"

namespace {

using orb::test::Random;
using c8 = std::complex<float>;
using cd = std::complex<double>;

constexpr double kEps = std::numeric_limits<float>::epsilon();

// A real quasi-triangular Schur form: 2x2 blocks [a b; -c a] (b c > 0) on
// every other stretch of the diagonal, 1x1 blocks between them.
std::vector<float> quasi_triangular(int n, Random &rng) {
  std::vector<float> t(std::size_t(n) * n, 0.0f);
  auto at = [&](int i, int j) -> float & { return t[i + std::size_t(j) * n]; };
  for (int j = 0; j < n; ++j)
    for (int i = 0; i <= j; ++i) at(i, j) = float(rng.uniform());
  for (int j = 0; j + 1 < n;) {
    if (j % 5 != 4) {
      at(j + 1, j + 1) = at(j, j);
      at(j, j + 1) = 0.5f + std::abs(float(rng.uniform()));
      at(j + 1, j) = -(0.25f + std::abs(float(rng.uniform())));
      j += 2;
    } else {
      j += 1;
    }
  }
  return t;
}

// The eigenvectors of a real Schur form as complex columns: a pair's
// columns j, j+1 are re +- i im of the eigenvalues w_j, w_{j+1}.
std::vector<cd> as_complex(const std::vector<float> &t, int n, const float *v, int ldv,
                           std::vector<cd> &w) {
  std::vector<cd> z(std::size_t(n) * n);
  w.assign(n, 0.0);
  for (int j = 0; j < n; ++j) {
    const bool pair = j + 1 < n && t[j + 1 + std::size_t(j) * n] != 0;
    if (!pair) {
      w[j] = t[j + std::size_t(j) * n];
      for (int i = 0; i < n; ++i) z[i + std::size_t(j) * n] = v[i + std::size_t(j) * ldv];
      continue;
    }
    const double a = t[j + std::size_t(j) * n];
    const double im = std::sqrt(std::abs(double(t[j + std::size_t(j + 1) * n]))) *
                      std::sqrt(std::abs(double(t[j + 1 + std::size_t(j) * n])));
    w[j] = cd(a, im);
    w[j + 1] = cd(a, -im);
    for (int i = 0; i < n; ++i) {
      const cd x(v[i + std::size_t(j) * ldv], v[i + std::size_t(j + 1) * ldv]);
      z[i + std::size_t(j) * n] = x;
      z[i + std::size_t(j + 1) * n] = std::conj(x);
    }
    ++j;
  }
  return z;
}

// max_j ||op(T) z_j - w_j z_j||_1 / (n eps ||T||_1 ||z_j||_1); op(T) = T^H
// (left vectors, the eigenvalue conjugated) when `left`.
template <class S>
double residual(const std::vector<S> &t, int n, const std::vector<cd> &z, const std::vector<cd> &w,
                bool left) {
  double tnorm = 0;
  for (int j = 0; j < n; ++j) {
    double s = 0;
    for (int i = 0; i < n; ++i) s += std::abs(cd(t[i + std::size_t(j) * n]));
    tnorm = std::max(tnorm, s);
  }
  double worst = 0;
  for (int k = 0; k < n; ++k) {
    double r = 0, zn = 0;
    for (int i = 0; i < n; ++i) {
      cd s = 0;
      for (int j = 0; j < n; ++j) {
        const cd tij =
            left ? std::conj(cd(t[j + std::size_t(i) * n])) : cd(t[i + std::size_t(j) * n]);
        s += tij * z[j + std::size_t(k) * n];
      }
      s -= (left ? std::conj(w[k]) : w[k]) * z[i + std::size_t(k) * n];
      r += std::abs(s);
      zn += std::abs(z[i + std::size_t(k) * n]);
    }
    worst = std::max(worst, r / (n * kEps * tnorm * zn));
  }
  return worst;
}

// Largest |re| + |im| of a column (the routines' normalization makes it 1).
template <class S>
double largest(const S *x, int n) {
  double m = 0;
  for (int i = 0; i < n; ++i)
    m = std::max(m, std::abs(double(std::real(x[i]))) + std::abs(double(std::imag(x[i]))));
  return m;
}

// Q times the triangle's vectors, normalized as the routine normalizes, in
// double; the largest difference from the back-transformed vectors.
template <class S>
double back_transform_error(const std::vector<S> &q, const std::vector<S> &v,
                            const std::vector<S> &vb, int n, const std::vector<float> *real_t) {
  double worst = 0;
  std::vector<cd> col(n), col2(n);
  for (int j = 0; j < n; ++j) {
    const bool pair = real_t && j + 1 < n && (*real_t)[j + 1 + std::size_t(j) * n] != 0;
    const int width = pair ? 2 : 1;
    double big = 0;
    std::vector<std::vector<double>> prod(width, std::vector<double>(2 * n, 0.0));
    std::vector<cd> y(std::size_t(width) * n);
    for (int c = 0; c < width; ++c)
      for (int i = 0; i < n; ++i) {
        cd s = 0;
        for (int k = 0; k < n; ++k)
          s += cd(q[i + std::size_t(k) * n]) * cd(v[k + std::size_t(j + c) * n]);
        y[i + std::size_t(c) * n] = s;
      }
    for (int i = 0; i < n; ++i) {
      double e = 0;
      for (int c = 0; c < width; ++c)
        e +=
            std::abs(y[i + std::size_t(c) * n].real()) + std::abs(y[i + std::size_t(c) * n].imag());
      big = std::max(big, e);
    }
    for (int c = 0; c < width; ++c)
      for (int i = 0; i < n; ++i)
        worst = std::max(
            worst, std::abs(y[i + std::size_t(c) * n] / big - cd(vb[i + std::size_t(j + c) * n])));
    j += width - 1;
  }
  return worst;
}

TEST(Trevc, RealQuasiTriangularOrder300) {
  const int n = 300;
  Random rng(11);
  const std::vector<float> t = quasi_triangular(n, rng);
  std::vector<float> vl(std::size_t(n) * n), vr(std::size_t(n) * n), work(3 * n);
  int m = 0, info = -1, mm = n;
  strevc("B", "A", nullptr, &n, t.data(), &n, vl.data(), &n, vr.data(), &n, &mm, &m, work.data(),
         &info, 1, 1);
  ASSERT_EQ(info, 0);
  ASSERT_EQ(m, n);
  std::vector<cd> w;
  const std::vector<cd> zr = as_complex(t, n, vr.data(), n, w);
  EXPECT_LT(residual(t, n, zr, w, false), 20.0);
  const std::vector<cd> zl = as_complex(t, n, vl.data(), n, w);
  EXPECT_LT(residual(t, n, zl, w, true), 20.0);
  for (int j = 0; j < n; ++j) {
    const bool pair = j + 1 < n && t[j + 1 + std::size_t(j) * n] != 0;
    double big = 0;
    for (int i = 0; i < n; ++i)
      big = std::max(big, std::abs(double(vr[i + std::size_t(j) * n])) +
                              (pair ? std::abs(double(vr[i + std::size_t(j + 1) * n])) : 0.0));
    EXPECT_NEAR(big, 1.0, 1e-6) << "column " << j;
    if (pair) ++j;
  }

  // HOWMNY = 'B' with a general Q against Q times the vectors above.
  std::vector<float> q(std::size_t(n) * n);
  for (float &x : q) x = float(rng.uniform());
  std::vector<float> bl = q, br = q;
  strevc("B", "B", nullptr, &n, t.data(), &n, bl.data(), &n, br.data(), &n, &mm, &m, work.data(),
         &info, 1, 1);
  ASSERT_EQ(info, 0);
  EXPECT_LT(back_transform_error(q, vr, br, n, &t), 1e3 * kEps);
  EXPECT_LT(back_transform_error(q, vl, bl, n, &t), 1e3 * kEps);
}

TEST(Trevc, RealSelectedPairsCountTwice) {
  const int n = 40;
  Random rng(5);
  const std::vector<float> t = quasi_triangular(n, rng);  // pair at columns 0, 1
  std::vector<int> select(n, 0);
  select[1] = 1;  // the second column of a pair selects the pair
  select[4] = 1;  // a 1x1 block
  std::vector<float> vr(std::size_t(n) * 3), work(3 * n), all(std::size_t(n) * n);
  int m = 0, info = -1, mm = 3;
  strevc("R", "S", select.data(), &n, t.data(), &n, nullptr, &n, vr.data(), &n, &mm, &m,
         work.data(), &info, 1, 1);
  ASSERT_EQ(info, 0);
  EXPECT_EQ(m, 3);
  EXPECT_EQ(select[0], 1);
  EXPECT_EQ(select[1], 0);
  int mall = 0, nn = n;
  strevc("R", "A", nullptr, &n, t.data(), &n, nullptr, &n, all.data(), &n, &nn, &mall, work.data(),
         &info, 1, 1);
  for (int i = 0; i < n; ++i) {
    EXPECT_EQ(vr[i], all[i]);
    EXPECT_EQ(vr[i + n], all[i + n]);
    EXPECT_EQ(vr[i + 2 * n], all[i + 4 * std::size_t(n)]);
  }
}

TEST(Trevc, ComplexTriangularOrder250) {
  const int n = 250;
  Random rng(3);
  std::vector<c8> t(std::size_t(n) * n, c8(0));
  for (int j = 0; j < n; ++j)
    for (int i = 0; i <= j; ++i) t[i + std::size_t(j) * n] = rng.value<c8>();
  // Close eigenvalues, so the shifted solves meet small pivots.
  for (int j = 1; j < n; j += 7)
    t[j + std::size_t(j) * n] = t[(j - 1) + std::size_t(j - 1) * n] + c8(1e-6f, 0);
  std::vector<c8> vl(std::size_t(n) * n), vr(std::size_t(n) * n), work(2 * n);
  std::vector<float> rwork(n);
  int m = 0, info = -1, mm = n;
  const std::vector<c8> t0 = t;
  ctrevc("B", "A", nullptr, &n, reinterpret_cast<orb_complex8 *>(t.data()), &n,
         reinterpret_cast<orb_complex8 *>(vl.data()), &n,
         reinterpret_cast<orb_complex8 *>(vr.data()), &n, &mm, &m,
         reinterpret_cast<orb_complex8 *>(work.data()), rwork.data(), &info, 1, 1);
  ASSERT_EQ(info, 0);
  EXPECT_EQ(t, t0);  // the diagonal is restored
  std::vector<cd> w(n), zr(std::size_t(n) * n), zl(std::size_t(n) * n);
  for (int j = 0; j < n; ++j) w[j] = cd(t[j + std::size_t(j) * n]);
  for (std::size_t k = 0; k < zr.size(); ++k) zr[k] = cd(vr[k]), zl[k] = cd(vl[k]);
  EXPECT_LT(residual(t, n, zr, w, false), 20.0);
  EXPECT_LT(residual(t, n, zl, w, true), 20.0);
  for (int j = 0; j < n; ++j) EXPECT_NEAR(largest(&vr[std::size_t(j) * n], n), 1.0, 1e-6);

  std::vector<c8> q(std::size_t(n) * n);
  for (c8 &x : q) x = rng.value<c8>();
  std::vector<c8> bl = q, br = q;
  ctrevc("B", "B", nullptr, &n, reinterpret_cast<orb_complex8 *>(t.data()), &n,
         reinterpret_cast<orb_complex8 *>(bl.data()), &n,
         reinterpret_cast<orb_complex8 *>(br.data()), &n, &mm, &m,
         reinterpret_cast<orb_complex8 *>(work.data()), rwork.data(), &info, 1, 1);
  ASSERT_EQ(info, 0);
  EXPECT_LT(back_transform_error<c8>(q, vr, br, n, nullptr), 1e3 * kEps);
  EXPECT_LT(back_transform_error<c8>(q, vl, bl, n, nullptr), 1e3 * kEps);
}

// A X + X B = scale C whose solution would overflow: the routine scales it
// down (scale < 1) and the scaled residual stays small.
TEST(Trsyl, ScalesAwayFromOverflow) {
  const int m = 30, n = 20;
  Random rng(7);
  std::vector<float> a(std::size_t(m) * m, 0.0f), b(std::size_t(n) * n, 0.0f),
      c(std::size_t(m) * n);
  for (int j = 0; j < m; ++j)
    for (int i = 0; i <= j; ++i) a[i + std::size_t(j) * m] = float(rng.uniform());
  for (int j = 0; j < n; ++j)
    for (int i = 0; i <= j; ++i) b[i + std::size_t(j) * n] = float(rng.uniform());
  // A 2x2 block in each, and A(k,k) + B(l,l) tiny for one (k, l).
  a[3 + std::size_t(2) * m] = -0.75f;
  b[6 + std::size_t(5) * n] = -0.5f;
  a[10 + std::size_t(10) * m] = 0.25f;
  b[0] = -0.25f + 1e-30f;
  for (float &x : c) x = 1e37f * float(rng.uniform());
  const std::vector<float> c0 = c;
  float scale = 0;
  orb::lapack::trsyl<float>(orb::Op::kNone, orb::Op::kNone, 1, m, n, a.data(), m, b.data(), n,
                            c.data(), m, &scale);
  EXPECT_LT(scale, 1.0f);
  EXPECT_GT(scale, 0.0f);
  double xmax = 0, rmax = 0, cmax = 0;
  for (float x : c) {
    ASSERT_TRUE(std::isfinite(x));
    xmax = std::max(xmax, double(std::abs(x)));
  }
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i) {
      double s = -double(scale) * c0[i + std::size_t(j) * m];
      for (int k = 0; k < m; ++k)
        s += double(a[i + std::size_t(k) * m]) * c[k + std::size_t(j) * m];
      for (int k = 0; k < n; ++k)
        s += double(c[i + std::size_t(k) * m]) * b[k + std::size_t(j) * n];
      rmax = std::max(rmax, std::abs(s));
      cmax = std::max(cmax, double(scale) * std::abs(c0[i + std::size_t(j) * m]));
    }
  // Relative to the solution's size (the residual test of the testers).
  EXPECT_LT(rmax / (xmax * (m + n) * kEps), 50.0);
  (void)cmax;
}

// ---- the quasi-triangular solve (laqtr) ------------------------------------------------

// The dense complex matrix op(T + i B), B with b as its first row and w on
// the rest of its diagonal (B = 0 for the real system); the transposed op of
// the complex system is the conjugate transpose (the transpose of its real
// form [T -B; B T]).
std::vector<cd> shifted_operator(const std::vector<float> &t, int n, const std::vector<float> &b,
                                 float w, bool real_system, bool trans) {
  std::vector<cd> m(std::size_t(n) * n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      cd e = t[i + std::size_t(j) * n];
      if (!real_system) {
        if (i == 0) e += cd(0, b[j]);
        if (i == j && i > 0) e += cd(0, w);
      }
      m[trans ? j + std::size_t(i) * n : i + std::size_t(j) * n] = trans ? std::conj(e) : e;
    }
  return m;
}

// |op(T + iB) z - scale rhs|_inf / (|op(T + iB)|_inf |z|_inf n eps), with
// z = x (real) or x(0:n) + i x(n:2n).
double laqtr_residual(const std::vector<cd> &m, int n, const std::vector<float> &x,
                      const std::vector<float> &rhs, float scale, bool real_system) {
  auto elem = [&](const std::vector<float> &v, int i) {
    return real_system ? cd(v[i]) : cd(v[i], v[n + i]);
  };
  double rmax = 0, mnorm = 0, xmax = 0;
  for (int i = 0; i < n; ++i) {
    cd r = -double(scale) * elem(rhs, i);
    double row = 0;
    for (int j = 0; j < n; ++j) {
      r += m[i + std::size_t(j) * n] * elem(x, j);
      row += std::abs(m[i + std::size_t(j) * n]);
    }
    rmax = std::max(rmax, std::abs(r));
    mnorm = std::max(mnorm, row);
    xmax = std::max(xmax, std::abs(elem(x, i)));
  }
  return rmax / (std::max(mnorm * xmax, 1e-300) * n * kEps);
}

// A quasi-triangular T of order n whose first block is 1x1 (the complex
// system needs it): the trailing part of a larger form.
std::vector<float> quasi_triangular_from_real(int n, Random &rng) {
  const int skip = 4;  // quasi_triangular puts a 1x1 block at 4
  const int big = n + skip;
  const std::vector<float> t = quasi_triangular(big, rng);
  std::vector<float> s(std::size_t(n) * n);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i)
      s[i + std::size_t(j) * n] = t[skip + i + std::size_t(skip + j) * big];
  return s;
}

// Both substitutions (T and T^T), real and complex-shifted, at an order with
// many 2x2 blocks: the residual of the solution.
TEST(Laqtr, SolvesAllFourSystems) {
  const int n = 57;
  Random rng(11);
  const std::vector<float> t = quasi_triangular_from_real(n, rng);
  ASSERT_EQ(t[1], 0.0f);
  std::vector<float> b(n), work(n);
  for (float &v : b) v = float(rng.uniform());
  const float w = 0.8f;
  for (bool real_system : {true, false})
    for (bool trans : {false, true}) {
      SCOPED_TRACE(testing::Message() << "real " << real_system << " trans " << trans);
      std::vector<float> rhs(2 * std::size_t(n));
      for (float &v : rhs) v = float(rng.uniform());
      std::vector<float> x = rhs;
      float scale = 0;
      const int info = orb::lapack::laqtr<float>(trans, real_system, n, t.data(), n, b.data(), w,
                                                 &scale, x.data(), work.data());
      EXPECT_EQ(info, 0);
      EXPECT_EQ(scale, 1.0f);
      const std::vector<cd> m = shifted_operator(t, n, b, w, real_system, trans);
      EXPECT_LT(laqtr_residual(m, n, x, rhs, scale, real_system), 30.0);
    }
}

// A tiny T (every element near 1e-25, so no pivot is below the precision
// times the largest) under large right-hand sides: the solution would
// overflow; it is scaled down (0 < scale < 1), stays finite, and the scaled
// system holds. An exactly zero pivot is raised (return 1).
TEST(Laqtr, ScalesAwayFromOverflow) {
  const int n = 40;
  Random rng(5);
  const std::vector<float> t0 = quasi_triangular_from_real(n, rng);
  std::vector<float> t = t0;
  auto at = [&](int i, int j) -> float & { return t[i + std::size_t(j) * n]; };
  for (float &v : t) v *= 1e-25f;
  std::vector<float> b(n), work(n);
  for (float &v : b) v = 1e-25f * float(rng.uniform());
  for (bool real_system : {true, false})
    for (bool trans : {false, true}) {
      SCOPED_TRACE(testing::Message() << "real " << real_system << " trans " << trans);
      std::vector<float> rhs(2 * std::size_t(n));
      for (float &v : rhs) v = 1e20f * float(rng.uniform());
      std::vector<float> x = rhs;
      float scale = 0;
      orb::lapack::laqtr<float>(trans, real_system, n, t.data(), n, b.data(), 1e-25f, &scale,
                                x.data(), work.data());
      EXPECT_GT(scale, 0.0f);
      EXPECT_LT(scale, 1.0f);
      for (int i = 0; i < (real_system ? n : 2 * n); ++i) ASSERT_TRUE(std::isfinite(x[i])) << i;
      const std::vector<cd> m = shifted_operator(t, n, b, 1e-25f, real_system, trans);
      EXPECT_LT(laqtr_residual(m, n, x, rhs, scale, real_system), 30.0);
    }
  // Elements near 1e28 under right-hand sides near 1e30: no pivot is small,
  // yet every solved element is large and so are the column norms it
  // multiplies; the updates and inner products must be kept from overflow.
  t = t0;
  for (float &v : t) v *= 1e28f;
  for (bool real_system : {true, false})
    for (bool trans : {false, true}) {
      SCOPED_TRACE(testing::Message() << "large, real " << real_system << " trans " << trans);
      std::vector<float> rhs(2 * std::size_t(n));
      for (float &v : rhs) v = 1e30f * float(rng.uniform());
      std::vector<float> x = rhs;
      float scale = 0;
      orb::lapack::laqtr<float>(trans, real_system, n, t.data(), n, b.data(), 1e28f, &scale,
                                x.data(), work.data());
      EXPECT_GT(scale, 0.0f);
      EXPECT_LT(scale, 1.0f);
      for (int i = 0; i < (real_system ? n : 2 * n); ++i) ASSERT_TRUE(std::isfinite(x[i])) << i;
      const std::vector<cd> m = shifted_operator(t, n, b, 1e28f, real_system, trans);
      EXPECT_LT(laqtr_residual(m, n, x, rhs, scale, real_system), 30.0);
    }
  t = t0;
  ASSERT_EQ(at(6, 5), 0.0f);  // a 1x1 block at 5
  at(5, 5) = 0;
  std::vector<float> x(2 * std::size_t(n), 1.0f);
  float scale = 0;
  EXPECT_EQ(orb::lapack::laqtr<float>(false, true, n, t.data(), n, b.data(), 0.0f, &scale, x.data(),
                                      work.data()),
            1);
  for (int i = 0; i < n; ++i) ASSERT_TRUE(std::isfinite(x[i])) << i;
}

// ---- eigenvector condition numbers (trsna) ---------------------------------------------

// The smallest singular value of the complex m x m matrix a, by inverse
// iteration with a^H a through an LU factorization with partial pivoting.
double smallest_singular_value(std::vector<cd> a, int m) {
  auto at = [&](int i, int j) -> cd & { return a[i + std::size_t(j) * m]; };
  std::vector<int> piv(m);
  for (int k = 0; k < m; ++k) {
    int p = k;
    for (int i = k + 1; i < m; ++i)
      if (std::abs(at(i, k)) > std::abs(at(p, k))) p = i;
    piv[k] = p;
    for (int j = 0; j < m; ++j) std::swap(at(k, j), at(p, j));
    for (int i = k + 1; i < m; ++i) {
      at(i, k) /= at(k, k);
      for (int j = k + 1; j < m; ++j) at(i, j) -= at(i, k) * at(k, j);
    }
  }
  // x := a^-H x, then x := a^-1 x.
  auto solve_adjoint = [&](std::vector<cd> &x) {
    for (int i = 0; i < m; ++i) {
      for (int k = 0; k < i; ++k) x[i] -= std::conj(at(k, i)) * x[k];
      x[i] /= std::conj(at(i, i));
    }
    for (int i = m - 1; i >= 0; --i)
      for (int k = i + 1; k < m; ++k) x[i] -= std::conj(at(k, i)) * x[k];
    for (int k = m - 1; k >= 0; --k) std::swap(x[k], x[piv[k]]);
  };
  auto solve = [&](std::vector<cd> &x) {
    for (int k = 0; k < m; ++k) std::swap(x[k], x[piv[k]]);
    for (int i = 0; i < m; ++i)
      for (int k = 0; k < i; ++k) x[i] -= at(i, k) * x[k];
    for (int i = m - 1; i >= 0; --i) {
      for (int k = i + 1; k < m; ++k) x[i] -= at(i, k) * x[k];
      x[i] /= at(i, i);
    }
  };
  auto norm = [](const std::vector<cd> &x) {
    double s = 0;
    for (const cd &v : x) s += std::norm(v);
    return std::sqrt(s);
  };
  std::vector<cd> x(m, cd(1, 0.5));
  double growth = 0;
  for (int it = 0; it < 200; ++it) {
    const double before = norm(x);
    for (cd &v : x) v /= before;
    solve_adjoint(x);
    solve(x);
    growth = norm(x);
  }
  return 1 / std::sqrt(growth);
}

// sep of every eigenvalue of a quasi-triangular form with many complex pairs,
// against sigma_min(T22 - lambda I) computed densely: T22 is T compressed to
// the orthogonal complement of the right eigenvector (a Householder
// reflection's trailing columns). The estimate can only lie above
// sigma_min / sqrt(2 (n - 1)); in practice it is within a small factor of
// sigma_min, which is what this checks: a pair's operator built wrongly (its
// first diagonal element, the rotated first row) moves it by a factor 2 or
// more.
TEST(Trsna, RealSeparationAgainstSmallestSingularValue) {
  const int n = 36;
  Random rng(3);
  // Small coupling above the diagonal blocks, so that sep is set by the
  // distances between the eigenvalues (a pair's to its conjugate among them)
  // rather than by the form's departure from normality.
  std::vector<float> t = quasi_triangular(n, rng);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < j; ++i)
      if (!(j == i + 1 && t[j + std::size_t(i) * n] != 0)) t[i + std::size_t(j) * n] *= 0.02f;
  // Every other pair nearly real: its distance to its own conjugate is then
  // the smallest.
  for (int j = 0, k = 0; j + 1 < n; ++j)
    if (t[j + 1 + std::size_t(j) * n] != 0 && k++ % 2 == 0) t[j + 1 + std::size_t(j) * n] *= 1e-3f;
  std::vector<float> vr(std::size_t(n) * n), work(std::size_t(n) * (n + 6)), s(n), sep(n);
  std::vector<int> iwork(2 * n);
  int m = 0, info = -1, mm = n;
  strevc("R", "A", nullptr, &n, t.data(), &n, nullptr, &n, vr.data(), &n, &mm, &m, work.data(),
         &info, 1, 1);
  ASSERT_EQ(info, 0);
  strsna("V", "A", nullptr, &n, t.data(), &n, nullptr, &n, nullptr, &n, s.data(), sep.data(), &mm,
         &m, work.data(), &n, iwork.data(), &info, 1, 1);
  ASSERT_EQ(info, 0);
  ASSERT_EQ(m, n);
  std::vector<cd> w;
  const std::vector<cd> z = as_complex(t, n, vr.data(), n, w);
  int pairs = 0;
  for (int j = 0; j < n; ++j) {
    pairs += w[j].imag() > 0 ? 1 : 0;
    // The reflection H = I - beta v v^H with H x = alpha e1.
    std::vector<cd> v(z.begin() + std::ptrdiff_t(j) * n, z.begin() + std::ptrdiff_t(j + 1) * n);
    double xn = 0;
    for (const cd &e : v) xn += std::norm(e);
    xn = std::sqrt(xn);
    const cd phase = std::abs(v[0]) > 0 ? v[0] / std::abs(v[0]) : cd(1);
    v[0] += phase * xn;
    double vn = 0;
    for (const cd &e : v) vn += std::norm(e);
    const double beta = 2 / vn;
    // A = H (T - w I) H, by two rank-one updates.
    std::vector<cd> a(std::size_t(n) * n);
    for (int jj = 0; jj < n; ++jj)
      for (int i = 0; i < n; ++i)
        a[i + std::size_t(jj) * n] = double(t[i + std::size_t(jj) * n]) - (i == jj ? w[j] : 0.0);
    for (int jj = 0; jj < n; ++jj) {
      cd d = 0;
      for (int i = 0; i < n; ++i) d += std::conj(v[i]) * a[i + std::size_t(jj) * n];
      for (int i = 0; i < n; ++i) a[i + std::size_t(jj) * n] -= beta * v[i] * d;
    }
    for (int i = 0; i < n; ++i) {
      cd d = 0;
      for (int jj = 0; jj < n; ++jj) d += a[i + std::size_t(jj) * n] * v[jj];
      for (int jj = 0; jj < n; ++jj) a[i + std::size_t(jj) * n] -= beta * d * std::conj(v[jj]);
    }
    std::vector<cd> t22(std::size_t(n - 1) * (n - 1));
    for (int jj = 1; jj < n; ++jj)
      for (int i = 1; i < n; ++i)
        t22[i - 1 + std::size_t(jj - 1) * (n - 1)] = a[i + std::size_t(jj) * n];
    const double sigma = smallest_singular_value(t22, n - 1);
    EXPECT_GT(sep[j], 0.3 * sigma) << "eigenvalue " << j << " " << w[j];
    EXPECT_LT(sep[j], 3 * sigma) << "eigenvalue " << j << " " << w[j];
  }
  EXPECT_GT(pairs, n / 4);
}

}  // namespace
