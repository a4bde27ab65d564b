/*
 * orb.h: public C declarations of every routine exported by ORB.
 *
 * Conventions
 *
 * - BLAS, LAPACK, sparse and iterative solver entries follow the Fortran calling
 *   convention: every numeric argument is passed by pointer, every character
 *   argument as a pointer to its first character (only that character is read),
 *   and one hidden `int` length per character argument is appended after all
 *   ordinary arguments, in the order of the character arguments. Pass 1 for each.
 * - Integers are 32-bit `int`; Fortran LOGICAL arrays are `int` arrays.
 * - Dense matrices are column-major with a leading dimension, as in LAPACK.
 * - Complex values are two consecutive reals, real part first (orb_complex8,
 *   orb_complex16); they are layout-compatible with C99 `float _Complex` and
 *   C++ `std::complex<float>` (and their double forms).
 * - Functions whose result is complex (cdotc, cdotu, cdotci, cdotui) return it
 *   through an extra first argument.
 * - The thread controls take plain integers by value; the host routines take
 *   pointers, element counts and real scalars by value and complex scalars by
 *   pointer.
 * - On 32-bit Windows every routine is cdecl (caller pops), except the few
 *   element-access routines marked ORB_STDCALL.
 */
#ifndef ORB_H
#define ORB_H

#if defined(ORB_BUILDING) && !defined(_WIN32)
#define ORB_API __attribute__((visibility("default")))
#else
#define ORB_API
#endif

#if defined(_WIN32) && !defined(_WIN64)
#define ORB_STDCALL __stdcall
#else
#define ORB_STDCALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef struct {
  float re, im;
} orb_complex8;

typedef struct {
  double re, im;
} orb_complex16;

/* ---------------------------------------------------------------------------
 * Level-1 BLAS, single precision real
 * ------------------------------------------------------------------------- */
ORB_API void saxpy(const int *n, const float *sa, const float *sx, const int *incx, float *sy,
                   const int *incy);
ORB_API void SAXPY(const int *n, const float *sa, const float *sx, const int *incx, float *sy,
                   const int *incy);
ORB_API void scopy(const int *n, const float *sx, const int *incx, float *sy, const int *incy);
ORB_API void SCOPY(const int *n, const float *sx, const int *incx, float *sy, const int *incy);
ORB_API float sdot(const int *n, const float *sx, const int *incx, const float *sy,
                   const int *incy);
ORB_API float SDOT(const int *n, const float *sx, const int *incx, const float *sy,
                   const int *incy);
ORB_API float snrm2(const int *n, const float *x, const int *incx);
ORB_API float SNRM2(const int *n, const float *x, const int *incx);
ORB_API float sasum(const int *n, const float *sx, const int *incx);
ORB_API void sscal(const int *n, const float *sa, float *sx, const int *incx);
ORB_API void SSCAL(const int *n, const float *sa, float *sx, const int *incx);
ORB_API void sswap(const int *n, float *sx, const int *incx, float *sy, const int *incy);
ORB_API void srot(const int *n, float *sx, const int *incx, float *sy, const int *incy,
                  const float *c, const float *s);
ORB_API void srotg(float *sa, float *sb, float *c, float *s);
ORB_API void srotm(const int *n, float *sx, const int *incx, float *sy, const int *incy,
                   const float *sparam);
ORB_API void srotmg(float *sd1, float *sd2, float *sx1, const float *sy1, float *sparam);
ORB_API int isamax(const int *n, const float *sx, const int *incx);
/* 1-based index of the first element of smallest absolute value; 0 when n < 1. */
ORB_API int isamin(const int *n, const float *sx, const int *incx);

/* ---------------------------------------------------------------------------
 * Level-1 BLAS, single precision complex
 * ------------------------------------------------------------------------- */
ORB_API void caxpy(const int *n, const orb_complex8 *ca, const orb_complex8 *cx, const int *incx,
                   orb_complex8 *cy, const int *incy);
ORB_API void ccopy(const int *n, const orb_complex8 *cx, const int *incx, orb_complex8 *cy,
                   const int *incy);
/* *result = conj(x) . y */
ORB_API void cdotc(orb_complex8 *result, const int *n, const orb_complex8 *cx, const int *incx,
                   const orb_complex8 *cy, const int *incy);
/* *result = x . y */
ORB_API void cdotu(orb_complex8 *result, const int *n, const orb_complex8 *cx, const int *incx,
                   const orb_complex8 *cy, const int *incy);
ORB_API void cscal(const int *n, const orb_complex8 *ca, orb_complex8 *cx, const int *incx);
ORB_API void csscal(const int *n, const float *sa, orb_complex8 *cx, const int *incx);
ORB_API void cswap(const int *n, orb_complex8 *cx, const int *incx, orb_complex8 *cy,
                   const int *incy);
ORB_API void csrot(const int *n, orb_complex8 *cx, const int *incx, orb_complex8 *cy,
                   const int *incy, const float *c, const float *s);
ORB_API void crotg(orb_complex8 *ca, const orb_complex8 *cb, float *c, orb_complex8 *s);
ORB_API float scnrm2(const int *n, const orb_complex8 *x, const int *incx);
ORB_API float scasum(const int *n, const orb_complex8 *cx, const int *incx);
ORB_API int icamax(const int *n, const orb_complex8 *cx, const int *incx);
/* 1-based index of the first element of smallest |re| + |im|; 0 when n < 1. */
ORB_API int icamin(const int *n, const orb_complex8 *cx, const int *incx);

/* ---------------------------------------------------------------------------
 * Sparse level-1 BLAS: a compressed vector x of nz values at 1-based positions
 * indx in a full vector y.
 * ------------------------------------------------------------------------- */
ORB_API void saxpyi(const int *nz, const float *a, const float *x, const int *indx, float *y);
ORB_API float sdoti(const int *nz, const float *x, const int *indx, const float *y);
ORB_API void sgthr(const int *nz, const float *y, float *x, const int *indx);
ORB_API void ssctr(const int *nz, const float *x, const int *indx, float *y);
ORB_API void caxpyi(const int *nz, const orb_complex8 *a, const orb_complex8 *x, const int *indx,
                    orb_complex8 *y);
/* *result = sum conj(x[i]) * y[indx[i]] */
ORB_API void cdotci(orb_complex8 *result, const int *nz, const orb_complex8 *x, const int *indx,
                    const orb_complex8 *y);
/* *result = sum x[i] * y[indx[i]] */
ORB_API void cdotui(orb_complex8 *result, const int *nz, const orb_complex8 *x, const int *indx,
                    const orb_complex8 *y);
ORB_API void cgthr(const int *nz, const orb_complex8 *y, orb_complex8 *x, const int *indx);
ORB_API void csctr(const int *nz, const orb_complex8 *x, const int *indx, orb_complex8 *y);

/* ---------------------------------------------------------------------------
 * Level-2 BLAS, single precision
 * ------------------------------------------------------------------------- */
ORB_API void sgemv(const char *trans, const int *m, const int *n, const float *alpha,
                   const float *a, const int *lda, const float *x, const int *incx,
                   const float *beta, float *y, const int *incy, int trans_len);
ORB_API void sger(const int *m, const int *n, const float *alpha, const float *x, const int *incx,
                  const float *y, const int *incy, float *a, const int *lda);
ORB_API void ssymv(const char *uplo, const int *n, const float *alpha, const float *a,
                   const int *lda, const float *x, const int *incx, const float *beta, float *y,
                   const int *incy, int uplo_len);
ORB_API void ssyr(const char *uplo, const int *n, const float *alpha, const float *x,
                  const int *incx, float *a, const int *lda, int uplo_len);
ORB_API void ssyr2(const char *uplo, const int *n, const float *alpha, const float *x,
                   const int *incx, const float *y, const int *incy, float *a, const int *lda,
                   int uplo_len);
ORB_API void strmv(const char *uplo, const char *trans, const char *diag, const int *n,
                   const float *a, const int *lda, float *x, const int *incx, int uplo_len,
                   int trans_len, int diag_len);
ORB_API void strsv(const char *uplo, const char *trans, const char *diag, const int *n,
                   const float *a, const int *lda, float *x, const int *incx, int uplo_len,
                   int trans_len, int diag_len);
ORB_API void cgemv(const char *trans, const int *m, const int *n, const orb_complex8 *alpha,
                   const orb_complex8 *a, const int *lda, const orb_complex8 *x, const int *incx,
                   const orb_complex8 *beta, orb_complex8 *y, const int *incy, int trans_len);
ORB_API void cgerc(const int *m, const int *n, const orb_complex8 *alpha, const orb_complex8 *x,
                   const int *incx, const orb_complex8 *y, const int *incy, orb_complex8 *a,
                   const int *lda);
ORB_API void cgeru(const int *m, const int *n, const orb_complex8 *alpha, const orb_complex8 *x,
                   const int *incx, const orb_complex8 *y, const int *incy, orb_complex8 *a,
                   const int *lda);
ORB_API void chemv(const char *uplo, const int *n, const orb_complex8 *alpha, const orb_complex8 *a,
                   const int *lda, const orb_complex8 *x, const int *incx, const orb_complex8 *beta,
                   orb_complex8 *y, const int *incy, int uplo_len);
ORB_API void cher(const char *uplo, const int *n, const float *alpha, const orb_complex8 *x,
                  const int *incx, orb_complex8 *a, const int *lda, int uplo_len);
ORB_API void cher2(const char *uplo, const int *n, const orb_complex8 *alpha, const orb_complex8 *x,
                   const int *incx, const orb_complex8 *y, const int *incy, orb_complex8 *a,
                   const int *lda, int uplo_len);
ORB_API void ctrmv(const char *uplo, const char *trans, const char *diag, const int *n,
                   const orb_complex8 *a, const int *lda, orb_complex8 *x, const int *incx,
                   int uplo_len, int trans_len, int diag_len);
ORB_API void ctrsv(const char *uplo, const char *trans, const char *diag, const int *n,
                   const orb_complex8 *a, const int *lda, orb_complex8 *x, const int *incx,
                   int uplo_len, int trans_len, int diag_len);

/* ---------------------------------------------------------------------------
 * Level-3 BLAS, single precision
 * ------------------------------------------------------------------------- */
ORB_API void sgemm(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                   const float *alpha, const float *a, const int *lda, const float *b,
                   const int *ldb, const float *beta, float *c, const int *ldc, int transa_len,
                   int transb_len);
ORB_API void ssymm(const char *side, const char *uplo, const int *m, const int *n,
                   const float *alpha, const float *a, const int *lda, const float *b,
                   const int *ldb, const float *beta, float *c, const int *ldc, int side_len,
                   int uplo_len);
ORB_API void ssyrk(const char *uplo, const char *trans, const int *n, const int *k,
                   const float *alpha, const float *a, const int *lda, const float *beta, float *c,
                   const int *ldc, int uplo_len, int trans_len);
ORB_API void ssyr2k(const char *uplo, const char *trans, const int *n, const int *k,
                    const float *alpha, const float *a, const int *lda, const float *b,
                    const int *ldb, const float *beta, float *c, const int *ldc, int uplo_len,
                    int trans_len);
ORB_API void strmm(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const float *alpha, const float *a, const int *lda,
                   float *b, const int *ldb, int side_len, int uplo_len, int transa_len,
                   int diag_len);
ORB_API void strsm(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const float *alpha, const float *a, const int *lda,
                   float *b, const int *ldb, int side_len, int uplo_len, int transa_len,
                   int diag_len);
ORB_API void cgemm(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                   const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                   const orb_complex8 *b, const int *ldb, const orb_complex8 *beta, orb_complex8 *c,
                   const int *ldc, int transa_len, int transb_len);
ORB_API void chemm(const char *side, const char *uplo, const int *m, const int *n,
                   const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                   const orb_complex8 *b, const int *ldb, const orb_complex8 *beta, orb_complex8 *c,
                   const int *ldc, int side_len, int uplo_len);
