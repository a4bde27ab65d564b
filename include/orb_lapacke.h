/*
 * orb_lapacke.h: the C interface to ORB's single-precision LAPACK routines
 * (real s and complex c) with the conventional LAPACKE names. Written by
 * tools/gen_lapacke.py from src/interfaces/lapack_signatures.tsv.
 *
 * LAPACKE_xxx(matrix_layout, ...) sizes and allocates the workspace itself;
 * LAPACKE_xxx_work(matrix_layout, ...) takes the caller's. Matrices are
 * row-major (LAPACK_ROW_MAJOR) or column-major (LAPACK_COL_MAJOR); row-major
 * matrices are transposed into column-major copies and back. The result is
 * the routine's info; a bad argument gives minus its position in the C
 * argument list (the layout is argument 1) after a message through
 * LAPACKE_xerbla, and a failed allocation LAPACK_WORK_MEMORY_ERROR or
 * LAPACK_TRANSPOSE_MEMORY_ERROR. Complex values are lapack_complex_float,
 * C99 float _Complex (std::complex<float> in C++) unless the includer defines
 * lapack_complex_float to another type of the same layout.
 */
#ifndef ORB_LAPACKE_H
#define ORB_LAPACKE_H

#ifndef ORB_API
#if defined(ORB_BUILDING) && !defined(_WIN32)
#define ORB_API __attribute__((visibility("default")))
#else
#define ORB_API
#endif
#endif

#ifndef lapack_int
#define lapack_int int
#endif

#ifndef lapack_complex_float
#ifdef __cplusplus
#include <complex>
#define lapack_complex_float std::complex<float>
#else
#include <complex.h>
#define lapack_complex_float float _Complex
#endif
#endif

#define LAPACK_ROW_MAJOR 101
#define LAPACK_COL_MAJOR 102
#define LAPACK_WORK_MEMORY_ERROR -1010
#define LAPACK_TRANSPOSE_MEMORY_ERROR -1011

#ifdef __cplusplus
extern "C" {
#endif

/* Reports argument -info of routine name (info < 0) or a failed allocation. */
ORB_API void LAPACKE_xerbla(const char *name, lapack_int info);

/* getrf */
ORB_API lapack_int LAPACKE_sgetrf(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, lapack_int *ipiv);
ORB_API lapack_int LAPACKE_sgetrf_work(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, lapack_int *ipiv);
ORB_API lapack_int LAPACKE_cgetrf(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv);
ORB_API lapack_int LAPACKE_cgetrf_work(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv);

/* getrs */
ORB_API lapack_int LAPACKE_sgetrs(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const lapack_int *ipiv, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_sgetrs_work(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const lapack_int *ipiv, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_cgetrs(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_cgetrs_work(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb);

/* potrf */
ORB_API lapack_int LAPACKE_spotrf(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda);
ORB_API lapack_int LAPACKE_spotrf_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda);
ORB_API lapack_int LAPACKE_cpotrf(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda);
ORB_API lapack_int LAPACKE_cpotrf_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda);

/* potrs */
ORB_API lapack_int LAPACKE_spotrs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_spotrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_cpotrs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_cpotrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb);

/* geqrf */
ORB_API lapack_int LAPACKE_sgeqrf(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *tau);
ORB_API lapack_int LAPACKE_sgeqrf_work(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *tau, float *work, lapack_int lwork);
ORB_API lapack_int LAPACKE_cgeqrf(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau);
ORB_API lapack_int LAPACKE_cgeqrf_work(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork);

/* getri */
ORB_API lapack_int LAPACKE_sgetri(int matrix_layout, lapack_int n, float *a, lapack_int lda, const lapack_int *ipiv);
ORB_API lapack_int LAPACKE_sgetri_work(int matrix_layout, lapack_int n, float *a, lapack_int lda, const lapack_int *ipiv, float *work, lapack_int lwork);
ORB_API lapack_int LAPACKE_cgetri(int matrix_layout, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv);
ORB_API lapack_int LAPACKE_cgetri_work(int matrix_layout, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *work, lapack_int lwork);

/* gbtrf */
ORB_API lapack_int LAPACKE_sgbtrf(int matrix_layout, lapack_int m, lapack_int n, lapack_int kl, lapack_int ku, float *ab, lapack_int ldab, lapack_int *ipiv);
ORB_API lapack_int LAPACKE_sgbtrf_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int kl, lapack_int ku, float *ab, lapack_int ldab, lapack_int *ipiv);
ORB_API lapack_int LAPACKE_cgbtrf(int matrix_layout, lapack_int m, lapack_int n, lapack_int kl, lapack_int ku, lapack_complex_float *ab, lapack_int ldab, lapack_int *ipiv);
ORB_API lapack_int LAPACKE_cgbtrf_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int kl, lapack_int ku, lapack_complex_float *ab, lapack_int ldab, lapack_int *ipiv);

