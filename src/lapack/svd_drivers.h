// The singular value drivers and the least-squares drivers built on them:
// the decomposition by bidiagonal QR (gesvd) and by divide and conquer
// (gesdd); the minimum-norm least-squares solutions by the SVD (gelss) and
// by the bidiagonal divide and conquer (gelsd). Each returns INFO; the
// *_minwork functions give the published smallest LWORK, the *_worksize
// ones the optimal LWORK a query returns.
#pragma once

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

template <class T>
int gesvd_minwork(JobSvd jobu, JobSvd jobvt, int m, int n);
template <class T>
int gesvd_worksize(JobSvd jobu, JobSvd jobvt, int m, int n);
// rwork: 5 min(m, n) entries for complex data (unused for real).
template <class T>
int gesvd(JobSvd jobu, JobSvd jobvt, int m, int n, T *a, int lda, real_t<T> *s, T *u, int ldu,
          T *vt, int ldvt, T *work, int lwork, real_t<T> *rwork);

template <class T>
int gesdd_minwork(JobSvd jobz, int m, int n);
template <class T>
int gesdd_worksize(JobSvd jobz, int m, int n);
// rwork (complex data): 5 min(m, n) + 5 min(m, n)^2 entries with vectors,
// 5 min(m, n) without; iwork 8 min(m, n). Returns -4 for a NaN in A.
template <class T>
int gesdd(JobSvd jobz, int m, int n, T *a, int lda, real_t<T> *s, T *u, int ldu, T *vt, int ldvt,
          T *work, int lwork, real_t<T> *rwork, int *iwork);

// gelss: rwork 5 min(m, n) for complex data. rank out.
template <class T>
int gelss_minwork(int m, int n, int nrhs);
template <class T>
int gelss_worksize(int m, int n, int nrhs);
template <class T>
int gelss(int m, int n, int nrhs, T *a, int lda, T *b, int ldb, real_t<T> *s, real_t<T> rcond,
          int &rank, T *work, int lwork, real_t<T> *rwork);

// gelsd: the leaf size of the divide and conquer, the published sizes of
// RWORK (complex data) and IWORK.
template <class T>
int gelsd_smlsiz();
template <class T>
int gelsd_minwork(int m, int n, int nrhs);
template <class T>
int gelsd_worksize(int m, int n, int nrhs);
template <class T>
int gelsd_rwork(int m, int n, int nrhs);
template <class T>
int gelsd_iwork(int m, int n);
template <class T>
int gelsd(int m, int n, int nrhs, T *a, int lda, T *b, int ldb, real_t<T> *s, real_t<T> rcond,
          int &rank, T *work, int lwork, real_t<T> *rwork, int *iwork);

}  // namespace orb::lapack