ORB_API void cherk(const char *uplo, const char *trans, const int *n, const int *k,
                   const float *alpha, const orb_complex8 *a, const int *lda, const float *beta,
                   orb_complex8 *c, const int *ldc, int uplo_len, int trans_len);
ORB_API void cher2k(const char *uplo, const char *trans, const int *n, const int *k,
                    const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                    const orb_complex8 *b, const int *ldb, const float *beta, orb_complex8 *c,
                    const int *ldc, int uplo_len, int trans_len);
ORB_API void csymm(const char *side, const char *uplo, const int *m, const int *n,
                   const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                   const orb_complex8 *b, const int *ldb, const orb_complex8 *beta, orb_complex8 *c,
                   const int *ldc, int side_len, int uplo_len);
ORB_API void csyrk(const char *uplo, const char *trans, const int *n, const int *k,
                   const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                   const orb_complex8 *beta, orb_complex8 *c, const int *ldc, int uplo_len,
                   int trans_len);
ORB_API void csyr2k(const char *uplo, const char *trans, const int *n, const int *k,
                    const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                    const orb_complex8 *b, const int *ldb, const orb_complex8 *beta,
                    orb_complex8 *c, const int *ldc, int uplo_len, int trans_len);
ORB_API void ctrmm(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const orb_complex8 *alpha, const orb_complex8 *a,
                   const int *lda, orb_complex8 *b, const int *ldb, int side_len, int uplo_len,
                   int transa_len, int diag_len);
ORB_API void ctrsm(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const orb_complex8 *alpha, const orb_complex8 *a,
                   const int *lda, orb_complex8 *b, const int *ldb, int side_len, int uplo_len,
                   int transa_len, int diag_len);

/* ---------------------------------------------------------------------------
 * Double-precision names bound to single precision. These lower-case names are
 * deliberately the single-precision routines of the same operation: they take
 * float / orb_complex8 data and compute in single precision (dgemm is sgemm,
 * zgemm is cgemm, dpotrf and zpotrf are both spotrf, and so on). Callers that
 * need double precision use the upper-case DGEMM, DTRSM, ZGEMM, ZTRSM, DPOTRF.
 * ------------------------------------------------------------------------- */
ORB_API void dgemm(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                   const float *alpha, const float *a, const int *lda, const float *b,
                   const int *ldb, const float *beta, float *c, const int *ldc, int transa_len,
                   int transb_len);
ORB_API void dsyrk(const char *uplo, const char *trans, const int *n, const int *k,
                   const float *alpha, const float *a, const int *lda, const float *beta, float *c,
                   const int *ldc, int uplo_len, int trans_len);
ORB_API void dtrsm(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const float *alpha, const float *a, const int *lda,
                   float *b, const int *ldb, int side_len, int uplo_len, int transa_len,
                   int diag_len);
ORB_API float dnrm2(const int *n, const float *x, const int *incx);
ORB_API void dpotrf(const char *uplo, const int *n, float *a, const int *lda, int *info,
                    int uplo_len);
ORB_API void zpotrf(const char *uplo, const int *n, float *a, const int *lda, int *info,
                    int uplo_len);
ORB_API void zgemm(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                   const orb_complex8 *alpha, const orb_complex8 *a, const int *lda,
                   const orb_complex8 *b, const int *ldb, const orb_complex8 *beta, orb_complex8 *c,
                   const int *ldc, int transa_len, int transb_len);
ORB_API void zherk(const char *uplo, const char *trans, const int *n, const int *k,
                   const float *alpha, const orb_complex8 *a, const int *lda, const float *beta,
                   orb_complex8 *c, const int *ldc, int uplo_len, int trans_len);
ORB_API void ztrsm(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const orb_complex8 *alpha, const orb_complex8 *a,
                   const int *lda, orb_complex8 *b, const int *ldb, int side_len, int uplo_len,
                   int transa_len, int diag_len);
ORB_API float dznrm2(const int *n, const orb_complex8 *x, const int *incx);

/* ---------------------------------------------------------------------------
 * BLAS, double precision real (computed in double precision)
 * ------------------------------------------------------------------------- */
ORB_API void DGEMM(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                   const double *alpha, const double *a, const int *lda, const double *b,
                   const int *ldb, const double *beta, double *c, const int *ldc, int transa_len,
                   int transb_len);
ORB_API void DGEMV(const char *trans, const int *m, const int *n, const double *alpha,
                   const double *a, const int *lda, const double *x, const int *incx,
                   const double *beta, double *y, const int *incy, int trans_len);
ORB_API void dgemv(const char *trans, const int *m, const int *n, const double *alpha,
                   const double *a, const int *lda, const double *x, const int *incx,
                   const double *beta, double *y, const int *incy, int trans_len);
ORB_API void DGER(const int *m, const int *n, const double *alpha, const double *x, const int *incx,
                  const double *y, const int *incy, double *a, const int *lda);
ORB_API void dger(const int *m, const int *n, const double *alpha, const double *x, const int *incx,
                  const double *y, const int *incy, double *a, const int *lda);
ORB_API void DSYR(const char *uplo, const int *n, const double *alpha, const double *x,
                  const int *incx, double *a, const int *lda, int uplo_len);
ORB_API void dsyr(const char *uplo, const int *n, const double *alpha, const double *x,
                  const int *incx, double *a, const int *lda, int uplo_len);
ORB_API void DTRSM(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const double *alpha, const double *a, const int *lda,
                   double *b, const int *ldb, int side_len, int uplo_len, int transa_len,
                   int diag_len);
ORB_API void DSCAL(const int *n, const double *da, double *dx, const int *incx);
ORB_API void dscal(const int *n, const double *da, double *dx, const int *incx);
ORB_API void DSWAP(const int *n, double *dx, const int *incx, double *dy, const int *incy);
ORB_API void dswap(const int *n, double *dx, const int *incx, double *dy, const int *incy);
ORB_API void dcopy(const int *n, const double *dx, const int *incx, double *dy, const int *incy);
ORB_API int IDAMAX(const int *n, const double *dx, const int *incx);
ORB_API int idamax(const int *n, const double *dx, const int *incx);

/* ---------------------------------------------------------------------------
 * BLAS, double precision complex (computed in double precision)
 * ------------------------------------------------------------------------- */
ORB_API void ZGEMM(const char *transa, const char *transb, const int *m, const int *n, const int *k,
                   const orb_complex16 *alpha, const orb_complex16 *a, const int *lda,
                   const orb_complex16 *b, const int *ldb, const orb_complex16 *beta,
                   orb_complex16 *c, const int *ldc, int transa_len, int transb_len);
ORB_API void ZGEMV(const char *trans, const int *m, const int *n, const orb_complex16 *alpha,
                   const orb_complex16 *a, const int *lda, const orb_complex16 *x, const int *incx,
                   const orb_complex16 *beta, orb_complex16 *y, const int *incy, int trans_len);
ORB_API void zgemv(const char *trans, const int *m, const int *n, const orb_complex16 *alpha,
                   const orb_complex16 *a, const int *lda, const orb_complex16 *x, const int *incx,
                   const orb_complex16 *beta, orb_complex16 *y, const int *incy, int trans_len);
ORB_API void ZGERU(const int *m, const int *n, const orb_complex16 *alpha, const orb_complex16 *x,
                   const int *incx, const orb_complex16 *y, const int *incy, orb_complex16 *a,
                   const int *lda);
ORB_API void zgerc(const int *m, const int *n, const orb_complex16 *alpha, const orb_complex16 *x,
                   const int *incx, const orb_complex16 *y, const int *incy, orb_complex16 *a,
                   const int *lda);
ORB_API void ZHER(const char *uplo, const int *n, const double *alpha, const orb_complex16 *x,
                  const int *incx, orb_complex16 *a, const int *lda, int uplo_len);
ORB_API void zher(const char *uplo, const int *n, const double *alpha, const orb_complex16 *x,
                  const int *incx, orb_complex16 *a, const int *lda, int uplo_len);
ORB_API void ZTRSM(const char *side, const char *uplo, const char *transa, const char *diag,
                   const int *m, const int *n, const orb_complex16 *alpha, const orb_complex16 *a,
                   const int *lda, orb_complex16 *b, const int *ldb, int side_len, int uplo_len,
                   int transa_len, int diag_len);
ORB_API void ZSCAL(const int *n, const orb_complex16 *za, orb_complex16 *zx, const int *incx);
ORB_API void zscal(const int *n, const orb_complex16 *za, orb_complex16 *zx, const int *incx);
ORB_API void ZDSCAL(const int *n, const double *da, orb_complex16 *zx, const int *incx);
ORB_API void ZSWAP(const int *n, orb_complex16 *zx, const int *incx, orb_complex16 *zy,
                   const int *incy);
ORB_API void zswap(const int *n, orb_complex16 *zx, const int *incx, orb_complex16 *zy,
                   const int *incy);
ORB_API void zcopy(const int *n, const orb_complex16 *zx, const int *incx, orb_complex16 *zy,
                   const int *incy);
ORB_API int IZAMAX(const int *n, const orb_complex16 *zx, const int *incx);
ORB_API int izamax(const int *n, const orb_complex16 *zx, const int *incx);
/* Plane rotation with real cosine c and complex sine s. */
ORB_API void ZROT(const int *n, orb_complex16 *cx, const int *incx, orb_complex16 *cy,
                  const int *incy, const double *c, const orb_complex16 *s);
/* Complex symmetric (not Hermitian) rank-1 update A = alpha x x^T + A. */
ORB_API void ZSYR(const char *uplo, const int *n, const orb_complex16 *alpha,
                  const orb_complex16 *x, const int *incx, orb_complex16 *a, const int *lda,
                  int uplo_len);

/* ---------------------------------------------------------------------------
 * LAPACK, double precision entries (computed in double precision)
 * ------------------------------------------------------------------------- */
ORB_API void DGETRF(const int *m, const int *n, double *a, const int *lda, int *ipiv, int *info);
ORB_API void dgetrf(const int *m, const int *n, double *a, const int *lda, int *ipiv, int *info);
ORB_API void DPOTRF(const char *uplo, const int *n, double *a, const int *lda, int *info,
                    int uplo_len);
ORB_API void DLASWP(const int *n, double *a, const int *lda, const int *k1, const int *k2,
                    const int *ipiv, const int *incx);
ORB_API void ZGETRF(const int *m, const int *n, orb_complex16 *a, const int *lda, int *ipiv,
                    int *info);
ORB_API void zgetrf(const int *m, const int *n, orb_complex16 *a, const int *lda, int *ipiv,
                    int *info);
ORB_API void ZLASWP(const int *n, orb_complex16 *a, const int *lda, const int *k1, const int *k2,
                    const int *ipiv, const int *incx);
ORB_API void ZPOTF2(const char *uplo, const int *n, orb_complex16 *a, const int *lda, int *info,
                    int uplo_len);
ORB_API void ZLACGV(const int *n, orb_complex16 *x, const int *incx);
ORB_API void ZLAEV2(const orb_complex16 *a, const orb_complex16 *b, const orb_complex16 *c,
                    double *rt1, double *rt2, double *cs1, orb_complex16 *sn1);

/* ---------------------------------------------------------------------------
 * LAPACK: general linear systems
 * ------------------------------------------------------------------------- */
ORB_API void sgetrf(const int *m, const int *n, float *a, const int *lda, int *ipiv, int *info);
ORB_API void sgetrs(const char *trans, const int *n, const int *nrhs, const float *a,
                    const int *lda, const int *ipiv, float *b, const int *ldb, int *info,
                    int trans_len);
ORB_API void sgetri(const int *n, float *a, const int *lda, const int *ipiv, float *work,
                    const int *lwork, int *info);
ORB_API void sgecon(const char *norm, const int *n, const float *a, const int *lda,
                    const float *anorm, float *rcond, float *work, int *iwork, int *info,
                    int norm_len);
ORB_API void sgerfs(const char *trans, const int *n, const int *nrhs, const float *a,
                    const int *lda, const float *af, const int *ldaf, const int *ipiv,
                    const float *b, const int *ldb, float *x, const int *ldx, float *ferr,
                    float *berr, float *work, int *iwork, int *info, int trans_len);
