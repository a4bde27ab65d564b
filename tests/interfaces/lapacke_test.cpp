// LAPACKE entries called row-major against the same routine called
// column-major on the same matrices, on sizes that are neither square nor
// round, with padded leading dimensions; the workspace query of the
// high-level entries; and the codes and messages of bad arguments.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <string>
#include <vector>

#include "orb_lapacke.h"

namespace {

using cf = std::complex<float>;

// A rows x cols matrix held both column-major and row-major, each with
// padding beyond the least leading dimension (the padding must survive).
template <class T>
struct Pair {
  int rows, cols, ldc, ldr;
  std::vector<T> col, row;
  Pair(int r, int c, std::mt19937 &gen, float diagonal = 0)
      : rows(r), cols(c), ldc(r + 2), ldr(c + 3) {
    col.assign(static_cast<size_t>(ldc) * c, T(-7));
    row.assign(static_cast<size_t>(ldr) * r, T(-7));
    std::uniform_real_distribution<float> u(-1, 1);
    for (int j = 0; j < c; ++j)
      for (int i = 0; i < r; ++i) {
        T v;
        if constexpr (std::is_same_v<T, cf>)
          v = cf(u(gen), u(gen));
        else
          v = u(gen);
        if (i == j) v += T(diagonal);
        set(i, j, v);
      }
  }
  void set(int i, int j, T v) {
    col[i + static_cast<size_t>(j) * ldc] = v;
    row[j + static_cast<size_t>(i) * ldr] = v;
  }
  T c(int i, int j) const { return col[i + static_cast<size_t>(j) * ldc]; }
  T r(int i, int j) const { return row[j + static_cast<size_t>(i) * ldr]; }
  // The two storages hold the same matrix and the same untouched padding.
  void expect_same(float tol) const {
    for (int i = 0; i < rows; ++i)
      for (int j = 0; j < cols; ++j)
        ASSERT_LE(std::abs(c(i, j) - r(i, j)), tol) << "at (" << i << ", " << j << ")";
    for (int j = 0; j < cols; ++j)
      for (int i = rows; i < ldc; ++i) ASSERT_EQ(c(i, j), T(-7));
    for (int i = 0; i < rows; ++i)
      for (int j = cols; j < ldr; ++j) ASSERT_EQ(r(i, j), T(-7));
  }
};

float conj_of(float x) {
  return x;
}
cf conj_of(cf x) {
  return std::conj(x);
}

// A Hermitian positive definite n x n matrix B B^H + n I.
template <class T>
Pair<T> positive_definite(int n, std::mt19937 &gen) {
  Pair<T> b(n, n, gen), a(n, n, gen);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      T s = i == j ? T(static_cast<float>(n)) : T(0);
      for (int k = 0; k < n; ++k) s += b.c(i, k) * conj_of(b.c(j, k));
      a.set(i, j, s);
    }
  return a;
}

template <class T>
lapack_int getrf(int layout, Pair<T> &a, std::vector<lapack_int> &ipiv) {
  bool row = layout == LAPACK_ROW_MAJOR;
  T *p = row ? a.row.data() : a.col.data();
  if constexpr (std::is_same_v<T, cf>)
    return LAPACKE_cgetrf(layout, a.rows, a.cols, p, row ? a.ldr : a.ldc, ipiv.data());
  else
    return LAPACKE_sgetrf(layout, a.rows, a.cols, p, row ? a.ldr : a.ldc, ipiv.data());
}

template <class T>
class Lapacke : public testing::Test {};
using Scalars = testing::Types<float, cf>;
TYPED_TEST_SUITE(Lapacke, Scalars);

TYPED_TEST(Lapacke, LuFactorsAndSolvesAlikeInBothLayouts) {
  using T = TypeParam;
  std::mt19937 gen(11);
  for (auto [m, n] : {std::pair{7, 5}, {5, 7}, {9, 9}, {1, 3}}) {
    Pair<T> a(m, n, gen);
    std::vector<lapack_int> pc(std::min(m, n)), pr(std::min(m, n));
    ASSERT_EQ(getrf(LAPACK_COL_MAJOR, a, pc), 0);
    ASSERT_EQ(getrf(LAPACK_ROW_MAJOR, a, pr), 0);
    EXPECT_EQ(pc, pr);  // the pivots are indices and do not depend on the layout
    a.expect_same(1e-5f);
  }
  // Solve A X = B with three right-hand sides, each layout, against A X.
  const int n = 6, nrhs = 3;
  Pair<T> a(n, n, gen, 3), a0 = a, b(n, nrhs, gen);
  std::vector<lapack_int> pc(n), pr(n);
  ASSERT_EQ(getrf(LAPACK_COL_MAJOR, a, pc), 0);
  ASSERT_EQ(getrf(LAPACK_ROW_MAJOR, a, pr), 0);
  for (char trans : {'N', 'T'}) {
    Pair<T> x = b;
    if constexpr (std::is_same_v<T, cf>) {
      ASSERT_EQ(LAPACKE_cgetrs(LAPACK_COL_MAJOR, trans, n, nrhs, a.col.data(), a.ldc, pc.data(),
                               x.col.data(), x.ldc),
                0);
      ASSERT_EQ(LAPACKE_cgetrs(LAPACK_ROW_MAJOR, trans, n, nrhs, a.row.data(), a.ldr, pr.data(),
                               x.row.data(), x.ldr),
                0);
    } else {
      ASSERT_EQ(LAPACKE_sgetrs(LAPACK_COL_MAJOR, trans, n, nrhs, a.col.data(), a.ldc, pc.data(),
                               x.col.data(), x.ldc),
                0);
      ASSERT_EQ(LAPACKE_sgetrs(LAPACK_ROW_MAJOR, trans, n, nrhs, a.row.data(), a.ldr, pr.data(),
                               x.row.data(), x.ldr),
                0);
    }
    x.expect_same(1e-5f);
    for (int i = 0; i < n; ++i)
      for (int k = 0; k < nrhs; ++k) {
        T s = 0;
        for (int j = 0; j < n; ++j) s += (trans == 'N' ? a0.c(i, j) : a0.c(j, i)) * x.r(j, k);
        EXPECT_NEAR(std::abs(s - b.c(i, k)), 0, 1e-4);
      }
  }
}

TYPED_TEST(Lapacke, CholeskyOfEitherTriangleInBothLayouts) {
  using T = TypeParam;
  std::mt19937 gen(5);
  const int n = 7, nrhs = 2;
  for (char uplo : {'U', 'L'}) {
    Pair<T> a = positive_definite<T>(n, gen), b(n, nrhs, gen), x = b;
    Pair<T> a0 = a;
    if constexpr (std::is_same_v<T, cf>) {
      ASSERT_EQ(LAPACKE_cpotrf(LAPACK_COL_MAJOR, uplo, n, a.col.data(), a.ldc), 0);
      ASSERT_EQ(LAPACKE_cpotrf(LAPACK_ROW_MAJOR, uplo, n, a.row.data(), a.ldr), 0);
      ASSERT_EQ(
          LAPACKE_cpotrs(LAPACK_ROW_MAJOR, uplo, n, nrhs, a.row.data(), a.ldr, x.row.data(), x.ldr),
          0);
      ASSERT_EQ(
          LAPACKE_cpotrs(LAPACK_COL_MAJOR, uplo, n, nrhs, a.col.data(), a.ldc, x.col.data(), x.ldc),
          0);
    } else {
      ASSERT_EQ(LAPACKE_spotrf(LAPACK_COL_MAJOR, uplo, n, a.col.data(), a.ldc), 0);
      ASSERT_EQ(LAPACKE_spotrf(LAPACK_ROW_MAJOR, uplo, n, a.row.data(), a.ldr), 0);
      ASSERT_EQ(
          LAPACKE_spotrs(LAPACK_ROW_MAJOR, uplo, n, nrhs, a.row.data(), a.ldr, x.row.data(), x.ldr),
          0);
      ASSERT_EQ(
          LAPACKE_spotrs(LAPACK_COL_MAJOR, uplo, n, nrhs, a.col.data(), a.ldc, x.col.data(), x.ldc),
          0);
    }
    // The factor matches and the triangle the routine does not reference is
    // left as it was in either layout.
    a.expect_same(1e-4f);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) {
        if (uplo == 'U' ? i > j : i < j) {
          EXPECT_EQ(a.r(i, j), a0.c(i, j));
        }
      }
    x.expect_same(1e-4f);
    for (int i = 0; i < n; ++i)
      for (int k = 0; k < nrhs; ++k) {
        T s = 0;
        for (int j = 0; j < n; ++j) s += a0.c(i, j) * x.r(j, k);
        EXPECT_NEAR(std::abs(s - b.c(i, k)), 0, 1e-3);
      }
  }
  // A matrix that is not positive definite: the failing order, both layouts.
  Pair<T> bad = positive_definite<T>(4, gen);
  bad.set(2, 2, T(-1));
  if constexpr (std::is_same_v<T, cf>) {
    EXPECT_EQ(LAPACKE_cpotrf(LAPACK_ROW_MAJOR, 'L', 4, bad.row.data(), bad.ldr), 3);
    EXPECT_EQ(LAPACKE_cpotrf(LAPACK_COL_MAJOR, 'L', 4, bad.col.data(), bad.ldc), 3);
  } else {
    EXPECT_EQ(LAPACKE_spotrf(LAPACK_ROW_MAJOR, 'L', 4, bad.row.data(), bad.ldr), 3);
    EXPECT_EQ(LAPACKE_spotrf(LAPACK_COL_MAJOR, 'L', 4, bad.col.data(), bad.ldc), 3);
  }
}

TYPED_TEST(Lapacke, QrWithAllocatedAndCallerWorkspace) {
  using T = TypeParam;
  std::mt19937 gen(3);
  for (auto [m, n] : {std::pair{9, 4}, {4, 9}, {37, 29}}) {
    Pair<T> a(m, n, gen), w = a;
    const int k = std::min(m, n);
    std::vector<T> tc(k), tr(k), tw(k);
    lapack_int lwork = -1;
    T size{};
    std::vector<T> work;
    if constexpr (std::is_same_v<T, cf>) {
      ASSERT_EQ(LAPACKE_cgeqrf(LAPACK_COL_MAJOR, m, n, a.col.data(), a.ldc, tc.data()), 0);
      ASSERT_EQ(LAPACKE_cgeqrf(LAPACK_ROW_MAJOR, m, n, a.row.data(), a.ldr, tr.data()), 0);
      // The query leaves the matrix alone and names a length that works.
      ASSERT_EQ(
          LAPACKE_cgeqrf_work(LAPACK_ROW_MAJOR, m, n, w.row.data(), w.ldr, tw.data(), &size, lwork),
          0);
      lwork = static_cast<lapack_int>(size.real());
      ASSERT_GE(lwork, n);
      work.resize(lwork);
      ASSERT_EQ(LAPACKE_cgeqrf_work(LAPACK_ROW_MAJOR, m, n, w.row.data(), w.ldr, tw.data(),
                                    work.data(), lwork),
                0);
    } else {
      ASSERT_EQ(LAPACKE_sgeqrf(LAPACK_COL_MAJOR, m, n, a.col.data(), a.ldc, tc.data()), 0);
      ASSERT_EQ(LAPACKE_sgeqrf(LAPACK_ROW_MAJOR, m, n, a.row.data(), a.ldr, tr.data()), 0);
      ASSERT_EQ(
          LAPACKE_sgeqrf_work(LAPACK_ROW_MAJOR, m, n, w.row.data(), w.ldr, tw.data(), &size, lwork),
          0);
      lwork = static_cast<lapack_int>(size);
      ASSERT_GE(lwork, n);
      work.resize(lwork);
      ASSERT_EQ(LAPACKE_sgeqrf_work(LAPACK_ROW_MAJOR, m, n, w.row.data(), w.ldr, tw.data(),
                                    work.data(), lwork),
                0);
    }
    a.expect_same(1e-4f);
    for (int i = 0; i < m; ++i)
      for (int j = 0; j < n; ++j) ASSERT_NEAR(std::abs(w.r(i, j) - a.r(i, j)), 0, 1e-4);
    for (int i = 0; i < k; ++i) {
      EXPECT_NEAR(std::abs(tc[i] - tr[i]), 0, 1e-5);
      EXPECT_NEAR(std::abs(tw[i] - tr[i]), 0, 1e-5);
    }
  }
}

