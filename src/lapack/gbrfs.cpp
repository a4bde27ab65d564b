// Iterative refinement of the solutions of a band system, with the
// componentwise backward error and a bound on the forward error of each
// solution (the 1-norm estimator on |op(A)^-1| diag(w)).
#include <algorithm>
#include <cstddef>

#include "blas/level1/level1.h"
#include "lapack/auxiliary.h"
#include "lapack/band.h"
#include "lapack/refine.h"

namespace orb::lapack {
namespace {

// y := y - op(A) x, A n by n in band storage (ldab >= kl + ku + 1).
template <class T>
void subtract_product(Op trans, int n, int kl, int ku, const T *ab, int ldab, const T *x, T *y) {
  for (int k = 0; k < n; ++k) {
    const int i0 = std::max(0, k - ku), len = std::min(n - 1, k + kl) - i0 + 1;
    const T *a = ab + ku + i0 - k + static_cast<std::ptrdiff_t>(k) * ldab;
    if (trans == Op::kNone)
      blas::axpy(len, -x[k], a, 1, y + i0, 1);
    else
      y[k] -= trans == Op::kConjTrans ? blas::dotc(len, a, 1, x + i0, 1)
                                      : blas::dotu(len, a, 1, x + i0, 1);
  }
}

}  // namespace

template <class T>
void gbrfs(Op trans, int n, int kl, int ku, int nrhs, const T *ab, int ldab, const T *afb,
           int ldafb, const int *ipiv, const T *b, int ldb, T *x, int ldx, real_t<T> *ferr,
           real_t<T> *berr, T *work, int *iwork, real_t<T> *rwork) {
  using R = real_t<T>;
  const bool notran = trans == Op::kNone;
  // The solves of the estimator: with op(A)^H and op(A) (A^H for a complex
  // A^T: the estimate needs only the moduli).
  Op with_adjoint, with_op;
  if constexpr (is_complex_v<T>) {
    with_adjoint = notran ? Op::kConjTrans : Op::kNone;
    with_op = notran ? Op::kNone : Op::kConjTrans;
  } else {
    with_adjoint = notran ? Op::kTrans : Op::kNone;
    with_op = trans;
  }
  auto el = [&](int i, int k) { return ab[ku + i - k + static_cast<std::ptrdiff_t>(k) * ldab]; };
  auto residual = [&](const T *xj, T *r) { subtract_product(trans, n, kl, ku, ab, ldab, xj, r); };
  auto weights = [&](const T *xj, const T *bj, R *w) {
    for (int i = 0; i < n; ++i) w[i] = abs1(bj[i]);
    for (int k = 0; k < n; ++k) {
      const int i0 = std::max(0, k - ku), i1 = std::min(n - 1, k + kl);
      if (notran) {
        const R xk = abs1(xj[k]);
        for (int i = i0; i <= i1; ++i) w[i] += abs1(el(i, k)) * xk;
      } else {
        R s = 0;
        for (int i = i0; i <= i1; ++i) s += abs1(el(i, k)) * abs1(xj[i]);
        w[k] += s;
      }
    }
  };
  auto solve = [&](RefineSolve which, T *y) {
    const Op op = which == RefineSolve::kCorrection ? trans
                  : which == RefineSolve::kAdjoint  ? with_adjoint
                                                    : with_op;
    gbtrs_columns(op, n, kl, ku, afb, ldafb, ipiv, y, n, 0, 1);
  };
  refine(n, nrhs, std::min(kl + ku + 2, n + 1), b, ldb, x, ldx, ferr, berr,
         refine_work(n, work, rwork, iwork), residual, weights, solve);
}

template void gbrfs(Op, int, int, int, int, const float *, int, const float *, int, const int *,
                    const float *, int, float *, int, float *, float *, float *, int *, float *);
template void gbrfs(Op, int, int, int, int, const c8 *, int, const c8 *, int, const int *,
                    const c8 *, int, c8 *, int, float *, float *, c8 *, int *, float *);

}  // namespace orb::lapack
