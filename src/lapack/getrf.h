// LU factorization with partial pivoting, A = P L U, of an m-by-n matrix:
// the serial factorizations and the threaded ones (modules xgetrf_omp and
// xgetrf_ib_omp). Each returns INFO's positive value: the 1-based column of
// the first exactly-zero pivot (the factorization is completed all the same),
// or 0. Arguments are values, already checked, except in the orb_lapack_*
// routines, which take the published list by reference and check it.
#pragma once

#include <complex>

#include "common/scalar.h"

namespace orb::lapack {

// The serial LU core: recursive halving of the columns down to narrow
// panels, the updates in the level-3 BLAS; threaded BLAS when `threaded`,
// else all on the calling thread (inside a parallel region).
template <class T>
int getrf_core(int m, int n, T *a, int lda, int *ipiv, bool threaded);

// The blocked factorization: column blocks of nb, each panel by the core,
// the trailing updates in the threaded level-3 BLAS. With nb <= 1 or
// nb >= min(m, n), the core alone.
template <class T>
int getrf_blocked(int m, int n, T *a, int lda, int *ipiv, int nb);

// The inner-blocked threaded factorization (SGETRF_IB_OMP): outer blocks of
// the oracle's nb, panels in inner blocks of its query 19, the row
// interchanges and updates of each step shared by one team. `nb` and
// `threads` of 0 ask the oracle and the thread control.
template <class T>
int getrf_ib_omp(int m, int n, T *a, int lda, int *ipiv, int nb, int threads);

// The panel-scheduled threaded factorization with column block nb on
// `threads` threads. Returns false, having done nothing, when its
// scheduling record cannot be allocated.
template <class T>
bool getrf_scheduled(int m, int n, T *a, int lda, int *ipiv, int nb, int threads, int *info);

// ---- the threaded LU with its path choice (module xgetrf_omp) -----------------------

void orb_lapack_sgetrf(const int *m, const int *n, float *a, const int *lda, int *ipiv, int *info);
void orb_lapack_dgetrf(const int *m, const int *n, double *a, const int *lda, int *ipiv, int *info);
void orb_lapack_cgetrf(const int *m, const int *n, c8 *a, const int *lda, int *ipiv, int *info);
void orb_lapack_zgetrf(const int *m, const int *n, c16 *a, const int *lda, int *ipiv, int *info);

// The path the calling thread's last factorization took (for tests).
enum class GetrfPath { kNone, kSerial, kInnerBlocked, kSerialBlocked, kScheduled };
GetrfPath getrf_last_path();

}  // namespace orb::lapack
