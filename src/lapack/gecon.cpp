// The reciprocal condition number from the LU factors: the 1-norm estimator
// drives solves with L and U (scaled against overflow), and
// rcond = 1 / (||inv(A)|| ||A||).
#include <cmath>
#include <cstddef>

#include "blas/level1/level1.h"
#include "lapack/auxiliary.h"
#include "lapack/general.h"

namespace orb::lapack {
template <class T>
void gecon(Norm norm, int n, const T *a, int lda, real_t<T> anorm, real_t<T> *rcond, T *work,
           real_t<T> *rwork, int *iwork) {
  using R = real_t<T>;
  *rcond = 0;
  if (n == 0) {
    *rcond = 1;
    return;
  }
  if (anorm == 0) return;
  const R smlnum = safe_minimum<R>();
  // x and v of the estimator, and the column norms latrs keeps for L and U.
  T *x = work, *v = work + n;
  R *cnorm_l, *cnorm_u;
  if constexpr (is_complex_v<T>) {
    cnorm_l = rwork, cnorm_u = rwork + n;
  } else {
    cnorm_l = work + 2 * n, cnorm_u = work + 3 * n;
  }
  const Op adjoint = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
  const int forward = norm == Norm::kOne ? 1 : 2;
  R ainvnm = 0;
  bool normin = false;
  int kase = 0, isave[3] = {0, 0, 0};
  for (;;) {
    lacn2(n, v, x, iwork, &ainvnm, &kase, isave);
    if (kase == 0) break;
    R sl, su;
    int info;
    if (kase == forward) {
      latrs(Uplo::kLower, Op::kNone, Diag::kUnit, normin, n, a, lda, x, &sl, cnorm_l, &info);
      latrs(Uplo::kUpper, Op::kNone, Diag::kNonUnit, normin, n, a, lda, x, &su, cnorm_u, &info);
    } else {
      latrs(Uplo::kUpper, adjoint, Diag::kNonUnit, normin, n, a, lda, x, &su, cnorm_u, &info);
      latrs(Uplo::kLower, adjoint, Diag::kUnit, normin, n, a, lda, x, &sl, cnorm_l, &info);
    }
    normin = true;
    const R scale = sl * su;
    if (scale != R(1)) {
      const int ix = blas::iamax(n, x, 1) - 1;
      if (scale < abs1(x[ix]) * smlnum || scale == 0) return;
      rscl(n, scale, x);
    }
  }
  if (ainvnm != 0) *rcond = (R(1) / ainvnm) / anorm;
}

#define ORB_GECON(T) \
  template void gecon(Norm, int, const T *, int, real_t<T>, real_t<T> *, T *, real_t<T> *, int *);
ORB_GECON(float)
ORB_GECON(double)
ORB_GECON(c8)
ORB_GECON(c16)
#undef ORB_GECON

}  // namespace orb::lapack