// Band LU: the band array is itself a matrix (2 kl + ku + 1 rows, n columns),
// row-major when the layout is; factor and solve alike in both layouts.
TEST(LapackeReal, BandLuInBothLayouts) {
  std::mt19937 gen(8);
  const int n = 7, kl = 2, ku = 1, nrhs = 2, rows = 2 * kl + ku + 1;
  Pair<float> ab(rows, n, gen), b(n, nrhs, gen), x = b;
  // The diagonal (band row kl + ku) dominates; the top kl rows are workspace.
  for (int j = 0; j < n; ++j) {
    ab.set(kl + ku, j, 4 + ab.c(kl + ku, j));
    for (int i = 0; i < kl; ++i) ab.set(i, j, 0);
  }
  Pair<float> ab0 = ab;
  std::vector<lapack_int> pc(n), pr(n);
  ASSERT_EQ(LAPACKE_sgbtrf(LAPACK_COL_MAJOR, n, n, kl, ku, ab.col.data(), ab.ldc, pc.data()), 0);
  ASSERT_EQ(LAPACKE_sgbtrf(LAPACK_ROW_MAJOR, n, n, kl, ku, ab.row.data(), ab.ldr, pr.data()), 0);
  EXPECT_EQ(pc, pr);
  ab.expect_same(1e-5f);
  ASSERT_EQ(LAPACKE_sgbtrs(LAPACK_COL_MAJOR, 'N', n, kl, ku, nrhs, ab.col.data(), ab.ldc, pc.data(),
                           x.col.data(), x.ldc),
            0);
  ASSERT_EQ(LAPACKE_sgbtrs(LAPACK_ROW_MAJOR, 'N', n, kl, ku, nrhs, ab.row.data(), ab.ldr, pr.data(),
                           x.row.data(), x.ldr),
            0);
  x.expect_same(1e-5f);
  // A(i, j) sits in band row kl + ku + i - j of column j.
  for (int i = 0; i < n; ++i)
    for (int k = 0; k < nrhs; ++k) {
      float s = 0;
      for (int j = std::max(0, i - kl); j <= std::min(n - 1, i + ku); ++j)
        s += ab0.c(kl + ku + i - j, j) * x.c(j, k);
      EXPECT_NEAR(s, b.c(i, k), 1e-4);
    }
  // Row-major band arrays need ldab >= n (argument 7).
  EXPECT_EQ(LAPACKE_sgbtrf(LAPACK_ROW_MAJOR, n, n, kl, ku, ab.row.data(), n - 1, pr.data()), -7);
}

// Triangular solve and inverse with either triangle and a unit diagonal.
TYPED_TEST(Lapacke, TriangularSolveAndInverseInBothLayouts) {
  using T = TypeParam;
  std::mt19937 gen(21);
  const int n = 6, nrhs = 3;
  for (char uplo : {'U', 'L'})
    for (char diag : {'N', 'U'}) {
      Pair<T> a(n, n, gen, 4), x(n, nrhs, gen), inv = a;
      if constexpr (std::is_same_v<T, cf>) {
        ASSERT_EQ(LAPACKE_ctrtrs(LAPACK_COL_MAJOR, uplo, 'C', diag, n, nrhs, a.col.data(), a.ldc,
                                 x.col.data(), x.ldc),
                  0);
        ASSERT_EQ(LAPACKE_ctrtrs(LAPACK_ROW_MAJOR, uplo, 'C', diag, n, nrhs, a.row.data(), a.ldr,
                                 x.row.data(), x.ldr),
                  0);
        ASSERT_EQ(LAPACKE_ctrtri(LAPACK_COL_MAJOR, uplo, diag, n, inv.col.data(), inv.ldc), 0);
        ASSERT_EQ(LAPACKE_ctrtri(LAPACK_ROW_MAJOR, uplo, diag, n, inv.row.data(), inv.ldr), 0);
      } else {
        ASSERT_EQ(LAPACKE_strtrs(LAPACK_COL_MAJOR, uplo, 'T', diag, n, nrhs, a.col.data(), a.ldc,
                                 x.col.data(), x.ldc),
                  0);
        ASSERT_EQ(LAPACKE_strtrs(LAPACK_ROW_MAJOR, uplo, 'T', diag, n, nrhs, a.row.data(), a.ldr,
                                 x.row.data(), x.ldr),
                  0);
        ASSERT_EQ(LAPACKE_strtri(LAPACK_COL_MAJOR, uplo, diag, n, inv.col.data(), inv.ldc), 0);
        ASSERT_EQ(LAPACKE_strtri(LAPACK_ROW_MAJOR, uplo, diag, n, inv.row.data(), inv.ldr), 0);
      }
      x.expect_same(1e-5f);
      inv.expect_same(1e-5f);
    }
}

// Q from geqrf applied from either side, each transposition, both layouts;
// forming Q explicitly gives the same product.
TEST(LapackeReal, OrthogonalFactorAppliedAndFormedInBothLayouts) {
  std::mt19937 gen(4);
  const int m = 8, k = 5;
  Pair<float> a(m, k, gen);
  std::vector<float> tau(k);
  ASSERT_EQ(LAPACKE_sgeqrf(LAPACK_COL_MAJOR, m, k, a.col.data(), a.ldc, tau.data()), 0);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < k; ++j) a.set(i, j, a.c(i, j));
  for (char side : {'L', 'R'})
    for (char trans : {'N', 'T'}) {
      Pair<float> c = side == 'L' ? Pair<float>(m, 3, gen) : Pair<float>(3, m, gen);
      ASSERT_EQ(LAPACKE_sormqr(LAPACK_COL_MAJOR, side, trans, c.rows, c.cols, k, a.col.data(),
                               a.ldc, tau.data(), c.col.data(), c.ldc),
                0);
      ASSERT_EQ(LAPACKE_sormqr(LAPACK_ROW_MAJOR, side, trans, c.rows, c.cols, k, a.row.data(),
                               a.ldr, tau.data(), c.row.data(), c.ldr),
                0);
      c.expect_same(1e-5f);
    }
  // Q's first k columns, formed row-major, are orthonormal.
  Pair<float> q = a;
  ASSERT_EQ(LAPACKE_sorgqr(LAPACK_ROW_MAJOR, m, k, k, q.row.data(), q.ldr, tau.data()), 0);
  for (int i = 0; i < k; ++i)
    for (int j = 0; j < k; ++j) {
      float s = 0;
      for (int r = 0; r < m; ++r) s += q.r(r, i) * q.r(r, j);
      EXPECT_NEAR(s, i == j ? 1.f : 0.f, 1e-5);
    }
  // Row-major A of sormqr is r x k: lda below k is argument 8.
  std::vector<float> c(64);
  EXPECT_EQ(LAPACKE_sormqr(LAPACK_ROW_MAJOR, 'L', 'N', m, 2, k, a.row.data(), k - 1, tau.data(),
                           c.data(), 2),
            -8);
}

// The inverse from getri (workspace allocated) and potri, in both layouts.
TYPED_TEST(Lapacke, InversesInBothLayouts) {
  using T = TypeParam;
  std::mt19937 gen(9);
  const int n = 7;
  Pair<T> a(n, n, gen, 3), p = positive_definite<T>(n, gen);
  std::vector<lapack_int> pc(n), pr(n);
  ASSERT_EQ(getrf(LAPACK_COL_MAJOR, a, pc), 0);
  ASSERT_EQ(getrf(LAPACK_ROW_MAJOR, a, pr), 0);
  if constexpr (std::is_same_v<T, cf>) {
    ASSERT_EQ(LAPACKE_cgetri(LAPACK_COL_MAJOR, n, a.col.data(), a.ldc, pc.data()), 0);
    ASSERT_EQ(LAPACKE_cgetri(LAPACK_ROW_MAJOR, n, a.row.data(), a.ldr, pr.data()), 0);
    ASSERT_EQ(LAPACKE_cpotrf(LAPACK_COL_MAJOR, 'L', n, p.col.data(), p.ldc), 0);
    ASSERT_EQ(LAPACKE_cpotrf(LAPACK_ROW_MAJOR, 'L', n, p.row.data(), p.ldr), 0);
    ASSERT_EQ(LAPACKE_cpotri(LAPACK_COL_MAJOR, 'L', n, p.col.data(), p.ldc), 0);
    ASSERT_EQ(LAPACKE_cpotri(LAPACK_ROW_MAJOR, 'L', n, p.row.data(), p.ldr), 0);
  } else {
    ASSERT_EQ(LAPACKE_sgetri(LAPACK_COL_MAJOR, n, a.col.data(), a.ldc, pc.data()), 0);
    ASSERT_EQ(LAPACKE_sgetri(LAPACK_ROW_MAJOR, n, a.row.data(), a.ldr, pr.data()), 0);
    ASSERT_EQ(LAPACKE_spotrf(LAPACK_COL_MAJOR, 'L', n, p.col.data(), p.ldc), 0);
    ASSERT_EQ(LAPACKE_spotrf(LAPACK_ROW_MAJOR, 'L', n, p.row.data(), p.ldr), 0);
    ASSERT_EQ(LAPACKE_spotri(LAPACK_COL_MAJOR, 'L', n, p.col.data(), p.ldc), 0);
    ASSERT_EQ(LAPACKE_spotri(LAPACK_ROW_MAJOR, 'L', n, p.row.data(), p.ldr), 0);
  }
  a.expect_same(1e-4f);
  p.expect_same(1e-4f);
}

// The singular values and vectors alike in both layouts, for thin, wide and
// values-only decompositions; U S V^T gives A back.
TYPED_TEST(Lapacke, SingularValueDecompositionInBothLayouts) {
  using T = TypeParam;
  std::mt19937 gen(14);
  for (auto [m, n] : {std::pair{7, 4}, {4, 6}})
    for (char jobz : {'S', 'A', 'N'}) {
      const int k = std::min(m, n);
      const int ucols = jobz == 'A' ? m : jobz == 'S' ? k : 0;
      const int vrows = jobz == 'A' ? n : jobz == 'S' ? k : 0;
      Pair<T> a(m, n, gen), a0 = a, u(m, std::max(ucols, 1), gen), vt(std::max(vrows, 1), n, gen);
      std::vector<float> sc(k), sr(k);
      T *uc = jobz == 'N' ? nullptr : u.col.data(), *ur = jobz == 'N' ? nullptr : u.row.data();
      T *vc = jobz == 'N' ? nullptr : vt.col.data(), *vr = jobz == 'N' ? nullptr : vt.row.data();
      if constexpr (std::is_same_v<T, cf>) {
        ASSERT_EQ(LAPACKE_cgesdd(LAPACK_COL_MAJOR, jobz, m, n, a.col.data(), a.ldc, sc.data(), uc,
                                 u.ldc, vc, vt.ldc),
                  0);
        ASSERT_EQ(LAPACKE_cgesdd(LAPACK_ROW_MAJOR, jobz, m, n, a.row.data(), a.ldr, sr.data(), ur,
                                 u.ldr, vr, vt.ldr),
                  0);
      } else {
        ASSERT_EQ(LAPACKE_sgesdd(LAPACK_COL_MAJOR, jobz, m, n, a.col.data(), a.ldc, sc.data(), uc,
                                 u.ldc, vc, vt.ldc),
                  0);
        ASSERT_EQ(LAPACKE_sgesdd(LAPACK_ROW_MAJOR, jobz, m, n, a.row.data(), a.ldr, sr.data(), ur,
                                 u.ldr, vr, vt.ldr),
                  0);
      }
      for (int i = 0; i < k; ++i) EXPECT_NEAR(sc[i], sr[i], 1e-5 * sc[0]);
      if (jobz == 'N') continue;
      u.expect_same(1e-4f);
      vt.expect_same(1e-4f);
      for (int i = 0; i < m; ++i)
        for (int j = 0; j < n; ++j) {
          T r = 0;
          for (int p = 0; p < k; ++p) r += u.r(i, p) * sr[p] * vt.r(p, j);
          EXPECT_NEAR(std::abs(r - a0.c(i, j)), 0, 1e-5 * sr[0] * m);
        }
    }
  // Row-major U of jobz 'A' is m x m: ldu below m is argument 9.
  std::vector<T> w(64);
  std::vector<float> s(8);
  if constexpr (std::is_same_v<T, cf>)
    EXPECT_EQ(LAPACKE_cgesdd(LAPACK_ROW_MAJOR, 'A', 5, 3, w.data(), 3, s.data(), w.data(), 4,
                             w.data(), 3),
              -9);
  else
    EXPECT_EQ(LAPACKE_sgesdd(LAPACK_ROW_MAJOR, 'A', 5, 3, w.data(), 3, s.data(), w.data(), 4,
                             w.data(), 3),
              -9);
}

// Eigenvalues and vectors of a symmetric/Hermitian matrix, all of them and an
// index range, in both layouts; the workspaces come from the joint query.
TYPED_TEST(Lapacke, RangedEigenproblemInBothLayouts) {
  using T = TypeParam;
  std::mt19937 gen(2);
  const int n = 9;
  for (char range : {'A', 'I'}) {
    const int il = 3, iu = 6, cols = range == 'A' ? n : iu - il + 1;
    Pair<T> a = positive_definite<T>(n, gen), a0 = a, z(n, cols, gen);
    std::vector<float> wc(n), wr(n);
    std::vector<lapack_int> sc(2 * n), sr(2 * n);
    lapack_int mc = -1, mr = -1;
    if constexpr (std::is_same_v<T, cf>) {
      ASSERT_EQ(LAPACKE_cheevr(LAPACK_COL_MAJOR, 'V', range, 'L', n, a.col.data(), a.ldc, 0, 0, il,
                               iu, 0, &mc, wc.data(), z.col.data(), z.ldc, sc.data()),
                0);
      ASSERT_EQ(LAPACKE_cheevr(LAPACK_ROW_MAJOR, 'V', range, 'L', n, a.row.data(), a.ldr, 0, 0, il,
                               iu, 0, &mr, wr.data(), z.row.data(), z.ldr, sr.data()),
                0);
    } else {
      ASSERT_EQ(LAPACKE_ssyevr(LAPACK_COL_MAJOR, 'V', range, 'L', n, a.col.data(), a.ldc, 0, 0, il,
                               iu, 0, &mc, wc.data(), z.col.data(), z.ldc, sc.data()),
                0);
      ASSERT_EQ(LAPACKE_ssyevr(LAPACK_ROW_MAJOR, 'V', range, 'L', n, a.row.data(), a.ldr, 0, 0, il,
                               iu, 0, &mr, wr.data(), z.row.data(), z.ldr, sr.data()),
                0);
    }
    ASSERT_EQ(mc, cols);
    ASSERT_EQ(mr, cols);
    for (int k = 0; k < cols; ++k) EXPECT_NEAR(wc[k], wr[k], 1e-5 * wc[cols - 1]);
    z.expect_same(1e-4f);
    // A z_k = w_k z_k for the row-major vectors.
    for (int k = 0; k < cols; ++k)
      for (int i = 0; i < n; ++i) {
        T s = 0;
        for (int j = 0; j < n; ++j) s += a0.c(i, j) * z.r(j, k);
        EXPECT_NEAR(std::abs(s - wr[k] * z.r(i, k)), 0, 1e-4 * wr[n > cols ? cols - 1 : n - 1]);
      }
  }
}

