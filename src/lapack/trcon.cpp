// The reciprocal condition number of a triangular matrix: its norm, and the
// 1-norm estimator's estimate of its inverse's (the infinity norm as the
// 1-norm of the transpose), each product with the inverse a scaled
// triangular solve. A solve whose scale would make the estimate overflow
// ends the estimate with a reciprocal condition number of 0.
#include <algorithm>

#include "blas/level1/level1.h"
#include "lapack/auxiliary.h"
#include "lapack/blas_calls.h"
#include "lapack/triangular.h"

namespace orb::lapack {

template <class T>
real_t<T> trcon(Norm norm, Uplo uplo, Diag diag, int n, const T *a, int lda, T *work,
                real_t<T> *rwork, int *isgn) {
  using R = real_t<T>;
  if (n == 0) return R(1);
  const R smlnum = safe_minimum<R>() * static_cast<R>(std::max(1, n));
  const R anorm = lantr(norm, uplo, diag, n, n, a, lda, rwork);
  if (!(anorm > R(0))) return R(0);

  // The estimator asks for products with A^-1 (kase 1) and A^-H (kase 2)
  // for the 1-norm; the other way round for the infinity norm.
  const int inverse_kase = norm == Norm::kOne ? 1 : 2;
  T *x = work, *v = work + n;
  R *cnorm = rwork;  // the column norms, computed by the first solve
  R ainvnm = 0;
  int kase = 0, isave[3] = {};
  bool normin = false;
  for (;;) {
    lacn2(n, v, x, isgn, &ainvnm, &kase, isave);
    if (kase == 0) break;
    const Op op = kase == inverse_kase ? Op::kNone : Op::kConjTrans;
    R scale = 1;
    int info = 0;
    latrs(uplo, op, diag, normin, n, a, lda, x, &scale, cnorm, &info);
    normin = true;
    if (scale != R(1)) {
      // x / scale, unless that would overflow.
      const R xnorm = abs1(x[blas::iamax(n, x, 1) - 1]);
      if (scale < xnorm * smlnum || scale == R(0)) return R(0);
      rscl(n, scale, x);
    }
  }
  return ainvnm != R(0) ? (R(1) / anorm) / ainvnm : R(0);
}

#define ORB_TRCON(T) \
  template real_t<T> trcon(Norm, Uplo, Diag, int, const T *, int, T *, real_t<T> *, int *);
ORB_TRCON(float)
ORB_TRCON(double)
ORB_TRCON(c8)
ORB_TRCON(c16)
#undef ORB_TRCON

}  // namespace orb::lapack
