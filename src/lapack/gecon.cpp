// The reciprocal condition number from the LU factors: the 1-norm estimator
// drives solves with L and U (scaled against overflow), and
// rcond = 1 / (||inv(A)|| ||A||).
#include <cstddef>

#include "lapack/auxiliary.h"
#include "lapack/general.h"
#include "lapack/refine.h"

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
  // x and v of the estimator, and the column norms latrs keeps for L and U.
  T *x = work, *v = work + n;
  R *cnorm_l, *cnorm_u;
  if constexpr (is_complex_v<T>) {
    cnorm_l = rwork, cnorm_u = rwork + n;
  } else {
    cnorm_l = work + 2 * n, cnorm_u = work + 3 * n;
  }
  const Op adj = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
  bool normin = false;
  // The 1-norm of A^-1, or of A^-H for the infinity norm.
  const R ainvnm = inverse_norm(n, x, v, iwork, [&](bool adjoint, T *y) {
    R sl, su;
    int info;
    if ((norm == Norm::kOne) != adjoint) {
      latrs(Uplo::kLower, Op::kNone, Diag::kUnit, normin, n, a, lda, y, &sl, cnorm_l, &info);
      latrs(Uplo::kUpper, Op::kNone, Diag::kNonUnit, normin, n, a, lda, y, &su, cnorm_u, &info);
    } else {
      latrs(Uplo::kUpper, adj, Diag::kNonUnit, normin, n, a, lda, y, &su, cnorm_u, &info);
      latrs(Uplo::kLower, adj, Diag::kUnit, normin, n, a, lda, y, &sl, cnorm_l, &info);
    }
    normin = true;
    return sl * su;
  });
  *rcond = reciprocal_condition(ainvnm, anorm);
}

#define ORB_GECON(T) \
  template void gecon(Norm, int, const T *, int, real_t<T>, real_t<T> *, T *, real_t<T> *, int *);
ORB_GECON(float)
ORB_GECON(double)
ORB_GECON(c8)
ORB_GECON(c16)
#undef ORB_GECON

}  // namespace orb::lapack
