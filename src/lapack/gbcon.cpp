// The reciprocal condition number of a band matrix from its LU factors:
// the 1-norm estimator run on A^-1 (or A^-H for the infinity norm), each
// product a band solve whose triangular part scales to avoid overflow.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "blas/level1/level1.h"
#include "lapack/auxiliary.h"
#include "lapack/band.h"
#include "lapack/band_common.h"

namespace orb::lapack {

template <class T>
int gbcon(Norm norm, int n, int kl, int ku, const T *ab, int ldab, const int *ipiv, real_t<T> anorm,
          real_t<T> *rcond, T *work, int *iwork, real_t<T> *rwork) {
  using R = real_t<T>;
  *rcond = 0;
  if (n == 0) {
    *rcond = 1;
    return 0;
  }
  if (anorm == 0) return 0;
  const R smlnum = safe_minimum<R>();
  const int kd = kl + ku;
  const Op adjoint = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
  auto mult = [&](int j) { return ab + kd + 1 + static_cast<std::ptrdiff_t>(j) * ldab; };
  T *x = work, *v = work + n;
  R *cnorm = band_detail::real_work(work + 2 * n, rwork);
  int *isgn = is_complex_v<T> ? nullptr : iwork;
  const int kase1 = norm == Norm::kOne ? 1 : 2;
  R ainvnm = 0;
  bool normin = false;
  int kase = 0, isave[3] = {0, 0, 0};
  for (;;) {
    lacn2(n, v, x, isgn, &ainvnm, &kase, isave);
    if (kase == 0) break;
    R scale = 1;
    if (kase == kase1) {
      // x := L^-1 x, then U^-1 x.
      if (kl > 0)
        for (int j = 0; j < n - 1; ++j) {
          const int p = ipiv[j] - 1;
          const T t = x[p];
          if (p != j) x[p] = x[j], x[j] = t;
          blas::axpy(std::min(kl, n - 1 - j), -t, mult(j), 1, x + j + 1, 1);
        }
      latbs(Uplo::kUpper, Op::kNone, Diag::kNonUnit, normin, n, kd, ab, ldab, x, &scale, cnorm);
    } else {
      // x := U^-H x, then L^-H x.
      latbs(Uplo::kUpper, adjoint, Diag::kNonUnit, normin, n, kd, ab, ldab, x, &scale, cnorm);
      if (kl > 0)
        for (int j = n - 2; j >= 0; --j) {
          const int lm = std::min(kl, n - 1 - j);
          x[j] -= blas::dotc(lm, mult(j), 1, x + j + 1, 1);
          const int p = ipiv[j] - 1;
          if (p != j) std::swap(x[p], x[j]);
        }
    }
    normin = true;
    if (scale != 1) {
      // The estimate would overflow: A is singular to working precision.
      const int ix = blas::iamax(n, x, 1) - 1;
      if (scale < abs1(x[ix]) * smlnum || scale == 0) return 0;
      rscl(n, scale, x);
    }
  }
  if (ainvnm != 0) *rcond = (1 / ainvnm) / anorm;
  return 0;
}

template int gbcon(Norm, int, int, int, const float *, int, const int *, float, float *, float *,
                   int *, float *);
template int gbcon(Norm, int, int, int, const c8 *, int, const int *, float, float *, c8 *, int *,
                   float *);

}  // namespace orb::lapack
