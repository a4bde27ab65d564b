/*
 * orb_cblas.h: the C interface to ORB's single-precision BLAS (real s and
 * complex c routines), with the conventional cblas_ names, enumerations and
 * values. Matrices are row-major (CblasRowMajor) or column-major
 * (CblasColMajor); scalars and sizes are passed by value, complex scalars and
 * arrays through void pointers to pairs of floats (real part first). Index
 * results count from 0. A bad argument is reported through XERBLA with its
 * position in the cblas_ argument list (the layout is argument 1) and the
 * routine returns without touching its outputs.
 */
#ifndef ORB_CBLAS_H
#define ORB_CBLAS_H

#include <stddef.h>

#ifndef ORB_API
#if defined(ORB_BUILDING) && !defined(_WIN32)
#define ORB_API __attribute__((visibility("default")))
#else
#define ORB_API
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

#ifndef CBLAS_INDEX
#define CBLAS_INDEX size_t
#endif

typedef enum CBLAS_LAYOUT { CblasRowMajor = 101, CblasColMajor = 102 } CBLAS_LAYOUT;
typedef enum CBLAS_TRANSPOSE {
  CblasNoTrans = 111,
  CblasTrans = 112,
  CblasConjTrans = 113
} CBLAS_TRANSPOSE;
typedef enum CBLAS_UPLO { CblasUpper = 121, CblasLower = 122 } CBLAS_UPLO;
typedef enum CBLAS_DIAG { CblasNonUnit = 131, CblasUnit = 132 } CBLAS_DIAG;
typedef enum CBLAS_SIDE { CblasLeft = 141, CblasRight = 142 } CBLAS_SIDE;
typedef CBLAS_LAYOUT CBLAS_ORDER;

/* Level 1, real */
ORB_API float cblas_sdot(const int N, const float *X, const int incX, const float *Y,
                         const int incY);
ORB_API float cblas_snrm2(const int N, const float *X, const int incX);
ORB_API float cblas_sasum(const int N, const float *X, const int incX);
ORB_API CBLAS_INDEX cblas_isamax(const int N, const float *X, const int incX);
ORB_API void cblas_saxpy(const int N, const float alpha, const float *X, const int incX, float *Y,
                         const int incY);
ORB_API void cblas_scopy(const int N, const float *X, const int incX, float *Y, const int incY);
ORB_API void cblas_sscal(const int N, const float alpha, float *X, const int incX);
ORB_API void cblas_sswap(const int N, float *X, const int incX, float *Y, const int incY);
ORB_API void cblas_srot(const int N, float *X, const int incX, float *Y, const int incY,
                        const float c, const float s);
ORB_API void cblas_srotg(float *a, float *b, float *c, float *s);
ORB_API void cblas_srotm(const int N, float *X, const int incX, float *Y, const int incY,
                         const float *P);
ORB_API void cblas_srotmg(float *d1, float *d2, float *b1, const float b2, float *P);

/* Level 1, complex (dot products return through the last argument) */
ORB_API void cblas_cdotu_sub(const int N, const void *X, const int incX, const void *Y,
                             const int incY, void *dotu);
ORB_API void cblas_cdotc_sub(const int N, const void *X, const int incX, const void *Y,
                             const int incY, void *dotc);
ORB_API float cblas_scnrm2(const int N, const void *X, const int incX);
ORB_API float cblas_scasum(const int N, const void *X, const int incX);
ORB_API CBLAS_INDEX cblas_icamax(const int N, const void *X, const int incX);
ORB_API void cblas_caxpy(const int N, const void *alpha, const void *X, const int incX, void *Y,
                         const int incY);
ORB_API void cblas_ccopy(const int N, const void *X, const int incX, void *Y, const int incY);
ORB_API void cblas_cscal(const int N, const void *alpha, void *X, const int incX);
ORB_API void cblas_csscal(const int N, const float alpha, void *X, const int incX);
ORB_API void cblas_cswap(const int N, void *X, const int incX, void *Y, const int incY);
ORB_API void cblas_csrot(const int N, void *X, const int incX, void *Y, const int incY,
                         const float c, const float s);
ORB_API void cblas_crotg(void *a, const void *b, float *c, void *s);

/* Level 2, real */
ORB_API void cblas_sgemv(const CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE TransA, const int M,
                         const int N, const float alpha, const float *A, const int lda,
                         const float *X, const int incX, const float beta, float *Y,
                         const int incY);
ORB_API void cblas_sger(const CBLAS_LAYOUT layout, const int M, const int N, const float alpha,
                        const float *X, const int incX, const float *Y, const int incY, float *A,
                        const int lda);
ORB_API void cblas_ssymv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                         const float alpha, const float *A, const int lda, const float *X,
                         const int incX, const float beta, float *Y, const int incY);
