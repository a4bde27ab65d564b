// The BLAS as the LAPACK routines call them: one spelling per operation over
// the scalar type, threaded (the level-3 drivers, which size their own teams
// and run serialised inside a running region) or on the calling thread
// (`_here`, for the bodies of the LAPACK routines' own parallel regions).
#pragma once

#include <complex>
#include <type_traits>

#include "blas/level1/level1.h"
#include "blas/level2/level2.h"
#include "blas/level3/gemm.h"
#include "blas/level3/level3_common.h"
#include "common/options.h"
#include "common/scalar.h"

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