// Symmetric indefinite factor and solve (pivots are integer outputs), band
// Cholesky, and least squares, row-major against column-major.
TEST(LapackeReal, IndefiniteBandAndLeastSquaresInBothLayouts) {
  std::mt19937 gen(31);
  const int n = 8, nrhs = 2;
  for (char uplo : {'U', 'L'}) {
    Pair<float> a(n, n, gen), b(n, nrhs, gen), x = b;
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < i; ++j) a.set(i, j, a.c(j, i));  // symmetric, indefinite
    std::vector<lapack_int> pc(n), pr(n);
    ASSERT_EQ(LAPACKE_ssytrf(LAPACK_COL_MAJOR, uplo, n, a.col.data(), a.ldc, pc.data()), 0);
    ASSERT_EQ(LAPACKE_ssytrf(LAPACK_ROW_MAJOR, uplo, n, a.row.data(), a.ldr, pr.data()), 0);
    EXPECT_EQ(pc, pr);
    ASSERT_EQ(LAPACKE_ssytrs(LAPACK_COL_MAJOR, uplo, n, nrhs, a.col.data(), a.ldc, pc.data(),
                             x.col.data(), x.ldc),
              0);
    ASSERT_EQ(LAPACKE_ssytrs(LAPACK_ROW_MAJOR, uplo, n, nrhs, a.row.data(), a.ldr, pr.data(),
                             x.row.data(), x.ldr),
              0);
    x.expect_same(1e-4f);
  }
  // Band Cholesky of a diagonally dominant matrix with kd = 2.
  const int kd = 2;
  Pair<float> ab(kd + 1, n, gen);
  for (int j = 0; j < n; ++j) ab.set(kd, j, 6 + ab.c(kd, j));  // the diagonal, upper storage
  Pair<float> y(n, nrhs, gen);
  ASSERT_EQ(LAPACKE_spbtrf(LAPACK_COL_MAJOR, 'U', n, kd, ab.col.data(), ab.ldc), 0);
  ASSERT_EQ(LAPACKE_spbtrf(LAPACK_ROW_MAJOR, 'U', n, kd, ab.row.data(), ab.ldr), 0);
  ab.expect_same(1e-5f);
  ASSERT_EQ(LAPACKE_spbtrs(LAPACK_COL_MAJOR, 'U', n, kd, nrhs, ab.col.data(), ab.ldc, y.col.data(),
                           y.ldc),
            0);
  ASSERT_EQ(LAPACKE_spbtrs(LAPACK_ROW_MAJOR, 'U', n, kd, nrhs, ab.row.data(), ab.ldr, y.row.data(),
                           y.ldr),
            0);
  y.expect_same(1e-5f);
  // Overdetermined least squares: B holds max(m, n) rows.
  for (auto [m, k] : {std::pair{9, 5}, {5, 9}}) {
    Pair<float> ls(m, k, gen), rhs(std::max(m, k), nrhs, gen);
    ASSERT_EQ(LAPACKE_sgels(LAPACK_COL_MAJOR, 'N', m, k, nrhs, ls.col.data(), ls.ldc,
                            rhs.col.data(), rhs.ldc),
              0);
    ASSERT_EQ(LAPACKE_sgels(LAPACK_ROW_MAJOR, 'N', m, k, nrhs, ls.row.data(), ls.ldr,
                            rhs.row.data(), rhs.ldr),
              0);
    ls.expect_same(1e-4f);
    rhs.expect_same(1e-4f);
  }
}

// SVD with U of min(m, n) columns and all of V^T: the singular values agree
// between the layouts and the row-major factors rebuild A.
TYPED_TEST(Lapacke, SvdWithMixedVectorShapesInBothLayouts) {
  using T = TypeParam;
  std::mt19937 gen(41);
  for (auto [m, n] : {std::pair{7, 5}, {5, 7}}) {
    const int k = std::min(m, n);
    Pair<T> a(m, n, gen), a0 = a, u(m, k, gen), vt(n, n, gen);
    std::vector<float> sc(k), sr(k), superb(k - 1, NAN);
    if constexpr (std::is_same_v<T, cf>) {
      ASSERT_EQ(LAPACKE_cgesvd(LAPACK_COL_MAJOR, 'S', 'A', m, n, a.col.data(), a.ldc, sc.data(),
                               u.col.data(), u.ldc, vt.col.data(), vt.ldc, superb.data()),
                0);
      ASSERT_EQ(LAPACKE_cgesvd(LAPACK_ROW_MAJOR, 'S', 'A', m, n, a.row.data(), a.ldr, sr.data(),
                               u.row.data(), u.ldr, vt.row.data(), vt.ldr, superb.data()),
                0);
    } else {
      ASSERT_EQ(LAPACKE_sgesvd(LAPACK_COL_MAJOR, 'S', 'A', m, n, a.col.data(), a.ldc, sc.data(),
                               u.col.data(), u.ldc, vt.col.data(), vt.ldc, superb.data()),
                0);
      ASSERT_EQ(LAPACKE_sgesvd(LAPACK_ROW_MAJOR, 'S', 'A', m, n, a.row.data(), a.ldr, sr.data(),
                               u.row.data(), u.ldr, vt.row.data(), vt.ldr, superb.data()),
                0);
    }
    for (int i = 0; i < k; ++i) EXPECT_NEAR(sc[i], sr[i], 1e-5f * sc[0]);
    for (float e : superb) EXPECT_TRUE(std::isfinite(e));
    for (int i = 0; i < m; ++i)
      for (int j = 0; j < n; ++j) {
        T s = 0;
        for (int l = 0; l < k; ++l) s += u.r(i, l) * sr[l] * vt.r(l, j);
        EXPECT_NEAR(std::abs(s - a0.c(i, j)), 0, 1e-4) << m << "x" << n;
      }
    u.expect_same(1e-3f);  // the vectors are unique up to sign (phase) only
  }
}

// Nonsymmetric eigenproblem with right vectors only: the eigenvalues agree
// between the layouts and A V = V diag(w) in row-major storage. The real case
// uses a symmetric matrix so that every eigenvalue is real.
TYPED_TEST(Lapacke, EigenvaluesAndRightVectorsInBothLayouts) {
  using T = TypeParam;
  std::mt19937 gen(43);
  const int n = 7;
  Pair<T> a(n, n, gen), vl(n, 1, gen), vc(n, n, gen), vr(n, n, gen);
  if constexpr (!std::is_same_v<T, cf>)
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < i; ++j) a.set(i, j, a.c(j, i));
  Pair<T> a0 = a;
  std::vector<cf> wc(n), wr(n);
  if constexpr (std::is_same_v<T, cf>) {
    ASSERT_EQ(LAPACKE_cgeev(LAPACK_COL_MAJOR, 'N', 'V', n, a.col.data(), a.ldc, wc.data(),
                            vl.col.data(), vl.ldc, vc.col.data(), vc.ldc),
              0);
    ASSERT_EQ(LAPACKE_cgeev(LAPACK_ROW_MAJOR, 'N', 'V', n, a.row.data(), a.ldr, wr.data(),
                            vl.row.data(), 1, vr.row.data(), vr.ldr),
              0);
  } else {
    std::vector<float> re(n), im(n);
    ASSERT_EQ(LAPACKE_sgeev(LAPACK_COL_MAJOR, 'N', 'V', n, a.col.data(), a.ldc, re.data(),
                            im.data(), vl.col.data(), vl.ldc, vc.col.data(), vc.ldc),
              0);
    for (int i = 0; i < n; ++i) wc[i] = cf(re[i], im[i]);
    ASSERT_EQ(LAPACKE_sgeev(LAPACK_ROW_MAJOR, 'N', 'V', n, a.row.data(), a.ldr, re.data(),
                            im.data(), vl.row.data(), 1, vr.row.data(), vr.ldr),
              0);
    for (int i = 0; i < n; ++i) wr[i] = cf(re[i], im[i]);
  }
  for (int i = 0; i < n; ++i) EXPECT_NEAR(std::abs(wc[i] - wr[i]), 0, 1e-4);
  for (int k = 0; k < n; ++k)
    for (int i = 0; i < n; ++i) {
      T s = 0;
      for (int j = 0; j < n; ++j) s += a0.c(i, j) * vr.r(j, k);
      EXPECT_NEAR(std::abs(cf(s) - wr[k] * cf(vr.r(i, k))), 0, 1e-4);
    }
}

// The 1-norm of a square matrix held column-major.
template <class T>
float norm1(const Pair<T> &a) {
  float best = 0;
  for (int j = 0; j < a.cols; ++j) {
    float s = 0;
    for (int i = 0; i < a.rows; ++i) s += std::abs(a.c(i, j));
    best = std::max(best, s);
  }
  return best;
}

// Condition estimates from the factors of each layout agree, and bound the
// true reciprocal condition number from above within a small factor.
TYPED_TEST(Lapacke, ConditionEstimatesInBothLayouts) {
  using T = TypeParam;
  std::mt19937 gen(47);
  const int n = 9;
  Pair<T> a(n, n, gen, 1), inv = a;
  const float anorm = norm1(a);
  std::vector<lapack_int> pc(n), pr(n), pi(n);
  ASSERT_EQ(getrf(LAPACK_COL_MAJOR, a, pc), 0);
  ASSERT_EQ(getrf(LAPACK_ROW_MAJOR, a, pr), 0);
  ASSERT_EQ(getrf(LAPACK_COL_MAJOR, inv, pi), 0);
  float rc = 0, rr = 0;
  if constexpr (std::is_same_v<T, cf>) {
    ASSERT_EQ(LAPACKE_cgetri(LAPACK_COL_MAJOR, n, inv.col.data(), inv.ldc, pi.data()), 0);
    ASSERT_EQ(LAPACKE_cgecon(LAPACK_COL_MAJOR, '1', n, a.col.data(), a.ldc, anorm, &rc), 0);
    ASSERT_EQ(LAPACKE_cgecon(LAPACK_ROW_MAJOR, '1', n, a.row.data(), a.ldr, anorm, &rr), 0);
  } else {
    ASSERT_EQ(LAPACKE_sgetri(LAPACK_COL_MAJOR, n, inv.col.data(), inv.ldc, pi.data()), 0);
    ASSERT_EQ(LAPACKE_sgecon(LAPACK_COL_MAJOR, '1', n, a.col.data(), a.ldc, anorm, &rc), 0);
    ASSERT_EQ(LAPACKE_sgecon(LAPACK_ROW_MAJOR, '1', n, a.row.data(), a.ldr, anorm, &rr), 0);
  }
  const float exact = 1 / (anorm * norm1(inv));
  EXPECT_NEAR(rc, rr, 1e-4f * rc);
  EXPECT_GE(rr, exact * 0.999f);
  EXPECT_LE(rr, exact * 10);

  // Cholesky and triangular estimates: the two layouts give the same number.
  Pair<T> p = positive_definite<T>(n, gen);
  const float pnorm = norm1(p);
  if constexpr (std::is_same_v<T, cf>) {
    ASSERT_EQ(LAPACKE_cpotrf(LAPACK_COL_MAJOR, 'L', n, p.col.data(), p.ldc), 0);
    ASSERT_EQ(LAPACKE_cpotrf(LAPACK_ROW_MAJOR, 'L', n, p.row.data(), p.ldr), 0);
    ASSERT_EQ(LAPACKE_cpocon(LAPACK_COL_MAJOR, 'L', n, p.col.data(), p.ldc, pnorm, &rc), 0);
    ASSERT_EQ(LAPACKE_cpocon(LAPACK_ROW_MAJOR, 'L', n, p.row.data(), p.ldr, pnorm, &rr), 0);
    EXPECT_NEAR(rc, rr, 1e-4f * rc);
    ASSERT_EQ(LAPACKE_ctrcon(LAPACK_COL_MAJOR, 'I', 'L', 'N', n, p.col.data(), p.ldc, &rc), 0);
    ASSERT_EQ(LAPACKE_ctrcon(LAPACK_ROW_MAJOR, 'I', 'L', 'N', n, p.row.data(), p.ldr, &rr), 0);
  } else {
    ASSERT_EQ(LAPACKE_spotrf(LAPACK_COL_MAJOR, 'L', n, p.col.data(), p.ldc), 0);
    ASSERT_EQ(LAPACKE_spotrf(LAPACK_ROW_MAJOR, 'L', n, p.row.data(), p.ldr), 0);
    ASSERT_EQ(LAPACKE_spocon(LAPACK_COL_MAJOR, 'L', n, p.col.data(), p.ldc, pnorm, &rc), 0);
    ASSERT_EQ(LAPACKE_spocon(LAPACK_ROW_MAJOR, 'L', n, p.row.data(), p.ldr, pnorm, &rr), 0);
    EXPECT_NEAR(rc, rr, 1e-4f * rc);
    ASSERT_EQ(LAPACKE_strcon(LAPACK_COL_MAJOR, 'I', 'L', 'N', n, p.col.data(), p.ldc, &rc), 0);
    ASSERT_EQ(LAPACKE_strcon(LAPACK_ROW_MAJOR, 'I', 'L', 'N', n, p.row.data(), p.ldr, &rr), 0);
  }
  EXPECT_GT(rr, 0);
  EXPECT_NEAR(rc, rr, 1e-4f * rc);
}

