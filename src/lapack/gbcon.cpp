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
#include "lapack/refine.h"

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
  const int kd = kl + ku;
  const Op adj = is_complex_v<T> ? Op::kConjTrans : Op::kTrans;
  auto mult = [&](int j) { return ab + kd + 1 + static_cast<std::ptrdiff_t>(j) * ldab; };
  T *x = work, *v = work + n;
  R *cnorm = band_detail::real_work(work + 2 * n, rwork);
  int *isgn = is_complex_v<T> ? nullptr : iwork;
  bool normin = false;
  // The 1-norm of A^-1, or of A^-H for the infinity norm.
  const R ainvnm = inverse_norm(n, x, v, isgn, [&](bool adjoint, T *y) {
    R scale = 1;
    if ((norm == Norm::kOne) != adjoint) {
      // y := L^-1 y, then U^-1 y.
      if (kl > 0)
        for (int j = 0; j < n - 1; ++j) {
          const int p = ipiv[j] - 1;
          const T t = y[p];
          if (p != j) y[p] = y[j], y[j] = t;
          blas::axpy(std::min(kl, n - 1 - j), -t, mult(j), 1, y + j + 1, 1);
        }
      latbs(Uplo::kUpper, Op::kNone, Diag::kNonUnit, normin, n, kd, ab, ldab, y, &scale, cnorm);
    } else {
      // y := U^-H y, then L^-H y.
      latbs(Uplo::kUpper, adj, Diag::kNonUnit, normin, n, kd, ab, ldab, y, &scale, cnorm);
      if (kl > 0)
        for (int j = n - 2; j >= 0; --j) {
          const int lm = std::min(kl, n - 1 - j);
          y[j] -= blas::dotc(lm, mult(j), 1, y + j + 1, 1);
          const int p = ipiv[j] - 1;
          if (p != j) std::swap(y[p], y[j]);
        }
    }
    normin = true;
    return scale;
  });
  *rcond = reciprocal_condition(ainvnm, anorm);
  return 0;
}

template int gbcon(Norm, int, int, int, const float *, int, const int *, float, float *, float *,
                   int *, float *);
template int gbcon(Norm, int, int, int, const c8 *, int, const int *, float, float *, c8 *, int *,
                   float *);

}  // namespace orb::lapack