ORB_API void cgetrf(const int *m, const int *n, orb_complex8 *a, const int *lda, int *ipiv,
                    int *info);
ORB_API void cgetrs(const char *trans, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const int *ipiv, orb_complex8 *b, const int *ldb, int *info,
                    int trans_len);
ORB_API void cgetri(const int *n, orb_complex8 *a, const int *lda, const int *ipiv,
                    orb_complex8 *work, const int *lwork, int *info);
ORB_API void cgecon(const char *norm, const int *n, const orb_complex8 *a, const int *lda,
                    const float *anorm, float *rcond, orb_complex8 *work, float *rwork, int *info,
                    int norm_len);
ORB_API void cgerfs(const char *trans, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const orb_complex8 *af, const int *ldaf, const int *ipiv,
                    const orb_complex8 *b, const int *ldb, orb_complex8 *x, const int *ldx,
                    float *ferr, float *berr, orb_complex8 *work, float *rwork, int *info,
                    int trans_len);

/* ---------------------------------------------------------------------------
 * LAPACK: general band linear systems
 * ------------------------------------------------------------------------- */
ORB_API void sgbtrf(const int *m, const int *n, const int *kl, const int *ku, float *ab,
                    const int *ldab, int *ipiv, int *info);
ORB_API void sgbtrs(const char *trans, const int *n, const int *kl, const int *ku, const int *nrhs,
                    const float *ab, const int *ldab, const int *ipiv, float *b, const int *ldb,
                    int *info, int trans_len);
ORB_API void sgbcon(const char *norm, const int *n, const int *kl, const int *ku, const float *ab,
                    const int *ldab, const int *ipiv, const float *anorm, float *rcond, float *work,
                    int *iwork, int *info, int norm_len);
ORB_API void sgbrfs(const char *trans, const int *n, const int *kl, const int *ku, const int *nrhs,
                    const float *ab, const int *ldab, const float *afb, const int *ldafb,
                    const int *ipiv, const float *b, const int *ldb, float *x, const int *ldx,
                    float *ferr, float *berr, float *work, int *iwork, int *info, int trans_len);
ORB_API void cgbtrf(const int *m, const int *n, const int *kl, const int *ku, orb_complex8 *ab,
                    const int *ldab, int *ipiv, int *info);
ORB_API void cgbtrs(const char *trans, const int *n, const int *kl, const int *ku, const int *nrhs,
                    const orb_complex8 *ab, const int *ldab, const int *ipiv, orb_complex8 *b,
                    const int *ldb, int *info, int trans_len);
ORB_API void cgbcon(const char *norm, const int *n, const int *kl, const int *ku,
                    const orb_complex8 *ab, const int *ldab, const int *ipiv, const float *anorm,
                    float *rcond, orb_complex8 *work, float *rwork, int *info, int norm_len);
ORB_API void cgbrfs(const char *trans, const int *n, const int *kl, const int *ku, const int *nrhs,
                    const orb_complex8 *ab, const int *ldab, const orb_complex8 *afb,
                    const int *ldafb, const int *ipiv, const orb_complex8 *b, const int *ldb,
                    orb_complex8 *x, const int *ldx, float *ferr, float *berr, orb_complex8 *work,
                    float *rwork, int *info, int trans_len);

/* ---------------------------------------------------------------------------
 * LAPACK: symmetric / Hermitian positive definite linear systems
 * ------------------------------------------------------------------------- */
ORB_API void spotrf(const char *uplo, const int *n, float *a, const int *lda, int *info,
                    int uplo_len);
ORB_API void spotrs(const char *uplo, const int *n, const int *nrhs, const float *a, const int *lda,
                    float *b, const int *ldb, int *info, int uplo_len);
ORB_API void spotri(const char *uplo, const int *n, float *a, const int *lda, int *info,
                    int uplo_len);
ORB_API void spocon(const char *uplo, const int *n, const float *a, const int *lda,
                    const float *anorm, float *rcond, float *work, int *iwork, int *info,
                    int uplo_len);
ORB_API void sporfs(const char *uplo, const int *n, const int *nrhs, const float *a, const int *lda,
                    const float *af, const int *ldaf, const float *b, const int *ldb, float *x,
                    const int *ldx, float *ferr, float *berr, float *work, int *iwork, int *info,
                    int uplo_len);
ORB_API void cpotrf(const char *uplo, const int *n, orb_complex8 *a, const int *lda, int *info,
                    int uplo_len);
ORB_API void cpotrs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, orb_complex8 *b, const int *ldb, int *info, int uplo_len);
ORB_API void cpotri(const char *uplo, const int *n, orb_complex8 *a, const int *lda, int *info,
                    int uplo_len);
ORB_API void cpocon(const char *uplo, const int *n, const orb_complex8 *a, const int *lda,
                    const float *anorm, float *rcond, orb_complex8 *work, float *rwork, int *info,
                    int uplo_len);
ORB_API void cporfs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const orb_complex8 *af, const int *ldaf, const orb_complex8 *b,
                    const int *ldb, orb_complex8 *x, const int *ldx, float *ferr, float *berr,
                    orb_complex8 *work, float *rwork, int *info, int uplo_len);

/* ---------------------------------------------------------------------------
 * LAPACK: positive definite band linear systems
 * ------------------------------------------------------------------------- */
ORB_API void spbtrf(const char *uplo, const int *n, const int *kd, float *ab, const int *ldab,
                    int *info, int uplo_len);
ORB_API void spbtrs(const char *uplo, const int *n, const int *kd, const int *nrhs, const float *ab,
                    const int *ldab, float *b, const int *ldb, int *info, int uplo_len);
ORB_API void spbcon(const char *uplo, const int *n, const int *kd, const float *ab, const int *ldab,
                    const float *anorm, float *rcond, float *work, int *iwork, int *info,
                    int uplo_len);
ORB_API void spbrfs(const char *uplo, const int *n, const int *kd, const int *nrhs, const float *ab,
                    const int *ldab, const float *afb, const int *ldafb, const float *b,
                    const int *ldb, float *x, const int *ldx, float *ferr, float *berr, float *work,
                    int *iwork, int *info, int uplo_len);
ORB_API void cpbtrf(const char *uplo, const int *n, const int *kd, orb_complex8 *ab,
                    const int *ldab, int *info, int uplo_len);
ORB_API void cpbtrs(const char *uplo, const int *n, const int *kd, const int *nrhs,
                    const orb_complex8 *ab, const int *ldab, orb_complex8 *b, const int *ldb,
                    int *info, int uplo_len);
ORB_API void cpbcon(const char *uplo, const int *n, const int *kd, const orb_complex8 *ab,
                    const int *ldab, const float *anorm, float *rcond, orb_complex8 *work,
                    float *rwork, int *info, int uplo_len);
ORB_API void cpbrfs(const char *uplo, const int *n, const int *kd, const int *nrhs,
                    const orb_complex8 *ab, const int *ldab, const orb_complex8 *afb,
                    const int *ldafb, const orb_complex8 *b, const int *ldb, orb_complex8 *x,
                    const int *ldx, float *ferr, float *berr, orb_complex8 *work, float *rwork,
                    int *info, int uplo_len);

/* ---------------------------------------------------------------------------
 * LAPACK: symmetric / Hermitian indefinite linear systems
 * ------------------------------------------------------------------------- */
ORB_API void ssytrf(const char *uplo, const int *n, float *a, const int *lda, int *ipiv,
                    float *work, const int *lwork, int *info, int uplo_len);
ORB_API void ssytrs(const char *uplo, const int *n, const int *nrhs, const float *a, const int *lda,
                    const int *ipiv, float *b, const int *ldb, int *info, int uplo_len);
ORB_API void ssytri(const char *uplo, const int *n, float *a, const int *lda, const int *ipiv,
                    float *work, int *info, int uplo_len);
ORB_API void ssycon(const char *uplo, const int *n, const float *a, const int *lda, const int *ipiv,
                    const float *anorm, float *rcond, float *work, int *iwork, int *info,
                    int uplo_len);
ORB_API void ssyrfs(const char *uplo, const int *n, const int *nrhs, const float *a, const int *lda,
                    const float *af, const int *ldaf, const int *ipiv, const float *b,
                    const int *ldb, float *x, const int *ldx, float *ferr, float *berr, float *work,
                    int *iwork, int *info, int uplo_len);
ORB_API void csytrf(const char *uplo, const int *n, orb_complex8 *a, const int *lda, int *ipiv,
                    orb_complex8 *work, const int *lwork, int *info, int uplo_len);
ORB_API void csytrs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const int *ipiv, orb_complex8 *b, const int *ldb, int *info,
                    int uplo_len);
ORB_API void csytri(const char *uplo, const int *n, orb_complex8 *a, const int *lda,
                    const int *ipiv, orb_complex8 *work, int *info, int uplo_len);
ORB_API void csycon(const char *uplo, const int *n, const orb_complex8 *a, const int *lda,
                    const int *ipiv, const float *anorm, float *rcond, orb_complex8 *work,
                    int *info, int uplo_len);
ORB_API void csyrfs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const orb_complex8 *af, const int *ldaf, const int *ipiv,
                    const orb_complex8 *b, const int *ldb, orb_complex8 *x, const int *ldx,
                    float *ferr, float *berr, orb_complex8 *work, float *rwork, int *info,
                    int uplo_len);
ORB_API void chetrf(const char *uplo, const int *n, orb_complex8 *a, const int *lda, int *ipiv,
                    orb_complex8 *work, const int *lwork, int *info, int uplo_len);
ORB_API void chetrs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const int *ipiv, orb_complex8 *b, const int *ldb, int *info,
                    int uplo_len);
ORB_API void chetri(const char *uplo, const int *n, orb_complex8 *a, const int *lda,
                    const int *ipiv, orb_complex8 *work, int *info, int uplo_len);
ORB_API void checon(const char *uplo, const int *n, const orb_complex8 *a, const int *lda,
                    const int *ipiv, const float *anorm, float *rcond, orb_complex8 *work,
                    int *info, int uplo_len);
ORB_API void cherfs(const char *uplo, const int *n, const int *nrhs, const orb_complex8 *a,
                    const int *lda, const orb_complex8 *af, const int *ldaf, const int *ipiv,
                    const orb_complex8 *b, const int *ldb, orb_complex8 *x, const int *ldx,
                    float *ferr, float *berr, orb_complex8 *work, float *rwork, int *info,
                    int uplo_len);

/* ---------------------------------------------------------------------------
 * LAPACK: triangular systems
 * ------------------------------------------------------------------------- */
ORB_API void strtri(const char *uplo, const char *diag, const int *n, float *a, const int *lda,
                    int *info, int uplo_len, int diag_len);
ORB_API void strtrs(const char *uplo, const char *trans, const char *diag, const int *n,
                    const int *nrhs, const float *a, const int *lda, float *b, const int *ldb,
                    int *info, int uplo_len, int trans_len, int diag_len);
ORB_API void strcon(const char *norm, const char *uplo, const char *diag, const int *n,
                    const float *a, const int *lda, float *rcond, float *work, int *iwork,
                    int *info, int norm_len, int uplo_len, int diag_len);
ORB_API void strrfs(const char *uplo, const char *trans, const char *diag, const int *n,
                    const int *nrhs, const float *a, const int *lda, const float *b, const int *ldb,
                    const float *x, const int *ldx, float *ferr, float *berr, float *work,
                    int *iwork, int *info, int uplo_len, int trans_len, int diag_len);
ORB_API void ctrtri(const char *uplo, const char *diag, const int *n, orb_complex8 *a,
                    const int *lda, int *info, int uplo_len, int diag_len);
ORB_API void ctrtrs(const char *uplo, const char *trans, const char *diag, const int *n,
                    const int *nrhs, const orb_complex8 *a, const int *lda, orb_complex8 *b,
                    const int *ldb, int *info, int uplo_len, int trans_len, int diag_len);