// Band and symmetric-indefinite estimates, minimum-norm least squares and the
// ranged symmetric eigensolver, each called in both layouts.
TEST(LapackeReal, BandEstimatesLeastSquaresAndRangedEigenInBothLayouts) {
  std::mt19937 gen(53);
  const int n = 8, kl = 1, ku = 2;
  Pair<float> ab(2 * kl + ku + 1, n, gen);
  for (int j = 0; j < n; ++j) ab.set(kl + ku, j, 5 + ab.c(kl + ku, j));
  std::vector<lapack_int> pc(n), pr(n);
  ASSERT_EQ(LAPACKE_sgbtrf(LAPACK_COL_MAJOR, n, n, kl, ku, ab.col.data(), ab.ldc, pc.data()), 0);
  ASSERT_EQ(LAPACKE_sgbtrf(LAPACK_ROW_MAJOR, n, n, kl, ku, ab.row.data(), ab.ldr, pr.data()), 0);
  float rc = 0, rr = 0;
  ASSERT_EQ(
      LAPACKE_sgbcon(LAPACK_COL_MAJOR, 'O', n, kl, ku, ab.col.data(), ab.ldc, pc.data(), 9, &rc),
      0);
  ASSERT_EQ(
      LAPACKE_sgbcon(LAPACK_ROW_MAJOR, 'O', n, kl, ku, ab.row.data(), ab.ldr, pr.data(), 9, &rr),
      0);
  EXPECT_GT(rr, 0);
  EXPECT_NEAR(rc, rr, 1e-4f * rc);

  const int kd = 2;
  Pair<float> pb(kd + 1, n, gen);
  for (int j = 0; j < n; ++j) pb.set(kd, j, 6 + pb.c(kd, j));
  ASSERT_EQ(LAPACKE_spbtrf(LAPACK_COL_MAJOR, 'U', n, kd, pb.col.data(), pb.ldc), 0);
  ASSERT_EQ(LAPACKE_spbtrf(LAPACK_ROW_MAJOR, 'U', n, kd, pb.row.data(), pb.ldr), 0);
  ASSERT_EQ(LAPACKE_spbcon(LAPACK_COL_MAJOR, 'U', n, kd, pb.col.data(), pb.ldc, 9, &rc), 0);
  ASSERT_EQ(LAPACKE_spbcon(LAPACK_ROW_MAJOR, 'U', n, kd, pb.row.data(), pb.ldr, 9, &rr), 0);
  EXPECT_GT(rr, 0);
  EXPECT_NEAR(rc, rr, 1e-4f * rc);

  Pair<float> sy(n, n, gen, 2);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < i; ++j) sy.set(i, j, sy.c(j, i));
  Pair<float> sy0 = sy;
  ASSERT_EQ(LAPACKE_ssytrf(LAPACK_COL_MAJOR, 'U', n, sy.col.data(), sy.ldc, pc.data()), 0);
  ASSERT_EQ(LAPACKE_ssytrf(LAPACK_ROW_MAJOR, 'U', n, sy.row.data(), sy.ldr, pr.data()), 0);
  ASSERT_EQ(LAPACKE_ssycon(LAPACK_COL_MAJOR, 'U', n, sy.col.data(), sy.ldc, pc.data(), 9, &rc), 0);
  ASSERT_EQ(LAPACKE_ssycon(LAPACK_ROW_MAJOR, 'U', n, sy.row.data(), sy.ldr, pr.data(), 9, &rr), 0);
  EXPECT_GT(rr, 0);
  EXPECT_NEAR(rc, rr, 1e-4f * rc);

  // The three smallest eigenvalues of the symmetric matrix, with vectors.
  const int il = 1, iu = 3;
  Pair<float> e = sy0, zc(n, iu - il + 1, gen), zr = zc;
  std::vector<float> wc(n), wr(n);
  std::vector<lapack_int> fc(n), fr(n);
  lapack_int mc = 0, mr = 0;
  ASSERT_EQ(LAPACKE_ssyevx(LAPACK_COL_MAJOR, 'V', 'I', 'U', n, e.col.data(), e.ldc, 0, 0, il, iu, 0,
                           &mc, wc.data(), zc.col.data(), zc.ldc, fc.data()),
            0);
  ASSERT_EQ(LAPACKE_ssyevx(LAPACK_ROW_MAJOR, 'V', 'I', 'U', n, e.row.data(), e.ldr, 0, 0, il, iu, 0,
                           &mr, wr.data(), zr.row.data(), zr.ldr, fr.data()),
            0);
  ASSERT_EQ(mc, iu - il + 1);
  ASSERT_EQ(mr, mc);
  for (int k = 0; k < mr; ++k) {
    EXPECT_NEAR(wc[k], wr[k], 1e-4f);
    for (int i = 0; i < n; ++i) {
      float s = 0;
      for (int j = 0; j < n; ++j) s += sy0.c(i, j) * zr.r(j, k);
      EXPECT_NEAR(s, wr[k] * zr.r(i, k), 1e-4f);
    }
  }

  // Minimum-norm least squares through the SVD, overdetermined and not.
  for (auto [m, k] : {std::pair{9, 5}, {5, 9}}) {
    Pair<float> ls(m, k, gen), rhs(std::max(m, k), 2, gen);
    std::vector<float> sc(std::min(m, k)), sr(std::min(m, k));
    lapack_int rankc = 0, rankr = 0;
    ASSERT_EQ(LAPACKE_sgelss(LAPACK_COL_MAJOR, m, k, 2, ls.col.data(), ls.ldc, rhs.col.data(),
                             rhs.ldc, sc.data(), -1, &rankc),
              0);
    ASSERT_EQ(LAPACKE_sgelss(LAPACK_ROW_MAJOR, m, k, 2, ls.row.data(), ls.ldr, rhs.row.data(),
                             rhs.ldr, sr.data(), -1, &rankr),
              0);
    EXPECT_EQ(rankc, std::min(m, k));
    EXPECT_EQ(rankr, rankc);
    for (size_t i = 0; i < sc.size(); ++i) EXPECT_NEAR(sc[i], sr[i], 1e-4f);
    for (int i = 0; i < std::min(m, k); ++i)  // the solution rows; the rest is the residual
      for (int j = 0; j < 2; ++j) EXPECT_NEAR(rhs.c(i, j), rhs.r(i, j), 1e-3f);
  }
}

// The complex-only and symmetric complex names with the kinds tested above.
TEST(LapackeComplex, IndefiniteEstimatesLeastSquaresAndRangedEigen) {
  std::mt19937 gen(59);
  const int n = 6;
  for (bool hermitian : {false, true}) {
    Pair<cf> a(n, n, gen, 2);
    for (int i = 0; i < n; ++i) {
      if (hermitian) a.set(i, i, cf(a.c(i, i).real(), 0));
      for (int j = 0; j < i; ++j) a.set(i, j, hermitian ? std::conj(a.c(j, i)) : a.c(j, i));
    }
    std::vector<lapack_int> pc(n), pr(n);
    auto factor = hermitian ? LAPACKE_chetrf : LAPACKE_csytrf;
    auto estimate = hermitian ? LAPACKE_checon : LAPACKE_csycon;
    ASSERT_EQ(factor(LAPACK_COL_MAJOR, 'L', n, a.col.data(), a.ldc, pc.data()), 0);
    ASSERT_EQ(factor(LAPACK_ROW_MAJOR, 'L', n, a.row.data(), a.ldr, pr.data()), 0);
    float rc = 0, rr = 0;
    ASSERT_EQ(estimate(LAPACK_COL_MAJOR, 'L', n, a.col.data(), a.ldc, pc.data(), 9, &rc), 0);
    ASSERT_EQ(estimate(LAPACK_ROW_MAJOR, 'L', n, a.row.data(), a.ldr, pr.data(), 9, &rr), 0);
    EXPECT_GT(rr, 0);
    EXPECT_NEAR(rc, rr, 1e-4f * rc);
  }
  Pair<cf> h = positive_definite<cf>(n, gen), z(n, 2, gen);
  std::vector<float> w(n);
  std::vector<lapack_int> fail(n);
  lapack_int m = 0;
  ASSERT_EQ(LAPACKE_cheevx(LAPACK_ROW_MAJOR, 'V', 'I', 'L', n, h.row.data(), h.ldr, 0, 0, n - 1, n,
                           0, &m, w.data(), z.row.data(), z.ldr, fail.data()),
            0);
  EXPECT_EQ(m, 2);
  EXPECT_LE(w[0], w[1]);
  Pair<cf> ls(7, 4, gen), rhs(7, 1, gen);
  std::vector<float> s(4);
  lapack_int rank = 0;
  ASSERT_EQ(LAPACKE_cgelss(LAPACK_ROW_MAJOR, 7, 4, 1, ls.row.data(), ls.ldr, rhs.row.data(),
                           rhs.ldr, s.data(), -1, &rank),
            0);
  EXPECT_EQ(rank, 4);
  EXPECT_GE(s[0], s[3]);
  Pair<cf> gb(4, 5, gen);  // kl = 1, ku = 1
  for (int j = 0; j < 5; ++j) gb.set(2, j, cf(5, 1));
  std::vector<lapack_int> pg(5);
  ASSERT_EQ(LAPACKE_cgbtrf(LAPACK_ROW_MAJOR, 5, 5, 1, 1, gb.row.data(), gb.ldr, pg.data()), 0);
  float rc = 0;
  ASSERT_EQ(
      LAPACKE_cgbcon(LAPACK_ROW_MAJOR, 'I', 5, 1, 1, gb.row.data(), gb.ldr, pg.data(), 8, &rc), 0);
  EXPECT_GT(rc, 0);
  Pair<cf> pb(2, 5, gen);
  for (int j = 0; j < 5; ++j) pb.set(1, j, cf(4, 0));
  ASSERT_EQ(LAPACKE_cpbtrf(LAPACK_ROW_MAJOR, 'U', 5, 1, pb.row.data(), pb.ldr), 0);
  ASSERT_EQ(LAPACKE_cpbcon(LAPACK_ROW_MAJOR, 'U', 5, 1, pb.row.data(), pb.ldr, 6, &rc), 0);
  EXPECT_GT(rc, 0);
}