ORB_API void cblas_ssyr(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                        const float alpha, const float *X, const int incX, float *A, const int lda);
ORB_API void cblas_ssyr2(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                         const float alpha, const float *X, const int incX, const float *Y,
                         const int incY, float *A, const int lda);
ORB_API void cblas_strmv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int N,
                         const float *A, const int lda, float *X, const int incX);
ORB_API void cblas_strsv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int N,
                         const float *A, const int lda, float *X, const int incX);

/* Level 2, complex */
ORB_API void cblas_cgemv(const CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE TransA, const int M,
                         const int N, const void *alpha, const void *A, const int lda,
                         const void *X, const int incX, const void *beta, void *Y, const int incY);
ORB_API void cblas_cgeru(const CBLAS_LAYOUT layout, const int M, const int N, const void *alpha,
                         const void *X, const int incX, const void *Y, const int incY, void *A,
                         const int lda);
ORB_API void cblas_cgerc(const CBLAS_LAYOUT layout, const int M, const int N, const void *alpha,
                         const void *X, const int incX, const void *Y, const int incY, void *A,
                         const int lda);
ORB_API void cblas_chemv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                         const void *alpha, const void *A, const int lda, const void *X,
                         const int incX, const void *beta, void *Y, const int incY);
ORB_API void cblas_cher(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                        const float alpha, const void *X, const int incX, void *A, const int lda);
ORB_API void cblas_cher2(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo, const int N,
                         const void *alpha, const void *X, const int incX, const void *Y,
                         const int incY, void *A, const int lda);
ORB_API void cblas_ctrmv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int N,
                         const void *A, const int lda, void *X, const int incX);
ORB_API void cblas_ctrsv(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int N,
                         const void *A, const int lda, void *X, const int incX);

/* Level 3, real */
ORB_API void cblas_sgemm(const CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE TransA,
                         const CBLAS_TRANSPOSE TransB, const int M, const int N, const int K,
                         const float alpha, const float *A, const int lda, const float *B,
                         const int ldb, const float beta, float *C, const int ldc);
ORB_API void cblas_ssymm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const int M, const int N, const float alpha, const float *A, const int lda,
                         const float *B, const int ldb, const float beta, float *C, const int ldc);
ORB_API void cblas_ssyrk(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE Trans, const int N, const int K, const float alpha,
                         const float *A, const int lda, const float beta, float *C, const int ldc);
ORB_API void cblas_ssyr2k(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                          const CBLAS_TRANSPOSE Trans, const int N, const int K, const float alpha,
                          const float *A, const int lda, const float *B, const int ldb,
                          const float beta, float *C, const int ldc);
ORB_API void cblas_strmm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int M,
                         const int N, const float alpha, const float *A, const int lda, float *B,
                         const int ldb);
ORB_API void cblas_strsm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int M,
                         const int N, const float alpha, const float *A, const int lda, float *B,
                         const int ldb);

/* Level 3, complex */
ORB_API void cblas_cgemm(const CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE TransA,
                         const CBLAS_TRANSPOSE TransB, const int M, const int N, const int K,
                         const void *alpha, const void *A, const int lda, const void *B,
                         const int ldb, const void *beta, void *C, const int ldc);
ORB_API void cblas_csymm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const int M, const int N, const void *alpha, const void *A, const int lda,
                         const void *B, const int ldb, const void *beta, void *C, const int ldc);
ORB_API void cblas_chemm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const int M, const int N, const void *alpha, const void *A, const int lda,
                         const void *B, const int ldb, const void *beta, void *C, const int ldc);
ORB_API void cblas_csyrk(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE Trans, const int N, const int K, const void *alpha,
                         const void *A, const int lda, const void *beta, void *C, const int ldc);
ORB_API void cblas_cherk(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE Trans, const int N, const int K, const float alpha,
                         const void *A, const int lda, const float beta, void *C, const int ldc);
ORB_API void cblas_csyr2k(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                          const CBLAS_TRANSPOSE Trans, const int N, const int K, const void *alpha,
                          const void *A, const int lda, const void *B, const int ldb,
                          const void *beta, void *C, const int ldc);
ORB_API void cblas_cher2k(const CBLAS_LAYOUT layout, const CBLAS_UPLO Uplo,
                          const CBLAS_TRANSPOSE Trans, const int N, const int K, const void *alpha,
                          const void *A, const int lda, const void *B, const int ldb,
                          const float beta, void *C, const int ldc);
ORB_API void cblas_ctrmm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int M,
                         const int N, const void *alpha, const void *A, const int lda, void *B,
                         const int ldb);
ORB_API void cblas_ctrsm(const CBLAS_LAYOUT layout, const CBLAS_SIDE Side, const CBLAS_UPLO Uplo,
                         const CBLAS_TRANSPOSE TransA, const CBLAS_DIAG Diag, const int M,
                         const int N, const void *alpha, const void *A, const int lda, void *B,
                         const int ldb);

#ifdef __cplusplus
}
#endif

#endif /* ORB_CBLAS_H */