ORB_API void ctrcon(const char *norm, const char *uplo, const char *diag, const int *n,
                    const orb_complex8 *a, const int *lda, float *rcond, orb_complex8 *work,
                    float *rwork, int *info, int norm_len, int uplo_len, int diag_len);
ORB_API void ctrrfs(const char *uplo, const char *trans, const char *diag, const int *n,
                    const int *nrhs, const orb_complex8 *a, const int *lda, const orb_complex8 *b,
                    const int *ldb, const orb_complex8 *x, const int *ldx, float *ferr, float *berr,
                    orb_complex8 *work, float *rwork, int *info, int uplo_len, int trans_len,
                    int diag_len);

/* ---------------------------------------------------------------------------
 * LAPACK: orthogonal / unitary factorizations
 * ------------------------------------------------------------------------- */
ORB_API void sgeqrf(const int *m, const int *n, float *a, const int *lda, float *tau, float *work,
                    const int *lwork, int *info);
ORB_API void sgeqp3(const int *m, const int *n, float *a, const int *lda, int *jpvt, float *tau,
                    float *work, const int *lwork, int *info);
ORB_API void sgelqf(const int *m, const int *n, float *a, const int *lda, float *tau, float *work,
                    const int *lwork, int *info);
ORB_API void sorgqr(const int *m, const int *n, const int *k, float *a, const int *lda,
                    const float *tau, float *work, const int *lwork, int *info);
ORB_API void sorglq(const int *m, const int *n, const int *k, float *a, const int *lda,
                    const float *tau, float *work, const int *lwork, int *info);
ORB_API void sormqr(const char *side, const char *trans, const int *m, const int *n, const int *k,
                    const float *a, const int *lda, const float *tau, float *c, const int *ldc,
                    float *work, const int *lwork, int *info, int side_len, int trans_len);
ORB_API void sormlq(const char *side, const char *trans, const int *m, const int *n, const int *k,
                    const float *a, const int *lda, const float *tau, float *c, const int *ldc,
                    float *work, const int *lwork, int *info, int side_len, int trans_len);
ORB_API void cgeqrf(const int *m, const int *n, orb_complex8 *a, const int *lda, orb_complex8 *tau,
                    orb_complex8 *work, const int *lwork, int *info);
ORB_API void cgelqf(const int *m, const int *n, orb_complex8 *a, const int *lda, orb_complex8 *tau,
                    orb_complex8 *work, const int *lwork, int *info);
ORB_API void cungqr(const int *m, const int *n, const int *k, orb_complex8 *a, const int *lda,
                    const orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info);
ORB_API void cunglq(const int *m, const int *n, const int *k, orb_complex8 *a, const int *lda,
                    const orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info);
ORB_API void cunmqr(const char *side, const char *trans, const int *m, const int *n, const int *k,
                    const orb_complex8 *a, const int *lda, const orb_complex8 *tau, orb_complex8 *c,
                    const int *ldc, orb_complex8 *work, const int *lwork, int *info, int side_len,
                    int trans_len);
ORB_API void cunmlq(const char *side, const char *trans, const int *m, const int *n, const int *k,
                    const orb_complex8 *a, const int *lda, const orb_complex8 *tau, orb_complex8 *c,
                    const int *ldc, orb_complex8 *work, const int *lwork, int *info, int side_len,
                    int trans_len);

/* ---------------------------------------------------------------------------
 * LAPACK: linear least squares
 * ------------------------------------------------------------------------- */
ORB_API void sgels(const char *trans, const int *m, const int *n, const int *nrhs, float *a,
                   const int *lda, float *b, const int *ldb, float *work, const int *lwork,
                   int *info, int trans_len);
ORB_API void sgelss(const int *m, const int *n, const int *nrhs, float *a, const int *lda, float *b,
                    const int *ldb, float *s, const float *rcond, int *rank, float *work,
                    const int *lwork, int *info);
ORB_API void sgelsd(const int *m, const int *n, const int *nrhs, float *a, const int *lda, float *b,
                    const int *ldb, float *s, const float *rcond, int *rank, float *work,
                    const int *lwork, int *iwork, int *info);
ORB_API void cgels(const char *trans, const int *m, const int *n, const int *nrhs, orb_complex8 *a,
                   const int *lda, orb_complex8 *b, const int *ldb, orb_complex8 *work,
                   const int *lwork, int *info, int trans_len);
ORB_API void cgelss(const int *m, const int *n, const int *nrhs, orb_complex8 *a, const int *lda,
                    orb_complex8 *b, const int *ldb, float *s, const float *rcond, int *rank,
                    orb_complex8 *work, const int *lwork, float *rwork, int *info);
ORB_API void cgelsd(const int *m, const int *n, const int *nrhs, orb_complex8 *a, const int *lda,
                    orb_complex8 *b, const int *ldb, float *s, const float *rcond, int *rank,
                    orb_complex8 *work, const int *lwork, float *rwork, int *iwork, int *info);

/* ---------------------------------------------------------------------------
 * LAPACK: symmetric / Hermitian eigenproblems
 * ------------------------------------------------------------------------- */
ORB_API void ssytrd(const char *uplo, const int *n, float *a, const int *lda, float *d, float *e,
                    float *tau, float *work, const int *lwork, int *info, int uplo_len);
ORB_API void sorgtr(const char *uplo, const int *n, float *a, const int *lda, const float *tau,
                    float *work, const int *lwork, int *info, int uplo_len);
ORB_API void sormtr(const char *side, const char *uplo, const char *trans, const int *m,
                    const int *n, const float *a, const int *lda, const float *tau, float *c,
                    const int *ldc, float *work, const int *lwork, int *info, int side_len,
                    int uplo_len, int trans_len);
ORB_API void ssyevr(const char *jobz, const char *range, const char *uplo, const int *n, float *a,
                    const int *lda, const float *vl, const float *vu, const int *il, const int *iu,
                    const float *abstol, int *m, float *w, float *z, const int *ldz, int *isuppz,
                    float *work, const int *lwork, int *iwork, const int *liwork, int *info,
                    int jobz_len, int range_len, int uplo_len);
ORB_API void ssyevx(const char *jobz, const char *range, const char *uplo, const int *n, float *a,
                    const int *lda, const float *vl, const float *vu, const int *il, const int *iu,
                    const float *abstol, int *m, float *w, float *z, const int *ldz, float *work,
                    const int *lwork, int *iwork, int *ifail, int *info, int jobz_len,
                    int range_len, int uplo_len);
ORB_API void ssygst(const int *itype, const char *uplo, const int *n, float *a, const int *lda,
                    const float *b, const int *ldb, int *info, int uplo_len);
ORB_API void chetrd(const char *uplo, const int *n, orb_complex8 *a, const int *lda, float *d,
                    float *e, orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info,
                    int uplo_len);
ORB_API void cungtr(const char *uplo, const int *n, orb_complex8 *a, const int *lda,
                    const orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info,
                    int uplo_len);
ORB_API void cunmtr(const char *side, const char *uplo, const char *trans, const int *m,
                    const int *n, const orb_complex8 *a, const int *lda, const orb_complex8 *tau,
                    orb_complex8 *c, const int *ldc, orb_complex8 *work, const int *lwork,
                    int *info, int side_len, int uplo_len, int trans_len);
ORB_API void cheevr(const char *jobz, const char *range, const char *uplo, const int *n,
                    orb_complex8 *a, const int *lda, const float *vl, const float *vu,
                    const int *il, const int *iu, const float *abstol, int *m, float *w,
                    orb_complex8 *z, const int *ldz, int *isuppz, orb_complex8 *work,
                    const int *lwork, float *rwork, const int *lrwork, int *iwork,
                    const int *liwork, int *info, int jobz_len, int range_len, int uplo_len);
ORB_API void cheevx(const char *jobz, const char *range, const char *uplo, const int *n,
                    orb_complex8 *a, const int *lda, const float *vl, const float *vu,
                    const int *il, const int *iu, const float *abstol, int *m, float *w,
                    orb_complex8 *z, const int *ldz, orb_complex8 *work, const int *lwork,
                    float *rwork, int *iwork, int *ifail, int *info, int jobz_len, int range_len,
                    int uplo_len);
ORB_API void chegst(const int *itype, const char *uplo, const int *n, orb_complex8 *a,
                    const int *lda, orb_complex8 *b, const int *ldb, int *info, int uplo_len);

/* ---------------------------------------------------------------------------
 * LAPACK: symmetric / Hermitian band eigenproblems
 * ------------------------------------------------------------------------- */
ORB_API void ssbev(const char *jobz, const char *uplo, const int *n, const int *kd, float *ab,
                   const int *ldab, float *w, float *z, const int *ldz, float *work, int *info,
                   int jobz_len, int uplo_len);
ORB_API void ssbevd(const char *jobz, const char *uplo, const int *n, const int *kd, float *ab,
                    const int *ldab, float *w, float *z, const int *ldz, float *work,
                    const int *lwork, int *iwork, const int *liwork, int *info, int jobz_len,
                    int uplo_len);
ORB_API void ssbevx(const char *jobz, const char *range, const char *uplo, const int *n,
                    const int *kd, float *ab, const int *ldab, float *q, const int *ldq,
                    const float *vl, const float *vu, const int *il, const int *iu,
                    const float *abstol, int *m, float *w, float *z, const int *ldz, float *work,
                    int *iwork, int *ifail, int *info, int jobz_len, int range_len, int uplo_len);
ORB_API void chbev(const char *jobz, const char *uplo, const int *n, const int *kd,
                   orb_complex8 *ab, const int *ldab, float *w, orb_complex8 *z, const int *ldz,
                   orb_complex8 *work, float *rwork, int *info, int jobz_len, int uplo_len);
ORB_API void chbevd(const char *jobz, const char *uplo, const int *n, const int *kd,
                    orb_complex8 *ab, const int *ldab, float *w, orb_complex8 *z, const int *ldz,
                    orb_complex8 *work, const int *lwork, float *rwork, const int *lrwork,
                    int *iwork, const int *liwork, int *info, int jobz_len, int uplo_len);
ORB_API void chbevx(const char *jobz, const char *range, const char *uplo, const int *n,
                    const int *kd, orb_complex8 *ab, const int *ldab, orb_complex8 *q,
                    const int *ldq, const float *vl, const float *vu, const int *il, const int *iu,
                    const float *abstol, int *m, float *w, orb_complex8 *z, const int *ldz,
                    orb_complex8 *work, float *rwork, int *iwork, int *ifail, int *info,
                    int jobz_len, int range_len, int uplo_len);

/* ---------------------------------------------------------------------------
 * LAPACK: tridiagonal eigenproblems
 * ------------------------------------------------------------------------- */
ORB_API void ssteqr(const char *compz, const int *n, float *d, float *e, float *z, const int *ldz,
                    float *work, int *info, int compz_len);
ORB_API void ssterf(const int *n, float *d, float *e, int *info);
ORB_API void sstebz(const char *range, const char *order, const int *n, const float *vl,
                    const float *vu, const int *il, const int *iu, const float *abstol,
                    const float *d, const float *e, int *m, int *nsplit, float *w, int *iblock,
                    int *isplit, float *work, int *iwork, int *info, int range_len, int order_len);
ORB_API void sstein(const int *n, const float *d, const float *e, const int *m, const float *w,
                    const int *iblock, const int *isplit, float *z, const int *ldz, float *work,
                    int *iwork, int *ifail, int *info);
ORB_API void spteqr(const char *compz, const int *n, float *d, float *e, float *z, const int *ldz,
                    float *work, int *info, int compz_len);
ORB_API void csteqr(const char *compz, const int *n, float *d, float *e, orb_complex8 *z,
                    const int *ldz, float *work, int *info, int compz_len);
ORB_API void cstein(const int *n, const float *d, const float *e, const int *m, const float *w,
                    const int *iblock, const int *isplit, orb_complex8 *z, const int *ldz,
                    float *work, int *iwork, int *ifail, int *info);
ORB_API void cpteqr(const char *compz, const int *n, float *d, float *e, orb_complex8 *z,
                    const int *ldz, float *work, int *info, int compz_len);

