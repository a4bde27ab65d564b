// The exported general matrix multiplies: checked entries over gemm_omp.
#include <complex>

#include "blas/complex_abi.h"
#include "blas/level3/gemm.h"
#include "orb.h"
#include "blas/level3/checkers.h"
#include "service/entry.h"

namespace {

using orb::c16;
using orb::c8;
using orb::blas::cx;

}  // namespace

extern "C" {

ORB_API void sgemm(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                   const float *alpha, const float *a, const int *lda, const float *b,
                   const int *ldb, const float *beta, float *c, const int *ldc, int, int) {
  orb::entry::checked(orb::check::kSgemm, orb::blas::orb_blas_sgemm, transa, transb, m, n, k, alpha,
                      a, lda, b, ldb, beta, c, ldc);
}

ORB_API void cgemm(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                   const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                   const orb_complex8 *b, const int *ldb, const orb_complex8 *beta, orb_complex8 *c,
                   const int *ldc, int, int) {
  orb::entry::checked(orb::check::kCgemm, orb::blas::orb_blas_cgemm, transa, transb, m, n, k,
                      cx(alpha), cx(a), lda, cx(b), ldb, cx(beta), cx(c), ldc);
}

ORB_API void DGEMM(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                   const double *alpha, const double *a, const int *lda, const double *b,
                   const int *ldb, const double *beta, double *c, const int *ldc, int, int) {
  orb::entry::checked(orb::check::kDgemm, orb::blas::orb_blas_dgemm, transa, transb, m, n, k, alpha,
                      a, lda, b, ldb, beta, c, ldc);
}

ORB_API void ZGEMM(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                   const orb_complex16 *alpha, const orb_complex16 *a, const int *lda,
                   const orb_complex16 *b, const int *ldb, const orb_complex16 *beta,
                   orb_complex16 *c, const int *ldc, int, int) {
  orb::entry::checked(orb::check::kZgemm, orb::blas::orb_blas_zgemm, transa, transb, m, n, k,
                      cx(alpha), cx(a), lda, cx(b), ldb, cx(beta), cx(c), ldc);
}

}  // extern "C"
