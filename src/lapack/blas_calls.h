// The BLAS as the LAPACK routines call them: one spelling per operation over
// the scalar type, threaded (the level-3 drivers, which size their own teams
// and run serialised inside a running region) or on the calling thread
// (`_here`, for the bodies of the LAPACK routines' own parallel regions).
#pragma once

#include <omp.h>

#include <algorithm>
#include <complex>
#include <cstddef>
#include <type_traits>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "blas/level3/gemm.h"
#include "blas/level3/level3_common.h"
#include "common/options.h"
#include "common/scalar.h"
#include "service/memory.h"

namespace orb::lapack {

using blas::Triangular;

// C := alpha op(A) op(B) + beta C, threaded.
template <class T>
inline void gemm(Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda, const T *b,
                 int ldb, T beta, T *c, int ldc) {
  if (m <= 0 || n <= 0) return;
  const char cta = letter(ta), ctb = letter(tb);
  if constexpr (std::is_same_v<T, float>)
    blas::orb_blas_sgemm(&cta, &ctb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
  else if constexpr (std::is_same_v<T, double>)
    blas::orb_blas_dgemm(&cta, &ctb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
  else if constexpr (std::is_same_v<T, c8>)
    blas::orb_blas_cgemm(&cta, &ctb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
  else
    blas::orb_blas_zgemm(&cta, &ctb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
}

// The same on the calling thread.
template <class T>
inline void gemm_here(Op ta, Op tb, int m, int n, int k, T alpha, const T *a, int lda, const T *b,
                      int ldb, T beta, T *c, int ldc) {
  if (m <= 0 || n <= 0) return;
  blas::gemm_here(ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
}

// Triangular solves with several right-hand sides, threaded and here.
template <class T>
inline void trsm(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb) {
  if (m <= 0 || n <= 0) return;
  blas::trsm_omp(t, m, n, alpha, a, lda, b, ldb);
}
template <class T>
inline void trsm_here(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b,
                      int ldb) {
  if (m <= 0 || n <= 0) return;
  blas::trsm_serial(t, m, n, alpha, a, lda, b, ldb);
}

// Triangular multiply, threaded.
template <class T>
inline void trmm(const Triangular &t, int m, int n, T alpha, const T *a, int lda, T *b, int ldb) {
  if (m <= 0 || n <= 0) return;
  blas::trmm_omp(t, m, n, alpha, a, lda, b, ldb);
}

// Columns [c0, c1) of one triangle of the n-by-n C := alpha A B^T + beta C
// (A and B n by k), the other triangle untouched, on the calling thread:
// one packed product that skips the tiles outside the triangle (column by
// column when the packing buffers cannot be had). The packed kernels' sums
// do not depend on where c0 and c1 fall.
template <class T>
inline void gemm_triangle_columns(bool upper, int n, int k, T alpha, const T *a, int lda,
                                  const T *b, int ldb, T beta, T *c, int ldc, int c0, int c1) {
  if (c1 <= c0) return;
  const int r0 = upper ? 0 : c0, r1 = upper ? c1 : n;
  const blas::TriangleOf mask{upper, c0 - r0};
  const auto s = blas::packed_shape<T>();
  // Packing buffers for this product's blocks only (k is a panel's width,
  // far below the kernel's inner block).
  const int kb = std::min(s.kc, k);
  const std::int64_t a_size = std::int64_t{blas::round_up(std::min(s.mc, r1 - r0), s.mr)} * kb;
  const std::int64_t b_size = std::int64_t{blas::round_up(std::min(s.nc, c1 - c0), s.nr)} * kb;
  const mem::Buffer<T> pa(a_size, 128), pb(b_size, 128);
  if (pa && pb) {
    blas::gemm_packed(s, Op::kNone, Op::kTrans, r1 - r0, c1 - c0, k, alpha, a + r0, lda, b + c0,
                      ldb, beta, c + r0 + static_cast<std::ptrdiff_t>(c0) * ldc, ldc, pa.get(),
                      pb.get(), mask);
    return;
  }
  for (int j = c0; j < c1; ++j) {
    const int i0 = upper ? 0 : j, i1 = upper ? j + 1 : n;
    gemm_here(Op::kNone, Op::kTrans, i1 - i0, 1, k, alpha, a + i0, lda, b + j, ldb, beta,
              c + i0 + static_cast<std::ptrdiff_t>(j) * ldc, ldc);
  }
}

// Column i (0 .. nt) of a split of the triangle's n columns into nt slabs of
// equal area, on multiples of 32.
inline int gemm_triangle_boundary(bool upper, int n, int i, int nt) {
  return blas::level3_boundary(n, i, nt, 32, upper ? 1 : 2);
}

// The whole triangle, threaded: the trailing update of the symmetric
// indefinite factorizations. Threads take slabs of columns of equal area;
// serial inside a running region or for small work.
template <class T>
inline void gemm_triangle(bool upper, int n, int k, T alpha, const T *a, int lda, const T *b,
                          int ldb, T beta, T *c, int ldc) {
  if (n <= 0) return;
  const double work = 0.5 * n * static_cast<double>(n) * k * blas::madd_cost<T>();
  const int nt = omp_in_parallel() ? 1 : blas::level3_team(work, n / 64);
  if (nt < 2) {
    gemm_triangle_columns(upper, n, k, alpha, a, lda, b, ldb, beta, c, ldc, 0, n);
    return;
  }
  blas::per_thread(nt, [&](int i) {
    gemm_triangle_columns(upper, n, k, alpha, a, lda, b, ldb, beta, c, ldc,
                          gemm_triangle_boundary(upper, n, i, nt),
                          gemm_triangle_boundary(upper, n, i + 1, nt));
  });
}

constexpr Triangular kLowerUnit{true, false, Op::kNone, true};  // L^-1 B, L unit lower
constexpr Triangular kUpperLeft{true, true, Op::kNone, false};  // U^-1 B

// x := a x with a real a, for real and complex x alike.
template <class T>
inline void rscal(int n, real_t<T> a, T *x, int incx) {
  if constexpr (is_complex_v<T>)
    blas::rscal(n, a, x, incx);
  else
    blas::scal(n, a, x, incx);
}

}  // namespace orb::lapack