// Iterative refinement of a solution perturbed away from the exact one: both
// layouts return the same corrected solution and small backward errors.
TYPED_TEST(Lapacke, RefinementAndMinimumNormSolveInBothLayouts) {
  using T = TypeParam;
  constexpr bool complex = std::is_same_v<T, cf>;
  std::mt19937 gen(61);
  const int n = 7, nrhs = 2;
  Pair<T> a(n, n, gen, 2), f = a, b(n, nrhs, gen);
  std::vector<lapack_int> pc(n), pr(n);
  ASSERT_EQ(getrf(LAPACK_COL_MAJOR, f, pc), 0);
  ASSERT_EQ(getrf(LAPACK_ROW_MAJOR, f, pr), 0);
  Pair<T> x = b;
  std::vector<float> fc(nrhs), bc(nrhs), fr(nrhs), br(nrhs);
  if constexpr (complex) {
    ASSERT_EQ(LAPACKE_cgetrs(LAPACK_COL_MAJOR, 'N', n, nrhs, f.col.data(), f.ldc, pc.data(),
                             x.col.data(), x.ldc),
              0);
  } else {
    ASSERT_EQ(LAPACKE_sgetrs(LAPACK_COL_MAJOR, 'N', n, nrhs, f.col.data(), f.ldc, pc.data(),
                             x.col.data(), x.ldc),
              0);
  }
  for (int i = 0; i < n; ++i)
    for (int k = 0; k < nrhs; ++k) x.set(i, k, x.c(i, k) * T(1.001f));
  if constexpr (complex) {
    ASSERT_EQ(
        LAPACKE_cgerfs(LAPACK_COL_MAJOR, 'N', n, nrhs, a.col.data(), a.ldc, f.col.data(), f.ldc,
                       pc.data(), b.col.data(), b.ldc, x.col.data(), x.ldc, fc.data(), bc.data()),
        0);
    ASSERT_EQ(
        LAPACKE_cgerfs(LAPACK_ROW_MAJOR, 'N', n, nrhs, a.row.data(), a.ldr, f.row.data(), f.ldr,
                       pr.data(), b.row.data(), b.ldr, x.row.data(), x.ldr, fr.data(), br.data()),
        0);
  } else {
    ASSERT_EQ(
        LAPACKE_sgerfs(LAPACK_COL_MAJOR, 'N', n, nrhs, a.col.data(), a.ldc, f.col.data(), f.ldc,
                       pc.data(), b.col.data(), b.ldc, x.col.data(), x.ldc, fc.data(), bc.data()),
        0);
    ASSERT_EQ(
        LAPACKE_sgerfs(LAPACK_ROW_MAJOR, 'N', n, nrhs, a.row.data(), a.ldr, f.row.data(), f.ldr,
                       pr.data(), b.row.data(), b.ldr, x.row.data(), x.ldr, fr.data(), br.data()),
        0);
  }
  x.expect_same(1e-5f);
  for (int k = 0; k < nrhs; ++k) {
    EXPECT_LT(br[k], 1e-5f);
    EXPECT_LT(fr[k], 1e-3f);
    EXPECT_NEAR(fc[k], fr[k], 1e-3f * fc[k] + 1e-7f);
  }
  for (int i = 0; i < n; ++i)
    for (int k = 0; k < nrhs; ++k) {
      T s = 0;
      for (int j = 0; j < n; ++j) s += a.c(i, j) * x.r(j, k);
      EXPECT_NEAR(std::abs(s - b.c(i, k)), 0, 1e-4);
    }

  // The divide-and-conquer least squares sizes its integer (and real)
  // workspace from the query's first element.
  for (auto [m, k] : {std::pair{9, 4}, {4, 9}}) {
    Pair<T> ls(m, k, gen), rhs(std::max(m, k), 1, gen);
    std::vector<float> sc(std::min(m, k)), sr(std::min(m, k));
    lapack_int rc = 0, rr = 0;
    if constexpr (complex) {
      ASSERT_EQ(LAPACKE_cgelsd(LAPACK_COL_MAJOR, m, k, 1, ls.col.data(), ls.ldc, rhs.col.data(),
                               rhs.ldc, sc.data(), -1, &rc),
                0);
      ASSERT_EQ(LAPACKE_cgelsd(LAPACK_ROW_MAJOR, m, k, 1, ls.row.data(), ls.ldr, rhs.row.data(),
                               rhs.ldr, sr.data(), -1, &rr),
                0);
    } else {
      ASSERT_EQ(LAPACKE_sgelsd(LAPACK_COL_MAJOR, m, k, 1, ls.col.data(), ls.ldc, rhs.col.data(),
                               rhs.ldc, sc.data(), -1, &rc),
                0);
      ASSERT_EQ(LAPACKE_sgelsd(LAPACK_ROW_MAJOR, m, k, 1, ls.row.data(), ls.ldr, rhs.row.data(),
                               rhs.ldr, sr.data(), -1, &rr),
                0);
    }
    EXPECT_EQ(rr, std::min(m, k));
    EXPECT_EQ(rc, rr);
    for (size_t i = 0; i < sc.size(); ++i) EXPECT_NEAR(sc[i], sr[i], 1e-4f);
    for (int i = 0; i < k; ++i) EXPECT_NEAR(std::abs(rhs.c(i, 0) - rhs.r(i, 0)), 0, 1e-3f);
  }
}

// The symmetric-definite reduction with B's Cholesky factor, then the
// symmetric inverse from an indefinite factorization; the Hermitian
// reduction takes B through a parameter the routine does not declare const.
TYPED_TEST(Lapacke, DefiniteReductionAndSymmetricInverseInBothLayouts) {
  using T = TypeParam;
  constexpr bool complex = std::is_same_v<T, cf>;
  std::mt19937 gen(67);
  const int n = 6;
  Pair<T> bm = positive_definite<T>(n, gen), a = positive_definite<T>(n, gen);
  if constexpr (complex) {
    ASSERT_EQ(LAPACKE_cpotrf(LAPACK_COL_MAJOR, 'U', n, bm.col.data(), bm.ldc), 0);
    ASSERT_EQ(LAPACKE_cpotrf(LAPACK_ROW_MAJOR, 'U', n, bm.row.data(), bm.ldr), 0);
    const Pair<T> b0 = bm;
    ASSERT_EQ(
        LAPACKE_chegst(LAPACK_COL_MAJOR, 1, 'U', n, a.col.data(), a.ldc, bm.col.data(), bm.ldc), 0);
    ASSERT_EQ(
        LAPACKE_chegst(LAPACK_ROW_MAJOR, 1, 'U', n, a.row.data(), a.ldr, bm.row.data(), bm.ldr), 0);
    EXPECT_EQ(bm.row, b0.row);
  } else {
    ASSERT_EQ(LAPACKE_spotrf(LAPACK_COL_MAJOR, 'U', n, bm.col.data(), bm.ldc), 0);
    ASSERT_EQ(LAPACKE_spotrf(LAPACK_ROW_MAJOR, 'U', n, bm.row.data(), bm.ldr), 0);
    ASSERT_EQ(
        LAPACKE_ssygst(LAPACK_COL_MAJOR, 1, 'U', n, a.col.data(), a.ldc, bm.col.data(), bm.ldc), 0);
    ASSERT_EQ(
        LAPACKE_ssygst(LAPACK_ROW_MAJOR, 1, 'U', n, a.row.data(), a.ldr, bm.row.data(), bm.ldr), 0);
  }
  a.expect_same(1e-4f);

  // A^-1 from sytrf and sytri: the upper triangle times A is the identity.
  Pair<T> s(n, n, gen, 1);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < i; ++j) s.set(i, j, s.c(j, i));
  Pair<T> s0 = s;
  std::vector<lapack_int> pc(n), pr(n);
  if constexpr (complex) {
    ASSERT_EQ(LAPACKE_csytrf(LAPACK_COL_MAJOR, 'U', n, s.col.data(), s.ldc, pc.data()), 0);
    ASSERT_EQ(LAPACKE_csytrf(LAPACK_ROW_MAJOR, 'U', n, s.row.data(), s.ldr, pr.data()), 0);
    ASSERT_EQ(LAPACKE_csytri(LAPACK_COL_MAJOR, 'U', n, s.col.data(), s.ldc, pc.data()), 0);
    ASSERT_EQ(LAPACKE_csytri(LAPACK_ROW_MAJOR, 'U', n, s.row.data(), s.ldr, pr.data()), 0);
  } else {
    ASSERT_EQ(LAPACKE_ssytrf(LAPACK_COL_MAJOR, 'U', n, s.col.data(), s.ldc, pc.data()), 0);
    ASSERT_EQ(LAPACKE_ssytrf(LAPACK_ROW_MAJOR, 'U', n, s.row.data(), s.ldr, pr.data()), 0);
    ASSERT_EQ(LAPACKE_ssytri(LAPACK_COL_MAJOR, 'U', n, s.col.data(), s.ldc, pc.data()), 0);
    ASSERT_EQ(LAPACKE_ssytri(LAPACK_ROW_MAJOR, 'U', n, s.row.data(), s.ldr, pr.data()), 0);
  }
  s.expect_same(1e-4f);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      T v = 0;
      for (int k = 0; k < n; ++k) v += (i <= k ? s.r(i, k) : s.r(k, i)) * s0.c(k, j);
      EXPECT_NEAR(std::abs(v - T(i == j ? 1.0f : 0.0f)), 0, 1e-3) << i << "," << j;
    }
}

// Refinement of banded, Cholesky, symmetric and triangular solves, the
// Hermitian inverse and the tridiagonal reduction's Q applied: each called in
// both layouts with the same answer.
TEST(LapackeReal, BandTriangularRefinementAndReductionQ) {
  std::mt19937 gen(71);
  const int n = 7, nrhs = 2, kd = 2;
  Pair<float> ab(kd + 1, n, gen);
  for (int j = 0; j < n; ++j) ab.set(kd, j, 6 + ab.c(kd, j));
  Pair<float> fb = ab, b(n, nrhs, gen), x = b;
  ASSERT_EQ(LAPACKE_spbtrf(LAPACK_COL_MAJOR, 'U', n, kd, fb.col.data(), fb.ldc), 0);
  ASSERT_EQ(LAPACKE_spbtrf(LAPACK_ROW_MAJOR, 'U', n, kd, fb.row.data(), fb.ldr), 0);
  ASSERT_EQ(LAPACKE_spbtrs(LAPACK_COL_MAJOR, 'U', n, kd, nrhs, fb.col.data(), fb.ldc, x.col.data(),
                           x.ldc),
            0);
  ASSERT_EQ(LAPACKE_spbtrs(LAPACK_ROW_MAJOR, 'U', n, kd, nrhs, fb.row.data(), fb.ldr, x.row.data(),
                           x.ldr),
            0);
  std::vector<float> fe(nrhs), be(nrhs), fe2(nrhs), be2(nrhs);
  ASSERT_EQ(LAPACKE_spbrfs(LAPACK_COL_MAJOR, 'U', n, kd, nrhs, ab.col.data(), ab.ldc, fb.col.data(),
                           fb.ldc, b.col.data(), b.ldc, x.col.data(), x.ldc, fe.data(), be.data()),
            0);
  ASSERT_EQ(
      LAPACKE_spbrfs(LAPACK_ROW_MAJOR, 'U', n, kd, nrhs, ab.row.data(), ab.ldr, fb.row.data(),
                     fb.ldr, b.row.data(), b.ldr, x.row.data(), x.ldr, fe2.data(), be2.data()),
      0);
  x.expect_same(1e-5f);
  for (int k = 0; k < nrhs; ++k) EXPECT_LT(be2[k], 1e-5f);

  // General band, kl = 1, ku = 2: the factor's band has kl more rows.
  const int kl = 1, ku = 2;
  Pair<float> gb(kl + ku + 1, n, gen), gf(2 * kl + ku + 1, n, gen);
  for (int j = 0; j < n; ++j) {
    gb.set(ku, j, 5 + gb.c(ku, j));
    for (int i = 0; i < kl + ku + 1; ++i) gf.set(kl + i, j, gb.c(i, j));
  }
  std::vector<lapack_int> pc(n), pr(n);
  ASSERT_EQ(LAPACKE_sgbtrf(LAPACK_COL_MAJOR, n, n, kl, ku, gf.col.data(), gf.ldc, pc.data()), 0);
  ASSERT_EQ(LAPACKE_sgbtrf(LAPACK_ROW_MAJOR, n, n, kl, ku, gf.row.data(), gf.ldr, pr.data()), 0);
  Pair<float> y = b;
  ASSERT_EQ(LAPACKE_sgbtrs(LAPACK_COL_MAJOR, 'N', n, kl, ku, nrhs, gf.col.data(), gf.ldc, pc.data(),
                           y.col.data(), y.ldc),
            0);
  ASSERT_EQ(LAPACKE_sgbtrs(LAPACK_ROW_MAJOR, 'N', n, kl, ku, nrhs, gf.row.data(), gf.ldr, pr.data(),
                           y.row.data(), y.ldr),
            0);
  ASSERT_EQ(LAPACKE_sgbrfs(LAPACK_COL_MAJOR, 'N', n, kl, ku, nrhs, gb.col.data(), gb.ldc,
                           gf.col.data(), gf.ldc, pc.data(), b.col.data(), b.ldc, y.col.data(),
                           y.ldc, fe.data(), be.data()),
            0);
  ASSERT_EQ(LAPACKE_sgbrfs(LAPACK_ROW_MAJOR, 'N', n, kl, ku, nrhs, gb.row.data(), gb.ldr,
                           gf.row.data(), gf.ldr, pr.data(), b.row.data(), b.ldr, y.row.data(),
                           y.ldr, fe2.data(), be2.data()),
            0);
  y.expect_same(1e-5f);
  for (int k = 0; k < nrhs; ++k) {
    EXPECT_LT(be2[k], 1e-5f);
    EXPECT_NEAR(be[k], be2[k], 1e-6f);
  }

  // Triangular: the bounds for a solution the caller supplies.
  Pair<float> t(n, n, gen, 4), tx = b;
  ASSERT_EQ(LAPACKE_strtrs(LAPACK_ROW_MAJOR, 'L', 'N', 'N', n, nrhs, t.row.data(), t.ldr,
                           tx.row.data(), tx.ldr),
            0);
  ASSERT_EQ(LAPACKE_strtrs(LAPACK_COL_MAJOR, 'L', 'N', 'N', n, nrhs, t.col.data(), t.ldc,
                           tx.col.data(), tx.ldc),
            0);
  ASSERT_EQ(LAPACKE_strrfs(LAPACK_COL_MAJOR, 'L', 'N', 'N', n, nrhs, t.col.data(), t.ldc,
                           b.col.data(), b.ldc, tx.col.data(), tx.ldc, fe.data(), be.data()),
            0);
  ASSERT_EQ(LAPACKE_strrfs(LAPACK_ROW_MAJOR, 'L', 'N', 'N', n, nrhs, t.row.data(), t.ldr,
                           b.row.data(), b.ldr, tx.row.data(), tx.ldr, fe2.data(), be2.data()),
            0);
  for (int k = 0; k < nrhs; ++k) EXPECT_NEAR(be[k], be2[k], 1e-6f);

  // Cholesky and symmetric refinement of the exact solutions.
  Pair<float> p = positive_definite<float>(n, gen), pf = p, px = b;
  ASSERT_EQ(LAPACKE_spotrf(LAPACK_ROW_MAJOR, 'L', n, pf.row.data(), pf.ldr), 0);
  ASSERT_EQ(
      LAPACKE_spotrs(LAPACK_ROW_MAJOR, 'L', n, nrhs, pf.row.data(), pf.ldr, px.row.data(), px.ldr),
      0);
  ASSERT_EQ(
      LAPACKE_sporfs(LAPACK_ROW_MAJOR, 'L', n, nrhs, p.row.data(), p.ldr, pf.row.data(), pf.ldr,
                     b.row.data(), b.ldr, px.row.data(), px.ldr, fe2.data(), be2.data()),
      0);
  for (int k = 0; k < nrhs; ++k) EXPECT_LT(be2[k], 1e-5f);
  Pair<float> sf = p, sx = b;
  ASSERT_EQ(LAPACKE_ssytrf(LAPACK_ROW_MAJOR, 'U', n, sf.row.data(), sf.ldr, pr.data()), 0);
  ASSERT_EQ(LAPACKE_ssytrs(LAPACK_ROW_MAJOR, 'U', n, nrhs, sf.row.data(), sf.ldr, pr.data(),
                           sx.row.data(), sx.ldr),
            0);
  ASSERT_EQ(
      LAPACKE_ssyrfs(LAPACK_ROW_MAJOR, 'U', n, nrhs, p.row.data(), p.ldr, sf.row.data(), sf.ldr,
                     pr.data(), b.row.data(), b.ldr, sx.row.data(), sx.ldr, fe2.data(), be2.data()),
      0);
  for (int k = 0; k < nrhs; ++k) EXPECT_LT(be2[k], 1e-5f);

  // Q of the tridiagonal reduction applied from the right in both layouts.
  Pair<float> r = p, c(5, n, gen);
  std::vector<float> d(n), e(n - 1), tau(n - 1);
  ASSERT_EQ(
      LAPACKE_ssytrd(LAPACK_COL_MAJOR, 'U', n, r.col.data(), r.ldc, d.data(), e.data(), tau.data()),
      0);
  ASSERT_EQ(
      LAPACKE_ssytrd(LAPACK_ROW_MAJOR, 'U', n, r.row.data(), r.ldr, d.data(), e.data(), tau.data()),
      0);
  ASSERT_EQ(LAPACKE_sormtr(LAPACK_COL_MAJOR, 'R', 'U', 'N', 5, n, r.col.data(), r.ldc, tau.data(),
                           c.col.data(), c.ldc),
            0);
  ASSERT_EQ(LAPACKE_sormtr(LAPACK_ROW_MAJOR, 'R', 'U', 'N', 5, n, r.row.data(), r.ldr, tau.data(),
                           c.row.data(), c.ldr),
            0);
  c.expect_same(1e-4f);
}

