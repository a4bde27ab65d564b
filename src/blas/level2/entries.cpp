// The exported level-2 entries: checked entries over the drivers of
// level2.h, and the LAPACK auxiliary ZSYR, which forwards and checks its
// arguments itself.
#include <complex>

#include "blas/complex_abi.h"
#include "blas/level2/checkers.h"
#include "blas/level2/level2.h"
#include "common/options.h"
#include "orb.h"
#include "service/entry.h"

namespace {

namespace l2 = orb::blas::level2;
using orb::c16;
using orb::c8;
using orb::Diag;
using orb::Op;
using orb::option;
using orb::Uplo;
using orb::blas::cx;

bool upper(const char *uplo) {
  return option<Uplo>(*uplo) == Uplo::kUpper;
}
bool unit(const char *diag) {
  return option<Diag>(*diag) == Diag::kUnit;
}

// The drivers with the published argument lists, read once the checks passed.
template <class T>
void gemv(const char *trans, const int *m, const int *n, const T *alpha, const T *a, const int *lda,
          const T *x, const int *incx, const T *beta, T *y, const int *incy) {
  l2::gemv(option<Op>(*trans), *m, *n, *alpha, a, *lda, x, *incx, *beta, y, *incy);
}
template <class T, bool kConj>
void ger(const int *m, const int *n, const T *alpha, const T *x, const int *incx, const T *y,
         const int *incy, T *a, const int *lda) {
  l2::ger(*m, *n, *alpha, x, *incx, y, *incy, a, *lda, kConj);
}
template <class T, bool kHerm>
void symv(const char *uplo, const int *n, const T *alpha, const T *a, const int *lda, const T *x,
          const int *incx, const T *beta, T *y, const int *incy) {
  l2::symv(upper(uplo), *n, *alpha, a, *lda, x, *incx, *beta, y, *incy, kHerm);
}
template <class T>
void syr(const char *uplo, const int *n, const T *alpha, const T *x, const int *incx, T *a,
         const int *lda) {
  l2::syr(upper(uplo), *n, *alpha, x, *incx, a, *lda, false);
}
// xHER: a real alpha.
template <class R>
void her(const char *uplo, const int *n, const R *alpha, const std::complex<R> *x, const int *incx,
         std::complex<R> *a, const int *lda) {
  l2::syr(upper(uplo), *n, std::complex<R>(*alpha), x, *incx, a, *lda, true);
}
template <class T, bool kHerm>
void syr2(const char *uplo, const int *n, const T *alpha, const T *x, const int *incx, const T *y,
          const int *incy, T *a, const int *lda) {
  l2::syr2(upper(uplo), *n, *alpha, x, *incx, y, *incy, a, *lda, kHerm);
}
template <class T>
void trmv(const char *uplo, const char *trans, const char *diag, const int *n, const T *a,
          const int *lda, T *x, const int *incx) {
  l2::trmv(upper(uplo), option<Op>(*trans), unit(diag), *n, a, *lda, x, *incx);
}
template <class T>
void trsv(const char *uplo, const char *trans, const char *diag, const int *n, const T *a,
          const int *lda, T *x, const int *incx) {
  l2::trsv(upper(uplo), option<Op>(*trans), unit(diag), *n, a, *lda, x, *incx);
}

// ZSYR follows the LAPACK convention: it reports an illegal argument through
// the internal reporter and returns.
void zsyr(const char *uplo, const int *n, const c16 *alpha, const c16 *x, const int *incx, c16 *a,
          const int *lda) {
  const void *args[] = {uplo, n, alpha, x, incx, a, lda};
  if (!orb::check::run_lapack(orb::check::kZsyr, nullptr, args, 7)) return;
  l2::syr(upper(uplo), *n, *alpha, x, *incx, a, *lda, false);
}

}  // namespace

using orb::entry::checked;
namespace ck = orb::check;

