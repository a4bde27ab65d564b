// What the condition estimators and the iterative refinements of every
// matrix kind share: the 1-norm estimator driven by solves with the factors,
// and the refinement loop with its componentwise backward error and forward
// error bound. The matrix kind enters as callables.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>

#include "blas/level1/level1.h"
#include "lapack/auxiliary.h"

namespace orb::lapack {

// ||A^-1||_1 by the 1-norm estimator (0 when A is singular to working
// precision). `apply(adjoint, x)` overwrites x by s A^-1 x (adjoint false)
// or s A^-H x (true) for a scale 0 <= s <= 1 of its choosing, which it
// returns; a scale that cannot be undone without overflow ends the estimate
// with 0. x and v hold n values, isgn n integers (real data; null for
// complex).
template <class T, class Apply>
real_t<T> inverse_norm(int n, T *x, T *v, int *isgn, Apply apply) {
  using R = real_t<T>;
  const R smlnum = safe_minimum<R>();
  R est = 0;
  int kase = 0, isave[3] = {0, 0, 0};
  for (;;) {
    lacn2(n, v, x, isgn, &est, &kase, isave);
    if (kase == 0) return est;
    const R scale = apply(kase == 2, x);
    if (scale != R(1)) {
      const int ix = blas::iamax(n, x, 1) - 1;
      if (scale < abs1(x[ix]) * smlnum || scale == 0) return 0;
      rscl(n, scale, x);
    }
  }
}

// rcond = 1 / (||A^-1|| anorm) from the estimate of ||A^-1||; 0 for a
// singular A.
template <class R>
R reciprocal_condition(R ainvnm, R anorm) {
  return ainvnm != 0 ? (R(1) / ainvnm) / anorm : R(0);
}

// The work vectors of a refinement: the residual r, the estimator's v (n
// values each) and the weights w (n reals).
template <class T>
struct RefineWork {
  T *r, *v;
  real_t<T> *w;
  int *isgn;  // n integers for real data, null for complex
};

// The published work arrays: real data WORK of 3n (w, r, v) and IWORK of
// n; complex data WORK of 2n (r, v) and RWORK of n (w).
template <class T>
RefineWork<T> refine_work(int n, T *work, real_t<T> *rwork, int *iwork) {
  if constexpr (is_complex_v<T>) {
    (void)iwork;
    return {work, work + n, rwork, nullptr};
  } else {
    (void)rwork;
    return {work + n, work + 2 * n, work, iwork};
  }
}

// The solves a refinement asks for: the correction's, with A itself, and
// the estimator's, with A^H and with A (either may be taken with any matrix
// of the same moduli, such as A^H for A^T).
enum class RefineSolve { kCorrection, kAdjoint, kForward };

// Iterative refinement of the n-by-nrhs solution X of A X = B, with the
// componentwise relative backward error berr and the forward error bound
// ferr of each column. nz bounds the nonzeros in a row of A, plus one.
//   residual(x, r): r := r - A x (r holds b on entry);
//   weights(x, b, w): w := |A| |x| + |b|;
//   solve(which, y): y := A^-1 y, or A^-H y for RefineSolve::kAdjoint.
template <class T, class Residual, class Weights, class Solve>
void refine(int n, int nrhs, int nz, const T *b, int ldb, T *x, int ldx, real_t<T> *ferr,
            real_t<T> *berr, const RefineWork<T> &wk, Residual residual, Weights weights,
            Solve solve) {
  using R = real_t<T>;
  constexpr int kMaxSteps = 5;
  if (n == 0 || nrhs == 0) {
    std::fill(ferr, ferr + nrhs, R(0));
    std::fill(berr, berr + nrhs, R(0));
    return;
  }
  const R eps = std::numeric_limits<R>::epsilon() / 2;
  const R safe1 = static_cast<R>(nz) * safe_minimum<R>();
  const R safe2 = safe1 / eps;
  T *r = wk.r;
  R *w = wk.w;
  for (int j = 0; j < nrhs; ++j) {
    T *xj = x + static_cast<std::ptrdiff_t>(j) * ldx;
    const T *bj = b + static_cast<std::ptrdiff_t>(j) * ldb;
    R last = 3;
    for (int count = 1;; ++count) {
      std::copy(bj, bj + n, r);
      residual(static_cast<const T *>(xj), r);
      weights(static_cast<const T *>(xj), bj, w);
      // safe1 added where the denominator is tiny keeps an exact zero
      // residual of a tiny row from counting as a large error.
      R s = 0;
      for (int i = 0; i < n; ++i)
        s = std::max(s, w[i] > safe2 ? abs1(r[i]) / w[i] : (abs1(r[i]) + safe1) / (w[i] + safe1));
      berr[j] = s;
      if (!(s > eps && 2 * s <= last && count <= kMaxSteps)) break;
      solve(RefineSolve::kCorrection, r);
      blas::axpy(n, T(1), r, 1, xj, 1);
      last = s;
    }
    // || |A^-1| (|r| + nz eps w) || / ||x||, the norm estimated with
    // products by A^-1 diag(w') and its adjoint.
    for (int i = 0; i < n; ++i)
      w[i] = abs1(r[i]) + static_cast<R>(nz) * eps * w[i] + (w[i] > safe2 ? R(0) : safe1);
    int kase = 0, isave[3] = {0, 0, 0};
    for (;;) {
      lacn2(n, wk.v, r, wk.isgn, &ferr[j], &kase, isave);
      if (kase == 0) break;
      if (kase == 1) {
        solve(RefineSolve::kAdjoint, r);
        for (int i = 0; i < n; ++i) r[i] = w[i] * r[i];
      } else {
        for (int i = 0; i < n; ++i) r[i] = w[i] * r[i];
        solve(RefineSolve::kForward, r);
      }
    }
    R xnorm = 0;
    for (int i = 0; i < n; ++i) xnorm = std::max(xnorm, abs1(xj[i]));
    if (xnorm != 0) ferr[j] /= xnorm;
  }
}

}  // namespace orb::lapack
