// The exported level-3 routines beside the general multiplies: checked
// entries over symm_omp, syrk_omp, trmm_omp and trsm_omp.
#include <complex>

#include "blas/complex_abi.h"
#include "blas/level3/gemm_blocked.h"
#include "blas/level3/level3.h"
#include "orb.h"
#include "blas/level3/checkers.h"
#include "service/entry.h"

namespace {

using orb::c16;
using orb::c8;
using orb::blas::cx;
using orb::blas::Triangular;

using orb::Diag;
using orb::Op;
using orb::option;
using orb::Side;
using orb::Uplo;

bool left(const char *side) {
  return option<Side>(*side) == Side::kLeft;
}
bool upper(const char *uplo) {
  return option<Uplo>(*uplo) == Uplo::kUpper;
}
bool unit(const char *diag) {
  return option<Diag>(*diag) == Diag::kUnit;
}

// The published argument lists, read and passed on. Herm: the Hermitian form.

template <class T, bool Herm>
void symm(const char *side, const char *uplo, const int *m, const int *n, const T *alpha,
          const T *a, const int *lda, const T *b, const int *ldb, const T *beta, T *c,
          const int *ldc) {
  orb::blas::symm_omp<T>(left(side), upper(uplo), Herm, *m, *n, *alpha, a, *lda, b, *ldb, *beta, c,
                         *ldc);
}

// Scalar: the type of alpha (rank-k) and beta (both); real for Hermitian.
template <class T, class Scalar>
void syrk(const char *uplo, const char *trans, const int *n, const int *k, const Scalar *alpha,
          const T *a, const int *lda, const Scalar *beta, T *c, const int *ldc) {
  constexpr bool herm = !std::is_same_v<T, Scalar>;
  orb::blas::syrk_omp<T>(upper(uplo), option<Op>(*trans), herm, *n, *k, T(*alpha), a, *lda,
                         T(*beta), c, *ldc);
}

template <class T, class Beta>
void syr2k(const char *uplo, const char *trans, const int *n, const int *k, const T *alpha,
           const T *a, const int *lda, const T *b, const int *ldb, const Beta *beta, T *c,
           const int *ldc) {
  constexpr bool herm = !std::is_same_v<T, Beta>;
  orb::blas::syr2k_omp<T>(upper(uplo), option<Op>(*trans), herm, *n, *k, *alpha, a, *lda, b, *ldb,
                          T(*beta), c, *ldc);
}

Triangular triangular(const char *side, const char *uplo, const char *transa, const char *diag) {
  return Triangular{left(side), upper(uplo), option<Op>(*transa), unit(diag)};
}

template <class T>
void trmm(const char *side, const char *uplo, const char *transa, const char *diag, const int *m,
          const int *n, const T *alpha, const T *a, const int *lda, T *b, const int *ldb) {
  orb::blas::trmm_omp<T>(triangular(side, uplo, transa, diag), *m, *n, *alpha, a, *lda, b, *ldb);
}

template <class T>
void trsm(const char *side, const char *uplo, const char *transa, const char *diag, const int *m,
          const int *n, const T *alpha, const T *a, const int *lda, T *b, const int *ldb) {
  orb::blas::trsm_omp<T>(triangular(side, uplo, transa, diag), *m, *n, *alpha, a, *lda, b, *ldb);
}

}  // namespace