extern "C" {

// ---- single precision ------------------------------------------------------------

ORB_API void sgemv(const char *trans, const int *m, const int *n, const float *alpha,
                   const float *a, const int *lda, const float *x, const int *incx,
                   const float *beta, float *y, const int *incy, int) {
  checked(ck::kSgemv, gemv<float>, trans, m, n, alpha, a, lda, x, incx, beta, y, incy);
}
ORB_API void sger(const int *m, const int *n, const float *alpha, const float *x, const int *incx,
                  const float *y, const int *incy, float *a, const int *lda) {
  checked(ck::kSger, ger<float, false>, m, n, alpha, x, incx, y, incy, a, lda);
}
ORB_API void ssymv(const char *uplo, const int *n, const float *alpha, const float *a,
                   const int *lda, const float *x, const int *incx, const float *beta, float *y,
                   const int *incy, int) {
  checked(ck::kSsymv, symv<float, false>, uplo, n, alpha, a, lda, x, incx, beta, y, incy);
}
ORB_API void ssyr(const char *uplo, const int *n, const float *alpha, const float *x,
                  const int *incx, float *a, const int *lda, int) {
  checked(ck::kSsyr, syr<float>, uplo, n, alpha, x, incx, a, lda);
}
ORB_API void ssyr2(const char *uplo, const int *n, const float *alpha, const float *x,
                   const int *incx, const float *y, const int *incy, float *a, const int *lda,
                   int) {
  checked(ck::kSsyr2, syr2<float, false>, uplo, n, alpha, x, incx, y, incy, a, lda);
}
ORB_API void strmv(const char *uplo, const char *trans, const char *diag, const int *n,
                   const float *a, const int *lda, float *x, const int *incx, int, int, int) {
  checked(ck::kStrmv, trmv<float>, uplo, trans, diag, n, a, lda, x, incx);
}
ORB_API void strsv(const char *uplo, const char *trans, const char *diag, const int *n,
                   const float *a, const int *lda, float *x, const int *incx, int, int, int) {
  checked(ck::kStrsv, trsv<float>, uplo, trans, diag, n, a, lda, x, incx);
}

// ---- single precision complex ------------------------------------------------------

ORB_API void cgemv(const char *trans, const int *m, const int *n, const orb_complex8 *alpha,
                   const orb_complex8 *a, const int *lda, const orb_complex8 *x, const int *incx,
                   const orb_complex8 *beta, orb_complex8 *y, const int *incy, int) {
  checked(ck::kCgemv, gemv<c8>, trans, m, n, cx(alpha), cx(a), lda, cx(x), incx, cx(beta), cx(y),
          incy);
}
ORB_API void cgerc(const int *m, const int *n, const orb_complex8 *alpha, const orb_complex8 *x,
                   const int *incx, const orb_complex8 *y, const int *incy, orb_complex8 *a,
                   const int *lda) {
  checked(ck::kCgerc, ger<c8, true>, m, n, cx(alpha), cx(x), incx, cx(y), incy, cx(a), lda);
}
ORB_API void cgeru(const int *m, const int *n, const orb_complex8 *alpha, const orb_complex8 *x,
                   const int *incx, const orb_complex8 *y, const int *incy, orb_complex8 *a,
                   const int *lda) {
  checked(ck::kCgeru, ger<c8, false>, m, n, cx(alpha), cx(x), incx, cx(y), incy, cx(a), lda);
}
ORB_API void chemv(const char *uplo, const int *n, const orb_complex8 *alpha, const orb_complex8 *a,
                   const int *lda, const orb_complex8 *x, const int *incx, const orb_complex8 *beta,
                   orb_complex8 *y, const int *incy, int) {
  checked(ck::kChemv, symv<c8, true>, uplo, n, cx(alpha), cx(a), lda, cx(x), incx, cx(beta), cx(y),
          incy);
}
ORB_API void cher(const char *uplo, const int *n, const float *alpha, const orb_complex8 *x,
                  const int *incx, orb_complex8 *a, const int *lda, int) {
  checked(ck::kCher, her<float>, uplo, n, alpha, cx(x), incx, cx(a), lda);
}
ORB_API void cher2(const char *uplo, const int *n, const orb_complex8 *alpha, const orb_complex8 *x,
                   const int *incx, const orb_complex8 *y, const int *incy, orb_complex8 *a,
                   const int *lda, int) {
  checked(ck::kCher2, syr2<c8, true>, uplo, n, cx(alpha), cx(x), incx, cx(y), incy, cx(a), lda);
}
ORB_API void ctrmv(const char *uplo, const char *trans, const char *diag, const int *n,
                   const orb_complex8 *a, const int *lda, orb_complex8 *x, const int *incx, int,
                   int, int) {
  checked(ck::kCtrmv, trmv<c8>, uplo, trans, diag, n, cx(a), lda, cx(x), incx);
}
ORB_API void ctrsv(const char *uplo, const char *trans, const char *diag, const int *n,
                   const orb_complex8 *a, const int *lda, orb_complex8 *x, const int *incx, int,
                   int, int) {
  checked(ck::kCtrsv, trsv<c8>, uplo, trans, diag, n, cx(a), lda, cx(x), incx);
}

// ---- double precision (computed in double precision) -------------------------------

ORB_API void DGEMV(const char *trans, const int *m, const int *n, const double *alpha,
                   const double *a, const int *lda, const double *x, const int *incx,
                   const double *beta, double *y, const int *incy, int) {
  checked(ck::kDgemv, gemv<double>, trans, m, n, alpha, a, lda, x, incx, beta, y, incy);
}
ORB_API void DGER(const int *m, const int *n, const double *alpha, const double *x, const int *incx,
                  const double *y, const int *incy, double *a, const int *lda) {
  checked(ck::kDger, ger<double, false>, m, n, alpha, x, incx, y, incy, a, lda);
}
ORB_API void DSYR(const char *uplo, const int *n, const double *alpha, const double *x,
                  const int *incx, double *a, const int *lda, int) {
  checked(ck::kDsyr, syr<double>, uplo, n, alpha, x, incx, a, lda);
}
ORB_API void ZGEMV(const char *trans, const int *m, const int *n, const orb_complex16 *alpha,
                   const orb_complex16 *a, const int *lda, const orb_complex16 *x, const int *incx,
                   const orb_complex16 *beta, orb_complex16 *y, const int *incy, int) {
  checked(ck::kZgemv, gemv<c16>, trans, m, n, cx(alpha), cx(a), lda, cx(x), incx, cx(beta), cx(y),
          incy);
}
ORB_API void ZGERU(const int *m, const int *n, const orb_complex16 *alpha, const orb_complex16 *x,
                   const int *incx, const orb_complex16 *y, const int *incy, orb_complex16 *a,
                   const int *lda) {
  checked(ck::kZgeru, ger<c16, false>, m, n, cx(alpha), cx(x), incx, cx(y), incy, cx(a), lda);
}
ORB_API void zgerc(const int *m, const int *n, const orb_complex16 *alpha, const orb_complex16 *x,
                   const int *incx, const orb_complex16 *y, const int *incy, orb_complex16 *a,
                   const int *lda) {
  checked(ck::kZgerc, ger<c16, true>, m, n, cx(alpha), cx(x), incx, cx(y), incy, cx(a), lda);
}
ORB_API void ZHER(const char *uplo, const int *n, const double *alpha, const orb_complex16 *x,
                  const int *incx, orb_complex16 *a, const int *lda, int) {
  checked(ck::kZher, her<double>, uplo, n, alpha, cx(x), incx, cx(a), lda);
}
ORB_API void ZSYR(const char *uplo, const int *n, const orb_complex16 *alpha,
                  const orb_complex16 *x, const int *incx, orb_complex16 *a, const int *lda, int) {
  orb::entry::plain(zsyr, uplo, n, cx(alpha), cx(x), incx, cx(a), lda);
}

}  // extern "C"
