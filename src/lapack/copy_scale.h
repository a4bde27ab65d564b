// Whole-matrix helpers of the drivers: copying a matrix or one of its
// triangles, setting one to given values, and scaling one by cto / cfrom
// without overflow or underflow (the published xLACPY, xLASET, xLASCL).
#pragma once

#include "common/scalar.h"

namespace orb::lapack {

// Which part of a matrix: all of it, the upper or the lower triangle
// (with the diagonal).
enum class Part : unsigned char { kAll, kUpper, kLower };

template <class T>
void lacpy(Part part, int m, int n, const T *a, int lda, T *b, int ldb);

// Off-diagonal entries of `part` set to alpha, the diagonal to beta.
template <class T>
void laset(Part part, int m, int n, T alpha, T beta, T *a, int lda);

// A := A cto / cfrom, in steps that neither overflow nor underflow; cfrom
// is nonzero and neither is NaN (the drivers call it with their norms).
template <class T>
void lascl(Part part, real_t<T> cfrom, real_t<T> cto, int m, int n, T *a, int lda);

// The lower end of the drivers' scaling range, sqrt(safe minimum) / eps
// with eps the spacing of the numbers at 1; its reciprocal is the upper end.
template <class R>
R scaling_small();

}  // namespace orb::lapack