/* ---------------------------------------------------------------------------
 * LAPACK: nonsymmetric eigenproblems
 * ------------------------------------------------------------------------- */
ORB_API void sgeev(const char *jobvl, const char *jobvr, const int *n, float *a, const int *lda,
                   float *wr, float *wi, float *vl, const int *ldvl, float *vr, const int *ldvr,
                   float *work, const int *lwork, int *info, int jobvl_len, int jobvr_len);
ORB_API void sgebal(const char *job, const int *n, float *a, const int *lda, int *ilo, int *ihi,
                    float *scale, int *info, int job_len);
ORB_API void sgebak(const char *job, const char *side, const int *n, const int *ilo, const int *ihi,
                    const float *scale, const int *m, float *v, const int *ldv, int *info,
                    int job_len, int side_len);
ORB_API void sgehrd(const int *n, const int *ilo, const int *ihi, float *a, const int *lda,
                    float *tau, float *work, const int *lwork, int *info);
ORB_API void sorghr(const int *n, const int *ilo, const int *ihi, float *a, const int *lda,
                    const float *tau, float *work, const int *lwork, int *info);
ORB_API void shseqr(const char *job, const char *compz, const int *n, const int *ilo,
                    const int *ihi, float *h, const int *ldh, float *wr, float *wi, float *z,
                    const int *ldz, float *work, const int *lwork, int *info, int job_len,
                    int compz_len);
ORB_API void strevc(const char *side, const char *howmny, int *select, const int *n, const float *t,
                    const int *ldt, float *vl, const int *ldvl, float *vr, const int *ldvr,
                    const int *mm, int *m, float *work, int *info, int side_len, int howmny_len);
ORB_API void strsna(const char *job, const char *howmny, const int *select, const int *n,
                    const float *t, const int *ldt, const float *vl, const int *ldvl,
                    const float *vr, const int *ldvr, float *s, float *sep, const int *mm, int *m,
                    float *work, const int *ldwork, int *iwork, int *info, int job_len,
                    int howmny_len);
ORB_API void strsyl(const char *trana, const char *tranb, const int *isgn, const int *m,
                    const int *n, const float *a, const int *lda, const float *b, const int *ldb,
                    float *c, const int *ldc, float *scale, int *info, int trana_len,
                    int tranb_len);
ORB_API void cgeev(const char *jobvl, const char *jobvr, const int *n, orb_complex8 *a,
                   const int *lda, orb_complex8 *w, orb_complex8 *vl, const int *ldvl,
                   orb_complex8 *vr, const int *ldvr, orb_complex8 *work, const int *lwork,
                   float *rwork, int *info, int jobvl_len, int jobvr_len);
ORB_API void cgebal(const char *job, const int *n, orb_complex8 *a, const int *lda, int *ilo,
                    int *ihi, float *scale, int *info, int job_len);
ORB_API void cgebak(const char *job, const char *side, const int *n, const int *ilo, const int *ihi,
                    const float *scale, const int *m, orb_complex8 *v, const int *ldv, int *info,
                    int job_len, int side_len);
ORB_API void cgehrd(const int *n, const int *ilo, const int *ihi, orb_complex8 *a, const int *lda,
                    orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info);
ORB_API void cunghr(const int *n, const int *ilo, const int *ihi, orb_complex8 *a, const int *lda,
                    const orb_complex8 *tau, orb_complex8 *work, const int *lwork, int *info);
ORB_API void chseqr(const char *job, const char *compz, const int *n, const int *ilo,
                    const int *ihi, orb_complex8 *h, const int *ldh, orb_complex8 *w,
                    orb_complex8 *z, const int *ldz, orb_complex8 *work, const int *lwork,
                    int *info, int job_len, int compz_len);
ORB_API void ctrevc(const char *side, const char *howmny, const int *select, const int *n,
                    orb_complex8 *t, const int *ldt, orb_complex8 *vl, const int *ldvl,
                    orb_complex8 *vr, const int *ldvr, const int *mm, int *m, orb_complex8 *work,
                    float *rwork, int *info, int side_len, int howmny_len);
ORB_API void ctrsna(const char *job, const char *howmny, const int *select, const int *n,
                    const orb_complex8 *t, const int *ldt, const orb_complex8 *vl, const int *ldvl,
                    const orb_complex8 *vr, const int *ldvr, float *s, float *sep, const int *mm,
                    int *m, orb_complex8 *work, const int *ldwork, float *rwork, int *info,
                    int job_len, int howmny_len);
ORB_API void ctrsyl(const char *trana, const char *tranb, const int *isgn, const int *m,
                    const int *n, const orb_complex8 *a, const int *lda, const orb_complex8 *b,
                    const int *ldb, orb_complex8 *c, const int *ldc, float *scale, int *info,
                    int trana_len, int tranb_len);

/* ---------------------------------------------------------------------------
 * LAPACK: singular value decomposition
 * ------------------------------------------------------------------------- */
ORB_API void sgebrd(const int *m, const int *n, float *a, const int *lda, float *d, float *e,
                    float *tauq, float *taup, float *work, const int *lwork, int *info);
ORB_API void sorgbr(const char *vect, const int *m, const int *n, const int *k, float *a,
                    const int *lda, const float *tau, float *work, const int *lwork, int *info,
                    int vect_len);
ORB_API void sormbr(const char *vect, const char *side, const char *trans, const int *m,
                    const int *n, const int *k, const float *a, const int *lda, const float *tau,
                    float *c, const int *ldc, float *work, const int *lwork, int *info,
                    int vect_len, int side_len, int trans_len);
ORB_API void sbdsqr(const char *uplo, const int *n, const int *ncvt, const int *nru, const int *ncc,
                    float *d, float *e, float *vt, const int *ldvt, float *u, const int *ldu,
                    float *c, const int *ldc, float *work, int *info, int uplo_len);
ORB_API void sgesvd(const char *jobu, const char *jobvt, const int *m, const int *n, float *a,
                    const int *lda, float *s, float *u, const int *ldu, float *vt, const int *ldvt,
                    float *work, const int *lwork, int *info, int jobu_len, int jobvt_len);
ORB_API void sgesdd(const char *jobz, const int *m, const int *n, float *a, const int *lda,
                    float *s, float *u, const int *ldu, float *vt, const int *ldvt, float *work,
                    const int *lwork, int *iwork, int *info, int jobz_len);
ORB_API void cgebrd(const int *m, const int *n, orb_complex8 *a, const int *lda, float *d, float *e,
                    orb_complex8 *tauq, orb_complex8 *taup, orb_complex8 *work, const int *lwork,
                    int *info);
ORB_API void cungbr(const char *vect, const int *m, const int *n, const int *k, orb_complex8 *a,
                    const int *lda, const orb_complex8 *tau, orb_complex8 *work, const int *lwork,
                    int *info, int vect_len);
ORB_API void cbdsqr(const char *uplo, const int *n, const int *ncvt, const int *nru, const int *ncc,
                    float *d, float *e, orb_complex8 *vt, const int *ldvt, orb_complex8 *u,
                    const int *ldu, orb_complex8 *c, const int *ldc, float *rwork, int *info,
                    int uplo_len);
ORB_API void cgesvd(const char *jobu, const char *jobvt, const int *m, const int *n,
                    orb_complex8 *a, const int *lda, float *s, orb_complex8 *u, const int *ldu,
                    orb_complex8 *vt, const int *ldvt, orb_complex8 *work, const int *lwork,
                    float *rwork, int *info, int jobu_len, int jobvt_len);
ORB_API void cgesdd(const char *jobz, const int *m, const int *n, orb_complex8 *a, const int *lda,
                    float *s, orb_complex8 *u, const int *ldu, orb_complex8 *vt, const int *ldvt,
                    orb_complex8 *work, const int *lwork, float *rwork, int *iwork, int *info,
                    int jobz_len);

/* ---------------------------------------------------------------------------
 * Error reporting and timer
 * ------------------------------------------------------------------------- */
/* Prints one error report for routine `name` (name_len characters, not
 * NUL-terminated) and returns: *info > 0 is the position of an illegal
 * argument; 1000, 1001, 0 and negative codes report internal conditions. */
ORB_API void XERBLA(const char *name, const int *info, int name_len);
/* Wall-clock seconds from the processor's time-stamp counter; only differences
 * between two calls are meaningful. */
ORB_API double DSECND(void);

/* ---------------------------------------------------------------------------
 * Threading control and work memory. Arguments by value. Domains: 0 all,
 * 1 BLAS and LAPACK, 2 FFT, 3 vector math.
 * ------------------------------------------------------------------------- */
/* n > 0 sets the thread count of every domain; other values are ignored. */
ORB_API void ORB_Set_Num_Threads(int n);
/* Thread count the library will use (domain 0). */
ORB_API int ORB_Get_Max_Threads(void);
/* Nonzero turns dynamic mode on (at most one thread per physical core). Returns flag. */
ORB_API int ORB_Set_Dynamic(int flag);
ORB_API int ORB_Get_Dynamic(void);
/* Sets domain's thread count (0 = use the all-domain count); 1 on success, 0 otherwise. */
ORB_API int ORB_Domain_Set_Num_Threads(int n, int domain);
ORB_API int ORB_Domain_Get_Max_Threads(int domain);
/* Sets the OpenMP runtime's block time (ms a worker spins before sleeping). */
ORB_API int okmp_set_blocktime(int t);
/* Frees the calling thread's cached work buffers. */
ORB_API void ORB_FreeBuffers(void);

/* ---------------------------------------------------------------------------
 * TESSERA: sparse direct solver for A X = B, A in 1-based compressed rows,
 * double precision real or complex (mtype). All arguments by pointer.
 *   pt      handle, void *pt[64] (pointer-sized slots), all zero before the
 *           first call and not touched by the caller afterwards
 *   maxfct  number of factorizations kept at once; mnum which one (1..maxfct)
 *   mtype   1, 2, -2, 11 real; 3, 4, -4, 6, 13 complex
 *   phase   first and last stage (1 analysis, 2 factorization, 3 solve): 11, 12,
 *           13, 22, 23, 33 (331..334 solve steps); 0 frees factorization mnum,
 *           -1 frees everything; -2 and -3 are queries that leave pt alone
 *   a, ia, ja  nonzero values (double or orb_complex16), row starts (n + 1),
 *           column of each value
 *   perm    n entries: perm(i) is the position (1-based) at which equation i
 *           is eliminated; read when iparam(5) = 1, written when iparam(5) = 2
 *   nrhs    right-hand sides; iparam[64] controls and reports (below)
 *   msglvl  0 silent, nonzero prints statistics
 *   b, x    right-hand sides and solutions, n x nrhs, same scalar type as a
 *   error   0 on success; -1 bad input, -2 no memory, -3 analysis failed,
 *           -4 numerical factorization failed (iparam(30): the equation of a
 *           non-positive pivot of an SPD matrix), -7 the diagonal shortcut
 *           failed, -8 the factor would overflow 32-bit indices; out of core
 *           -9 no memory for its buffers, -10 a data file cannot be opened,
 *           -11 a data file cannot be read or written
 * Symmetric and Hermitian types pass the upper triangle (entries below the
 * diagonal are ignored); 1, 3, 11, 13 the whole matrix. iparam (1-based):
 *   (1) 0 defaults by mtype; (2) ordering 0 minimum degree, 2 nested
 *   dissection; (4) 10 L + K: solve by CGS (K 1) or CG (K 2) to 10^-L with
 *   the earlier factor as preconditioner, reported in (20); (5) perm use;
 *   (6) 1 the solution overwrites b; (7) refinement steps done; (8) step
 *   limit (0: at most two, (20) = -34 when the second ends it); (10) pivots
 *   below 10^-(10) max|a| are perturbed (<= 0: none); (11) scaling and (13)
 *   weighted matching (11, 13; (13) scales -2, -4, 6 too); (12) 0 A x = b,
 *   1 A^H x = b, 2 A^T x = b; (14) perturbed pivots; (18), (19) < 0 on input:
 *   factor entries and Mflop/s; (21) 1 Bunch-Kaufman 2x2 pivots; (22), (23)
 *   inertia; (27) 1 checks the matrix; (35) 1 zero-based ia, ja; (60) out
 *   of core: 0 never, 1 when the factor (dense supernode blocks, both
 *   triangles' storage for 11 and 13) exceeds the maximal in-core size,
 *   2 always, on one thread; (63) the memory out-of-core mode needs at least,
 *   in kilobytes, after the analysis; (64) 106.
 * Out of core, the factor of factorization mnum goes to the files
 * <prefix>_<process id>_<handle serial>_<mnum>.{lnz,unz,lindx,luperm}. The
 * factorization cuts the large supernodes into column panels of at most a
 * quarter of the maximal in-core size, finishes one at a time with the
 * updates of its descendants (read back from the files unless among the
 * recently finished ones it keeps, in half the maximum less its workspace),
 * and every solve reads the factor back in panels of at most half the
 * maximum. Settings:
 * the environment variables ORB_TESSERA_OOC_PATH (prefix, "ooc_temp"),
 * ORB_TESSERA_OOC_MAX_CORE_SIZE (megabytes, 2000), ORB_TESSERA_OOC_KEEP_FILE
 * (1; 0 deletes the files when the factorization is released or replaced),
 * else the same keys in lower case in the file ORB_TESSERA_OOC_CFG_PATH "\" ORB_TESSERA_OOC_CFG_FILE_NAME
 * ("tessera_ooc.cfg"), one "key = value" per line, "#" comments.
 * Phases 331, 332, 333 run the forward, diagonal and backward parts of the
 * substitution (334 the last two) without refinement: 331 takes b in the
 * caller's order and leaves the result in pivot order, 333 goes back.
 * ------------------------------------------------------------------------- */