extern "C" {

// ---- single precision real -------------------------------------------------------

ORB_API void ssymm(const char *side, const char *uplo, const int *m, const int *n,
                   const float *alpha, const float *a, const int *lda, const float *b,
                   const int *ldb, const float *beta, float *c, const int *ldc, int, int) {
  orb::entry::checked(orb::check::kSsymm, symm<float, false>, side, uplo, m, n, alpha, a, lda, b,
                      ldb, beta, c, ldc);
}

ORB_API void ssyrk(const char *uplo, const char *trans, const int *n, const int *k,
                   const float *alpha, const float *a, const int *lda, const float *beta, float *c,
                   const int *ldc, int, int) {
  orb::entry::checked(orb::check::kSsyrk, syrk<float, float>, uplo, trans, n, k, alpha, a, lda,
                      beta, c, ldc);
}

ORB_API void ssyr2k(const char *uplo, const char *trans, const int *n, const int *k,
                    const float *alpha, const float *a, const int *lda, const float *b,
                    const int *ldb, const float *beta, float *c, const int *ldc, int, int) {
  orb::entry::checked(orb::check::kSsyr2k, syr2k<float, float>, uplo, trans, n, k, alpha, a, lda, b,
                      ldb, beta, c, ldc);
}

ORB_API void strmm(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const float *alpha, const float *a, const int *lda,
                   float *b, const int *ldb, int, int, int, int) {
  orb::entry::checked(orb::check::kStrmm, trmm<float>, side, uplo, transa, diag, m, n, alpha, a,
                      lda, b, ldb);
}

ORB_API void strsm(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const float *alpha, const float *a, const int *lda,
                   float *b, const int *ldb, int, int, int, int) {
  orb::entry::checked(orb::check::kStrsm, trsm<float>, side, uplo, transa, diag, m, n, alpha, a,
                      lda, b, ldb);
}

// ---- single precision complex ------------------------------------------------------

ORB_API void chemm(const char *side, const char *uplo, const int *m, const int *n,
                   const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                   const orb_complex8 *b, const int *ldb, const orb_complex8 *beta, orb_complex8 *c,
                   const int *ldc, int, int) {
  orb::entry::checked(orb::check::kChemm, symm<c8, true>, side, uplo, m, n, cx(alpha), cx(a), lda,
                      cx(b), ldb, cx(beta), cx(c), ldc);
}

ORB_API void csymm(const char *side, const char *uplo, const int *m, const int *n,
                   const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                   const orb_complex8 *b, const int *ldb, const orb_complex8 *beta, orb_complex8 *c,
                   const int *ldc, int, int) {
  orb::entry::checked(orb::check::kCsymm, symm<c8, false>, side, uplo, m, n, cx(alpha), cx(a), lda,
                      cx(b), ldb, cx(beta), cx(c), ldc);
}

ORB_API void cherk(const char *uplo, const char *trans, const int *n, const int *k,
                   const float *alpha, const orb_complex8 *a, const int *lda, const float *beta,
                   orb_complex8 *c, const int *ldc, int, int) {
  orb::entry::checked(orb::check::kCherk, syrk<c8, float>, uplo, trans, n, k, alpha, cx(a), lda,
                      beta, cx(c), ldc);
}

ORB_API void csyrk(const char *uplo, const char *trans, const int *n, const int *k,
                   const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                   const orb_complex8 *beta, orb_complex8 *c, const int *ldc, int, int) {
  orb::entry::checked(orb::check::kCsyrk, syrk<c8, c8>, uplo, trans, n, k, cx(alpha), cx(a), lda,
                      cx(beta), cx(c), ldc);
}

ORB_API void cher2k(const char *uplo, const char *trans, const int *n, const int *k,
                    const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                    const orb_complex8 *b, const int *ldb, const float *beta, orb_complex8 *c,
                    const int *ldc, int, int) {
  orb::entry::checked(orb::check::kCher2k, syr2k<c8, float>, uplo, trans, n, k, cx(alpha), cx(a),
                      lda, cx(b), ldb, beta, cx(c), ldc);
}

ORB_API void csyr2k(const char *uplo, const char *trans, const int *n, const int *k,
                    const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                    const orb_complex8 *b, const int *ldb, const orb_complex8 *beta,
                    orb_complex8 *c, const int *ldc, int, int) {
  orb::entry::checked(orb::check::kCsyr2k, syr2k<c8, c8>, uplo, trans, n, k, cx(alpha), cx(a), lda,
                      cx(b), ldb, cx(beta), cx(c), ldc);
}

ORB_API void ctrmm(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const orb_complex8 *alpha, const orb_complex8 *a,
                   const int *lda, orb_complex8 *b, const int *ldb, int, int, int, int) {
  orb::entry::checked(orb::check::kCtrmm, trmm<c8>, side, uplo, transa, diag, m, n, cx(alpha),
                      cx(a), lda, cx(b), ldb);
}

ORB_API void ctrsm(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const orb_complex8 *alpha, const orb_complex8 *a,
                   const int *lda, orb_complex8 *b, const int *ldb, int, int, int, int) {
  orb::entry::checked(orb::check::kCtrsm, trsm<c8>, side, uplo, transa, diag, m, n, cx(alpha),
                      cx(a), lda, cx(b), ldb);
}

// ---- double precision ------------------------------------------------------------------

ORB_API void DTRSM(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const double *alpha, const double *a, const int *lda,
                   double *b, const int *ldb, int, int, int, int) {
  orb::entry::checked(orb::check::kDtrsm, trsm<double>, side, uplo, transa, diag, m, n, alpha, a,
                      lda, b, ldb);
}

ORB_API void ZTRSM(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const orb_complex16 *alpha, const orb_complex16 *a,
                   const int *lda, orb_complex16 *b, const int *ldb, int, int, int, int) {
  orb::entry::checked(orb::check::kZtrsm, trsm<c16>, side, uplo, transa, diag, m, n, cx(alpha),
                      cx(a), lda, cx(b), ldb);
}

}  // extern "C"