// The complex-only names of the refinement, inverse and reduction families.
TEST(LapackeComplex, HermitianRefinementInverseAndReductionQ) {
  std::mt19937 gen(73);
  const int n = 6;
  Pair<cf> h = positive_definite<cf>(n, gen), hf = h, b(n, 1, gen), x = b, inv = h;
  std::vector<lapack_int> piv(n), pinv(n);
  ASSERT_EQ(LAPACKE_chetrf(LAPACK_ROW_MAJOR, 'L', n, hf.row.data(), hf.ldr, piv.data()), 0);
  ASSERT_EQ(LAPACKE_chetrs(LAPACK_ROW_MAJOR, 'L', n, 1, hf.row.data(), hf.ldr, piv.data(),
                           x.row.data(), x.ldr),
            0);
  float fe = 0, be = 0;
  ASSERT_EQ(LAPACKE_cherfs(LAPACK_ROW_MAJOR, 'L', n, 1, h.row.data(), h.ldr, hf.row.data(), hf.ldr,
                           piv.data(), b.row.data(), b.ldr, x.row.data(), x.ldr, &fe, &be),
            0);
  EXPECT_LT(be, 1e-5f);
  ASSERT_EQ(LAPACKE_chetrf(LAPACK_ROW_MAJOR, 'L', n, inv.row.data(), inv.ldr, pinv.data()), 0);
  ASSERT_EQ(LAPACKE_chetri(LAPACK_ROW_MAJOR, 'L', n, inv.row.data(), inv.ldr, pinv.data()), 0);
  for (int i = 0; i < n; ++i) {  // column 0 of A^-1 A from the lower triangle
    cf v = 0;
    for (int k = 0; k < n; ++k) v += (i >= k ? inv.r(i, k) : std::conj(inv.r(k, i))) * h.c(k, 0);
    EXPECT_NEAR(std::abs(v - cf(i == 0 ? 1.0f : 0.0f)), 0, 1e-3);
  }
  Pair<cf> r = h, c(n, 3, gen);
  std::vector<float> d(n), e(n - 1);
  std::vector<cf> tau(n - 1);
  ASSERT_EQ(
      LAPACKE_chetrd(LAPACK_ROW_MAJOR, 'L', n, r.row.data(), r.ldr, d.data(), e.data(), tau.data()),
      0);
  Pair<cf> c0 = c;
  ASSERT_EQ(LAPACKE_cunmtr(LAPACK_ROW_MAJOR, 'L', 'L', 'C', n, 3, r.row.data(), r.ldr, tau.data(),
                           c.row.data(), c.ldr),
            0);
  ASSERT_EQ(LAPACKE_cunmtr(LAPACK_ROW_MAJOR, 'L', 'L', 'N', n, 3, r.row.data(), r.ldr, tau.data(),
                           c.row.data(), c.ldr),
            0);
  for (int i = 0; i < n; ++i)  // Q Q^H C = C
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(std::abs(c.r(i, j) - c0.c(i, j)), 0, 1e-4);
  // Refinement of the Cholesky, complex symmetric, band and triangular names.
  Pair<cf> pf = h, px = b;
  ASSERT_EQ(LAPACKE_cpotrf(LAPACK_ROW_MAJOR, 'U', n, pf.row.data(), pf.ldr), 0);
  ASSERT_EQ(
      LAPACKE_cpotrs(LAPACK_ROW_MAJOR, 'U', n, 1, pf.row.data(), pf.ldr, px.row.data(), px.ldr), 0);
  ASSERT_EQ(LAPACKE_cporfs(LAPACK_ROW_MAJOR, 'U', n, 1, h.row.data(), h.ldr, pf.row.data(), pf.ldr,
                           b.row.data(), b.ldr, px.row.data(), px.ldr, &fe, &be),
            0);
  EXPECT_LT(be, 1e-5f);
  Pair<cf> sy(n, n, gen, 3);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < i; ++j) sy.set(i, j, sy.c(j, i));
  Pair<cf> sf = sy, sx = b;
  ASSERT_EQ(LAPACKE_csytrf(LAPACK_ROW_MAJOR, 'U', n, sf.row.data(), sf.ldr, piv.data()), 0);
  ASSERT_EQ(LAPACKE_csytrs(LAPACK_ROW_MAJOR, 'U', n, 1, sf.row.data(), sf.ldr, piv.data(),
                           sx.row.data(), sx.ldr),
            0);
  ASSERT_EQ(
      LAPACKE_csyrfs(LAPACK_ROW_MAJOR, 'U', n, 1, sy.row.data(), sy.ldr, sf.row.data(), sf.ldr,
                     piv.data(), b.row.data(), b.ldr, sx.row.data(), sx.ldr, &fe, &be),
      0);
  EXPECT_LT(be, 1e-5f);
  Pair<cf> t(n, n, gen, 4), tx = b;
  ASSERT_EQ(LAPACKE_ctrtrs(LAPACK_ROW_MAJOR, 'U', 'C', 'N', n, 1, t.row.data(), t.ldr,
                           tx.row.data(), tx.ldr),
            0);
  ASSERT_EQ(LAPACKE_ctrrfs(LAPACK_ROW_MAJOR, 'U', 'C', 'N', n, 1, t.row.data(), t.ldr, b.row.data(),
                           b.ldr, tx.row.data(), tx.ldr, &fe, &be),
            0);
  EXPECT_LT(be, 1e-5f);
  Pair<cf> pb(2, n, gen);  // kd = 1, upper storage, diagonal in row 1
  for (int j = 0; j < n; ++j) pb.set(1, j, cf(4, 0));
  Pair<cf> pbf = pb, pbx = b;
  ASSERT_EQ(LAPACKE_cpbtrf(LAPACK_ROW_MAJOR, 'U', n, 1, pbf.row.data(), pbf.ldr), 0);
  ASSERT_EQ(LAPACKE_cpbtrs(LAPACK_ROW_MAJOR, 'U', n, 1, 1, pbf.row.data(), pbf.ldr, pbx.row.data(),
                           pbx.ldr),
            0);
  ASSERT_EQ(LAPACKE_cpbrfs(LAPACK_ROW_MAJOR, 'U', n, 1, 1, pb.row.data(), pb.ldr, pbf.row.data(),
                           pbf.ldr, b.row.data(), b.ldr, pbx.row.data(), pbx.ldr, &fe, &be),
            0);
  EXPECT_LT(be, 1e-5f);
  Pair<cf> gb(3, n, gen), gf(4, n, gen);  // kl = ku = 1
  for (int j = 0; j < n; ++j) {
    gb.set(1, j, cf(5, 1));
    for (int i = 0; i < 3; ++i) gf.set(1 + i, j, gb.c(i, j));
  }
  Pair<cf> gx = b;
  ASSERT_EQ(LAPACKE_cgbtrf(LAPACK_ROW_MAJOR, n, n, 1, 1, gf.row.data(), gf.ldr, piv.data()), 0);
  ASSERT_EQ(LAPACKE_cgbtrs(LAPACK_ROW_MAJOR, 'N', n, 1, 1, 1, gf.row.data(), gf.ldr, piv.data(),
                           gx.row.data(), gx.ldr),
            0);
  ASSERT_EQ(
      LAPACKE_cgbrfs(LAPACK_ROW_MAJOR, 'N', n, 1, 1, 1, gb.row.data(), gb.ldr, gf.row.data(),
                     gf.ldr, piv.data(), b.row.data(), b.ldr, gx.row.data(), gx.ldr, &fe, &be),
      0);
  EXPECT_LT(be, 1e-5f);
}

