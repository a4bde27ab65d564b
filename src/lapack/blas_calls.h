// The BLAS as the LAPACK routines call them: one spelling per operation over
// the scalar type, threaded (the level-3 drivers, which size their own teams
// and run serialised inside a running region) or on the calling thread
// (`_here`, for the bodies of the LAPACK routines' own parallel regions).
#pragma once

#include <omp.h>

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

// One triangle of the n-by-n C := alpha A B^T + beta C (A and B n by k), the
// other triangle untouched: the trailing update of the symmetric indefinite
// factorizations. Threads take slabs of columns of equal triangle area, each
// one packed product that skips the tiles outside the triangle; the packed
// kernels' sums do not depend on where the slabs fall. Serial inside a
// running region or for small work.
template <class T>
inline void gemm_triangle(bool upper, int n, int k, T alpha, const T *a, int lda, const T *b,
                          int ldb, T beta, T *c, int ldc) {
  if (n <= 0) return;
  constexpr int kGrain = 32;
  auto columns = [&](int c0, int c1) {
    const int r0 = upper ? 0 : c0, r1 = upper ? c1 : n;
    const blas::TriangleOf mask{upper, c0 - r0};
    const auto s = blas::packed_shape<T>();
    const mem::Buffer<T> pa(blas::packed_a_size(s), 128), pb(blas::packed_b_size(s), 128);
    T *cb = c + r0 + static_cast<std::ptrdiff_t>(c0) * ldc;
    if (pa && pb) {
      blas::gemm_packed(s, Op::kNone, Op::kTrans, r1 - r0, c1 - c0, k, alpha, a + r0, lda, b + c0,
                        ldb, beta, cb, ldc, pa.get(), pb.get(), mask);
      return;
    }
    for (int j = c0; j < c1; ++j) {  // no packing buffers: column by column
      const int i0 = upper ? 0 : j, i1 = upper ? j + 1 : n;
      gemm_here(Op::kNone, Op::kTrans, i1 - i0, 1, k, alpha, a + i0, lda, b + j, ldb, beta,
                c + i0 + static_cast<std::ptrdiff_t>(j) * ldc, ldc);
    }
  };
  const double work = 0.5 * n * static_cast<double>(n) * k * blas::madd_cost<T>();
  const int nt = omp_in_parallel() ? 1 : blas::level3_team(work, n / (2 * kGrain));
  if (nt < 2) {
    columns(0, n);
    return;
  }
  blas::for_slabs(nt, n, kGrain, upper ? 1 : 2,
                  [&](int first, int count) { columns(first, first + count); });
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
