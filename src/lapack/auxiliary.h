// The auxiliaries the LAPACK routines share, one template each over the
// scalar type (float, double and their complex forms), with the meaning of
// the published routines of the same names.
#pragma once

#include <complex>
#include <cstddef>
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

// |re x| + |im x| (|x| for real x): the cheap modulus the triangular
// solvers, condition estimators and error bounds measure with.
template <class T>
inline real_t<T> abs1(T x) {
  if constexpr (is_complex_v<T>)
    return std::abs(x.real()) + std::abs(x.imag());
  else
    return std::abs(x);
}

// x := conj(x) for n elements at stride incx (xLACGV; a negative incx
// starts from the far end, as the BLAS do); nothing for real data.
template <class T>
inline void lacgv(int n, T *x, int incx) {
  if constexpr (is_complex_v<T>) {
    std::ptrdiff_t ix = incx < 0 ? -static_cast<std::ptrdiff_t>(n - 1) * incx : 0;
    for (int i = 0; i < n; ++i, ix += incx) x[ix] = std::conj(x[ix]);
  } else {
    (void)n, (void)x, (void)incx;
  }
}

// Eigen-decomposition of the 2-by-2 symmetric [a b; b c] (xLAEV2):
// rt1 >= rt2 in absolute value, and (cs1, sn1) the unit eigenvector of
// rt1, with [cs1 sn1; -sn1 cs1] [a b; b c] [cs1 -sn1; sn1 cs1] =
// diag(rt1, rt2). rt1 is accurate to a few ulps; rt2 may lose accuracy
// only by cancellation in the determinant.
template <class R>
void laev2(R a, R b, R c, R *rt1, R *rt2, R *cs1, R *sn1);

// Triangular solve with scaling against overflow (xLATRS): x := s op(A)^-1 x
// with op(A) = A, A^T or A^H, s = *scale <= 1 chosen so that no element of
// the solution (nor any intermediate) overflows. An exactly singular A gives
// s = 0 and a non-zero x with op(A) x = 0. cnorm (n reals) holds the 1-norms
// of the off-diagonal parts of A's columns: read when `normin`, otherwise
// computed; the call leaves them in it either way, so later calls on the same
// A pass normin. *info is set to 0 (the arguments are values, already valid).
template <class T>
void latrs(Uplo uplo, Op trans, Diag diag, bool normin, int n, const T *a, int lda, T *x,
           real_t<T> *scale, real_t<T> *cnorm, int *info);

// Norm of an m-by-n upper or lower trapezoidal matrix (xLANTR): as lange, of
// the triangle only, its diagonal taken as ones when `diag` is kUnit. `work`
// (m reals) serves the infinity norm. A NaN in the triangle gives NaN.
template <class T>
real_t<T> lantr(Norm norm, Uplo uplo, Diag diag, int m, int n, const T *a, int lda,
                real_t<T> *work);

// x := x / a for a real a (xRSCL), in steps that neither overflow nor
// underflow where 1 / a would.
template <class T>
void rscl(int n, real_t<T> a, T *x);

// Band triangular solve with scaling (xLATBS): solves op(A) x = s b for x
// and the scale s <= 1 (*scale) chosen to keep x from overflowing, A of order
// n with kd off-diagonals in band storage. cnorm holds the 1-norms of the
// off-diagonal part of each column: computed here unless `normin` says they
// are given. A zero diagonal element gives s = 0 and a solution of A x = 0.
template <class T>
void latbs(Uplo uplo, Op trans, Diag diag, bool normin, int n, int kd, const T *ab, int ldab, T *x,
           real_t<T> *scale, real_t<T> *cnorm);

}  // namespace orb::lapack
