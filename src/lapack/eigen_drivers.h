// The symmetric and Hermitian eigenvalue drivers: dense (xSYEVR, xSYEVX and
// their Hermitian forms) and band (xSBEV, xSBEVD, xSBEVX and theirs). Each
// takes the published arguments as values, already checked, and returns
// INFO; T is float or std::complex<float>. The real forms take their real
// scratch from `work` (rwork null); the complex ones from `rwork`.
#pragma once

#include <cstdint>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// Workspace sizes of a driver: WORK, RWORK (complex forms) and IWORK.
struct EigenWork {
  std::int64_t work = 1, rwork = 1, iwork = 1;
};

// The published minimum and the optimum of the dense drivers.
template <class T>
EigenWork syevr_minwork(int n);
template <class T>
EigenWork syevr_optwork(Uplo uplo, int n);
template <class T>
EigenWork syevx_minwork(int n);
template <class T>
EigenWork syevx_optwork(Uplo uplo, int n);
// The band divide-and-conquer driver's minimum (also its optimum).
template <class T>
EigenWork sbevd_minwork(JobZ jobz, int n);

template <class T>
int syevr(JobZ jobz, Range range, Uplo uplo, int n, T *a, int lda, real_t<T> vl, real_t<T> vu,
          int il, int iu, real_t<T> abstol, int *m, real_t<T> *w, T *z, int ldz, int *isuppz,
          T *work, int lwork, real_t<T> *rwork, int lrwork, int *iwork, int liwork);

template <class T>
int syevx(JobZ jobz, Range range, Uplo uplo, int n, T *a, int lda, real_t<T> vl, real_t<T> vu,
          int il, int iu, real_t<T> abstol, int *m, real_t<T> *w, T *z, int ldz, T *work, int lwork,
          real_t<T> *rwork, int *iwork, int *ifail);

// work: max(1, 3n - 2) reals (real form); n complex and rwork max(1, 3n - 2)
// (complex form).
template <class T>
int sbev(JobZ jobz, Uplo uplo, int n, int kd, T *ab, int ldab, real_t<T> *w, T *z, int ldz, T *work,
         real_t<T> *rwork);

template <class T>
int sbevd(JobZ jobz, Uplo uplo, int n, int kd, T *ab, int ldab, real_t<T> *w, T *z, int ldz,
          T *work, int lwork, real_t<T> *rwork, int lrwork, int *iwork, int liwork);

// work: 7n reals (real form); n complex and rwork 7n (complex form); iwork 5n.
template <class T>
int sbevx(JobZ jobz, Range range, Uplo uplo, int n, int kd, T *ab, int ldab, T *q, int ldq,
          real_t<T> vl, real_t<T> vu, int il, int iu, real_t<T> abstol, int *m, real_t<T> *w, T *z,
          int ldz, T *work, real_t<T> *rwork, int *iwork, int *ifail);

}  // namespace orb::lapack