/* gbtrs */
ORB_API lapack_int LAPACKE_sgbtrs(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const float *ab, lapack_int ldab, const lapack_int *ipiv, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_sgbtrs_work(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const float *ab, lapack_int ldab, const lapack_int *ipiv, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_cgbtrs(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_cgbtrs_work(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb);

/* potri */
ORB_API lapack_int LAPACKE_spotri(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda);
ORB_API lapack_int LAPACKE_spotri_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda);
ORB_API lapack_int LAPACKE_cpotri(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda);
ORB_API lapack_int LAPACKE_cpotri_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda);

/* trtri */
ORB_API lapack_int LAPACKE_strtri(int matrix_layout, char uplo, char diag, lapack_int n, float *a, lapack_int lda);
ORB_API lapack_int LAPACKE_strtri_work(int matrix_layout, char uplo, char diag, lapack_int n, float *a, lapack_int lda);
ORB_API lapack_int LAPACKE_ctrtri(int matrix_layout, char uplo, char diag, lapack_int n, lapack_complex_float *a, lapack_int lda);
ORB_API lapack_int LAPACKE_ctrtri_work(int matrix_layout, char uplo, char diag, lapack_int n, lapack_complex_float *a, lapack_int lda);

/* trtrs */
ORB_API lapack_int LAPACKE_strtrs(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_strtrs_work(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_ctrtrs(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_ctrtrs_work(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb);

/* orgqr */
ORB_API lapack_int LAPACKE_sorgqr(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau);
ORB_API lapack_int LAPACKE_sorgqr_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau, float *work, lapack_int lwork);

/* ungqr */
ORB_API lapack_int LAPACKE_cungqr(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau);
ORB_API lapack_int LAPACKE_cungqr_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork);

/* ormqr */
ORB_API lapack_int LAPACKE_sormqr(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc);
ORB_API lapack_int LAPACKE_sormqr_work(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc, float *work, lapack_int lwork);

/* unmqr */
ORB_API lapack_int LAPACKE_cunmqr(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc);
ORB_API lapack_int LAPACKE_cunmqr_work(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc, lapack_complex_float *work, lapack_int lwork);

/* gesdd */
ORB_API lapack_int LAPACKE_sgesdd(int matrix_layout, char jobz, lapack_int m, lapack_int n, float *a, lapack_int lda, float *s, float *u, lapack_int ldu, float *vt, lapack_int ldvt);
ORB_API lapack_int LAPACKE_sgesdd_work(int matrix_layout, char jobz, lapack_int m, lapack_int n, float *a, lapack_int lda, float *s, float *u, lapack_int ldu, float *vt, lapack_int ldvt, float *work, lapack_int lwork, lapack_int *iwork);

/* gesdd */
ORB_API lapack_int LAPACKE_cgesdd(int matrix_layout, char jobz, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *s, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *vt, lapack_int ldvt);
ORB_API lapack_int LAPACKE_cgesdd_work(int matrix_layout, char jobz, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *s, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *vt, lapack_int ldvt, lapack_complex_float *work, lapack_int lwork, float *rwork, lapack_int *iwork);

/* syevr */
ORB_API lapack_int LAPACKE_ssyevr(int matrix_layout, char jobz, char range, char uplo, lapack_int n, float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, lapack_int *isuppz);
ORB_API lapack_int LAPACKE_ssyevr_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, lapack_int *isuppz, float *work, lapack_int lwork, lapack_int *iwork, lapack_int liwork);

/* heevr */
ORB_API lapack_int LAPACKE_cheevr(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_int *isuppz);
ORB_API lapack_int LAPACKE_cheevr_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_int *isuppz, lapack_complex_float *work, lapack_int lwork, float *rwork, lapack_int lrwork, lapack_int *iwork, lapack_int liwork);

/* pbtrf */
ORB_API lapack_int LAPACKE_spbtrf(int matrix_layout, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab);
ORB_API lapack_int LAPACKE_spbtrf_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab);
ORB_API lapack_int LAPACKE_cpbtrf(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab);
ORB_API lapack_int LAPACKE_cpbtrf_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab);

/* pbtrs */
ORB_API lapack_int LAPACKE_spbtrs(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const float *ab, lapack_int ldab, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_spbtrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const float *ab, lapack_int ldab, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_cpbtrs(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, lapack_complex_float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_cpbtrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, lapack_complex_float *b, lapack_int ldb);

/* sytrf */
ORB_API lapack_int LAPACKE_ssytrf(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, lapack_int *ipiv);
ORB_API lapack_int LAPACKE_ssytrf_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, lapack_int *ipiv, float *work, lapack_int lwork);
ORB_API lapack_int LAPACKE_csytrf(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv);
ORB_API lapack_int LAPACKE_csytrf_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv, lapack_complex_float *work, lapack_int lwork);

/* hetrf */
ORB_API lapack_int LAPACKE_chetrf(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv);
ORB_API lapack_int LAPACKE_chetrf_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ipiv, lapack_complex_float *work, lapack_int lwork);

/* sytrs */
ORB_API lapack_int LAPACKE_ssytrs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const lapack_int *ipiv, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_ssytrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const lapack_int *ipiv, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_csytrs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_csytrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb);

/* hetrs */
ORB_API lapack_int LAPACKE_chetrs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_chetrs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *b, lapack_int ldb);

/* geqp3 */
ORB_API lapack_int LAPACKE_sgeqp3(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, lapack_int *jpvt, float *tau);
ORB_API lapack_int LAPACKE_sgeqp3_work(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, lapack_int *jpvt, float *tau, float *work, lapack_int lwork);

/* gelqf */
ORB_API lapack_int LAPACKE_sgelqf(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *tau);
ORB_API lapack_int LAPACKE_sgelqf_work(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *tau, float *work, lapack_int lwork);
ORB_API lapack_int LAPACKE_cgelqf(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau);
ORB_API lapack_int LAPACKE_cgelqf_work(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork);

