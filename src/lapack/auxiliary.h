// The auxiliaries the LAPACK routines share, one template each over the
// scalar type (float, double and their complex forms), with the meaning of
// the published routines of the same names.
#pragma once

#include <complex>
#include <limits>

#include "common/options.h"
#include "common/scalar.h"

namespace orb::lapack {

// Row interchanges (xLASWP): for i = k1 .. k2 (1-based, backwards for a
// negative incx) row i of the n columns of A is swapped with row ipiv(i).
template <class T>
void laswp(int n, T *a, int lda, int k1, int k2, const int *ipiv, int incx);

// One step of the 1-norm estimator's reverse communication (xLACN2): on
// return with *kase 1 the caller overwrites x by A x, with *kase 2 by A^H x,
// and calls again; *kase 0 ends with the estimate in *est (and v = A w with
// est = ||v||_1 / ||w||_1). isave keeps the state between calls; isgn (n
// integers) is used by the real forms only and may be null for complex.
template <class T>
void lacn2(int n, T *v, T *x, int *isgn, real_t<T> *est, int *kase, int *isave);

// Norm of an m-by-n matrix (xLANGE): the largest modulus, the largest column
// sum (1-norm), the largest row sum (infinity norm, `work` of m reals) or the
// Frobenius norm; 0 for an empty matrix. A NaN element gives NaN.
template <class T>
real_t<T> lange(Norm norm, int m, int n, const T *a, int lda, real_t<T> *work);

// x := x / a for a real a, in steps that neither overflow nor underflow
// where x / a itself does not (xRSCL).
template <class T>
void rscl(int n, real_t<T> a, T *x);

// Sum of squares of n values (moduli for complex), without overflow:
// the Frobenius norms accumulate through it. sqrt(sum) is the norm.
template <class R>
class SumSquares {
 public:
  void add(R x);
  R root() const;

 private:
  // A scale and the sum of squares divided by its square, in double.
  double scale_ = 0, sum_ = 1;
};

// The smallest positive number whose reciprocal does not overflow.
template <class R>
constexpr R safe_minimum() {
  return std::numeric_limits<R>::min();
}

}  // namespace orb::lapack
