// The level-3 routines beside GEMM through the exported names of the shared
// library: each against the exported GEMM with distinct leading dimensions
// (so that a miswired argument shows), the triangular multiply and solve
// undoing each other, the double-precision solves really in double
// precision, and the lower-case double names bound to the single-precision
// entries.
#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <random>
#include <vector>

#include "orb.h"

namespace {

using c8 = std::complex<float>;
using c16 = std::complex<double>;

// Pointers as the header declares them.
float *p(float *x) {
  return x;
}
const float *p(const float *x) {
  return x;
}
orb_complex8 *p(c8 *x) {
  return reinterpret_cast<orb_complex8 *>(x);
}
const orb_complex8 *p(const c8 *x) {
  return reinterpret_cast<const orb_complex8 *>(x);
}
orb_complex16 *p(c16 *x) {
  return reinterpret_cast<orb_complex16 *>(x);
}
const orb_complex16 *p(const c16 *x) {
  return reinterpret_cast<const orb_complex16 *>(x);
}

template <class T>
std::vector<T> random(size_t count, unsigned seed) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<float> d(-1, 1);
  std::vector<T> v(count);
  for (auto &x : v) {
    const float re = d(rng);
    if constexpr (std::is_floating_point_v<T>)
      x = re;
    else
      x = T(re, d(rng));
  }
  return v;
}

template <class T>
T value(float re, float im) {
  if constexpr (std::is_floating_point_v<T>)
    return re;
  else
    return T(re, im);
}

template <class T>
T conj_of(T x) {
  if constexpr (std::is_floating_point_v<T>)
    return x;
  else
    return std::conj(x);
}

// The largest difference over an n-by-n block with leading dimension ld, only
// its upper or lower triangle when `tri` is 'U' or 'L'.
template <class T>
double diff(const std::vector<T> &x, const std::vector<T> &y, int m, int n, int ld,
            char tri = 'A') {
  double d = 0;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < m; ++i)
      if (tri == 'A' || (tri == 'U' ? i <= j : i >= j))
        d = std::max(d, double(std::abs(x[i + size_t(j) * ld] - y[i + size_t(j) * ld])));
  return d;
}

constexpr int M = 5, N = 4, K = 3, LDA = 7, LDB = 6, LDC = 8;

// ssymm, csymm, chemm against GEMM with the whole symmetric (Hermitian) A.
template <class T, class Symm, class Gemm>
void symm_matches_gemm(Symm symm, Gemm gemm, bool herm) {
  for (char side : {'L', 'R'}) {
    const int na = side == 'L' ? M : N;
    auto a = random<T>(LDA * na, 1);
    for (int j = 0; j < na; ++j) {
      for (int i = 0; i < j; ++i) a[i + LDA * j] = herm ? conj_of(a[j + LDA * i]) : a[j + LDA * i];
      if (herm) a[j + LDA * j] = std::real(a[j + LDA * j]);
    }
    const auto b = random<T>(LDB * N, 2);
    auto c1 = random<T>(LDC * N, 3), c2 = c1;
    const T alpha = value<T>(0.5f, -1), beta = value<T>(-1.5f, 0.25f);
    symm(&side, side == 'L' ? "U" : "L", &M, &N, p(&alpha), p(a.data()), &LDA, p(b.data()), &LDB,
         p(&beta), p(c1.data()), &LDC, 1, 1);
    const bool left = side == 'L';
    gemm("N", "N", &M, &N, left ? &M : &N, p(&alpha), p(left ? a.data() : b.data()),
         left ? &LDA : &LDB, p(left ? b.data() : a.data()), left ? &LDB : &LDA, p(&beta),
         p(c2.data()), &LDC, 1, 1);
    EXPECT_LT(diff(c1, c2, M, N, LDC), 1e-5) << side << herm;
  }
}

TEST(Level3Abi, SymmetricMultipliesMatchGemm) {
  symm_matches_gemm<float>(ssymm, sgemm, false);
  symm_matches_gemm<c8>(csymm, cgemm, false);
  symm_matches_gemm<c8>(chemm, cgemm, true);
}