/* orglq */
ORB_API lapack_int LAPACKE_sorglq(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau);
ORB_API lapack_int LAPACKE_sorglq_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau, float *work, lapack_int lwork);

/* unglq */
ORB_API lapack_int LAPACKE_cunglq(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau);
ORB_API lapack_int LAPACKE_cunglq_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork);

/* ormlq */
ORB_API lapack_int LAPACKE_sormlq(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc);
ORB_API lapack_int LAPACKE_sormlq_work(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc, float *work, lapack_int lwork);

/* unmlq */
ORB_API lapack_int LAPACKE_cunmlq(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc);
ORB_API lapack_int LAPACKE_cunmlq_work(int matrix_layout, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc, lapack_complex_float *work, lapack_int lwork);

/* gels */
ORB_API lapack_int LAPACKE_sgels(int matrix_layout, char trans, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_sgels_work(int matrix_layout, char trans, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb, float *work, lapack_int lwork);
ORB_API lapack_int LAPACKE_cgels(int matrix_layout, char trans, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_cgels_work(int matrix_layout, char trans, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb, lapack_complex_float *work, lapack_int lwork);

/* sytrd */
ORB_API lapack_int LAPACKE_ssytrd(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, float *d, float *e, float *tau);
ORB_API lapack_int LAPACKE_ssytrd_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, float *d, float *e, float *tau, float *work, lapack_int lwork);

/* hetrd */
ORB_API lapack_int LAPACKE_chetrd(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float *d, float *e, lapack_complex_float *tau);
ORB_API lapack_int LAPACKE_chetrd_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float *d, float *e, lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork);

/* orgtr */
ORB_API lapack_int LAPACKE_sorgtr(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, const float *tau);
ORB_API lapack_int LAPACKE_sorgtr_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, const float *tau, float *work, lapack_int lwork);

/* ungtr */
ORB_API lapack_int LAPACKE_cungtr(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau);
ORB_API lapack_int LAPACKE_cungtr_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork);

/* gesvd */
ORB_API lapack_int LAPACKE_sgesvd(int matrix_layout, char jobu, char jobvt, lapack_int m, lapack_int n, float *a, lapack_int lda, float *s, float *u, lapack_int ldu, float *vt, lapack_int ldvt, float *superb);
ORB_API lapack_int LAPACKE_sgesvd_work(int matrix_layout, char jobu, char jobvt, lapack_int m, lapack_int n, float *a, lapack_int lda, float *s, float *u, lapack_int ldu, float *vt, lapack_int ldvt, float *work, lapack_int lwork);

/* gesvd */
ORB_API lapack_int LAPACKE_cgesvd(int matrix_layout, char jobu, char jobvt, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *s, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *vt, lapack_int ldvt, float *superb);
ORB_API lapack_int LAPACKE_cgesvd_work(int matrix_layout, char jobu, char jobvt, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *s, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *vt, lapack_int ldvt, lapack_complex_float *work, lapack_int lwork, float *rwork);

/* geev */
ORB_API lapack_int LAPACKE_sgeev(int matrix_layout, char jobvl, char jobvr, lapack_int n, float *a, lapack_int lda, float *wr, float *wi, float *vl, lapack_int ldvl, float *vr, lapack_int ldvr);
ORB_API lapack_int LAPACKE_sgeev_work(int matrix_layout, char jobvl, char jobvr, lapack_int n, float *a, lapack_int lda, float *wr, float *wi, float *vl, lapack_int ldvl, float *vr, lapack_int ldvr, float *work, lapack_int lwork);

/* geev */
ORB_API lapack_int LAPACKE_cgeev(int matrix_layout, char jobvl, char jobvr, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *w, lapack_complex_float *vl, lapack_int ldvl, lapack_complex_float *vr, lapack_int ldvr);
ORB_API lapack_int LAPACKE_cgeev_work(int matrix_layout, char jobvl, char jobvr, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_complex_float *w, lapack_complex_float *vl, lapack_int ldvl, lapack_complex_float *vr, lapack_int ldvr, lapack_complex_float *work, lapack_int lwork, float *rwork);

/* gecon */
ORB_API lapack_int LAPACKE_sgecon(int matrix_layout, char norm, lapack_int n, const float *a, lapack_int lda, float anorm, float *rcond);
ORB_API lapack_int LAPACKE_sgecon_work(int matrix_layout, char norm, lapack_int n, const float *a, lapack_int lda, float anorm, float *rcond, float *work, lapack_int *iwork);

/* gecon */
ORB_API lapack_int LAPACKE_cgecon(int matrix_layout, char norm, lapack_int n, const lapack_complex_float *a, lapack_int lda, float anorm, float *rcond);
ORB_API lapack_int LAPACKE_cgecon_work(int matrix_layout, char norm, lapack_int n, const lapack_complex_float *a, lapack_int lda, float anorm, float *rcond, lapack_complex_float *work, float *rwork);

/* pocon */
ORB_API lapack_int LAPACKE_spocon(int matrix_layout, char uplo, lapack_int n, const float *a, lapack_int lda, float anorm, float *rcond);
ORB_API lapack_int LAPACKE_spocon_work(int matrix_layout, char uplo, lapack_int n, const float *a, lapack_int lda, float anorm, float *rcond, float *work, lapack_int *iwork);

