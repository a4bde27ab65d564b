// The general-matrix routines beside the LU (getrf.h): solve, inverse,
// condition estimate and refinement from the factors xGETRF leaves. Values,
// already checked, options decoded; each returns INFO's value.
#pragma once

#include <cstdint>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// Solves op(A) X = B with A = P L U; X overwrites the n-by-nrhs B.
template <class T>
void getrs(Op trans, int n, int nrhs, const T *a, int lda, const int *ipiv, T *b, int ldb);
// Same, on the calling thread (inside a parallel region).
template <class T>
void getrs_here(Op trans, int n, int nrhs, const T *a, int lda, const int *ipiv, T *b, int ldb);

// inv(A) from its LU factors, in place; work of lwork elements (at least n).
// Returns i > 0 when U(i, i) is exactly zero (A is left as it was then).
template <class T>
int getri(int n, T *a, int lda, const int *ipiv, T *work, int lwork);
// The optimal lwork of getri.
template <class T>
std::int64_t getri_worksize(int n);

// The published work arrays: real data passes work (4n) and iwork (n) and a
// null rwork; complex data work (2n) and rwork (2n) and a null iwork.

// Reciprocal condition number in the 1-norm (kOne) or infinity norm
// (kInfinity) of A from its LU factors and its norm anorm.
template <class T>
void gecon(Norm norm, int n, const T *a, int lda, real_t<T> anorm, real_t<T> *rcond, T *work,
           real_t<T> *rwork, int *iwork);

// Iterative refinement of the n-by-nrhs solution X of op(A) X = B with
// forward and backward error bounds. Real data: work 3n, iwork n; complex:
// work 2n, rwork n.
template <class T>
void gerfs(Op trans, int n, int nrhs, const T *a, int lda, const T *af, int ldaf, const int *ipiv,
           const T *b, int ldb, T *x, int ldx, real_t<T> *ferr, real_t<T> *berr, T *work,
           real_t<T> *rwork, int *iwork);

}  // namespace orb::lapack