ORB_API void TESSERA(void **pt, const int *maxfct, const int *mnum, const int *mtype,
                     const int *phase, const int *n, const void *a, const int *ia, const int *ja,
                     int *perm, const int *nrhs, int *iparam, const int *msglvl, void *b, void *x,
                     int *error);

/* ---------------------------------------------------------------------------
 * Reverse-communication iterative solvers, double precision. All state lives
 * in the caller's ipar (128 ints), dpar (128 doubles) and tmp arrays; each
 * call returns a request code in rci_request that the caller serves before
 * calling again. Indices in the comments are 1-based.
 * ------------------------------------------------------------------------- */
/* Conjugate gradient, one right-hand side; tmp holds 4 n doubles. */
ORB_API void DCG_INIT(const int *n, const double *x, const double *b, int *rci_request, int *ipar,
                      double *dpar, double *tmp);
ORB_API void DCG_CHECK(const int *n, const double *x, const double *b, int *rci_request, int *ipar,
                       double *dpar);
ORB_API void DCG(const int *n, double *x, const double *b, int *rci_request, int *ipar,
                 double *dpar, double *tmp);
ORB_API void DCG_GET(const int *n, const double *x, const double *b, const int *rci_request,
                     const int *ipar, const double *dpar, const double *tmp, int *itercount);

/* Conjugate gradient, nrhs right-hand sides (x, b: n x nrhs); ipar and dpar hold
 * at least 128 + 2 nrhs entries, tmp n (nrhs + 3) doubles. */
ORB_API void DCGMRHS_INIT(const int *n, const double *x, const int *nrhs, const double *b,
                          const int *method, int *rci_request, int *ipar, double *dpar,
                          double *tmp);
ORB_API void DCGMRHS_CHECK(const int *n, const double *x, const int *nrhs, const double *b,
                           int *rci_request, int *ipar, double *dpar);
ORB_API void DCGMRHS(const int *n, double *x, const int *nrhs, const double *b, int *rci_request,
                     int *ipar, double *dpar, double *tmp);
/* itercount receives nrhs iteration counts. */
ORB_API void DCGMRHS_GET(const int *n, const double *x, const int *nrhs, const double *b,
                         const int *rci_request, const int *ipar, const double *dpar,
                         const double *tmp, int *itercount);

/* Restarted flexible GMRES; with m = ipar(15), tmp holds (2m + 1) n + m (m + 9) / 2 + 1
 * doubles. DFGMRES_GET writes the solution into x, or into b when ipar(13) > 0. */
ORB_API void DFGMRES_INIT(const int *n, const double *x, const double *b, int *rci_request,
                          int *ipar, double *dpar, double *tmp);
ORB_API void DFGMRES_CHECK(const int *n, const double *x, const double *b, int *rci_request,
                           int *ipar, double *dpar);
ORB_API void DFGMRES(const int *n, double *x, const double *b, int *rci_request, int *ipar,
                     double *dpar, double *tmp);
ORB_API void DFGMRES_GET(const int *n, double *x, double *b, int *rci_request, const int *ipar,
                         const double *dpar, double *tmp, int *itercount);

/* ILU0: bilu0 has the pattern of a (ia, ja). ILUT: drop tolerance tol, at most
 * maxfil entries kept in each row's L and U parts; the new matrix goes to
 * bilut / ibilut (n + 1) / jbilut, at most n (2 maxfil + 1) entries. */
ORB_API void DCSRILU0(const int *n, const double *a, const int *ia, const int *ja, double *bilu0,
                      const int *ipar, const double *dpar, int *ierr);
ORB_API void DCSRILUT(const int *n, const double *a, const int *ia, const int *ja, double *bilut,
                      int *ibilut, int *jbilut, const double *tol, const int *maxfil,
                      const int *ipar, const double *dpar, int *ierr);

/* ---------------------------------------------------------------------------
 * Nonlinear least squares: min ||F(x)||_2^2 by a trust-region
 * Levenberg-Marquardt method, optionally within LW <= x <= UP, and the
 * central-difference Jacobian. F and J are served by reverse communication;
 * handle is the address of one pointer owned by the caller. fjac is m x n,
 * column-major. Status: 1501 success, 1502 invalid option, 1503 out of memory.
 * ------------------------------------------------------------------------- */
/* eps[0..5]: radius, ||F||, Jacobian column norm, step, predicted reduction
 * (each > 0), subproblem accuracy (0 selects 1e-10); iter1 the iteration
 * limit, iter2 the inner limit per subproblem, rs the initial radius factor
 * (<= 0 selects 100). x is kept and updated in place. */
ORB_API int dtrnlsp_init(void **handle, const int *n, const int *m, double *x, const double *eps,
                         const int *iter1, const int *iter2, const double *rs);
/* RCI_Request: 1 evaluate F at x into fvec, 2 the Jacobian into fjac, 0 an
 * iteration completed, -1..-6 finished by the criterion of that number. */
ORB_API int dtrnlsp_solve(void **handle, double *fvec, double *fjac, int *RCI_Request);
/* Iterations, stopping criterion (1..6), initial and final ||F||_2. */
ORB_API int dtrnlsp_get(void **handle, int *iter, int *st_cr, double *r1, double *r2);
ORB_API int dtrnlsp_delete(void **handle);
/* The same within the box LW <= x <= UP (n each); x is moved into the box. */
ORB_API int dtrnlspbc_init(void **handle, const int *n, const int *m, double *x, const double *LW,
                           const double *UP, const double *eps, const int *iter1, const int *iter2,
                           const double *rs);
ORB_API int dtrnlspbc_solve(void **handle, double *fvec, double *fjac, int *RCI_Request);
ORB_API int dtrnlspbc_get(void **handle, int *iter, int *st_cr, double *r1, double *r2);
ORB_API int dtrnlspbc_delete(void **handle);
/* Central differences with relative step eps in (0, 1): request 1 wants F at
 * x into f1, 2 into f2; 0 means fjac is complete and x unchanged. */
ORB_API int djacobi_init(void **handle, const int *n, const int *m, double *x, double *fjac,
                         const double *eps);
ORB_API int djacobi_solve(void **handle, double *f1, double *f2, int *RCI_Request);
ORB_API int djacobi_delete(void **handle);
/* One call: fcn(m, n, x, f) evaluates F. */
ORB_API int djacobi(void (*fcn)(int *m, int *n, double *x, double *f), const int *n, const int *m,
                    double *fjac, double *x, const double *eps);

/* ---------------------------------------------------------------------------
 * Vector-math mode and single-precision pack / unpack. All arguments by
 * pointer; indices, strides and masks are 0-based ints; n <= 0 does nothing.
 * ------------------------------------------------------------------------- */
/* The mode word: a 32-bit word kept per thread (one process-wide word serves
 * every thread only if the system has no thread-local slot to give). Fields:
 *   bits 0-3   (0xF)     accuracy: the accuracy a vector-math function is asked
 *                        for. 1 high (the initial value), 2 reduced, 3 fastest;
 *                        other values are recorded and count as 1. The pack and
 *                        unpack routines copy bits and are exact whatever it
 *                        says; the field also picks the denormal handling of
 *                        the fp-control settings below.
 *   bits 4-7   (0xF0)    fp control: the last nonzero value passed in a request
 *                        (0 until then); vmlsetmode acts on it as below.
 *   bits 8-15  (0xFF00)  error handling: recorded for the vector-math functions;
 *                        initially 0. No routine of the library can fail on its
 *                        data yet (pack and unpack only copy), so no value
 *                        changes what a routine does.
 *   bits 16-17 (0x30000) additional control: recorded, initially 0; no routine
 *                        reads it yet.
 * Bits 18-31 are always 0. A thread's initial word is 0x00000001.
 *
 * vmlgetmode returns the calling thread's word. vmlsetmode returns the previous
 * word and merges *mode into it: each nonzero field of *mode replaces the field,
 * a zero field keeps it (a null pointer or *mode = 0 change nothing); bits
 * 18-31 of *mode are ignored. The fp-control field of *mode then acts on the
 * calling thread's SSE control register (MXCSR; other threads are not
 * affected; the exception masks and flags are never touched):
 *   0x00  nothing is changed;
 *   0x30  the default state: round to nearest, denormals kept (FTZ and DAZ off);
 *   other values set rounding (RC) and denormal handling together, denormals
 *   following the (merged) accuracy: high - kept, reduced - results flushed to
 *   zero (FTZ), fastest - results flushed and inputs read as zero (FTZ, DAZ):
 *   0x10  round to nearest      (also 0x70 and 0xC0-0xF0)
 *   0x20  round down (toward -infinity)
 *   0x40  round up (toward +infinity)
 *   0x50  round toward zero
 *   0x60  rounding kept, denormals by accuracy as above
 *   0x80, 0x90, 0xA0, 0xB0  round to nearest, down, up, toward zero with
 *         denormal inputs read as zero only (DAZ on, FTZ off), whatever the
 *         accuracy.
 * That is 19 distinct settings: 16 of rounding x denormal handling and 3 with
 * the rounding kept. */
ORB_API unsigned int vmlsetmode(const unsigned int *mode);
ORB_API unsigned int vmlgetmode(void);
/* The pack and unpack routines copy elements as 32-bit words, bit for bit (a
 * signalling NaN stays signalling). Elements of y the rule does not name are
 * left untouched; a and y must not overlap. Strides may be zero or negative
 * (a[i * inca] then lies before a[0]); a mask entry selects when nonzero, and
 * selected elements are taken in increasing i. */
/* y[i] = a[i * inca], i < n */
ORB_API void vspacki(const int *n, const float *a, const int *inca, float *y);
/* y[k++] = a[i] for each i with ma[i] != 0 (k from 0) */
ORB_API void vspackm(const int *n, const float *a, const int *ma, float *y);
/* y[i] = a[ia[i]] */
ORB_API void vspackv(const int *n, const float *a, const int *ia, float *y);
/* y[i * incy] = a[i] (incy = 0: y[0] = a[n - 1]) */
ORB_API void vsunpacki(const int *n, const float *a, float *y, const int *incy);
/* y[i] = a[k++] for each i with my[i] != 0 (k from 0) */
ORB_API void vsunpackm(const int *n, const float *a, float *y, const int *my);
/* y[iy[i]] = a[i], in increasing i (a repeated index keeps the last) */
ORB_API void vsunpackv(const int *n, const float *a, float *y, const int *iy);