/* pocon */
ORB_API lapack_int LAPACKE_cpocon(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, float anorm, float *rcond);
ORB_API lapack_int LAPACKE_cpocon_work(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, float anorm, float *rcond, lapack_complex_float *work, float *rwork);

/* trcon */
ORB_API lapack_int LAPACKE_strcon(int matrix_layout, char norm, char uplo, char diag, lapack_int n, const float *a, lapack_int lda, float *rcond);
ORB_API lapack_int LAPACKE_strcon_work(int matrix_layout, char norm, char uplo, char diag, lapack_int n, const float *a, lapack_int lda, float *rcond, float *work, lapack_int *iwork);

/* trcon */
ORB_API lapack_int LAPACKE_ctrcon(int matrix_layout, char norm, char uplo, char diag, lapack_int n, const lapack_complex_float *a, lapack_int lda, float *rcond);
ORB_API lapack_int LAPACKE_ctrcon_work(int matrix_layout, char norm, char uplo, char diag, lapack_int n, const lapack_complex_float *a, lapack_int lda, float *rcond, lapack_complex_float *work, float *rwork);

/* gbcon */
ORB_API lapack_int LAPACKE_sgbcon(int matrix_layout, char norm, lapack_int n, lapack_int kl, lapack_int ku, const float *ab, lapack_int ldab, const lapack_int *ipiv, float anorm, float *rcond);
ORB_API lapack_int LAPACKE_sgbcon_work(int matrix_layout, char norm, lapack_int n, lapack_int kl, lapack_int ku, const float *ab, lapack_int ldab, const lapack_int *ipiv, float anorm, float *rcond, float *work, lapack_int *iwork);

/* gbcon */
ORB_API lapack_int LAPACKE_cgbcon(int matrix_layout, char norm, lapack_int n, lapack_int kl, lapack_int ku, const lapack_complex_float *ab, lapack_int ldab, const lapack_int *ipiv, float anorm, float *rcond);
ORB_API lapack_int LAPACKE_cgbcon_work(int matrix_layout, char norm, lapack_int n, lapack_int kl, lapack_int ku, const lapack_complex_float *ab, lapack_int ldab, const lapack_int *ipiv, float anorm, float *rcond, lapack_complex_float *work, float *rwork);

/* pbcon */
ORB_API lapack_int LAPACKE_spbcon(int matrix_layout, char uplo, lapack_int n, lapack_int kd, const float *ab, lapack_int ldab, float anorm, float *rcond);
ORB_API lapack_int LAPACKE_spbcon_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, const float *ab, lapack_int ldab, float anorm, float *rcond, float *work, lapack_int *iwork);

/* pbcon */
ORB_API lapack_int LAPACKE_cpbcon(int matrix_layout, char uplo, lapack_int n, lapack_int kd, const lapack_complex_float *ab, lapack_int ldab, float anorm, float *rcond);
ORB_API lapack_int LAPACKE_cpbcon_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, const lapack_complex_float *ab, lapack_int ldab, float anorm, float *rcond, lapack_complex_float *work, float *rwork);

/* sycon */
ORB_API lapack_int LAPACKE_ssycon(int matrix_layout, char uplo, lapack_int n, const float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond);
ORB_API lapack_int LAPACKE_ssycon_work(int matrix_layout, char uplo, lapack_int n, const float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond, float *work, lapack_int *iwork);

/* sycon */
ORB_API lapack_int LAPACKE_csycon(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond);
ORB_API lapack_int LAPACKE_csycon_work(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond, lapack_complex_float *work);

/* hecon */
ORB_API lapack_int LAPACKE_checon(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond);
ORB_API lapack_int LAPACKE_checon_work(int matrix_layout, char uplo, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, float anorm, float *rcond, lapack_complex_float *work);

/* gelss */
ORB_API lapack_int LAPACKE_sgelss(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank);
ORB_API lapack_int LAPACKE_sgelss_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank, float *work, lapack_int lwork);

/* gelss */
ORB_API lapack_int LAPACKE_cgelss(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank);
ORB_API lapack_int LAPACKE_cgelss_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank, lapack_complex_float *work, lapack_int lwork, float *rwork);

/* syevx */
ORB_API lapack_int LAPACKE_ssyevx(int matrix_layout, char jobz, char range, char uplo, lapack_int n, float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, lapack_int *ifail);
ORB_API lapack_int LAPACKE_ssyevx_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, float *work, lapack_int lwork, lapack_int *iwork, lapack_int *ifail);

/* heevx */
ORB_API lapack_int LAPACKE_cheevx(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_int *ifail);
ORB_API lapack_int LAPACKE_cheevx_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_complex_float *work, lapack_int lwork, float *rwork, lapack_int *iwork, lapack_int *ifail);

/* gelsd */
ORB_API lapack_int LAPACKE_sgelsd(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank);
ORB_API lapack_int LAPACKE_sgelsd_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, float *a, lapack_int lda, float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank, float *work, lapack_int lwork, lapack_int *iwork);

/* gelsd */
ORB_API lapack_int LAPACKE_cgelsd(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank);
ORB_API lapack_int LAPACKE_cgelsd_work(int matrix_layout, lapack_int m, lapack_int n, lapack_int nrhs, lapack_complex_float *a, lapack_int lda, lapack_complex_float *b, lapack_int ldb, float *s, float rcond, lapack_int *rank, lapack_complex_float *work, lapack_int lwork, float *rwork, lapack_int *iwork);