// The rank-k (Two false) and rank-2k updates against GEMM on their triangle;
// Herm: the Hermitian forms, whose beta (and alpha of a rank-k) are real.
template <class T, bool Two, bool Herm, class Update, class Gemm>
void updates_match_gemm(Update update, Gemm gemm, const char *t, const char *uplo) {
  const auto a = random<T>(LDA * N, 4), b = random<T>(LDB * N, 5), c0 = random<T>(LDC * N, 6);
  const float real_alpha = 0.75f, real_beta = 2;
  const T alpha = Herm && !Two ? T(real_alpha) : value<T>(0.75f, -0.5f), beta = T(real_beta);
  auto c1 = c0, c2 = c0;
  if constexpr (Two && Herm)
    update(uplo, t, &N, &K, p(&alpha), p(a.data()), &LDA, p(b.data()), &LDB, &real_beta,
           p(c1.data()), &LDC, 1, 1);
  else if constexpr (Two)
    update(uplo, t, &N, &K, p(&alpha), p(a.data()), &LDA, p(b.data()), &LDB, p(&beta), p(c1.data()),
           &LDC, 1, 1);
  else if constexpr (Herm)
    update(uplo, t, &N, &K, &real_alpha, p(a.data()), &LDA, &real_beta, p(c1.data()), &LDC, 1, 1);
  else
    update(uplo, t, &N, &K, p(&alpha), p(a.data()), &LDA, p(&beta), p(c1.data()), &LDC, 1, 1);
  if (Herm)
    for (int j = 0; j < N; ++j) c2[j + LDC * j] = std::real(c2[j + LDC * j]);
  const bool notrans = *t == 'N';
  const char *ta = notrans ? "N" : t, *tb = notrans ? (Herm ? "C" : "T") : "N";
  const T one = T(1), alpha2 = Herm ? conj_of(alpha) : alpha;
  const std::vector<T> &second = Two ? b : a;
  gemm(ta, tb, &N, &N, &K, p(&alpha), p(a.data()), &LDA, p(second.data()), Two ? &LDB : &LDA,
       p(&beta), p(c2.data()), &LDC, 1, 1);
  if (Two)
    gemm(ta, tb, &N, &N, &K, p(&alpha2), p(b.data()), &LDB, p(a.data()), &LDA, p(&one),
         p(c2.data()), &LDC, 1, 1);
  EXPECT_LT(diff(c1, c2, N, N, LDC, *uplo), 1e-5) << t << uplo << Two;
  const int corner = *uplo == 'U' ? N - 1 : LDC * (N - 1);  // in the other triangle
  EXPECT_EQ(c1[corner], c0[corner]);
}

TEST(Level3Abi, RankUpdatesMatchGemm) {
  updates_match_gemm<float, false, false>(ssyrk, sgemm, "T", "L");
  updates_match_gemm<float, true, false>(ssyr2k, sgemm, "N", "U");
  updates_match_gemm<c8, false, false>(csyrk, cgemm, "T", "U");
  updates_match_gemm<c8, true, false>(csyr2k, cgemm, "N", "L");
  updates_match_gemm<c8, false, true>(cherk, cgemm, "N", "L");
  updates_match_gemm<c8, true, true>(cher2k, cgemm, "C", "U");
}

// B -> alpha op(A) B (B op(A)) -> solved back with 1/alpha gives B again;
// dtrsm and ztrsm give what strsm and ctrsm give.
TEST(Level3Abi, TriangularMultiplyAndSolveUndoEachOther) {
  auto a = random<float>(LDA * M, 1);
  for (int j = 0; j < M; ++j) a[j + LDA * j] = 2;
  const auto b0 = random<float>(LDB * N, 2);
  const float alpha = 4, inverse = 0.25f;
  auto b = b0;
  strmm("L", "U", "T", "N", &M, &N, &alpha, a.data(), &LDA, b.data(), &LDB, 1, 1, 1, 1);
  auto b2 = b;
  strsm("L", "U", "T", "N", &M, &N, &inverse, a.data(), &LDA, b.data(), &LDB, 1, 1, 1, 1);
  EXPECT_LT(diff(b, b0, M, N, LDB), 1e-5);
  dtrsm("L", "U", "T", "N", &M, &N, &inverse, a.data(), &LDA, b2.data(), &LDB, 1, 1, 1, 1);
  EXPECT_EQ(b2, b);

  const auto za = random<c8>(LDA * N, 3), zb0 = random<c8>(LDB * N, 4);
  auto zb = zb0;
  const c8 zalpha(0, 2), zinverse(0, -0.5f);
  ctrmm("R", "L", "C", "U", &M, &N, p(&zalpha), p(za.data()), &LDA, p(zb.data()), &LDB, 1, 1, 1, 1);
  auto zb2 = zb;
  ctrsm("R", "L", "C", "U", &M, &N, p(&zinverse), p(za.data()), &LDA, p(zb.data()), &LDB, 1, 1, 1,
        1);
  EXPECT_LT(diff(zb, zb0, M, N, LDB), 1e-5);
  ztrsm("R", "L", "C", "U", &M, &N, p(&zinverse), p(za.data()), &LDA, p(zb2.data()), &LDB, 1, 1, 1,
        1);
  EXPECT_EQ(zb2, zb);
}

