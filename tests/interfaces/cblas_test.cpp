// cblas_ routines called row-major against the same operation called
// column-major on the transposed storage, on sizes that are neither square nor
// round, with leading dimensions larger than needed; and the parameter
// numbers reported for bad arguments.
#include <gtest/gtest.h>

#include <complex>
#include <random>
#include <string>
#include <vector>

#include "orb_cblas.h"

namespace {

using cf = std::complex<float>;

// A rows x cols matrix with its column-major and row-major storages, both
// with padding beyond the least leading dimension.
template <class T>
struct Pair {
  int rows, cols, ldc, ldr;
  std::vector<T> col, row;
  Pair(int r, int c, std::mt19937 &gen) : rows(r), cols(c), ldc(r + 3), ldr(c + 2) {
    col.assign(static_cast<size_t>(ldc) * c + 1, T(-7));
    row.assign(static_cast<size_t>(ldr) * r + 1, T(-7));
    std::uniform_real_distribution<float> u(-1, 1);
    for (int j = 0; j < c; ++j)
      for (int i = 0; i < r; ++i) {
        T v;
        if constexpr (std::is_same_v<T, cf>)
          v = cf(u(gen), u(gen));
        else
          v = u(gen);
        if (r == c && i == j) v += T(static_cast<float>(r));  // well conditioned triangles
        col[i + static_cast<size_t>(j) * ldc] = v;
        row[j + static_cast<size_t>(i) * ldr] = v;
      }
  }
  // Both storages hold the same matrix (the referenced triangle only when uplo is set).
  void expect_same(float tol, char uplo = 0) const {
    for (int j = 0; j < cols; ++j)
      for (int i = 0; i < rows; ++i) {
        if ((uplo == 'U' && i > j) || (uplo == 'L' && i < j)) continue;
        EXPECT_LE(
            std::abs(col[i + static_cast<size_t>(j) * ldc] - row[j + static_cast<size_t>(i) * ldr]),
            tol)
            << "at " << i << "," << j;
      }
  }
};

template <class T>
std::vector<T> random_vector(int n, std::mt19937 &gen) {
  std::uniform_real_distribution<float> u(-1, 1);
  std::vector<T> v(n);
  for (auto &x : v) {
    if constexpr (std::is_same_v<T, cf>)
      x = cf(u(gen), u(gen));
    else
      x = u(gen);
  }
  return v;
}

void expect_close(const std::vector<cf> &a, const std::vector<cf> &b, float tol) {
  ASSERT_EQ(a.size(), b.size());
  for (size_t i = 0; i < a.size(); ++i) EXPECT_LE(std::abs(a[i] - b[i]), tol) << "at " << i;
}

const CBLAS_TRANSPOSE kTrans[] = {CblasNoTrans, CblasTrans, CblasConjTrans};

TEST(CblasLevel3, GemmRowMajorMatchesColumnMajor) {
  std::mt19937 gen(1);
  const int m = 13, n = 7, k = 11;
  for (auto ta : kTrans)
    for (auto tb : kTrans) {
      const bool na = ta == CblasNoTrans, nb = tb == CblasNoTrans;
      Pair<float> a(na ? m : k, na ? k : m, gen), b(nb ? k : n, nb ? n : k, gen), c(m, n, gen);
      cblas_sgemm(CblasColMajor, ta, tb, m, n, k, 0.5f, a.col.data(), a.ldc, b.col.data(), b.ldc,
                  -1.5f, c.col.data(), c.ldc);
      cblas_sgemm(CblasRowMajor, ta, tb, m, n, k, 0.5f, a.row.data(), a.ldr, b.row.data(), b.ldr,
                  -1.5f, c.row.data(), c.ldr);
      c.expect_same(1e-5f);
      Pair<cf> ca(na ? m : k, na ? k : m, gen), cb(nb ? k : n, nb ? n : k, gen), cc(m, n, gen);
      const cf alpha(0.5f, -1), beta(0.25f, 2);
      cblas_cgemm(CblasColMajor, ta, tb, m, n, k, &alpha, ca.col.data(), ca.ldc, cb.col.data(),
                  cb.ldc, &beta, cc.col.data(), cc.ldc);
      cblas_cgemm(CblasRowMajor, ta, tb, m, n, k, &alpha, ca.row.data(), ca.ldr, cb.row.data(),
                  cb.ldr, &beta, cc.row.data(), cc.ldr);
      cc.expect_same(1e-4f);
    }
}

TEST(CblasLevel3, TriangularSolveAndSymmetricProducts) {
  std::mt19937 gen(2);
  const int m = 9, n = 5;
  for (auto side : {CblasLeft, CblasRight})
    for (auto uplo : {CblasUpper, CblasLower}) {
      const int ka = side == CblasLeft ? m : n;
      for (auto tr : kTrans)
        for (auto diag : {CblasNonUnit, CblasUnit}) {
          Pair<cf> a(ka, ka, gen), b(m, n, gen);
          const cf alpha(1.5f, -0.5f);
          cblas_ctrsm(CblasColMajor, side, uplo, tr, diag, m, n, &alpha, a.col.data(), a.ldc,
                      b.col.data(), b.ldc);
          cblas_ctrsm(CblasRowMajor, side, uplo, tr, diag, m, n, &alpha, a.row.data(), a.ldr,
                      b.row.data(), b.ldr);
          b.expect_same(1e-5f);
        }
      Pair<float> s(ka, ka, gen), b(m, n, gen), c(m, n, gen);
      cblas_ssymm(CblasColMajor, side, uplo, m, n, 2.f, s.col.data(), s.ldc, b.col.data(), b.ldc,
                  0.5f, c.col.data(), c.ldc);
      cblas_ssymm(CblasRowMajor, side, uplo, m, n, 2.f, s.row.data(), s.ldr, b.row.data(), b.ldr,
                  0.5f, c.row.data(), c.ldr);
      c.expect_same(1e-4f);
      Pair<cf> h(ka, ka, gen), hb(m, n, gen), hc(m, n, gen);
      const cf alpha(0.5f, 1), beta(-1, 0.5f);
      cblas_chemm(CblasColMajor, side, uplo, m, n, &alpha, h.col.data(), h.ldc, hb.col.data(),
                  hb.ldc, &beta, hc.col.data(), hc.ldc);
      cblas_chemm(CblasRowMajor, side, uplo, m, n, &alpha, h.row.data(), h.ldr, hb.row.data(),
                  hb.ldr, &beta, hc.row.data(), hc.ldr);
      hc.expect_same(1e-4f);
    }
}

TEST(CblasLevel3, HermitianRankUpdates) {
  std::mt19937 gen(3);
  const int n = 8, k = 5;
  for (auto uplo : {CblasUpper, CblasLower})
    for (auto tr : {CblasNoTrans, CblasConjTrans}) {
      const bool nt = tr == CblasNoTrans;
      Pair<cf> a(nt ? n : k, nt ? k : n, gen), b(nt ? n : k, nt ? k : n, gen), c(n, n, gen);
      const char up = uplo == CblasUpper ? 'U' : 'L';
      const cf alpha(0.75f, -1.25f);
      cblas_cher2k(CblasColMajor, uplo, tr, n, k, &alpha, a.col.data(), a.ldc, b.col.data(), b.ldc,
                   0.5f, c.col.data(), c.ldc);
      cblas_cher2k(CblasRowMajor, uplo, tr, n, k, &alpha, a.row.data(), a.ldr, b.row.data(), b.ldr,
                   0.5f, c.row.data(), c.ldr);
      c.expect_same(1e-4f, up);
      cblas_cherk(CblasColMajor, uplo, tr, n, k, -1.f, a.col.data(), a.ldc, 2.f, c.col.data(),
                  c.ldc);
      cblas_cherk(CblasRowMajor, uplo, tr, n, k, -1.f, a.row.data(), a.ldr, 2.f, c.row.data(),
                  c.ldr);
      c.expect_same(1e-4f, up);
    }
}

TEST(CblasLevel2, GemvWithStridesAndConjugateTranspose) {
  std::mt19937 gen(4);
  const int m = 11, n = 6;
  for (auto tr : kTrans)
    for (int inc : {1, -2}) {
      const bool nt = tr == CblasNoTrans;
      const int lx = nt ? n : m, ly = nt ? m : n;
      const int ainc = inc < 0 ? -inc : inc;
      Pair<cf> a(m, n, gen);
      auto x = random_vector<cf>(lx * ainc, gen);
      auto y0 = random_vector<cf>(ly * ainc, gen), y1 = y0;
      const cf alpha(1, -2), beta(0.5f, 0.5f);
      cblas_cgemv(CblasColMajor, tr, m, n, &alpha, a.col.data(), a.ldc, x.data(), inc, &beta,
                  y0.data(), inc);
      cblas_cgemv(CblasRowMajor, tr, m, n, &alpha, a.row.data(), a.ldr, x.data(), inc, &beta,
                  y1.data(), inc);
      expect_close(y0, y1, 1e-4f);
    }
}

TEST(CblasLevel2, RankOneUpdatesAndHermitianProducts) {
  std::mt19937 gen(5);
  const int m = 7, n = 10;
  auto x = random_vector<cf>(2 * m, gen), y = random_vector<cf>(2 * n, gen);
  const cf alpha(0.5f, 1.5f), beta(1, -1);
  Pair<cf> u(m, n, gen), c(m, n, gen);
  cblas_cgeru(CblasColMajor, m, n, &alpha, x.data(), 2, y.data(), -2, u.col.data(), u.ldc);
  cblas_cgeru(CblasRowMajor, m, n, &alpha, x.data(), 2, y.data(), -2, u.row.data(), u.ldr);
  u.expect_same(1e-5f);
  cblas_cgerc(CblasColMajor, m, n, &alpha, x.data(), -2, y.data(), 2, c.col.data(), c.ldc);
  cblas_cgerc(CblasRowMajor, m, n, &alpha, x.data(), -2, y.data(), 2, c.row.data(), c.ldr);
  c.expect_same(1e-5f);
  Pair<float> r(m, n, gen);
  auto xs = random_vector<float>(m, gen), ys = random_vector<float>(n, gen);
  cblas_sger(CblasColMajor, m, n, 2.f, xs.data(), 1, ys.data(), 1, r.col.data(), r.ldc);
  cblas_sger(CblasRowMajor, m, n, 2.f, xs.data(), 1, ys.data(), 1, r.row.data(), r.ldr);
  r.expect_same(1e-5f);
  for (auto uplo : {CblasUpper, CblasLower}) {
    Pair<cf> h(n, n, gen);
    auto y0 = random_vector<cf>(n, gen), y1 = y0;
    cblas_chemv(CblasColMajor, uplo, n, &alpha, h.col.data(), h.ldc, y.data(), 2, &beta, y0.data(),
                1);
    cblas_chemv(CblasRowMajor, uplo, n, &alpha, h.row.data(), h.ldr, y.data(), 2, &beta, y1.data(),
                1);
    expect_close(y0, y1, 1e-4f);
    cblas_cher2(CblasColMajor, uplo, n, &alpha, y.data(), 2, y0.data(), 1, h.col.data(), h.ldc);
    cblas_cher2(CblasRowMajor, uplo, n, &alpha, y.data(), 2, y0.data(), 1, h.row.data(), h.ldr);
    h.expect_same(1e-3f, uplo == CblasUpper ? 'U' : 'L');
    auto b0 = random_vector<cf>(n, gen), b1 = b0;
    cblas_ctrsv(CblasColMajor, uplo, CblasConjTrans, CblasNonUnit, n, h.col.data(), h.ldc,
                b0.data(), 1);
    cblas_ctrsv(CblasRowMajor, uplo, CblasConjTrans, CblasNonUnit, n, h.row.data(), h.ldr,
                b1.data(), 1);
    expect_close(b0, b1, 1e-4f);
  }
}

TEST(CblasLevel1, ComplexDotsAndIndices) {
  const std::vector<cf> x = {{1, 2}, {3, -1}, {0, 1}}, y = {{2, 0}, {-1, 1}, {4, 4}};
  cf u, c;
  cblas_cdotu_sub(3, x.data(), 1, y.data(), 1, &u);
  cblas_cdotc_sub(3, x.data(), 1, y.data(), 1, &c);
  cf eu = 0, ec = 0;
  for (int i = 0; i < 3; ++i) eu += x[i] * y[i], ec += std::conj(x[i]) * y[i];
  EXPECT_LE(std::abs(u - eu), 1e-6f);
  EXPECT_LE(std::abs(c - ec), 1e-6f);
  EXPECT_EQ(cblas_icamax(3, x.data(), 1), 1u);  // |3| + |-1| is the largest sum
  const float s[] = {1, -5, 2, 5};
  EXPECT_EQ(cblas_isamax(4, s, 1), 1u);                // the first of the ties, counted from 0
  EXPECT_FLOAT_EQ(cblas_scasum(3, x.data(), 1), 8.f);  // |re| + |im| summed
}

// The parameter number printed for a bad argument, outputs untouched.
std::string message_of(void (*call)()) {
  testing::internal::CaptureStdout();
  call();
  return testing::internal::GetCapturedStdout();
}

TEST(CblasErrors, ReportPositionsOfTheCblasArgumentList) {
  static float a[12], b[12], c[12];
  c[0] = 42;
  EXPECT_EQ(message_of([] {
              cblas_sgemm(static_cast<CBLAS_LAYOUT>(100), CblasNoTrans, CblasNoTrans, 2, 2, 2, 1, a,
                          2, b, 2, 0, c, 2);
            }),
            "ORB ERROR: Parameter 1 was incorrect on entry to cblas_sgemm\n");
  // Row-major A is 2 x 3: its leading dimension must reach 3 (argument 9).
  EXPECT_EQ(message_of([] {
              cblas_sgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, 2, 2, 3, 1, a, 2, b, 2, 0, c,
                          2);
            }),
            "ORB ERROR: Parameter 9 was incorrect on entry to cblas_sgemm\n");
  // The same call column-major is valid for A but not for B (3 x 2, ldb 2).
  EXPECT_EQ(message_of([] {
              cblas_sgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, 2, 2, 3, 1, a, 2, b, 2, 0, c,
                          2);
            }),
            "ORB ERROR: Parameter 11 was incorrect on entry to cblas_sgemm\n");
  EXPECT_EQ(c[0], 42.f);
  EXPECT_EQ(message_of(
                [] { cblas_cherk(CblasRowMajor, CblasUpper, CblasTrans, 2, 2, 1, a, 2, 0, c, 2); }),
            "ORB ERROR: Parameter 3 was incorrect on entry to cblas_cherk\n");
  EXPECT_EQ(
      message_of([] { cblas_cgemv(CblasRowMajor, CblasNoTrans, 2, 3, c, a, 2, b, 1, c, c, 1); }),
      "ORB ERROR: Parameter 7 was incorrect on entry to cblas_cgemv\n");
  EXPECT_EQ(c[0], 42.f);
}

}  // namespace