/* gerfs */
ORB_API lapack_int LAPACKE_sgerfs(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_sgerfs_work(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork);

/* gerfs */
ORB_API lapack_int LAPACKE_cgerfs(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_cgerfs_work(int matrix_layout, char trans, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork);

/* porfs */
ORB_API lapack_int LAPACKE_sporfs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_sporfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork);

/* porfs */
ORB_API lapack_int LAPACKE_cporfs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_cporfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork);

/* syrfs */
ORB_API lapack_int LAPACKE_ssyrfs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_ssyrfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *af, lapack_int ldaf, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork);

/* syrfs */
ORB_API lapack_int LAPACKE_csyrfs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_csyrfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork);

/* herfs */
ORB_API lapack_int LAPACKE_cherfs(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_cherfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *af, lapack_int ldaf, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork);

/* gbrfs */
ORB_API lapack_int LAPACKE_sgbrfs(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const float *ab, lapack_int ldab, const float *afb, lapack_int ldafb, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_sgbrfs_work(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const float *ab, lapack_int ldab, const float *afb, lapack_int ldafb, const lapack_int *ipiv, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork);

/* gbrfs */
ORB_API lapack_int LAPACKE_cgbrfs(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_complex_float *afb, lapack_int ldafb, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_cgbrfs_work(int matrix_layout, char trans, lapack_int n, lapack_int kl, lapack_int ku, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_complex_float *afb, lapack_int ldafb, const lapack_int *ipiv, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork);

/* pbrfs */
ORB_API lapack_int LAPACKE_spbrfs(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const float *ab, lapack_int ldab, const float *afb, lapack_int ldafb, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_spbrfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const float *ab, lapack_int ldab, const float *afb, lapack_int ldafb, const float *b, lapack_int ldb, float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork);

/* pbrfs */
ORB_API lapack_int LAPACKE_cpbrfs(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_complex_float *afb, lapack_int ldafb, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_cpbrfs_work(int matrix_layout, char uplo, lapack_int n, lapack_int kd, lapack_int nrhs, const lapack_complex_float *ab, lapack_int ldab, const lapack_complex_float *afb, lapack_int ldafb, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork);

/* trrfs */
ORB_API lapack_int LAPACKE_strrfs(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *b, lapack_int ldb, const float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_strrfs_work(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const float *a, lapack_int lda, const float *b, lapack_int ldb, const float *x, lapack_int ldx, float *ferr, float *berr, float *work, lapack_int *iwork);

/* trrfs */
ORB_API lapack_int LAPACKE_ctrrfs(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb, const lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr);
ORB_API lapack_int LAPACKE_ctrrfs_work(int matrix_layout, char uplo, char trans, char diag, lapack_int n, lapack_int nrhs, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb, const lapack_complex_float *x, lapack_int ldx, float *ferr, float *berr, lapack_complex_float *work, float *rwork);

/* sytri */
ORB_API lapack_int LAPACKE_ssytri(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, const lapack_int *ipiv);
ORB_API lapack_int LAPACKE_ssytri_work(int matrix_layout, char uplo, lapack_int n, float *a, lapack_int lda, const lapack_int *ipiv, float *work);
ORB_API lapack_int LAPACKE_csytri(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv);
ORB_API lapack_int LAPACKE_csytri_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *work);

/* hetri */
ORB_API lapack_int LAPACKE_chetri(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv);
ORB_API lapack_int LAPACKE_chetri_work(int matrix_layout, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_int *ipiv, lapack_complex_float *work);

/* sygst */
ORB_API lapack_int LAPACKE_ssygst(int matrix_layout, lapack_int itype, char uplo, lapack_int n, float *a, lapack_int lda, const float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_ssygst_work(int matrix_layout, lapack_int itype, char uplo, lapack_int n, float *a, lapack_int lda, const float *b, lapack_int ldb);

/* hegst */
ORB_API lapack_int LAPACKE_chegst(int matrix_layout, lapack_int itype, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb);
ORB_API lapack_int LAPACKE_chegst_work(int matrix_layout, lapack_int itype, char uplo, lapack_int n, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb);

/* ormtr */
ORB_API lapack_int LAPACKE_sormtr(int matrix_layout, char side, char uplo, char trans, lapack_int m, lapack_int n, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc);
ORB_API lapack_int LAPACKE_sormtr_work(int matrix_layout, char side, char uplo, char trans, lapack_int m, lapack_int n, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc, float *work, lapack_int lwork);

/* unmtr */
ORB_API lapack_int LAPACKE_cunmtr(int matrix_layout, char side, char uplo, char trans, lapack_int m, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc);
ORB_API lapack_int LAPACKE_cunmtr_work(int matrix_layout, char side, char uplo, char trans, lapack_int m, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *c, lapack_int ldc, lapack_complex_float *work, lapack_int lwork);

/* steqr */
ORB_API lapack_int LAPACKE_ssteqr(int matrix_layout, char compz, lapack_int n, float *d, float *e, float *z, lapack_int ldz);
ORB_API lapack_int LAPACKE_ssteqr_work(int matrix_layout, char compz, lapack_int n, float *d, float *e, float *z, lapack_int ldz, float *work);
ORB_API lapack_int LAPACKE_csteqr(int matrix_layout, char compz, lapack_int n, float *d, float *e, lapack_complex_float *z, lapack_int ldz);
ORB_API lapack_int LAPACKE_csteqr_work(int matrix_layout, char compz, lapack_int n, float *d, float *e, lapack_complex_float *z, lapack_int ldz, float *work);

/* pteqr */
ORB_API lapack_int LAPACKE_spteqr(int matrix_layout, char compz, lapack_int n, float *d, float *e, float *z, lapack_int ldz);
ORB_API lapack_int LAPACKE_spteqr_work(int matrix_layout, char compz, lapack_int n, float *d, float *e, float *z, lapack_int ldz, float *work);
ORB_API lapack_int LAPACKE_cpteqr(int matrix_layout, char compz, lapack_int n, float *d, float *e, lapack_complex_float *z, lapack_int ldz);
ORB_API lapack_int LAPACKE_cpteqr_work(int matrix_layout, char compz, lapack_int n, float *d, float *e, lapack_complex_float *z, lapack_int ldz, float *work);

/* stein */
ORB_API lapack_int LAPACKE_sstein(int matrix_layout, lapack_int n, const float *d, const float *e, lapack_int m, const float *w, const lapack_int *iblock, const lapack_int *isplit, float *z, lapack_int ldz, lapack_int *ifail);
ORB_API lapack_int LAPACKE_sstein_work(int matrix_layout, lapack_int n, const float *d, const float *e, lapack_int m, const float *w, const lapack_int *iblock, const lapack_int *isplit, float *z, lapack_int ldz, float *work, lapack_int *iwork, lapack_int *ifail);
ORB_API lapack_int LAPACKE_cstein(int matrix_layout, lapack_int n, const float *d, const float *e, lapack_int m, const float *w, const lapack_int *iblock, const lapack_int *isplit, lapack_complex_float *z, lapack_int ldz, lapack_int *ifail);
ORB_API lapack_int LAPACKE_cstein_work(int matrix_layout, lapack_int n, const float *d, const float *e, lapack_int m, const float *w, const lapack_int *iblock, const lapack_int *isplit, lapack_complex_float *z, lapack_int ldz, float *work, lapack_int *iwork, lapack_int *ifail);

/* sbev */
ORB_API lapack_int LAPACKE_ssbev(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *w, float *z, lapack_int ldz);
ORB_API lapack_int LAPACKE_ssbev_work(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *w, float *z, lapack_int ldz, float *work);

/* hbev */
ORB_API lapack_int LAPACKE_chbev(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, float *w, lapack_complex_float *z, lapack_int ldz);
ORB_API lapack_int LAPACKE_chbev_work(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, float *w, lapack_complex_float *z, lapack_int ldz, lapack_complex_float *work, float *rwork);

/* sbevd */
ORB_API lapack_int LAPACKE_ssbevd(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *w, float *z, lapack_int ldz);
ORB_API lapack_int LAPACKE_ssbevd_work(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *w, float *z, lapack_int ldz, float *work, lapack_int lwork, lapack_int *iwork, lapack_int liwork);

/* hbevd */
ORB_API lapack_int LAPACKE_chbevd(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, float *w, lapack_complex_float *z, lapack_int ldz);
ORB_API lapack_int LAPACKE_chbevd_work(int matrix_layout, char jobz, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, float *w, lapack_complex_float *z, lapack_int ldz, lapack_complex_float *work, lapack_int lwork, float *rwork, lapack_int lrwork, lapack_int *iwork, lapack_int liwork);

/* sbevx */
ORB_API lapack_int LAPACKE_ssbevx(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *q, lapack_int ldq, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, lapack_int *ifail);
ORB_API lapack_int LAPACKE_ssbevx_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_int kd, float *ab, lapack_int ldab, float *q, lapack_int ldq, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, float *z, lapack_int ldz, float *work, lapack_int *iwork, lapack_int *ifail);

/* hbevx */
ORB_API lapack_int LAPACKE_chbevx(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, lapack_complex_float *q, lapack_int ldq, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_int *ifail);
ORB_API lapack_int LAPACKE_chbevx_work(int matrix_layout, char jobz, char range, char uplo, lapack_int n, lapack_int kd, lapack_complex_float *ab, lapack_int ldab, lapack_complex_float *q, lapack_int ldq, float vl, float vu, lapack_int il, lapack_int iu, float abstol, lapack_int *m, float *w, lapack_complex_float *z, lapack_int ldz, lapack_complex_float *work, float *rwork, lapack_int *iwork, lapack_int *ifail);

/* gehrd */
ORB_API lapack_int LAPACKE_sgehrd(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, float *a, lapack_int lda, float *tau);
ORB_API lapack_int LAPACKE_sgehrd_work(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, float *a, lapack_int lda, float *tau, float *work, lapack_int lwork);
ORB_API lapack_int LAPACKE_cgehrd(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau);
ORB_API lapack_int LAPACKE_cgehrd_work(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *a, lapack_int lda, lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork);

/* orghr */
ORB_API lapack_int LAPACKE_sorghr(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, float *a, lapack_int lda, const float *tau);
ORB_API lapack_int LAPACKE_sorghr_work(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, float *a, lapack_int lda, const float *tau, float *work, lapack_int lwork);

/* unghr */
ORB_API lapack_int LAPACKE_cunghr(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau);
ORB_API lapack_int LAPACKE_cunghr_work(int matrix_layout, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork);

/* gebal */
ORB_API lapack_int LAPACKE_sgebal(int matrix_layout, char job, lapack_int n, float *a, lapack_int lda, lapack_int *ilo, lapack_int *ihi, float *scale);
ORB_API lapack_int LAPACKE_sgebal_work(int matrix_layout, char job, lapack_int n, float *a, lapack_int lda, lapack_int *ilo, lapack_int *ihi, float *scale);
ORB_API lapack_int LAPACKE_cgebal(int matrix_layout, char job, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ilo, lapack_int *ihi, float *scale);
ORB_API lapack_int LAPACKE_cgebal_work(int matrix_layout, char job, lapack_int n, lapack_complex_float *a, lapack_int lda, lapack_int *ilo, lapack_int *ihi, float *scale);

/* gebak */
ORB_API lapack_int LAPACKE_sgebak(int matrix_layout, char job, char side, lapack_int n, lapack_int ilo, lapack_int ihi, const float *scale, lapack_int m, float *v, lapack_int ldv);
ORB_API lapack_int LAPACKE_sgebak_work(int matrix_layout, char job, char side, lapack_int n, lapack_int ilo, lapack_int ihi, const float *scale, lapack_int m, float *v, lapack_int ldv);
ORB_API lapack_int LAPACKE_cgebak(int matrix_layout, char job, char side, lapack_int n, lapack_int ilo, lapack_int ihi, const float *scale, lapack_int m, lapack_complex_float *v, lapack_int ldv);
ORB_API lapack_int LAPACKE_cgebak_work(int matrix_layout, char job, char side, lapack_int n, lapack_int ilo, lapack_int ihi, const float *scale, lapack_int m, lapack_complex_float *v, lapack_int ldv);

/* hseqr */
ORB_API lapack_int LAPACKE_shseqr(int matrix_layout, char job, char compz, lapack_int n, lapack_int ilo, lapack_int ihi, float *h, lapack_int ldh, float *wr, float *wi, float *z, lapack_int ldz);
ORB_API lapack_int LAPACKE_shseqr_work(int matrix_layout, char job, char compz, lapack_int n, lapack_int ilo, lapack_int ihi, float *h, lapack_int ldh, float *wr, float *wi, float *z, lapack_int ldz, float *work, lapack_int lwork);

/* hseqr */
ORB_API lapack_int LAPACKE_chseqr(int matrix_layout, char job, char compz, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *h, lapack_int ldh, lapack_complex_float *w, lapack_complex_float *z, lapack_int ldz);
ORB_API lapack_int LAPACKE_chseqr_work(int matrix_layout, char job, char compz, lapack_int n, lapack_int ilo, lapack_int ihi, lapack_complex_float *h, lapack_int ldh, lapack_complex_float *w, lapack_complex_float *z, lapack_int ldz, lapack_complex_float *work, lapack_int lwork);

/* trevc */
ORB_API lapack_int LAPACKE_strevc(int matrix_layout, char side, char howmny, lapack_int *select, lapack_int n, const float *t, lapack_int ldt, float *vl, lapack_int ldvl, float *vr, lapack_int ldvr, lapack_int mm, lapack_int *m);
ORB_API lapack_int LAPACKE_strevc_work(int matrix_layout, char side, char howmny, lapack_int *select, lapack_int n, const float *t, lapack_int ldt, float *vl, lapack_int ldvl, float *vr, lapack_int ldvr, lapack_int mm, lapack_int *m, float *work);

/* trevc */
ORB_API lapack_int LAPACKE_ctrevc(int matrix_layout, char side, char howmny, const lapack_int *select, lapack_int n, lapack_complex_float *t, lapack_int ldt, lapack_complex_float *vl, lapack_int ldvl, lapack_complex_float *vr, lapack_int ldvr, lapack_int mm, lapack_int *m);
ORB_API lapack_int LAPACKE_ctrevc_work(int matrix_layout, char side, char howmny, const lapack_int *select, lapack_int n, lapack_complex_float *t, lapack_int ldt, lapack_complex_float *vl, lapack_int ldvl, lapack_complex_float *vr, lapack_int ldvr, lapack_int mm, lapack_int *m, lapack_complex_float *work, float *rwork);

/* trsyl */
ORB_API lapack_int LAPACKE_strsyl(int matrix_layout, char trana, char tranb, lapack_int isgn, lapack_int m, lapack_int n, const float *a, lapack_int lda, const float *b, lapack_int ldb, float *c, lapack_int ldc, float *scale);
ORB_API lapack_int LAPACKE_strsyl_work(int matrix_layout, char trana, char tranb, lapack_int isgn, lapack_int m, lapack_int n, const float *a, lapack_int lda, const float *b, lapack_int ldb, float *c, lapack_int ldc, float *scale);
ORB_API lapack_int LAPACKE_ctrsyl(int matrix_layout, char trana, char tranb, lapack_int isgn, lapack_int m, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *c, lapack_int ldc, float *scale);
ORB_API lapack_int LAPACKE_ctrsyl_work(int matrix_layout, char trana, char tranb, lapack_int isgn, lapack_int m, lapack_int n, const lapack_complex_float *a, lapack_int lda, const lapack_complex_float *b, lapack_int ldb, lapack_complex_float *c, lapack_int ldc, float *scale);

/* gebrd */
ORB_API lapack_int LAPACKE_sgebrd(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *d, float *e, float *tauq, float *taup);
ORB_API lapack_int LAPACKE_sgebrd_work(int matrix_layout, lapack_int m, lapack_int n, float *a, lapack_int lda, float *d, float *e, float *tauq, float *taup, float *work, lapack_int lwork);
ORB_API lapack_int LAPACKE_cgebrd(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *d, float *e, lapack_complex_float *tauq, lapack_complex_float *taup);
ORB_API lapack_int LAPACKE_cgebrd_work(int matrix_layout, lapack_int m, lapack_int n, lapack_complex_float *a, lapack_int lda, float *d, float *e, lapack_complex_float *tauq, lapack_complex_float *taup, lapack_complex_float *work, lapack_int lwork);

/* orgbr */
ORB_API lapack_int LAPACKE_sorgbr(int matrix_layout, char vect, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau);
ORB_API lapack_int LAPACKE_sorgbr_work(int matrix_layout, char vect, lapack_int m, lapack_int n, lapack_int k, float *a, lapack_int lda, const float *tau, float *work, lapack_int lwork);

/* ungbr */
ORB_API lapack_int LAPACKE_cungbr(int matrix_layout, char vect, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau);
ORB_API lapack_int LAPACKE_cungbr_work(int matrix_layout, char vect, lapack_int m, lapack_int n, lapack_int k, lapack_complex_float *a, lapack_int lda, const lapack_complex_float *tau, lapack_complex_float *work, lapack_int lwork);

/* ormbr */
ORB_API lapack_int LAPACKE_sormbr(int matrix_layout, char vect, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc);
ORB_API lapack_int LAPACKE_sormbr_work(int matrix_layout, char vect, char side, char trans, lapack_int m, lapack_int n, lapack_int k, const float *a, lapack_int lda, const float *tau, float *c, lapack_int ldc, float *work, lapack_int lwork);

/* bdsqr */
ORB_API lapack_int LAPACKE_sbdsqr(int matrix_layout, char uplo, lapack_int n, lapack_int ncvt, lapack_int nru, lapack_int ncc, float *d, float *e, float *vt, lapack_int ldvt, float *u, lapack_int ldu, float *c, lapack_int ldc);
ORB_API lapack_int LAPACKE_sbdsqr_work(int matrix_layout, char uplo, lapack_int n, lapack_int ncvt, lapack_int nru, lapack_int ncc, float *d, float *e, float *vt, lapack_int ldvt, float *u, lapack_int ldu, float *c, lapack_int ldc, float *work);
ORB_API lapack_int LAPACKE_cbdsqr(int matrix_layout, char uplo, lapack_int n, lapack_int ncvt, lapack_int nru, lapack_int ncc, float *d, float *e, lapack_complex_float *vt, lapack_int ldvt, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *c, lapack_int ldc);
ORB_API lapack_int LAPACKE_cbdsqr_work(int matrix_layout, char uplo, lapack_int n, lapack_int ncvt, lapack_int nru, lapack_int ncc, float *d, float *e, lapack_complex_float *vt, lapack_int ldvt, lapack_complex_float *u, lapack_int ldu, lapack_complex_float *c, lapack_int ldc, float *work);

/* sterf */
ORB_API lapack_int LAPACKE_ssterf(lapack_int n, float *d, float *e);
ORB_API lapack_int LAPACKE_ssterf_work(lapack_int n, float *d, float *e);

/* stebz */
ORB_API lapack_int LAPACKE_sstebz(char range, char order, lapack_int n, float vl, float vu, lapack_int il, lapack_int iu, float abstol, const float *d, const float *e, lapack_int *m, lapack_int *nsplit, float *w, lapack_int *iblock, lapack_int *isplit);
ORB_API lapack_int LAPACKE_sstebz_work(char range, char order, lapack_int n, float vl, float vu, lapack_int il, lapack_int iu, float abstol, const float *d, const float *e, lapack_int *m, lapack_int *nsplit, float *w, lapack_int *iblock, lapack_int *isplit, float *work, lapack_int *iwork);

/* trsna */
ORB_API lapack_int LAPACKE_strsna(int matrix_layout, char job, char howmny, const lapack_int *select, lapack_int n, const float *t, lapack_int ldt, const float *vl, lapack_int ldvl, const float *vr, lapack_int ldvr, float *s, float *sep, lapack_int mm, lapack_int *m);
ORB_API lapack_int LAPACKE_strsna_work(int matrix_layout, char job, char howmny, const lapack_int *select, lapack_int n, const float *t, lapack_int ldt, const float *vl, lapack_int ldvl, const float *vr, lapack_int ldvr, float *s, float *sep, lapack_int mm, lapack_int *m, float *work, lapack_int ldwork, lapack_int *iwork);

/* trsna */
ORB_API lapack_int LAPACKE_ctrsna(int matrix_layout, char job, char howmny, const lapack_int *select, lapack_int n, const lapack_complex_float *t, lapack_int ldt, const lapack_complex_float *vl, lapack_int ldvl, const lapack_complex_float *vr, lapack_int ldvr, float *s, float *sep, lapack_int mm, lapack_int *m);
ORB_API lapack_int LAPACKE_ctrsna_work(int matrix_layout, char job, char howmny, const lapack_int *select, lapack_int n, const lapack_complex_float *t, lapack_int ldt, const lapack_complex_float *vl, lapack_int ldvl, const lapack_complex_float *vr, lapack_int ldvr, float *s, float *sep, lapack_int mm, lapack_int *m, lapack_complex_float *work, lapack_int ldwork, float *rwork);

#ifdef __cplusplus
}
#endif

#endif