// Tridiagonal and band symmetric eigenproblems: QR iteration, inverse
// iteration from given eigenvalues (real vectors read through const
// pointers) and the band drivers, each in both layouts with T z = lambda z
// checked on the row-major vectors.
TEST(LapackeReal, TridiagonalAndBandEigenInBothLayouts) {
  std::mt19937 gen(79);
  std::uniform_real_distribution<float> u(-1, 1);
  const int n = 7;
  std::vector<float> d0(n), e0(n - 1);
  for (float &x : d0) x = 3 + u(gen);
  for (float &x : e0) x = u(gen);
  auto tmul = [&](const Pair<float> &z, int i, int k) {  // (T z)(i, k)
    float s = d0[i] * z.r(i, k);
    if (i > 0) s += e0[i - 1] * z.r(i - 1, k);
    if (i < n - 1) s += e0[i] * z.r(i + 1, k);
    return s;
  };
  std::vector<float> dc = d0, ec = e0, dr = d0, er = e0;
  Pair<float> zc(n, n, gen), zr(n, n, gen);
  ASSERT_EQ(LAPACKE_ssteqr(LAPACK_COL_MAJOR, 'I', n, dc.data(), ec.data(), zc.col.data(), zc.ldc),
            0);
  ASSERT_EQ(LAPACKE_ssteqr(LAPACK_ROW_MAJOR, 'I', n, dr.data(), er.data(), zr.row.data(), zr.ldr),
            0);
  for (int k = 0; k < n; ++k) {
    EXPECT_NEAR(dc[k], dr[k], 1e-5f);
    for (int i = 0; i < n; ++i) EXPECT_NEAR(tmul(zr, i, k), dr[k] * zr.r(i, k), 1e-4f);
  }
  // Inverse iteration for the two largest, the whole matrix one block.
  const int m = 2;
  std::vector<float> w = {dr[n - 2], dr[n - 1]};
  std::vector<lapack_int> block(n, 1), split = {n}, fail(m);
  Pair<float> vc(n, m, gen), vr(n, m, gen);
  ASSERT_EQ(LAPACKE_sstein(LAPACK_COL_MAJOR, n, d0.data(), e0.data(), m, w.data(), block.data(),
                           split.data(), vc.col.data(), vc.ldc, fail.data()),
            0);
  ASSERT_EQ(LAPACKE_sstein(LAPACK_ROW_MAJOR, n, d0.data(), e0.data(), m, w.data(), block.data(),
                           split.data(), vr.row.data(), vr.ldr, fail.data()),
            0);
  for (int k = 0; k < m; ++k)
    for (int i = 0; i < n; ++i) EXPECT_NEAR(vc.c(i, k), vr.r(i, k), 1e-4f);
  for (int k = 0; k < m; ++k)
    for (int i = 0; i < n; ++i) EXPECT_NEAR(tmul(vr, i, k), w[k] * vr.r(i, k), 1e-4f);
  // Positive definite tridiagonal: eigenvalues only, then with vectors.
  std::vector<float> pd(n, 4), pe(n - 1, 1), pd2 = pd, pe2 = pe;
  Pair<float> none(1, 1, gen);
  ASSERT_EQ(LAPACKE_spteqr(LAPACK_ROW_MAJOR, 'N', n, pd.data(), pe.data(), none.row.data(), 1), 0);
  Pair<float> pz(n, n, gen);
  ASSERT_EQ(LAPACKE_spteqr(LAPACK_ROW_MAJOR, 'I', n, pd2.data(), pe2.data(), pz.row.data(), pz.ldr),
            0);
  for (int k = 0; k < n; ++k) EXPECT_NEAR(pd[k], pd2[k], 1e-4f);

  // Band of half-width 2 in upper storage; all three drivers.
  const int kd = 2;
  Pair<float> ab(kd + 1, n, gen);
  for (int j = 0; j < n; ++j) ab.set(kd, j, 2 + ab.c(kd, j));
  auto band = [&](int i, int j) {
    if (i > j) std::swap(i, j);
    return j - i > kd ? 0.0f : ab.c(kd + i - j, j);
  };
  auto check = [&](const Pair<float> &z, const std::vector<float> &ev, int count) {
    for (int k = 0; k < count; ++k)
      for (int i = 0; i < n; ++i) {
        float s = 0;
        for (int j = 0; j < n; ++j) s += band(i, j) * z.r(j, k);
        EXPECT_NEAR(s, ev[k] * z.r(i, k), 1e-4f);
      }
  };
  std::vector<float> wc(n), wr(n), wd(n), wx(n);
  Pair<float> a1 = ab, a2 = ab, a3 = ab, a4 = ab, z1(n, n, gen), z2(n, n, gen), z3(n, n, gen),
              q(n, n, gen), z4(n, 3, gen);
  ASSERT_EQ(LAPACKE_ssbev(LAPACK_COL_MAJOR, 'V', 'U', n, kd, a1.col.data(), a1.ldc, wc.data(),
                          z1.col.data(), z1.ldc),
            0);
  ASSERT_EQ(LAPACKE_ssbev(LAPACK_ROW_MAJOR, 'V', 'U', n, kd, a2.row.data(), a2.ldr, wr.data(),
                          z2.row.data(), z2.ldr),
            0);
  check(z2, wr, n);
  ASSERT_EQ(LAPACKE_ssbevd(LAPACK_ROW_MAJOR, 'V', 'U', n, kd, a3.row.data(), a3.ldr, wd.data(),
                           z3.row.data(), z3.ldr),
            0);
  check(z3, wd, n);
  lapack_int found = 0;
  std::vector<lapack_int> ifail(n);
  ASSERT_EQ(LAPACKE_ssbevx(LAPACK_ROW_MAJOR, 'V', 'I', 'U', n, kd, a4.row.data(), a4.ldr,
                           q.row.data(), q.ldr, 0, 0, n - 2, n, 0, &found, wx.data(), z4.row.data(),
                           z4.ldr, ifail.data()),
            0);
  ASSERT_EQ(found, 3);
  check(z4, wx, 3);
  for (int k = 0; k < n; ++k) {
    EXPECT_NEAR(wc[k], wr[k], 1e-5f);
    EXPECT_NEAR(wd[k], wr[k], 1e-4f);
  }
  for (int k = 0; k < 3; ++k) EXPECT_NEAR(wx[k], wr[n - 3 + k], 1e-4f);
}

// The Hermitian band drivers and the complex tridiagonal vector routines
// with the kinds tested above.
TEST(LapackeComplex, BandAndTridiagonalEigen) {
  std::mt19937 gen(83);
  const int n = 6, kd = 1;
  Pair<cf> ab(kd + 1, n, gen);
  for (int j = 0; j < n; ++j) ab.set(kd, j, cf(3, 0));
  Pair<cf> a1 = ab, a2 = ab, a3 = ab, z1(n, n, gen), z2(n, n, gen), z3(n, 2, gen), q(n, n, gen);
  std::vector<float> w1(n), w2(n), w3(n);
  ASSERT_EQ(LAPACKE_chbev(LAPACK_ROW_MAJOR, 'V', 'U', n, kd, a1.row.data(), a1.ldr, w1.data(),
                          z1.row.data(), z1.ldr),
            0);
  ASSERT_EQ(LAPACKE_chbevd(LAPACK_ROW_MAJOR, 'V', 'U', n, kd, a2.row.data(), a2.ldr, w2.data(),
                           z2.row.data(), z2.ldr),
            0);
  lapack_int found = 0;
  std::vector<lapack_int> ifail(n);
  ASSERT_EQ(
      LAPACKE_chbevx(LAPACK_ROW_MAJOR, 'V', 'I', 'U', n, kd, a3.row.data(), a3.ldr, q.row.data(),
                     q.ldr, 0, 0, 1, 2, 0, &found, w3.data(), z3.row.data(), z3.ldr, ifail.data()),
      0);
  ASSERT_EQ(found, 2);
  for (int k = 0; k < n; ++k) EXPECT_NEAR(w1[k], w2[k], 1e-4f);
  for (int k = 0; k < 2; ++k) EXPECT_NEAR(w3[k], w1[k], 1e-4f);
  std::vector<float> d(n, 3), e(n - 1, 0.5f), d2 = d, e2 = e;
  Pair<cf> z(n, n, gen), zp(n, n, gen), zi(n, 1, gen);
  ASSERT_EQ(LAPACKE_csteqr(LAPACK_ROW_MAJOR, 'I', n, d.data(), e.data(), z.row.data(), z.ldr), 0);
  ASSERT_EQ(LAPACKE_cpteqr(LAPACK_ROW_MAJOR, 'I', n, d2.data(), e2.data(), zp.row.data(), zp.ldr),
            0);
  for (int k = 0; k < n; ++k) EXPECT_NEAR(d[k], d2[n - 1 - k], 1e-4f);  // pteqr: descending
  std::vector<float> d0(n, 3), e0(n - 1, 0.5f), w = {d[0]};
  std::vector<lapack_int> block(n, 1), split = {n}, fail(1);
  ASSERT_EQ(LAPACKE_cstein(LAPACK_ROW_MAJOR, n, d0.data(), e0.data(), 1, w.data(), block.data(),
                           split.data(), zi.row.data(), zi.ldr, fail.data()),
            0);
  for (int i = 0; i < n; ++i)  // the same vector as steqr's first, up to sign
    EXPECT_NEAR(std::abs(zi.r(i, 0)), std::abs(z.r(i, 0)), 1e-4f);
}

// The nonsymmetric chain: balance, Hessenberg form and its Q, Schur form,
// eigenvectors of the triangular factor, back-transformation; A v = w v on
// the row-major result, and the two layouts give the same eigenvalues.
TEST(LapackeComplex, BalancedSchurEigenvectorsInBothLayouts) {
  std::mt19937 gen(89);
  const int n = 6;
  Pair<cf> a(n, n, gen), a0 = a;
  a.set(0, 3, cf(300, 0));  // something for the balancing to do
  a0 = a;
  std::vector<cf> wr(n), wc(n);
  for (int layout : {LAPACK_COL_MAJOR, LAPACK_ROW_MAJOR}) {
    const bool row = layout == LAPACK_ROW_MAJOR;
    Pair<cf> h = a0, q(n, n, gen), vr(n, n, gen), vl(1, 1, gen);
    cf *hp = row ? h.row.data() : h.col.data();
    cf *qp = row ? q.row.data() : q.col.data();
    cf *vp = row ? vr.row.data() : vr.col.data();
    const int ldh = row ? h.ldr : h.ldc, ldq = row ? q.ldr : q.ldc, ldv = row ? vr.ldr : vr.ldc;
    lapack_int ilo = 0, ihi = 0, m = 0;
    std::vector<float> scale(n);
    std::vector<cf> tau(n - 1), &w = row ? wr : wc;
    ASSERT_EQ(LAPACKE_cgebal(layout, 'B', n, hp, ldh, &ilo, &ihi, scale.data()), 0);
    ASSERT_EQ(LAPACKE_cgehrd(layout, n, ilo, ihi, hp, ldh, tau.data()), 0);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) q.set(i, j, row ? h.r(i, j) : h.c(i, j));
    ASSERT_EQ(LAPACKE_cunghr(layout, n, ilo, ihi, qp, ldq, tau.data()), 0);
    ASSERT_EQ(LAPACKE_chseqr(layout, 'S', 'V', n, ilo, ihi, hp, ldh, w.data(), qp, ldq), 0);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) vr.set(i, j, row ? q.r(i, j) : q.c(i, j));
    std::vector<lapack_int> select(n, 0);
    ASSERT_EQ(LAPACKE_ctrevc(layout, 'R', 'B', select.data(), n, hp, ldh, vl.row.data(), 1, vp, ldv,
                             n, &m),
              0);
    ASSERT_EQ(m, n);
    ASSERT_EQ(LAPACKE_cgebak(layout, 'B', 'R', n, ilo, ihi, scale.data(), n, vp, ldv), 0);
    for (int k = 0; k < n; ++k) {
      float size = 0;
      for (int i = 0; i < n; ++i) size = std::max(size, std::abs(row ? vr.r(i, k) : vr.c(i, k)));
      for (int i = 0; i < n; ++i) {
        cf s = 0;
        for (int j = 0; j < n; ++j) s += a0.c(i, j) * (row ? vr.r(j, k) : vr.c(j, k));
        EXPECT_NEAR(std::abs(s - w[k] * (row ? vr.r(i, k) : vr.c(i, k))), 0, 1e-3f * size * 300);
      }
    }
  }
  for (int k = 0; k < n; ++k) EXPECT_NEAR(std::abs(wr[k] - wc[k]), 0, 1e-3f);
}

