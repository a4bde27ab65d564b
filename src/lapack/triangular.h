// Triangular matrices: the inverse. One template over the scalar type
// (float, double and their complex forms), taking values already checked
// and options already decoded.
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

}  // namespace orb::lapack