/* ---------------------------------------------------------------------------
 * Host routines: element-wise vector arithmetic, single precision.
 * Counts are unsigned and passed by value, real scalars by value, complex
 * scalars by pointer. Type letters before _s name the operand types in order
 * (d real, c complex; a lone c: all complex). Destinations may equal sources.
 * ------------------------------------------------------------------------- */
/* dst[i] = src[i] + v */
ORB_API void AddValue_s(const float *src, float *dst, float v, unsigned int n);
ORB_API void AddValuec_s(const orb_complex8 *src, orb_complex8 *dst, const orb_complex8 *v,
                         unsigned int n);
ORB_API void AddValuecd_s(const orb_complex8 *src, orb_complex8 *dst, float v, unsigned int n);
ORB_API void AddValuedc_s(const float *src, orb_complex8 *dst, const orb_complex8 *v,
                          unsigned int n);
/* dst[i] = v - src[i] */
ORB_API void SubFromValue_s(const float *src, float *dst, float v, unsigned int n);
ORB_API void SubFromValuec_s(const orb_complex8 *src, orb_complex8 *dst, const orb_complex8 *v,
                             unsigned int n);
ORB_API void SubFromValuecd_s(const orb_complex8 *src, orb_complex8 *dst, float v, unsigned int n);
ORB_API void SubFromValuedc_s(const float *src, orb_complex8 *dst, const orb_complex8 *v,
                              unsigned int n);
/* dst[i] = src[i] * v */
ORB_API void ScaleByValue_s(const float *src, float *dst, float v, unsigned int n);
ORB_API void ScaleByValuec_s(const orb_complex8 *src, orb_complex8 *dst, const orb_complex8 *v,
                             unsigned int n);
ORB_API void ScaleByValuecd_s(const orb_complex8 *src, orb_complex8 *dst, float v, unsigned int n);
ORB_API void ScaleByValuedc_s(const float *src, orb_complex8 *dst, const orb_complex8 *v,
                              unsigned int n);
/* dst[i] = v / src[i] */
ORB_API void DivideValue_s(const float *src, float *dst, float v, unsigned int n);
ORB_API void DivideValuec_s(const orb_complex8 *src, orb_complex8 *dst, const orb_complex8 *v,
                            unsigned int n);
ORB_API void DivideValuecd_s(const orb_complex8 *src, orb_complex8 *dst, float v, unsigned int n);
ORB_API void DivideValuedc_s(const float *src, orb_complex8 *dst, const orb_complex8 *v,
                             unsigned int n);

/* dst[i] = a[i] + b[i] */
ORB_API void AddVeccd_s(const orb_complex8 *a, const float *b, orb_complex8 *dst, unsigned int n);
/* dst[i] = a[i] - b[i] */
ORB_API void SubVeccd_s(const orb_complex8 *a, const float *b, orb_complex8 *dst, unsigned int n);
ORB_API void SubVecdc_s(const float *a, const orb_complex8 *b, orb_complex8 *dst, unsigned int n);
/* dst[i] = a[i] * b[i] */
ORB_API void MulVeccd_s(const orb_complex8 *a, const float *b, orb_complex8 *dst, unsigned int n);
/* dst[i] = a[i] / b[i] */
ORB_API void DivVeccd_s(const orb_complex8 *a, const float *b, orb_complex8 *dst, unsigned int n);
ORB_API void DivVecdc_s(const float *a, const orb_complex8 *b, orb_complex8 *dst, unsigned int n);
ORB_API void DivVeccc_s(const orb_complex8 *a, const orb_complex8 *b, orb_complex8 *dst,
                        unsigned int n);
/* dst[i] = a[i] * conj(b[i]) */
ORB_API void ConjMulcc_s(const orb_complex8 *a, const orb_complex8 *b, orb_complex8 *dst,
                         unsigned int n);

/* Complex element moves; a negated part is formed as 0 - x, so a zero part
 * comes out +0 (MulI_s of (1, 0) gives (+0, 1)).
 * dst[i] = i * src[i] = (0 - im, re) */
ORB_API void MulI_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n);
/* dst[i] = (im, re) */
ORB_API void Flip_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n);
/* dst[i] = (im, 0 - re) */
ORB_API void FlipConj_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n);
/* dst[i] = src[n - 1 - i] (complex elements, bits unchanged); dst == src
 * reverses in place. */
ORB_API void Reverse_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n);

/* Signs. A real x has sign +1 for x > 0, -1 for x < 0, 0 for x = +-0, and
 * none when it is NaN. A complex x has the sign of its real part when that
 * part is nonzero, else that of its imaginary part: 0 only when both parts
 * are zero, none when the deciding part is NaN (a NaN real part counts as
 * nonzero, so it decides).
 * b[i] = sign(a[i]) * b[i], in place on b (a may equal b where the types
 * agree): sign +1 or none leaves b[i] (each part) as it is, -1 replaces each
 * part x by 0 - x (so +-0 becomes +0), 0 sets b[i] to +0 (each part). */
ORB_API void SgnMul_s(const float *a, float *b, unsigned int n);
ORB_API void SgnMulc_s(const orb_complex8 *a, orb_complex8 *b, unsigned int n);
ORB_API void SgnMulcd_s(const orb_complex8 *a, float *b, unsigned int n);
ORB_API void SgnMuldc_s(const float *a, orb_complex8 *b, unsigned int n);
/* dst[i] = sign(src[i]) as +1, -1 or +0 (+0 also when there is none),
 * written in the destination's type: a complex destination gets (s, +0). */
ORB_API void Sgndd_s(const float *src, float *dst, unsigned int n);
ORB_API void Sgndc_s(const float *src, orb_complex8 *dst, unsigned int n);
ORB_API void Sgncd_s(const orb_complex8 *src, float *dst, unsigned int n);
ORB_API void Sgncc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n);

/* Running sum dst[0] = src[0], dst[i] = src[i] + dst[i - 1] (each step
 * rounded to single precision, in this order); returns n. */
ORB_API unsigned int CumSum_s(const float *src, float *dst, unsigned int n);
ORB_API unsigned int CumSumc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n);
/* Running sum with lag delta: dst[i] = src[i] for i < delta, then
 * dst[i] = src[i] + dst[i - delta] in increasing i (delta 0 acts as 1, and
 * delta >= n copies src); returns n. */
ORB_API unsigned int CumSumDelta_s(const float *src, float *dst, unsigned int delta,
                                   unsigned int n);
ORB_API unsigned int CumSumDeltac_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int delta,
                                    unsigned int n);
/* *result = product of x[0 .. n-1] in index order; 1 (and (1, 0)) when
 * n = 0. The real product is formed in double from 1.0 and rounded once at
 * the end; the complex one in single precision, each step
 * (pr xr - pi xi, pr xi + pi xr). */
ORB_API void Product_s(const float *x, unsigned int n, float *result);
ORB_API void Productc_s(const orb_complex8 *x, unsigned int n, orb_complex8 *result);
/* dst[i] = *start + k * *step per part, k the index i converted to float
 * (exact below 2^24, the nearest float above): one product and one sum per
 * part, each rounded to single precision. */
ORB_API void Rampc_s(orb_complex8 *dst, const orb_complex8 *start, const orb_complex8 *step,
                     unsigned int n);
/* dst[i] = src[i] ^ *power = exp(power * log(src[i])) on the principal
 * branch (log z = (ln |z|, atan2(im, re)), so -1 has argument +pi and -1 - 0i
 * argument -pi), computed in double and rounded once per part. A zero
 * element (either sign of either part) gives (+0, +0) whatever the power,
 * 0^0 included; a nonzero element to the power 0 gives (1, 0). Infinite or
 * NaN operands give what the formula gives. */
ORB_API void Powc_s(const orb_complex8 *src, orb_complex8 *dst, const orb_complex8 *power,
                    unsigned int n);
/* dst[i] = the exact remainder of a[i] / b[i] with the quotient truncated
 * toward zero, as C fmodf: the sign of a[i] (a zero result keeps it),
 * |dst[i]| < |b[i]|; NaN when b[i] is 0 or a[i] infinite or either is NaN;
 * a[i] itself when b[i] is infinite and a[i] finite. */
ORB_API void Rem_s(const float *a, const float *b, float *dst, unsigned int n);
/* dst[i] = the remainder of src[i] / v, as Rem_s. */
ORB_API void RemVal_s(const float *src, float *dst, float v, unsigned int n);
/* dst[i] = the largest integer <= src[i], exact (-0.5 gives -1, -0 gives
 * -0); infinities and NaN pass through. */
ORB_API void Floor_s(const float *src, float *dst, unsigned int n);
/* dst[i] = the smallest integer >= src[i], exact (-0.5 gives -0, 0.5 gives
 * 1); infinities and NaN pass through. */
ORB_API void Ceil_s(const float *src, float *dst, unsigned int n);

/* ---------------------------------------------------------------------------
 * Host routines: element access through pointers. Callee-pops (stdcall) on
 * 32-bit Windows.
 * ------------------------------------------------------------------------- */
/* *p = v (one 32-bit word); returns v. */
ORB_API int ORB_STDCALL SetValToPtr_s(int *p, int v);
ORB_API int ORB_STDCALL SetValIToPtr(int *p, int v);
/* *out = *p (one 32-bit word). */
ORB_API void ORB_STDCALL GetValFromPtr_s(const int *p, int *out);
ORB_API void ORB_STDCALL GetValIFromPtr(const int *p, int *out);
/* *dst = *src (one complex element, copied bit for bit). */
ORB_API void ORB_STDCALL SetValcToPtr_s(orb_complex8 *dst, const orb_complex8 *src);
ORB_API void ORB_STDCALL GetValcFromPtr_s(const orb_complex8 *src, orb_complex8 *dst);
/* Returns *p (on 32-bit Windows through the x87 stack, as every float
   result, so a signalling NaN comes back quiet). */
ORB_API float ORB_STDCALL GetValFromPtrf_s(const float *p);

/* ---------------------------------------------------------------------------
 * Host routines: gather and scatter of complex elements. 0-based indices;
 * strides count elements and may be 0 or negative (a negative stride reaches
 * below the pointer given: src[i * inc]); a mask element selects when it is
 * > 0 (0 and negative values select nothing). Elements are copied bit for
 * bit; source and destination must not overlap. n = 0 writes nothing.
 * ------------------------------------------------------------------------- */
/* dst[i] = src[i * inc] */
ORB_API void vdpackic_s(unsigned int n, const orb_complex8 *src, int inc, orb_complex8 *dst);
/* dst[i * inc] = src[i], in order of i (with inc = 0, dst[0] = src[n - 1]) */
ORB_API void vdunpackic_s(unsigned int n, const orb_complex8 *src, orb_complex8 *dst, int inc);
/* dst[i] = src[idx[i]] */
ORB_API void vdpackvc_s(unsigned int n, const orb_complex8 *src, const int *idx, orb_complex8 *dst);
/* dst[idx[i]] = src[i], in order of i (a repeated index keeps the last) */
ORB_API void vdunpackvc_s(unsigned int n, const orb_complex8 *src, orb_complex8 *dst,
                          const int *idx);
/* k = 0; dst[i] = src[k++] for each i with mask[i] > 0: consecutive source
   elements expand into the selected positions; the others are left as they are. */
ORB_API void vdpackmc_s(unsigned int n, const orb_complex8 *src, const int *mask,
                        orb_complex8 *dst);
/* dst[i] = src[k++] for each mask[i] > 0 (same effect as vdpackmc_s) */
ORB_API void vdunpackmc_s(unsigned int n, const orb_complex8 *src, orb_complex8 *dst,
                          const int *mask);
/* k = 0; dst[k++] = src[i] for each i with mask[i] > 0; returns k (dst[k]
   onwards is left as it is). */
ORB_API unsigned int PackByMask_s(unsigned int n, const float *src, float *dst, const int *mask);
ORB_API unsigned int PackByMaskc_s(unsigned int n, const orb_complex8 *src, orb_complex8 *dst,
                                   const int *mask);