// Real Hessenberg and Schur forms in both layouts, the Sylvester equation,
// and the bidiagonal route to the singular values.
TEST(LapackeReal, SchurSylvesterAndBidiagonalInBothLayouts) {
  std::mt19937 gen(97);
  const int n = 6;
  Pair<float> a(n, n, gen), a0 = a;
  std::vector<float> tau(n - 1);
  std::vector<float> re[2] = {std::vector<float>(n), std::vector<float>(n)};
  std::vector<float> im[2] = {std::vector<float>(n), std::vector<float>(n)};
  ASSERT_EQ(LAPACKE_sgehrd(LAPACK_COL_MAJOR, n, 1, n, a.col.data(), a.ldc, tau.data()), 0);
  ASSERT_EQ(LAPACKE_sgehrd(LAPACK_ROW_MAJOR, n, 1, n, a.row.data(), a.ldr, tau.data()), 0);
  a.expect_same(1e-4f);
  Pair<float> q = a, t = a;
  ASSERT_EQ(LAPACKE_sorghr(LAPACK_COL_MAJOR, n, 1, n, q.col.data(), q.ldc, tau.data()), 0);
  ASSERT_EQ(LAPACKE_sorghr(LAPACK_ROW_MAJOR, n, 1, n, q.row.data(), q.ldr, tau.data()), 0);
  q.expect_same(1e-4f);
  ASSERT_EQ(LAPACKE_shseqr(LAPACK_COL_MAJOR, 'S', 'V', n, 1, n, t.col.data(), t.ldc, re[0].data(),
                           im[0].data(), q.col.data(), q.ldc),
            0);
  ASSERT_EQ(LAPACKE_shseqr(LAPACK_ROW_MAJOR, 'S', 'V', n, 1, n, t.row.data(), t.ldr, re[1].data(),
                           im[1].data(), q.row.data(), q.ldr),
            0);
  for (int k = 0; k < n; ++k) {
    EXPECT_NEAR(re[0][k], re[1][k], 1e-4f);
    EXPECT_NEAR(im[0][k], im[1][k], 1e-4f);
  }
  // A = Z T Z^T in row-major storage, the Schur vectors orthonormal.
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) {
      float s = 0;
      for (int k = 0; k < n; ++k) s += a0.c(i, k) * q.r(k, j) - q.r(i, k) * t.r(k, j);
      EXPECT_NEAR(s, 0, 1e-4f);
    }
  // Right eigenvectors of the quasi-triangular factor: T v = lambda v for
  // each real eigenvalue (a complex pair's columns hold its real and
  // imaginary parts).
  Pair<float> vr(n, n, gen), none(1, 1, gen);
  std::vector<lapack_int> sel(n, 0);
  lapack_int mr = 0;
  ASSERT_EQ(LAPACKE_strevc(LAPACK_ROW_MAJOR, 'R', 'A', sel.data(), n, t.row.data(), t.ldr,
                           none.row.data(), 1, vr.row.data(), vr.ldr, n, &mr),
            0);
  EXPECT_EQ(mr, n);
  for (int k = 0; k < n; ++k) {
    if (im[1][k] != 0) continue;
    for (int i = 0; i < n; ++i) {
      float s = 0;
      for (int j = 0; j < n; ++j) s += t.r(i, j) * vr.r(j, k);
      EXPECT_NEAR(s, re[1][k] * vr.r(i, k), 1e-4f);
    }
  }
  // Balancing and back-transformation of a badly scaled matrix.
  Pair<float> b(n, n, gen), v(n, 2, gen);
  b.set(1, 4, 500);
  Pair<float> v0 = v;
  lapack_int lo[2], hi[2];
  std::vector<float> sc(n), sr(n);
  ASSERT_EQ(
      LAPACKE_sgebal(LAPACK_COL_MAJOR, 'B', n, b.col.data(), b.ldc, &lo[0], &hi[0], sc.data()), 0);
  ASSERT_EQ(
      LAPACKE_sgebal(LAPACK_ROW_MAJOR, 'B', n, b.row.data(), b.ldr, &lo[1], &hi[1], sr.data()), 0);
  EXPECT_EQ(sc, sr);
  b.expect_same(0);
  ASSERT_EQ(LAPACKE_sgebak(LAPACK_COL_MAJOR, 'B', 'R', n, lo[0], hi[0], sc.data(), 2, v.col.data(),
                           v.ldc),
            0);
  ASSERT_EQ(LAPACKE_sgebak(LAPACK_ROW_MAJOR, 'B', 'R', n, lo[1], hi[1], sr.data(), 2, v.row.data(),
                           v.ldr),
            0);
  v.expect_same(0);

  // A X + X B = scale C with upper triangular A (4 x 4) and B (3 x 3).
  Pair<float> ta(4, 4, gen, 3), tb(3, 3, gen, 2), c(4, 3, gen), c0 = c;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < i; ++j) ta.set(i, j, 0);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < i; ++j) tb.set(i, j, 0);
  float s1 = 0, s2 = 0;
  ASSERT_EQ(LAPACKE_strsyl(LAPACK_COL_MAJOR, 'N', 'N', 1, 4, 3, ta.col.data(), ta.ldc,
                           tb.col.data(), tb.ldc, c.col.data(), c.ldc, &s1),
            0);
  ASSERT_EQ(LAPACKE_strsyl(LAPACK_ROW_MAJOR, 'N', 'N', 1, 4, 3, ta.row.data(), ta.ldr,
                           tb.row.data(), tb.ldr, c.row.data(), c.ldr, &s2),
            0);
  EXPECT_EQ(s1, s2);
  c.expect_same(1e-5f);
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 3; ++j) {
      float r = -s2 * c0.c(i, j);
      for (int k = 0; k < 4; ++k) r += ta.c(i, k) * c.r(k, j);
      for (int k = 0; k < 3; ++k) r += c.r(i, k) * tb.c(k, j);
      EXPECT_NEAR(r, 0, 1e-4f);
    }

  // Bidiagonal reduction of an 8 x 5 matrix; its Q formed and applied; the
  // singular values from bdsqr against gesvd's.
  const int m = 8, k = 5;
  Pair<float> g(m, k, gen), g0 = g;
  std::vector<float> dc(k), ec(k - 1), dr(k), er(k - 1), tq(k), tp(k);
  ASSERT_EQ(LAPACKE_sgebrd(LAPACK_COL_MAJOR, m, k, g.col.data(), g.ldc, dc.data(), ec.data(),
                           tq.data(), tp.data()),
            0);
  ASSERT_EQ(LAPACKE_sgebrd(LAPACK_ROW_MAJOR, m, k, g.row.data(), g.ldr, dr.data(), er.data(),
                           tq.data(), tp.data()),
            0);
  g.expect_same(1e-4f);
  Pair<float> gq = g, cm(m, 2, gen);
  ASSERT_EQ(LAPACKE_sormbr(LAPACK_COL_MAJOR, 'Q', 'L', 'T', m, 2, k, g.col.data(), g.ldc, tq.data(),
                           cm.col.data(), cm.ldc),
            0);
  ASSERT_EQ(LAPACKE_sormbr(LAPACK_ROW_MAJOR, 'Q', 'L', 'T', m, 2, k, g.row.data(), g.ldr, tq.data(),
                           cm.row.data(), cm.ldr),
            0);
  cm.expect_same(1e-4f);
  ASSERT_EQ(LAPACKE_sorgbr(LAPACK_COL_MAJOR, 'Q', m, k, k, gq.col.data(), gq.ldc, tq.data()), 0);
  ASSERT_EQ(LAPACKE_sorgbr(LAPACK_ROW_MAJOR, 'Q', m, k, k, gq.row.data(), gq.ldr, tq.data()), 0);
  gq.expect_same(1e-4f);
  Pair<float> u(k, k, gen);
  for (int i = 0; i < k; ++i)
    for (int j = 0; j < k; ++j) u.set(i, j, i == j ? 1.0f : 0.0f);
  Pair<float> nv(1, 1, gen);
  ASSERT_EQ(LAPACKE_sbdsqr(LAPACK_ROW_MAJOR, 'U', k, 0, k, 0, dr.data(), er.data(), nv.row.data(),
                           1, u.row.data(), u.ldr, nv.row.data(), 1),
            0);
  std::vector<float> sv(k), superb(k - 1);
  Pair<float> no(1, 1, gen), g1 = g0;
  ASSERT_EQ(LAPACKE_sgesvd(LAPACK_ROW_MAJOR, 'N', 'N', m, k, g0.row.data(), g0.ldr, sv.data(),
                           no.row.data(), 1, no.row.data(), 1, superb.data()),
            0);
  for (int i = 0; i < k; ++i) EXPECT_NEAR(dr[i], sv[i], 1e-4f * sv[0]);
  // Values only: neither factor's leading dimension is looked at.
  std::vector<float> sd(k);
  ASSERT_EQ(LAPACKE_sgesdd(LAPACK_ROW_MAJOR, 'N', m, k, g1.row.data(), g1.ldr, sd.data(),
                           no.row.data(), 1, no.row.data(), 1),
            0);
  for (int i = 0; i < k; ++i) EXPECT_NEAR(sd[i], sv[i], 1e-4f * sv[0]);
}

// The entries without a layout argument: eigenvalues of a tridiagonal
// matrix by root-free QR and by bisection, which agree; a bad order is
// reported as the first argument.
TEST(LapackeReal, TridiagonalEigenvaluesWithoutLayout) {
  const int n = 9;
  std::vector<float> d(n), e(n - 1);
  for (int i = 0; i < n; ++i) d[i] = 2 + 0.1f * i;
  for (int i = 0; i < n - 1; ++i) e[i] = -1 + 0.05f * i;
  std::vector<float> q = d, qe = e;
  ASSERT_EQ(LAPACKE_ssterf(n, q.data(), qe.data()), 0);
  std::vector<float> w(n);
  std::vector<lapack_int> block(n), split(n);
  lapack_int m = 0, nsplit = 0;
  ASSERT_EQ(LAPACKE_sstebz('A', 'E', n, 0, 0, 0, 0, 0, d.data(), e.data(), &m, &nsplit, w.data(),
                           block.data(), split.data()),
            0);
  ASSERT_EQ(m, n);
  EXPECT_EQ(nsplit, 1);
  for (int k = 0; k < n; ++k) EXPECT_NEAR(q[k], w[k], 1e-5f);
  ASSERT_EQ(LAPACKE_sstebz('I', 'B', n, 0, 0, 2, 4, 0, d.data(), e.data(), &m, &nsplit, w.data(),
                           block.data(), split.data()),
            0);
  ASSERT_EQ(m, 3);
  for (int k = 0; k < 3; ++k) EXPECT_NEAR(w[k], q[k + 1], 1e-5f);
  EXPECT_EQ(LAPACKE_ssterf(-1, q.data(), qe.data()), -1);
}

// Condition numbers of the eigenvalues and eigenvectors of a triangular
// matrix from its left and right eigenvectors: the layouts agree, each
// eigenvalue's condition is the reciprocal of a cosine, and asking for the
// values alone needs no work matrix.
TYPED_TEST(Lapacke, EigenConditionNumbersInBothLayouts) {
  using T = TypeParam;
  constexpr bool complex = std::is_same_v<T, cf>;
  std::mt19937 gen(101);
  const int n = 6;
  Pair<T> t(n, n, gen);
  for (int i = 0; i < n; ++i) {
    t.set(i, i, T(static_cast<float>(i + 1)));
    for (int j = 0; j < i; ++j) t.set(i, j, 0);
  }
  std::vector<float> s[2], sep[2];
  for (int layout : {LAPACK_COL_MAJOR, LAPACK_ROW_MAJOR}) {
    const bool row = layout == LAPACK_ROW_MAJOR;
    Pair<T> tt = t, vl(n, n, gen), vr(n, n, gen);
    T *tp = row ? tt.row.data() : tt.col.data();
    T *lp = row ? vl.row.data() : vl.col.data();
    T *rp = row ? vr.row.data() : vr.col.data();
    const int ld = row ? t.ldr : t.ldc;
    std::vector<lapack_int> select(n, 1);
    lapack_int m = 0;
    auto &sv = s[row], &sp = sep[row];
    sv.assign(n, 0);
    sp.assign(n, 0);
    if constexpr (complex) {
      ASSERT_EQ(LAPACKE_ctrevc(layout, 'B', 'A', select.data(), n, tp, ld, lp, ld, rp, ld, n, &m),
                0);
      ASSERT_EQ(LAPACKE_ctrsna(layout, 'B', 'A', select.data(), n, tp, ld, lp, ld, rp, ld,
                               sv.data(), sp.data(), n, &m),
                0);
    } else {
      ASSERT_EQ(LAPACKE_strevc(layout, 'B', 'A', select.data(), n, tp, ld, lp, ld, rp, ld, n, &m),
                0);
      ASSERT_EQ(LAPACKE_strsna(layout, 'B', 'A', select.data(), n, tp, ld, lp, ld, rp, ld,
                               sv.data(), sp.data(), n, &m),
                0);
      std::vector<float> s2(n), sep2(n);
      ASSERT_EQ(LAPACKE_strsna(layout, 'E', 'A', select.data(), n, tp, ld, lp, ld, rp, ld,
                               s2.data(), sep2.data(), n, &m),
                0);
      EXPECT_EQ(s2, sv);
    }
    EXPECT_EQ(m, n);
  }
  for (int k = 0; k < n; ++k) {
    EXPECT_NEAR(s[0][k], s[1][k], 1e-4f);
    EXPECT_NEAR(sep[0][k], sep[1][k], 1e-4f);
    EXPECT_GT(s[1][k], 0);
    EXPECT_LE(s[1][k], 1.0001f);
    EXPECT_GT(sep[1][k], 0);
  }
}

// The message printed by a call, and its result.
template <class F>
std::pair<lapack_int, std::string> outcome(F call) {
  testing::internal::CaptureStdout();
  lapack_int info = call();
  return {info, testing::internal::GetCapturedStdout()};
}
std::pair<lapack_int, std::string> bad(lapack_int position, const std::string &name) {
  return {-position, "ORB ERROR: Parameter " + std::to_string(position) +
                         " was incorrect on entry to " + name + "\n"};
}

TEST(LapackeErrors, CodesAndMessagesInTheCArgumentNumbering) {
  std::vector<float> a(64, 1), b(64, 1);
  std::vector<lapack_int> ipiv(8);
  // A layout that is neither is argument 1, in the entry that was called.
  EXPECT_EQ(outcome([&] { return LAPACKE_sgetrf(100, 3, 3, a.data(), 3, ipiv.data()); }),
            bad(1, "LAPACKE_sgetrf"));
  EXPECT_EQ(outcome([&] { return LAPACKE_sgetrf_work(0, 3, 3, a.data(), 3, ipiv.data()); }),
            bad(1, "LAPACKE_sgetrf_work"));
  // Row-major leading dimensions count columns: lda 3 < n 4 is argument 5,
  // and the matrix is not touched.
  a[0] = 42;
  EXPECT_EQ(
      outcome([&] { return LAPACKE_sgetrf(LAPACK_ROW_MAJOR, 5, 4, a.data(), 3, ipiv.data()); }),
      bad(5, "LAPACKE_sgetrf_work"));
  EXPECT_EQ(a[0], 42.f);
  // The same lda column-major counts rows: the routine rejects it, and its
  // Fortran number 4 becomes 5 in the C list.
  EXPECT_EQ(outcome([&] {
              return LAPACKE_sgetrf(LAPACK_COL_MAJOR, 5, 4, a.data(), 3, ipiv.data());
            }).first,
            -5);
  EXPECT_EQ(outcome([&] {
              return LAPACKE_sgetrs(LAPACK_ROW_MAJOR, 'N', 4, 3, a.data(), 4, ipiv.data(), b.data(),
                                    2);
            }),
            bad(9, "LAPACKE_sgetrs_work"));
  EXPECT_EQ(outcome([&] {
              return LAPACKE_spotrs(LAPACK_COL_MAJOR, 'X', 4, 1, a.data(), 4, b.data(), 4);
            }).first,
            -2);
  std::vector<cf> c(64, 1), tau(8);
  EXPECT_EQ(
      outcome([&] { return LAPACKE_cgeqrf(LAPACK_ROW_MAJOR, 6, 5, c.data(), 4, tau.data()); }),
      bad(5, "LAPACKE_cgeqrf_work"));
}

}  // namespace