// DTRSM and ZTRSM solve to double precision: A X = B with X known.
TEST(Level3Abi, DoubleSolvesInDoublePrecision) {
  const int n = 40, lda = 41, nrhs = 3;
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> d(-1, 1);
  std::vector<double> a(lda * n), x(n * nrhs), b(n * nrhs, 0);
  std::vector<c16> za(lda * n), zx(n * nrhs), zb(n * nrhs, 0);
  for (int i = 0; i < lda * n; ++i) a[i] = d(rng) / n, za[i] = c16(d(rng), d(rng)) / double(n);
  for (int j = 0; j < n; ++j) a[j + lda * j] = 1 + d(rng) * d(rng), za[j + lda * j] = c16(1, 0.5);
  for (int i = 0; i < n * nrhs; ++i) x[i] = d(rng), zx[i] = c16(d(rng), d(rng));
  for (int j = 0; j < nrhs; ++j)  // B = A X, A lower triangular
    for (int i = 0; i < n; ++i)
      for (int k = 0; k <= i; ++k) {
        b[i + n * j] += a[i + lda * k] * x[k + n * j];
        zb[i + n * j] += za[i + lda * k] * zx[k + n * j];
      }
  const double one = 1;
  const c16 zone(1);
  DTRSM("L", "L", "N", "N", &n, &nrhs, &one, a.data(), &lda, b.data(), &n, 1, 1, 1, 1);
  ZTRSM("L", "L", "N", "N", &n, &nrhs, p(&zone), p(za.data()), &lda, p(zb.data()), &n, 1, 1, 1, 1);
  EXPECT_LT(diff(b, x, n, nrhs, n), 1e-12);
  EXPECT_LT(diff(zb, zx, n, nrhs, n), 1e-12);
}

// A name bound to another entry reports with that entry's name.
TEST(Level3Abi, AliasesReportTheirEntrysName) {
  float a[4] = {1, 0, 0, 1}, b[4] = {1, 2, 3, 4};
  orb_complex8 za[4] = {}, zb[4] = {};
  const int two = 2, one_ld = 1;
  const float one = 1;
  const orb_complex8 zone = {1, 0};
  auto report = [](auto call) {
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
  };
  const std::string msg = "ORB ERROR: Parameter ";
  EXPECT_EQ(
      report([&] { dtrsm("X", "U", "N", "N", &two, &two, &one, a, &two, b, &two, 1, 1, 1, 1); }),
      msg + "1 was incorrect on entry to STRSM \n");
  EXPECT_EQ(report([&] { dsyrk("U", "N", &two, &two, &one, a, &one_ld, &one, b, &two, 1, 1); }),
            msg + "7 was incorrect on entry to SSYRK \n");
  EXPECT_EQ(report([&] { zherk("U", "T", &two, &two, &one, za, &two, &one, zb, &two, 1, 1); }),
            msg + "2 was incorrect on entry to CHERK \n");
  EXPECT_EQ(report([&] {
              ztrsm("L", "U", "N", "N", &two, &two, &zone, za, &two, zb, &one_ld, 1, 1, 1, 1);
            }),
            msg + "11 was incorrect on entry to CTRSM \n");
  EXPECT_EQ(b[1], 2.0f);  // untouched
}

}  // namespace