/* ---------------------------------------------------------------------------
 * Host routines: row-major matrices (rows x cols, element (i, j) at
 * i * cols + j, 0-based). Real forms on float, c forms on orb_complex8.
 * The triangle routines take a flag: nonzero includes the diagonal.
 * A routine with rows or cols 0 does nothing and touches no element. The
 * triangle rules (j > i, j >= i, j < i, j <= i) apply to every element of a
 * matrix of any shape, square or not. Unless a routine says otherwise, its
 * source and destination must not overlap.
 * ------------------------------------------------------------------------- */
/* Zeroes a[i][j] for j > i (j >= i with diag), in place. */
ORB_API void ZeroUpperTriangle_s(float *a, unsigned int rows, unsigned int cols, int diag);
/* Zeroes a[i][j] for j < i (j <= i with diag), in place. */
ORB_API void ZeroLowerTriangle_s(float *a, unsigned int rows, unsigned int cols, int diag);
/* dst = the part of src with j > i (j >= i with diag), other elements zero;
 * dst may equal src. */
ORB_API void UpperTriangle_s(const float *src, float *dst, unsigned int rows, unsigned int cols,
                             int diag);
/* dst = the part of src with j < i (j <= i with diag), other elements zero;
 * dst may equal src. */
ORB_API void LowerTriangle_s(const float *src, float *dst, unsigned int rows, unsigned int cols,
                             int diag);
/* Swaps columns c1 and c2 (0-based) in place; nothing happens when c1 == c2
 * or either is >= cols. */
ORB_API void ColExchange_s(float *a, unsigned int rows, unsigned int cols, unsigned int c1,
                           unsigned int c2);
/* Swaps rows r1 and r2 (0-based) in place; nothing happens when r1 == r2 or
 * either is >= rows. */
ORB_API void RowExchange_s(float *a, unsigned int rows, unsigned int cols, unsigned int r1,
                           unsigned int r2);
/* dst (cols x rows) = transpose of src (rows x cols); src and dst must not overlap. */
ORB_API void TransposeMatrix_s(const float *src, float *dst, unsigned int rows, unsigned int cols);
/* dst (n x n) = transpose of src; dst may equal src (in place, no extra
 * memory); otherwise they must not overlap. */
ORB_API void TransposeSquareMatrix_s(const float *src, float *dst, unsigned int n);
/* dst (dst_rows x dst_cols) = top-left overlap of src (src_rows x src_cols), rest zero.
 * dst may equal src (in place, growing or shrinking either dimension; the
 * buffer must hold the larger of the two matrices); otherwise they must not
 * overlap. With dst_rows or dst_cols 0 nothing is written. */
ORB_API void ResizeMatrix_s(const float *src, float *dst, unsigned int src_rows,
                            unsigned int src_cols, unsigned int dst_rows, unsigned int dst_cols);
/* dst (rows x cols) = block of src (src_rows x src_cols) starting at (row0, col0);
 * a block reaching outside src (row0 + rows > src_rows or col0 + cols >
 * src_cols, computed without wrapping) copies nothing and leaves dst
 * untouched. No overlap. */
ORB_API void CopySubMatrix_s(const float *src, float *dst, unsigned int src_rows,
                             unsigned int src_cols, unsigned int row0, unsigned int col0,
                             unsigned int rows, unsigned int cols);
/* Complex forms of the routines above, same argument meanings and the same
 * rules for empty matrices, indices out of range and overlap. */
/* Zeroes a[i][j] for j > i (j >= i with diag), in place. */
ORB_API void ZeroUpperTrianglec_s(orb_complex8 *a, unsigned int rows, unsigned int cols, int diag);
/* Zeroes a[i][j] for j < i (j <= i with diag), in place. */
ORB_API void ZeroLowerTrianglec_s(orb_complex8 *a, unsigned int rows, unsigned int cols, int diag);
/* dst = the part of src with j > i (j >= i with diag), other elements zero; dst may equal src. */
ORB_API void UpperTrianglec_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int rows,
                              unsigned int cols, int diag);
/* dst = the part of src with j < i (j <= i with diag), other elements zero; dst may equal src. */
ORB_API void LowerTrianglec_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int rows,
                              unsigned int cols, int diag);
/* Swaps columns c1 and c2 in place; nothing if c1 == c2 or either is >= cols. */
ORB_API void ColExchangec_s(orb_complex8 *a, unsigned int rows, unsigned int cols, unsigned int c1,
                            unsigned int c2);
/* Swaps rows r1 and r2 in place; nothing if r1 == r2 or either is >= rows. */
ORB_API void RowExchangec_s(orb_complex8 *a, unsigned int rows, unsigned int cols, unsigned int r1,
                            unsigned int r2);
/* dst (cols x rows) = transpose (not conjugated) of src; no overlap. */
ORB_API void TransposeMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int rows,
                                unsigned int cols);
/* dst (n x n) = transpose (not conjugated) of src; dst may equal src (in
 * place), otherwise no overlap. */
ORB_API void TransposeSquareMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n);
/* dst = top-left overlap of src, rest zero; dst may equal src (in place). */
ORB_API void ResizeMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int src_rows,
                             unsigned int src_cols, unsigned int dst_rows, unsigned int dst_cols);
/* dst (rows x cols) = block of src at (row0, col0); nothing if outside src. */
ORB_API void CopySubMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int src_rows,
                              unsigned int src_cols, unsigned int row0, unsigned int col0,
                              unsigned int rows, unsigned int cols);
/* dst (cols x rows) = conjugate transpose of src (rows x cols); no overlap. */
ORB_API void AdjungateMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int rows,
                                unsigned int cols);
/* dst (n x n) = conjugate transpose of src (the diagonal conjugated too);
 * dst may equal src (in place), otherwise no overlap. */
ORB_API void AdjungateSquareMatrixc_s(const orb_complex8 *src, orb_complex8 *dst, unsigned int n);

/* ---------------------------------------------------------------------------
 * Host routines: special functions, machine constants, filter design and
 * Toeplitz solvers. Classic argument lists, every argument by pointer.
 * Bessel and Airy functions of complex z, computed in double and rounded to
 * single, for the orders fnu .. fnu+n-1: kode 1 unscaled, 2 scaled (I by
 * exp(-|Re z|), J and Y by exp(-|Im z|), K by exp(z), H1 by exp(-iz), H2 by
 * exp(iz), Ai by exp(zeta), Bi by exp(-|Re zeta|), zeta = (2/3) z^(3/2)).
 * nz counts values set to zero by underflow. ierr: 0 success; 1 an argument
 * out of range (fnu < 0, kode not 1 or 2, n < 1, m not 1 or 2, id not 0 or 1,
 * z = 0 for K, H, Y); 2 overflow (no values); 3 |z| or fnu+n-1 large, values
 * with reduced accuracy; 4 too large, no values; 5 no convergence. The Airy
 * functions' limits of classes 3 and 4 are those of the Bessel functions to
 * the power 2/3.
 * ------------------------------------------------------------------------- */
/* cy[k] = J_{fnu+k}(z), k = 0 .. n-1 */
ORB_API void CBESJ(const orb_complex8 *z, const float *fnu, const int *kode, const int *n,
                   orb_complex8 *cy, int *nz, int *ierr);
/* cy[k] = Y_{fnu+k}(z); cwrk is n complex elements of workspace. */
ORB_API void CBESY(const orb_complex8 *z, const float *fnu, const int *kode, const int *n,
                   orb_complex8 *cy, int *nz, orb_complex8 *cwrk, int *ierr);
/* cy[k] = I_{fnu+k}(z) */
ORB_API void CBESI(const orb_complex8 *z, const float *fnu, const int *kode, const int *n,
                   orb_complex8 *cy, int *nz, int *ierr);
/* cy[k] = K_{fnu+k}(z) */
ORB_API void CBESK(const orb_complex8 *z, const float *fnu, const int *kode, const int *n,
                   orb_complex8 *cy, int *nz, int *ierr);
/* cy[k] = H^(m)_{fnu+k}(z), Hankel function of kind m = 1 or 2 */
ORB_API void CBESH(const orb_complex8 *z, const float *fnu, const int *kode, const int *m,
                   const int *n, orb_complex8 *cy, int *nz, int *ierr);
/* *ai = Ai(z) (id = 0) or Ai'(z) (id = 1) */
ORB_API void CAIRY(const orb_complex8 *z, const int *id, const int *kode, orb_complex8 *ai, int *nz,
                   int *ierr);
/* *bi = Bi(z) (id = 0) or Bi'(z) (id = 1) */
ORB_API void CBIRY(const orb_complex8 *z, const int *id, const int *kode, orb_complex8 *bi,
                   int *ierr);
/* Double machine constant *i (IEEE double, base 2, 53 digits): 1 the smallest
 * positive normal number 2^-1022, 2 the largest 2^1024 (1 - 2^-53), 3 the
 * smallest relative spacing 2^-53, 4 the largest relative spacing 2^-52,
 * 5 log10(2). Another *i reports parameter 1 through XERBLA and returns 0. */
ORB_API double D1MACH(const int *i);
/* Single machine constant *i (IEEE single, base 2, 24 digits): 1 the smallest
 * positive normal number 2^-126, 2 the largest 2^128 (1 - 2^-24), 3 the
 * smallest relative spacing 2^-24, 4 the largest relative spacing 2^-23,
 * 5 log10(2). Another *i reports parameter 1 through XERBLA and returns 0. */
ORB_API float R1MACH(const int *i);
/* Equiripple linear-phase FIR design by the Parks-McClellan exchange.
 * Inputs: nfilt taps (3 or more); jtype 1 multiple passband/stopband,
 * 2 differentiator, 3 Hilbert transformer (types 2 and 3 antisymmetric);
 * nbands bands; lgrid grid density (<= 0 selects 16); edge[2 nbands] the band
 * edges in cycles per sample, increasing within [0, 0.5]; fx[nbands] the
 * desired values (for a differentiator the slope: desired fx * f, weight
 * wtx / f where fx > 0); wtx[nbands] the positive weights. Outputs: h[nfilt]
 * the impulse response, deviat[nbands] the deviation in each band (the
 * levelled error over the band's weight), extrem the extremal frequencies
 * (nfilt / 2 + 2 of them for odd nfilt and jtype 1, nfilt / 2 + 1
 * otherwise); computed in double.
 * ierr: 0 success; -1 nfilt < 3 or too long for the grid the bands give
 * (fewer grid points than extremal frequencies); -2 jtype not 1, 2 or 3;
 * -3 nbands < 1; -4 lgrid * nfilt above 2^24; -5 edges not increasing within
 * [0, 0.5]; -6 a desired value not finite; -7 a weight not positive (or not
 * finite); 1 the exchange did not converge in 100 passes or lost its digits
 * (the deviation decreased); 2 not enough memory for the grid. The outputs
 * are written only when ierr is 0. */
ORB_API void REMEZ(const int *nfilt, const int *jtype, const int *nbands, const int *lgrid,
                   const float *edge, const float *fx, const float *wtx, float *h, float *deviat,
                   float *extrem, int *ierr);
/* Solves the m x m complex Toeplitz system A x = b: a1 is the first row (m),
 * a2 the first column from its second element (m - 1); c1, c2 are m - 1
 * elements of workspace each; x may equal b. Levinson-Trench recursion in
 * O(m^2), inner products formed in double. A vanishing leading minor sets x
 * to zero and reports parameter 1 through XERBLA; m < 1 reports parameter 7. */
ORB_API void TSLC1(const orb_complex8 *a1, const orb_complex8 *a2, const orb_complex8 *b,
                   orb_complex8 *x, orb_complex8 *c1, orb_complex8 *c2, const int *m);
/* Real form of TSLC1. */
ORB_API void TSLS1(const float *a1, const float *a2, const float *b, float *x, float *c1, float *c2,
                   const int *m);
#ifdef __cplusplus
}
#endif

#endif /* ORB_H */
