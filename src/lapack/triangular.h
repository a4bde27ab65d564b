// Triangular matrices: the inverse, solves, the condition estimate and the
// error bounds of a computed solution. Each is one template over the scalar
// type (float, double and their complex forms), taking values already
// checked and options already decoded; the exported routines are in
// triangular_entry.cpp.
#pragma once

#include <complex>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// A := A^-1 in place, column by column with the level-2 BLAS (xTRTI2). A
// zero on a non-unit diagonal gives infinities: callers test for it first.
template <class T>
void trti2(Uplo uplo, Diag diag, int n, T *a, int lda);

// A := A^-1 in place (xTRTRI), by blocks of columns with the level-3 BLAS
// beyond the oracle's crossover. Returns INFO: the 1-based index of the
// first zero on a non-unit diagonal (A is then left as it was), or 0.
template <class T>
int trtri(Uplo uplo, Diag diag, int n, T *a, int lda);

// B := op(A)^-1 B for the n-by-nrhs B (xTRTRS). Returns INFO: the 1-based
// index of the first zero on a non-unit diagonal (B is then left as it
// was), or 0.
template <class T>
int trtrs(Uplo uplo, Op trans, Diag diag, int n, int nrhs, const T *a, int lda, T *b, int ldb);

// The reciprocal condition number of A in the 1-norm or the infinity norm
// (xTRCON), from its norm and an estimate of its inverse's; 0 when the
// estimate overflows. `work` holds 2n scalars, `rwork` n reals and `isgn`
// n integers (real types only; null for complex).
template <class T>
real_t<T> trcon(Norm norm, Uplo uplo, Diag diag, int n, const T *a, int lda, T *work,
                real_t<T> *rwork, int *isgn);

// Error bounds of the computed solutions X of op(A) X = B (xTRRFS): the
// componentwise relative backward error berr and an estimate of the
// forward error ferr of each column. `work` holds 2n scalars, `rwork` n
// reals and `isgn` n integers (real types only; null for complex).
template <class T>
void trrfs(Uplo uplo, Op trans, Diag diag, int n, int nrhs, const T *a, int lda, const T *b,
           int ldb, const T *x, int ldx, real_t<T> *ferr, real_t<T> *berr, T *work,
           real_t<T> *rwork, int *isgn);

}  // namespace orb::lapack
